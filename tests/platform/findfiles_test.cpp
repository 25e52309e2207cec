// Contract of FindFirstFileA, FindNextFileA and FindClose.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/scratch.h"

namespace {

using Names = std::vector<std::string>;

// The names a search gives, sorted.
Names Find(const std::string& search)
{
    Names names;
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(search.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.emplace_back(data.cFileName);
    } while (FindNextFileA(find, &data));
    EXPECT_FALSE(FindNextFileA(find, &data)); // the end stays the end
    EXPECT_TRUE(FindClose(find));
    std::sort(names.begin(), names.end());
    return names;
}

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
        {"?.txt", {"B.TXT", "a.txt"}},
        {"a.txt", {"a.txt"}},
        {"nothing*", {}},
        {"no-folder\\*", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        EXPECT_EQ(Find(folder[c.pattern]), c.names);
    }
}

} // namespace
