#include <gtest/gtest.h>

#include <string>

#include <yxtools/ss.h>

namespace {

TEST(SSConstruction, SmallPointerValuesGiveTheEmptyString)
{
    EXPECT_TRUE(_SS<char>(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(_SS<char>(reinterpret_cast<const char*>(0xFFFF)).empty());
    EXPECT_TRUE(_SS<unsigned short>(reinterpret_cast<const unsigned short*>(0x1234)).empty());
    EXPECT_EQ(_SS<char>("abc\0def"), "abc");
}

TEST(SSAssignment, NullEmptiesTheString)
{
    _SS<char> s("text");
    s = static_cast<const char*>(nullptr);
    EXPECT_TRUE(s.empty());
}

TEST(SSAssignment, PointerIntoItselfKeepsTheTail)
{
    _SS<char> s("abcdefgh");
    s = s.c_str() + 3;
    EXPECT_EQ(s, "defgh");
    s = s.c_str() + s.size(); // the terminator
    EXPECT_TRUE(s.empty());

    _SS<unsigned short> w(std::basic_string<unsigned short>{'x', 'y', 'z'});
    w = w.c_str() + 1;
    EXPECT_EQ(w, (std::basic_string<unsigned short>{'y', 'z'}));
}

TEST(SSAssignment, PointerIntoItselfKeepsBytesPastAnInnerNul)
{
    // Assignment from inside keeps everything up to the string's end, not just up to a NUL.
    _SS<char> s(std::string("ab\0cd", 5));
    s = s.c_str() + 1;
    EXPECT_EQ(s, std::string("b\0cd", 4));
}

TEST(SSAssignment, SelfAssignmentTouchesNothing)
{
    _SS<char> s(std::string(100, 'q'));
    const char* storage = s.data();
    const _SS<char>& same = s;
    s = same;
    EXPECT_EQ(s.data(), storage);
    EXPECT_EQ(s, std::string(100, 'q'));
}

TEST(SSAssignment, SmallNonNullPointerIsTakenAsAPointer)
{
    // Unlike the constructor, assignment reads the text of any non-null pointer; a real text at a
    // low address can't be made here, so this checks the ordinary path.
    _SS<char> s;
    const char text[] = "copied";
    s = text;
    EXPECT_EQ(s, "copied");
    EXPECT_NE(s.data(), text);
}

TEST(SSRight, CountsBeyondTheLengthGiveTheWholeString)
{
    const _SS<char> s("abcdef");
    EXPECT_EQ(s.Right(2), "ef");
    EXPECT_EQ(s.Right(6), "abcdef");
    EXPECT_EQ(s.Right(100), "abcdef");
    EXPECT_EQ(s.Right(0), "");
    EXPECT_EQ(s.Right(-5), "");
}

TEST(SSConcatenation, JoinsLeftThenRight)
{
    const _SS<char> left("ab");
    const _SS<char> right("cd");
    const _SS<char> joined = left + right;
    EXPECT_EQ(joined, "abcd");
    EXPECT_EQ(left, "ab");
}

// Formats a text of exactly n characters through a %s argument.
_SS<char> FormatOfLength(std::size_t n)
{
    const std::string text(n, 'x');
    _SS<char> s("previous value");
    s.Format("%s", text.c_str());
    return s;
}

TEST(SSFormat, LengthsAroundEachAttemptComeWhole)
{
    for (const std::size_t n : {0u, 1u, 254u, 255u, 256u, 510u, 511u, 512u, 2560u, 2561u, 4608u, 6656u, 8703u, 8704u}) {
        SCOPED_TRACE(n);
        const _SS<char> s = FormatOfLength(n);
        EXPECT_EQ(s.size(), n);
        EXPECT_EQ(s, std::string(n, 'x'));
    }
}

TEST(SSFormat, TextsUpTo511DoNotUseTheStringAsBuffer)
{
    // The third attempt formats into the string resized to 2561 bytes, which leaves its mark on
    // the capacity; the first two attempts use stack buffers.
    EXPECT_LT(FormatOfLength(511).capacity(), 2560u);
    const _SS<char> fromHeap = FormatOfLength(512);
    EXPECT_EQ(fromHeap.size(), 512u);
    EXPECT_GE(fromHeap.capacity(), 2560u);
}

TEST(SSFormat, LongerTextsAreCutAt8704WithATrailingNul)
{
    for (const std::size_t n : {8705u, 8706u, 20000u}) {
        SCOPED_TRACE(n);
        const _SS<char> s = FormatOfLength(n);
        ASSERT_EQ(s.size(), 8705u);
        EXPECT_EQ(s[8704], '\0');
        EXPECT_EQ(std::string(s.c_str()), std::string(8704, 'x'));
    }
}

TEST(SSFormat, ArgumentsAreReadAgainForEachAttempt)
{
    const std::string text(3000, 'a');
    _SS<char> s;
    s.Format("%s|%d|%s", text.c_str(), 42, "end");
    EXPECT_EQ(s, text + "|42|end");
}

} // namespace
