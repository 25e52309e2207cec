// Path parsing in a single-byte code page (the program runs with LC_ALL=en_US.UTF-8).
#include <gtest/gtest.h>

#include <random>
#include <string>

#include <yxtools/path.h>

#include "path_routes.h"

namespace {

struct SplitCase {
    std::string path;
    const char* drive;
    std::string directory;
    std::string name;
    std::string extension;
    int kind;
};

void ExpectSplit(const SplitCase& c)
{
    _SS<char> drive("?");
    _SS<char> directory("?");
    _SS<char> name("?");
    _SS<char> extension("?");
    YXPATHKIND kind = YXPATHKIND_GOPHER;
    EXPECT_TRUE(YXPath::Split(c.path, &drive, &directory, &name, &extension, &kind));
    const std::string shown = c.path.substr(0, 40);
    EXPECT_EQ(drive, c.drive) << shown;
    EXPECT_EQ(directory, c.directory) << shown;
    EXPECT_EQ(name, c.name) << shown;
    EXPECT_EQ(extension, c.extension) << shown;
    EXPECT_EQ(kind, c.kind) << shown;
}

TEST(YXPathSplit, ShortPaths)
{
    const SplitCase cases[] = {
        {"C:\\data\\map.txt", "C:", "\\data\\", "map", ".txt", 0},
        {"c:/data/a.b.txt", "c:", "/data/", "a.b", ".txt", 0},
        {"C:map.txt", "C:", "", "map", ".txt", 0},
        {"C:\\", "C:", "\\", "", "", 0},
        {"x:", "x:", "", "", "", 0},
        {"\\\\server\\share\\dir\\a.txt", "", "\\\\server\\share\\dir\\", "a", ".txt", 0},
        {"\\\\server\\share", "", "\\\\server\\", "share", "", 0},
        {"dir/sub\\file", "", "dir/sub\\", "file", "", 0},
        {"a.dir\\file", "", "a.dir\\", "file", "", 0},
        {"\\data\\.txt", "", "\\data\\", "", ".txt", 0},
        {".profile", "", "", "", ".profile", 0},
        {"..", "", "", ".", ".", 0},
        {"map", "", "", "map", "", 0},
        {"", "", "", "", "", 0},
        {"file:///C:/data/a.txt", "", "file:///C:/data/", "a", ".txt", 1},
        {"https://server/a", "", "https://server/", "a", "", 2},
        {"http://server/dir/page.html", "", "http://server/dir/", "page", ".html", 3},
        {"HTTP://server/", "", "HTTP://server/", "", "", 3},
        {"ftp://server/pub/a.tar.gz", "", "ftp://server/pub/", "a.tar", ".gz", 4},
        {"ftp:", "", "", "ftp:", "", 4},
        {"news:comp.lang", "", "", "news:comp", ".lang", 5},
        {"telnet:server", "", "", "telnet:server", "", 6},
        {"wais://server/a", "", "wais://server/", "a", "", 7},
        {"mailto:someone", "", "", "mailto:someone", "", 8},
        {"nntp://server/a", "", "nntp://server/", "a", "", 9},
        {"prospero://server/a", "", "prospero://server/", "a", "", 10},
        {"gopher://server/a", "", "gopher://server/", "a", "", 11},
        {"httpx://server/a", "", "httpx://server/", "a", "", 0},
        {"fil:a", "", "", "fil:a", "", 0},
    };
    for (const SplitCase& c : cases) {
        ExpectSplit(c);
    }
}

TEST(YXPathSplit, LongPaths)
{
    const std::string a(300, 'a');
    const SplitCase cases[] = {
        {"C:\\" + a + "\\b.txt", "C:", "\\" + a + "\\", "b", ".txt", 0},
        {"C:" + a + ".txt", "C:", "", a, ".txt", 0},
        {"\\" + a, "", "\\", a, "", 0},
        {a + "\\b", "", a + "\\", "b", "", 0},
        {"http://" + a + "/x.y", "", "http://" + a + "/", "x", ".y", 3},
    };
    for (const SplitCase& c : cases) {
        ExpectSplit(c);
    }
}

TEST(YXPathSplit, LongRestThatStartsWithItsOnlyDotGoesToTheExtension)
{
    // The text is the extension, as the short route cuts ".profile", on both sides of the boundary.
    const std::string dots = "." + std::string(300, 'a');
    ExpectSplit({dots, "", "", "", dots, 0});
    ExpectSplit({"C:" + dots, "C:", "", "", dots, 0});
    const std::string shortDots = "." + std::string(252, 'a');
    EXPECT_TRUE(SplitFast("C:" + shortDots) == SplitSlow("C:" + shortDots));
    EXPECT_EQ(SplitFast("C:" + shortDots).extension, shortDots);
}

TEST(YXPathSplit, NullOutArgumentsAreSkipped)
{
    EXPECT_TRUE(YXPath::Split("C:\\data\\map.txt", nullptr, nullptr, nullptr, nullptr, nullptr));
    const std::string longPath = "C:\\" + std::string(300, 'a') + "\\b.txt";
    _SS<char> extension;
    EXPECT_TRUE(YXPath::Split(longPath, nullptr, nullptr, nullptr, &extension, nullptr));
    EXPECT_EQ(extension, ".txt");
    YXPATHKIND kind = YXPATHKIND_NONE;
    EXPECT_TRUE(YXPath::Split("Http://x", nullptr, nullptr, nullptr, nullptr, &kind));
    EXPECT_EQ(kind, YXPATHKIND_HTTP);
}

// Random paths around the 255-byte boundary, from bytes that matter to the cut. Below it the two
// routes must agree; on both sides the components must hold the path and obey their definitions.
TEST(YXPathSplit, RoutesAgreeAroundTheBoundary)
{
    std::mt19937 random(20240605);
    const char alphabet[] = "ab.\\/:x.";
    std::uniform_int_distribution<std::size_t> length(200, 300);
    std::uniform_int_distribution<std::size_t> pick(0, sizeof(alphabet) - 2);
    std::uniform_int_distribution<int> coin(0, 3);
    for (int round = 0; round < 3000; ++round) {
        std::string path(length(random), 'a');
        for (char& c : path) {
            c = coin(random) == 0 ? alphabet[pick(random)] : 'a';
        }
        if (coin(random) == 0) {
            path[0] = '.';
        }
        if (coin(random) == 0) {
            path[1] = ':';
        }
        const Components fast = SplitFast(path);
        const Components slow = SplitSlow(path);
        if (path.size() < 255) {
            ASSERT_TRUE(fast == slow) << path;
        }
        ASSERT_EQ(fast.drive + fast.directory + fast.name + fast.extension, path);
        ASSERT_EQ(fast.drive.empty(), path[1] != ':') << path;
        ASSERT_TRUE(fast.directory.empty() || fast.directory.back() == '\\' || fast.directory.back() == '/') << path;
        ASSERT_EQ((fast.name + fast.extension).find_first_of("\\/"), std::string::npos) << path;
        ASSERT_TRUE(fast.extension.empty() || fast.extension.rfind('.') == 0) << path;
        ASSERT_TRUE(!fast.extension.empty() || fast.name.find('.') == std::string::npos) << path;
    }
}

TEST(YXPathKind, PrefixesDecideIgnoringCase)
{
    const struct {
        const char* path;
        YXPATHKIND kind;
    } cases[] = {
        {"FILE:x", YXPATHKIND_FILE},    {"Http:", YXPATHKIND_HTTP},          {"hTTpS:", YXPATHKIND_HTTPS},
        {"mailto:", YXPATHKIND_MAILTO}, {"PROSPERO:x", YXPATHKIND_PROSPERO}, {"c:\\x", YXPATHKIND_NONE},
        {"ftp", YXPATHKIND_NONE},       {"http", YXPATHKIND_NONE},           {"", YXPATHKIND_NONE},
        {" http:", YXPATHKIND_NONE},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(YXPath::GetPathProtocol(c.path), c.kind) << c.path;
    }
}

TEST(YXPathUNC, TwoLeadingBackslashes)
{
    EXPECT_TRUE(YXPath::IsUNCPath("\\\\server\\share"));
    EXPECT_TRUE(YXPath::IsUNCPath("\\\\"));
    EXPECT_FALSE(YXPath::IsUNCPath("\\"));
    EXPECT_FALSE(YXPath::IsUNCPath("//server/share"));
    EXPECT_FALSE(YXPath::IsUNCPath("\\/server"));
    EXPECT_FALSE(YXPath::IsUNCPath(""));
}

TEST(YXPathValue, CopiesAreIndependent)
{
    const _SS<char> text("C:\\data");
    YXPath path(&text);
    EXPECT_EQ(path, "C:\\data");
    EXPECT_TRUE(YXPath().empty());
    YXPath copy(path);
    copy += "\\x";
    EXPECT_EQ(path, "C:\\data");
    path = copy;
    EXPECT_EQ(path, "C:\\data\\x");
    const YXPath& same = path;
    path = same;
    EXPECT_EQ(path, "C:\\data\\x");
}

} // namespace
