#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "holes_test_util.h"
#include "reference_heap.h"

namespace {

// A view into the heap, for checking handles and order after each call.
class QueueView : public YXPriorityQueue {
public:
    using YXPriorityQueue::YXPriorityQueue;
    std::int32_t Size() const { return m_lSize; }
    const tagPQCELL& Cell(std::int32_t i) const { return m_pCells[i]; }

    // The same cells in the same places as the reference, and every handle at its place.
    ::testing::AssertionResult Matches(const ReferenceHeap& ref) const
    {
        HOLES_REQUIRE(static_cast<std::size_t>(m_lSize) == ref.Size());
        for (std::int32_t i = 1; i <= m_lSize; ++i) {
            HOLES_REQUIRE(m_pCells[i] == ref.cells[static_cast<std::size_t>(i)])
                << " at cell " << i << ": " << m_pCells[i] << " against " << ref.cells[static_cast<std::size_t>(i)];
        }
        return Check();
    }

    // Heap order, handles equal to indices, and the last-cell pointer.
    ::testing::AssertionResult Check() const
    {
        HOLES_REQUIRE(m_lSize == 0 || m_pLast == m_pCells + m_lSize);
        for (std::int32_t i = 1; i <= m_lSize; ++i) {
            HOLES_REQUIRE(i == 1 || m_pCells[i].lValue >= m_pCells[i / 2].lValue) << " at cell " << i;
            HOLES_REQUIRE(m_pCells[i].plIndex == nullptr || *m_pCells[i].plIndex == i) << " at cell " << i;
        }
        return ::testing::AssertionSuccess();
    }
};

TEST(PriorityQueue, NewQueueIsEmpty)
{
    YXPriorityQueue q;
    long value = 7;
    unsigned long data = 7;
    EXPECT_EQ(q.IsEmpty(), 1);
    EXPECT_EQ(q.ReadHead(value, data), 0);
    EXPECT_EQ(q.RemoveHead(value, data), -1);
    EXPECT_EQ(q.RemoveAddHead(value, data, 1, 1, nullptr), -1);
    EXPECT_EQ(q.IsEmpty(), 1);
    EXPECT_EQ(value + static_cast<long>(data), 14);
}

// A negative increment is refused as one of 0 is: the capacity never shrinks.
TEST(PriorityQueue, IncrementOfZeroOrLessRefusesEveryCell)
{
    for (const long increment : {0L, -1L}) {
        YXPriorityQueue q(increment);
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_EQ(q.IsEmpty(), 1);
    }
}

// A sinking cell stops at a child of equal value and goes on past a smaller one; of two equal
// children the right one rises. The head of a heap built from the values (cell i holds data i)
// gets a larger value and sinks.
TEST(PriorityQueue, SinkingWalkAmongEqualValues)
{
    const struct {
        const char* what;
        std::vector<long> values;
        long sink;
        std::vector<unsigned long> after; // data by place, from cell 1
    } cases[] = {
        {"lone child equal", {0, 5}, 5, {0, 1}},
        {"left child equal and the smaller", {0, 5, 9}, 5, {0, 1, 2}},
        {"right child equal and the smaller", {0, 6, 5}, 5, {0, 1, 2}},
        {"two equal children below it", {0, 4, 4}, 5, {2, 1, 0}},
        {"grandchild equal", {0, 4, 9, 6, 7}, 6, {1, 0, 2, 3, 4}},
        {"every child smaller", {0, 4, 9, 6, 7}, 8, {1, 3, 2, 0, 4}},
    };
    for (const auto& c : cases) {
        QueueView q(10);
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            ASSERT_TRUE(q.AddValue(c.values[i], static_cast<unsigned long>(i), nullptr));
        }
        q.ChangeValue(1, c.sink);
        std::vector<unsigned long> after;
        for (std::int32_t i = 1; i <= q.Size(); ++i) {
            after.push_back(q.Cell(i).dwData);
        }
        EXPECT_EQ(after, c.after) << c.what;
    }
}

