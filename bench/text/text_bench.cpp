// The multibyte walk and the searches on 16 MiB of Shift-JIS (code page 932) and of Latin text
// (code page 1252), side by side with the runtime's memchr, strchr and strstr and with ICU's
// conversion of the same bytes to UTF-16. No searched value occurs as a character, so every search
// runs over the whole text.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <unicode/ucnv.h>

#include "platform/win32.h"
#include "text/text_internal.h"

namespace {

constexpr std::size_t kSize = 16u << 20;

// Japanese prose as bytes: hiragana, katakana, kanji and some ASCII, with no backslash as a
// character of its own (0x5C only as the trail byte of kanji and katakana such as 0x835C).
std::string MakeShiftJis()
{
    std::mt19937 rng(932);
    std::string s;
    s.reserve(kSize + 2);
    while (s.size() < kSize - 2) {
        const unsigned kind = rng() % 100;
        if (kind < 40) {
            const unsigned v = 0x829F + rng() % (0x82F0 - 0x829F); // hiragana, ending before 0x82F0
            s.push_back(static_cast<char>(v >> 8));
            s.push_back(static_cast<char>(v & 0xFF));
        } else if (kind < 55) {
            unsigned v = 0x8340 + rng() % (0x8396 - 0x8340);
            v = v == 0x837F ? 0x8380 : v;
            s.push_back(static_cast<char>(v >> 8));
            s.push_back(static_cast<char>(v & 0xFF));
        } else if (kind < 85) {
            const unsigned lead = 0x88 + rng() % (0xA0 - 0x88);
            unsigned trail = 0x40 + rng() % (0xFD - 0x40);
            trail = trail == 0x7F ? 0x80 : trail;
            s.push_back(static_cast<char>(lead));
            s.push_back(static_cast<char>(trail));
        } else {
            static const char ascii[] = "abcdefghijklmnopqrstuvwxyz ABC 0123456789.,\n";
            s.push_back(ascii[rng() % (sizeof ascii - 1)]);
        }
    }
    return s;
}

std::string MakeLatin()
{
    std::mt19937 rng(1252);
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ \xE9\xE8\xE0\xFC\xF6 .,;\n";
    std::string s(kSize, ' ');
    for (char& c : s) {
        c = letters[rng() % (sizeof letters - 1)];
    }
    return s;
}

struct Corpus {
    unsigned codePage;
    std::string text;
};

const Corpus& Use(unsigned codePage)
{
    static Corpus sjis{932, MakeShiftJis()};
    static Corpus latin{1252, MakeLatin()};
    static unsigned current = 0;
    if (current != codePage) {
        setenv("LC_ALL", codePage == 932 ? "ja_JP.UTF-8" : "en_US.UTF-8", 1);
        String_InitTables();
        current = codePage;
    }
    return codePage == 932 ? sjis : latin;
}

void Bytes(benchmark::State& state, const Corpus& corpus)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(corpus.text.size()));
}

void BM_NbChar(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        const long n = String_NbChar(c.text.c_str());
        benchmark::DoNotOptimize(n);
    }
    Bytes(state, c);
}

void BM_CharPrevFromEnd(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    const char* start = c.text.c_str();
    for (auto _ : state) {
        long steps = 0;
        for (const char* p = start + c.text.size(); p != start; p = String_CharPrev(start, p)) {
            ++steps;
        }
        benchmark::DoNotOptimize(steps);
    }
    Bytes(state, c);
}

// value 0: the plain path (0x2F cannot be a trail byte); value 1: character by character (0x5C).
unsigned short Value(const benchmark::State& state)
{
    return state.range(1) == 0 ? 0x2F : 0x5C;
}

void BM_StrChr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    const unsigned short v = Value(state);
    for (auto _ : state) {
        const char* const& r = String_StrChr(c.text.c_str(), v);
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_strchr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        const char* const& r = std::strchr(c.text.c_str(), 0x2F);
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_StrChrCounted(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    const unsigned short v = state.range(1) == 2 ? 0x82F0 : Value(state);
    const long count = static_cast<long>(c.text.size());
    for (auto _ : state) {
        const char* const& r = String_StrChr(c.text.c_str(), v, count);
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_memchr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        const void* const& r = std::memchr(c.text.data(), 0x2F, c.text.size());
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_StrRChr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    const unsigned short v = Value(state);
    for (auto _ : state) {
        const char* const& r = String_StrRChr(c.text.c_str(), v);
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_strrchr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        const char* const& r = std::strrchr(c.text.c_str(), 0x2F);
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

// pattern 0: plain ("/x/"); pattern 1: character by character ("\\ab").
const char* Pattern(const benchmark::State& state)
{
    return state.range(1) == 0 ? "/x/" : "\\ab";
}

void BM_StrStr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    const char* pattern = Pattern(state);
    for (auto _ : state) {
        const char* const& r = String_StrStr(c.text.c_str(), pattern);
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_strstr(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        const char* const& r = std::strstr(c.text.c_str(), "/x/");
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_Find(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        const char* const& r = String_Find(c.text.c_str(), "qqq#");
        benchmark::DoNotOptimize(r);
    }
    Bytes(state, c);
}

void BM_IcuToUtf16(benchmark::State& state)
{
    const Corpus& c = Use(static_cast<unsigned>(state.range(0)));
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(c.codePage == 932 ? "windows-932" : "windows-1252", &status);
    std::vector<UChar> out(c.text.size() + 1);
    for (auto _ : state) {
        status = U_ZERO_ERROR;
        const int32_t n = ucnv_toUChars(converter, out.data(), static_cast<int32_t>(out.size()), c.text.data(),
                                        static_cast<int32_t>(c.text.size()), &status);
        benchmark::DoNotOptimize(n);
    }
    ucnv_close(converter);
    Bytes(state, c);
}

BENCHMARK(BM_NbChar)->Args({932})->Args({1252});
BENCHMARK(BM_CharPrevFromEnd)->Args({932})->Args({1252});
BENCHMARK(BM_strchr)->Args({932})->Args({1252});
BENCHMARK(BM_StrChr)->Args({932, 0})->Args({932, 1})->Args({1252, 0})->Args({1252, 1});
BENCHMARK(BM_memchr)->Args({932})->Args({1252});
BENCHMARK(BM_StrChrCounted)->Args({932, 0})->Args({932, 1})->Args({932, 2})->Args({1252, 0})->Args({1252, 1});
BENCHMARK(BM_strrchr)->Args({932})->Args({1252});
BENCHMARK(BM_StrRChr)->Args({932, 0})->Args({932, 1})->Args({1252, 0});
BENCHMARK(BM_strstr)->Args({932})->Args({1252});
BENCHMARK(BM_StrStr)->Args({932, 0})->Args({932, 1})->Args({1252, 0});
BENCHMARK(BM_Find)->Args({932})->Args({1252});
BENCHMARK(BM_IcuToUtf16)->Args({932})->Args({1252});

} // namespace

BENCHMARK_MAIN();
