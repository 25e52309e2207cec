// Drive types, network names, shares, the computer's name, modules and WideCharToMultiByte: what
// Wine answers is what the stand-in must answer. Facts that Wine cannot be given (CIFS mounts,
// Samba shares) are tested on the stand-in alone, each through its own prefix.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/win32.h"
#include "support/scratch.h"

namespace {

#if !defined(_WIN32)
// The stand-in reads no fact of the machine here: the prefix is the scratch folder's.
void PinSources(const std::filesystem::path& prefix)
{
    setenv("YXTOOLS_MOUNTS", (prefix / "mounts").c_str(), 1);
    setenv("YXTOOLS_SMB_CONF", (prefix / "smb.conf").c_str(), 1);
    setenv("YXTOOLS_USERSHARES", (prefix / "usershares").c_str(), 1);
    unsetenv("YXTOOLS_SHARE_BATCH");
    unsetenv("YXTOOLS_COMPUTERNAME");
}
#endif

TEST(NetContract, GetDriveTypeA)
{
    scratch::Folder folder;
#if !defined(_WIN32)
    // Wine's prefix has C:; give the stand-in's one too.
    const std::filesystem::path prefix = std::getenv("YXTOOLS_PREFIX");
    std::filesystem::create_directory_symlink(folder.Native(), prefix / "dosdevices" / "c:");
    PinSources(prefix);
#endif
    EXPECT_EQ(GetDriveTypeA("C:\\"), DRIVE_FIXED);
    EXPECT_EQ(GetDriveTypeA("c:"), DRIVE_FIXED);
    EXPECT_EQ(GetDriveTypeA("C:\\windows-not-a-root\\"), DRIVE_NO_ROOT_DIR);
    EXPECT_EQ(GetDriveTypeA("Q:\\"), DRIVE_NO_ROOT_DIR);
    EXPECT_EQ(GetDriveTypeA(""), DRIVE_NO_ROOT_DIR);
}

TEST(NetContract, WNetGetUniversalNameAOnALocalDrive)
{
    char buffer[260];
    DWORD size = sizeof buffer;
    EXPECT_EQ(WNetGetUniversalNameA("C:", REMOTE_NAME_INFO_LEVEL, buffer, &size),
              static_cast<DWORD>(ERROR_NOT_CONNECTED));
    size = sizeof buffer;
    EXPECT_EQ(WNetGetUniversalNameA("Q:", REMOTE_NAME_INFO_LEVEL, buffer, &size),
              static_cast<DWORD>(ERROR_NOT_CONNECTED));
}

TEST(NetContract, GetComputerNameA)
{
#if !defined(_WIN32)
    unsetenv("YXTOOLS_COMPUTERNAME");
#endif
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    ASSERT_TRUE(GetComputerNameA(name, &size));
    EXPECT_EQ(size, std::strlen(name));
    EXPECT_GT(size, 0U);
    EXPECT_LE(size, MAX_COMPUTERNAME_LENGTH);
    for (const char* p = name; *p != '\0'; ++p) {
        EXPECT_FALSE(std::islower(static_cast<unsigned char>(*p))) << name;
    }
    // Too small: the size it needs, NUL included, and ERROR_BUFFER_OVERFLOW.
    char small[2] = {};
    DWORD smallSize = 1;
    SetLastError(0);
    EXPECT_FALSE(GetComputerNameA(small, &smallSize));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
    EXPECT_EQ(smallSize, size + 1);
}

TEST(NetContract, NetApiBufferFreeOfNull)
{
    EXPECT_EQ(NetApiBufferFree(nullptr), static_cast<NET_API_STATUS>(NERR_Success));
}

TEST(NetContract, WideCharToMultiByte)
{
    const WCHAR wide[] = {'C', ':', '\\', 0x00E9, 0};
    char text[16];
    std::memset(text, 'x', sizeof text);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, wide, -1, text, sizeof text, nullptr, nullptr), 5);
    EXPECT_STREQ(text, GetACP() == 1252 ? "C:\\\xE9" : "C:\\?");
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr), 5);
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, wide, -1, text, 3, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, wide, 2, text, sizeof text, nullptr, nullptr), 2);
}

