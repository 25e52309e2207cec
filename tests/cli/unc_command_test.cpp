// yxtools unc and yxtools drives over a prefix of the test's own: the example drives and shares.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "run_command.h"
#include "support/scratch.h"

namespace {

using nlohmann::ordered_json;

class UncCommand : public testing::Test {
protected:
    void SetUp() override
    {
#if defined(_WIN32)
        GTEST_SKIP() << "Wine's drives and shares are its prefix's and the system's: a test cannot give them";
#else
        namespace fs = std::filesystem;
        const fs::path base = m_folder.Native();
        const fs::path prefix = std::getenv("YXTOOLS_PREFIX");
        fs::create_directories(base / "c/data/deep");
        fs::create_directories(base / "share");
        fs::create_directory_symlink(base / "c", prefix / "dosdevices" / "c:");
        fs::create_directory_symlink(base / "share", prefix / "dosdevices" / "x:");
        fs::create_directory_symlink(base / "gone", prefix / "dosdevices" / "e:");
        std::ofstream(prefix / "mounts") << "//server/share " << fs::canonical(base / "share").string()
                                         << " cifs rw 0 0\n";
        std::ofstream(prefix / "shares") << "root|C:\\\ndata|C:\\data\ndeep|C:\\data\\deep\nC$|C:\\|0x80000000\n";
        m_env = {{"LC_ALL", "C"},
                 {"YXTOOLS_PREFIX", prefix.string()},
                 {"YXTOOLS_MOUNTS", (prefix / "mounts").string()},
                 {"YXTOOLS_SMB_CONF", (prefix / "none").string()},
                 {"YXTOOLS_USERSHARES", (prefix / "none").string()},
                 {"YXTOOLS_COMPUTERNAME", "HOST"}};
#endif
    }
    scratch::Folder m_folder;
    cli_test::Environment m_env;
};

TEST_F(UncCommand, ResultAndRoute)
{
    struct Case {
        const char* path;
        const char* result;
        bool converted;
        const char* route;
    } const cases[] = {
        {"C:\\data\\deep\\a.txt", "\\\\HOST\\deep\\a.txt", true, "drive C: is DRIVE_FIXED: local shares route"},
        {"X:\\dir\\a.txt", "\\\\server\\share\\dir\\a.txt", true, "drive X: is DRIVE_REMOTE: network drive route"},
        {"E:\\a.txt", "E:\\a.txt", false, "drive E: is DRIVE_NO_ROOT_DIR: local shares route"},
        {"dir\\a.txt", "dir\\a.txt", false, "no drive: a relative path, a rooted path without a drive or a URL"},
    };
    for (const Case& c : cases) {
        const cli_test::Outcome run = cli_test::Run({"--json", "unc", c.path}, m_env);
        EXPECT_EQ(run.status, c.converted ? 0 : 1) << c.path << run.err;
        const ordered_json document = run.Json();
        EXPECT_EQ(document["result"], c.result) << c.path;
        EXPECT_EQ(document["converted"], c.converted) << c.path;
        EXPECT_EQ(document["route"], c.route) << c.path;
    }
}

TEST_F(UncCommand, DrivesShowsTargetsTypesSharesAndProblems)
{
    const cli_test::Outcome run = cli_test::Run({"--json", "drives"}, m_env);
    ASSERT_EQ(run.status, 0) << run.err;
    const ordered_json document = run.Json();
    EXPECT_EQ(document["computer"], "HOST");
    std::string letters;
    for (const auto& drive : document["drives"]) {
        letters += drive["letter"].get<std::string>() + drive["type_name"].get<std::string>() + " ";
    }
    EXPECT_EQ(letters, "C:DRIVE_FIXED E:DRIVE_NO_ROOT_DIR T:DRIVE_FIXED X:DRIVE_REMOTE ");
    EXPECT_EQ(document["drives"][3]["remote_name"], "\\\\server\\share");
    std::string shares;
    for (const auto& share : document["shares"]) {
        shares += share["name"].get<std::string>() + (share["considered"].get<bool>() ? "+ " : "- ");
    }
    EXPECT_EQ(shares, "root+ data+ deep+ C$- ");
    ASSERT_EQ(document["problems"].size(), 1U) << document.dump();
    EXPECT_EQ(document["problems"][0].get<std::string>().rfind("drive E: links to nothing", 0), 0U);
}

} // namespace
