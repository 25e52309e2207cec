// Searches and transformations that never split a double-byte character and never match through
// a trail byte.
#include <cstring>
#include <new>
#include <string>

#include "platform/win32.h"
#include "text/text_internal.h"

using yx::text::CouldBeTrail;
using yx::text::FirstByte;
using yx::text::g_tables;
using yx::text::IsLead;
using yx::text::IsLegalTrail;

namespace {

// The runtime's plain byte search will do when no double-byte character can hide the value's
// first byte as its trail byte.
bool PlainSearchWillDo(unsigned short value)
{
    return !g_tables.dbcs || !CouldBeTrail(FirstByte(value));
}

bool IsValid(unsigned short value)
{
    return String_IsValidChar(value, static_cast<char*>(nullptr));
}

// The walk of String_Find and String_StrStr: character by character, restarting one character
// behind the start of a failed partial match.
template <class Same>
char const* Walk(char const* text, char const* pattern, Same same)
{
    char const* t = text;
    char const* p = pattern;
    char const* begin = nullptr;
    for (;;) {
        if (same(String_GetCharValue(t), String_GetCharValue(p))) {
            if (p == pattern) {
                begin = t;
            }
            p = String_CharNext(p);
            if (*p == '\0') {
                return begin;
            }
        } else if (begin != nullptr) {
            t = begin;
            p = pattern;
            begin = nullptr;
        }
        t = String_CharNext(t);
        if (*t == '\0') {
            return nullptr;
        }
    }
}

} // namespace

char const* String_Find(char const* text, char const* pattern)
{
    if (text == nullptr || pattern == nullptr || *text == '\0') {
        return nullptr;
    }
    return Walk(text, pattern,
                [](unsigned short a, unsigned short b) { return String_FoldChar(a) == String_FoldChar(b); });
}

char const* String_StrChr(char const* text, unsigned short value)
{
    if (PlainSearchWillDo(value)) {
        return std::strchr(text, static_cast<char>(value & 0xFF));
    }
    if (!IsValid(value)) {
        return nullptr;
    }
    for (char const* p = text; *p != '\0'; p = String_CharNext(p)) {
        if (String_GetCharValue(p) == value) {
            return p;
        }
    }
    return nullptr;
}

char* String_StrRChr(char const* text, unsigned short value)
{
    if (PlainSearchWillDo(value)) {
        return const_cast<char*>(std::strrchr(text, static_cast<char>(value & 0xFF)));
    }
    if (!IsValid(value)) {
        return nullptr;
    }
    char const* last = nullptr;
    for (char const* p = text; *p != '\0'; p = String_CharNext(p)) {
        if (String_GetCharValue(p) == value) {
            last = p;
        }
    }
    return const_cast<char*>(last);
}

char const* String_StrChr(char const* text, unsigned short value, long count)
{
    if (text == nullptr) {
        return nullptr;
    }
    if (count <= 0) {
        return String_StrChr(text, value);
    }
    if (PlainSearchWillDo(value)) {
        return static_cast<char const*>(std::memchr(text, value & 0xFF, static_cast<std::size_t>(count)));
    }
    if (!IsValid(value)) {
        return nullptr;
    }
    const bool twoBytes = value >= 0x100;
    const long last = count - (twoBytes ? 2 : 1);
    if (last < 0) {
        return nullptr;
    }
    // Candidates come from the runtime's byte search for the first byte. Whether a candidate
    // starts a character is decided backward: a byte that is no lead byte always ends a
    // character, so the character walk can resume from just behind the nearest such byte and only
    // has to cross the run of lead-flagged bytes in between. No byte past count is read.
    const auto* bytes = reinterpret_cast<unsigned char const*>(text);
    const unsigned char first = FirstByte(value);
    const auto second = static_cast<unsigned char>(value & 0xFF);
    long known = 0; // a character boundary at or before the next candidate
    long from = 0;
    while (from <= last) {
        const void* hit = std::memchr(bytes + from, first, static_cast<std::size_t>(last - from + 1));
        if (hit == nullptr) {
            return nullptr;
        }
        const long candidate = static_cast<long>(static_cast<unsigned char const*>(hit) - bytes);
        long boundary = candidate;
        while (boundary > known && IsLead(bytes[boundary - 1])) {
            --boundary;
        }
        long offset = boundary;
        while (offset < candidate) {
            offset += IsLead(bytes[offset]) && IsLegalTrail(bytes[offset + 1]) ? 2 : 1;
        }
        if (offset == candidate) {
            // A character starts here; its value is the one read by String_GetCharValue.
            if (!twoBytes || bytes[candidate + 1] == second) {
                return text + candidate;
            }
            known = candidate;
        } else {
            known = candidate + 1; // the candidate was a trail byte; the next byte starts a character
        }
        from = candidate + 1;
    }
    return nullptr;
}