TEST(NetContract, Modules)
{
    SetLastError(0);
    EXPECT_EQ(GetModuleHandleA("YXNoSuchModule.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    char path[2000] = {};
    const DWORD length = GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof path);
    EXPECT_EQ(length, std::strlen(path));
    EXPECT_NE(std::string(path).find("platform_net_tests"), std::string::npos) << path;
    // Cut to the buffer: nSize - 1 bytes and a NUL, the result nSize.
    char cut[5];
    SetLastError(0);
    EXPECT_EQ(GetModuleFileNameA(nullptr, cut, sizeof cut), 5U);
    EXPECT_EQ(std::strlen(cut), 4U);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

#if !defined(_WIN32)
// Facts that Wine has no way to be given: they are the stand-in's own.
class NetStandIn : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_prefix = std::getenv("YXTOOLS_PREFIX");
        PinSources(m_prefix);
    }
    void Link(const char* drive, const std::filesystem::path& target)
    {
        std::filesystem::create_directories(target);
        std::filesystem::create_directory_symlink(target, m_prefix / "dosdevices" / drive);
    }
    std::string Canonical(const std::string& name) { return std::filesystem::canonical(m_folder.Native(name)); }
    scratch::Folder m_folder;
    std::filesystem::path m_prefix;
};

TEST_F(NetStandIn, DriveTypesFromTheMountTable)
{
    for (const char* dir : {"net/sub", "nfs", "cd", "usb", "ram", "plain"}) {
        std::filesystem::create_directories(m_folder.Native(dir));
    }
    Link("x:", m_folder.Native("net/sub"));
    Link("n:", m_folder.Native("nfs"));
    Link("d:", m_folder.Native("cd"));
    Link("u:", m_folder.Native("usb"));
    Link("f:", m_folder.Native("plain"));
    std::filesystem::create_directory_symlink(m_folder.Native("gone"), m_prefix / "dosdevices" / "e:");
    // A removable device as sysfs tells it: the partition's disk carries the flag.
    const std::filesystem::path sys = m_folder.Native("sys");
    std::filesystem::create_directories(sys / "devices/sdz/sdz1");
    std::filesystem::create_directories(sys / "class/block");
    std::ofstream(sys / "devices/sdz/removable") << "1\n";
    std::filesystem::create_directory_symlink(sys / "devices/sdz/sdz1", sys / "class/block/sdz1");
    setenv("YXTOOLS_SYSFS", sys.c_str(), 1);
    std::ofstream(m_prefix / "mounts") << "//server/share " << Canonical("net") << " cifs rw 0 0\n"
                                       << "host:/export/a " << Canonical("nfs") << " nfs4 rw 0 0\n"
                                       << "/dev/sr0 " << Canonical("cd") << " udf ro 0 0\n"
                                       << "/dev/sdz1 " << Canonical("usb") << " vfat rw 0 0\n"
                                       << "tmpfs " << Canonical("plain") << " tmpfs rw 0 0\n";
    EXPECT_EQ(GetDriveTypeA("X:\\"), DRIVE_REMOTE);
    EXPECT_EQ(GetDriveTypeA("N:"), DRIVE_REMOTE);
    EXPECT_EQ(GetDriveTypeA("D:\\"), DRIVE_CDROM);
    EXPECT_EQ(GetDriveTypeA("U:\\"), DRIVE_REMOVABLE);
    EXPECT_EQ(GetDriveTypeA("F:\\"), DRIVE_FIXED); // tmpfs is a fixed disk, as Wine has it
    EXPECT_EQ(GetDriveTypeA("E:\\"), DRIVE_NO_ROOT_DIR);
    unsetenv("YXTOOLS_SYSFS");

    char buffer[260];
    DWORD size = sizeof buffer;
    ASSERT_EQ(WNetGetUniversalNameA("X:\\a.txt", REMOTE_NAME_INFO_LEVEL, buffer, &size), NO_ERROR);
    const auto* info = reinterpret_cast<const REMOTE_NAME_INFOA*>(buffer);
    EXPECT_STREQ(info->lpUniversalName, "\\\\server\\share\\sub\\a.txt");
    EXPECT_STREQ(info->lpConnectionName, "\\\\server\\share\\sub");
    EXPECT_STREQ(info->lpRemainingPath, "\\a.txt");
    size = sizeof buffer;
    ASSERT_EQ(WNetGetUniversalNameA("n:", REMOTE_NAME_INFO_LEVEL, buffer, &size), NO_ERROR);
    EXPECT_STREQ(info->lpUniversalName, "\\\\host\\export\\a");
    // Too small: the size it needs; a CD-ROM is no network drive; no drive at all.
    size = 8;
    EXPECT_EQ(WNetGetUniversalNameA("X:", REMOTE_NAME_INFO_LEVEL, buffer, &size), static_cast<DWORD>(ERROR_MORE_DATA));
    EXPECT_EQ(size, sizeof(REMOTE_NAME_INFOA) + 2 * sizeof("\\\\server\\share\\sub") + 1);
    size = sizeof buffer;
    EXPECT_EQ(WNetGetUniversalNameA("D:", REMOTE_NAME_INFO_LEVEL, buffer, &size),
              static_cast<DWORD>(ERROR_NOT_CONNECTED));
    EXPECT_EQ(WNetGetUniversalNameA("\\a", REMOTE_NAME_INFO_LEVEL, buffer, &size),
              static_cast<DWORD>(ERROR_BAD_DEVICE));
}

