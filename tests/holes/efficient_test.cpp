#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <vector>

#include "holes_model.h"
#include "holes_test_util.h"

namespace {

bool ByOffset(const tagFILEHOLE& a, const tagFILEHOLE& b)
{
    return a.dwOffset < b.dwOffset || (a.dwOffset == b.dwOffset && a.lSize < b.lSize);
}

std::vector<tagFILEHOLE> SortedByOffset(std::vector<tagFILEHOLE> holes)
{
    std::sort(holes.begin(), holes.end(), ByOffset);
    return holes;
}

// A view into the list, for checking every invariant after each call, and whether no two
// unlocked holes touch while the manager says so.
class EfficientView : public holes_model::EfficientView {
public:
    ::testing::AssertionResult Check() const
    {
        const std::string broken = Invariants();
        HOLES_REQUIRE(broken.empty()) << ": " << broken;
        const std::vector<tagFILEHOLE> sorted = m_bOptimized ? SortedByOffset(Holes()) : std::vector<tagFILEHOLE>();
        for (std::size_t i = 1; i < sorted.size(); ++i) {
            const tagFILEHOLE& a = sorted[i - 1];
            HOLES_REQUIRE((sorted[i].dwOffset & kLock) || a.dwOffset + std::uint32_t(a.lSize) != sorted[i].dwOffset)
                << " though optimized: " << a << sorted[i];
        }
        return ::testing::AssertionSuccess();
    }
};

void AddAll(EfficientView& m, const std::vector<tagFILEHOLE>& holes)
{
    for (const tagFILEHOLE& h : holes) {
        ASSERT_TRUE(m.AddHole(h.dwOffset, h.lSize));
    }
}

TEST(EfficientHoleManager, WorkedRun)
{
    EfficientView m;
    AddAll(m, {{1000, 100}, {1100, 50}, {5000, 30}});
    EXPECT_EQ(m.GetHolesSize(), 180u);
    EXPECT_EQ(m.GetBestHole(30), 5000u); // merges the first two, then fits exactly
    EXPECT_EQ(m.GetNumberOfHoles(), 2);
    EXPECT_EQ(m.RemoveHole(5000, 30), nullptr);
    EXPECT_EQ(m.GetHolesSize(), 150u);
    EXPECT_EQ(m.GetBestHole(100), 1000u); // the largest
    const tagFILEHOLE* rest = m.RemoveHole(1000, 100);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(*rest, (tagFILEHOLE{1100, 50}));
    EXPECT_EQ(m.GetHolesSize(), 50u);
    EXPECT_EQ(m.GetTruncateOffset(1150), 1100u);
    EXPECT_EQ(m.GetTruncateOffset(1151), kNone);
    EXPECT_EQ(m.RemoveHole(1100, 0), nullptr);
    EXPECT_TRUE(m.Check()); // the last removal released all memory
}

// What remains after a merge pass, for holes added in every order.
TEST(EfficientHoleManager, MergePassesOverEveryAddingOrder)
{
    const std::uint32_t L = kLock;
    const struct {
        std::vector<tagFILEHOLE> added;
        std::vector<tagFILEHOLE> after;
    } cases[] = {
        {{{100, 50}, {150, 50}, {200, 50}}, {{100, 150}}},
        {{{100, 50}, {150, 50}, {201, 10}, {211, 5}}, {{100, 100}, {201, 15}}},                 // two chains and a gap
        {{{100, 50}, {150, 0}}, {{100, 50}}},                                                   // an empty hole merges
        {{{100, 50}, {300, 0}}, {{100, 50}, {300, 0}}},                                         // kept: nothing merged
        {{{100, 50}, {150 | L, 50}, {200 | L, 50}}, {{100, 50}, {150 | L, 50}, {200 | L, 50}}}, // locked
        {{{100, 50}, {150, 50}, {200 | L, 50}}, {{100, 100}, {200 | L, 50}}},
    };
    for (const auto& c : cases) {
        std::vector<tagFILEHOLE> order = SortedByOffset(c.added);
        do {
            EfficientView m;
            AddAll(m, order);
            m.GetBestHole(1000000);
            EXPECT_EQ(SortedByOffset(m.Holes()), c.after) << c.added.size() << " holes";
            EXPECT_TRUE(m.Check());
        } while (std::next_permutation(order.begin(), order.end(), ByOffset));
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

// Only the start of a hole is a hole; a locked one is found with or without its bit.
TEST(EfficientHoleManager, HolesAreFoundByTheirStart)
{
    EfficientView m;
    AddAll(m, {{100, 50}, {300 | kLock, 20}});
    EXPECT_EQ(m.RemoveHole(120, 10), nullptr);
    EXPECT_FALSE(m.IsHole(120));
    EXPECT_TRUE(m.IsHole(300) && m.IsHole(300 | kLock));
    EXPECT_EQ(m.GetHolesSize(), 70u);
}

TEST(EfficientHoleManager, BlocksAndTableFollowTheCount)
{
    EfficientView m;
    for (std::uint32_t i = 0; i <= 3800; ++i) {
        ASSERT_TRUE(m.AddHole(i * 10, static_cast<long>(i % 7)));
        ASSERT_EQ(m.BlocksHeld(), static_cast<std::int32_t>(i / 200 + 1));
        ASSERT_EQ(m.TableSize(), i < 3800 ? 20 : 40);
    }
    EXPECT_TRUE(m.IsHole(38000)); // sorted across the grown table
    EXPECT_TRUE(m.Check());
    EXPECT_EQ(m.RemoveHole(38000, 0), nullptr);
    EXPECT_EQ(m.BlocksHeld(), 19); // 200 free entries: the block goes at once
    EXPECT_TRUE(m.Check());
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
        ASSERT_TRUE(m.AddHole(static_cast<unsigned long>(i) * 2, 1)) << i;
    }
    EXPECT_FALSE(m.AddHole(1, 1));
    EXPECT_EQ(m.GetNumberOfHoles(), kMost);
    EXPECT_EQ(m.RemoveHole(0, 0), nullptr);
    EXPECT_TRUE(m.AddHole(1, 1));
}

// A host's file, allocated and freed at random through the manager, against a plain list of
// its holes. Every invariant is checked after every call.
class HostModel {
public:
    explicit HostModel(std::uint32_t seed) : m_rng(seed) {}

    std::size_t most = 0; // the most holes held at once

    void Run(int steps)
    {
        for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
            const unsigned op = Next(100);
            if (op < ((step / 3000) % 2 == 0 ? 55U : 25U)) { // the file grows, then shrinks, in turn
                Allocate();
            } else if (op < 80 && !m_used.empty()) { // a block freed, now and then locked
                const auto block = std::next(m_used.begin(), Next(static_cast<unsigned>(m_used.size())));
                m_holes.push_back({block->first | (Next(10) == 0 ? kLock : 0), block->second});
                ASSERT_TRUE(m_manager.AddHole(m_holes.back().dwOffset, m_holes.back().lSize));
                m_used.erase(block);
            } else if (op < 86) {
                Truncate();
            } else if (op < 97 && !m_holes.empty()) {
                tagFILEHOLE& h = Any();
                ASSERT_EQ(m_manager.UnlockHole(h.dwOffset & ~kLock), (h.dwOffset & kLock) != 0);
                h.dwOffset &= ~kLock;
            } else if (op == 97) {
                m_manager.SetHoleFootPrint(static_cast<long>(Next(16)));
            } else if (op == 98) {
                bool locked = false;
                for (tagFILEHOLE& h : m_holes) {
                    locked = locked || (h.dwOffset & kLock) != 0;
                    h.dwOffset &= ~kLock;
                }
                ASSERT_EQ(m_manager.UnlockAllHoles(), locked);
            } else if (op == 99 && Next(20) == 0) {
                m_manager.ClearHoleList(); // the host forgets its holes; the file keeps its length
                m_holes.clear();
            }
            ASSERT_TRUE(m_manager.Check()) << "step " << step;
            ASSERT_EQ(SortedByOffset(m_manager.Holes()), SortedByOffset(m_holes)) << "step " << step;
            most = std::max(most, m_holes.size());
        }
    }

private:
    unsigned Next(unsigned n) { return static_cast<unsigned>(m_rng() % n); }
    tagFILEHOLE& Any() { return m_holes[Next(static_cast<unsigned>(m_holes.size()))]; }
    std::vector<tagFILEHOLE>::iterator Find(std::uint32_t offset)
    {
        return std::find_if(m_holes.begin(), m_holes.end(), [=](const tagFILEHOLE& h) { return h.dwOffset == offset; });
    }

    // The merge pass, on the plain list.
    void Merge()
    {
        std::vector<tagFILEHOLE> merged;
        for (const tagFILEHOLE& h : SortedByOffset(m_holes)) {
            if (!merged.empty() && ((merged.back().dwOffset | h.dwOffset) & kLock) == 0 &&
                merged.back().dwOffset + std::uint32_t(merged.back().lSize) == h.dwOffset) {
                merged.back().lSize += h.lSize;
            } else {
                merged.push_back(h);
            }
        }
        m_holes = merged;
    }

    // An exact fit, else the largest hole if it leaves the foot print, else the end of the file.
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
            ASSERT_FALSE(exact || largest >= size + m_manager.GetHoleFootPrint()) << "request " << size;
            m_used[m_fileLength] = size;
            m_fileLength += static_cast<std::uint32_t>(size);
            return;
        }
        const auto hole = Find(static_cast<std::uint32_t>(answer));
        ASSERT_NE(hole, m_holes.end()) << "answer " << answer << " is no hole";
        ASSERT_EQ(hole->lSize, exact ? size : largest) << "request " << size;
        const tagFILEHOLE* rest = m_manager.RemoveHole(answer, size);
        m_used[hole->dwOffset & ~kLock] = size;
        *hole = {(hole->dwOffset & ~kLock) + static_cast<std::uint32_t>(size), hole->lSize - size};
        ASSERT_EQ(rest == nullptr, hole->lSize == 0);
        if (rest == nullptr) {
            m_holes.erase(hole);
        } else {
            ASSERT_EQ(*rest, *hole);
        }
    }

    void Truncate()
    {
        const unsigned long answer = m_manager.GetTruncateOffset(m_fileLength);
        Merge();
        const auto last = std::max_element(m_holes.begin(), m_holes.end(), ByOffset);
        if (last == m_holes.end() || last->dwOffset + std::uint32_t(last->lSize) != m_fileLength) {
            ASSERT_EQ(answer, kNone);
            return;
        }
        ASSERT_EQ(answer, last->dwOffset);
        ASSERT_EQ(m_manager.RemoveHole(answer, 0), nullptr);
        m_fileLength = last->dwOffset;
        m_holes.erase(last);
    }

    std::mt19937 m_rng;
    EfficientView m_manager;
    std::vector<tagFILEHOLE> m_holes;
    std::map<std::uint32_t, std::int32_t> m_used; // allocated blocks by offset
    std::uint32_t m_fileLength = 0;
};

