#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "holes_test_util.h"

namespace {

// A view into the heap, for checking handles and order after each call.
class QueueView : public YXPriorityQueue {
public:
    using YXPriorityQueue::YXPriorityQueue;
    std::int32_t Size() const { return m_lSize; }
    std::int32_t Capacity() const { return m_lCapacity; }
    const tagPQCELL& Cell(std::int32_t i) const { return m_pCells[i]; }

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

using Cells = std::vector<std::pair<long, unsigned long>>;

// Removes every cell and gives the (value, data) pairs in the order they came out.
Cells Drain(YXPriorityQueue& q)
{
    Cells out;
    long value = 0;
    unsigned long data = 0;
    while (q.RemoveHead(value, data) == 0) {
        out.emplace_back(value, data);
    }
    return out;
}

// A new queue, and one emptied by ReInit, give nothing, leave the arguments alone, and take cells.
TEST(PriorityQueue, EmptyQueues)
{
    QueueView fresh;
    QueueView reset;
    reset.AddValue(3, 3, nullptr);
    reset.ReInit();
    for (QueueView* q : {&fresh, &reset}) {
        long value = 7;
        unsigned long data = 7;
        EXPECT_EQ(q->IsEmpty(), 1);
        EXPECT_EQ(q->ReadHead(value, data), 0);
        EXPECT_EQ(q->RemoveHead(value, data), -1);
        EXPECT_EQ(q->RemoveAddHead(value, data, 1, 1, nullptr), -1);
        EXPECT_EQ(q->IsEmpty(), 1);
        EXPECT_EQ(value + static_cast<long>(data), 14);
        EXPECT_TRUE(q->AddValue(8, 8, nullptr));
        EXPECT_EQ(Drain(*q), (Cells{{8, 8}}));
    }
}

// Values are signed 32-bit numbers on every build; even the sentinel's own value comes out first.
TEST(PriorityQueue, SmallestFirstInEveryAddingOrder)
{
    std::vector<long> values{INT32_MIN, -5, 1, 3, INT32_MAX};
    Cells expected;
    for (long v : values) {
        expected.emplace_back(v, static_cast<std::uint32_t>(v));
    }
    do {
        YXPriorityQueue q;
        for (long v : values) {
            ASSERT_TRUE(q.AddValue(v, static_cast<std::uint32_t>(v), nullptr));
        }
        long value = 0;
        unsigned long data = 0;
        EXPECT_EQ(q.ReadHead(value, data), -1);
        EXPECT_EQ(value, INT32_MIN);
        EXPECT_EQ(Drain(q), expected);
    } while (std::next_permutation(values.begin(), values.end()));
}

TEST(PriorityQueue, GrowsByTheIncrement)
{
    QueueView q(100);
    std::vector<long> handles(101, -1);
    for (std::size_t i = 0; i < handles.size(); ++i) {
        ASSERT_TRUE(q.AddValue(100 - static_cast<long>(i), i, &handles[i]));
        ASSERT_TRUE(q.Check());
    }
    EXPECT_EQ(q.Capacity(), 200);
}

// A negative increment is refused as one of 0 is: the capacity never shrinks.
TEST(PriorityQueue, IncrementOfZeroOrLessRefusesEveryCell)
{
    for (const long increment : {0L, -1L}) {
        QueueView q(increment);
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_EQ(q.IsEmpty(), 1);
    }
}

TEST(PriorityQueue, RemoveCellPastTheLastChangesNothing)
{
    QueueView q;
    for (int i = 0; i < 3; ++i) {
        q.AddValue(i, static_cast<unsigned long>(i), nullptr);
    }
    EXPECT_EQ(q.RemoveCell(4), -1);
    EXPECT_EQ(q.RemoveCell(3), 0);
    EXPECT_EQ(Drain(q), (Cells{{0, 0}, {1, 1}}));
}

// Long random sequences of every operation against a sorted set, with heap order and every
// handle checked after each call. Some cells have no handle.
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
            model.erase(model.find({value, id}));
            live.erase(std::remove(live.begin(), live.end(), id), live.end());
        };
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const std::size_t op = draw(100);
            const long value = static_cast<long>(draw(200)) - 100;
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
                    model.erase(model.find({old, target}));
                    model.emplace(value, target);
                }
            } else if (op == 99 && draw(10) == 0) {
                q.ReInit();
                model.clear();
                live.clear();
            }
            ASSERT_TRUE(q.Check()) << "seed " << seed << " step " << step;
            ASSERT_EQ(q.Size(), static_cast<std::int32_t>(model.size()));
            if (!model.empty()) {
                ASSERT_EQ(q.ReadHead(head, id), -1);
                ASSERT_EQ(head, model.begin()->first);
            }
        }
    }
}

