// File functions under code page 932 (the program runs with LC_ALL=ja_JP.UTF-8), where the trail
// byte of a double-byte character can be 0x5C, the byte of `\`.
#include <gtest/gtest.h>

#include <string>

#include <yxtools/files.h>

#include "support/scratch.h"

namespace {

// A name at the end of the path plays no part in the probe, also when a character of it has the
// trail byte 0x5C far beyond the room for a directory.
TEST(FileIsDriveReadOnly932, TrailByte5CInTheNameIsNoSeparator)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    scratch::fs::create_directory(folder.Native("d"));
    const std::string name = std::string(300, 'a') + "\x95\x5C" + "b";
    EXPECT_FALSE(File_IsDriveReadOnly(folder["d\\" + name]));
    EXPECT_TRUE(scratch::fs::is_empty(folder.Native("d")));
}

} // namespace
