// The multibyte string core: the tables, the character walk, counting, comparing, case mapping,
// truncating copy and character values.
#include <climits>
#include <cstring>

#include "platform/win32.h"
#include "text/text_internal.h"

namespace yx::text {

Tables g_tables{};

} // namespace yx::text

using yx::text::g_tables;
using yx::text::IsLead;
using yx::text::IsLegalTrail;

namespace {

unsigned char Byte(char const* p, long offset)
{
    return static_cast<unsigned char>(p[offset]);
}

// The locale mapping of one step of the fold chain. The destination starts as a copy of the
// source, so that a mapping call that fails passes its text on unchanged: the fold tables then
// hold what the other steps made of each character (the identity when every step fails) rather
// than values of nothing.
void MapStep(LCID locale, DWORD flags, char const* from, char* to, int toSize)
{
    const std::size_t length = strnlen(from, static_cast<std::size_t>(toSize) - 1);
    std::memcpy(to, from, length);
    to[length] = '\0';
    LCMapStringA(locale, flags, from, -1, to, toSize);
}

} // namespace

void String_InitTables()
{
    // 1. Lead bytes and the DBCS flag.
    g_tables.dbcs = false;
    for (int b = 0; b < 256; ++b) {
        g_tables.leadBytes[b] = IsDBCSLeadByte(static_cast<BYTE>(b)) != FALSE;
        g_tables.dbcs = g_tables.dbcs || g_tables.leadBytes[b];
    }
    // 2.-3. The single-byte repertoire, lead bytes left out.
    g_tables.foldSingle[0] = 0;
    char source[1000] = {};
    char* p = source;
    for (unsigned short v = 0x01; v <= 0xFF; ++v) {
        if (!IsLead(static_cast<unsigned char>(v))) {
            p = String_StoreCharValue(p, v);
        }
    }
    // 4.-5. Code page and identity kana tables.
    g_tables.codePage = GetACP();
    for (unsigned short v = yx::text::kKatakanaFirst; v <= yx::text::kKatakanaLast; ++v) {
        g_tables.foldKatakana[v - yx::text::kKatakanaFirst] = v;
    }
    for (unsigned short v = yx::text::kHiraganaFirst; v <= yx::text::kHiraganaLast; ++v) {
        g_tables.foldHiragana[v - yx::text::kHiraganaFirst] = v;
    }
    // 6. The kana of code page 932.
    if (g_tables.dbcs && g_tables.codePage == 932) {
        for (unsigned short v = yx::text::kKatakanaFirst; v <= yx::text::kKatakanaLast; ++v) {
            if (v != 0x837F) {
                p = String_StoreCharValue(p, v);
            }
        }
        for (unsigned short v = yx::text::kHiraganaFirst; v <= yx::text::kHiraganaLast; ++v) {
            p = String_StoreCharValue(p, v);
        }
    }
    // 7. The source buffer was zero from the start: it is terminated.
    // 8. Full width, upper case, hiragana, and (outside 932) accents away.
    constexpr int kWorkSize = 2000;
    char first[kWorkSize] = {};
    char second[kWorkSize] = {};
    const LCID locale = GetUserDefaultLCID();
    MapStep(locale, LCMAP_FULLWIDTH, source, first, kWorkSize);
    MapStep(locale, LCMAP_UPPERCASE, first, second, kWorkSize);
    MapStep(locale, LCMAP_HIRAGANA, second, first, kWorkSize);
    if (g_tables.codePage != 932) {
        MapStep(locale, NORM_IGNORENONSPACE, first, second, kWorkSize);
    } else {
        std::memcpy(second, first, kWorkSize);
    }
    // 9. Source and mapped text in step, one character at a time.
    char const* s = source;
    char const* m = second;
    while (*s != '\0') {
        const unsigned short v = String_GetCharValue(s);
        const unsigned short f = String_GetCharValue(m);
        if (v < 0x100) {
            g_tables.foldSingle[v] = f;
        } else if (v >= yx::text::kKatakanaFirst && v <= yx::text::kKatakanaLast) {
            g_tables.foldKatakana[v - yx::text::kKatakanaFirst] = f;
        } else if (v >= yx::text::kHiraganaFirst && v <= yx::text::kHiraganaLast) {
            g_tables.foldHiragana[v - yx::text::kHiraganaFirst] = f;
        }
        s = String_CharNext(s);
        m = String_CharNext(m);
    }
}

