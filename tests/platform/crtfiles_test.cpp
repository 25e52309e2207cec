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

TEST(StatAccessAndChmod, ModesAsTheWindowsRuntimeBuildsThem)
{
    const scratch::Folder folder;
    folder.Write("f.txt", "abc");
    folder.Write("run.bat", "");
    scratch::fs::create_directory(folder.Native("d"));
    EXPECT_EQ(ModeOf(folder["f.txt"]), 0x81B6);   // regular, read and write for all three
    EXPECT_EQ(ModeOf(folder["run.bat"]), 0x81FF); // and execute by its extension
    EXPECT_EQ(ModeOf(folder["d"]), 0x41FF);
    EXPECT_EQ(ModeOf(folder["d\\"]), -1); // a closing separator names nothing
    EXPECT_EQ(ModeOf(folder["missing"]), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(_access(folder["d"].c_str(), 0), 0);
    EXPECT_EQ(_access(folder["missing"].c_str(), 0), -1);

    EXPECT_EQ(_chmod(folder["f.txt"].c_str(), _S_IREAD), 0);
    EXPECT_EQ(ModeOf(folder["f.txt"]), 0x8124);
    EXPECT_EQ(_chmod(folder["f.txt"].c_str(), _S_IREAD | _S_IWRITE), 0);
    EXPECT_EQ(ModeOf(folder["f.txt"]), 0x81B6);
    EXPECT_EQ(_chmod(folder["missing"].c_str(), _S_IWRITE), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(RemoveAndRename, WindowsRules)
{
    const scratch::Folder folder;
    for (const char* name : {"f", "ro", "open", "a", "b"}) {
        folder.Write(name, name);
    }
    folder.MakeReadOnly("ro");
    scratch::fs::create_directory(folder.Native("d"));
    EXPECT_EQ(crt::remove(folder["f"].c_str()), 0);
    EXPECT_FALSE(folder.Exists("f"));
    EXPECT_EQ(crt::remove(folder["f"].c_str()), -1);
    EXPECT_EQ(crt::remove(folder["ro"].c_str()), -1);
    EXPECT_EQ(crt::remove(folder["d"].c_str()), -1);
    HANDLE held = CreateFileA(folder["open"].c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_EQ(crt::remove(folder["open"].c_str()), -1);
    CloseHandle(held);
    EXPECT_TRUE(folder.Exists("open") && folder.Exists("ro") && folder.Exists("d"));

    // rename never replaces an existing target, and a read-only file may be renamed.
    EXPECT_EQ(crt::rename(folder["a"].c_str(), folder["b"].c_str()), -1);
    EXPECT_EQ(folder.Read("a") + folder.Read("b"), "ab");
    EXPECT_EQ(crt::rename(folder["a"].c_str(), folder["c"].c_str()), 0);
    EXPECT_EQ(folder.Read("c"), "a");
    EXPECT_FALSE(folder.Exists("a"));
    EXPECT_EQ(crt::rename(folder["a"].c_str(), folder["e"].c_str()), -1);
    EXPECT_EQ(crt::rename(folder["ro"].c_str(), folder["e"].c_str()), 0);
}

TEST(CopyFileA, OverwritesButLeavesNoPartialTarget)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("src", "source bytes");
    folder.Write("old", "old");
    scratch::fs::create_directory(folder.Native("d"));
    const struct {
        const char* source;
        const char* target;
        bool copies;
    } cases[] = {
        {"src", "new", true},           {"src", "old", true},  {"src", "d", false},
        {"src", "no-folder\\x", false}, {"src", "src", false}, // onto itself, which must survive
        {"missing", "x", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.source) + " to " + c.target);
        EXPECT_EQ(CopyFileA(folder[c.source].c_str(), folder[c.target].c_str(), FALSE) != FALSE, c.copies);
        if (c.copies) {
            EXPECT_EQ(folder.Read(c.target), "source bytes");
        }
    }
    EXPECT_EQ(folder.Read("src"), "source bytes");
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
    EXPECT_EQ(folder.Read("copy"), "read only");
}

TEST(GetTempFileNameA, CreatesAUniqueEmptyFile)
{
    const scratch::Folder folder;
    char first[MAX_PATH] = {};
    char second[MAX_PATH] = {};
    std::string root = folder.Root();
    root.pop_back(); // without its closing `\`: the call puts one in
    ASSERT_NE(GetTempFileNameA(root.c_str(), "yxtools", 0, first), 0u);
    ASSERT_NE(GetTempFileNameA(folder.Root().c_str(), "yxtools", 0, second), 0u);
    EXPECT_NE(std::string(first), std::string(second));
    EXPECT_EQ(std::string(first).rfind(folder.Root() + "yxt", 0), 0u); // three bytes of the prefix
    EXPECT_EQ(scratch::fs::file_size(folder.Native(std::string(first).substr(folder.Root().size()))), 0u);
    EXPECT_EQ(GetTempFileNameA(folder["missing"].c_str(), "ab", 0, first), 0u);
}

} // namespace
