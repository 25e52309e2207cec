#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include <yxtools/files.h>

#include "support/scratch.h"

namespace {

constexpr unsigned long kReadWrite = YXFILE_READ | YXFILE_WRITE;

TEST(BinaryFile, AClosedObjectRefusesEveryCallWithCode3)
{
    YXBinaryFile file;
    EXPECT_EQ(file.GetHandle(), nullptr);
    char buffer[4];
    const auto failsWith3 = [&file](bool failed) { return failed && file.GetLastError(true) == 3; };
    EXPECT_TRUE(failsWith3(!file.Close()));
    EXPECT_TRUE(failsWith3(file.Read(buffer, 4) == 0));
    EXPECT_TRUE(failsWith3(file.Write("abc", 3) == 0));
    EXPECT_TRUE(failsWith3(file.GetLength() == 0));
    EXPECT_TRUE(failsWith3(file.SeekFromBegin(0) == -1));
    EXPECT_TRUE(failsWith3(file.SeekFromCurrent(0) == -1));
    EXPECT_TRUE(failsWith3(file.SeekFromEnd(0) == -1));
    EXPECT_TRUE(failsWith3(!file.Truncate()));
    EXPECT_TRUE(failsWith3(!file.IsEof()));
    EXPECT_EQ(file.GetLastError(), 0u); // cleared by the last GetLastError(true)
    EXPECT_FALSE(file.Flush());         // no test of its own, and no code: 0 stays 0
    EXPECT_EQ(file.GetLastError(), 0u);
    file.Close();
    EXPECT_FALSE(file.Flush()); // and 3 stays 3
    EXPECT_EQ(file.GetLastError(false), 3u);
    EXPECT_EQ(file.GetLastError(), 3u);
}

TEST(BinaryFile, OpenCreateAndTheCreateBit)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    YXBinaryFile file;
    EXPECT_FALSE(file.Open(folder["new"], kReadWrite, false));
    EXPECT_EQ(file.GetLastError(), 1u);
    EXPECT_FALSE(folder.Exists("new"));
    EXPECT_TRUE(file.Open(folder["new"], kReadWrite | YXFILE_CREATE, false));
    EXPECT_EQ(file.GetLastError(), 0u);
    EXPECT_EQ(file.Write("keep", 4), 4);
    EXPECT_TRUE(file.Close());
    EXPECT_TRUE(file.Open(folder["new"], kReadWrite | YXFILE_CREATE, true)); // opens, keeps the bytes
    EXPECT_EQ(file.GetLength(), 4u);
    EXPECT_TRUE(file.Create(folder["new"], kReadWrite, false)); // closes, then empties
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_FALSE(file.Create(folder["no-folder\\x"], kReadWrite, false));
    EXPECT_EQ(file.GetLastError(), 2u);
    EXPECT_FALSE(file.IsOpen()); // the failed call lost the file it held
    const YXBinaryFile missing(folder["missing"], YXFILE_READ);
    EXPECT_EQ(missing.GetLastError(), 1u);
}

TEST(BinaryFile, ShareModesOfTheModeWord)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("f", "0123456789");
    const struct {
        unsigned long held;
        unsigned long second;
        bool opens;
    } cases[] = {
        {YXFILE_READ | YXFILE_DENY_WRITE, YXFILE_READ, true},
        {YXFILE_READ | YXFILE_DENY_WRITE, YXFILE_WRITE, false},
        {YXFILE_READ | 0x0C, YXFILE_WRITE, true}, // 0x04 outranks 0x08: shares writing only
        {YXFILE_READ | 0x0C, YXFILE_READ, false},
        {YXFILE_READ | 0x1C, YXFILE_WRITE, false}, // 0x10 outranks both
        {YXFILE_READ | 0x20, kReadWrite, true},    // 0x20 means nothing
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("held 0x" + std::to_string(c.held) + ", second 0x" + std::to_string(c.second));
        YXBinaryFile held;
        ASSERT_TRUE(held.Open(folder["f"], c.held, false));
        YXBinaryFile second;
        EXPECT_EQ(second.Open(folder["f"], c.second, false), c.opens);
        unsigned short reason = 99;
        EXPECT_EQ(YXBinaryFile::IsOpenable(folder["f"], c.second, &reason, nullptr), c.opens);
        EXPECT_EQ(reason, c.opens ? 0 : 6);
    }
    // The create bit retries with CREATE_ALWAYS after any failure, which fails here as well.
    YXBinaryFile held;
    ASSERT_TRUE(held.Open(folder["f"], YXFILE_READ | YXFILE_DENY_ALL, false));
    YXBinaryFile second;
    EXPECT_FALSE(second.Open(folder["f"], kReadWrite | YXFILE_CREATE, false));
    EXPECT_EQ(second.GetLastError(), 2u);
    held.Close();
    EXPECT_EQ(folder.Read("f"), "0123456789");
}

