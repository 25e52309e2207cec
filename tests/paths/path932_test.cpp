// Paths under code page 932 (the program runs with LC_ALL=ja_JP.UTF-8), where the trail byte of a
// double-byte character can be 0x5C, the byte of `\`.
#include <gtest/gtest.h>

#include <string>

#include <yxtools/path.h>

#include "path_routes.h"

namespace {

// 0x95 0x5C is one character.
const std::string kTrail5C = "\x95\x5C";

TEST(YXPathSplit932, RuntimeRouteKeepsTheCharacterWhole)
{
    const Components c = SplitFast("C:\\dir\\a" + kTrail5C + "b.txt");
    EXPECT_EQ(c.drive, "C:");
    EXPECT_EQ(c.directory, "\\dir\\");
    EXPECT_EQ(c.name, "a" + kTrail5C + "b");
    EXPECT_EQ(c.extension, ".txt");
}

TEST(YXPathSplit932, LongRouteTakesTheTrailByteForASeparator)
{
    // The same text at 254 and 255 bytes: the first is cut by the runtime, the second byte by byte.
    for (std::size_t length : {254u, 255u}) {
        const std::string tail = kTrail5C + "b.txt";
        const std::string head = "C:\\" + std::string(length - 3 - tail.size(), 'a');
        const std::string path = head + tail;
        ASSERT_EQ(path.size(), length);
        const Components c = SplitFast(path);
        EXPECT_EQ(c.drive, "C:");
        EXPECT_EQ(c.extension, ".txt");
        if (length == 254) {
            EXPECT_EQ(c.directory, "\\");
            EXPECT_EQ(c.name, head.substr(3) + kTrail5C + "b");
        } else {
            EXPECT_EQ(c.directory, head.substr(2) + kTrail5C);
            EXPECT_EQ(c.name, "b");
        }
        if (length == 254) {
            EXPECT_FALSE(c == SplitSlow(path)) << "the routes differ under 932";
        }
    }
}

TEST(YXPathAppend932, TrailByte5CCountsAsASeparator)
{
    _SS<char> path("C:\\" + kTrail5C);
    _SS<char> addition("sub");
    YXPath::Append(path, &addition, false);
    EXPECT_EQ(path, "C:\\" + kTrail5C + "sub");

    _SS<char> output;
    const _SS<char> directory("dir" + kTrail5C);
    const _SS<char> name("n");
    YXPath::Make(output, nullptr, &directory, &name, nullptr);
    EXPECT_EQ(output, "dir" + kTrail5C + "n");
}

} // namespace