TEST(SpeedHoleManager, RemovesOnlyTheHead)
{
    YXSpeedHoleManager m;
    m.AddHole(1000, 80);
    m.AddHole(2000, 60);
    m.AddHole(3000, 10);
    EXPECT_EQ(m.RemoveHole(2000, 60), nullptr); // not the largest: nothing changes
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_EQ(m.GetHolesSize(), 150u);
    const tagFILEHOLE* rest = m.RemoveHole(1000, 30);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{1030, 50}));
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_EQ(m.GetHolesSize(), 120u);
    EXPECT_EQ(m.GetBestHole(1), 2000u); // the hole of 60 is now the head
}

// Of equal holes the heap decides; it does not promise the oldest.
TEST(SpeedHoleManager, AmongEqualHolesTheHeapDecides)
{
    YXSpeedHoleManager m;
    m.AddHole(10, 5);
    m.AddHole(20, 5);
    m.AddHole(30, 5);
    m.RemoveHole(10, 5);
    EXPECT_EQ(m.GetBestHole(5), 30u);
}

TEST(SpeedHoleManager, RemovedRecordIsOneForTheProcess)
{
    YXSpeedHoleManager a;
    YXSpeedHoleManager b;
    a.AddHole(100, 50);
    b.AddHole(900, 70);
    const tagFILEHOLE* fromA = a.RemoveHole(100, 10);
    EXPECT_EQ(fromA, b.RemoveHole(900, 20));
    EXPECT_EQ(*fromA, (tagFILEHOLE{920, 50}));
    b.RemoveHole(1, 1); // a refused removal still reads the head into the record
    EXPECT_EQ(*fromA, (tagFILEHOLE{920, 50}));
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
            } else {
                const unsigned long answer = m.GetBestHole(size);
                const std::int32_t largest = holes.empty() ? -1 : holes.rbegin()->first;
                const bool fits = largest == size || largest >= size + m.GetHoleFootPrint();
                ASSERT_EQ(answer != kNone, fits) << "step " << step;
                if (!fits) {
                    continue;
                }
                const auto hole = holes.find({largest, static_cast<std::uint32_t>(answer)});
                ASSERT_NE(hole, holes.end()) << "answer " << answer << " is not a largest hole";
                if (holes.begin()->second != answer) { // any other hole is refused
                    ASSERT_EQ(m.RemoveHole(holes.begin()->second, holes.begin()->first), nullptr);
                }
                const tagFILEHOLE* rest = m.RemoveHole(answer, size); // size 0 gives the head back whole
                sum -= static_cast<std::uint32_t>(size);
                holes.erase(hole);
                if (largest != size) {
                    const tagFILEHOLE left{static_cast<std::uint32_t>(answer + size), largest - size};
                    ASSERT_NE(rest, nullptr);
                    ASSERT_EQ(*rest, left);
                    holes.emplace(left.lSize, left.dwOffset);
                } else {
                    ASSERT_EQ(rest, nullptr);
                }
            }
            ASSERT_EQ(m.GetNumberOfHoles(), static_cast<long>(holes.size()));
            ASSERT_EQ(m.GetHolesSize(), sum);
        }
    }
}

} // namespace
