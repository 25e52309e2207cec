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
}

TEST(SplitPath, NullBuffersAreSkipped)
{
    char drive[_MAX_DRIVE] = "?";
    _splitpath("D:\\long\\way.txt", drive, nullptr, nullptr, nullptr);
    EXPECT_EQ(std::string(drive), "D:");
    char ext[_MAX_EXT] = "?";
    _splitpath("D:\\long\\way.txt", nullptr, nullptr, nullptr, ext);
    EXPECT_EQ(std::string(ext), ".txt");
}

TEST(MakePath, JoinsThePartsWithTheirSeparators)
{
    const struct {
        const char* drive;
        const char* dir;
        const char* fname;
        const char* ext;
        const char* path;
    } cases[] = {
        {"C", "data", "map", "txt", "C:data\\map.txt"},
        {"C:", "\\data\\", "map", ".txt", "C:\\data\\map.txt"},
        {"CD", "/x/", "n", "e", "C:/x/n.e"}, // only the drive's letter counts
        {nullptr, "a/b", "n", "e", "a/b\\n.e"},
        {nullptr, nullptr, "map", nullptr, "map"},
        {"C:", "\\data\\", "$$$$$$$$", ".$$$", "C:\\data\\$$$$$$$$.$$$"},
    };
    for (const auto& c : cases) {
        char path[_MAX_PATH] = "?";
        _makepath(path, c.drive, c.dir, c.fname, c.ext);
        EXPECT_EQ(std::string(path), c.path);
    }
}

} // namespace