// Long random sequences of every operation against the reference heap: the same cells in the same
// places after each call, and every handle at its place. Some cells have no handle; values come
// from a narrow range, so that ties are frequent, and some are the 32-bit extremes, the smallest
// being the sentinel's own.
TEST(PriorityQueue, RandomOperationsAgainstTheReferenceHeap)
{
    for (const std::uint32_t seed : {11U, 12U, 13U}) {
        std::mt19937 rng(seed);
        const auto draw = [&rng](std::size_t n) { return static_cast<std::size_t>(rng() % n); };
        QueueView q(7);
        ReferenceHeap ref;
        std::vector<std::unique_ptr<long>> handles; // one per cell ever added: they must stay put
        const auto cell = [&](std::int32_t value, bool withHandle) {
            handles.push_back(std::make_unique<long>(-1));
            return tagPQCELL{value, withHandle ? handles.back().get() : nullptr,
                             static_cast<std::uint32_t>(handles.size())};
        };
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const std::size_t op = draw(100);
            const std::int32_t extreme = draw(2) == 0 ? INT32_MIN : INT32_MAX;
            const auto value = draw(50) == 0 ? extreme : static_cast<std::int32_t>(draw(draw(3) == 0 ? 200 : 6)) - 3;
            long head = 0;
            unsigned long data = 0;
            if (op < 40 || ref.Size() == 0) {
                const tagPQCELL c = cell(value, draw(4) != 0);
                ASSERT_TRUE(q.AddValue(c.lValue, c.dwData, c.plIndex));
                ref.Add(c);
            } else if (op < 60) {
                ASSERT_EQ(q.RemoveHead(head, data), 0);
                const tagPQCELL expected = ref.RemoveHead();
                ASSERT_EQ(head, expected.lValue);
                ASSERT_EQ(data, expected.dwData);
            } else if (op < 70) {
                const tagPQCELL c = cell(value, true);
                ASSERT_EQ(q.RemoveAddHead(head, data, c.lValue, c.dwData, c.plIndex), 0);
                const tagPQCELL expected = ref.RemoveAddHead(c);
                ASSERT_EQ(data, expected.dwData);
            } else if (op < 99) {
                const auto k = static_cast<std::int32_t>(1 + draw(ref.Size()));
                if (op < 85) {
                    ASSERT_EQ(q.RemoveCell(k), 0);
                    ref.RemoveCell(static_cast<std::size_t>(k));
                } else {
                    q.ChangeValue(k, value);
                    ref.Change(static_cast<std::size_t>(k), value);
                }
            } else if (draw(10) == 0) {
                q.ReInit();
                ref = ReferenceHeap();
            }
            ASSERT_EQ(q.RemoveCell(q.Size() + 1), -1);
            ASSERT_TRUE(q.Matches(ref)) << "seed " << seed << " step " << step;
            ASSERT_EQ(q.ReadHead(head, data), ref.Size() == 0 ? 0 : -1);
        }
    }
}

// Only the head can be removed, and every speed manager of the process works in one record.
TEST(SpeedHoleManager, RemovesOnlyTheHeadIntoOneRecord)
{
    YXSpeedHoleManager a;
    YXSpeedHoleManager b;
    a.AddHole(100, 50);
    a.AddHole(300, 20);
    b.AddHole(900, 70);
    const tagFILEHOLE* fromA = a.RemoveHole(100, 10);
    ASSERT_NE(fromA, nullptr);
    EXPECT_EQ(*fromA, (tagFILEHOLE{110, 40}));
    EXPECT_EQ(b.RemoveHole(900, 20), fromA);
    EXPECT_EQ(*fromA, (tagFILEHOLE{920, 50}));
    EXPECT_EQ(a.RemoveHole(300, 20), nullptr); // not the largest: refused, though the head is read
    EXPECT_EQ(*fromA, (tagFILEHOLE{110, 40}));
    EXPECT_EQ(a.GetNumberOfHoles(), 2);
    EXPECT_EQ(a.GetHolesSize(), 60u);
}

