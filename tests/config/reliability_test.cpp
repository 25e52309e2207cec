// The registry shared by processes, and what it does when the database is not as it should be.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <yxtools/registry.h>

#include "support/child.h"
#include "support/registry_sandbox.h"

#if !defined(_WIN32)
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

constexpr YXRegistry::RootKey kCU = YXRegistry::CurrentUser;

TEST(RegistryProcesses, TwoWritersLoseNothing)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("shared");
    const long count = 10000;
    const std::string probe = child::Beside("registry_probe");
    const std::string countText = std::to_string(count);
    const child::Process first = child::Start(probe, {"write", section, countText, "a"});
    const child::Process second = child::Start(probe, {"write", section, countText, "b"});
    ASSERT_EQ(child::Wait(first), 0);
    ASSERT_EQ(child::Wait(second), 0);
    long wrong = 0;
    for (const char* tag : {"a", "b"}) {
        for (long i = 0; i < count; ++i) {
            wrong += YXRegistry::ReadLongParam(section, tag + std::to_string(i), -1, kCU, nullptr) != i ? 1 : 0;
        }
    }
    EXPECT_EQ(wrong, 0);
}

#if !defined(_WIN32)
// The lines a child writes to its standard output, read until `lines` have come or it ends.
std::vector<std::string> ReadLines(FILE* out, std::size_t lines)
{
    std::vector<std::string> read;
    char line[64];
    while (read.size() < lines && std::fgets(line, sizeof(line), out) != nullptr) {
        read.emplace_back(line);
    }
    return read;
}
#endif

TEST(RegistryProcesses, AWriterKilledMidWayLeavesEveryValueItReported)
{
#if defined(_WIN32)
    GTEST_SKIP() << "the database of the POSIX stand-in is what a killed process could damage; "
                    "on Windows the registry is the system's";
#else
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("killed");
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    const std::string probe = child::Beside("registry_probe");
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        close(pipeEnds[0]);
        execl(probe.c_str(), probe.c_str(), "report", section.c_str(), "1000000", "v", nullptr);
        _exit(127);
    }
    close(pipeEnds[1]);
    FILE* out = fdopen(pipeEnds[0], "r");
    std::vector<std::string> reported = ReadLines(out, 300);
    kill(pid, SIGKILL);
    const std::vector<std::string> rest = ReadLines(out, 1000000);
    reported.insert(reported.end(), rest.begin(), rest.end());
    std::fclose(out);
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_GE(reported.size(), 300U);

    // The database opens, and every write that returned true is there.
    for (const std::string& line : reported) {
        const long i = std::atol(line.c_str());
        ASSERT_EQ(YXRegistry::ReadLongParam(section, "v" + std::to_string(i), -1, kCU, nullptr), i);
    }
    EXPECT_TRUE(YXRegistry::WriteLongParam(section, "after", 1, kCU));
#endif
}

TEST(RegistryDatabase, ALockHeldPastTheBusyTimeOutFailsTheWriteButNotTheRead)
{
#if defined(_WIN32)
    GTEST_SKIP() << "the busy time-out is the POSIX stand-in's; Windows' registry has no file lock";
#else
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("locked");
    ASSERT_TRUE(YXRegistry::WriteLongParam(section, "before", 7, kCU));
    const std::string probe = child::Beside("registry_probe");
    FILE* out = popen(("'" + probe + "' lock '" + sandbox.Database().string() + "' 6000").c_str(), "r");
    ASSERT_NE(out, nullptr);
    ASSERT_EQ(ReadLines(out, 1), std::vector<std::string>{"locked\n"});

    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(YXRegistry::WriteLongParam(section, "during", 1, kCU));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(2500));
    EXPECT_LT(waited, std::chrono::milliseconds(5500));
    // Readers do not wait for a writer.
    bool flag = true;
    EXPECT_EQ(YXRegistry::ReadLongParam(section, "before", -1, kCU, &flag), 7);
    EXPECT_FALSE(flag);
    pclose(out);
    EXPECT_TRUE(YXRegistry::WriteLongParam(section, "after", 1, kCU));
#endif
}

#if !defined(_WIN32)
std::string ReadFile(const regtest::fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
#endif

// A database that cannot be used is no registry: reads give their defaults, writes fail, and the
// file is left as it is.
TEST(RegistryDatabase, UnusableDatabasesGiveDefaultsAndFailWrites)
{
#if defined(_WIN32)
    GTEST_SKIP() << "the database file is the POSIX stand-in's";
#else
    const struct {
        const char* what;
        void (*make)(const regtest::Sandbox&);
    } rows[] = {
        {"not a database",
         [](const regtest::Sandbox& s) {
             regtest::fs::create_directories(s.Prefix());
             std::ofstream(s.Database(), std::ios::binary) << std::string(4096, 'x');
         }},
        {"another layout",
         [](const regtest::Sandbox& s) {
             regtest::fs::create_directories(s.Prefix());
             sqlite3* db = nullptr;
             sqlite3_open(s.Database().c_str(), &db);
             sqlite3_exec(db, "CREATE TABLE t(x); PRAGMA user_version=7", nullptr, nullptr, nullptr);
             sqlite3_close(db);
         }},
        {"a prefix that cannot be made",
         [](const regtest::Sandbox& s) {
             std::ofstream(s.Base() / "file") << "x";
             child::SetEnv("YXTOOLS_PREFIX", (s.Base() / "file" / "prefix").string());
         }},
    };
    for (const auto& row : rows) {
        const regtest::Sandbox sandbox;
        row.make(sandbox);
        const std::string before = ReadFile(sandbox.Database());
        bool flag = false;
        EXPECT_EQ(YXRegistry::ReadLongParam("Trace", "Output", 5, kCU, &flag), 5) << row.what;
        EXPECT_TRUE(flag) << row.what;
        EXPECT_FALSE(YXRegistry::WriteLongParam("Trace", "Output", 1, kCU)) << row.what;
        EXPECT_EQ(ReadFile(sandbox.Database()), before) << row.what;
    }
    // A missing prefix is an empty registry, and reading it makes nothing.
    const regtest::Sandbox sandbox;
    bool flag = false;
    EXPECT_EQ(YXRegistry::ReadLongParam("Trace", "Output", 5, kCU, &flag), 5);
    EXPECT_TRUE(flag);
    EXPECT_FALSE(regtest::fs::exists(sandbox.Prefix()));
#endif
}

} // namespace
