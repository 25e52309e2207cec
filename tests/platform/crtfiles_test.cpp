// Contract of the runtime's file functions, CopyFileA and GetTempFileNameA.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/win32.h"
#include "support/scratch.h"

namespace {

int ModeOf(const std::string& path)
{
    struct _stat st;
    std::memset(&st, 0, sizeof(st));
    return _stat(path.c_str(), &st) == 0 ? st.st_mode : -1;
}

TEST(Stat, ModesAsTheWindowsRuntimeBuildsThem)
{
    const scratch::Folder folder;
    folder.Write("f.txt", "abc");
    folder.Write("run.bat", "");
    folder.Write("ro.txt", "");
    folder.MakeReadOnly("ro.txt");
    scratch::fs::create_directory(folder.Native("d"));
    EXPECT_EQ(ModeOf(folder["f.txt"]), 0x81B6);   // regular, read and write for all three
    EXPECT_EQ(ModeOf(folder["run.bat"]), 0x81FF); // and execute by its extension
    EXPECT_EQ(ModeOf(folder["ro.txt"]), 0x8124);
    EXPECT_EQ(ModeOf(folder["d"]), 0x41FF);
    EXPECT_EQ(ModeOf(folder["d\\"]), -1); // a closing separator names nothing
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(ModeOf(folder["missing"]), -1);
    EXPECT_EQ(errno, ENOENT);
    struct _stat st;
    ASSERT_EQ(_stat(folder["f.txt"].c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 3);
}

TEST(AccessAndChmod, FollowTheReadOnlyAttribute)
{
    const scratch::Folder folder;
    folder.Write("f", "");
    scratch::fs::create_directory(folder.Native("d"));
    EXPECT_EQ(_access(folder["f"].c_str(), 0), 0);
    EXPECT_EQ(_access(folder["d"].c_str(), 0), 0);
    EXPECT_EQ(_access(folder["f"].c_str(), 6), 0);
    EXPECT_EQ(_chmod(folder["f"].c_str(), _S_IREAD), 0);
    EXPECT_EQ(ModeOf(folder["f"]), 0x8124);
    EXPECT_EQ(_access(folder["f"].c_str(), 4), 0);
    EXPECT_EQ(_access(folder["f"].c_str(), 2), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(_chmod(folder["f"].c_str(), _S_IREAD | _S_IWRITE), 0);
    EXPECT_EQ(_access(folder["f"].c_str(), 2), 0);
    EXPECT_EQ(_access(folder["missing"].c_str(), 0), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(_chmod(folder["missing"].c_str(), _S_IWRITE), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(Remove, RefusesFoldersReadOnlyAndOpenFiles)
{
    const scratch::Folder folder;
    folder.Write("f", "");
    folder.Write("ro", "");
    folder.Write("open", "");
    folder.MakeReadOnly("ro");
    scratch::fs::create_directory(folder.Native("d"));
    EXPECT_EQ(crt::remove(folder["f"].c_str()), 0);
    EXPECT_FALSE(folder.Exists("f"));
    EXPECT_EQ(crt::remove(folder["f"].c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(crt::remove(folder["ro"].c_str()), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(crt::remove(folder["d"].c_str()), -1);
    EXPECT_EQ(errno, EACCES);
    HANDLE held = CreateFileA(folder["open"].c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_EQ(crt::remove(folder["open"].c_str()), -1);
    EXPECT_EQ(errno, EACCES);
    CloseHandle(held);
    EXPECT_EQ(crt::remove(folder["open"].c_str()), 0);
    EXPECT_TRUE(folder.Exists("ro") && folder.Exists("d"));
}

TEST(Rename, NeverReplacesAnExistingTarget)
{
    const scratch::Folder folder;
    folder.Write("a", "A");
    folder.Write("b", "B");
    EXPECT_EQ(crt::rename(folder["a"].c_str(), folder["b"].c_str()), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(folder.Read("a") + folder.Read("b"), "AB");
    EXPECT_EQ(crt::rename(folder["a"].c_str(), folder["c"].c_str()), 0);
    EXPECT_FALSE(folder.Exists("a"));
    EXPECT_EQ(folder.Read("c"), "A");
    EXPECT_EQ(crt::rename(folder["a"].c_str(), folder["d"].c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    folder.MakeReadOnly("c"); // a read-only file may be renamed
    EXPECT_EQ(crt::rename(folder["c"].c_str(), folder["e"].c_str()), 0);
}

TEST(CopyFileA, TargetRules)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("src", "source bytes");
    folder.Write("old", "old");
    scratch::fs::create_directory(folder.Native("d"));
    struct Case {
        const char* target;
        BOOL failIfExists;
        BOOL result;
        DWORD error;
    };
    const Case cases[] = {
        {"new", TRUE, TRUE, 0},
        {"old", TRUE, FALSE, ERROR_FILE_EXISTS},
        {"old", FALSE, TRUE, 0},
        {"d", FALSE, FALSE, ERROR_ACCESS_DENIED},
        {"no-folder\\x", FALSE, FALSE, ERROR_PATH_NOT_FOUND},
        {"src", FALSE, FALSE, ERROR_SHARING_VIOLATION}, // onto itself
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.target) + (c.failIfExists ? " fail-if-exists" : ""));
        SetLastError(0);
        EXPECT_EQ(CopyFileA(folder["src"].c_str(), folder[c.target].c_str(), c.failIfExists), c.result);
        if (c.result == FALSE) {
            EXPECT_EQ(GetLastError(), c.error);
        } else {
            EXPECT_EQ(folder.Read(c.target), "source bytes");
        }
    }
    EXPECT_EQ(folder.Read("src"), "source bytes");
    EXPECT_FALSE(CopyFileA(folder["missing"].c_str(), folder["x"].c_str(), FALSE));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(folder.Exists("x"));
}

TEST(CopyFileA, CarriesTheReadOnlyAttributeAndRespectsIt)
{
    const scratch::Folder folder;
    YX_SKIP_WITHOUT_READONLY(folder);
    folder.Write("ro", "read only");
    folder.MakeReadOnly("ro");
    EXPECT_TRUE(CopyFileA(folder["ro"].c_str(), folder["copy"].c_str(), FALSE));
    EXPECT_NE(GetFileAttributesA(folder["copy"].c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
    folder.Write("other", "other");
    EXPECT_FALSE(CopyFileA(folder["other"].c_str(), folder["copy"].c_str(), FALSE));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(folder.Read("copy"), "read only");
}

TEST(GetTempFileNameA, CreatesAUniqueEmptyFile)
{
    const scratch::Folder folder;
    char first[MAX_PATH] = {};
    char second[MAX_PATH] = {};
    std::string root = folder.Root();
    root.pop_back(); // without its closing `\`: the call puts one in
    const UINT a = GetTempFileNameA(root.c_str(), "yxtools", 0, first);
    const UINT b = GetTempFileNameA(folder.Root().c_str(), "yx", 0, second);
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    EXPECT_NE(std::string(first), std::string(second));
    const std::string name = std::string(first).substr(folder.Root().size());
    EXPECT_EQ(std::string(first).substr(0, folder.Root().size()), folder.Root());
    EXPECT_EQ(name.substr(0, 3), "yxt"); // three bytes of the prefix
    EXPECT_EQ(scratch::fs::file_size(folder.Native(name)), 0u);
    EXPECT_EQ(std::string(second).find(folder.Root() + "yx"), 0u);

    char given[MAX_PATH] = {};
    EXPECT_EQ(GetTempFileNameA(folder.Root().c_str(), "ab", 0x12AB, given), 0x12ABu);
    EXPECT_EQ(GetFileAttributesA(given), INVALID_FILE_ATTRIBUTES); // a given number creates nothing
    SetLastError(0);
    EXPECT_EQ(GetTempFileNameA(folder["missing"].c_str(), "ab", 0, given), 0u);
    EXPECT_EQ(GetLastError(), ERROR_DIRECTORY);
}

} // namespace
