// Runs the built yxtools command as a process, as a person or a script does, on both builds: the
// command is the program beside the test program (on Windows, yxtools.exe, started by CreateProcess;
// under Wine both run in the test's prefix).
//
// A family adds its command's tests by linking this folder's helper (yxtools_cli_test in
// tests/cli/CMakeLists.txt) and calling cli_test::Run:
//     const cli_test::Outcome run = cli_test::Run({"--json", "path", "split", "C:\\a.txt"}, {{"LC_ALL", "C"}});
//     EXPECT_EQ(run.status, 0);
//     EXPECT_EQ(run.Json()["name"], "a");
#ifndef YXTOOLS_TESTS_CLI_RUN_COMMAND_H
#define YXTOOLS_TESTS_CLI_RUN_COMMAND_H

#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace cli_test {

struct Outcome {
    int status = -1;
    std::string out; // standard output, as bytes (on Windows with its CR LF line ends made LF)
    std::string err; // standard error, likewise

    // Standard output parsed as JSON; a parse error throws (and fails the test).
    nlohmann::ordered_json Json() const;
};

using Environment = std::map<std::string, std::string>;

// Runs yxtools with `args`. The child's environment is this process's with `env` set over it (a
// value set to "" still counts as set). `input` is its standard input, so that nothing waits on a
// terminal.
Outcome Run(const std::vector<std::string>& args, const Environment& env = {}, const std::string& input = "");

// Whether this is the Windows build (output in the ANSI code page instead of the locale's codeset).
constexpr bool kWindows =
#if defined(_WIN32)
    true;
#else
    false;
#endif

} // namespace cli_test

#endif
