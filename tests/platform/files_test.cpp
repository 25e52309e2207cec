// Contract of the file handle calls: CreateFileA and the calls on its handles, and
// GetFileAttributesA, in the two dispositions and the access and share modes the library uses.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/win32.h"
#include "support/scratch.h"

#if defined(_WIN32)
#include <process.h>
#else
#include <sys/wait.h>
#endif

namespace {

HANDLE Open(const std::string& path, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING)
{
    return CreateFileA(path.c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Runs share_probe, which sits beside this program, and gives its exit code.
int OpenInAnotherProcess(const std::string& path, DWORD access, DWORD share)
{
    const std::string accessText = std::to_string(access);
    const std::string shareText = std::to_string(share);
#if defined(_WIN32)
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, MAX_PATH);
    const std::string probe = scratch::fs::path(self).parent_path().string() + "\\share_probe.exe";
    const std::string quoted = "\"" + path + "\"";
    return static_cast<int>(
        _spawnl(_P_WAIT, probe.c_str(), "share_probe", quoted.c_str(), accessText.c_str(), shareText.c_str(), nullptr));
#else
    const std::string probe = scratch::fs::read_symlink("/proc/self/exe").parent_path() / "share_probe";
    const int status = std::system(("'" + probe + "' '" + path + "' " + accessText + " " + shareText).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

constexpr DWORD kRead = GENERIC_READ;
constexpr DWORD kWrite = GENERIC_WRITE;
constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

TEST(CreateFileA, DispositionsAndTheErrorsOfAFailedOpen)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("file", "old");
    const struct {
        const char* name;
        DWORD disposition;
        DWORD error;          // ERROR_SUCCESS when it opens
        const char* contents; // afterwards, when it opens
    } cases[] = {
        {"file", OPEN_EXISTING, ERROR_SUCCESS, "old"},
        {"file", CREATE_ALWAYS, ERROR_SUCCESS, ""},
        {"new", CREATE_ALWAYS, ERROR_SUCCESS, ""},
        {"missing", OPEN_EXISTING, ERROR_FILE_NOT_FOUND, nullptr},
        {"no-folder\\x", CREATE_ALWAYS, ERROR_PATH_NOT_FOUND, nullptr},
        {"file\\x", OPEN_EXISTING, ERROR_PATH_NOT_FOUND, nullptr}, // a file is no folder
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " disposition " + std::to_string(c.disposition));
        SetLastError(0);
        HANDLE file = Open(folder[c.name], kBoth, 0, c.disposition);
        EXPECT_EQ(file != INVALID_HANDLE_VALUE, c.error == ERROR_SUCCESS);
        if (file != INVALID_HANDLE_VALUE) {
            EXPECT_TRUE(CloseHandle(file));
            EXPECT_EQ(folder.Read(c.name), c.contents);
        } else {
            EXPECT_EQ(GetLastError(), c.error);
        }
    }
    EXPECT_FALSE(folder.Exists("missing"));
}

TEST(CreateFileA, SharesWithinTheProcess)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("f", "0123456789");
    const struct {
        DWORD firstAccess, firstShare, secondAccess, secondShare;
        bool secondOpens;
    } cases[] = {
        {kRead, FILE_SHARE_READ, kRead, FILE_SHARE_READ, true},
        {kRead, FILE_SHARE_READ, kWrite, kShareAll, false}, // the first denies writing
        {kWrite, kShareAll, kRead, FILE_SHARE_READ, false}, // the second would deny the first's writing
        {kBoth, FILE_SHARE_WRITE, kRead, kShareAll, false}, // the first denies reading
        {kBoth, FILE_SHARE_WRITE, kWrite, kShareAll, true},
        {kRead, 0, 0, 0, true}, // access 0 takes part in no check
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        HANDLE first = Open(folder["f"], c.firstAccess, c.firstShare);
        ASSERT_NE(first, INVALID_HANDLE_VALUE);
        SetLastError(0);
        HANDLE second = Open(folder["f"], c.secondAccess, c.secondShare);
        EXPECT_EQ(second != INVALID_HANDLE_VALUE, c.secondOpens);
        if (second != INVALID_HANDLE_VALUE) {
            CloseHandle(second);
        } else {
            EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
        }
        CloseHandle(first);
    }
    // A refused CREATE_ALWAYS leaves the file as it was.
    HANDLE held = Open(folder["f"], kRead, 0);
    EXPECT_EQ(Open(folder["f"], kBoth, kShareAll, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
    CloseHandle(held);
    EXPECT_EQ(folder.Read("f"), "0123456789");
}

TEST(CreateFileA, SharesWithAnotherProcess)
{
    const scratch::Folder folder;
    folder.Write("f", "abc");
    HANDLE held = Open(folder["f"], kRead, FILE_SHARE_READ); // deny write
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenInAnotherProcess(folder["f"], kWrite, kShareAll), static_cast<int>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(OpenInAnotherProcess(folder["f"], kRead, kShareAll), 0);
    CloseHandle(held);
    EXPECT_EQ(OpenInAnotherProcess(folder["f"], kWrite, kShareAll), 0);
}

TEST(CreateFileA, RefusesWritingToAReadOnlyFile)
{
    const scratch::Folder folder;
    YX_SKIP_WITHOUT_READONLY(folder);
    folder.Write("ro", "keep");
    folder.MakeReadOnly("ro");
    EXPECT_EQ(GetFileAttributesA(folder["ro"].c_str()) & FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_READONLY);
    for (const DWORD disposition : {OPEN_EXISTING, CREATE_ALWAYS}) {
        SetLastError(0);
        EXPECT_EQ(Open(folder["ro"], kWrite, kShareAll, disposition), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    }
    HANDLE reader = Open(folder["ro"], kRead, kShareAll);
    EXPECT_NE(reader, INVALID_HANDLE_VALUE);
    CloseHandle(reader);
    EXPECT_EQ(folder.Read("ro"), "keep");
}

TEST(HandleCalls, ReadWriteSeekAndTruncate)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    HANDLE file = Open(folder["f"], kBoth, 0, CREATE_ALWAYS);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD moved = 0;
    EXPECT_TRUE(WriteFile(file, "0123456789", 10, &moved, nullptr));
    EXPECT_EQ(moved, 10u);
    EXPECT_EQ(GetFileSize(file, nullptr), 10u);
    EXPECT_EQ(SetFilePointer(file, 2, nullptr, FILE_BEGIN), 2u);
    EXPECT_EQ(SetFilePointer(file, 3, nullptr, FILE_CURRENT), 5u);
    EXPECT_EQ(SetFilePointer(file, -4, nullptr, FILE_END), 6u);
    char buffer[16] = {};
    EXPECT_TRUE(ReadFile(file, buffer, 16, &moved, nullptr)); // a short read is the end of the file
    EXPECT_EQ(std::string(buffer, moved), "6789");

    SetLastError(0);
    EXPECT_EQ(SetFilePointer(file, -11, nullptr, FILE_END), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), ERROR_NEGATIVE_SEEK);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 10u); // not moved

    // The wide form: a position beyond 4 GiB, its high half in the variable. The narrow form
    // then reports the low half.
    LONG high = 1;
    EXPECT_EQ(SetFilePointer(file, 0x10, &high, FILE_BEGIN), 0x10u);
    EXPECT_EQ(high, 1);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 0x10u);
    high = 0;
    SetLastError(5);
    EXPECT_EQ(SetFilePointer(file, -1, &high, FILE_BEGIN), 0xFFFFFFFFu); // position 0xFFFFFFFF
    EXPECT_EQ(GetLastError(), NO_ERROR);

