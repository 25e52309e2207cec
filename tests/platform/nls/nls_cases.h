// The questions that the NLS contract tests put to the platform, and the answers as text lines:
// one line per question, so that the answers of one build can be kept and compared with another's.
// The same code runs on both builds; the answers kept in the tests were made under Wine.
#ifndef YXTOOLS_TESTS_PLATFORM_NLS_CASES_H
#define YXTOOLS_TESTS_PLATFORM_NLS_CASES_H

#include <cstdio>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace nlscases {

inline std::string Hex(const char* p, int n)
{
    std::string out;
    char digits[4];
    for (int i = 0; i < n; ++i) {
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(p[i]));
        out += digits;
    }
    return out;
}

// Every character of the ANSI code page: the single bytes that are no lead bytes, then every
// lead byte with every trail byte that the code page maps to a character of its own.
inline std::vector<std::string> Repertoire()
{
    std::vector<std::string> chars;
    for (int b = 1; b < 256; ++b) {
        if (IsDBCSLeadByte(static_cast<BYTE>(b)) == FALSE) {
            chars.emplace_back(1, static_cast<char>(b));
        }
    }
    for (int lead = 0x81; lead < 256; ++lead) {
        if (IsDBCSLeadByte(static_cast<BYTE>(lead)) == FALSE) {
            continue;
        }
        for (int trail = 0x40; trail <= 0xFC; ++trail) {
            const char bytes[2] = {static_cast<char>(lead), static_cast<char>(trail)};
            WCHAR wide[4] = {};
            if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, bytes, 2, wide, 4) == 1) {
                chars.emplace_back(bytes, 2);
            }
        }
    }
    return chars;
}

struct NamedFlag {
    const char* name;
    DWORD flag;
};

inline const std::vector<NamedFlag>& MapFlags()
{
    static const std::vector<NamedFlag> flags = {
        {"FULLWIDTH", LCMAP_FULLWIDTH},
        {"HALFWIDTH", LCMAP_HALFWIDTH},
        {"HIRAGANA", LCMAP_HIRAGANA},
        {"KATAKANA", LCMAP_KATAKANA},
        {"LOWERCASE", LCMAP_LOWERCASE},
        {"UPPERCASE", LCMAP_UPPERCASE},
        {"IGNORENONSPACE", NORM_IGNORENONSPACE},
        {"IGNORESYMBOLS", NORM_IGNORESYMBOLS},
    };
    return flags;
}

// "<flag> <char>=<mapped>" for each character that a single mapping flag changes, one call per
// character.
inline void MapEachCharacter(std::vector<std::string>& lines)
{
    const std::vector<std::string> chars = Repertoire();
    for (const NamedFlag& f : MapFlags()) {
        for (const std::string& c : chars) {
            char out[16] = {};
            const int n = LCMapStringA(GetUserDefaultLCID(), f.flag, c.data(), static_cast<int>(c.size()), out, 16);
            if (n != static_cast<int>(c.size()) || std::string(out, n) != c) {
                lines.push_back(std::string("map ") + f.name + " " + Hex(c.data(), static_cast<int>(c.size())) + "=" +
                                (n > 0 ? Hex(out, n) : "fail" + std::to_string(GetLastError())));
            }
        }
    }
}

// "<what> <flags> -> <count> <error> <bytes>" for the counts, the failures and the combinations
// of flags, on short texts.
inline void MapCounts(std::vector<std::string>& lines, const char* sample)
{
    auto record = [&lines](const std::string& what, DWORD flags, const char* src, int srcLength, char* dst,
                           int dstSize) {
        char flagText[16];
        std::snprintf(flagText, sizeof flagText, "%08lX", static_cast<unsigned long>(flags));
        SetLastError(0xDEAD);
        const int n = LCMapStringA(GetUserDefaultLCID(), flags, src, srcLength, dst, dstSize);
        const DWORD error = GetLastError();
        std::string line = "count " + what + " " + flagText + " -> " + std::to_string(n);
        line += n == 0 ? " error " + std::to_string(error) : "";
        if (n > 0 && dst != nullptr && dstSize > 0) {
            line += " " + Hex(dst, n);
        }
        lines.push_back(line);
    };
    char dst[64];
    const int length = static_cast<int>(std::string(sample).size());
    for (const NamedFlag& f : MapFlags()) {
        record("size-only", f.flag, sample, -1, nullptr, 0);
        record("counted", f.flag, sample, length, dst, 64);
        record("counted-size-only", f.flag, sample, length, nullptr, 0);
        record("short-dst", f.flag, sample, -1, dst, 2);
        record("null-src", f.flag, nullptr, -1, dst, 64);
        record("zero-src", f.flag, sample, 0, dst, 64);
        record("negative-dst", f.flag, sample, -1, dst, -1);
        record("null-dst", f.flag, sample, -1, nullptr, 64);
        record("exact-dst", f.flag, "ab", -1, dst, 3);
    }
    // Every combination of the eight flags on the sample.
    for (unsigned bits = 0; bits < 256; ++bits) {
        DWORD flags = 0;
        for (unsigned i = 0; i < 8; ++i) {
            if ((bits & (1u << i)) != 0) {
                flags |= MapFlags()[i].flag;
            }
        }
        record("combination", flags, sample, -1, dst, 64);
    }
    record("unknown-flag", 0x8, sample, -1, dst, 64);
    // The same buffer as source and destination.
    for (const NamedFlag& f : MapFlags()) {
        char same[16] = "aB1-";
        record("in-place", f.flag, same, -1, same, 16);
    }
}

