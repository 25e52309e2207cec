// Contract of the paths the file calls take, as a Windows host writes them: the answers are
// Wine's (the Windows build's reference) and the stand-in's alike. Where Wine is known to answer
// otherwise than Windows, the case says so.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "find_names.h"
#include "support/scratch.h"

#if defined(_WIN32)
#include <direct.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using platform_test::Find;
using platform_test::Names;

// The last error of an open (ERROR_SUCCESS when it opened; the handle is closed again).
DWORD OpenError(const std::string& path, DWORD disposition = OPEN_EXISTING, DWORD access = GENERIC_READ)
{
    SetLastError(0xDEAD);
    HANDLE file = CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return GetLastError();
    }
    CloseHandle(file);
    return ERROR_SUCCESS;
}

// The attributes of a path, or the error that came instead.
std::string Attributes(const std::string& path)
{
    SetLastError(0xDEAD);
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? "error " + std::to_string(GetLastError())
                                                 : "attributes " + std::to_string(attributes);
}

const std::string kFile = "attributes " + std::to_string(FILE_ATTRIBUTE_ARCHIVE);
const std::string kFolder = "attributes " + std::to_string(FILE_ATTRIBUTE_DIRECTORY);
std::string Error(DWORD error)
{
    return "error " + std::to_string(error);
}

