// The names a directory search gives, for the contract tests of the file calls.
#ifndef YXTOOLS_TESTS_PLATFORM_FIND_NAMES_H
#define YXTOOLS_TESTS_PLATFORM_FIND_NAMES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace platform_test {

using Names = std::vector<std::string>;

// The names FindFirstFileA and FindNextFileA give for `search`, sorted (Wine gives them in the
// order of the host's file system), or "error N" alone when the search finds nothing.
inline Names Find(const std::string& search)
{
    Names names;
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(search.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        names.push_back("error " + std::to_string(GetLastError()));
        return names;
    }
    do {
        names.emplace_back(data.cFileName);
    } while (FindNextFileA(find, &data));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_MORE_FILES));
    EXPECT_FALSE(FindNextFileA(find, &data)); // the end stays the end
    EXPECT_TRUE(FindClose(find));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace platform_test

#endif
