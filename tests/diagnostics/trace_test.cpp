// The trace channel as a host sees it: each case starts trace_host with its own registry, so that
// the library's manager reads the settings of the case at load.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <yxtools/registry.h>
#include <yxtools/trace.h>

#include "support/child.h"
#include "support/registry_sandbox.h"

namespace {

namespace fs = std::filesystem;

// The debugger and the screen can be watched on POSIX only: there the stand-in writes what the
// debugger gets and what the screen holds to files named in the environment.
#if defined(_WIN32)
constexpr bool kWatched = false;
#else
constexpr bool kWatched = true;
#endif

std::string ReadFile(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// One run of trace_host in a registry and a folder of its own.
class TraceRun {
public:
    using Settings = std::map<std::string, std::string>;
    // Settings of section "Trace", by name, each a text; "<file>" stands for the trace file.
    explicit TraceRun(const Settings& settings)
        : m_folder(fs::temp_directory_path() / ("yxtools-trace-" + std::to_string(std::random_device{}())))
    {
        fs::create_directories(m_folder);
        for (const auto& setting : settings) {
            _SS<char> value(setting.second == "<file>" ? TraceFile().string() : setting.second);
            EXPECT_TRUE(YXRegistry::WriteStringParam("Trace", setting.first, value, YXRegistry::CurrentUser));
        }
        child::SetEnv("YXTOOLS_DEBUG_OUTPUT", DebugFile().string());
        child::SetEnv("YXTOOLS_SCREEN", ScreenFile().string());
    }
    ~TraceRun()
    {
        child::UnsetEnv("YXTOOLS_DEBUG_OUTPUT");
        child::UnsetEnv("YXTOOLS_SCREEN");
        std::error_code error;
        fs::remove_all(m_folder, error);
    }
    TraceRun(const TraceRun&) = delete;
    TraceRun& operator=(const TraceRun&) = delete;

    void Run(const std::vector<std::string>& script) const
    {
        ASSERT_EQ(child::Run(child::Beside("trace_host"), script), 0);
    }

    fs::path TraceFile() const { return m_folder / "trace.txt"; }
    fs::path DebugFile() const { return m_folder / "debug.txt"; }
    fs::path ScreenFile() const { return m_folder / "screen.txt"; }

    std::string Debugger() const { return ReadFile(DebugFile()); }
    std::string File() const { return ReadFile(TraceFile()); }
    // The screen's runs of cells: "y x" -> text.
    std::map<std::string, std::string> Screen() const
    {
        std::map<std::string, std::string> runs;
        std::ifstream in(ScreenFile());
        std::string line;
        while (std::getline(in, line)) {
            const auto colon = line.find(": ");
            runs[line.substr(0, colon)] = line.substr(colon + 2);
        }
        return runs;
    }

private:
    regtest::Sandbox m_sandbox; // first: its registry is the one written to
    fs::path m_folder;
};

TEST(TraceManager, WithoutSettingsLinesGoToTheDebuggerOnly)
{
    const TraceRun run(TraceRun::Settings{});
    run.Run({"text", "hello", "text", " world"});
    if (kWatched) {
        EXPECT_EQ(run.Debugger(), "hello world");
        EXPECT_FALSE(fs::exists(run.ScreenFile()));
    }
    EXPECT_FALSE(fs::exists(run.TraceFile()));
}

TEST(TraceManager, EachOutputBit)
{
    const struct {
        const char* output;
        bool debugger;
        bool file;
        bool screen;
    } rows[] = {
        {"0", false, false, false}, {"1", true, false, false}, {"2", false, false, true},  {"4", false, true, false},
        {"5", true, true, false},   {"7", true, true, true},   {"8", false, false, false}, {"abc", false, false, false},
    };
    for (const auto& row : rows) {
        const TraceRun run({{"Output", row.output}, {"FileName", "<file>"}});
        // The file is emptied at load when it is an output, and left alone when it is not.
        std::ofstream(run.TraceFile()) << "old ";
        run.Run({"text", "line"});
        EXPECT_EQ(run.File(), row.file ? "line" : "old ") << row.output;
        if (kWatched) {
            EXPECT_EQ(run.Debugger(), row.debugger ? "line" : "") << row.output;
            EXPECT_EQ(run.Screen().count("15 10"), row.screen ? 1U : 0U) << row.output;
        }
    }
}

TEST(TraceManager, OutputFourWithoutAFileNameTouchesNoFile)
{
    const TraceRun run(TraceRun::Settings{{"Output", "4"}});
    run.Run({"text", "line"});
    EXPECT_FALSE(fs::exists(run.TraceFile()));
}

TEST(TraceManager, TheScreenComesAfterTheDebuggerAndTheFile)
{
    if (!kWatched) {
        GTEST_SKIP() << "the screen is read through the POSIX stand-in's virtual screen";
    }
    // The screen's copy and the debugger's output go to the trace file itself: the screen, drawn
    // last, replaces what the others appended.
    const TraceRun run({{"Output", "7"}, {"FileName", "<file>"}});
    child::SetEnv("YXTOOLS_SCREEN", run.TraceFile().string());
    child::SetEnv("YXTOOLS_DEBUG_OUTPUT", run.TraceFile().string());
    run.Run({"text", "line"});
    EXPECT_EQ(run.File(), "0 0:  \n15 0: >\n15 10: line\n");
}

TEST(TraceManager, TheStripIsARingOfRows)
{
    if (!kWatched) {
        GTEST_SKIP() << "the screen is read through the POSIX stand-in's virtual screen";
    }
    // A count of 0, or a text that reads as 0, gives 10 rows.
    for (const char* count : {"0", "none", static_cast<const char*>(nullptr)}) {
        std::map<std::string, std::string> settings = {{"Output", "2"}, {"ScreenTop", "100"}, {"ScreenLeft", "20"}};
        if (count != nullptr) {
            settings["ScreenLineCount"] = count;
        }
        const TraceRun run(settings);
        std::vector<std::string> script;
        for (int i = 1; i <= 11; ++i) {
            script.insert(script.end(), {"text", "L" + std::to_string(i)});
        }
        run.Run(script);
        // The eleventh line is drawn over the first, in row 1; row 0 holds the tenth and row 9
        // the ninth, their markers wiped.
        const std::map<std::string, std::string> expected = {
            {"100 20", " "},  {"100 30", "L10"}, {"115 20", ">"},  {"115 30", "L11"}, {"130 20", " "},
            {"130 30", "L2"}, {"145 20", " "},   {"145 30", "L3"}, {"160 20", " "},   {"160 30", "L4"},
            {"175 20", " "},  {"175 30", "L5"},  {"190 20", " "},  {"190 30", "L6"},  {"205 20", " "},
            {"205 30", "L7"}, {"220 20", " "},   {"220 30", "L8"}, {"235 20", " "},   {"235 30", "L9"},
        };
        EXPECT_EQ(run.Screen(), expected) << (count != nullptr ? count : "no count");
    }
    // A count below 1 keeps every line in row 0, as a count of 1 does.
    for (const char* count : {"-3", "1"}) {
        const TraceRun run({{"Output", "2"}, {"ScreenLineCount", count}});
        run.Run({"text", "first", "text", "second"});
        const std::map<std::string, std::string> expected = {{"0 0", ">"}, {"0 10", "second"}};
        EXPECT_EQ(run.Screen(), expected) << count;
    }
}

TEST(TraceManager, IndentationLengthAndFormatting)
{
    const TraceRun run({{"Output", "7"}, {"FileName", "<file>"}});
    const std::string hundred(100, 'x');
    run.Run({"indent", "2", "text", "a", "indent", "-5", "text", "b", "indent", "3", "format", "fill", "100"});
    // Two blanks, none for a sum of -3, then none for 0; the long line whole.
    const std::string expected = "  ab42-z|" + hundred;
    EXPECT_EQ(run.File(), expected);
    if (kWatched) {
        EXPECT_EQ(run.Debugger(), expected);
        // The screen shows 55 bytes of it, in the fourth row.
        EXPECT_EQ(run.Screen()["60 10"], hundred.substr(0, 55));
    }
}

TEST(TraceManager, LongTextsAreCutAt8704)
{
    const TraceRun run({{"Output", "4"}, {"FileName", "<file>"}});
    run.Run({"fill", "10000", "fill", "8704"});
    EXPECT_EQ(run.File(), std::string(8704 * 2, 'x'));
}

TEST(TraceManager, DestroyingAnyManagerEndsTracing)
{
    // The further manager empties the file again when it is made; after it has gone, nothing is
    // traced.
    const TraceRun run({{"Output", "5"}, {"FileName", "<file>"}});
    run.Run({"text", "before", "destroy", "text", "after"});
    EXPECT_EQ(run.File(), "");
    if (kWatched) {
        EXPECT_EQ(run.Debugger(), "before");
    }
}

TEST(TraceManager, ALoadWithAnUnusableRegistryTracesWithTheDefaults)
{
#if defined(_WIN32)
    GTEST_SKIP() << "the registry database is the POSIX stand-in's";
#else
    const TraceRun run(TraceRun::Settings{{"Output", "0"}});
    for (const char* prefix : {"/nonexistent/yxtools", "/dev/null"}) {
        child::SetEnv("YXTOOLS_PREFIX", prefix);
        fs::remove(run.DebugFile());
        run.Run({"text", "x"});
        EXPECT_EQ(run.Debugger(), "x") << prefix;
    }
#endif
}

TEST(TickCount, FollowsTheSystemCounter)
{
    const unsigned long before = YXGetTickCount();
    const unsigned long after = YXGetTickCount();
    EXPECT_LE(after - before, 1000UL);
    EXPECT_LE(after, 0xFFFFFFFFUL);
}

TEST(TickCount, ElapsedSplitsASpan)
{
    const struct {
        unsigned long ticks;
        unsigned long days;
        int hours;
        int minutes;
        double seconds;
    } rows[] = {
        {0, 0, 0, 0, 0.0},
        {86399999UL, 0, 23, 59, 59999 * 0.001},
        {86400000UL, 1, 0, 0, 0.0},
        {90061001UL, 1, 1, 1, 1001 * 0.001},
        {0xFFFFFFFFUL, 49, 17, 2, 47295 * 0.001},
    };
    for (const auto& row : rows) {
        unsigned long days = 99;
        unsigned char hours = 99;
        unsigned char minutes = 99;
        double seconds = -1;
        YXGetTickCount_Elapsed(row.ticks, &days, &hours, &minutes, &seconds);
        EXPECT_EQ(days, row.days) << row.ticks;
        EXPECT_EQ(hours, row.hours) << row.ticks;
        EXPECT_EQ(minutes, row.minutes) << row.ticks;
        EXPECT_DOUBLE_EQ(seconds, row.seconds) << row.ticks;
    }
}

} // namespace
