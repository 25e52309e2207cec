#include "yxtools/ss.h"

#include "platform/win32.h"

namespace {
// Limits of the attempts that format straight into the string's storage.
constexpr std::size_t kHeapAttempts[] = {2561, 4609, 6657, 8705};

// One attempt into a local buffer of Size bytes with a limit of Size - 1 characters.
template <std::size_t Size>
bool FormatIntoStack(_SS<char>& target, const char* format, va_list args)
{
    char buffer[Size];
    va_list copy;
    va_copy(copy, args);
    const int length = _vsnprintf(buffer, Size - 1, format, copy);
    va_end(copy);
    if (length < 0) {
        return false;
    }
    buffer[length] = '\0';
    target = buffer;
    return true;
}
} // namespace

template <>
_SS<char>& _SS<char>::FormatV(const char* format, va_list args)
{
    if (FormatIntoStack<256>(*this, format, args) || FormatIntoStack<512>(*this, format, args)) {
        return *this;
    }
    // The longer attempts format into a string of their own, which then takes this one's place:
    // an argument may be this string's own text, which a resize here would free before it is read.
    _SS<char> attempt;
    for (const std::size_t size : kHeapAttempts) {
        attempt.resize(size);
        va_list copy;
        va_copy(copy, args);
        const int length = _vsnprintf(&attempt[0], size - 1, format, copy);
        va_end(copy);
        if (length >= 0) {
            attempt.resize(static_cast<std::size_t>(length));
            break;
        }
    }
    // When every attempt was too small, the string is the last one: 8704 characters followed by
    // the zero byte of the resize.
    swap(attempt);
    return *this;
}
