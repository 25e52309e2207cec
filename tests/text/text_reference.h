// A plain character-by-character model of the character walk, for the randomised tests and the
// fuzz target. It knows the lead bytes of the code page on its own (code page 932: 0x81..0x9F and
// 0xE0..0xFC; none in single-byte code pages) and reads byte by byte.
#ifndef YXTOOLS_TESTS_TEXT_REFERENCE_H
#define YXTOOLS_TESTS_TEXT_REFERENCE_H

#include <cstddef>
#include <string>
#include <vector>

namespace textref {

struct Reference {
    explicit Reference(unsigned codePage) : dbcs(codePage == 932) {}

    bool Lead(unsigned char b) const { return dbcs && ((b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC)); }
    static bool Trail(unsigned char b) { return b >= 0x31 && b <= 0xFE && b != 0x7F; }
    static bool MayBeTrail(unsigned char b) { return b >= 0x40 && b <= 0xFC && b != 0x7F; }

    // The value read at i, the byte behind a lead byte taken whatever it is.
    unsigned short Value(const std::string& s, std::size_t i) const
    {
        const auto b = static_cast<unsigned char>(s[i]);
        return Lead(b) ? static_cast<unsigned short>((b << 8) + static_cast<unsigned char>(s[i + 1])) : b;
    }

    // Offsets of the characters of s up to its first 0 byte, or across all of it.
    std::vector<std::size_t> Starts(const std::string& s, bool acrossZeros) const
    {
        std::vector<std::size_t> starts;
        for (std::size_t i = 0; i < s.size() && (acrossZeros || s[i] != '\0');) {
            starts.push_back(i);
            const bool pair = Lead(static_cast<unsigned char>(s[i])) && i + 1 < s.size() &&
                              Trail(static_cast<unsigned char>(s[i + 1]));
            i += pair ? 2 : 1;
        }
        return starts;
    }

    bool Valid(unsigned short v) const
    {
        return v < 0x100 ? !Lead(static_cast<unsigned char>(v)) : Lead(static_cast<unsigned char>(v >> 8));
    }
    bool Plain(unsigned short v) const
    {
        return !dbcs || !MayBeTrail(static_cast<unsigned char>(v < 0x100 ? v : v >> 8));
    }

    bool dbcs;
};

// The first (or last) character start whose value is v.
inline long Find(const std::vector<std::size_t>& starts, const Reference& ref, const std::string& s, unsigned short v,
                 bool last)
{
    long found = -1;
    const std::string terminated = s + std::string(1, '\0');
    for (std::size_t i : starts) {
        if (ref.Value(terminated, i) == v) {
            found = static_cast<long>(i);
            if (!last) {
                break;
            }
        }
    }
    return found;
}

} // namespace textref

#endif
