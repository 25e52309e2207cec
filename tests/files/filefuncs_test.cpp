#include <gtest/gtest.h>

#include <string>

#include <yxtools/files.h>

#include "support/scratch.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

namespace {

TEST(FileChangeFileExtension, Table)
{
    const _SS<char> bak(".bak");
    const _SS<char> bare("bak");
    const _SS<char> empty;
    const _SS<char> txt(".txt");
    const struct {
        const char* path;
        const _SS<char>* extension;
        const char* result;
    } cases[] = {
        {"C:\\data\\map.txt", &bak, "C:\\data\\map.bak"},
        {"C:\\data\\map.txt", &bare, "C:\\data\\map.bak"},
        {"C:\\data\\map", &bak, "C:\\data\\map.bak"},
        {"C:\\data\\map.txt", nullptr, "C:\\data\\map"},
        {"C:\\data\\map.txt", &empty, "C:\\data\\map."},
        {"\\\\server\\share\\map.txt", &bak, "\\\\server\\share\\map.bak"},
        {"C:\\data\\", &bak, "C:\\data\\.bak"},
        {"C:map.txt", &bak, "C:\\map.bak"},
        {"map.txt", &bak, "\\map.bak"},
        {"a.b.txt", &bak, "\\a.b.bak"},
        {"http://server/dir/page.html", &txt, "http://server/dir/\\page.txt"},
    };
    for (const auto& c : cases) {
        _SS<char> path(c.path);
        File_ChangeFileExtension(path, c.extension);
        EXPECT_EQ(path, c.result) << c.path;
    }
}

TEST(FileQuestions, ModesAccessAndKinds)
{
    const scratch::Folder folder;
    folder.Write("f", "abc");
    folder.Write("ro", "abc");
    folder.MakeReadOnly("ro");
    scratch::fs::create_directory(folder.Native("d"));
    EXPECT_TRUE(File_Exist(folder["d"]));
    EXPECT_FALSE(File_Exist(folder["missing"]));
    EXPECT_EQ(File_GetMod(folder["f"]), 0x81B6);
    EXPECT_EQ(File_GetMod(folder["missing"]), 0);
    EXPECT_TRUE(File_IsDirectory(folder["d"]));
    EXPECT_FALSE(File_IsDirectory(folder["f"]));
    EXPECT_TRUE(File_IsFileReadOnly(folder["ro"]));
    EXPECT_FALSE(File_IsFileReadOnly(folder["f"]));
    EXPECT_FALSE(File_IsFileReadOnly(folder["missing"])); // nothing there is read-only

    int error = -1;
    EXPECT_TRUE(File_Access(folder["d"], 0, &error));
    EXPECT_EQ(error, 0);
    EXPECT_TRUE(File_Access(folder["f"], 0x0080 | 0x0100, nullptr));
    EXPECT_FALSE(File_Access(folder["ro"], 0x0080 | 0x0100, nullptr));
    EXPECT_FALSE(File_Access(folder["f"], 0x0040, nullptr)); // not executable
    EXPECT_FALSE(File_Access(folder["missing"], 0, &error));
    EXPECT_EQ(error, ENOENT);
    EXPECT_TRUE(File_ChMod(folder["f"], 0x0100, &error));
    EXPECT_EQ(error, 0);
    EXPECT_TRUE(File_IsFileReadOnly(folder["f"]));
    EXPECT_FALSE(File_ChMod(folder["missing"], 0x0180, &error));
    EXPECT_EQ(error, ENOENT);
}

// A FIFO is no file the library may open: its questions answer at once, never waiting for a writer.
TEST(FileQuestions, AFifoNeverBlocks)
{
#if defined(_WIN32)
    GTEST_SKIP() << "a Windows host has no FIFO to make";
#else
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    ASSERT_EQ(::mkfifo(folder.Native("pipe").c_str(), 0666), 0);
    unsigned short reason = 0;
    EXPECT_FALSE(File_IsOpenable(folder["pipe"], 0x01, &reason));
    EXPECT_FALSE(File_IsOpenable(folder["PIPE"], 0x02, &reason));
    EXPECT_FALSE(File_CopyFile(folder["pipe"], folder["copy"]));
    EXPECT_FALSE(File_Exist(folder["copy"]));
    EXPECT_TRUE(File_Exist(folder["Pipe"]));
    EXPECT_TRUE(File_DeleteFile(folder["pipe"]));
#endif
}

TEST(FileIsDriveReadOnly, ProbesAndLeavesNoProbeBehind)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    scratch::fs::create_directory(folder.Native("d"));
    folder.Write("d/$$$$$$$$.$$$", "old"); // an old probe is overwritten, then removed
    EXPECT_FALSE(File_IsDriveReadOnly(folder["d\\name-plays-no-part"]));
    EXPECT_TRUE(scratch::fs::is_empty(folder.Native("d")));
    EXPECT_TRUE(File_IsDriveReadOnly(folder["missing\\"])); // any failure answers true
    // A directory too long for the probe's name: answered read-only, nothing touched.
    EXPECT_TRUE(File_IsDriveReadOnly(folder.Root() + std::string(250, 'a') + "\\"));
}

