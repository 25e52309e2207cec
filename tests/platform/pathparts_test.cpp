// The runtime's _splitpath and _makepath in a single-byte code page (LC_ALL=en_US.UTF-8 gives 1252).
#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "splitpath_check.h"

namespace {

TEST(SplitPath, CutsIntoTheFourComponents)
{
    const SplitPathCase cases[] = {
        {"C:\\data\\map.txt", "C:", "\\data\\", "map", ".txt"},
        {"c:/data/a.b.txt", "c:", "/data/", "a.b", ".txt"},
        {"\\\\server\\share", "", "\\\\server\\", "share", ""},
        {"..", "", "", ".", "."},
        {".profile", "", "", "", ".profile"},
        {"a\\\x95\x5C", "", "a\\\x95\\", "", ""}, // no lead bytes in 1252: 0x5C separates
    };
    for (const SplitPathCase& c : cases) {
        ExpectSplitPath(c);
    }
    char drive[_MAX_DRIVE] = "?";
    _splitpath("D:\\long\\way.txt", drive, nullptr, nullptr, nullptr); // null buffers are skipped
    EXPECT_EQ(std::string(drive), "D:");
}

TEST(MakePath, JoinsThePartsWithTheirSeparators)
{
    const struct {
        const char* drive;
        const char* dir;
        const char* path;
    } cases[] = {
        {"C:", "\\data\\", "C:\\data\\$$$$$$$$.$$$"},
        {"", "", "$$$$$$$$.$$$"},
        {"", "a/b", "a/b\\$$$$$$$$.$$$"}, // a directory is closed by a `\` where it lacks one
    };
    for (const auto& c : cases) {
        char path[_MAX_PATH] = "?";
        _makepath(path, c.drive, c.dir, "$$$$$$$$", ".$$$");
        EXPECT_EQ(std::string(path), c.path);
    }
}

} // namespace
