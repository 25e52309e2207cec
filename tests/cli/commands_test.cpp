// Every command run as a process: a usage error (status 2, the argument named), --help, and one
// success as text and as JSON, --json given before and after the command.
#include <gtest/gtest.h>

#include <yxtools/yxtools.h>

#include <string>
#include <vector>

#include "run_command.h"
#include "support/scratch.h"

namespace {

using Args = std::vector<std::string>;
using nlohmann::ordered_json;

struct CommandCase {
    const char* command;
    Args usage;        // a usage error...
    const char* named; // ...whose message names this argument
    Args success;
    const char* text;    // a line of the text output holds this
    const char* pointer; // a JSON pointer into the --json output...
    ordered_json value;  // ...and what it holds there
};

// The folder placeholder "@" in an argument stands for the test's scratch folder.
Args Place(const Args& args, const scratch::Folder& folder)
{
    Args placed;
    for (const std::string& arg : args) {
        placed.push_back(arg == "@" ? folder.Root() : arg);
    }
    return placed;
}

const CommandCase kCases[] = {
    {"date",
     {"date", "2000-13-01"},
     "VALUE",
     {"date", "2000-02-29"},
     "2000-02-29 is day 152443; day 152443 is "
     "2000-02-29",
     "/conversions/0/dayNumber",
     152443},
    {"date",
     {"date", "compare", "2000-01-01", "2000-01-02", "0x100000000"},
     "FLAGS",
     {"date", "compare", "2000-01-01T10:00:00", "2000-01-01T09:00:00"},
     "flags 0: 0x",
     "/bits/1",
     "the time of the first is later"},
    {"errlog",
     {"errlog", "max", "many"},
     "N",
     {"errlog", "add", "disk", "full", "show"},
     "[0] disk: full",
     "/entries/0/description",
     "full"},
    {"file",
     {"file", "probe", "a.txt", "0x100000000"},
     "MODE",
     {"file", "ext", "C:\\d\\a.txt", ".doc"},
     "C:\\d\\a.doc",
     "/path",
     "C:\\d\\a.doc"},
    {"find", {"find", "@"}, "PATTERN", {"find", "@", "*.txt"}, "only.txt", "/count", 1},
    {"mem",
     {"mem", "bits"},
     "RANGE",
     {"mem", "bits", "40", "set", "3", "set", "39"},
     "bits set within the range: 3 39",
     "/words",
     ordered_json::array({8, 128})},
    {"mem",
     {"mem", "pool", "get", "ten"},
     "get",
     {"mem", "pool", "get", "10", "release", "1", "get", "5"},
     "get 5 -> buffer #1 (reused), capacity 10, size 5",
     "/steps/2/reused",
     true},
    {"path",
     {"path", "split"},
     "PATH",
     {"path", "split", "C:\\data\\map.txt"},
     "name:      \"map\"",
     "/directory",
     "\\data\\"},
    {"holes",
     {"holes", "simulate", "--max-size", "0"},
     "--max-size",
     {"holes", "add", "0", "10", "best", "4"},
     "best 4: offset 0",
     "/steps/1/offset",
     0},
    {"demo",
     {"demo", "extra"},
     "extra",
     {"demo"},
     "7. The process ends",
     "/steps/0/step",
     "1. The library is loaded: its load hook ran the initialisation sequence."},
    {"unc",
     {"unc"},
     "PATH",
     {"unc", "\\\\server\\share\\a.txt"},
     "route: already a UNC path",
     "/result",
     "\\\\server\\share\\a.txt"},
    {"drives",
     {"drives", "--frob"},
     "--frob",
     {"drives"},
     "shares (NetShareEnum status",
     "/drives/0/letter",
     nullptr}, // the letters are the platform's: checked in unc_command_test.cpp
    {"version",
     {"version", "--frob"},
     "--frob",
     {"version"},
     "YXTools " YXTOOLS_VERSION_STRING,
     "/version",
     YXTOOLS_VERSION_STRING},
    {"help",
     {"help", "nosuch"},
     "COMMAND",
     {"help", "path"},
     "Usage: yxtools path",
     "/help",
     nullptr}, // the help's text is checked below
};

class Commands : public testing::TestWithParam<CommandCase> {
protected:
    scratch::Folder m_folder;
    cli_test::Environment m_env{{"LC_ALL", "C"}};