    EXPECT_EQ(SetFilePointer(file, 4, nullptr, FILE_BEGIN), 4u);
    EXPECT_TRUE(SetEndOfFile(file));
    EXPECT_EQ(GetFileSize(file, nullptr), 4u);
    EXPECT_TRUE(FlushFileBuffers(file));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(folder.Read("f"), "0123");
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(file)); // a closed handle, as a copied file object may hold
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(FlushFileBuffers(nullptr));
}

TEST(HandleCalls, RefuseWhatTheHandleWasNotOpenedFor)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("f", "abc");
    char buffer[4];
    DWORD moved = 9;
    HANDLE reader = Open(folder["f"], kRead, kShareAll);
    EXPECT_FALSE(WriteFile(reader, "x", 1, &moved, nullptr));
    EXPECT_EQ(moved, 0u);
    EXPECT_FALSE(SetEndOfFile(reader));
    CloseHandle(reader);
    HANDLE writer = Open(folder["f"], kWrite, kShareAll);
    EXPECT_FALSE(ReadFile(writer, buffer, 1, &moved, nullptr));
    CloseHandle(writer);
    EXPECT_EQ(folder.Read("f"), "abc");
}

TEST(GetFileAttributesA, FoldersFilesAndNothing)
{
    const scratch::Folder folder;
    folder.Write("f", "x");
    const DWORD kBits = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    EXPECT_EQ(GetFileAttributesA(folder.Root().c_str()) & kBits, FILE_ATTRIBUTE_DIRECTORY); // with its closing `\`
    EXPECT_EQ(GetFileAttributesA(folder["f"].c_str()) & kBits, 0u);
    EXPECT_EQ(GetFileAttributesA(folder["missing"].c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetFileAttributesA(folder["f\\"].c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(GetFileAttributesA, AReadOnlyFolderReportsTheAttribute)
{
    const scratch::Folder folder;
    YX_SKIP_WITHOUT_READONLY_FOLDERS(folder);
    scratch::fs::create_directory(folder.Native("d"));
    folder.MakeReadOnly("d");
    EXPECT_EQ(GetFileAttributesA(folder["d"].c_str()), FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY);
}

#if !defined(_WIN32)
TEST(PosixPaths, DriveLettersResolveInThePrefixAndPosixPathsStandAsTheyAre)
{
    const scratch::Folder folder;
    folder.Write("f", "abc");
    for (const std::string& path :
         {std::string("T:\\root\\f"), std::string("t:/root/f"), folder.Native("f").string()}) {
        SCOPED_TRACE(path);
        HANDLE file = Open(path, kRead, kShareAll);
        EXPECT_NE(file, INVALID_HANDLE_VALUE);
        CloseHandle(file);
    }
    SetLastError(0);
    EXPECT_EQ(Open("Q:\\f", kRead, kShareAll), INVALID_HANDLE_VALUE); // no such drive in the prefix
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}
#endif

} // namespace
