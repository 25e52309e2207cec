// Generated texts against a plain reference walk: every answer of the walks and searches equals
// the reference's, and no answer points inside a double-byte character. The reference knows the
// lead bytes of the code page on its own (code page 932: 0x81..0x9F and 0xE0..0xFC) and reads
// byte by byte. Counted searches get a buffer of exactly count bytes, so a read past the count is
// caught under AddressSanitizer.
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "text_fixture.h"
#include "text_reference.h"

// The test runs in the program of each code page: the suite's name carries the code page, so that
// the names of the test cases stay apart.
#define TEXT_CAT2(a, b) a##b
#define TEXT_CAT(a, b) TEXT_CAT2(a, b)
#define TextRandom TEXT_CAT(TextRandom, YXTOOLS_TEXT_CODE_PAGE)

namespace {

using textref::Reference;

const unsigned char kPool[] = {0x81, 0x82, 0x83, 0x9F, 0xE0, 0xFC, 0x40, 0x41, 0x5C, 0x7E, 0x80, 0xA0,
                               0xFD, 0xFE, 0x30, 0x31, 0x3F, 0x7F, 0x2F, 0x61, 0xFF, 0x95, 0x60, 0xB1};

std::string Generate(std::mt19937& rng, std::size_t length, bool zeros)
{
    std::string s;
    std::uniform_int_distribution<std::size_t> pick(0, sizeof kPool - 1);
    std::uniform_int_distribution<int> zero(0, 15);
    for (std::size_t i = 0; i < length; ++i) {
        s.push_back(zeros && zero(rng) == 0 ? '\0' : static_cast<char>(kPool[pick(rng)]));
    }
    return s;
}

class TextRandom : public ::testing::Test {
protected:
    void SetUp() override { String_InitTables(); }
};

TEST_F(TextRandom, SearchesAgreeWithTheReferenceWalk)
{
    const Reference ref(GetACP());
    std::mt19937 rng(20261124);
    for (int round = 0; round < 3000; ++round) {
        const std::string text = Generate(rng, 1 + rng() % 24, false);
        const char* t = text.c_str();
        const std::vector<std::size_t> starts = ref.Starts(text, false);
        ASSERT_EQ(String_NbChar(t), static_cast<long>(starts.size())) << round;
        for (std::size_t k = 0; k < starts.size(); ++k) {
            const std::size_t next = k + 1 < starts.size() ? starts[k + 1] : text.size();
            ASSERT_EQ(String_CharNext(t + starts[k]), t + next) << round;
        }
        // Values to look for: those of the text's characters, and a few others.
        std::vector<unsigned short> values;
        for (std::size_t i : starts) {
            values.push_back(ref.Value(text, i));
        }
        values.push_back(static_cast<unsigned short>(rng() & 0xFF));
        values.push_back(static_cast<unsigned short>(0x8100 | (rng() & 0xFF)));
        for (unsigned short v : values) {
            long first = -1;
            long lastFound = -1;
            if (ref.Plain(v)) {
                const char* f = std::strchr(t, static_cast<char>(v & 0xFF));
                first = f == nullptr ? -1 : f - t;
                const char* l = std::strrchr(t, static_cast<char>(v & 0xFF));
                lastFound = l == nullptr ? -1 : l - t;
            } else if (ref.Valid(v)) {
                first = textref::Find(starts, ref, text, v, false);
                lastFound = textref::Find(starts, ref, text, v, true);
            }
            ASSERT_EQ(At(t, String_StrChr(t, v)), first) << round << " " << std::hex << v;
            ASSERT_EQ(At(t, String_StrRChr(t, v)), lastFound) << round << " " << std::hex << v;
        }
        // Patterns: runs of the text's own characters.
        const std::size_t from = rng() % starts.size();
        const std::size_t to = std::min(starts.size(), from + 1 + rng() % 3);
        const std::size_t end = to < starts.size() ? starts[to] : text.size();
        const std::string pattern = text.substr(starts[from], end - starts[from]);
        const std::vector<std::size_t> pstarts = ref.Starts(pattern, false);
        bool needed = ref.dbcs;
        for (std::size_t i : pstarts) {
            needed = needed && Reference::MayBeTrail(static_cast<unsigned char>(pattern[i]));
        }
        long expected = -1;
        if (!needed) {
            const std::size_t f = text.find(pattern);
            expected = f == std::string::npos ? -1 : static_cast<long>(f);
        } else {
            for (std::size_t k = 0; k < starts.size() && expected < 0; ++k) {
                std::size_t j = 0;
                while (j < pstarts.size() && k + j < starts.size() &&
                       ref.Value(text, starts[k + j]) == ref.Value(pattern, pstarts[j])) {
                    ++j;
                }
                expected = j == pstarts.size() ? static_cast<long>(starts[k]) : -1;
            }
        }
        ASSERT_EQ(At(t, String_StrStr(t, pattern.c_str())), expected) << round;
        // StringCopy: the longest run of whole characters that fits.
        const long capacity = 1 + static_cast<long>(rng() % (text.size() + 2));
        std::vector<char> dst(static_cast<std::size_t>(capacity), '#');
        StringCopy(dst.data(), t, capacity);
        std::size_t fits = 0;
        for (std::size_t k = 0; k < starts.size(); ++k) {
            const std::size_t next = k + 1 < starts.size() ? starts[k + 1] : text.size();
            if (static_cast<long>(next) <= capacity - 1) {
                fits = next;
            }
        }
        if (static_cast<long>(text.size()) < capacity) {
            fits = text.size();
        }
        ASSERT_EQ(std::string(dst.data()), text.substr(0, fits)) << round << " capacity " << capacity;
    }
}

TEST_F(TextRandom, CountedSearchesReadNothingPastTheCount)
{
    const Reference ref(GetACP());
    std::mt19937 rng(7);
    for (int round = 0; round < 3000; ++round) {
        const std::string bytes = Generate(rng, 1 + rng() % 24, true);
        const long count = static_cast<long>(bytes.size());
        std::vector<char> exact(bytes.begin(), bytes.end()); // exactly count bytes
        const std::vector<std::size_t> starts = ref.Starts(bytes, true);
        std::vector<unsigned short> values = {0x5C, 0x41, 0x8140, 0x8341, 0x2F, 0x81, 0xFC40};
        for (std::size_t i : starts) {
            if (i + 1 < bytes.size()) {
                values.push_back(ref.Value(bytes, i));
            }
        }
        for (unsigned short v : values) {
            long expected = -1;
            if (ref.Plain(v)) {
                const void* f = std::memchr(bytes.data(), v & 0xFF, bytes.size());
                expected = f == nullptr ? -1 : static_cast<long>(static_cast<const char*>(f) - bytes.data());
            } else if (ref.Valid(v)) {
                const long last = count - (v >= 0x100 ? 2 : 1);
                for (std::size_t i : starts) {
                    if (static_cast<long>(i) > last) {
                        break;
                    }
                    const auto b = static_cast<unsigned char>(bytes[i]);
                    const unsigned short value = ref.Lead(b) && v >= 0x100 ? ref.Value(bytes, i)
                                                 : ref.Lead(b)             ? 0xFFFF
                                                                           : b;
                    if (value == v) {
                        expected = static_cast<long>(i);
                        break;
                    }
                }
            }
            const char* found = String_StrChr(exact.data(), v, count);
            ASSERT_EQ(At(exact.data(), found), expected) << round << " " << std::hex << v;
        }
    }
}

TEST_F(TextRandom, BackwardWalkRetracesWellFormedText)
{
    // Well formed: every lead byte with a trail byte of the narrow range, and nothing else in the
    // lead range. There the backward walk meets every boundary of the forward walk.
    const Reference ref(GetACP());
    std::mt19937 rng(99);
    const unsigned char singles[] = {0x41, 0x5C, 0x7E, 0xA0, 0xB1, 0xDF, 0x2F, 0x40, 0xFD};
    const unsigned char trails[] = {0x40, 0x41, 0x5C, 0x7E, 0x80, 0x81, 0x9F, 0xE0, 0xFC, 0xA0};
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (int n = 1 + static_cast<int>(rng() % 16); n > 0; --n) {
            if (ref.dbcs && rng() % 2 == 0) {
                text.push_back(static_cast<char>(0x81 + rng() % 0x1F));
                text.push_back(static_cast<char>(trails[rng() % sizeof trails]));
            } else {
                text.push_back(static_cast<char>(singles[rng() % sizeof singles]));
            }
        }
        const std::vector<std::size_t> starts = ref.Starts(text, false);
        const char* t = text.c_str();
        const char* p = t + text.size();
        for (std::size_t k = starts.size(); k-- > 0;) {
            p = String_CharPrev(t, p);
            ASSERT_EQ(p - t, static_cast<long>(starts[k])) << round;
        }
        ASSERT_EQ(String_CharPrev(t, p), t);
    }
}

} // namespace
