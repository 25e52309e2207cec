#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/win32.h"

int _vsnprintf(char* buffer, std::size_t count, const char* format, va_list args)
{
    va_list again;
    va_copy(again, args);
    // C99 vsnprintf always terminates and reports the full length; the runtime's contract is
    // count characters at most, NUL only when there is room, and -1 on overflow.
    const int length = std::vsnprintf(buffer, count, format, args);
    if (length < 0) {
        va_end(again);
        return -1;
    }
    const auto needed = static_cast<std::size_t>(length);
    if (needed < count) {
        va_end(again);
        return length;
    }
    // The text reaches the limit: the buffer must hold its first `count` characters.
    std::vector<char> whole(needed + 1);
    std::vsnprintf(whole.data(), whole.size(), format, again);
    va_end(again);
    std::memcpy(buffer, whole.data(), count);
    return needed == count ? length : -1;
}
