#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/win32.h"

namespace {
// Texts shorter than this are finished on the stack when they reach the limit, so that the string
// formatter's attempts of 255 and 511 characters never touch the heap.
constexpr std::size_t kStackText = 1024;
} // namespace

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
    // The text reaches the limit: the buffer must hold its first `count` characters, without the
    // NUL that vsnprintf puts in the last place.
    char local[kStackText];
    std::vector<char> whole;
    char* text = local;
    if (needed >= sizeof(local)) {
        whole.resize(needed + 1);
        text = whole.data();
    }
    std::vsnprintf(text, needed + 1, format, again);
    va_end(again);
    std::memcpy(buffer, text, count);
    return needed == count ? length : -1;
}