// The probe's path may take up all 259 bytes that its buffer holds for text; one byte more and the
// directory is answered as read-only without a probe.
TEST(FileIsDriveReadOnly, ProbePathUpToTheBufferFull)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    const std::size_t probeName = std::string("$$$$$$$$.$$$").size();
    for (const std::size_t probeLength : {258u, 259u, 260u}) {
        // the folder, a subfolder and its separator, then the probe's name
        const std::string sub(probeLength - folder.Root().size() - 1 - probeName, 's');
        scratch::fs::create_directory(folder.Native(sub));
        EXPECT_EQ(File_IsDriveReadOnly(folder[sub + "\\"]), probeLength >= 260) << probeLength;
        EXPECT_TRUE(scratch::fs::is_empty(folder.Native(sub))) << probeLength;
    }
}

TEST(FileOperations, DeleteRenameAndTemp)
{
    const scratch::Folder folder;
    folder.Write("a", "A");
    EXPECT_TRUE(File_RenameFile(folder["a"], folder["b"]));
    EXPECT_TRUE(File_DeleteFile(folder["b"]));
    EXPECT_FALSE(File_DeleteFile(folder["b"]));

    _SS<char> temp("untouched");
    EXPECT_FALSE(File_GetTemp(temp, "", "yx"));
    EXPECT_FALSE(File_GetTemp(temp, folder["missing"], "yx"));
    EXPECT_EQ(temp, "untouched");
    EXPECT_TRUE(File_GetTemp(temp, folder.Root(), ""));
    EXPECT_EQ(temp.substr(0, folder.Root().size()), folder.Root());
    EXPECT_TRUE(File_Exist(temp));
}

TEST(FileCopyFile, FromAnObjectMovesItsPositionBackAndClosesTheTarget)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("src", "0123456789");
    folder.Write("copy", "old contents");
    EXPECT_TRUE(File_CopyFile(folder["src"], folder["copy"])); // overwrites
    YXBinaryFile from(folder["src"], YXFILE_READ);
    from.SeekFromBegin(3);
    EXPECT_TRUE(File_CopyFile(from, folder["copy"]));
    EXPECT_EQ(from.SeekFromCurrent(0), 3);
    EXPECT_EQ(folder.Read("copy"), "0123456789");

    YXBinaryFile to;
    ASSERT_TRUE(to.Create(folder["copy2"], YXFILE_WRITE, false));
    to.Write("head:", 5); // written at the target's own position, which is not moved first
    EXPECT_TRUE(File_CopyFile(from, to));
    EXPECT_FALSE(to.IsOpen());
    EXPECT_EQ(from.SeekFromCurrent(0), 3);
    EXPECT_EQ(folder.Read("copy2"), "head:0123456789");
}

TEST(FileCopyFile, FailuresChangeNothingAndLeaveNoTarget)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("empty", "");
    folder.Write("src", "abc");
    EXPECT_FALSE(File_CopyFile(folder["missing"], folder["copy"]));
    YXBinaryFile empty(folder["empty"], YXFILE_READ);
    EXPECT_FALSE(File_CopyFile(empty, folder["copy"])); // an empty source is a failed copy
    EXPECT_FALSE(folder.Exists("copy"));

    YXBinaryFile closed;
    YXBinaryFile to;
    ASSERT_TRUE(to.Create(folder["to"], YXFILE_WRITE, false));
    EXPECT_FALSE(File_CopyFile(closed, to));
    EXPECT_FALSE(File_CopyFile(empty, to));
    EXPECT_TRUE(to.IsOpen());

    // A source opened for writing only cannot be read: the copy fails half way.
    YXBinaryFile writeOnly(folder["src"], YXFILE_WRITE);
    EXPECT_FALSE(File_CopyFile(writeOnly, folder["copy"]));
    EXPECT_FALSE(folder.Exists("copy"));
    EXPECT_EQ(writeOnly.GetLastError(), 4u);
    EXPECT_FALSE(File_CopyFile(writeOnly, to)); // and the target is closed all the same
    EXPECT_FALSE(to.IsOpen());
}

} // namespace
