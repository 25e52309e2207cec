#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>
#include <string>

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

// The string formatter terminates the text itself at the length returned, and grows its buffer
// on a negative result.
TEST(VsnprintfContract, LengthOrMinusOneAndNoNulAtTheLimit)
{
    char buffer[64];
    std::memset(buffer, '#', sizeof(buffer));
    EXPECT_EQ(Format(buffer, 5, "%d", 12345), 5);
    EXPECT_EQ(std::string(buffer, 6), "12345#");
    EXPECT_LT(Format(buffer, 5, "%s-%d", "abcd", 99), 0);
    // long is 32 bits on Windows and 64 on POSIX: %ld must read exactly one long either way, or
    // the argument after it comes out wrong.
    EXPECT_EQ(Format(buffer, sizeof(buffer), "%ld|%lu|%d", -2147483647L - 1, 4294967295UL, 7), 24);
    EXPECT_STREQ(buffer, "-2147483648|4294967295|7");
}

} // namespace
