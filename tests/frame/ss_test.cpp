#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include <yxtools/ss.h>

namespace {

TEST(SS, SmallPointerValuesConstructTheEmptyStringAndNullAssignsIt)
{
    EXPECT_TRUE(_SS<char>(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(_SS<char>(reinterpret_cast<const char*>(0xFFFF)).empty());
    EXPECT_TRUE(_SS<unsigned short>(reinterpret_cast<const unsigned short*>(0x1234)).empty());
    _SS<char> s("text");
    s = static_cast<const char*>(nullptr);
    EXPECT_TRUE(s.empty());
}

// Assignment from inside keeps everything up to the string's end, not just up to a NUL.
TEST(SS, PointerIntoItselfKeepsTheTail)
{
    _SS<char> s(std::string("abc\0efgh", 8));
    s = s.c_str() + 2;
    EXPECT_EQ(s, std::string("c\0efgh", 6));
    s = s.c_str() + s.size(); // the terminator
    EXPECT_TRUE(s.empty());
    _SS<unsigned short> w(std::basic_string<unsigned short>{'x', 'y', 'z'});
    w = w.c_str() + 1;
    EXPECT_EQ(w, (std::basic_string<unsigned short>{'y', 'z'}));
}

TEST(SS, SelfAssignmentTouchesNothing)
{
    _SS<char> s(std::string(100, 'q'));
    const char* storage = s.data();
    const _SS<char>& same = s;
    s = same;
    EXPECT_EQ(s.data(), storage);
    EXPECT_EQ(s, std::string(100, 'q'));
}

TEST(SS, RightAndConcatenation)
{
    const _SS<char> s("abcdef");
    const struct {
        long count;
        const char* right;
    } cases[] = {{2, "ef"}, {6, "abcdef"}, {100, "abcdef"}, {0, ""}, {-5, ""}};
    for (const auto& c : cases) {
        EXPECT_EQ(s.Right(c.count), c.right) << c.count;
    }
    EXPECT_EQ(s.Right(2) + s, "efabcdef");
}

// Formats a text of exactly n characters through a %s argument.
_SS<char> FormatOfLength(std::size_t n)
{
    _SS<char> s("previous value");
    s.Format("%s", std::string(n, 'x').c_str());
    return s;
}

// Texts up to 8704 come whole from one of the attempts; longer ones are cut there with a trailing NUL.
TEST(SSFormat, LengthsAroundEachAttempt)
{
    for (const std::size_t n : {0u, 255u, 256u, 511u, 512u, 2560u, 2561u, 4608u, 6656u, 8704u, 8705u, 20000u}) {
        const _SS<char> s = FormatOfLength(n);
        EXPECT_EQ(std::string(s.c_str()), std::string(std::min<std::size_t>(n, 8704), 'x')) << n;
        EXPECT_EQ(s.size(), n <= 8704 ? n : 8705) << n;
    }
    // Up to 511 the attempts use stack buffers; the third formats into the string resized to 2561.
    EXPECT_LT(FormatOfLength(511).capacity(), 2560u);
    EXPECT_GE(FormatOfLength(512).capacity(), 2560u);
}

TEST(SSFormat, ArgumentsAreReadAgainForEachAttempt)
{
    const std::string text(3000, 'a');
    _SS<char> s;
    s.Format("%s|%d|%s", text.c_str(), 42, "end");
    EXPECT_EQ(s, text + "|42|end");
}

// The string's own text as an argument: each attempt reads it as it stood when Format was called,
// also the attempts that format straight into the string's storage.
TEST(SSFormat, OwnTextAsArgument)
{
    for (const std::size_t n : {10u, 300u, 600u, 3000u, 5000u, 9000u}) {
        _SS<char> s(n, 'o');
        s.Format("<%s|%s>", s.c_str(), "end");
        const std::string expected = "<" + std::string(n, 'o') + "|end>";
        EXPECT_EQ(std::string(s.c_str()), expected.substr(0, 8704)) << n;
    }
}

} // namespace
