// Contract of paths with double-byte characters under code page 932: a trail byte 0x5C is part of
// its character, `?` takes a double-byte character whole, and case folding never touches a trail
// byte. The program runs under LC_ALL=ja_JP.UTF-8.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "find_names.h"
#include "support/scratch.h"

namespace {

using platform_test::Find;
using platform_test::Names;

const std::string kHyo = "\x95\x5C";   // a character whose trail byte is 0x5C
const std::string kA = "\x83\x41";     // katakana A, trail byte 'A'
const std::string kTsu = "\x83\x61";   // katakana DI, trail byte 'a': another character
const std::string kWideA = "\x82\x60"; // full-width A
const std::string kWideSmallA = "\x82\x81";

bool Create(const std::string& path)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file) != FALSE;
}

bool Opens(const std::string& path)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file) != FALSE;
}

// The stand-in makes no folders: the test makes its own, through the platform's own call.
bool MakeFolder(const scratch::Folder& folder, const std::string& name)
{
#if defined(_WIN32)
    return CreateDirectoryA(folder[name].c_str(), nullptr) != FALSE;
#else
    return scratch::fs::create_directory(folder.Native(name));
#endif
}

TEST(PathResolver932, TrailBytesBelongToTheirCharacters)
{
    ASSERT_EQ(GetACP(), 932u);
    const scratch::Folder folder;
    ASSERT_TRUE(Create(folder[kHyo + ".txt"]));
    ASSERT_TRUE(MakeFolder(folder, kHyo));
    ASSERT_TRUE(Create(folder[kHyo + "\\in.txt"]));
    ASSERT_TRUE(Create(folder[kTsu + ".txt"]));

    EXPECT_EQ(GetFileAttributesA(folder[kHyo].c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_TRUE(Opens(folder[kHyo + "\\in.txt"]));
    // The runtime's _stat looks at the last byte alone (msvcrt does): a name that ends in a trail
    // byte 0x5C counts as closed by a separator. Inside the folder the name is whole.
    struct _stat st {};
    EXPECT_EQ(_stat(folder[kHyo].c_str(), &st), -1);
    EXPECT_EQ(_stat(folder[kHyo + "\\in.txt"].c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & _S_IFMT, _S_IFREG);
    EXPECT_EQ(Find(folder[kHyo + "\\*"]), (Names{".", "..", "in.txt"}));
    // `?` takes one character, a double-byte one whole.
    EXPECT_EQ(Find(folder["?.txt"]), (Names{kTsu + ".txt", kHyo + ".txt"}));
    // Case folding leaves trail bytes alone: katakana A is not katakana DI upper-cased.
    EXPECT_FALSE(Opens(folder[kA + ".txt"]));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(Opens(folder[kTsu + ".TXT"]));
    EXPECT_EQ(Find(folder[kA + "*"]), (Names{"error 2"}));
}

TEST(PathResolver932, DoubleByteLettersHaveCase)
{
    const scratch::Folder folder;
    ASSERT_TRUE(Create(folder[kWideSmallA + ".txt"]));
    EXPECT_TRUE(Opens(folder[kWideA + ".TXT"]));
    EXPECT_EQ(Find(folder[kWideA + "*"]), (Names{kWideSmallA + ".txt"}));
}

TEST(PathResolver932, ALeadByteWithoutItsTrailByteIsDropped)
{
    const scratch::Folder folder;
    ASSERT_TRUE(Create(folder["z\x95"]));
    EXPECT_EQ(Find(folder["*"]), (Names{".", "..", "z"}));
}

} // namespace
