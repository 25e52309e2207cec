// UNC conversion: the route over made-up facts (the same on both builds), and over the platform's
// own facts where a test can give them (the stand-in's prefix).
#include <gtest/gtest.h>

#include <yxtools/path.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "paths/unc_fake.h"
#include "support/scratch.h"

namespace {

using unc_fake::Convert;
using unc_fake::Example;

struct Row {
    const char* path;
    const char* result; // null: unchanged
};

const Row kExample[] = {
    {"C:\\data\\deep\\a.txt", "\\\\HOST\\deep\\a.txt"},
    {"C:\\data\\sub\\a.txt", "\\\\HOST\\data\\sub\\a.txt"},
    {"C:\\data\\a.txt", "\\\\HOST\\data\\a.txt"},
    {"C:\\other\\a.txt", "\\\\HOST\\root\\other\\a.txt"},
    {"C:\\a.txt", "\\\\HOST\\root\\a.txt"},
    {"c:\\DATA\\Sub\\A.TXT", "\\\\HOST\\data\\Sub\\A.TXT"},
    {"X:\\dir\\a.txt", "\\\\server\\share\\dir\\a.txt"},
    {"D:\\a.txt", nullptr},
    {"C:a.txt", nullptr},
    {"\\\\server\\share\\a.txt", nullptr},
    {"dir\\a.txt", nullptr},
    {"\\dir\\a.txt", nullptr},
    {"http://server/a.txt", nullptr},
    {"", nullptr},
};

TEST(UncRoute, ExampleTable)
{
    for (const Row& row : kExample) {
        Example();
        EXPECT_EQ(Convert(row.path), row.result != nullptr ? row.result : row.path) << row.path;
        EXPECT_EQ(unc_fake::Current().liveBuffers, 0) << row.path;
    }
}

TEST(UncRoute, AsksTheDriveComponentAndTestsTheMask)
{
    // CD-ROM and RAM disk share bit 4 with DRIVE_REMOTE: they take the network route, and when
    // that is refused the path stays, although a local share covers it.
    for (const UINT type : {DRIVE_CDROM, DRIVE_RAMDISK}) {
        auto& facts = Example();
        facts.driveTypes['D'] = type;
        facts.shares.push_back({"dshare", "D:\\"});
        EXPECT_EQ(Convert("D:\\a.txt"), "D:\\a.txt") << type;
        EXPECT_EQ(facts.enumCalls, 0) << type;
        ASSERT_EQ(facts.drivesAsked.size(), 1U);
        EXPECT_EQ(facts.drivesAsked[0], "D:");
        facts.remote['D'] = "\\\\srv\\cd";
        EXPECT_EQ(Convert("D:\\x\\a.txt"), "\\\\srv\\cd\\x\\a.txt") << type;
    }
    for (const UINT type : {DRIVE_UNKNOWN, DRIVE_NO_ROOT_DIR, DRIVE_REMOVABLE, DRIVE_FIXED}) {
        auto& facts = Example();
        facts.driveTypes['X'] = type;
        EXPECT_EQ(Convert("X:\\a.txt"), "X:\\a.txt") << type;
        EXPECT_EQ(facts.enumCalls, 1) << type;
    }
}

TEST(UncRoute, RefusedEnumeration)
{
    auto& facts = Example();
    facts.refuseCall = 0;
    EXPECT_EQ(Convert("C:\\data\\a.txt"), "C:\\data\\a.txt");
    EXPECT_EQ(facts.freeCalls, 0);
    // A later refusal keeps what the earlier batches found.
    facts = Example();
    facts.batch = 1;
    facts.refuseCall = 2;
    EXPECT_EQ(Convert("C:\\data\\deep\\a.txt"), "\\\\HOST\\data\\deep\\a.txt");
    EXPECT_EQ(facts.enumCalls, 3);
    EXPECT_EQ(facts.liveBuffers, 0);
}

TEST(UncRoute, BatchesCompeteForTheBestLength)
{
    auto& facts = Example();
    facts.shares = {{"first", "C:\\data"}, {"second", "C:\\DATA"}, {"deep", "C:\\data\\deep\\"}, {"root", "C:\\"}};
    for (const std::size_t batch : {std::size_t{1}, std::size_t{2}, std::size_t{3}, SIZE_MAX}) {
        facts.batch = batch;
        facts.enumCalls = 0;
        // Equal paths: the first stays, also across batches; a longer one in a later batch wins,
        // and a shorter one after it does not take its place.
        EXPECT_EQ(Convert("C:\\data\\x\\a.txt"), "\\\\HOST\\first\\x\\a.txt") << batch;
        EXPECT_EQ(Convert("C:\\Data\\Deep\\a.txt"), "\\\\HOST\\deep\\a.txt") << batch;
        EXPECT_EQ(facts.enumCalls, batch == SIZE_MAX ? 2 : static_cast<int>(2 * ((4 + batch - 1) / batch))) << batch;
        EXPECT_EQ(facts.liveBuffers, 0);
    }
}

TEST(UncRoute, SkipsAllButDiskSharesAndEmptyPaths)
{
    auto& facts = Example();
    facts.shares = {{"ipc", "", STYPE_IPC, true},           {"printer", "C:\\data", STYPE_PRINTQ},
                    {"admin", "C:\\data", STYPE_SPECIAL},   {"empty", ""},
                    {"nullpath", "", STYPE_DISKTREE, true}, {"device", "C:\\data", STYPE_DEVICE}};
    EXPECT_EQ(Convert("C:\\data\\a.txt"), "C:\\data\\a.txt");
    facts.shares.push_back({"root", "C:\\"});
    EXPECT_EQ(Convert("C:\\data\\a.txt"), "\\\\HOST\\root\\data\\a.txt");
}

TEST(UncRoute, ShareEndingInsideAFolderNameIsRefused)
{
    // "c:\da" is a byte prefix of "c:\data\" but names another folder.
    auto& facts = Example();
    facts.shares = {{"root", "C:\\"}, {"da", "C:\\da"}, {"dat", "C:\\DAT"}};
    EXPECT_EQ(Convert("C:\\data\\a.txt"), "\\\\HOST\\root\\data\\a.txt");
    EXPECT_EQ(Convert("C:\\da\\a.txt"), "\\\\HOST\\da\\a.txt");
    EXPECT_EQ(Convert("C:/da/a.txt"), "C:/da/a.txt"); // no share path is written with '/'
}

TEST(UncRoute, FailedComputerNameGivesLocalhost)
{
    auto& facts = Example();
    facts.computerFails = true;
    EXPECT_EQ(Convert("C:\\data\\a.txt"), "\\\\localhost\\data\\a.txt");
}

TEST(UncRoute, LongPathsAndManyShares)
{
    for (const std::size_t length : {259U, 260U, 1000U}) {
        Example();
        const std::string path = "C:\\data\\" + std::string(length - 12, 'a') + ".txt";
        ASSERT_EQ(path.size(), length);
        EXPECT_EQ(Convert(path), "\\\\HOST\\data\\" + path.substr(8)) << length;
        const std::string deep = "C:\\data\\" + std::string(length - 10, 'b') + "\\a";
        EXPECT_EQ(Convert(deep), "\\\\HOST\\data\\" + deep.substr(8)) << length;
    }
    auto& facts = Example();
    facts.shares.clear();
    for (int i = 0; i < 10000; ++i) {
        facts.shares.push_back({"s" + std::to_string(i), "C:\\d" + std::to_string(i % 100)});
    }
    facts.shares.push_back({"best", "C:\\d42\\in"});
    facts.batch = 64;
    EXPECT_EQ(Convert("C:\\d42\\in\\a.txt"), "\\\\HOST\\best\\a.txt");
    EXPECT_EQ(Convert("C:\\d42\\out\\a.txt"), "\\\\HOST\\s42\\out\\a.txt");
    EXPECT_EQ(facts.liveBuffers, 0);
}

TEST(UncRoute, DoubleByteSharePaths)
{
    if (GetACP() != 932) {
        GTEST_SKIP() << "needs the double-byte code page 932 (this program runs under another)";
    }
    // ソ is 83 5C: its trail byte is no separator, neither for the fit nor for the tail.
    auto& facts = Example();
    facts.shares = {{"root", "C:\\"}, {"so", "C:\\\x83\x5C"}, {"hyo", "C:\\\x95\x5C\\"}};
    EXPECT_EQ(Convert("C:\\\x83\x5C\\x\\a.txt"), "\\\\HOST\\so\\x\\a.txt");
    EXPECT_EQ(Convert("C:\\\x95\x5C\\a.txt"), "\\\\HOST\\hyo\\a.txt");
    EXPECT_EQ(Convert("C:\\\x83\x5Cx\\a.txt"), "\\\\HOST\\root\\\x83\x5Cx\\a.txt");
    // _strlwr folds trail bytes as ASCII (ア is 83 41, ツ 83 61): both sides alike.
    facts.shares = {{"a", "C:\\\x83\x41"}};
    EXPECT_EQ(Convert("C:\\\x83\x61\\a.txt"), "\\\\HOST\\a\\a.txt");
}

TEST(UncPath, ToUNCLeavesWhatItCannotConvert)
{
    for (const char* path : {"", "dir\\a.txt", "\\dir\\a.txt", "\\\\server\\share\\a.txt", "http://server/a.txt"}) {
        EXPECT_EQ(YXPath::ToUNC(path), path);
    }
}

TEST(UncPath, KernelModuleNotLoaded)
{
    _SS<char> path = "kept";
    EXPECT_FALSE(Path_GetFromKernel(path));
    EXPECT_EQ(path, "kept");
}

#if !defined(_WIN32)
// The example over the stand-in's own facts: a prefix with drives C: (fixed), D: (a CD-ROM) and X:
// (a CIFS mount of //server/share), the shares file of the prefix, and nothing of the machine's.
class UncStandIn : public ::testing::Test {
protected:
    void SetUp() override
    {
        namespace fs = std::filesystem;
        const fs::path base = m_folder.Native();
        const fs::path prefix = std::getenv("YXTOOLS_PREFIX");
        for (const char* dir : {"c/data/deep", "cd", "share/dir"}) {
            fs::create_directories(base / dir);
        }
        fs::create_directory_symlink(base / "c", prefix / "dosdevices" / "c:");
        fs::create_directory_symlink(base / "cd", prefix / "dosdevices" / "d:");
        fs::create_directory_symlink(base / "share", prefix / "dosdevices" / "x:");
        fs::create_directory_symlink(base / "gone", prefix / "dosdevices" / "e:");
        std::ofstream(prefix / "mounts") << "//server/share " << fs::canonical(base / "share").string()
                                         << " cifs rw 0 0\n/dev/sr0 " << fs::canonical(base / "cd").string()
                                         << " iso9660 ro 0 0\n";
        std::ofstream(prefix / "shares") << "root|C:\\\ndata|C:\\data\ndeep|C:\\data\\deep\nC$|C:\\|0x80000000\n"
                                         << "cd|D:\\\n";
        setenv("YXTOOLS_MOUNTS", (prefix / "mounts").c_str(), 1);
        setenv("YXTOOLS_SMB_CONF", (prefix / "none").c_str(), 1);
        setenv("YXTOOLS_USERSHARES", (prefix / "none").c_str(), 1);
        setenv("YXTOOLS_COMPUTERNAME", "host", 1);
        unsetenv("YXTOOLS_SHARE_BATCH");
    }
    scratch::Folder m_folder;
};

TEST_F(UncStandIn, ExampleTable)
{
    for (const Row& row : kExample) {
        EXPECT_EQ(YXPath::ToUNC(row.path), row.result != nullptr ? row.result : row.path) << row.path;
    }
    // The CD-ROM route, a letter without a link and one that links to nothing.
    for (const char* path : {"D:\\a.txt", "Q:\\a.txt", "E:\\a.txt"}) {
        EXPECT_EQ(YXPath::ToUNC(path), path);
    }
}

TEST_F(UncStandIn, BatchesOfTheStandIn)
{
    for (const char* batch : {"1", "2", "3"}) {
        setenv("YXTOOLS_SHARE_BATCH", batch, 1);
        EXPECT_EQ(YXPath::ToUNC("C:\\data\\deep\\a.txt"), "\\\\HOST\\deep\\a.txt") << batch;
        EXPECT_EQ(YXPath::ToUNC("C:\\data\\x\\a.txt"), "\\\\HOST\\data\\x\\a.txt") << batch;
    }
}

TEST_F(UncStandIn, UnreadableSmbConf)
{
    const std::filesystem::path conf = m_folder.Native("smb.conf");
    std::ofstream(conf) << "[other]\npath = /\n";
    std::filesystem::permissions(conf, std::filesystem::perms::none);
    setenv("YXTOOLS_SMB_CONF", conf.c_str(), 1);
    EXPECT_EQ(YXPath::ToUNC("C:\\data\\a.txt"), "\\\\HOST\\data\\a.txt");
}
#endif

} // namespace
