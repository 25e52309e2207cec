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
    // The same list, counters, memory and state as the model.
    ::testing::AssertionResult Matches(const holes_model::EfficientModel& model) const
    {
        const std::string broken = Against(model);
        HOLES_REQUIRE(broken.empty()) << ": " << broken;
        return Check();
    }

    ::testing::AssertionResult Check() const
    {
        const std::string broken = Invariants();
        HOLES_REQUIRE(broken.empty()) << ": " << broken;
        const std::vector<tagFILEHOLE> holes = Holes();
        for (std::size_t i = 1; i < holes.size(); ++i) {
            HOLES_REQUIRE(m_wSortKey != YXHOLESORT_OFFSET || holes[i - 1].dwOffset <= holes[i].dwOffset)
                << " " << holes[i - 1] << holes[i];
        }
        const std::vector<tagFILEHOLE> sorted = m_bOptimized ? SortedByOffset(holes) : std::vector<tagFILEHOLE>();
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
            holes_model::EfficientModel ref;
            for (const tagFILEHOLE& h : order) {
                ref.AddHole(h.dwOffset, h.lSize);
            }
            EXPECT_EQ(m.GetBestHole(1000000), ref.GetBestHole(1000000));
            EXPECT_EQ(SortedByOffset(m.Holes()), c.after) << c.added.size() << " holes";
            EXPECT_TRUE(m.Matches(ref)) << c.added.size() << " holes"; // and in the same places
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

// A merge pass can leave no hole at all: the questions that run it then answer as on an empty
// list, and the manager holds no memory.
TEST(EfficientHoleManager, QuestionsAfterAMergeThatLeavesNoHole)
{
    const struct {
        const char* question;
        unsigned long (*ask)(EfficientView&);
    } questions[] = {
        {"GetBestHole(5)", [](EfficientView& m) { return m.GetBestHole(5); }},
        {"GetBestHole(0)", [](EfficientView& m) { return m.GetBestHole(0); }},
        {"GetTruncateOffset(100)", [](EfficientView& m) { return m.GetTruncateOffset(100); }},
    };
    for (const auto& q : questions) {
        EfficientView m;
        AddAll(m, {{100, 0}, {100, 0}});
        EXPECT_EQ(q.ask(m), kNone) << q.question;
        EXPECT_EQ(m.GetNumberOfHoles(), 0) << q.question;
        EXPECT_EQ(m.TableSize(), 0) << q.question;
        EXPECT_TRUE(m.Check()) << q.question;
        EXPECT_TRUE(m.AddHole(7, 3));
        EXPECT_EQ(m.GetBestHole(3), 7u) << q.question;
    }
}

// A partial removal of more than a hole holds moves its start past bit 31 in place, while the
// offset order is still taken to hold: UnlockAllHoles clears the bit there too.
TEST(EfficientHoleManager, UnlockAllHolesReachesEveryLockedHole)
{
    EfficientView m;
    AddAll(m, {{100, 50}, {1000, 50}});
    ASSERT_TRUE(m.IsHole(100)); // offset order
    const tagFILEHOLE* rest = m.RemoveHole(100, 0x7FFFFFF0L);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(rest->dwOffset, 0x80000054u);
    EXPECT_TRUE(m.UnlockAllHoles());
    EXPECT_EQ(m.Holes(), (std::vector<tagFILEHOLE>{{0x54, 50 - 0x7FFFFFF0}, {1000, 50}}));
    EXPECT_FALSE(m.UnlockAllHoles());
    EXPECT_TRUE(m.Check());
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

// A hole at X and a locked hole at X | bit 31: the number as given is looked up first, so each
// is reached by its own number, whole or in part.
TEST(EfficientHoleManager, RemoveHoleBesideItsLockedTwin)
{
    const struct {
        std::uint32_t offset;
        std::int32_t size;
        tagFILEHOLE record; // {0, 0} for null
        std::vector<tagFILEHOLE> after;
    } cases[] = {
        {100, 0, {0, 0}, {{100 | kLock, 20}}},
        {100 | kLock, 0, {0, 0}, {{100, 10}}},
        {100, 4, {104, 6}, {{104, 6}, {100 | kLock, 20}}},
        {100 | kLock, 5, {105, 15}, {{100, 10}, {105, 15}}},
    };
    for (const auto& c : cases) {
        EfficientView m;
        AddAll(m, {{100 | kLock, 20}, {100, 10}});
        const tagFILEHOLE* record = m.RemoveHole(c.offset, c.size);
        EXPECT_EQ((record != nullptr ? *record : tagFILEHOLE{0, 0}), c.record) << c.offset << " " << c.size;
        EXPECT_EQ(SortedByOffset(m.Holes()), c.after) << c.offset << " " << c.size;
        EXPECT_TRUE(m.Check());
    }
}

// A merge pass that frees several blocks' worth of entries releases every surplus block.
TEST(EfficientHoleManager, MergeReleasesEverySurplusBlock)
{
    for (const std::uint32_t count : {400u, 401u, 1000u}) {
        EfficientView m;
        for (std::uint32_t i = 0; i + 1 < count; ++i) {
            ASSERT_TRUE(m.AddHole(i * 10, 10)); // one chain
        }
        ASSERT_TRUE(m.AddHole(count * 10 + 5, 10)); // and a hole apart
        EXPECT_EQ(m.GetBestHole(10), count * 10 + 5);
        EXPECT_EQ(m.GetNumberOfHoles(), 2);
        EXPECT_EQ(m.BlocksHeld(), 1) << count;
        EXPECT_TRUE(m.Check());
    }
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

// A host's file, allocated and freed at random through the manager and through the model side
// by side: every answer, every record handed out and the whole list, in order, must be
// the same after each call. Sizes from a narrow range make many equal holes, so the sort's steps
// and the search's probes decide which of them is met, on lists of several blocks.
class HostModel {
public:
    HostModel(std::uint32_t seed, unsigned sizes) : m_rng(seed), m_sizes(sizes) {}

    std::size_t most = 0; // the most holes held at once

    void Run(int steps)
    {
        for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
            const unsigned op = Next(100);
            if (op < ((step / 3000) % 2 == 0 ? 55U : 25U)) { // the file grows, then shrinks, in turn
                Allocate();
            } else if (op < 78 && !m_used.empty()) { // a block freed, now and then locked
                const auto block = std::next(m_used.begin(), Next(static_cast<unsigned>(m_used.size())));
                const std::uint32_t offset = block->first | (Next(10) == 0 ? kLock : 0);
                ASSERT_TRUE(m_manager.AddHole(offset, block->second));
                m_ref.AddHole(offset, block->second);
                m_used.erase(block);
            } else if (op < 84) {
                Truncate();
            } else if (op < 88 && !m_ref.list.empty()) { // part of a hole, or all of it, taken back
                const tagFILEHOLE h = Any();
                const auto size = static_cast<std::int32_t>(Next(static_cast<unsigned>(h.lSize) + 1));
                const std::uint32_t offset = Next(2) == 0 ? h.dwOffset : h.dwOffset & ~kLock;
                ASSERT_EQ(m_manager.IndexOf(m_manager.RemoveHole(offset, size)), m_ref.RemoveHole(offset, size));
                m_used[h.dwOffset & ~kLock] = size == 0 ? h.lSize : size;
            } else if (op < 91) {
                const std::uint32_t offset =
                    m_ref.list.empty() || Next(2) == 0 ? Next(m_fileLength + 1) : Any().dwOffset;
                ASSERT_EQ(m_manager.IsHole(offset), m_ref.IsHole(offset)) << offset;
            } else if (op < 93) {
                const auto key = static_cast<unsigned short>(Next(5));
                m_manager.SortHoles(key);
                m_ref.SortHoles(key);
            } else if (op < 96 && !m_ref.list.empty()) {
                const std::uint32_t offset = Any().dwOffset & ~kLock;
                ASSERT_EQ(m_manager.UnlockHole(offset), m_ref.UnlockHole(offset));
            } else if (op == 97) {
                const auto footPrint = static_cast<std::int32_t>(Next(16));
                m_manager.SetHoleFootPrint(footPrint);
                m_ref.footPrint = footPrint;
            } else if (op == 98) {
                ASSERT_EQ(m_manager.UnlockAllHoles(), m_ref.UnlockAllHoles());
            } else if (op == 99 && Next(20) == 0) {
                m_manager.ClearHoleList(); // the host forgets its holes; the file keeps its length
                m_ref.ClearHoleList();
            }
            ASSERT_TRUE(m_manager.Matches(m_ref)) << "step " << step;
            most = std::max(most, m_ref.list.size());
        }
    }

private:
    unsigned Next(unsigned n) { return static_cast<unsigned>(m_rng() % n); }
    const tagFILEHOLE& Any() { return m_ref.list[Next(static_cast<unsigned>(m_ref.list.size()))]; }

    void Allocate()
    {
        const auto size = static_cast<std::int32_t>(1 + Next(Next(4) == 0 ? 400 : m_sizes));
        const unsigned long answer = m_manager.GetBestHole(size);
        ASSERT_EQ(answer, m_ref.GetBestHole(size)) << "request " << size;
        if (answer == kNone) {
            m_used[m_fileLength] = size;
            m_fileLength += static_cast<std::uint32_t>(size);
            return;
        }
        const auto offset = static_cast<std::uint32_t>(answer);
        ASSERT_EQ(m_manager.IndexOf(m_manager.RemoveHole(offset, size)), m_ref.RemoveHole(offset, size));
        m_used[offset & ~kLock] = size;
    }

    void Truncate()
    {
        const unsigned long answer = m_manager.GetTruncateOffset(m_fileLength);
        ASSERT_EQ(answer, m_ref.GetTruncateOffset(m_fileLength));
        if (answer != kNone) {
            ASSERT_EQ(m_manager.RemoveHole(answer, 0), nullptr);
            ASSERT_EQ(m_ref.RemoveHole(static_cast<std::uint32_t>(answer), 0), -1);
            m_fileLength = static_cast<std::uint32_t>(answer);
        }
    }

    std::mt19937 m_rng;
    unsigned m_sizes;
    EfficientView m_manager;
    holes_model::EfficientModel m_ref;
    std::map<std::uint32_t, std::int32_t> m_used; // allocated blocks by offset
    std::uint32_t m_fileLength = 0;
};

TEST(EfficientHoleManager, RandomHostAgainstTheModel)
{
    const struct {
        std::uint32_t seed;
        unsigned sizes;
    } runs[] = {{1, 40}, {2, 40}, {3, 4}, {4, 2}};
    for (const auto& run : runs) {
        HostModel model(run.seed, run.sizes);
        model.Run(9000);
        EXPECT_GT(model.most, 200u) << "the run should cross a block boundary";
        ASSERT_FALSE(HasFailure()) << "seed " << run.seed;
    }
}

// Lists of equal holes across blocks: the hole an exact fit meets is the one the sort's steps and
// the search's probes lead to.
TEST(EfficientHoleManager, AmongEqualHolesAcrossBlocks)
{
    for (const std::uint32_t count : {201u, 399u, 400u, 401u, 1000u}) {
        for (const std::uint32_t kinds : {1u, 3u}) {
            EfficientView m;
            holes_model::EfficientModel ref;
            for (std::uint32_t i = 0; i < count; ++i) {
                const std::uint32_t offset = (i * 7919U) % count * 10U; // apart, out of order
                const auto size = static_cast<std::int32_t>(1 + i % kinds);
                ASSERT_TRUE(m.AddHole(offset, size));
                ref.AddHole(offset, size);
            }
            for (const std::int32_t size : {1, 2, 3, 1}) {
                ASSERT_EQ(m.GetBestHole(size), ref.GetBestHole(size)) << count << " holes, size " << size;
                const auto offset = static_cast<std::uint32_t>(ref.GetBestHole(size));
                ASSERT_EQ(m.IndexOf(m.RemoveHole(offset, 1)), ref.RemoveHole(offset, 1));
                ASSERT_TRUE(m.Matches(ref)) << count << " holes, size " << size;
            }
        }
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
