#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "holes_test_util.h"

using namespace holes_test;

namespace {

void AddAll(EfficientView& m, const std::vector<tagFILEHOLE>& holes)
{
    for (const tagFILEHOLE& h : holes) {
        ASSERT_TRUE(m.AddHole(h.dwOffset, h.lSize));
    }
}

TEST(EfficientHoleManager, EmptyManagerHasNoAnswers)
{
    EfficientView m;
    EXPECT_EQ(m.GetBestHole(1), kNone);
    EXPECT_EQ(m.GetTruncateOffset(0), kNone);
    EXPECT_FALSE(m.IsHole(0));
    EXPECT_EQ(m.RemoveHole(0, 0), nullptr);
    EXPECT_FALSE(m.UnlockHole(0));
    EXPECT_FALSE(m.UnlockAllHoles());
    EXPECT_EQ(m.GetNumberOfHoles(), 0);
    EXPECT_FALSE(m.HasTable());
    EXPECT_TRUE(m.Check());
}

TEST(EfficientHoleManager, WorkedRun)
{
    EfficientView m;
    AddAll(m, {{1000, 100}, {1100, 50}, {5000, 30}});
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_EQ(m.GetHolesSize(), 180u);
    EXPECT_EQ(m.GetBestHole(30), 5000u); // merges the first two, then fits exactly
    EXPECT_EQ(m.GetNumberOfHoles(), 2);
    EXPECT_EQ(m.RemoveHole(5000, 30), nullptr);
    EXPECT_EQ(m.GetNumberOfHoles(), 1);
    EXPECT_EQ(m.GetHolesSize(), 150u);
    EXPECT_EQ(m.GetBestHole(100), 1000u); // the largest
    const tagFILEHOLE* rest = m.RemoveHole(1000, 100);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{1100, 50}));
    EXPECT_EQ(m.GetHolesSize(), 50u);
    EXPECT_EQ(m.GetTruncateOffset(1150), 1100u);
    EXPECT_EQ(m.GetTruncateOffset(1151), kNone);
    EXPECT_TRUE(m.Check());
}

// What remains after a merge pass, for holes added in every order.
TEST(EfficientHoleManager, MergePassesOverEveryAddingOrder)
{
    const std::uint32_t L = kLock;
    const struct {
        std::vector<tagFILEHOLE> added;
        std::vector<tagFILEHOLE> after;
    } cases[] = {
        {{{100, 50}, {150, 50}}, {{100, 100}}},
        {{{100, 50}, {150, 50}, {200, 50}}, {{100, 150}}},
        {{{100, 50}, {151, 50}}, {{100, 50}, {151, 50}}},                       // a gap
        {{{100, 50}, {150, 50}, {201, 10}, {211, 5}}, {{100, 100}, {201, 15}}}, // two chains
        {{{100, 50}, {150, 0}}, {{100, 50}}},                                   // an empty hole merges
        {{{100, 50}, {300, 0}}, {{100, 50}, {300, 0}}},                         // kept: nothing merged
        {{{100, 50}, {150 | L, 50}}, {{100, 50}, {150 | L, 50}}},               // locked: never merged
        {{{100 | L, 50}, {150 | L, 50}}, {{100 | L, 50}, {150 | L, 50}}},
        {{{100, 50}, {150, 50}, {200 | L, 50}}, {{100, 100}, {200 | L, 50}}},
    };
    for (const auto& c : cases) {
        std::vector<tagFILEHOLE> order = c.added;
        std::sort(order.begin(), order.end(), ByOffset);
        do {
            for (const bool viaTruncate : {false, true}) {
                EfficientView m;
                AddAll(m, order);
                if (viaTruncate) {
                    m.GetTruncateOffset(0);
                } else {
                    m.GetBestHole(1000000);
                }
                EXPECT_EQ(SortedByOffset(m.Holes()), SortedByOffset(c.after)) << c.added.size() << " holes";
                unsigned long sum = 0;
                for (const tagFILEHOLE& h : c.added) {
                    sum += static_cast<unsigned long>(h.lSize);
                }
                EXPECT_EQ(m.GetHolesSize(), sum);
                EXPECT_TRUE(m.Check());
            }
        } while (std::next_permutation(order.begin(), order.end(), ByOffset));
    }
}