TEST(PathResolver, CaseDotsSpacesAndSeparators)
{
    const scratch::Folder folder;
    scratch::fs::create_directory(folder.Native("data"));
    folder.Write("data/held.txt", "x");
    folder.Write("map.txt", "");
    const struct {
        const char* path;
        DWORD open;             // the error of an open of an existing file
        std::string attributes; // what GetFileAttributesA gives
    } cases[] = {
        {"DATA\\HELD.TXT", ERROR_SUCCESS, kFile}, // no case counts, in folders as in names
        {"Data/Held.Txt", ERROR_SUCCESS, kFile},
        {"data\\held.txt.", ERROR_SUCCESS, kFile}, // trailing dots and spaces of the last name go
        {"data\\held.txt. . ..", ERROR_SUCCESS, kFile},
        {"data.\\held.txt", ERROR_SUCCESS, kFile}, // a folder name loses one dot
        {"data..\\held.txt", ERROR_PATH_NOT_FOUND, Error(ERROR_PATH_NOT_FOUND)},
        {"data \\held.txt", ERROR_PATH_NOT_FOUND, Error(ERROR_PATH_NOT_FOUND)}, // and no space
        {"...\\map.txt", ERROR_INVALID_NAME, Error(ERROR_INVALID_NAME)},
        {" map.txt", ERROR_FILE_NOT_FOUND, Error(ERROR_FILE_NOT_FOUND)},       // leading spaces stay
        {"data\\...", ERROR_ACCESS_DENIED, kFolder},                           // "..." is the folder itself
        {"data\\held.txt\\", ERROR_INVALID_NAME, Error(ERROR_PATH_NOT_FOUND)}, // a file is no folder
        {"data\\held.txt/", ERROR_INVALID_NAME, Error(ERROR_PATH_NOT_FOUND)},
        {"data\\held.txt\\x", ERROR_PATH_NOT_FOUND, Error(ERROR_PATH_NOT_FOUND)},
        {"data\\", ERROR_ACCESS_DENIED, kFolder},
        {"data\\..\\map.txt", ERROR_SUCCESS, kFile}, // ".." goes by the text, before any lookup
        {"missing\\..\\map.txt", ERROR_SUCCESS, kFile},
        {"map.txt\\..\\map.txt", ERROR_SUCCESS, kFile},
        {".\\data\\.\\\\held.txt", ERROR_SUCCESS, kFile},
        {"missing\\x", ERROR_PATH_NOT_FOUND, Error(ERROR_PATH_NOT_FOUND)},
        {"data\\missing", ERROR_FILE_NOT_FOUND, Error(ERROR_FILE_NOT_FOUND)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(OpenError(folder[c.path]), c.open);
        EXPECT_EQ(Attributes(folder[c.path]), c.attributes);
    }
    // The finder looks names up the same way.
    EXPECT_EQ(Find(folder["DATA\\*"]), (Names{".", "..", "held.txt"}));
    EXPECT_EQ(Find(folder["Data.\\HELD.*"]), (Names{"held.txt"}));
    EXPECT_EQ(Find(folder["data\\"]), (Names{Error(ERROR_FILE_NOT_FOUND)}));
    EXPECT_EQ(Find(folder["data"]), (Names{"data"}));
}

TEST(PathResolver, ANewNameKeepsTheCallersCaseAndAnOldOneIsMet)
{
    const scratch::Folder folder;
    EXPECT_EQ(OpenError(folder["New.Txt"], CREATE_NEW, GENERIC_WRITE), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(folder["NEW.TXT"], CREATE_NEW, GENERIC_WRITE), ERROR_FILE_EXISTS);
    EXPECT_EQ(OpenError(folder["new.txt."], CREATE_ALWAYS, GENERIC_WRITE), ERROR_SUCCESS);
    EXPECT_EQ(Find(folder["*"]), (Names{".", "..", "New.Txt"}));
    // The runtime's calls too: a rename onto another case of a taken name is refused.
    folder.Write("other", "");
    errno = 0;
    EXPECT_EQ(crt::rename(folder["other"].c_str(), folder["NEW.txt"].c_str()), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(_access(folder["NEW.TXT"].c_str(), 0), 0);
    EXPECT_EQ(crt::remove(folder["OTHER"].c_str()), 0);
    EXPECT_EQ(Find(folder["*"]), (Names{".", "..", "New.Txt"}));
}

TEST(PathResolver, CharactersThatNoNameHoldsCreateNothing)
{
    const scratch::Folder folder;
    for (const char* name : {"a*b", "a?b", "a<b", "a>b", "a|b", "a\"b",
                             "a\x01"
                             "b",
                             "a\x1f"
                             "b",
                             "a*b\\x", "a|b\\"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(OpenError(folder[name], CREATE_NEW, GENERIC_WRITE), ERROR_INVALID_NAME);
        EXPECT_EQ(OpenError(folder[name], OPEN_ALWAYS, GENERIC_WRITE), ERROR_INVALID_NAME);
        EXPECT_EQ(Attributes(folder[name]), Error(ERROR_INVALID_NAME));
    }
    EXPECT_EQ(Find(folder["*"]), (Names{".", ".."}));
    // Byte 0x7F is an ordinary character.
    EXPECT_EQ(OpenError(folder["a\x7f"
                               "b"],
                        CREATE_NEW, GENERIC_WRITE),
              ERROR_SUCCESS);
    // The finder takes `|` in a pattern as a character that no name has.
    EXPECT_EQ(Find(folder["a|b"]), (Names{Error(ERROR_FILE_NOT_FOUND)}));
}

TEST(PathResolver, ReservedDeviceNames)
{
    const scratch::Folder folder;
    // NUL, with any extension, trailing spaces or dots, is the null device in every folder.
    for (const char* name : {"nul", "NUL.txt", "nul .txt", "nul.", "Nul.tar.gz"}) {
        SCOPED_TRACE(name);
        HANDLE file = CreateFileA(folder[name].c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD moved = 0;
        EXPECT_TRUE(WriteFile(file, "abc", 3, &moved, nullptr));
        EXPECT_EQ(moved, 3u);
        char buffer[4];
        EXPECT_TRUE(ReadFile(file, buffer, sizeof(buffer), &moved, nullptr));
        EXPECT_EQ(moved, 0u);
        EXPECT_TRUE(CloseHandle(file));
    }
    // Printer and parallel ports are not there (Wine opens COM1 and AUX when the host has a
    // serial port, so they are left out here).
    for (const char* name : {"prn", "LPT1", "lpt2.log", "com9"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(OpenError(folder[name], OPEN_ALWAYS, GENERIC_WRITE), ERROR_FILE_NOT_FOUND);
    }
    // Every device name answers as a file; names that only look like one are plain names.
    for (const char* name : {"nul", "con", "CON.txt", "aux", "prn", "com1", "COM9.x", "lpt1", "conin$"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Attributes(folder[name]), kFile);
    }
    for (const char* name : {"com0", "lpt10", "nulx", "con1"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Attributes(folder[name]), Error(ERROR_FILE_NOT_FOUND));
    }
    EXPECT_EQ(Attributes(folder["missing\\nul"]), Error(ERROR_PATH_NOT_FOUND)); // the folder counts
    EXPECT_EQ(OpenError(folder["nul\\x"]), ERROR_PATH_NOT_FOUND);
    // The runtime sees no file there.
    struct _stat st {};
    EXPECT_EQ(_stat(folder["nul"].c_str(), &st), -1);
    EXPECT_EQ(Find(folder["NUL"]), (Names{"NUL"}));
    EXPECT_EQ(Find(folder["*"]), (Names{".", ".."})); // nothing was created
}

TEST(PathResolver, DotDotStopsAtTheRootOfTheDrive)
{
    const scratch::Folder folder;
    folder.Write("map.txt", "");
    const std::string& root = folder.Root(); // "X:\...\"
    const std::string drive = root.substr(0, 3);
    const std::string below = root.substr(3);
    EXPECT_EQ(OpenError(drive + "..\\" + below + "map.txt"), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(drive + "..\\..\\..\\..\\..\\..\\..\\..\\" + below + "map.txt"), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(root.substr(0, 2) + "/../" + below + "map.txt"), ERROR_SUCCESS);
    EXPECT_EQ(Attributes(drive + ".."), kFolder);
}

TEST(PathResolver, TheDeviceNameSpaceOfAPath)
{
    const scratch::Folder folder;
    folder.Write("map.txt", "");
    EXPECT_EQ(OpenError("\\\\?\\" + folder["map.txt"]), ERROR_SUCCESS);
    EXPECT_EQ(OpenError("\\\\.\\" + folder["map.txt"]), ERROR_SUCCESS);
    EXPECT_EQ(OpenError("//./" + folder["map.txt"]), ERROR_SUCCESS);
    // "\\?\" takes the rest as written: "." and ".." are no names there.
    EXPECT_EQ(OpenError("\\\\?\\" + folder[".\\map.txt"]), ERROR_INVALID_NAME);
    EXPECT_EQ(OpenError("\\\\.\\" + folder[".\\map.txt"]), ERROR_SUCCESS);
    EXPECT_EQ(OpenError("\\\\.\\nul"), ERROR_SUCCESS);
}

TEST(PathResolver, PathsOfMaxPathBytesOrMore)
{
    const scratch::Folder folder;
    const auto named = [&](std::size_t length) {
        return folder.Root() + std::string(length - folder.Root().size(), 'n');
    };
    EXPECT_EQ(OpenError(named(259), CREATE_NEW, GENERIC_WRITE), ERROR_SUCCESS);
    EXPECT_EQ(Attributes(named(259)), kFile);
    EXPECT_EQ(OpenError(named(261), CREATE_NEW, GENERIC_WRITE), ERROR_FILENAME_EXCED_RANGE);
    EXPECT_EQ(Attributes(named(261)), Error(ERROR_FILENAME_EXCED_RANGE));
    // Counted as written, before "." and ".." are taken out.
    const std::string dotted = folder.Root() + ".\\" + std::string(259 - folder.Root().size(), 'n');
    EXPECT_EQ(Attributes(dotted), Error(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_EQ(Find(folder["*"]), (Names{".", "..", std::string(259 - folder.Root().size(), 'n')}));
}

TEST(PathResolver, APathOfExactlyMaxPathBytesIsRefused)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Wine takes a path of 260 bytes; Windows refuses it, as the stand-in does";
#else
    const scratch::Folder folder;
    const std::string path = folder.Root() + std::string(MAX_PATH - folder.Root().size(), 'n');
    EXPECT_EQ(OpenError(path, CREATE_NEW, GENERIC_WRITE), ERROR_FILENAME_EXCED_RANGE);
    EXPECT_EQ(Find(folder["*"]), (Names{".", ".."}));
#endif
}

TEST(PathResolver, UncPathsInBothForms)
{
    const scratch::Folder folder;
    // No such server: both spellings are the same missing path.
    for (const char* path : {"\\\\yxtools-none\\share\\x", "//yxtools-none/share/x", "\\/yxtools-none\\share/x"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(OpenError(path), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(Find(std::string(path) + "\\*"), (Names{Error(ERROR_PATH_NOT_FOUND)}));
    }
}

TEST(PathResolver, SharesAndLinksStayInTheirFolders)
{
#if defined(_WIN32)
    GTEST_SKIP() << "a share or a link is set up in the stand-in's prefix; Wine's prefix has neither";
#else
    const scratch::Folder folder;
    // The share \\Server\Share is a folder of the prefix; the drive holds a link that leads out.
    const scratch::fs::path prefix = std::getenv("YXTOOLS_PREFIX");
    scratch::fs::create_directories(prefix / "dosdevices" / "unc" / "Server");
    scratch::fs::create_directory_symlink(folder.Native("share"), prefix / "dosdevices" / "unc" / "Server" / "Share");
    scratch::fs::create_directories(folder.Native("share/in"));
    folder.Write("share/f", "");
    folder.Write("map.txt", "");
    scratch::fs::create_directory_symlink(folder.Native("share/in"), folder.Native("link"));
    for (const char* path : {"\\\\server\\share\\F", "//Server/Share/f", "\\\\SERVER\\share\\..\\..\\f",
                             "\\\\?\\UNC\\server\\share\\f", "\\\\server\\share\\in\\..\\f"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(OpenError(path), ERROR_SUCCESS);
    }
    EXPECT_EQ(Attributes("\\\\server\\share"), kFolder);
    EXPECT_EQ(Attributes("\\\\server"), Error(ERROR_PATH_NOT_FOUND));
    // A link is followed, but ".." goes by the text: back out of the link, not out of its target.
    EXPECT_EQ(OpenError(folder["link\\..\\map.txt"]), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(folder["link\\..\\f"]), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Find(folder["LINK\\*"]), (Names{".", ".."}));
#endif
}

#if defined(_WIN32)
bool ChangeFolder(const std::string& windowsPath, const scratch::fs::path& /*native*/)
{
    return SetCurrentDirectoryA(windowsPath.c_str()) != FALSE;
}
#else
bool ChangeFolder(const std::string& /*windowsPath*/, const scratch::fs::path& native)
{
    return ::chdir(native.c_str()) == 0;
}
#endif

TEST(PathResolver, DriveRelativePathsStartInTheDrivesCurrentFolder)
{
    const scratch::Folder folder;
    scratch::fs::create_directory(folder.Native("data"));
    folder.Write("data/held.txt", "x");
    folder.Write("map.txt", "");
    const std::string drive = folder.Root().substr(0, 2);
    const auto saved = scratch::fs::current_path();
    ASSERT_TRUE(ChangeFolder(folder["data"], folder.Native("data")));
    EXPECT_EQ(OpenError(drive + "held.txt"), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(drive + "..\\map.txt"), ERROR_SUCCESS);
    EXPECT_EQ(OpenError("held.txt"), ERROR_SUCCESS);
    EXPECT_EQ(Attributes(drive), kFolder);
    EXPECT_EQ(Find(drive + "*"), (Names{".", "..", "held.txt"}));
    EXPECT_EQ(Find(drive + "."), (Names{"data"})); // the current folder's own entry
    EXPECT_EQ(Find(drive), (Names{Error(ERROR_FILE_NOT_FOUND)}));
    // Once the process is elsewhere, the drive's current folder is its root.
    ASSERT_TRUE(ChangeFolder(folder.Root().substr(0, 3) + "..", scratch::fs::path("/")));
    EXPECT_EQ(OpenError(drive + "held.txt"), ERROR_FILE_NOT_FOUND);
    scratch::fs::current_path(saved);
}

TEST(PathResolver, FilesThatAreNeitherFileNorFolderNeverBlock)
{
#if defined(_WIN32)
    GTEST_SKIP() << "a Windows host has no FIFO to make";
#else
    const scratch::Folder folder;
    ASSERT_EQ(::mkfifo(folder.Native("pipe").c_str(), 0666), 0);
    // An open that waited for a writer would hang here.
    for (DWORD access : {GENERIC_READ, GENERIC_WRITE, GENERIC_READ | GENERIC_WRITE, DWORD{0}}) {
        EXPECT_EQ(OpenError(folder["pipe"], OPEN_EXISTING, access), ERROR_ACCESS_DENIED);
        EXPECT_EQ(OpenError(folder["PIPE"], OPEN_ALWAYS, access), ERROR_ACCESS_DENIED);
    }
    EXPECT_EQ(OpenError(folder["pipe"], CREATE_NEW, GENERIC_WRITE), ERROR_FILE_EXISTS);
    EXPECT_EQ(Attributes(folder["pipe"]), kFile);
    EXPECT_FALSE(CopyFileA(folder["pipe"].c_str(), folder["copy"].c_str(), TRUE));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(crt::remove(folder["pipe"].c_str()), 0); // no open handle holds it
    EXPECT_EQ(Find(folder["*"]), (Names{".", ".."}));
#endif
}

} // namespace