bool* String_GetTabBLeadByte()
{
    return g_tables.leadBytes;
}

bool String_IsDBCSEnabled()
{
    return g_tables.dbcs;
}

bool String_IsDoubleByteChar(char const* p)
{
    return p != nullptr && p[0] != '\0' && IsLead(Byte(p, 0)) && IsLegalTrail(Byte(p, 1));
}

char* String_CharNext(char const* p)
{
    if (p == nullptr || *p == '\0') {
        return const_cast<char*>(p);
    }
    return const_cast<char*>(p + (String_IsDoubleByteChar(p) ? 2 : 1));
}

unsigned short String_GetCharValue(char const* p)
{
    if (p == nullptr || *p == '\0') {
        return 0;
    }
    if (IsLead(Byte(p, 0))) {
        return static_cast<unsigned short>((Byte(p, 0) << 8) + Byte(p, 1));
    }
    return Byte(p, 0);
}

char* String_StoreCharValue(char* p, unsigned short value)
{
    if (p == nullptr) {
        return nullptr;
    }
    String_SetCharValue(p, value);
    return String_CharNext(p);
}

unsigned short String_FoldChar(unsigned short value)
{
    if (value < 0x100) {
        return g_tables.foldSingle[value];
    }
    if (g_tables.codePage != 932) {
        return value;
    }
    if (value >= 0x8281 && value <= 0x829A) {
        return static_cast<unsigned short>(value - 0x21);
    }
    if (value >= yx::text::kKatakanaFirst && value <= yx::text::kKatakanaLast) {
        return g_tables.foldKatakana[value - yx::text::kKatakanaFirst];
    }
    if (value >= yx::text::kHiraganaFirst && value <= yx::text::kHiraganaLast) {
        return g_tables.foldHiragana[value - yx::text::kHiraganaFirst];
    }
    return value;
}

bool String_IsValidChar(unsigned short value, char* /*tag*/)
{
    if (value < 0x100) {
        return !IsLead(static_cast<unsigned char>(value));
    }
    return IsLead(static_cast<unsigned char>(value >> 8));
}

bool String_IsValidChar(unsigned short /*value*/, unsigned short* /*tag*/)
{
    return true;
}

char* String_DBCSCharPrev(char const* start, char const* current)
{
    if (!(start < current - 1)) {
        return const_cast<char*>(start);
    }
    const auto b = static_cast<unsigned char>(current[-1]);
    if (IsLead(b)) {
        // A lead-range byte directly before a boundary can only be a trail byte.
        return const_cast<char*>(current - 2);
    }
    if (!yx::text::CouldBeTrail(b)) {
        return const_cast<char*>(current - 1);
    }
    // b may be either: an odd run of lead-flagged bytes before it makes it a trail byte.
    char const* p = current - 2;
    while (p >= start && IsLead(static_cast<unsigned char>(*p))) {
        --p;
    }
    const long d = static_cast<long>(current - p);
    return const_cast<char*>(current - 1 - (d % 2));
}

char* String_CharPrev(char const* start, char const* current)
{
    if (start == nullptr || current == nullptr) {
        return nullptr;
    }
    if (!g_tables.dbcs) {
        return const_cast<char*>(current == start ? current : current - 1);
    }
    return String_DBCSCharPrev(start, current);
}

unsigned short* String_CharPrev(unsigned short const* start, unsigned short const* current)
{
    if (start == nullptr || current == nullptr) {
        return nullptr;
    }
    return const_cast<unsigned short*>(current == start ? current : current - 1);
}

long String_NbChar(char const* text)
{
    long n = 0;
    if (text == nullptr) {
        return 0;
    }
    for (char const* p = text; *p != '\0'; p = String_CharNext(p)) {
        ++n;
    }
    return n;
}

long String_NbChar2NbBytes(char const* text, long nChars)
{
    if (!g_tables.dbcs || text == nullptr || nChars <= 0) {
        return nChars;
    }
    char const* p = text;
    for (long i = 0; i < nChars && *p != '\0'; ++i) {
        p = String_CharNext(p);
    }
    return static_cast<long>(p - text);
}