TEST(EfficientHoleManager, UnlockingLetsHolesMerge)
{
    EfficientView m;
    AddAll(m, {{100, 50}, {150 | kLock, 50}, {200 | kLock, 50}});
    EXPECT_EQ(m.GetBestHole(150), kNone);
    EXPECT_EQ(m.GetNumberOfHoles(), 3);
    EXPECT_TRUE(m.UnlockAllHoles());
    EXPECT_FALSE(m.UnlockAllHoles());
    EXPECT_EQ(m.GetBestHole(150), 100u);
    EXPECT_EQ(m.GetNumberOfHoles(), 1);
    EXPECT_EQ(m.GetHolesSize(), 150u);
}

TEST(EfficientHoleManager, ExactFitElseLargest)
{
    const struct {
        std::vector<std::int32_t> sizes;
        long footPrint;
        long request;
        std::int32_t answerSize; // 0: no answer
    } cases[] = {
        {{10, 50, 80}, 0, 50, 50}, {{10, 50, 80}, 0, 30, 80}, {{10, 50, 80}, 0, 81, 0}, {{80}, 10, 75, 0},
        {{80}, 10, 70, 80},        {{80}, 10, 80, 80},        {{80, 10}, 10, 10, 10},
    };
    for (const auto& c : cases) {
        EfficientView m;
        m.SetHoleFootPrint(c.footPrint);
        std::uint32_t offset = 0;
        for (std::int32_t size : c.sizes) {
            m.AddHole(offset, size);
            offset += 1000; // a gap after each hole, so that nothing merges
        }
        const unsigned long answer = m.GetBestHole(c.request);
        if (c.answerSize == 0) {
            EXPECT_EQ(answer, kNone) << "request " << c.request;
            continue;
        }
        ASSERT_NE(answer, kNone) << "request " << c.request;
        const auto it = std::find(c.sizes.begin(), c.sizes.end(), c.answerSize);
        EXPECT_EQ(answer, 1000u * static_cast<unsigned long>(it - c.sizes.begin())) << "request " << c.request;
    }
}

// Among equal holes the sort's partition steps and the search's probes decide: of three holes
// of one size, added by offset, the exact fit is the one at 30.
TEST(EfficientHoleManager, AmongEqualHolesTheSortDecides)
{
    EfficientView m;
    AddAll(m, {{10, 5}, {20, 5}, {30, 5}});
    EXPECT_EQ(m.GetBestHole(5), 30u);
    EXPECT_EQ(m.Holes(), (std::vector<tagFILEHOLE>{{10, 5}, {30, 5}, {20, 5}}));
}

TEST(EfficientHoleManager, RemovingWholeAndPartHoles)
{
    for (const long whole : {0L, 50L}) {
        EfficientView m;
        AddAll(m, {{100, 50}, {300, 20}});
        EXPECT_EQ(m.RemoveHole(100, whole), nullptr);
        EXPECT_EQ(m.Holes(), (std::vector<tagFILEHOLE>{{300, 20}}));
        EXPECT_EQ(m.GetHolesSize(), 20u);
    }
    EfficientView m;
    AddAll(m, {{100, 50}, {300, 20}});
    EXPECT_EQ(m.RemoveHole(120, 10), nullptr); // inside a hole, not its start
    EXPECT_EQ(m.GetHolesSize(), 70u);
    const tagFILEHOLE* rest = m.RemoveHole(100, 30);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{130, 20}));
    EXPECT_EQ(m.GetHolesSize(), 40u);
    EXPECT_EQ(m.SortKey(), YXHOLESORT_OFFSET); // the start moved inside its own range
    EXPECT_TRUE(m.IsHole(130));
    EXPECT_TRUE(m.Check());
}

TEST(EfficientHoleManager, LockedHoles)
{
    EfficientView m;
    AddAll(m, {{100 | kLock, 50}, {500, 80}});
    EXPECT_TRUE(m.IsHole(100));
    EXPECT_TRUE(m.IsHole(100 | kLock));
    EXPECT_FALSE(m.UnlockHole(500));
    // A locked hole of exactly the size asked for is the answer, bit 31 included.
    EXPECT_EQ(m.GetBestHole(50), 100u | kLock);
    EXPECT_EQ(m.RemoveHole(100 | kLock, 50), nullptr);
    EXPECT_EQ(m.GetNumberOfHoles(), 1);

    // The rest of a locked hole is unlocked.
    m.AddHole(100 | kLock, 50);
    const tagFILEHOLE* rest = m.RemoveHole(100, 20);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{120, 30}));
    EXPECT_EQ(m.SortKey(), YXHOLESORT_NONE);
    EXPECT_FALSE(m.Optimized());
    EXPECT_FALSE(m.UnlockHole(120));

    m.AddHole(700 | kLock, 10);
    EXPECT_TRUE(m.UnlockHole(700));
    EXPECT_TRUE(m.IsHole(700));
    EXPECT_FALSE(m.IsHole(700 | kLock) && m.UnlockHole(700));
    EXPECT_EQ(m.RemoveHole(700, 0), nullptr);
    EXPECT_FALSE(m.IsHole(700));
    EXPECT_TRUE(m.Check());
}

