// YXIntl's conversions over arbitrary bytes, under three settings (point and comma; comma and
// point; comma and the no-break space 0xA0) and, on POSIX, under code page 932 as well.
//
// Text to number is checked against a model of the cleaning: the answer, ok and the error offset
// exactly, in single-byte code pages; under 932 the offset stays inside the text. Number to text
// is read back and must give the value within the printed precision.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <yxtools/intl.h>

#include "fuzz_support.h"

namespace {

class FuzzIntl : public YXIntl {
public:
    void Set(const char* decimal, const char* thousand)
    {
        m_sDecimal = decimal;
        m_sThousand = thousand;
        m_iLzero = 1;
        m_iDigits = 2;
    }
};

struct Settings {
    const char* decimal;
    const char* thousand;
};
const Settings kSettings[] = {{".", ","}, {",", "."}, {",", "\xA0"}};

// The cleaning as a model: canonical text, or the offset of the first bad byte.
bool ModelClean(const std::string& text, const Settings& s, std::string& clean, unsigned long& offset)
{
    clean.clear();
    offset = 0;
    if (text.c_str()[0] == '\0') {
        return false;
    }
    const std::string whole = text.c_str(); // the text ends at its first NUL
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const auto c = static_cast<unsigned char>(whole[i]);
        if (c != 0xA0 && (std::strchr("+-eE.", c) != nullptr || (c >= '0' && c <= '9'))) {
            clean += static_cast<char>(c);
        } else if (c == static_cast<unsigned char>(s.decimal[0])) {
            clean += '.';
        } else if (c != static_cast<unsigned char>(s.thousand[0]) && std::strchr(" \t\n\v\f\r", c) == nullptr) {
            offset = static_cast<unsigned long>(i);
            return false;
        }
    }
    return true;
}

// atoi as the library reads it: saturating at the ends of the 32-bit range.
std::int64_t ModelAtoi(const std::string& clean)
{
    std::size_t i = 0;
    const bool negative = i < clean.size() && clean[i] == '-';
    if (i < clean.size() && (clean[i] == '-' || clean[i] == '+')) {
        ++i;
    }
    std::int64_t value = 0;
    for (; i < clean.size() && clean[i] >= '0' && clean[i] <= '9'; ++i) {
        value = value * 10 + (clean[i] - '0');
        if (value > (std::int64_t{1} << 31)) {
            value = std::int64_t{1} << 31;
        }
    }
    value = negative ? -value : value;
    return value > 2147483647 ? 2147483647 : value;
}

double ModelNumeric(std::string clean)
{
    const std::size_t last = clean.rfind('.');
    std::string kept;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        if (clean[i] != '.' || i == last) {
            kept += clean[i];
        }
    }
    return std::atof(kept.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzIntl intl;
    FuzzInput in(data, size);
    const std::uint8_t head = in.Byte();
    const Settings& settings = kSettings[head % 3];
    intl.Set(settings.decimal, settings.thousand);
    bool doubleByte = false;
#if !defined(_WIN32)
    doubleByte = (head & 0x80) != 0;
    setenv("LC_ALL", doubleByte ? "ja_JP.UTF-8" : "en_US.UTF-8", 1);
#endif
    // 0xA0 is no character of its own in code page 932: there it does not come back as a separator.
    const bool readsBack = !(doubleByte && settings.thousand[0] == '\xA0');
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        if (op % 3 == 0) {
            const std::string text = in.Bytes();
            const long scale = static_cast<long>(static_cast<std::int8_t>(in.Byte()));
            bool ok = false;
            unsigned long offset = 12345;
            const long value = intl.TextToLong(text, scale, &ok, &offset);
            bool okNumeric = false;
            unsigned long offsetNumeric = 12345;
            const double number = intl.TextToNumeric(text, &okNumeric, &offsetNumeric);
            FUZZ_CHECK(ok == okNumeric && offset == offsetNumeric);
            FUZZ_CHECK(ok ? offset == 0 : (value == 0 && number == 0.0));
            FUZZ_CHECK(offset <= std::strlen(text.c_str()));
            FUZZ_CHECK(value >= -2147483647L - 1 && value <= 2147483647L);
            if (!doubleByte) {
                std::string clean;
                unsigned long modelOffset = 0;
                const bool modelOk = ModelClean(text, settings, clean, modelOffset);
                FUZZ_CHECK(ok == modelOk && offset == modelOffset);
                if (ok) {
                    const double expected = ModelNumeric(clean);
                    FUZZ_CHECK(number == expected || (std::isnan(number) && std::isnan(expected)));
                    if (scale == 0) {
                        FUZZ_CHECK(value == ModelAtoi(clean));
                    }
                }
            }
        } else if (op % 3 == 1) {
            std::uint64_t bits = in.U32();
            bits |= static_cast<std::uint64_t>(in.U32()) << 32;
            double value = 0.0;
            std::memcpy(&value, &bits, sizeof(value));
            const int digits = in.Below(8);
            const short precision = (in.Byte() & 1) != 0 ? static_cast<short>(-digits) : static_cast<short>(digits);
            _SS<char> text("stale");
            intl.NumericToText(value, text, precision);
            if (std::isnan(value) || !readsBack) {
                continue;
            }
            if (std::fabs(value) > 9.999e98) {
                FUZZ_CHECK(text.empty());
                continue;
            }
            bool ok = false;
            const double back = intl.TextToNumeric(text, &ok, nullptr);
            FUZZ_CHECK(ok);
            // Where "." groups, a whole number's last grouping point reads as the decimal mark.
            const bool ambiguous = settings.thousand[0] == '.' && text.find(',') == _SS<char>::npos;
            if (!ambiguous) {
                FUZZ_CHECK(std::fabs(back - value) <= 0.5 * std::pow(10.0, -digits) + std::fabs(value) * 1e-15);
            }
        } else {
            const auto value = static_cast<long>(static_cast<std::int32_t>(in.U32()));
            _SS<char> text;
            intl.LongToText(value, text);
            if (!readsBack) {
                continue;
            }
            bool ok = false;
            FUZZ_CHECK(intl.TextToNumeric(settings.thousand[0] == '.' ? text + "," : text, &ok, nullptr) ==
                       static_cast<double>(value));
            FUZZ_CHECK(ok);
        }
    }
    return 0;
}
