// Paths under code page 932 (the program runs with LC_ALL=ja_JP.UTF-8), where the trail byte of a
// double-byte character can be 0x5C, the byte of `\`.
#include <gtest/gtest.h>

#include <string>

#include <yxtools/path.h>

#include "path_routes.h"

namespace {

// 0x95 0x5C is one character.
const std::string kTrail5C = "\x95\x5C";

// The same text at 254 and 255 bytes: the runtime keeps the character whole, the long route takes
// its trail byte for a separator.
TEST(YXPathSplit932, RoutesDifferOnATrailByte5C)
{
    const std::string tail = kTrail5C + "b.txt";
    const std::string name = std::string(254 - 3 - tail.size(), 'a') + kTrail5C + "b";
    const std::string path254 = "C:\\" + name + ".txt";
    ASSERT_EQ(path254.size(), 254u);
    EXPECT_EQ(SplitText(path254), "C:|\\|" + name + "|.txt");
    EXPECT_EQ(SplitText(path254, true), "C:|\\" + name.substr(0, name.size() - 1) + "|b|.txt");
    const std::string path255 = "C:\\a" + name + ".txt";
    EXPECT_EQ(SplitText(path255), "C:|\\a" + name.substr(0, name.size() - 1) + "|b|.txt");
}

TEST(YXPathAppend932, TrailByte5CCountsAsASeparator)
{
    _SS<char> path("C:\\" + kTrail5C);
    const _SS<char> addition("sub");
    YXPath::Append(path, &addition, false);
    EXPECT_EQ(path, "C:\\" + kTrail5C + "sub");
}

} // namespace
