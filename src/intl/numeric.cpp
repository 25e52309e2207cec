// YXIntl: numbers to text and text to numbers under the regional settings.
//
// Text is first reduced to a canonical form (digits, signs, exponent letters and "." as the only
// decimal mark) and then read by the runtime's conversions; a number is printed canonically and
// then rewritten with the locale's separators.
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <system_error>

#include "yxtools/intl.h"

namespace {

constexpr short kDefaultDigits = -1000;
constexpr double kLargestPrintable = 9.999e98;

char FirstByte(const _SS<char>& text)
{
    return text.empty() ? '\0' : text[0];
}

// The runtime's atoi as Windows has it: blanks, a sign, decimal digits; a value beyond 32 bits
// stops at the nearest end of the range. The same answer on every build, whatever its long is.
// A "0x" form is not read: no cleaned text can hold the "x" (the cleaning stops at it), so such a
// form could never be reached.
std::int32_t ParseLong(const _SS<char>& clean)
{
    const char* p = clean.c_str();
    while (std::isspace(static_cast<unsigned char>(*p)) != 0) {
        ++p;
    }
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') {
        ++p;
    }
    std::int64_t magnitude = 0;
    const std::int64_t limit = negative ? std::int64_t{1} << 31 : (std::int64_t{1} << 31) - 1;
    for (; *p >= '0' && *p <= '9'; ++p) {
        magnitude = magnitude * 10 + (*p - '0');
        if (magnitude > limit) {
            magnitude = limit;
            for (; *p >= '0' && *p <= '9'; ++p) {
            }
            break;
        }
    }
    return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
}

// The runtime's atof of a cleaned text, read by std::from_chars, which gives the same correctly
// rounded value at a third of the cost: atof's one "+" is taken here, and a value beyond the
// range of a double goes to strtod for atof's answer (infinity, or the nearest tiny value).
double ParseDouble(const _SS<char>& clean)
{
    const char* p = clean.c_str();
    if (*p == '+') {
        if (p[1] == '+' || p[1] == '-') {
            return 0.0; // atof reads no number after two signs
        }
        ++p;
    }
    double value = 0.0;
    const std::from_chars_result read = std::from_chars(p, clean.c_str() + clean.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        return std::strtod(clean.c_str(), nullptr);
    }
    return read.ec == std::errc() ? value : 0.0;
}

// The head of a printed number: its "-", and its leading "0" when lzero asks for it; the offset of
// what follows in t.
std::size_t SignAndLeadingZero(const _SS<char>& t, long lzero, _SS<char>& text)
{
    std::size_t i = 0;
    if (!t.empty() && t[0] == '-') {
        text += '-';
        i = 1;
    }
    if (i < t.size() && t[i] == '0') {
        if (lzero != 0) {
            text += '0';
        }
        ++i;
    }
    return i;
}

// 32-bit arithmetic that wraps as the processor's does, without undefined behaviour.
std::int32_t Wrap(std::int64_t value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

// A double truncated toward zero into a long; out of range (NaN included) gives the long's
// lowest value, as the x86 conversion does.
template <class Int>
Int Truncate(double value)
{
    const double lowest = static_cast<double>(std::numeric_limits<Int>::min());
    if (!(value >= lowest && value < -lowest)) {
        return std::numeric_limits<Int>::min();
    }
    return static_cast<Int>(value);
}

} // namespace

bool YXIntl::IsRealDigit(char c) const
{
    // 0xA0 is refused first: some runtimes call it a digit or a blank in their single-byte tables.
    if (static_cast<unsigned char>(c) == 0xA0) {
        return false;
    }
    return std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '+' || c == '-' || c == 'e' || c == 'E' || c == '.';
}

