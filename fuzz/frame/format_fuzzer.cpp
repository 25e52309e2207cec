// _SS<char>::Format over formats and arguments decoded from the input, against the C runtime's
// formatter with no limit: texts up to 8704 characters come whole, longer ones are cut there with
// a NUL at index 8704 and length 8705. Arguments may be the string's own text (or a part of it).
#include <cstdio>
#include <string>
#include <vector>

#include <yxtools/ss.h>

#include "fuzz_support.h"

namespace {

constexpr std::size_t kWhole = 8704; // the longest text that comes whole

// Up to four arguments, each a text or a number; the format's conversions take them in order.
struct Arguments {
    unsigned numbers = 0; // bit i: argument i is a number
    const char* texts[4] = {};
    long values[4] = {};
};

// Calls f(format, arguments...) with each argument as its own type.
template <int I = 0, class F, class... A>
void Apply(F&& f, const char* format, const Arguments& args, A... taken)
{
    if constexpr (I == 4) {
        f(format, taken...);
    } else if (args.numbers & (1U << I)) {
        Apply<I + 1>(f, format, args, taken..., args.values[I]);
    } else {
        Apply<I + 1>(f, format, args, taken..., args.texts[I]);
    }
}

// The whole text, however long, from the C runtime.
std::string Expected(const std::string& format, const Arguments& args)
{
    std::string text;
    Apply(
        [&text](const char* f, auto... a) {
            const int n = std::snprintf(nullptr, 0, f, a...);
            FUZZ_CHECK(n >= 0);
            text.resize(static_cast<std::size_t>(n) + 1);
            std::snprintf(&text[0], text.size(), f, a...);
            text.resize(static_cast<std::size_t>(n));
        },
        format.c_str(), args);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    _SS<char> target(in.Bytes().c_str());
    // Arguments are long repetitions of short texts, so that every limit is reached.
    std::vector<std::string> own(4);
    Arguments args;
    std::string format;
    for (int i = 0; i < 4; ++i) {
        const std::uint8_t kind = in.Byte();
        // Literal text before the conversion, without '%'.
        for (char c : in.Bytes(16)) {
            format += c == '%' || c == '\0' ? '.' : c;
        }
        if (kind & 1) {
            args.numbers |= 1U << i;
            args.values[i] = static_cast<long>(static_cast<std::int32_t>(in.U32()));
            static const char* const kNumbers[] = {"%ld", "%lx", "%20ld", "%-12lu", "%08lX", "%+ld"};
            format += kNumbers[(kind >> 1) % 6];
            continue;
        }
        const std::string piece = in.Bytes(32);
        const unsigned repeat = 1U + in.Below(600);
        for (unsigned r = 0; r < repeat; ++r) {
            own[i] += piece;
        }
        own[i] = own[i].c_str(); // the text up to its first NUL
        args.texts[i] = own[i].c_str();
        // The string's own text, or its tail, as an argument.
        if ((kind & 0x1E) == 0x02) {
            const std::size_t from = target.empty() ? 0 : in.Below(256) % target.size();
            args.texts[i] = target.c_str() + from;
        }
        static const char* const kTexts[] = {"%s", "%300s", "%-700s", "%.100s", "%.2000s", "%%%s"};
        format += kTexts[(kind >> 5) % 6];
    }
    const std::string expected = Expected(format, args);
    Apply([&target](const char* f, auto... a) { target.Format(f, a...); }, format.c_str(), args);
    if (expected.size() <= kWhole) {
        FUZZ_CHECK(target == expected);
    } else {
        FUZZ_CHECK(target.size() == kWhole + 1 && target[kWhole] == '\0');
        FUZZ_CHECK(target.compare(0, kWhole, expected, 0, kWhole) == 0);
    }
    return 0;
}
