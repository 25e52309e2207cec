// Contract of the file handle calls: CreateFileA and the calls on its handles, and
// GetFileAttributesA.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/scratch.h"

#if defined(_WIN32)
#else
#include <spawn.h>
#include <sys/wait.h>
extern char** environ;
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
    std::string probe(self);
    probe = probe.substr(0, probe.find_last_of('\\') + 1) + "share_probe.exe";
    std::string command = "\"" + probe + "\" \"" + path + "\" " + accessText + " " + shareText;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(probe.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return -1;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
#else
    const std::string probe = scratch::fs::read_symlink("/proc/self/exe").parent_path() / "share_probe";
    std::vector<char*> argv{const_cast<char*>(probe.c_str()), const_cast<char*>(path.c_str()),
                            const_cast<char*>(accessText.c_str()), const_cast<char*>(shareText.c_str()), nullptr};
    pid_t pid = 0;
    if (posix_spawn(&pid, probe.c_str(), nullptr, nullptr, argv.data(), environ) != 0) {
        return -1;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

constexpr DWORD kRead = GENERIC_READ;
constexpr DWORD kWrite = GENERIC_WRITE;
constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

TEST(CreateFileA, DispositionsOnExistingAndMissingFiles)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    struct Case {
        DWORD disposition;
        bool exists;
        bool opens;
        DWORD error;          // last error after the call
        const char* contents; // afterwards; null when no file
    };
    const Case cases[] = {
        {CREATE_NEW, false, true, ERROR_SUCCESS, ""},
        {CREATE_NEW, true, false, ERROR_FILE_EXISTS, "old"},
        {CREATE_ALWAYS, false, true, ERROR_SUCCESS, ""},
        {CREATE_ALWAYS, true, true, ERROR_ALREADY_EXISTS, ""},
        {OPEN_EXISTING, false, false, ERROR_FILE_NOT_FOUND, nullptr},
        {OPEN_EXISTING, true, true, ERROR_SUCCESS, "old"},
        {OPEN_ALWAYS, false, true, ERROR_SUCCESS, ""},
        {OPEN_ALWAYS, true, true, ERROR_ALREADY_EXISTS, "old"},
        {TRUNCATE_EXISTING, false, false, ERROR_FILE_NOT_FOUND, nullptr},
        {TRUNCATE_EXISTING, true, true, ERROR_SUCCESS, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("disposition " + std::to_string(c.disposition) + (c.exists ? " on a file" : " on nothing"));
        scratch::fs::remove(folder.Native("f"));
        if (c.exists) {
            folder.Write("f", "old");
        }
        SetLastError(12345);
        HANDLE file = Open(folder["f"], kBoth, 0, c.disposition);
        const DWORD error = GetLastError();
        EXPECT_EQ(file != INVALID_HANDLE_VALUE, c.opens);
        if (file != INVALID_HANDLE_VALUE) {
            EXPECT_TRUE(CloseHandle(file));
        }
        if (c.opens && c.error == ERROR_SUCCESS) {
            EXPECT_TRUE(error == ERROR_SUCCESS || error == 12345) << error; // success need not clear it
        } else {
            EXPECT_EQ(error, c.error);
        }
        EXPECT_EQ(folder.Exists("f"), c.contents != nullptr);
        if (c.contents != nullptr) {
            EXPECT_EQ(folder.Read("f"), c.contents);
        }
    }
}

TEST(CreateFileA, TellsAMissingFileFromAMissingPath)
{
    const scratch::Folder folder;
    folder.Write("file.txt", "abc");
    SetLastError(0);
    EXPECT_EQ(Open(folder["nothing.txt"], kRead, kShareAll), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open(folder["no-folder\\x.txt"], kRead, kShareAll, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(Open(folder["file.txt\\x.txt"], kRead, kShareAll), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(Open(folder.Root(), kRead, kShareAll), INVALID_HANDLE_VALUE); // a folder is no file
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST(CreateFileA, SharesWithinTheProcess)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("f", "0123456789");
    struct Case {
        DWORD firstAccess, firstShare, secondAccess, secondShare;
        bool secondOpens;
    };
    const Case cases[] = {
        {kRead, FILE_SHARE_READ, kRead, FILE_SHARE_READ, true},
        {kRead, FILE_SHARE_READ, kWrite, kShareAll, false}, // the first denies writing
        {kRead, kShareAll, kRead, FILE_SHARE_READ, true},
        {kWrite, kShareAll, kRead, FILE_SHARE_READ, false}, // the second would deny the first's writing
        {kBoth, FILE_SHARE_WRITE, kRead, kShareAll, false}, // the first denies reading
        {kBoth, FILE_SHARE_WRITE, kWrite, kShareAll, true},
        {kRead, 0, kRead, kShareAll, false},
        {kRead, 0, 0, 0, true}, // access 0 takes part in no check
        {0, 0, kBoth, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("first " + std::to_string(c.firstAccess >> 30) + "/" + std::to_string(c.firstShare) + ", second " +
                     std::to_string(c.secondAccess >> 30) + "/" + std::to_string(c.secondShare));
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
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
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
    EXPECT_EQ(OpenInAnotherProcess(folder["missing"], kRead, kShareAll), static_cast<int>(ERROR_FILE_NOT_FOUND));
}

TEST(CreateFileA, RefusesWritingToAReadOnlyFile)
{
    const scratch::Folder folder;
    YX_SKIP_WITHOUT_READONLY(folder);
    folder.Write("ro", "keep");
    folder.MakeReadOnly("ro");
    EXPECT_EQ(GetFileAttributesA(folder["ro"].c_str()) & FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_READONLY);
    for (const DWORD disposition : {OPEN_EXISTING, CREATE_ALWAYS, TRUNCATE_EXISTING}) {
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
    EXPECT_EQ(moved, 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    EXPECT_TRUE(ReadFile(file, buffer, 16, &moved, nullptr));
    EXPECT_EQ(moved, 0u);

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
    DWORD sizeHigh = 7;
    EXPECT_EQ(GetFileSize(file, &sizeHigh), 4u);
    EXPECT_EQ(sizeHigh, 0u);
    EXPECT_TRUE(FlushFileBuffers(file));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(folder.Read("f"), "0123");
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
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(moved, 0u);
    EXPECT_FALSE(SetEndOfFile(reader));
    EXPECT_FALSE(FlushFileBuffers(reader));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    CloseHandle(reader);
    HANDLE writer = Open(folder["f"], kWrite, kShareAll);
    EXPECT_FALSE(ReadFile(writer, buffer, 1, &moved, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    CloseHandle(writer);
    HANDLE none = Open(folder["f"], 0, 0);
    EXPECT_EQ(GetFileSize(none, nullptr), 3u);
    EXPECT_FALSE(ReadFile(none, buffer, 1, &moved, nullptr));
    CloseHandle(none);
    EXPECT_EQ(folder.Read("f"), "abc");
}

TEST(HandleCalls, RefuseTheNullAndAClosedHandle)
{
    const scratch::Folder folder;
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(FlushFileBuffers(nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(GetFileSize(nullptr, nullptr), INVALID_FILE_SIZE);
    HANDLE file = Open(folder["f"], kBoth, 0, CREATE_ALWAYS);
    EXPECT_TRUE(CloseHandle(file));
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(file));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(GetFileAttributesA, FoldersFilesAndNothing)
{
    const scratch::Folder folder;
    folder.Write("f", "x");
    EXPECT_EQ(GetFileAttributesA(folder.Root().c_str()) & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY),
              FILE_ATTRIBUTE_DIRECTORY); // with its closing `\`
    EXPECT_EQ(GetFileAttributesA(folder["f"].c_str()) & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY), 0u);
    SetLastError(0);
    EXPECT_EQ(GetFileAttributesA(folder["missing"].c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetFileAttributesA(folder["missing\\x"].c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(GetFileAttributesA(folder["f\\x"].c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
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
    for (const std::string& path : {std::string("T:\\root\\f"), std::string("t:/root/f"), std::string("T:root\\f"),
                                    folder.Native("f").string()}) {
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
