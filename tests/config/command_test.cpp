// yxtools reg and yxtools trace, run as a process with a registry of the test's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include <nlohmann/json.hpp>

#include "support/child.h"
#include "support/registry_sandbox.h"

namespace {

struct Result {
    int status;
    std::string output;
};

// Runs yxtools with the arguments (each quoted) and gives its exit status and standard output.
Result Yxtools(const std::string& arguments)
{
    std::string command = "\"" + child::Beside("yxtools") + "\" " + arguments + " 2>&1";
#if defined(_WIN32)
    command = "\"" + command + "\""; // cmd.exe takes the outer quotes off
    FILE* out = _popen(command.c_str(), "r");
#else
    FILE* out = popen(command.c_str(), "r");
#endif
    Result result{-1, ""};
    if (out == nullptr) {
        return result;
    }
    char buffer[4096];
    std::size_t read = 0;
    while ((read = std::fread(buffer, 1, sizeof(buffer), out)) > 0) {
        result.output.append(buffer, read);
    }
#if defined(_WIN32)
    result.status = _pclose(out);
#else
    const int status = pclose(out);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    return result;
}

std::string Quote(const std::string& text)
{
    return "\"" + text + "\"";
}

TEST(RegCommand, SetGetAndUsage)
{
    const regtest::Sandbox sandbox;
    const std::string section = Quote(sandbox.Section("cmd"));
    EXPECT_EQ(Yxtools("reg set " + section + " n -12 --type long").status, 0);
    const Result got = Yxtools("--json reg get " + section + " n --type long");
    ASSERT_EQ(got.status, 0) << got.output;
    const nlohmann::json json = nlohmann::json::parse(got.output);
    EXPECT_EQ(json["value"], -12);
    EXPECT_EQ(json["stored"], true);
    // A parameter that is not stored gives the default, and status 1.
    const Result missing = Yxtools("--json reg get " + section + " other --default dflt");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(nlohmann::json::parse(missing.output)["value"], "dflt");

    const Result usage = Yxtools("reg get " + section);
    EXPECT_EQ(usage.status, 2);
    EXPECT_NE(usage.output.find("NAME"), std::string::npos) << usage.output;
    EXPECT_EQ(Yxtools("reg set " + section + " n x --type long").status, 2);
    EXPECT_EQ(Yxtools("reg --help").status, 0);
}

TEST(RegCommand, ExportThenImportGivesTheSameValuesAndAMalformedFileImportsNothing)
{
    const regtest::Sandbox sandbox;
    const std::string section = Quote(sandbox.Section("round"));
    const std::string file =
        (std::filesystem::temp_directory_path() / ("yxtools-reg-" + std::to_string(std::random_device{}()) + ".reg"))
            .string();
    ASSERT_EQ(Yxtools("reg set " + section + " text " + Quote("a \\\"quoted\\\" \\\\ text")).status, 0);
    ASSERT_EQ(Yxtools("reg set " + section + "\\\\deeper flag true --type bool").status, 0);
    ASSERT_EQ(Yxtools("reg export " + section + " -o " + Quote(file)).status, 0);
    const std::string before = Yxtools("reg list " + section).output;
    ASSERT_EQ(Yxtools("reg delete " + section).status, 0);
    EXPECT_EQ(Yxtools("reg list " + section).output, "");
    ASSERT_EQ(Yxtools("reg import " + Quote(file)).status, 0);
    EXPECT_EQ(Yxtools("reg list " + section).output, before);

    // One bad line: nothing of the file is imported, and the line is named.
    ASSERT_EQ(Yxtools("reg delete " + section).status, 0);
    std::ifstream in(file, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    in.close();
    std::ofstream(file, std::ios::binary) << text << "\"broken\"=dword:12\r\n";
    const Result refused = Yxtools("reg import " + Quote(file));
    EXPECT_EQ(refused.status, 1);
    const auto badLine = std::count(text.begin(), text.end(), '\n') + 1;
    EXPECT_NE(refused.output.find("line " + std::to_string(badLine) + ":"), std::string::npos) << refused.output;
    EXPECT_EQ(Yxtools("reg list " + section).output, "");
    std::remove(file.c_str());
}

TEST(TraceCommand, SettingsAndTheScreen)
{
    const regtest::Sandbox sandbox;
    ASSERT_EQ(Yxtools("reg set Trace Output 2").status, 0);
    ASSERT_EQ(Yxtools("reg set Trace ScreenLineCount 3").status, 0);
    const nlohmann::json settings = nlohmann::json::parse(Yxtools("--json trace settings").output);
    EXPECT_EQ(settings["output"], 2);
    EXPECT_EQ(settings["screen"]["rows"], 3);
#if defined(_WIN32)
    GTEST_SKIP() << "the Windows build draws the strip on the display itself";
#else
    const Result screen = Yxtools("--json trace screen one two three four");
    ASSERT_EQ(screen.status, 0) << screen.output;
    // Four lines on three rows: the fourth is in row 1, over the first.
    const nlohmann::json rows = nlohmann::json::parse(screen.output)["rows"];
    std::string drawn;
    for (const auto& row : rows) {
        drawn += std::to_string(row["y"].get<int>()) + "," + std::to_string(row["x"].get<int>()) + "=" +
                 row["text"].get<std::string>() + ";";
    }
    EXPECT_EQ(drawn, "0,0= ;0,10=three;15,0=>;15,10=four;30,0= ;30,10=two;");
#endif
}

} // namespace
