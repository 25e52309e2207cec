// Path parsing in a single-byte code page (the program runs with LC_ALL=en_US.UTF-8).
#include <gtest/gtest.h>

#include <random>
#include <string>

#include <yxtools/path.h>

#include "path_routes.h"

namespace {

// A '*' in a path stands for a run of 300 letters, which sends it down the long route.
std::string Expand(std::string text)
{
    const std::size_t star = text.find('*');
    return star == std::string::npos ? text : text.replace(star, 1, std::string(300, 'a'));
}

TEST(YXPathSplit, ComponentsAndKind)
{
    const struct {
        const char* path;
        const char* components; // drive|directory|name|extension
        int kind;
    } cases[] = {
        {"C:\\data\\map.txt", "C:|\\data\\|map|.txt", 0},
        {"c:/data/a.b.txt", "c:|/data/|a.b|.txt", 0},
        {"C:map.txt", "C:||map|.txt", 0},
        {"C:\\", "C:|\\||", 0},
        {"x:", "x:|||", 0},
        {"\\\\server\\share\\dir\\a.txt", "|\\\\server\\share\\dir\\|a|.txt", 0},
        {"\\\\server\\share", "|\\\\server\\|share|", 0},
        {"dir/sub\\file", "|dir/sub\\|file|", 0},
        {"a.dir\\file", "|a.dir\\|file|", 0},
        {"\\data\\.txt", "|\\data\\||.txt", 0},
        {".profile", "|||.profile", 0},
        {"..", "||.|.", 0},
        {"map", "||map|", 0},
        {"", "|||", 0},
        {"file:///C:/data/a.txt", "|file:///C:/data/|a|.txt", 1},
        {"https://server/a", "|https://server/|a|", 2},
        {"http://server/dir/page.html", "|http://server/dir/|page|.html", 3},
        {"HTTP://server/", "|HTTP://server/||", 3},
        {"ftp://server/pub/a.tar.gz", "|ftp://server/pub/|a.tar|.gz", 4},
        {"ftp:", "||ftp:|", 4},
        {"news:comp.lang", "||news:comp|.lang", 5},
        {"telnet:server", "||telnet:server|", 6},
        {"wais://server/a", "|wais://server/|a|", 7},
        {"mailto:someone", "||mailto:someone|", 8},
        {"nntp://server/a", "|nntp://server/|a|", 9},
        {"prospero://server/a", "|prospero://server/|a|", 10},
        {"gopher://server/a", "|gopher://server/|a|", 11},
        {"httpx://server/a", "|httpx://server/|a|", 0},
        {"fil:a", "||fil:a|", 0},
        {"FILE:x", "||FILE:x|", 1},
        {"http", "||http|", 0}, // shorter than the prefix
        {" http:", "|| http:|", 0},
        {"C:\\*\\b.txt", "C:|\\*\\|b|.txt", 0},
        {"C:*.txt", "C:||*|.txt", 0},
        {"\\*", "|\\|*|", 0},
        {"*\\b", "|*\\|b|", 0},
        // A long rest whose only dot is its first byte: the extension, as the short route has it.
        {".*", "|||.*", 0},
        {"C:.*", "C:|||.*", 0},
    };
    for (const auto& c : cases) {
        const std::string path = Expand(c.path);
        _SS<char> out[4] = {"?", "?", "?", "?"};
        YXPATHKIND kind = YXPATHKIND_GOPHER;
        EXPECT_TRUE(YXPath::Split(path, &out[0], &out[1], &out[2], &out[3], &kind));
        EXPECT_EQ(out[0] + "|" + out[1] + "|" + out[2] + "|" + out[3], Expand(c.components)) << c.path;
        EXPECT_EQ(kind, c.kind) << c.path;
        EXPECT_EQ(SplitText(path, true), Expand(c.components)) << c.path;
        EXPECT_TRUE(YXPath::Split(path, nullptr, nullptr, nullptr, nullptr, nullptr));
        _SS<char> extension;
        YXPath::Split(path, nullptr, nullptr, nullptr, &extension, nullptr);
        EXPECT_EQ(extension, out[3]) << c.path;
    }
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
        path[0] = coin(random) == 0 ? '.' : path[0];
        path[1] = coin(random) == 0 ? ':' : path[1];
        _SS<char> c[4];
        YXPath::Split(path, &c[0], &c[1], &c[2], &c[3], nullptr);
        if (path.size() < 255) {
            ASSERT_EQ(SplitText(path), SplitText(path, true));
        }
        const _SS<char>& directory = c[1];
        const _SS<char>& extension = c[3];
        ASSERT_EQ(c[0] + c[1] + c[2] + c[3], path);
        ASSERT_EQ(c[0].empty(), path[1] != ':') << path;
        ASSERT_TRUE(directory.empty() || directory.back() == '\\' || directory.back() == '/') << path;
        ASSERT_EQ((c[2] + extension).find_first_of("\\/"), std::string::npos) << path;
        ASSERT_TRUE(extension.empty() || extension.rfind('.') == 0) << path;
        ASSERT_TRUE(!extension.empty() || c[2].find('.') == std::string::npos) << path;
    }
}

// An out-argument may be the input string itself, on both routes and through the long route
// called by itself (a derived class may): each component, and the kind, comes out as from a split
// into other strings.
TEST(YXPathSplit, OutArgumentMayBeTheInput)
{
    for (const char* text : {"C:\\dir\\name.ext", "C:\\dir*\\name.ext", "http://host/*/page.html", "C:*.ext"}) {
        const _SS<char> path(Expand(text));
        _SS<char> expected[4];
        YXPATHKIND expectedKind = YXPATHKIND_NONE;
        YXPath::Split(path, &expected[0], &expected[1], &expected[2], &expected[3], &expectedKind);
        for (int aliased = 0; aliased < 8; ++aliased) {
            const bool slow = aliased >= 4;
            _SS<char> inout(path);
            _SS<char> parts[4];
            _SS<char>* out[4] = {&parts[0], &parts[1], &parts[2], &parts[3]};
            out[aliased % 4] = &inout;
            YXPATHKIND kind = expectedKind;
            EXPECT_TRUE(slow ? PathRoutes::SlowSplit(inout, out[0], out[1], out[2], out[3])
                             : YXPath::Split(inout, out[0], out[1], out[2], out[3], &kind));
            for (int i = 0; i < 4; ++i) {
                EXPECT_EQ(*out[i], expected[i]) << text << ", component " << i << " into the input " << aliased;
            }
            EXPECT_EQ(kind, expectedKind) << text;
        }
    }
}

TEST(YXPath, UNCAndValueSemantics)
{
    for (const char* unc : {"\\\\server\\share", "\\\\"}) {
        EXPECT_TRUE(YXPath::IsUNCPath(unc)) << unc;
    }
    for (const char* other : {"\\", "//server/share", "\\/server", ""}) {
        EXPECT_FALSE(YXPath::IsUNCPath(other)) << other;
    }
    const _SS<char> text("C:\\data");
    YXPath path(&text);
    YXPath copy(path);
    copy += "\\x";
    EXPECT_EQ(path, "C:\\data");
    EXPECT_TRUE(YXPath().empty());
    path = copy;
    const YXPath& same = path;
    path = same;
    EXPECT_EQ(path, "C:\\data\\x");
}

} // namespace