unsigned short const* String_StrChr(unsigned short const* text, unsigned short value)
{
    // wcschr over 16-bit units: the terminator itself is found for the value 0.
    for (unsigned short const* p = text;; ++p) {
        if (*p == value) {
            return p;
        }
        if (*p == 0) {
            return nullptr;
        }
    }
}

unsigned short const* String_StrChr(unsigned short const* text, unsigned short value, long count)
{
    if (text == nullptr) {
        return nullptr;
    }
    if (count <= 0) {
        return String_StrChr(text, value);
    }
    for (long i = 0; i < count; ++i) {
        if (text[i] == value) {
            return text + i;
        }
    }
    return nullptr;
}

bool String_IsDBCSSearchNeeded(char const* pattern)
{
    if (!g_tables.dbcs || pattern == nullptr) {
        return false;
    }
    for (char const* p = pattern; *p != '\0'; p = String_CharNext(p)) {
        if (!CouldBeTrail(static_cast<unsigned char>(*p))) {
            return false;
        }
    }
    return true;
}

char* String_StrStr(char const* text, char const* pattern)
{
    if (!String_IsDBCSSearchNeeded(pattern)) {
        return const_cast<char*>(std::strstr(text, pattern));
    }
    if (*text == '\0') {
        return nullptr;
    }
    return const_cast<char*>(Walk(text, pattern, [](unsigned short a, unsigned short b) { return a == b; }));
}

namespace {

bool Overlaps(char const* text, char const* dst, long dstSize)
{
    const std::less<char const*> less;
    char const* textEnd = text + std::strlen(text) + 1;
    return less(dst, textEnd) && less(text, dst + dstSize);
}

bool Extract(char const* text, char* dst, long dstSize, unsigned short mode, long first, long count)
{
    dst[0] = '\0';
    if (count == 0) {
        return true;
    }
    if (*text == '\0') {
        return false;
    }
    if (mode == 0) {
        char const* p = text;
        for (long position = 1; position < first && *p != '\0'; ++position) {
            p = String_CharNext(p);
        }
        // A negative count writes nothing: no character is wanted.
        char* out = dst;
        for (long written = 0; written < count && *p != '\0'; ++written) {
            const unsigned short value = String_GetCharValue(p);
            String_SetCharValue(out, value);
            out += value < 0x100 || (value & 0xFF) == 0 ? 1 : 2;
            p = String_CharNext(p);
        }
        *out = '\0';
        return true;
    }
    if (mode == 1) {
        if (dstSize <= count) {
            return false;
        }
        const long length = static_cast<long>(std::strlen(text));
        char const* p = text;
        // A character takes two bytes at most: a place further than 2 x count bytes from the end
        // has more than count characters behind it.
        while (length - (p - text) > 2 * count) {
            p = String_CharNext(p);
        }
        for (long remaining = String_NbChar(p); remaining > count; --remaining) {
            p = String_CharNext(p);
        }
        StringCopy(dst, p, dstSize);
        return true;
    }
    return false;
}

} // namespace

