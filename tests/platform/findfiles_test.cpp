// Contract of FindFirstFileA, FindNextFileA and FindClose.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/scratch.h"

namespace {

// The names a search gives, sorted; the last error of the failing call when it gives none.
std::vector<std::string> Find(const std::string& search, DWORD* error = nullptr)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    SetLastError(0);
    HANDLE find = FindFirstFileA(search.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        if (error != nullptr) {
            *error = GetLastError();
        }
        return names;
    }
    do {
        names.emplace_back(data.cFileName);
    } while (FindNextFileA(find, &data));
    if (error != nullptr) {
        *error = GetLastError();
    }
    EXPECT_TRUE(FindClose(find));
    std::sort(names.begin(), names.end());
    return names;
}

using Names = std::vector<std::string>;

TEST(FindFirstFileA, WildcardsMatchAsWindowsMatches)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    for (const char* name : {"a.txt", "ab.txt", "B.TXT", "noext", "x.txt.bak"}) {
        folder.Write(name, "abc");
    }
    scratch::fs::create_directory(folder.Native("sub"));
    const Names all{".", "..", "B.TXT", "a.txt", "ab.txt", "noext", "sub", "x.txt.bak"};
    const struct {
        const char* pattern;
        Names names;
    } cases[] = {
        {"*", all},
        {"*.*", all},
        {"*.txt", {"B.TXT", "a.txt", "ab.txt"}}, // case does not count
        {"*.TXT", {"B.TXT", "a.txt", "ab.txt"}},
        {"?.txt", {"B.TXT", "a.txt"}},
        {"x*", {"x.txt.bak"}},
        {"a.txt", {"a.txt"}},
        {"sub", {"sub"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        DWORD error = 0;
        EXPECT_EQ(Find(folder[c.pattern], &error), c.names);
        EXPECT_EQ(error, ERROR_NO_MORE_FILES);
    }
}

TEST(FindFirstFileA, FailuresAndTheRecord)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("a.txt", "abcde");
    DWORD error = 0;
    EXPECT_TRUE(Find(folder["nothing*"], &error).empty());
    EXPECT_EQ(error, ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(Find(folder["no-folder\\*"], &error).empty());
    EXPECT_EQ(error, ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE(Find(folder.Root(), &error).empty()); // an empty pattern
    EXPECT_EQ(error, ERROR_FILE_NOT_FOUND);

    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(folder["a.*"].c_str(), &data);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(data.cFileName, "a.txt");
    EXPECT_EQ(data.nFileSizeLow, 5u);
    EXPECT_EQ(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_FALSE(FindNextFileA(find, &data));
    EXPECT_FALSE(FindNextFileA(find, &data)); // the end stays the end
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(find));
    SetLastError(0);
    EXPECT_FALSE(FindClose(INVALID_HANDLE_VALUE));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(FindNextFileA(INVALID_HANDLE_VALUE, &data));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

} // namespace