TEST(BinaryFile, SeeksAcrossTheNarrowBoundaryIsEofAndStickyCodes)
{
    const scratch::Folder folder;
    YXBinaryFile file;
    ASSERT_TRUE(file.Create(folder["f"], kReadWrite, false));
    EXPECT_EQ(file.Write("0123456789", 10), 10);
    EXPECT_TRUE(file.IsEof());
    EXPECT_EQ(file.SeekFromBegin(0x7FFFFFFE), 0x7FFFFFFE); // the narrow form
    EXPECT_EQ(file.SeekFromBegin(0x7FFFFFFF), 0x7FFFFFFF); // the wide form
    EXPECT_EQ(file.SeekFromBegin(0xFFFFFFFF), 0xFFFFFFFF); // a position, though it reads as the failure value
    EXPECT_TRUE(file.IsEof());
    EXPECT_EQ(file.SeekFromBegin(0x100000010LL), 0x100000010LL);
    // Past 4 GiB, the narrow form and the length give their low 32 bits on every build.
    EXPECT_EQ(file.SeekFromCurrent(0), 0x10);
    EXPECT_EQ(file.GetLength(), 10u);
    EXPECT_EQ(file.SeekFromEnd(-3), 7);
    EXPECT_FALSE(file.IsEof());
    EXPECT_EQ(file.SeekFromCurrent(-5), 2); // IsEof did not move
    EXPECT_EQ(file.GetLastError(), 0u);
    EXPECT_EQ(file.SeekFromCurrent(-3), -1); // before the start
    EXPECT_EQ(file.GetLastError(), 7u);
    EXPECT_EQ(file.SeekFromCurrent(0), 2); // not moved
    char buffer[4];
    EXPECT_EQ(file.Read(buffer, 4), 4); // successes leave the code standing
    EXPECT_EQ(file.GetLastError(), 7u);
    EXPECT_TRUE(file.Truncate());
    EXPECT_EQ(file.GetLength(), 6u);
    EXPECT_EQ(file.GetLastError(true), 7u);
    EXPECT_TRUE(file.Flush());
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("f"), "012345");
}

TEST(BinaryFile, RefusedTransfersReportTheirOwnCodes)
{
    const scratch::Folder folder;
    folder.Write("f", "abc");
    YXBinaryFile file;
    ASSERT_TRUE(file.Open(folder["f"], YXFILE_READ, false));
    EXPECT_EQ(file.Write("x", 1), 0);
    EXPECT_EQ(file.GetLastError(), 5u);
    ASSERT_TRUE(file.Create(folder["empty"], YXFILE_WRITE, false));
    EXPECT_TRUE(file.IsEof());
    char buffer[2];
    EXPECT_EQ(file.Read(buffer, 2), 0);
    EXPECT_EQ(file.GetLastError(), 4u);
}

TEST(BinaryFile, CopiesShareOneHandle)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("f", "abcdef");
    YXBinaryFile file(folder["f"], YXFILE_READ);
    {
        YXBinaryFile copy(file);
        EXPECT_EQ(copy.GetHandle(), file.GetHandle());
        copy.SeekFromBegin(4);
        EXPECT_EQ(file.SeekFromCurrent(0), 4); // one position
        EXPECT_TRUE(copy.Close());
    }
    EXPECT_TRUE(file.IsOpen()); // it still names the closed handle
    EXPECT_EQ(file.SeekFromCurrent(0), -1);
    EXPECT_EQ(file.GetLastError(), 7u);
    YXBinaryFile other;
    other = file;
    EXPECT_EQ(other.GetLastError(), 7u);
    // The platform refuses to close the handle again: code 6, and the object stays open.
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(file.GetLastError(), 6u);
    EXPECT_EQ(file.GetHandle(), other.GetHandle());
}

TEST(IsOpenable, Reasons)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("f", "abc");
    folder.Write("ro", "abc");
    folder.MakeReadOnly("ro");
    scratch::fs::create_directory(folder.Native("d"));
    const struct {
        std::string path;
        unsigned long mode;
        bool result;
        unsigned short reason;
        bool creatable;
    } cases[] = {
        {folder["f"], kReadWrite, true, 0, false},
        {folder["d"], YXFILE_READ, false, 5, false},
        {folder["d"], YXFILE_READ | YXFILE_CREATE, false, 5, false},
        {folder["ro"], kReadWrite, false, 3, false},
        {folder["ro"], YXFILE_READ, true, 0, false},
        {folder["ro"], YXFILE_READ | YXFILE_CREATE, true, 0, false}, // the create bit asks for no writing
        {folder["ro"], kReadWrite | YXFILE_CREATE, false, 3, false},
        {folder["missing"], YXFILE_READ, false, 1, false},
        {folder["missing"], kReadWrite | YXFILE_CREATE, true, 0, true},
        {folder["no-folder\\missing"], kReadWrite | YXFILE_CREATE, false, 7, false},
        {folder["f\\missing"], kReadWrite | YXFILE_CREATE, false, 7, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path + " mode 0x" + std::to_string(c.mode));
        unsigned short reason = 99;
        bool creatable = !c.creatable;
        EXPECT_EQ(YXBinaryFile::IsOpenable(c.path, c.mode, &reason, &creatable), c.result);
        EXPECT_EQ(reason, c.reason);
        EXPECT_EQ(creatable, c.creatable);
        EXPECT_EQ(File_IsOpenable(c.path, c.mode, nullptr), c.result); // with both out-arguments null
    }
    EXPECT_FALSE(folder.Exists("missing")); // the probe creates nothing
    EXPECT_EQ(folder.Read("f") + folder.Read("ro"), "abcabc");
}

TEST(IsOpenable, AFileToBeCreatedInAReadOnlyFolder)
{
    const scratch::Folder folder;
    YX_SKIP_WITHOUT_READONLY_FOLDERS(folder);
    scratch::fs::create_directory(folder.Native("d"));
    folder.MakeReadOnly("d");
    unsigned short reason = 99;
    bool creatable = true;
    EXPECT_FALSE(YXBinaryFile::IsOpenable(folder["d\\new"], kReadWrite | YXFILE_CREATE, &reason, &creatable));
    EXPECT_EQ(reason, 3);
    EXPECT_FALSE(creatable);
}

} // namespace
