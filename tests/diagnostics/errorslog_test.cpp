#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <yxtools/errorslog.h>

namespace {

std::vector<unsigned long> g_counts; // the count seen by each notification

void Record(YXErrorsLogManager& manager)
{
    g_counts.push_back(manager.GetCount());
}

class ErrorsLog : public ::testing::Test {
protected:
    void SetUp() override { g_counts.clear(); }

    // The descriptions from newest to oldest.
    static std::vector<std::string> Descriptions(const YXErrorsLogManager& log)
    {
        std::vector<std::string> out;
        for (unsigned long i = 0; log.GetItem(i) != nullptr; ++i) {
            out.push_back(log.GetItem(i)->GetDescription());
        }
        return out;
    }

    static void AddAll(YXErrorsLogManager& log, std::initializer_list<const char*> descriptions)
    {
        for (const char* d : descriptions) {
            log.Add("src", d, 0);
        }
    }
};

TEST_F(ErrorsLog, FlagsKeepOnlyTheLowestKindBit)
{
    const struct {
        unsigned long given;
        unsigned long stored;
    } cases[] = {
        {0, 0},
        {1, 1},
        {2, 2},
        {3, 1},
        {4, 4},
        {5, 1},
        {6, 2},
        {7, 1},
        {8, 8},
        {15, 9},
        {0xFFFFFFF8, 0xFFFFFFF8},
        {0xFFFFFFFF, 0xFFFFFFF9},
        {0x80000006, 0x80000002},
    };
    for (const auto& c : cases) {
        const YXErrorLogEntry entry("s", "d", c.given);
        EXPECT_EQ(entry.GetFlags(), c.stored) << "flags " << c.given;
    }
}

TEST_F(ErrorsLog, CopiesTakeTheFlagsWordAsItStands)
{
    YXErrorLogEntry entry("s", "d", 7);
    const YXErrorLogEntry copy(entry);
    EXPECT_EQ(copy.GetFlags(), 1u);
    EXPECT_EQ(copy.GetSource(), "s");
    YXErrorLogEntry other("x", "y", 2);
    other = entry;
    EXPECT_EQ(other.GetFlags(), 1u);
    EXPECT_EQ(other.GetDescription(), "d");
}

TEST_F(ErrorsLog, SixthEntryEvictsTheOldest)
{
    YXErrorsLogManager log;
    AddAll(log, {"1", "2", "3", "4", "5", "6"});
    EXPECT_EQ(log.GetCount(), 5u);
    EXPECT_EQ(Descriptions(log), (std::vector<std::string>{"6", "5", "4", "3", "2"}));
    EXPECT_EQ(log.GetItem(5), nullptr);
    EXPECT_EQ(log.GetLast(), log.GetItem(0));
}

TEST_F(ErrorsLog, OnlyARepeatOfTheNewestIsDropped)
{
    YXErrorsLogManager log;
    log.SetOnChangeProc(Record);
    EXPECT_TRUE(log.Add("a", "b", 1));
    EXPECT_FALSE(log.Add("a", "b", 2)); // flags play no part
    EXPECT_EQ(log.GetCount(), 1u);
    EXPECT_EQ(log.GetLast()->GetFlags(), 1u);
    EXPECT_TRUE(log.Add("a", "c", 0)); // other description
    EXPECT_TRUE(log.Add("x", "c", 0)); // other source
    EXPECT_TRUE(log.Add("a", "b", 0)); // A, B, A: only the newest is compared
    EXPECT_TRUE(log.Add("A", "b", 0)); // case counts
    EXPECT_EQ(log.GetCount(), 5u);
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{1, 2, 3, 4, 5}));
}

TEST_F(ErrorsLog, ARepeatOnAFullLogEvictsNothing)
{
    YXErrorsLogManager log(2);
    AddAll(log, {"1", "2"});
    EXPECT_FALSE(log.Add("src", "2", 0));
    EXPECT_EQ(Descriptions(log), (std::vector<std::string>{"2", "1"}));
}

TEST_F(ErrorsLog, EmptyTextsAreValid)
{
    YXErrorsLogManager log;
    EXPECT_TRUE(log.Add("", "", 0));
    EXPECT_FALSE(log.Add("", "", 0));
}

TEST_F(ErrorsLog, MaximumOfOneKeepsTheNewest)
{
    YXErrorsLogManager log(1);
    log.SetOnChangeProc(Record);
    for (const char* d : {"1", "2", "3"}) {
        EXPECT_TRUE(log.Add("s", d, 0));
        EXPECT_EQ(log.GetCount(), 1u);
        EXPECT_EQ(log.GetLast()->GetDescription(), d);
    }
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{1, 1, 1})); // one call per Add, eviction included
}

TEST_F(ErrorsLog, ConstructedWithMaximumZeroBehavesAsMaximumOne)
{
    YXErrorsLogManager log(0);
    EXPECT_TRUE(log.Add("s", "1", 0));
    EXPECT_TRUE(log.Add("s", "2", 0));
    EXPECT_EQ(Descriptions(log), (std::vector<std::string>{"2"}));
}