struct NamedCompareFlag {
    const char* name;
    DWORD flag;
};

// "<flags> <a> <b> -> <result>" for pairs of texts and the six comparison flags.
inline void Compare(std::vector<std::string>& lines, const std::vector<std::pair<std::string, std::string>>& pairs)
{
    const DWORD flags[] = {NORM_IGNORECASE,    NORM_IGNOREKANATYPE, NORM_IGNORENONSPACE,
                           NORM_IGNORESYMBOLS, NORM_IGNOREWIDTH,    SORT_STRINGSORT};
    for (const auto& pair : pairs) {
        for (unsigned bits = 0; bits < 64; ++bits) {
            DWORD f = 0;
            for (unsigned i = 0; i < 6; ++i) {
                if ((bits & (1u << i)) != 0) {
                    f |= flags[i];
                }
            }
            const int r = CompareStringA(LOCALE_USER_DEFAULT, f, pair.first.c_str(), -1, pair.second.c_str(), -1);
            char text[16];
            std::snprintf(text, sizeof text, "%05lX", static_cast<unsigned long>(f));
            lines.push_back(std::string("compare ") + text + " " +
                            Hex(pair.first.data(), static_cast<int>(pair.first.size())) + " " +
                            Hex(pair.second.data(), static_cast<int>(pair.second.size())) + " -> " + std::to_string(r));
        }
    }
}

// "<call> <char>=<mapped>" for each character that the case calls change.
inline void CaseEachCharacter(std::vector<std::string>& lines)
{
    for (const std::string& c : Repertoire()) {
        char up[4] = {};
        char low[4] = {};
        c.copy(up, c.size());
        c.copy(low, c.size());
        const DWORD nu = CharUpperBuffA(up, static_cast<DWORD>(c.size()));
        const DWORD nl = CharLowerBuffA(low, static_cast<DWORD>(c.size()));
        if (std::string(up) != c || nu != c.size()) {
            lines.push_back("upper " + Hex(c.data(), static_cast<int>(c.size())) + "=" +
                            Hex(up, static_cast<int>(std::string(up).size())) + " " + std::to_string(nu));
        }
        if (std::string(low) != c || nl != c.size()) {
            lines.push_back("lower " + Hex(c.data(), static_cast<int>(c.size())) + "=" +
                            Hex(low, static_cast<int>(std::string(low).size())) + " " + std::to_string(nl));
        }
    }
}

// Every question, in order.
inline std::vector<std::string> AllAnswers()
{
    std::vector<std::string> lines;
    lines.push_back("acp " + std::to_string(GetACP()) + " lcid " + std::to_string(GetUserDefaultLCID()));
    MapEachCharacter(lines);
    MapCounts(lines, "aB \xb6\xde!-x");
    CaseEachCharacter(lines);
    Compare(lines, {{"a", "A"},
                    {"a", "b"},
                    {"A", "b"},
                    {"co-op", "coop"},
                    {"coop", "co-op"},
                    {"a-b", "ab"},
                    {"e", "\xe9"},
                    {"a", "\x82\x81"},
                    {"\xb1", "\x83\x41"},
                    {"\x83\x41", "\x82\xa0"},
                    {"", "a"},
                    {"abc", "abd"},
                    {"1", "a"},
                    {"a b", "ab"},
                    {"'a", "a"},
                    {"A", "a"},
                    {"!", "a"}});
    return lines;
}

} // namespace nlscases

#endif