bool YXIntl::CanSkipDigit(char c) const
{
    return c == FirstByte(m_sThousand) || std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool YXIntl::SameFirstCharacter(char c, const _SS<char>& text) const
{
    return c == FirstByte(text);
}

bool YXIntl::CleanNumericString(const _SS<char>& text, _SS<char>& clean, unsigned long* errorOffset) const
{
    clean.clear();
    if (errorOffset != nullptr) {
        *errorOffset = 0;
    }
    // The work string stays empty when the half-width conversion fails.
    _SS<char> work;
    MakeSingleByteString(text, work);
    InitInternationalValues();
    if (work.empty()) {
        return false;
    }
    clean.reserve(work.size());
    for (std::size_t i = 0; i < work.size(); ++i) {
        const char c = work[i];
        if (IsRealDigit(c)) {
            clean += c;
        } else if (SameFirstCharacter(c, m_sDecimal)) {
            clean += '.';
        } else if (!CanSkipDigit(c)) {
            // The offset counts in the half-width text.
            if (errorOffset != nullptr) {
                *errorOffset = static_cast<unsigned long>(i);
            }
            return false;
        }
    }
    return true;
}

long YXIntl::TextToLong(const _SS<char>& text, long scale, bool* ok, unsigned long* errorOffset) const
{
    _SS<char> clean;
    const bool cleaned = CleanNumericString(text, clean, errorOffset);
    std::int32_t value = 0;
    if (cleaned) {
        value = ParseLong(clean);
        if (scale > 0) {
            // Ten divisions bring any 32-bit value to 0: the rest would change nothing.
            for (long i = 0; i < scale && value != 0; ++i) {
                value /= 10;
            }
        } else if (scale < 0) {
            const std::uint64_t steps = 0 - static_cast<std::uint64_t>(scale);
            const std::size_t point = clean.find('.');
            if (point == _SS<char>::npos) {
                value = Truncate<std::int32_t>(static_cast<double>(value) * std::pow(10.0, static_cast<double>(steps)));
            } else {
                const bool negative = !clean.empty() && clean[0] == '-';
                std::size_t at = point + 1;
                std::uint64_t step = 0;
                for (; step < steps && at < clean.size(); ++step, ++at) {
                    const int digit = clean[at] - '0';
                    value = Wrap(static_cast<std::int64_t>(value) * 10 + (negative ? -digit : digit));
                }
                // Only multiplications remain; 32 of them make any 32-bit value 0.
                for (std::uint64_t rest = steps - step; rest > 0 && value != 0; --rest) {
                    value = Wrap(static_cast<std::int64_t>(value) * 10);
                }
            }
        }
    }
    if (ok != nullptr) {
        *ok = cleaned;
    }
    return value;
}

double YXIntl::TextToNumeric(const _SS<char>& text, bool* ok, unsigned long* errorOffset) const
{
    double value = 0.0;
    _SS<char> clean;
    const bool cleaned = CleanNumericString(text, clean, errorOffset);
    if (cleaned) {
        // Only the last point is the decimal mark; the others were grouping.
        const std::size_t last = clean.rfind('.');
        if (last != _SS<char>::npos) {
            std::size_t kept = 0;
            for (std::size_t i = 0; i < clean.size(); ++i) {
                if (clean[i] != '.' || i == last) {
                    clean[kept++] = clean[i];
                }
            }
            clean.resize(kept);
        }
        value = ParseDouble(clean);
    }
    if (ok != nullptr) {
        *ok = cleaned;
    }
    return value;
}

void YXIntl::SeparatorPass(const _SS<char>& t, _SS<char>& text) const
{
    const char thousand = FirstByte(m_sThousand);
    const char decimal = FirstByte(m_sDecimal);
    std::size_t i = SignAndLeadingZero(t, m_iLzero, text);
    const std::size_t point = t.find('.');
    std::size_t n = (point == _SS<char>::npos ? t.size() : point) - i;
    bool decimalWritten = false;
    if (n == 0) {
        text += decimal;
        decimalWritten = true;
    }
    for (; i < t.size(); ++i) {
        if (t[i] == '.') {
            continue;
        }
        text += t[i];
        if (n > 0) {
            --n;
        }
        if (i + 1 < t.size() && n % 3 == 0 && !decimalWritten) {
            if (n > 0) {
                if (thousand != '\0') {
                    text += thousand;
                }
            } else if (decimal != '\0') {
                text += decimal;
                decimalWritten = true;
            }
        }
    }
}

void YXIntl::NumericToText(double value, _SS<char>& text, short precision) const
{
    if (std::fabs(value) > kLargestPrintable) {
        text.clear();
        return;
    }
    InitInternationalValues();
    int decimals = 0;
    if (precision >= 0) {
        decimals = precision;
    } else if (precision == kDefaultDigits) {
        decimals = static_cast<short>(m_iDigits);
    } else {
        decimals = -static_cast<int>(precision);
    }
    // A negative count from m_iDigits prints as printf takes it: as if none were given. NaN passes
    // the range test and prints as the runtime prints it ("nan", "-nan(ind)"), with the separator
    // pass over those letters.
    _SS<char> t;
    t.Format("%.*lf", decimals, value);
    text.clear();
    SeparatorPass(t, text);
    if (precision >= 0) {
        RemoveTrailingZeros(text, FirstByte(m_sDecimal));
    }
}

void YXIntl::NumericToText(double value, _SS<char>& text, const _SS<char>& decimalSep, short precision) const
{
    // decimalSep may be m_sDecimal itself: the copy is taken before the member changes.
    const _SS<char> saved = m_sDecimal;
    m_sDecimal = decimalSep;
    NumericToText(value, text, precision);
    m_sDecimal = saved;
}

void YXIntl::NumericToText(long value, double factor, _SS<char>& text, short precision) const
{
    InitInternationalValues();
    const double scaled = static_cast<double>(value) * factor;
    const long whole = Truncate<long>(scaled);
    _SS<char> t;
    if (factor < 1.0) {
        const long fraction =
            Truncate<long>(std::fabs(static_cast<double>(value) - static_cast<double>(whole) / factor));
        // The fraction is padded to the factor's own decimals, so that 1005 units of 0.001 read
        // 1.005 and not 1.5; and a negative value keeps its sign when its whole part is 0 (-5
        // units read -0.005). A factor that is not a power of ten takes the decimals of the
        // nearest one, at least one and at most nine.
        const long places = std::lround(-std::log10(factor));
        const int width = static_cast<int>(places < 1 ? 1 : (places > 9 ? 9 : places));
        t.Format("%s%ld.%0*ld", (whole == 0 && value < 0) ? "-" : "", whole, width, fraction);
    } else {
        t.Format("%ld.0", whole);
    }
    text.clear();
    SeparatorPass(t, text);
    if (precision >= 0) {
        RemoveTrailingZeros(text, FirstByte(m_sDecimal));
    }
}

void YXIntl::LongToText(long value, _SS<char>& text) const
{
    InitInternationalValues();
    text.clear();
    _SS<char> t;
    t.Format("%ld", value);
    const char thousand = FirstByte(m_sThousand);
    std::size_t i = SignAndLeadingZero(t, m_iLzero, text);
    std::size_t n = t.size() - i;
    for (; i < t.size(); ++i) {
        text += t[i];
        --n;
        if (i + 1 < t.size() && n % 3 == 0 && n != 0 && thousand != '\0') {
            text += thousand;
        }
    }
}

void YXIntl::RemoveTrailingZeros(_SS<char>& text, char decimalSep)
{
    if (text.empty() || text.find(decimalSep) == _SS<char>::npos) {
        return;
    }
    std::size_t length = text.size();
    while (length > 1 && text[length - 1] == '0') {
        --length;
    }
    if (text[length - 1] == decimalSep) {
        --length;
    }
    text.resize(length);
}
