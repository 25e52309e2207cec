#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include <yxtools/errorslog.h>

namespace {

std::vector<unsigned long> g_counts; // the count seen by each notification

void Record(YXErrorsLogManager& manager)
{
    g_counts.push_back(manager.GetCount());
}

// The descriptions from newest to oldest.
std::vector<std::string> Descriptions(const YXErrorsLogManager& log)
{
    std::vector<std::string> out;
    for (unsigned long i = 0; log.GetItem(i) != nullptr; ++i) {
        out.push_back(log.GetItem(i)->GetDescription());
    }
    return out;
}

using Texts = std::vector<std::string>;

void AddAll(YXErrorsLogManager& log, const Texts& descriptions)
{
    for (const std::string& d : descriptions) {
        log.Add("src", d, 0);
    }
}

class ErrorsLog : public ::testing::Test {
protected:
    void SetUp() override { g_counts.clear(); }
};

TEST_F(ErrorsLog, FlagsKeepOnlyTheLowestKindBit)
{
    // Every pattern of the three kind bits, and the upper bits kept as they are.
    const unsigned long given[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 15, 0xFFFFFFF8, 0xFFFFFFFF, 0x80000006};
    const unsigned long stored[] = {0, 1, 2, 1, 4, 1, 2, 1, 8, 9, 0xFFFFFFF8, 0xFFFFFFF9, 0x80000002};
    for (std::size_t i = 0; i < std::size(given); ++i) {
        EXPECT_EQ(YXErrorLogEntry("s", "d", given[i]).GetFlags(), stored[i]) << "flags " << given[i];
    }
}

TEST_F(ErrorsLog, SixthEntryEvictsTheOldest)
{
    YXErrorsLogManager log;
    AddAll(log, {"1", "2", "3", "4", "5", "6"});
    EXPECT_EQ(log.GetCount(), 5u);
    EXPECT_EQ(Descriptions(log), (Texts{"6", "5", "4", "3", "2"}));
    EXPECT_EQ(log.GetItem(5), nullptr);
    EXPECT_EQ(log.GetLast(), log.GetItem(0));
}

TEST_F(ErrorsLog, OnlyARepeatOfTheNewestIsDropped)
{
    YXErrorsLogManager log;
    log.SetOnChangeProc(Record);
    EXPECT_TRUE(log.Add("a", "b", 1));
    EXPECT_FALSE(log.Add("a", "b", 2)); // flags play no part
    EXPECT_EQ(log.GetLast()->GetFlags(), 1u);
    EXPECT_TRUE(log.Add("a", "c", 0)); // other description
    EXPECT_TRUE(log.Add("x", "c", 0)); // other source
    EXPECT_TRUE(log.Add("a", "b", 0)); // A, B, A: only the newest is compared
    EXPECT_TRUE(log.Add("A", "b", 0)); // case counts
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{1, 2, 3, 4, 5}));
    EXPECT_TRUE(log.Add("", "", 0)); // empty texts are valid
    EXPECT_FALSE(log.Add("", "", 0));

    YXErrorsLogManager full(2); // a repeat on a full log evicts nothing
    AddAll(full, {"1", "2", "2"});
    EXPECT_EQ(Descriptions(full), (Texts{"2", "1"}));
}

// A log made with a maximum of 0 behaves as one of maximum 1.
TEST_F(ErrorsLog, MaximumOfOneOrZeroKeepsTheNewest)
{
    for (const unsigned long maximum : {1ul, 0ul}) {
        g_counts.clear();
        YXErrorsLogManager log(maximum);
        log.SetOnChangeProc(Record);
        for (const char* d : {"1", "2", "3"}) {
            EXPECT_TRUE(log.Add("s", d, 0));
            EXPECT_EQ(Descriptions(log), Texts{d});
        }
        EXPECT_EQ(g_counts, (std::vector<unsigned long>{1, 1, 1})); // one call per Add, eviction included
    }
}

TEST_F(ErrorsLog, SetMaxEntriesEvictsSilentlyAndClearAlwaysNotifies)
{
    YXErrorsLogManager log;
    AddAll(log, {"1", "2", "3", "4", "5"});
    log.SetOnChangeProc(Record);
    log.SetMaxEntries(0);
    EXPECT_EQ(log.GetCount(), 5u);
    log.SetMaxEntries(2);
    EXPECT_EQ(Descriptions(log), (Texts{"5", "4"}));
    EXPECT_TRUE(g_counts.empty());
    log.Add("src", "6", 0); // the new maximum holds
    EXPECT_EQ(Descriptions(log), (Texts{"6", "5"}));
    log.Clear(); // notifies always, also on an empty log
    log.Clear();
    log.SetOnChangeProc(nullptr);
    log.Clear();
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{2, 0, 0}));
}