TEST(EfficientHoleManager, TruncateOffset)
{
    EfficientView m;
    AddAll(m, {{100, 50}, {900, 100}});
    EXPECT_EQ(m.GetTruncateOffset(1000), 900u);
    EXPECT_EQ(m.GetNumberOfHoles(), 2); // still there
    EXPECT_EQ(m.GetTruncateOffset(1001), kNone);
    m.AddHole(10 | kLock, 5);
    EXPECT_EQ(m.GetTruncateOffset(1000), kNone);
    EXPECT_EQ(m.GetTruncateOffset(15 | kLock), 10u | kLock);
}

TEST(EfficientHoleManager, BlocksFollowTheCount)
{
    EfficientView m;
    for (std::uint32_t i = 0; i < 200; ++i) {
        m.AddHole(i * 10, 5);
    }
    EXPECT_EQ(m.BlocksHeld(), 1);
    EXPECT_EQ(m.FreeEntries(), 0);
    EXPECT_EQ(m.TableSize(), 20);
    m.AddHole(5000, 5);
    EXPECT_EQ(m.BlocksHeld(), 2);
    EXPECT_EQ(m.FreeEntries(), 199);
    EXPECT_EQ(m.RemoveHole(5000, 5), nullptr);
    EXPECT_EQ(m.BlocksHeld(), 1); // 200 free entries: the block goes at once
    EXPECT_EQ(m.FreeEntries(), 0);
    EXPECT_TRUE(m.Check());
    for (std::uint32_t i = 0; i < 200; ++i) {
        EXPECT_EQ(m.RemoveHole(i * 10, 0), nullptr);
    }
    EXPECT_FALSE(m.HasTable());
    EXPECT_EQ(m.TableSize(), 0);
    EXPECT_TRUE(m.AddHole(7, 7));
    EXPECT_EQ(m.GetBestHole(7), 7u);
    EXPECT_TRUE(m.Check());
}

TEST(EfficientHoleManager, TableGrowsAtThe3801stHole)
{
    EfficientView m;
    for (std::uint32_t i = 0; i < 3800; ++i) {
        m.AddHole(i * 10, static_cast<long>(i % 7));
    }
    EXPECT_EQ(m.TableSize(), 20);
    EXPECT_EQ(m.BlocksHeld(), 19);
    m.AddHole(3800 * 10, 1);
    EXPECT_EQ(m.TableSize(), 40);
    EXPECT_EQ(m.BlocksHeld(), 20);
    std::vector<tagFILEHOLE> holes = m.Holes();
    ASSERT_EQ(holes.size(), 3801u);
    for (std::uint32_t i = 0; i <= 3800; ++i) {
        EXPECT_EQ(holes[i].dwOffset, i * 10);
    }
    m.SortHoles(YXHOLESORT_SIZE);
    EXPECT_TRUE(m.Check());
    EXPECT_TRUE(m.IsHole(3800 * 10));
}

// The table's entry count is 16 bits wide: 65535 blocks, that is 13107000 holes, are the most a
// manager holds. The hole after that is refused as when memory runs out.
TEST(EfficientHoleManager, ListStopsAtTheTableLimit)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "13 million calls take minutes under AddressSanitizer; the plain builds run this";
#endif
    EfficientView m;
    constexpr std::int32_t kMost = 65535 * 200;
    for (std::int32_t i = 0; i < kMost; ++i) {
        if (!m.AddHole(static_cast<unsigned long>(i) * 2, 1)) {
            FAIL() << "refused hole " << i;
        }
    }
    EXPECT_EQ(m.TableSize(), 65535);
    EXPECT_FALSE(m.AddHole(1, 1));
    EXPECT_EQ(m.GetNumberOfHoles(), kMost);
    EXPECT_EQ(m.GetHolesSize(), static_cast<unsigned long>(kMost));
    EXPECT_EQ(m.RemoveHole(0, 0), nullptr);
    EXPECT_TRUE(m.AddHole(1, 1));
}