std::string Narrow(const WCHAR* wide)
{
    if (wide == nullptr) {
        return "(null)";
    }
    std::string text;
    for (; *wide != 0; ++wide) {
        text.push_back(static_cast<char>(*wide));
    }
    return text;
}

TEST_F(NetStandIn, SharesFromEachSourceInOrderAndInBatches)
{
    Link("c:", m_folder.Native("c"));
    std::filesystem::create_directories(m_folder.Native("c/srv/pub"));
    std::filesystem::create_directories(m_folder.Native("elsewhere"));
    std::ofstream(m_prefix / "shares") << "# name|path|type\nroot|C:\\\nadmin$|C:\\|0x80000000\n\nbad|C:\\|x\n";
    std::ofstream(m_prefix / "smb.conf")
        << "[global]\n  workgroup = W\n[Pub]\n  path = " << Canonical("c/srv/pub")
        << "\n[lp]\n  printable = yes\n  path = /nonexistent-spool\n[hidden$]\n  path = " << Canonical("elsewhere")
        << "\n[ROOT]\n  path = /\n[off]\n path = /\n"
        << " available = no\n";
    std::filesystem::create_directories(m_prefix / "usershares");
    std::ofstream(m_prefix / "usershares" / "music") << "path=" << Canonical("c/srv") << "\nsharename=Music\n";
    const char* expected[][3] = {{"root", "C:\\", "0"},         {"admin$", "C:\\", "2147483648"},
                                 {"Pub", "C:\\srv\\pub", "0"},  {"lp", "\\\\?\\unix\\nonexistent-spool", "1"},
                                 {"hidden$", "", "2147483648"}, {"Music", "C:\\srv", "0"}};
    // The scratch folder is the prefix's drive T:, so a path in it is written on T:.
    const std::string hidden = "T:\\root\\elsewhere";
    for (const DWORD preferred : {MAX_PREFERRED_LENGTH, 1U}) {
        DWORD resume = 0;
        std::size_t index = 0;
        NET_API_STATUS status = ERROR_MORE_DATA;
        int calls = 0;
        while (status == ERROR_MORE_DATA) {
            LPBYTE buffer = nullptr;
            DWORD read = 0;
            DWORD total = 0;
            status = NetShareEnum(nullptr, 502, &buffer, preferred, &read, &total, &resume);
            ASSERT_TRUE(status == NERR_Success || status == ERROR_MORE_DATA) << status;
            EXPECT_EQ(total, 6 - index);
            ASSERT_GE(read, 1U);
            const auto* shares = reinterpret_cast<const SHARE_INFO_502*>(buffer);
            for (DWORD i = 0; i < read; ++i, ++index) {
                ASSERT_LT(index, 6U);
                EXPECT_EQ(Narrow(shares[i].shi502_netname), expected[index][0]);
                EXPECT_EQ(Narrow(shares[i].shi502_path), index == 4 ? hidden : std::string(expected[index][1]));
                EXPECT_EQ(std::to_string(shares[i].shi502_type), expected[index][2]);
            }
            EXPECT_EQ(NetApiBufferFree(buffer), static_cast<NET_API_STATUS>(NERR_Success));
            EXPECT_EQ(NetApiBufferFree(buffer), static_cast<NET_API_STATUS>(ERROR_INVALID_PARAMETER));
            ++calls;
        }
        EXPECT_EQ(index, 6U);
        // One entry a call at least; all of them in one with MAX_PREFERRED_LENGTH.
        EXPECT_EQ(calls, preferred == 1U ? 6 : 1) << preferred;
        EXPECT_EQ(resume, 0U);
    }
    LPBYTE buffer = nullptr;
    DWORD read = 0;
    DWORD total = 0;
    EXPECT_EQ(NetShareEnum(nullptr, 2, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
              static_cast<NET_API_STATUS>(ERROR_INVALID_LEVEL));
    WCHAR other[] = {'\\', '\\', 'Z', 'Z', 0};
    EXPECT_EQ(NetShareEnum(other, 502, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
              static_cast<NET_API_STATUS>(ERROR_BAD_NETPATH));
}

TEST_F(NetStandIn, ComputerNameIsCutAndUpperCased)
{
    setenv("YXTOOLS_COMPUTERNAME", "a-very-long-host-name", 1);
    char name[16];
    DWORD size = sizeof name;
    ASSERT_TRUE(GetComputerNameA(name, &size));
    EXPECT_STREQ(name, "A-VERY-LONG-HOS");
    EXPECT_EQ(size, 15U);
    unsetenv("YXTOOLS_COMPUTERNAME");
}
#endif

} // namespace