bool String_Extract(char const* text, char* dst, long dstSize, unsigned short mode, long first, long count)
{
    if (text == nullptr || dst == nullptr || dstSize == 0) {
        return false;
    }
    // dst may be text itself or overlap it: the characters are then read from a copy, since dst
    // is emptied first.
    if (dstSize > 0 && Overlaps(text, dst, dstSize)) {
        const std::string copy(text);
        return Extract(copy.c_str(), dst, dstSize, mode, first, count);
    }
    return Extract(text, dst, dstSize, mode, first, count);
}

long String_Transform(char const* src, long srcLength, char* dst, long dstSize, unsigned long flags)
{
    DWORD platform = 0;
    platform |= (flags & YXSTRING_FULLWIDTH) != 0 ? LCMAP_FULLWIDTH : 0;
    platform |= (flags & YXSTRING_HALFWIDTH) != 0 ? LCMAP_HALFWIDTH : 0;
    platform |= (flags & YXSTRING_HIRAGANA) != 0 ? LCMAP_HIRAGANA : 0;
    platform |= (flags & YXSTRING_KATAKANA) != 0 ? LCMAP_KATAKANA : 0;
    platform |= (flags & YXSTRING_LOWERCASE) != 0 ? LCMAP_LOWERCASE : 0;
    platform |= (flags & YXSTRING_UPPERCASE) != 0 ? LCMAP_UPPERCASE : 0;
    platform |= (flags & YXSTRING_NONSPACE) != 0 && g_tables.codePage != 932 ? NORM_IGNORENONSPACE : 0;
    platform |= (flags & YXSTRING_SYMBOLS) != 0 ? NORM_IGNORESYMBOLS : 0;
    if (srcLength == 0) {
        srcLength = -1;
    }
    if (platform != 0) {
        return static_cast<long>(LCMapStringA(GetUserDefaultLCID(), platform, src, static_cast<int>(srcLength), dst,
                                              static_cast<int>(dstSize))) -
               1;
    }
    // A plain copy. A null text has nothing to copy: -1, as a failing mapping gives.
    if (src == nullptr || dst == nullptr) {
        return -1;
    }
    std::size_t n = srcLength > 0 ? static_cast<std::size_t>(srcLength) : std::strlen(src) + 1;
    if (dstSize > 0 && n > static_cast<std::size_t>(dstSize)) {
        n = static_cast<std::size_t>(dstSize);
    }
    std::memmove(dst, src, n);
    // The text now in dst ends at its first 0 byte, or with the bytes copied when none came.
    const void* end = std::memchr(dst, 0, n);
    return static_cast<long>(end != nullptr ? static_cast<char const*>(end) - dst : static_cast<long>(n));
}

long String_Transform(char const* src, char* dst, long dstSize, unsigned long flags)
{
    return String_Transform(src, -1, dst, dstSize, flags);
}

long String_Transform(char* text, long length, unsigned long flags)
{
    if (text == nullptr) {
        return -1;
    }
    const long size = length > 0 ? length : static_cast<long>(std::strlen(text)) + 1;
    if (size < 1) {
        return -1;
    }
    char* work = new (std::nothrow) char[static_cast<std::size_t>(size) + 1]();
    if (work == nullptr) {
        return -1;
    }
    const long result = String_Transform(text, length, work, size, flags);
    if (result >= 0) {
        std::strncpy(text, work, static_cast<std::size_t>(size));
    }
    delete[] work;
    return result;
}

long String_Simplify(char* text, long length)
{
    return String_Transform(text, length, YXSTRING_HALFWIDTH);
}

long String_Simplify(unsigned short* text, long /*length*/)
{
    if (text == nullptr) {
        return 0;
    }
    long units = 0;
    while (text[units] != 0) {
        ++units;
    }
    return 2 * units;
}

char* String_Truncate(char* text, long nBytes)
{
    if (text == nullptr || nBytes < 0) {
        return text;
    }
    if (g_tables.dbcs) {
        long offset = 0;
        while (offset < nBytes - 1 && text[offset] != '\0') {
            offset += String_IsDoubleByteChar(text + offset) ? 2 : 1;
        }
        if (IsLead(static_cast<unsigned char>(text[offset]))) {
            text[offset] = '\0';
        }
    }
    text[nBytes] = '\0';
    return text;
}