TEST(EfficientHoleManager, SortHolesTrustsTheKeyThatHolds)
{
    EfficientView m;
    AddAll(m, {{300, 1}, {100, 3}, {200, 2}});
    m.SortHoles(YXHOLESORT_SIZE);
    EXPECT_EQ(m.Holes(), (std::vector<tagFILEHOLE>{{300, 1}, {200, 2}, {100, 3}}));
    m.Poke(0, {300, 9}); // out of order behind the manager's back
    m.SortHoles(YXHOLESORT_SIZE);
    EXPECT_EQ(m.Holes()[0], (tagFILEHOLE{300, 9}));
    m.SortHoles(YXHOLESORT_SIZE_DESC);
    EXPECT_EQ(m.Holes(), (std::vector<tagFILEHOLE>{{300, 9}, {100, 3}, {200, 2}}));

    // A key outside the table sorts by offset and is kept, so the next lookup sorts again.
    m.SortHoles(7);
    EXPECT_EQ(m.SortKey(), 7);
    EXPECT_EQ(m.Holes(), (std::vector<tagFILEHOLE>{{100, 3}, {200, 2}, {300, 9}}));
    m.Poke(0, {400, 3});
    EXPECT_TRUE(m.IsHole(400));
    EXPECT_EQ(m.SortKey(), YXHOLESORT_OFFSET);

    EfficientView one;
    one.SortHoles(YXHOLESORT_SIZE);
    EXPECT_EQ(one.SortKey(), YXHOLESORT_SIZE);
    one.AddHole(5, 5);
    one.SortHoles(YXHOLESORT_SIZE_DESC);
    EXPECT_EQ(one.SortKey(), YXHOLESORT_SIZE_DESC);
}

// A host's file, allocated and freed at random through the manager, against a plain list of
// its holes. Every invariant is checked after every call.
class HostModel {
public:
    explicit HostModel(std::uint32_t seed) : m_rng(seed) {}

    void Run(int steps)
    {
        for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
            const unsigned op = Next(100);
            const bool growing = (step / 3000) % 2 == 0;
            if (op < (growing ? 55U : 25U)) {
                Allocate();
            } else if (op < 80) {
                Free();
            } else if (op < 86) {
                Truncate();
            } else if (op < 92) {
                Lookup();
            } else if (op < 97) {
                Unlock();
            } else if (op < 98) {
                m_manager.SetHoleFootPrint(static_cast<long>(Next(16)));
            } else if (op < 99) {
                EXPECT_TRUE(m_manager.UnlockAllHoles() == HasLocked());
                for (tagFILEHOLE& h : m_holes) {
                    h.dwOffset &= ~kLock;
                }
            } else if (Next(20) == 0) {
                m_manager.ClearHoleList(); // the host forgets its holes; the file keeps its length
                m_holes.clear();
            }
            ASSERT_TRUE(m_manager.Check()) << "step " << step;
            ASSERT_EQ(SortedByOffset(m_manager.Holes()), SortedByOffset(m_holes)) << "step " << step;
            m_most = std::max(m_most, m_holes.size());
        }
    }
    std::size_t Most() const { return m_most; }

