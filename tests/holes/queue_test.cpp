#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "holes_test_util.h"

using namespace holes_test;

namespace {

// Removes every cell and gives the (value, data) pairs in the order they came out.
std::vector<std::pair<long, unsigned long>> Drain(YXPriorityQueue& q)
{
    std::vector<std::pair<long, unsigned long>> out;
    long value = 0;
    unsigned long data = 0;
    while (q.RemoveHead(value, data) == 0) {
        out.emplace_back(value, data);
    }
    return out;
}

TEST(PriorityQueue, NewQueueIsEmpty)
{
    QueueView q;
    long value = 7;
    unsigned long data = 7;
    EXPECT_EQ(q.IsEmpty(), 1);
    EXPECT_EQ(q.ReadHead(value, data), 0);
    EXPECT_EQ(q.RemoveHead(value, data), -1);
    EXPECT_EQ(q.RemoveAddHead(value, data, 1, 1, nullptr), -1);
    EXPECT_EQ(q.IsEmpty(), 1);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(data, 7u);
    EXPECT_EQ(q.Capacity(), 100);
}

TEST(PriorityQueue, SmallestFirstInEveryAddingOrder)
{
    std::vector<long> values{1, 3, 5};
    do {
        YXPriorityQueue q;
        for (long v : values) {
            ASSERT_TRUE(q.AddValue(v, static_cast<unsigned long>(v * 10), nullptr));
        }
        EXPECT_EQ(q.IsEmpty(), 0);
        long value = 0;
        unsigned long data = 0;
        EXPECT_EQ(q.ReadHead(value, data), -1);
        EXPECT_EQ(value, 1);
        EXPECT_EQ(Drain(q), (std::vector<std::pair<long, unsigned long>>{{1, 10}, {3, 30}, {5, 50}}));
    } while (std::next_permutation(values.begin(), values.end()));
}

TEST(PriorityQueue, ValuesAreSigned32Bit)
{
    YXPriorityQueue q;
    q.AddValue(5, 1, nullptr);
    q.AddValue(-5, 2, nullptr);
    q.AddValue(INT32_MIN, 3, nullptr); // the sentinel's own value still comes out first
    q.AddValue(INT32_MAX, 4, nullptr);
    EXPECT_EQ(Drain(q), (std::vector<std::pair<long, unsigned long>>{{INT32_MIN, 3}, {-5, 2}, {5, 1}, {INT32_MAX, 4}}));
}

TEST(PriorityQueue, GrowsByTheIncrement)
{
    QueueView q(100);
    std::vector<long> handles(101, -1);
    for (int i = 0; i < 101; ++i) {
        ASSERT_TRUE(q.AddValue(100 - i, static_cast<unsigned long>(i), &handles[static_cast<std::size_t>(i)]));
        ASSERT_TRUE(q.Check());
    }
    EXPECT_EQ(q.Capacity(), 200);
    EXPECT_EQ(handles[100], 1); // the smallest value, added last, rose to the head
}

TEST(PriorityQueue, IncrementOfZeroOrLessRefusesEveryCell)
{
    for (const long increment : {0L, -1L}) {
        QueueView q(increment);
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_EQ(q.IsEmpty(), 1);
        EXPECT_EQ(q.Capacity(), 0);
    }
}

TEST(PriorityQueue, ChangeValueMovesTheCell)
{
    QueueView q;
    long h[4] = {};
    q.AddValue(1, 0, &h[0]);
    q.AddValue(2, 1, &h[1]);
    q.AddValue(3, 2, &h[2]);
    q.AddValue(4, 3, &h[3]);
    q.ChangeValue(h[2], 3); // same value: nothing moves
    EXPECT_EQ(h[2], 3);
    q.ChangeValue(h[0], 10); // the head sinks and its smaller child rises
    EXPECT_EQ(h[1], 1);
    EXPECT_TRUE(q.Check());
    q.ChangeValue(h[3], 0);
    EXPECT_EQ(h[3], 1);
    EXPECT_TRUE(q.Check());
}

TEST(PriorityQueue, RemoveCellBounds)
{
    QueueView q;
    long h[3] = {};
    for (int i = 0; i < 3; ++i) {
        q.AddValue(i, static_cast<unsigned long>(i), &h[i]);
    }
    EXPECT_EQ(q.RemoveCell(4), -1);
    EXPECT_EQ(q.Size(), 3);
    EXPECT_EQ(q.RemoveCell(3), 0); // the last cell: nothing else moves
    EXPECT_EQ(q.Size(), 2);
    EXPECT_EQ(h[0], 1);
    EXPECT_EQ(h[1], 2);
    EXPECT_TRUE(q.Check());
}

TEST(PriorityQueue, ReInitReleasesAndStartsAgain)
{
    QueueView q;
    long handle = 0;
    q.AddValue(3, 3, &handle);
    q.ReInit();
    long value = 0;
    unsigned long data = 0;
    EXPECT_EQ(q.ReadHead(value, data), 0);
    EXPECT_EQ(q.Capacity(), 0);
    EXPECT_TRUE(q.AddValue(8, 8, nullptr));
    EXPECT_EQ(q.ReadHead(value, data), -1);
    EXPECT_EQ(value, 8);
    EXPECT_EQ(handle, 1); // untouched by ReInit
}

// Long random sequences of every operation against a sorted set, with heap order and every
// handle checked after each call. Some cells have no handle.
TEST(PriorityQueue, RandomOperationsKeepHandlesAndOrder)
{
    for (const std::uint32_t seed : {11U, 12U, 13U}) {
        std::mt19937 rng(seed);
        QueueView q(7);
        // Handles must stay put while their cells are in the queue: one slot per cell ever added.
        std::vector<std::unique_ptr<long>> handles;
        std::multiset<std::pair<long, unsigned long>> model; // (value, cell id)
        std::vector<std::size_t> live;                       // ids of cells with a handle
        const auto draw = [&rng](long n) { return static_cast<long>(rng() % static_cast<unsigned long>(n)); };
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const long op = draw(100);
            const long value = draw(200) - 100;
            long gotValue = 0;
            unsigned long gotData = 0;
            if (op < 40 || model.empty()) {
                handles.push_back(std::make_unique<long>(-1));
                const std::size_t id = handles.size() - 1;
                long* handle = draw(4) == 0 ? nullptr : handles[id].get();
                ASSERT_TRUE(q.AddValue(value, id, handle));
                model.emplace(value, id);
                if (handle != nullptr) {
                    live.push_back(id);
                }
            } else if (op < 60) {
                ASSERT_EQ(q.RemoveHead(gotValue, gotData), 0);
                ASSERT_EQ(gotValue, model.begin()->first);
                model.erase(model.find({gotValue, gotData}));
                live.erase(std::remove(live.begin(), live.end(), gotData), live.end());
            } else if (op < 70) {
                handles.push_back(std::make_unique<long>(-1));
                const std::size_t id = handles.size() - 1;
                ASSERT_EQ(q.RemoveAddHead(gotValue, gotData, value, id, handles[id].get()), 0);
                ASSERT_EQ(gotValue, model.begin()->first);
                model.erase(model.find({gotValue, gotData}));
                live.erase(std::remove(live.begin(), live.end(), gotData), live.end());
                model.emplace(value, id);
                live.push_back(id);
            } else if (op < 85 && !live.empty()) {
                const std::size_t at = static_cast<std::size_t>(draw(static_cast<long>(live.size())));
                const std::size_t id = live[at];
                const long cell = *handles[id];
                const long old = q.Cell(static_cast<std::int32_t>(cell)).lValue;
                ASSERT_EQ(q.RemoveCell(cell), 0);
                model.erase(model.find({old, id}));
                live.erase(live.begin() + static_cast<long>(at));
            } else if (op < 99 && !live.empty()) {
                const std::size_t id = live[static_cast<std::size_t>(draw(static_cast<long>(live.size())))];
                const long cell = *handles[id];
                const long old = q.Cell(static_cast<std::int32_t>(cell)).lValue;
                q.ChangeValue(cell, value);
                model.erase(model.find({old, id}));
                model.emplace(value, id);
            } else if (op == 99 && draw(10) == 0) {
                q.ReInit();
                model.clear();
                live.clear();
            }
            ASSERT_TRUE(q.Check()) << "seed " << seed << " step " << step;
            ASSERT_EQ(q.Size(), static_cast<std::int32_t>(model.size()));
            if (!model.empty()) {
                ASSERT_EQ(q.ReadHead(gotValue, gotData), -1);
                ASSERT_EQ(gotValue, model.begin()->first);
            }
        }
    }
}

} // namespace
