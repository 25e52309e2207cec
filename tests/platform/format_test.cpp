#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "platform/win32.h"

// The program counts its allocations through the global operator new, which the formatter's
// stand-in would use for a buffer of its own.
namespace {
std::atomic<long> g_allocations{0};
} // namespace

void* operator new(std::size_t size)
{
    ++g_allocations;
    if (void* p = std::malloc(size == 0 ? 1 : size)) {
        return p;
    }
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t /*size*/) noexcept
{
    std::free(p);
}

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

// Texts of the lengths that the string formatter's stack buffers take, and a little beyond, are
// formatted without the heap, whether they fit the limit, reach it or overflow it.
TEST(VsnprintfContract, ShortTextsUseNoHeap)
{
    char buffer[1024];
    for (const std::size_t limit : {255u, 511u}) {
        for (const std::size_t length : {limit - 1, limit, limit + 1, limit + 300}) {
            const std::string text(length, 'h');
            const long before = g_allocations;
            const int result = Format(buffer, limit, "%s", text.c_str());
            EXPECT_EQ(g_allocations - before, 0) << length << " at limit " << limit;
            EXPECT_EQ(result, length <= limit ? static_cast<int>(length) : -1) << length;
            EXPECT_EQ(std::string(buffer, std::min(length, limit)), text.substr(0, limit)) << length;
        }
    }
}

} // namespace