long String_NbBytes2NbChar(char const* text, long nBytes)
{
    if (text == nullptr || nBytes <= 0) {
        return 0;
    }
    long n = 0;
    for (long offset = 0; offset < nBytes; ++n) {
        offset += String_IsDoubleByteChar(text + offset) ? 2 : 1;
    }
    return n;
}

short String_Compare(char const* a, char const* b, long count, unsigned short flags)
{
    if (a == nullptr) {
        return static_cast<short>(b == nullptr ? 0 : -1);
    }
    if (b == nullptr) {
        return 1;
    }
    DWORD platform = 0;
    platform |= (flags & YXSTRING_IGNORECASE) != 0 ? NORM_IGNORECASE : 0;
    platform |= (flags & YXSTRING_IGNOREKANATYPE) != 0 ? NORM_IGNOREKANATYPE : 0;
    platform |= (flags & YXSTRING_IGNORENONSPACE) != 0 && g_tables.codePage != 932 ? NORM_IGNORENONSPACE : 0;
    platform |= (flags & YXSTRING_IGNORESYMBOLS) != 0 ? NORM_IGNORESYMBOLS : 0;
    platform |= (flags & YXSTRING_IGNOREWIDTH) != 0 ? NORM_IGNOREWIDTH : 0;
    platform |= (flags & YXSTRING_STRINGSORT) != 0 ? SORT_STRINGSORT : 0;
    // The platform counts in int: a count beyond its range is as good as no bound to it.
    const int length = count > INT_MAX ? INT_MAX : count < 0 ? -1 : static_cast<int>(count);
    return static_cast<short>(CompareStringA(LOCALE_USER_DEFAULT, platform, a, length, b, length) - 2);
}

char* String_CharUpper(char* text, long count)
{
    if (count == 0) {
        CharUpperA(text);
    } else {
        CharUpperBuffA(text, static_cast<DWORD>(count));
    }
    return text;
}

char* String_CharLower(char* text, long count)
{
    if (count == 0) {
        CharLowerA(text);
    } else {
        CharLowerBuffA(text, static_cast<DWORD>(count));
    }
    return text;
}

char* StringCopy(char* dst, char const* src, long capacity)
{
    if (dst == nullptr || src == nullptr || capacity < 0) {
        return nullptr;
    }
    const std::size_t length = std::strlen(src);
    if (capacity == 0 || static_cast<long>(length) < capacity) {
        std::memmove(dst, src, length + 1);
        return dst;
    }
    // src fills at least capacity bytes: character by character, never the first half alone.
    long offset = 0;
    while (offset < capacity - 1) {
        if (String_IsDoubleByteChar(src + offset)) {
            if (offset == capacity - 2) {
                dst[offset] = '\0';
                break;
            }
            dst[offset] = src[offset];
            dst[offset + 1] = src[offset + 1];
            offset += 2;
        } else {
            dst[offset] = src[offset];
            ++offset;
        }
    }
    dst[capacity - 1] = '\0';
    return dst;
}

bool String_SetCharValue(char* dst, unsigned short value)
{
    if (dst == nullptr || !String_IsValidChar(value, static_cast<char*>(nullptr))) {
        return false;
    }
    if (value < 0x100) {
        dst[0] = static_cast<char>(value);
    } else {
        dst[0] = static_cast<char>(value >> 8);
        if ((value & 0xFF) != 0) {
            dst[1] = static_cast<char>(value & 0xFF);
        }
    }
    return true;
}

bool String_SetCharValue(unsigned short* dst, unsigned short value)
{
    if (dst == nullptr) {
        return false;
    }
    *dst = value;
    return true;
}

bool String_AddCharValue(_SS<char>& text, unsigned short value)
{
    if (!String_IsValidChar(value, static_cast<char*>(nullptr))) {
        return false;
    }
    if (value < 0x100) {
        text.push_back(static_cast<char>(value));
    } else {
        text.push_back(static_cast<char>(value >> 8));
        if ((value & 0xFF) != 0) {
            text.push_back(static_cast<char>(value & 0xFF));
        }
    }
    return true;
}

bool String_AddCharValue(_SS<unsigned short>& text, unsigned short value)
{
    text.push_back(value);
    return true;
}
