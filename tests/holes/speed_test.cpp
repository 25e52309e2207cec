#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <utility>

#include "holes_test_util.h"

using namespace holes_test;

namespace {

TEST(SpeedHoleManager, NewManagerHasNoQueue)
{
    YXSpeedHoleManager m;
    EXPECT_EQ(m.GetBestHole(1), kNone);
    EXPECT_EQ(m.RemoveHole(0, 0), nullptr);
    EXPECT_TRUE(m.ClearHoleList());
    EXPECT_EQ(m.GetNumberOfHoles(), 0);
    EXPECT_EQ(m.GetHolesSize(), 0u);
}

TEST(SpeedHoleManager, OnlyTheLargestHoleAnswers)
{
    const struct {
        long footPrint;
        long request;
        unsigned long answer;
    } cases[] = {
        {0, 50, 3000}, // not the hole of 50: only the head is looked at
        {0, 80, 3000}, {0, 81, kNone}, {10, 80, 3000}, {10, 70, 3000}, {10, 75, kNone}, {10, 71, kNone},
    };
    for (const auto& c : cases) {
        YXSpeedHoleManager m;
        m.SetHoleFootPrint(c.footPrint);
        m.AddHole(1000, 10);
        m.AddHole(2000, 50);
        m.AddHole(3000, 80);
        EXPECT_EQ(m.GetBestHole(c.request), c.answer) << "request " << c.request << ", foot print " << c.footPrint;
    }
}

TEST(SpeedHoleManager, RemovesOnlyTheHead)
{
    YXSpeedHoleManager m;
    m.AddHole(1000, 80);
    m.AddHole(2000, 60);
    m.AddHole(3000, 10);
    EXPECT_EQ(m.RemoveHole(2000, 60), nullptr); // not the largest
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_EQ(m.GetHolesSize(), 150u);

    const tagFILEHOLE* rest = m.RemoveHole(1000, 30);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{1030, 50}));
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_EQ(m.GetHolesSize(), 120u);
    EXPECT_EQ(m.GetBestHole(1), 2000u); // the hole of 60 is now the head

    EXPECT_EQ(m.RemoveHole(2000, 60), nullptr);
    EXPECT_EQ(m.GetNumberOfHoles(), 2);
    EXPECT_EQ(m.GetBestHole(1), 1030u);

    // lSize 0 takes nothing and gives the record back.
    rest = m.RemoveHole(1030, 0);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{1030, 50}));
    EXPECT_EQ(m.GetNumberOfHoles(), 2);

    EXPECT_EQ(m.RemoveHole(1030, 50), nullptr);
    EXPECT_EQ(m.RemoveHole(3000, 10), nullptr);
    EXPECT_EQ(m.GetNumberOfHoles(), 0);
    EXPECT_EQ(m.GetBestHole(1), kNone);
    EXPECT_EQ(m.RemoveHole(3000, 10), nullptr);
}

// Of equal holes the heap decides; it does not promise the oldest.
TEST(SpeedHoleManager, AmongEqualHolesTheHeapDecides)
{
    YXSpeedHoleManager m;
    m.AddHole(10, 5);
    m.AddHole(20, 5);
    m.AddHole(30, 5);
    EXPECT_EQ(m.GetBestHole(5), 10u);
    m.RemoveHole(10, 5);
    EXPECT_EQ(m.GetBestHole(5), 30u);
}

TEST(SpeedHoleManager, NeverMergesAndKnowsNoOffsets)
{
    YXSpeedHoleManager m;
    m.AddHole(100, 50);
    m.AddHole(150, 50);
    m.AddHole(0x80000000UL | 200, 50); // bit 31 is part of a plain number here
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_EQ(m.GetBestHole(100), kNone);
    EXPECT_FALSE(m.IsHole(100));
    EXPECT_EQ(m.GetTruncateOffset(200), kNone);
    EXPECT_EQ(m.GetBestHole(50), 100u);
}

TEST(SpeedHoleManager, RemovedRecordIsOneForTheProcess)
{
    YXSpeedHoleManager a;
    YXSpeedHoleManager b;
    a.AddHole(100, 50);
    b.AddHole(900, 70);
    const tagFILEHOLE* fromA = a.RemoveHole(100, 10);
    ASSERT_NE(fromA, nullptr);
    EXPECT_EQ(*fromA, (tagFILEHOLE{110, 40}));
    const tagFILEHOLE* fromB = b.RemoveHole(900, 20);
    EXPECT_EQ(fromA, fromB);
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
            if (rng() % 100 < 55) {
                m.AddHole(fileLength, size);
                holes.emplace(size, fileLength);
                fileLength += static_cast<std::uint32_t>(size) + 1;
                sum += static_cast<std::uint32_t>(size);
            } else if (rng() % 50 == 0) {
                const long footPrint = m.GetHoleFootPrint();
                m.ClearHoleList();
                EXPECT_EQ(m.GetHoleFootPrint(), footPrint);
                holes.clear();
                sum = 0;
                m.SetHoleFootPrint(static_cast<long>(rng() % 8));
            } else {
                const unsigned long answer = m.GetBestHole(size);
                if (holes.empty()) {
                    ASSERT_EQ(answer, kNone);
                    continue;
                }
                const std::int32_t largest = holes.rbegin()->first;
                const bool fits = largest == size || largest >= size + m.GetHoleFootPrint();
                ASSERT_EQ(answer != kNone, fits) << "step " << step;
                if (!fits) {
                    continue;
                }
                const auto hole = holes.find({largest, static_cast<std::uint32_t>(answer)});
                ASSERT_NE(hole, holes.end()) << "answer " << answer << " is not a largest hole";
                if (holes.begin()->second != answer) { // any other hole is refused
                    ASSERT_EQ(m.RemoveHole(holes.begin()->second, holes.begin()->first), nullptr);
                    ASSERT_EQ(m.GetNumberOfHoles(), static_cast<long>(holes.size()));
                }
                const tagFILEHOLE* rest = m.RemoveHole(answer, size);
                sum -= static_cast<std::uint32_t>(size);
                if (largest == size) {
                    ASSERT_EQ(rest, nullptr);
                } else {
                    ASSERT_NE(rest, nullptr);
                    ASSERT_EQ(*rest,
                              (tagFILEHOLE{static_cast<std::uint32_t>(answer) + std::uint32_t(size), largest - size}));
                    holes.emplace(rest->lSize, rest->dwOffset);
                }
                holes.erase(hole);
            }
            ASSERT_EQ(m.GetNumberOfHoles(), static_cast<long>(holes.size()));
            ASSERT_EQ(m.GetHolesSize(), sum);
        }
    }
}

} // namespace