TEST_F(ErrorsLog, SetMaxEntriesEvictsSilentlyAndIgnoresZero)
{
    YXErrorsLogManager log;
    AddAll(log, {"1", "2", "3", "4", "5"});
    log.SetOnChangeProc(Record);
    log.SetMaxEntries(0);
    EXPECT_EQ(log.GetCount(), 5u);
    log.SetMaxEntries(2);
    EXPECT_EQ(Descriptions(log), (std::vector<std::string>{"5", "4"}));
    EXPECT_TRUE(g_counts.empty());
    log.Add("src", "6", 0); // the new maximum holds
    EXPECT_EQ(Descriptions(log), (std::vector<std::string>{"6", "5"}));
    log.SetMaxEntries(0x100000002ULL & 0xFFFFFFFFUL); // 32-bit word: 2
    EXPECT_EQ(log.GetCount(), 2u);
}

TEST_F(ErrorsLog, ClearAlwaysNotifies)
{
    YXErrorsLogManager log;
    log.SetOnChangeProc(Record);
    log.Clear();
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{0}));
    log.Add("s", "d", 0);
    log.Clear();
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{0, 1, 0}));
    log.SetOnChangeProc(nullptr);
    log.Clear();
    EXPECT_EQ(g_counts.size(), 3u);
}

TEST_F(ErrorsLog, CopiesAreDeepAndKeepTheProcedure)
{
    YXErrorsLogManager log(3);
    log.SetOnChangeProc(Record);
    AddAll(log, {"1", "2"});
    g_counts.clear();

    YXErrorsLogManager copy(log);
    EXPECT_TRUE(g_counts.empty()); // copying does not notify
    copy.Clear();
    EXPECT_EQ(g_counts, (std::vector<unsigned long>{0}));
    EXPECT_EQ(log.GetCount(), 2u);

    YXErrorsLogManager assigned;
    assigned = log;
    AddAll(assigned, {"3", "4"}); // the maximum of 3 came along
    EXPECT_EQ(Descriptions(assigned), (std::vector<std::string>{"4", "3", "2"}));
    EXPECT_EQ(Descriptions(log), (std::vector<std::string>{"2", "1"}));

    const YXErrorsLogManager& self = assigned;
    assigned = self;
    EXPECT_EQ(assigned.GetCount(), 3u);
}

TEST_F(ErrorsLog, LogFileNameIsNotKept)
{
    YXErrorsLogManager log;
    log.SetLogFileName("errors.log");
    EXPECT_TRUE(log.GetLogFilePath().empty());
    _SS<char> path("before");
    YXErrorsLog_GetFilePath(path, &log);
    EXPECT_TRUE(path.empty());
}

TEST_F(ErrorsLog, FlatReadersLeaveOutputsAloneOnFalse)
{
    YXErrorsLogManager log;
    _SS<char> source("keep-source");
    _SS<char> description("keep-description");
    unsigned long flags = 77;
    EXPECT_FALSE(YXErrorsLog_GetLast(source, description, &flags, &log));
    EXPECT_FALSE(YXErrorsLog_GetItemAt(0, source, description, &flags, &log));
    EXPECT_EQ(source, "keep-source");
    EXPECT_EQ(description, "keep-description");
    EXPECT_EQ(flags, 77u);

    YXErrorsLog_Add("s1", "d1", 2, &log);
    YXErrorsLog_Add("s2", "d2", 4, &log);
    EXPECT_TRUE(YXErrorsLog_GetItemAt(1, source, description, nullptr, &log));
    EXPECT_EQ(source, "s1");
    EXPECT_EQ(description, "d1");
    EXPECT_TRUE(YXErrorsLog_GetLast(source, description, &flags, &log));
    EXPECT_EQ(source, "s2");
    EXPECT_EQ(flags, 4u);
    EXPECT_FALSE(YXErrorsLog_GetItemAt(2, source, description, &flags, &log));
}

TEST_F(ErrorsLog, NullManagerMeansTheDefaultLog)
{
    YXErrorsLogManager& defaultLog = YXErrorsLog_GetDefault();
    YXErrorsLog_Clear(nullptr);
    YXErrorsLog_SetOnChangeProc(Record, nullptr);
    EXPECT_TRUE(YXErrorsLog_Add("s", "d", 3, nullptr));
    EXPECT_EQ(defaultLog.GetCount(), 1u);
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 1u);
    YXErrorsLog_SetMaxEntries(1, nullptr);
    YXErrorsLog_Add("s", "e", 0, nullptr);
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 1u);
    EXPECT_EQ(g_counts.size(), 2u); // one per Add; the clear came before the procedure was set
    YXErrorsLog_SetOnChangeProc(nullptr, nullptr);
    YXErrorsLog_SetMaxEntries(5, nullptr);
    YXErrorsLog_Clear(nullptr);
}

} // namespace
