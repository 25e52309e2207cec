// Path assembly: Append and Make.
#include <gtest/gtest.h>

#include <yxtools/path.h>

namespace {

// A null text stands for a null pointer.
const _SS<char>* Optional(const char* text, _SS<char>& storage)
{
    return text == nullptr ? nullptr : &(storage = text);
}

TEST(YXPathAppend, OneSeparatorAtTheJoint)
{
    const struct {
        const char* path;
        const char* addition;
        bool trailing;
        const char* result;
    } cases[] = {
        {"C:\\data", "sub", false, "C:\\data\\sub"},
        {"C:\\data\\", "sub", false, "C:\\data\\sub"},
        {"C:\\data", "\\sub", false, "C:\\data\\sub"},
        {"C:\\data\\", "\\sub", false, "C:\\data\\sub"},
        {"C:\\data", "sub", true, "C:\\data\\sub\\"},
        {"C:\\data", "sub\\", true, "C:\\data\\sub\\"},
        {"C:\\data", nullptr, true, "C:\\data\\"},
        {"C:\\data\\", nullptr, true, "C:\\data\\"},
        {"C:\\data", nullptr, false, "C:\\data"},
        {"", "sub", false, "sub"},
        {"", "sub", true, "sub\\"},
        {"", nullptr, true, "\\"},
        {"", nullptr, false, ""},
        {"C:\\data", "", false, "C:\\data"},
        {"C:\\data", "", true, "C:\\data\\"},
        {"C:\\data\\", "", true, "C:\\data\\\\"},
        {"C:", "\\data\\", true, "C:\\data\\"},
        {"http://server/dir", "page", false, "http://server/dir\\page"},
        {"http://server/dir/", "page", false, "http://server/dir/\\page"},
    };
    for (const auto& c : cases) {
        _SS<char> path(c.path);
        _SS<char> addition;
        YXPath::Append(path, Optional(c.addition, addition), c.trailing);
        EXPECT_EQ(path, c.result) << c.path << " + " << (c.addition ? c.addition : "(null)") << " " << c.trailing;
    }
    _SS<char> path("a\\"); // the path itself as the addition
    YXPath::Append(path, &path, false);
    EXPECT_EQ(path, "a\\a\\");
}

TEST(YXPathMake, PointersDecideTheSeparators)
{
    const struct {
        const char* drive;
        const char* directory;
        const char* name;
        const char* extension;
        const char* output;
        bool result;
    } cases[] = {
        {"C:", "\\data\\", "map", ".txt", "C:\\data\\map.txt", true},
        {"C:", "\\data", "map", "txt", "C:\\data\\map.txt", true},
        {"C:", "data", "map", nullptr, "C:\\data\\map", true},
        {"C:", nullptr, "map", ".txt", "C:\\map.txt", true},
        {nullptr, "\\data\\", "map", nullptr, "\\data\\map", true},
        {nullptr, nullptr, "map", ".txt", "map.txt", true},
        {nullptr, nullptr, nullptr, "txt", ".txt", true},
        {nullptr, nullptr, nullptr, nullptr, "", false},
        {"C:", nullptr, nullptr, nullptr, "C:\\", true},
        {"C:", "\\data\\", nullptr, nullptr, "C:\\data\\", true},
        {"C:", "", "map", ".txt", "C:\\map.txt", true},
        {"", "", "map", ".txt", "\\map.txt", true},
        {nullptr, "", nullptr, nullptr, "\\", true},
        {"C:", "\\data\\", "map", "", "C:\\data\\map.", true},
        {"\\\\server\\share", "\\dir\\", "a", ".b", "\\\\server\\share\\dir\\a.b", true},
        {"", "", "map", "", "\\map.", true}, // a bare name split and made again
    };
    for (const auto& c : cases) {
        _SS<char> in[4];
        _SS<char> output("old");
        EXPECT_EQ(YXPath::Make(output, Optional(c.drive, in[0]), Optional(c.directory, in[1]), Optional(c.name, in[2]),
                               Optional(c.extension, in[3])),
                  c.result);
        EXPECT_EQ(output, c.output);
    }
}

// Any of the inputs may be the output string: the path is made from the inputs as given.
TEST(YXPathMake, InputMayBeTheOutput)
{
    const _SS<char> parts[4] = {"C:", "\\data\\", "map", ".txt"};
    for (int aliased = 0; aliased < 4; ++aliased) {
        _SS<char> output(parts[aliased]);
        const _SS<char>* in[4] = {&parts[0], &parts[1], &parts[2], &parts[3]};
        in[aliased] = &output;
        EXPECT_TRUE(YXPath::Make(output, in[0], in[1], in[2], in[3]));
        EXPECT_EQ(output, "C:\\data\\map.txt") << aliased;
    }
}

} // namespace
