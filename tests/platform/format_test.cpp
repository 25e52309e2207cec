#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>

#include "platform/win32.h"

namespace {

int Format(char* buffer, std::size_t count, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = _vsnprintf(buffer, count, format, args);
    va_end(args);
    return result;
}

TEST(VsnprintfContract, ShortTextIsTerminated)
{
    char buffer[8];
    std::memset(buffer, '#', sizeof(buffer));
    EXPECT_EQ(Format(buffer, 5, "%s", "abc"), 3);
    EXPECT_STREQ(buffer, "abc");
}

TEST(VsnprintfContract, TextOfExactlyTheLimitHasNoNul)
{
    char buffer[8];
    std::memset(buffer, '#', sizeof(buffer));
    EXPECT_EQ(Format(buffer, 5, "%d", 12345), 5);
    EXPECT_EQ(std::memcmp(buffer, "12345#", 6), 0);
}

TEST(VsnprintfContract, LongerTextGivesMinusOneAndItsFirstCharacters)
{
    char buffer[8];
    std::memset(buffer, '#', sizeof(buffer));
    EXPECT_LT(Format(buffer, 5, "%s-%d", "abcd", 99), 0);
    EXPECT_EQ(std::memcmp(buffer, "abcd-#", 6), 0);
}

TEST(VsnprintfContract, ALimitOfZeroWritesNothing)
{
    char buffer[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(Format(buffer, 0, "%s", ""), 0);
    EXPECT_LT(Format(buffer, 0, "%s", "a"), 0);
    EXPECT_EQ(buffer[0], '#');
}

TEST(VsnprintfContract, LongArgumentsFormatAtTheirOwnWidth)
{
    // long is 32 bits on Windows and 64 on POSIX: %ld must read exactly one long either way, or
    // the argument after it comes out wrong.
    char buffer[64];
    EXPECT_EQ(Format(buffer, sizeof(buffer), "%ld|%lu|%d", -2147483647L - 1, 4294967295UL, 7), 24);
    EXPECT_STREQ(buffer, "-2147483648|4294967295|7");
}

} // namespace