private:
    unsigned Next(unsigned n) { return static_cast<unsigned>(m_rng() % n); }

    bool HasLocked() const
    {
        return std::any_of(m_holes.begin(), m_holes.end(), [](const tagFILEHOLE& h) { return h.dwOffset & kLock; });
    }

    // The merge pass, on the plain list.
    void Merge()
    {
        std::vector<tagFILEHOLE> sorted = SortedByOffset(m_holes);
        std::vector<tagFILEHOLE> merged;
        for (const tagFILEHOLE& h : sorted) {
            const bool locked = (h.dwOffset & kLock) != 0;
            if (!locked && !merged.empty() && (merged.back().dwOffset & kLock) == 0 &&
                merged.back().dwOffset + static_cast<std::uint32_t>(merged.back().lSize) == h.dwOffset) {
                merged.back().lSize += h.lSize;
            } else {
                merged.push_back(h);
            }
        }
        m_holes = merged;
    }

    std::vector<tagFILEHOLE>::iterator Find(std::uint32_t offset)
    {
        return std::find_if(m_holes.begin(), m_holes.end(),
                            [offset](const tagFILEHOLE& h) { return h.dwOffset == offset; });
    }

    void Allocate()
    {
        const auto size = static_cast<std::int32_t>(1 + Next(Next(4) == 0 ? 400 : 40));
        const unsigned long answer = m_manager.GetBestHole(size);
        Merge();
        std::int32_t largest = -1;
        bool exact = false;
        for (const tagFILEHOLE& h : m_holes) {
            largest = std::max(largest, h.lSize);
            exact = exact || h.lSize == size;
        }
        if (answer == kNone) {
            ASSERT_FALSE(exact);
            ASSERT_FALSE(largest >= 0 && largest >= size + m_manager.GetHoleFootPrint()) << "request " << size;
            m_allocated[m_fileLength] = size;
            m_fileLength += static_cast<std::uint32_t>(size);
            return;
        }
        const auto hole = Find(static_cast<std::uint32_t>(answer));
        ASSERT_NE(hole, m_holes.end()) << "answer " << answer << " is no hole";
        ASSERT_EQ(hole->lSize, exact ? size : largest) << "request " << size;
        const tagFILEHOLE* rest = m_manager.RemoveHole(answer, size);
        m_allocated[hole->dwOffset & ~kLock] = size;
        if (hole->lSize == size) {
            ASSERT_EQ(rest, nullptr);
            m_holes.erase(hole);
        } else {
            hole->dwOffset = (hole->dwOffset & ~kLock) + static_cast<std::uint32_t>(size);
            hole->lSize -= size;
            ASSERT_NE(rest, nullptr);
            ASSERT_EQ(*rest, *hole);
        }
    }

    void Free()
    {
        if (m_allocated.empty()) {
            return;
        }
        auto block = m_allocated.begin();
        std::advance(block, Next(static_cast<unsigned>(m_allocated.size())));
        const std::uint32_t offset = block->first | (Next(10) == 0 ? kLock : 0);
        ASSERT_TRUE(m_manager.AddHole(offset, block->second));
        m_holes.push_back({offset, block->second});
        m_allocated.erase(block);
    }

    void Truncate()
    {
        const unsigned long answer = m_manager.GetTruncateOffset(m_fileLength);
        Merge();
        const std::vector<tagFILEHOLE> sorted = SortedByOffset(m_holes);
        const bool expected =
            !sorted.empty() && sorted.back().dwOffset + std::uint32_t(sorted.back().lSize) == m_fileLength;
        ASSERT_EQ(answer, expected ? sorted.back().dwOffset : kNone);
        if (expected) {
            ASSERT_EQ(m_manager.RemoveHole(answer, 0), nullptr);
            m_holes.erase(Find(sorted.back().dwOffset));
            m_fileLength = static_cast<std::uint32_t>(answer);
        }
    }

    void Lookup()
    {
        const std::uint32_t offset =
            m_holes.empty() || Next(3) == 0 ? Next(m_fileLength + 1) : m_holes[Next(unsigned(m_holes.size()))].dwOffset;
        const bool expected = Find(offset & ~kLock) != m_holes.end() || Find(offset | kLock) != m_holes.end();
        ASSERT_EQ(m_manager.IsHole(offset), expected) << offset;
    }

    void Unlock()
    {
        if (m_holes.empty()) {
            return;
        }
        tagFILEHOLE& h = m_holes[Next(unsigned(m_holes.size()))];
        ASSERT_EQ(m_manager.UnlockHole(h.dwOffset & ~kLock), (h.dwOffset & kLock) != 0);
        h.dwOffset &= ~kLock;
    }

    std::mt19937 m_rng;
    EfficientView m_manager;
    std::vector<tagFILEHOLE> m_holes;
    std::map<std::uint32_t, std::int32_t> m_allocated;
    std::uint32_t m_fileLength = 0;
    std::size_t m_most = 0;
};

TEST(EfficientHoleManager, RandomHostAgainstAPlainList)
{
    for (const std::uint32_t seed : {1U, 2U}) {
        HostModel model(seed);
        model.Run(9000);
        EXPECT_GT(model.Most(), 200u) << "the run should cross a block boundary";
        if (HasFailure()) {
            FAIL() << "seed " << seed;
        }
    }
}

} // namespace