TEST(EfficientHoleManager, RandomHostAgainstAPlainList)
{
    for (const std::uint32_t seed : {1U, 2U}) {
        HostModel model(seed);
        model.Run(9000);
        EXPECT_GT(model.most, 200u) << "the run should cross a block boundary";
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

struct Destroy {
    void operator()(YXHoleManager* p) const { DestroyHoleManager(&p); }
};
using ManagerPtr = std::unique_ptr<YXHoleManager, Destroy>;

class EveryManager : public ::testing::TestWithParam<unsigned short> {
protected:
    ManagerPtr Make() const { return ManagerPtr(CreateHoleManager(GetParam())); }
    bool Speed() const { return GetParam() == YXHOLEMANAGER_SPEED; }
};

// A new manager, one whose last hole has gone, and a cleared one have no answers; the foot print
// outlives the list.
TEST_P(EveryManager, EmptyManagersHaveNoAnswers)
{
    ManagerPtr m = Make();
    m->SetHoleFootPrint(3);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(m->GetBestHole(0) & m->GetTruncateOffset(0), kNone);
        EXPECT_EQ(m->RemoveHole(0, 0), nullptr);
        EXPECT_FALSE(m->IsHole(0) || m->GetNumberOfHoles() != 0 || m->GetHolesSize() != 0);
        EXPECT_EQ(m->GetHoleFootPrint(), 3);
        ASSERT_TRUE(m->AddHole(100, 10));
        EXPECT_TRUE(round == 0 ? m->RemoveHole(100, 10) == nullptr : m->ClearHoleList());
    }
}

// A hole of 100 under each foot print, set while the hole is held: which requests it takes.
TEST_P(EveryManager, FootPrintRule)
{
    const struct {
        long footPrint;
        long request;
        bool taken;
    } cases[] = {{0, 100, true}, {0, 99, true}, {0, 101, false}, {10, 100, true}, {10, 90, true}, {10, 91, false}};
    ManagerPtr m = Make();
    m->AddHole(4000, 100);
    for (const auto& c : cases) {
        m->SetHoleFootPrint(c.footPrint);
        EXPECT_EQ(m->GetBestHole(c.request), c.taken ? 4000u : kNone)
            << "foot print " << c.footPrint << ", request " << c.request;
    }
}

// Touching holes that end a file of 200: the efficient manager merges them and knows where they
// start; the speed manager keeps two and answers neither question.
TEST_P(EveryManager, WhatEachManagerKnows)
{
    ManagerPtr m = Make();
    m->AddHole(100, 50);
    m->AddHole(150, 50);
    EXPECT_EQ(m->GetBestHole(100), Speed() ? kNone : 100u);
    EXPECT_EQ(m->GetNumberOfHoles(), Speed() ? 2 : 1);
    EXPECT_EQ(m->IsHole(100), !Speed());
    EXPECT_EQ(m->GetTruncateOffset(200), Speed() ? kNone : 100u);
    EXPECT_EQ(m->GetHolesSize(), 100u);
}

// Sizes and sums are 32-bit on every build: the sum wraps, and "none" is 0xFFFFFFFF.
TEST_P(EveryManager, ThirtyTwoBitArithmetic)
{
    ManagerPtr m = Make();
    m->AddHole(0, 0x7FFFFFFF);
    m->AddHole(0x7FFFFFFF, 0x7FFFFFFF);
    m->AddHole(0x40000000, 2);
    EXPECT_EQ(m->GetHolesSize(), 0u);
    m->ClearHoleList();
    m->AddHole(0, 10);
    EXPECT_EQ(m->GetBestHole(11), 0xFFFFFFFFUL);
    // Request plus foot print is a 32-bit sum too: past the top it wraps below every hole.
    m->SetHoleFootPrint(0x7FFFFFFF);
    EXPECT_EQ(m->GetBestHole(2), 0u);
    EXPECT_EQ(m->GetBestHole(0), kNone);
}

INSTANTIATE_TEST_SUITE_P(Holes, EveryManager, ::testing::Values(YXHOLEMANAGER_SPEED, YXHOLEMANAGER_EFFICIENT),
                         [](const ::testing::TestParamInfo<unsigned short>& kind) {
                             return kind.param == YXHOLEMANAGER_SPEED ? "Speed" : "Efficient";
                         });

TEST(HoleManagerCreation, KindsAndDestruction)
{
    EXPECT_EQ(CreateHoleManager(0), nullptr);
    EXPECT_EQ(CreateHoleManager(3), nullptr);
    YXHoleManager* manager = CreateHoleManager(YXHOLEMANAGER_EFFICIENT);
    manager->AddHole(1, 1); // destroyed with its memory
    EXPECT_FALSE(DestroyHoleManager(&manager));
    EXPECT_EQ(manager, nullptr);
    EXPECT_FALSE(DestroyHoleManager(&manager));
}

} // namespace
