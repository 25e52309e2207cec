#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "holes_model.h"
#include "holes_test_util.h"

namespace {

// A view into the heap, for checking handles and order after each call.
class QueueView : public holes_model::QueueView {
public:
    using holes_model::QueueView::QueueView;
    std::int32_t Size() const { return m_lSize; }
    const tagPQCELL& Cell(std::int32_t i) const { return m_pCells[i]; }

    ::testing::AssertionResult Check() const
    {
        const std::string broken = Invariants(*this);
        HOLES_REQUIRE(broken.empty()) << ": " << broken;
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

// Long random sequences of every operation against a sorted set, with heap order and every
// handle checked after each call. Some cells have no handle; some values are the 32-bit extremes,
// the smallest being the sentinel's own.
TEST(PriorityQueue, RandomOperationsKeepHandlesAndOrder)
{
    for (const std::uint32_t seed : {11U, 12U, 13U}) {
        std::mt19937 rng(seed);
        const auto draw = [&rng](std::size_t n) { return static_cast<std::size_t>(rng() % n); };
        QueueView q(7);
        std::vector<std::unique_ptr<long>> handles;          // one per cell ever added: they must stay put
        std::multiset<std::pair<long, unsigned long>> model; // (value, cell id)
        std::vector<unsigned long> live;                     // ids of the cells in the queue with a handle
        const auto add = [&](long value, bool withHandle) {
            handles.push_back(std::make_unique<long>(-1));
            model.emplace(value, handles.size() - 1);
            if (withHandle) {
                live.push_back(handles.size() - 1);
            }
            return withHandle ? handles.back().get() : nullptr;
        };
        const auto take = [&](long value, unsigned long id) {
            const auto cell = model.find({value, id});
            ASSERT_NE(cell, model.end()) << "no cell " << id << " of value " << value;
            model.erase(cell);
            live.erase(std::remove(live.begin(), live.end(), id), live.end());
        };
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const std::size_t op = draw(100);
            const long extreme = draw(2) == 0 ? INT32_MIN : INT32_MAX;
            const long value = draw(50) == 0 ? extreme : static_cast<long>(draw(200)) - 100;
            const long least = model.empty() ? 0 : model.begin()->first;
            const unsigned long next = handles.size();
            long head = 0;
            unsigned long id = 0;
            if (op < 40 || model.empty()) {
                ASSERT_TRUE(q.AddValue(value, next, add(value, draw(4) != 0)));
            } else if (op < 60) {
                ASSERT_EQ(q.RemoveHead(head, id), 0);
                ASSERT_EQ(head, least);
                take(head, id);
            } else if (op < 70) {
                ASSERT_EQ(q.RemoveAddHead(head, id, value, next, add(value, true)), 0);
                ASSERT_EQ(head, least);
                take(head, id);
            } else if (op < 99 && !live.empty()) {
                const unsigned long target = live[draw(live.size())];
                const long cell = *handles[target];
                const long old = q.Cell(static_cast<std::int32_t>(cell)).lValue;
                if (op < 85) {
                    ASSERT_EQ(q.RemoveCell(cell), 0);
                    take(old, target);
                } else {
                    q.ChangeValue(cell, value);
                    take(old, target);
                    model.emplace(value, target);
                    live.push_back(target);
                }
            } else if (op == 99 && draw(10) == 0) {
                q.ReInit();
                model.clear();
                live.clear();
            }
            ASSERT_EQ(q.RemoveCell(q.Size() + 1), -1);
            ASSERT_TRUE(q.Check()) << "seed " << seed << " step " << step;
            ASSERT_EQ(q.Size(), static_cast<std::int32_t>(model.size()));
            ASSERT_EQ(q.ReadHead(head, id), model.empty() ? 0 : -1);
            ASSERT_EQ(head, model.empty() ? head : model.begin()->first);
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

// Random allocation and freeing against a sorted set of holes.
TEST(SpeedHoleManager, RandomHostAgainstASortedSet)
{
    for (const std::uint32_t seed : {21U, 22U}) {
        std::mt19937 rng(seed);
        YXSpeedHoleManager m;
        std::multiset<std::pair<std::int32_t, std::uint32_t>> holes; // (size, offset)
        std::uint32_t sum = 0;
        std::uint32_t fileLength = 0;
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const auto size = static_cast<std::int32_t>(rng() % 100);
            const auto op = rng() % 100;
            const unsigned long answer = op < 55 ? kNone : m.GetBestHole(size);
            const std::int32_t largest = holes.empty() ? -1 : holes.rbegin()->first;
            const auto hole = holes.find({largest, static_cast<std::uint32_t>(answer)});
            if (op < 55) {
                m.AddHole(fileLength, size);
                holes.emplace(size, fileLength);
                fileLength += static_cast<std::uint32_t>(size) + 1;
                sum += static_cast<std::uint32_t>(size);
            } else if (op == 55) {
                m.ClearHoleList();
                m.SetHoleFootPrint(static_cast<long>(rng() % 8));
                holes.clear();
                sum = 0;
            } else if (largest != size && largest < size + m.GetHoleFootPrint()) {
                ASSERT_EQ(answer, kNone) << "step " << step;
            } else {
                ASSERT_NE(hole, holes.end()) << "answer " << answer << " is not a largest hole";
                if (holes.begin()->second != answer) { // any other hole is refused
                    ASSERT_EQ(m.RemoveHole(holes.begin()->second, holes.begin()->first), nullptr);
                }
                const tagFILEHOLE* rest = m.RemoveHole(answer, size); // size 0 gives the head back whole
                const tagFILEHOLE left{static_cast<std::uint32_t>(answer + size), largest - size};
                sum -= static_cast<std::uint32_t>(size);
                holes.erase(hole);
                ASSERT_EQ(rest == nullptr, largest == size);
                if (rest != nullptr) {
                    ASSERT_EQ(*rest, left);
                    holes.emplace(left.lSize, left.dwOffset);
                }
            }
            ASSERT_EQ(m.GetNumberOfHoles(), static_cast<long>(holes.size()));
            ASSERT_EQ(m.GetHolesSize(), sum);
        }
    }
}

} // namespace
