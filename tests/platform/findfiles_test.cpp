// Contract of FindFirstFileA, FindNextFileA and FindClose.
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
        {"nothing*", {"error 2"}},
        {"no-folder\\*", {"error 3"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        EXPECT_EQ(Find(folder[c.pattern]), c.names);
    }
}

} // namespace