    void SetUp() override { m_folder.Write("only.txt", "x"); }
};

TEST_P(Commands, UsageErrorNamesTheArgument)
{
    const cli_test::Outcome run = cli_test::Run(Place(GetParam().usage, m_folder), m_env);
    EXPECT_EQ(run.status, 2) << run.out << run.err;
    EXPECT_NE(run.err.find(GetParam().named), std::string::npos) << run.err;
}

TEST_P(Commands, HelpAtTheCommandsLevel)
{
    Args args = GetParam().success;
    args.resize(std::string(GetParam().command) == "date" && args[1] == "compare" ? 2 : 1);
    args.emplace_back("--help");
    const cli_test::Outcome run = cli_test::Run(args, m_env);
    EXPECT_EQ(run.status, 0) << run.err;
    std::string usage = "Usage: yxtools";
    for (std::size_t i = 0; i + 1 < args.size(); ++i) {
        usage += " " + args[i];
    }
    EXPECT_NE(run.out.find(usage), std::string::npos) << run.out;
}

TEST_P(Commands, SucceedsInTextAndInJson)
{
    const Args args = Place(GetParam().success, m_folder);
    const cli_test::Outcome text = cli_test::Run(args, m_env);
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find(GetParam().text), std::string::npos) << text.out;

    Args before{"--json"};
    before.insert(before.end(), args.begin(), args.end());
    Args after = args;
    after.emplace_back("--json");
    for (const Args& json : {before, after}) {
        const cli_test::Outcome run = cli_test::Run(json, m_env);
        EXPECT_EQ(run.status, 0) << run.err;
        const ordered_json document = run.Json();
        const ordered_json::json_pointer pointer(GetParam().pointer);
        ASSERT_TRUE(document.contains(pointer)) << document.dump();
        if (GetParam().value.is_null() && std::string(GetParam().command) == "drives") {
            EXPECT_TRUE(document[pointer].is_string()) << document.dump();
        } else if (GetParam().value.is_null()) {
            EXPECT_NE(document[pointer].get<std::string>().find("Usage: yxtools path"), std::string::npos);
        } else {
            EXPECT_EQ(document[pointer], GetParam().value) << document.dump();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EachCommand, Commands, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<CommandCase>& param) {
                             return std::string(param.param.command) + std::to_string(param.index);
                         });

// The statuses the README states: 0 done, 1 the library said no, 2 usage; JSON is written for 1 too.
TEST(Statuses, NoFromTheLibraryIsOneAndStillAnswersInJson)
{
    const scratch::Folder folder;
    const cli_test::Outcome run = cli_test::Run({"--json", "file", "mode", folder["absent.txt"]}, {{"LC_ALL", "C"}});
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_EQ(run.Json()["exists"], false);
}

TEST(Statuses, NoCommandShowsTheHelpAsAUsageError)
{
    const cli_test::Outcome run = cli_test::Run({}, {{"LC_ALL", "C"}});
    EXPECT_EQ(run.status, 2);
    for (const char* command : {"date", "demo", "errlog", "file", "find", "help", "holes", "mem", "path", "version"}) {
        EXPECT_NE(run.out.find(std::string("  ") + command + " "), std::string::npos) << command;
    }
}

TEST(Statuses, UnknownCommandIsAUsageError)
{
    const cli_test::Outcome run = cli_test::Run({"frobnicate"}, {{"LC_ALL", "C"}});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("frobnicate"), std::string::npos) << run.err;
}

// Operations read from standard input when none are given.
TEST(Holes, ReadsOperationsFromStandardInput)
{
    const cli_test::Outcome run = cli_test::Run({"--json", "holes"}, {{"LC_ALL", "C"}}, "add 100 50\nbest 20\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Json()["steps"][1]["offset"], 100);
}

} // namespace
