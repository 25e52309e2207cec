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

} // namespace