// Of equal holes the heap decides: a sinking cell takes the right one of two equal children.
TEST(SpeedHoleManager, AmongEqualHolesTheHeapDecides)
{
    YXSpeedHoleManager m;
    for (const tagFILEHOLE h : {tagFILEHOLE{10, 9}, {20, 5}, {30, 5}, {40, 1}}) {
        m.AddHole(h.dwOffset, h.lSize);
    }
    m.RemoveHole(10, 9);
    EXPECT_EQ(m.GetBestHole(5), 30u);
}

// Random allocation and freeing against the reference heap of negated sizes: the same hole is
// the answer, and the same cells stand in the same places of the manager's queue.
TEST(SpeedHoleManager, RandomHostAgainstTheReferenceHeap)
{
    for (const std::uint32_t seed : {21U, 22U}) {
        std::mt19937 rng(seed);
        YXSpeedHoleManager m;
        ReferenceHeap ref;
        std::uint32_t sum = 0;
        std::uint32_t fileLength = 0;
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const auto size = static_cast<std::int32_t>(rng() % (rng() % 2 == 0 ? 100 : 5));
            const auto op = rng() % 100;
            const tagPQCELL head = ref.Size() == 0 ? tagPQCELL{1, nullptr, 0} : ref.cells[1];
            const bool fits = head.lValue <= 0 && (-head.lValue == size || -head.lValue >= size + m.GetHoleFootPrint());
            if (op < 55) {
                ASSERT_TRUE(m.AddHole(fileLength, size));
                ref.Add({-size, nullptr, fileLength});
                fileLength += static_cast<std::uint32_t>(size) + 1;
                sum += static_cast<std::uint32_t>(size);
            } else if (op == 55) {
                m.ClearHoleList();
                m.SetHoleFootPrint(static_cast<long>(rng() % 8));
                ref = ReferenceHeap();
                sum = 0;
            } else if (!fits) {
                ASSERT_EQ(m.GetBestHole(size), kNone) << "step " << step;
            } else {
                ASSERT_EQ(m.GetBestHole(size), head.dwData) << "step " << step;
                if (ref.Size() > 1 && ref.cells[2].dwData != head.dwData) { // any other hole is refused
                    ASSERT_EQ(m.RemoveHole(ref.cells[2].dwData, 1), nullptr);
                }
                const tagFILEHOLE* rest = m.RemoveHole(head.dwData, size); // size 0 gives the head back whole
                sum -= static_cast<std::uint32_t>(size);
                if (-head.lValue == size) {
                    ASSERT_EQ(rest, nullptr);
                    ref.RemoveHead();
                } else {
                    ASSERT_NE(rest, nullptr);
                    const tagFILEHOLE left{head.dwData + static_cast<std::uint32_t>(size), -head.lValue - size};
                    ASSERT_EQ(*rest, left);
                    ref.RemoveAddHead({-left.lSize, nullptr, left.dwOffset});
                }
            }
            ASSERT_EQ(m.GetNumberOfHoles(), static_cast<long>(ref.Size()));
            ASSERT_EQ(m.GetHolesSize(), sum);
        }
        // The whole heap, cell by cell: the holes come out in the reference's order.
        while (ref.Size() > 0 && !HasFailure()) {
            const tagPQCELL expected = ref.cells[1];
            ASSERT_EQ(m.GetBestHole(-expected.lValue), expected.dwData);
            ASSERT_EQ(m.RemoveHole(expected.dwData, -expected.lValue), nullptr);
            ref.RemoveHead();
        }
        EXPECT_EQ(m.GetBestHole(0), kNone);
    }
}

} // namespace