TEST_F(ErrorsLog, CopiesAreDeepAndKeepTheProcedure)
{
    YXErrorsLogManager log(3);
    log.SetOnChangeProc(Record);
    AddAll(log, {"1", "2"});
    g_counts.clear();
    YXErrorsLogManager copy(log);
    copy.Clear();
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{0})); // copying does not notify, clearing the copy does
    EXPECT_EQ(log.GetCount(), 2u);

    YXErrorsLogManager assigned;
    assigned = log;
    g_counts.clear();
    AddAll(assigned, {"3", "4"}); // the maximum of 3 and the procedure came along
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{3, 3}));
    EXPECT_EQ(Descriptions(assigned), (Texts{"4", "3", "2"}));
    EXPECT_EQ(Descriptions(log), (Texts{"2", "1"}));
    const YXErrorsLogManager& self = assigned;
    assigned = self;
    EXPECT_EQ(assigned.GetCount(), 3u);
}

// A host that copies the oldest entry's texts into a new entry on a full log: the texts are read
// before that entry is evicted. Long texts live on the heap, where a freed block is reused at once.
TEST_F(ErrorsLog, FullLogTakesTheTextsOfTheEntryItEvicts)
{
    const std::string source(100, 's');
    const std::string description(300, 'd');
    YXErrorsLogManager log(2);
    log.Add(source, description, 0);
    log.Add("newer", "entry", 0);
    for (int round = 0; round < 3; ++round) {
        const YXErrorLogEntry* oldest = log.GetItem(1);
        ASSERT_TRUE(log.Add(oldest->GetSource(), oldest->GetDescription(), 4));
        EXPECT_EQ(log.GetCount(), 2u);
        EXPECT_EQ(std::string(log.GetLast()->GetSource()), round % 2 == 0 ? source : "newer");
        EXPECT_EQ(std::string(log.GetLast()->GetDescription()), round % 2 == 0 ? description : "entry");
    }
}

// The maximum is 32 bits wide on both builds, as on Windows: where unsigned long is wider, a
// maximum is cut to its low 32 bits, so 2^32 is a maximum of 0 and 2^32 + 2 one of 2.
TEST_F(ErrorsLog, MaximumIsThirtyTwoBitsWide)
{
    // 2^32 where unsigned long has 64 bits; 1 where it has 32.
    const unsigned long wide = (~0UL >> 31 >> 1) + 1;
    if (wide == 1) {
        GTEST_SKIP() << "unsigned long is 32 bits wide here: no wider maximum can be passed";
    }
    YXErrorsLogManager log(wide + 2);
    AddAll(log, {"1", "2", "3"});
    EXPECT_EQ(Descriptions(log), (Texts{"3", "2"}));
    log.SetMaxEntries(wide); // a maximum of 0: ignored
    AddAll(log, {"4"});
    EXPECT_EQ(Descriptions(log), (Texts{"4", "3"}));
    log.SetMaxEntries(wide + 1);
    EXPECT_EQ(Descriptions(log), (Texts{"4"}));
    YXErrorsLogManager zero(wide); // as a maximum of 0, which keeps one entry
    AddAll(zero, {"1", "2"});
    EXPECT_EQ(Descriptions(zero), (Texts{"2"}));
}

TEST_F(ErrorsLog, FlatReadersLeaveOutputsAloneOnFalse)
{
    YXErrorsLogManager log;
    _SS<char> source("keep");
    _SS<char> description("keep");
    unsigned long flags = 77;
    EXPECT_FALSE(YXErrorsLog_GetLast(source, description, &flags, &log));
    EXPECT_FALSE(YXErrorsLog_GetItemAt(0, source, description, &flags, &log));
    EXPECT_EQ(source + description, "keepkeep");
    EXPECT_EQ(flags, 77u);

    YXErrorsLog_Add("s1", "d1", 2, &log);
    YXErrorsLog_Add("s2", "d2", 4, &log);
    EXPECT_TRUE(YXErrorsLog_GetItemAt(1, source, description, nullptr, &log));
    EXPECT_EQ(source + description, "s1d1");
    EXPECT_TRUE(YXErrorsLog_GetLast(source, description, &flags, &log));
    EXPECT_EQ(source + description, "s2d2");
    EXPECT_EQ(flags, 4u);
    EXPECT_FALSE(YXErrorsLog_GetItemAt(2, source, description, &flags, &log));
}

TEST_F(ErrorsLog, NullManagerMeansTheDefaultLog)
{
    YXErrorsLog_Clear(nullptr);
    YXErrorsLog_SetOnChangeProc(Record, nullptr);
    EXPECT_TRUE(YXErrorsLog_Add("s", "d", 3, nullptr));
    EXPECT_EQ(YXErrorsLog_GetDefault().GetCount(), 1u);
    YXErrorsLog_SetMaxEntries(1, nullptr);
    YXErrorsLog_Add("s", "e", 0, nullptr);
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 1u);
    EXPECT_EQ(g_counts.size(), 2u); // one per Add; the clear came before the procedure was set
}

} // namespace
