// The multibyte walks, counts and searches over arbitrary bytes under code pages 1252 and 932,
// each answer compared with a plain character-by-character reference. Every call gets a buffer of
// exactly the bytes it may read, so that a read past the terminator or the count is caught.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "platform/win32.h"
#include "text/text_internal.h"
#include "text/text_reference.h"

namespace {

// The tables of each code page, built once and swapped in for each input.
struct Built {
    bool done = false;
    yx::text::Tables tables{};
};
Built g_built[2];

unsigned SelectCodePage(bool japanese)
{
#if !defined(_WIN32)
    // The ANSI code page follows LC_ALL at each call; under Wine the one of the start holds.
    setenv("LC_ALL", japanese ? "ja_JP.UTF-8" : "en_US.UTF-8", 1);
#endif
    const unsigned codePage = GetACP();
    Built& built = g_built[codePage == 932 ? 1 : 0];
    if (!built.done) {
        String_InitTables();
        built.tables = yx::text::g_tables;
        built.done = true;
    }
    yx::text::g_tables = built.tables;
    return codePage;
}

long At(const char* base, const char* p)
{
    return p == nullptr ? -1 : static_cast<long>(p - base);
}

void CheckText(const textref::Reference& ref, const std::string& text, FuzzInput& in)
{
    // The text with its terminator, in a buffer of exactly that size.
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    const char* t = buffer.data();
    const std::vector<std::size_t> starts = ref.Starts(text, false);
    FUZZ_CHECK(String_NbChar(t) == static_cast<long>(starts.size()));
    for (std::size_t k = 0; k < starts.size(); ++k) {
        const std::size_t next = k + 1 < starts.size() ? starts[k + 1] : text.size();
        FUZZ_CHECK(String_CharNext(t + starts[k]) == t + next);
        FUZZ_CHECK(String_NbChar2NbBytes(t, static_cast<long>(k + 1)) ==
                   (ref.dbcs ? static_cast<long>(next) : static_cast<long>(k + 1)));
    }
    // The backward walk stays within the text and steps one or two bytes.
    for (std::size_t i = 1; i <= text.size(); ++i) {
        const char* prev = String_CharPrev(t, t + i);
        FUZZ_CHECK(prev >= t && prev < t + i && prev >= t + i - 2);
    }
    while (!in.Done()) {
        const unsigned short v = in.U16();
        long first = -1;
        long last = -1;
        if (ref.Plain(v)) {
            const char* f = std::strchr(t, static_cast<char>(v & 0xFF));
            const char* l = std::strrchr(t, static_cast<char>(v & 0xFF));
            first = At(t, f);
            last = At(t, l);
        } else if (ref.Valid(v)) {
            first = textref::Find(starts, ref, text, v, false);
            last = textref::Find(starts, ref, text, v, true);
        }
        FUZZ_CHECK(At(t, String_StrChr(t, v)) == first);
        FUZZ_CHECK(At(t, String_StrRChr(t, v)) == last);

        // The counted search over a prefix of the bytes that may hold terminators, in a buffer of
        // exactly count bytes.
        const std::size_t count = 1 + in.Below(static_cast<unsigned>(text.size() + 1));
        const std::string bytes = (text + std::string(1, '\0')).substr(0, count);
        std::vector<char> exact(bytes.begin(), bytes.end());
        long counted = -1;
        if (ref.Plain(v)) {
            const void* f = std::memchr(bytes.data(), v & 0xFF, bytes.size());
            counted = f == nullptr ? -1 : static_cast<long>(static_cast<const char*>(f) - bytes.data());
        } else if (ref.Valid(v)) {
            const long lastOffset = static_cast<long>(count) - (v >= 0x100 ? 2 : 1);
            for (std::size_t i : ref.Starts(bytes, true)) {
                if (static_cast<long>(i) > lastOffset) {
                    break;
                }
                const auto b = static_cast<unsigned char>(bytes[i]);
                const unsigned short value = ref.Lead(b) ? (v >= 0x100 ? ref.Value(bytes, i) : 0xFFFF) : b;
                if (value == v) {
                    counted = static_cast<long>(i);
                    break;
                }
            }
        }
        FUZZ_CHECK(At(exact.data(), String_StrChr(exact.data(), v, static_cast<long>(count))) == counted);

        // Searches for a run of the text's own characters never land inside a character.
        if (!starts.empty()) {
            const std::size_t from = in.Below(static_cast<unsigned>(starts.size()));
            const std::size_t to = from + 1 + in.Below(3);
            const std::size_t end = to < starts.size() ? starts[to] : text.size();
            const std::string pattern = text.substr(starts[from], end - starts[from]);
            // A lone lead byte at the pattern's end reads the terminator as its second byte, where
            // in the text it read the byte behind it: such a pattern need not be found there.
            const bool loneLeadAtEnd = ref.Lead(static_cast<unsigned char>(pattern.back()));
            const long found = At(t, String_StrStr(t, pattern.c_str()));
            FUZZ_CHECK(loneLeadAtEnd || (found >= 0 && found <= static_cast<long>(starts[from])));
            if (found >= 0 && String_IsDBCSSearchNeeded(pattern.c_str())) {
                bool boundary = false;
                for (std::size_t i : starts) {
                    boundary = boundary || static_cast<long>(i) == found;
                }
                FUZZ_CHECK(boundary);
            }
            const long folded = At(t, String_Find(t, pattern.c_str()));
            FUZZ_CHECK(loneLeadAtEnd || (folded >= 0 && folded <= static_cast<long>(starts[from])));
        }

        // StringCopy keeps whole characters within its capacity.
        const long capacity = static_cast<long>(in.Below(static_cast<unsigned>(text.size() + 3)));
        std::vector<char> dst(capacity > 0 ? static_cast<std::size_t>(capacity) : text.size() + 1, '#');
        FUZZ_CHECK(StringCopy(dst.data(), t, capacity) == dst.data());
        const std::size_t copied = std::strlen(dst.data());
        FUZZ_CHECK(text.compare(0, copied, dst.data()) == 0);
        bool onBoundary = copied == text.size();
        for (std::size_t i : starts) {
            onBoundary = onBoundary || i == copied;
        }
        FUZZ_CHECK(onBoundary);
        FUZZ_CHECK(capacity == 0 || static_cast<long>(copied) <= capacity - 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    const unsigned codePage = SelectCodePage((in.Byte() & 1) != 0);
    const textref::Reference ref(codePage);
    std::string text = in.Bytes(64);
    text = text.substr(0, text.find('\0'));
    CheckText(ref, text, in);
    return 0;
}
