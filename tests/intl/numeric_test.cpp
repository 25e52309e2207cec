#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include <yxtools/yxtools.h>

#include "support/intl_profile.h"

namespace {

// Reaches the settings that the conversions read.
class Intl : public YXIntl {
public:
    using YXIntl::CleanNumericString;
    void SetLzero(long value) { m_iLzero = value; }
    void SetDigits(long value) { m_iDigits = value; }
};

struct Pair {
    const char* name;
    const char* decimal;
    const char* thousand;
};
const Pair kPairs[] = {{"point", ".", ","}, {"comma", ",", "."}};

// G and D in a table text stand for the pair's thousands and decimal separators.
std::string Localise(const std::string& text, const Pair& pair)
{
    std::string out;
    for (const char c : text) {
        out += c == 'G' ? std::string(pair.thousand) : c == 'D' ? std::string(pair.decimal) : std::string(1, c);
    }
    return out;
}

class Numeric : public ::testing::TestWithParam<Pair> {
protected:
    Numeric() : m_profile({{"sDecimal", GetParam().decimal}, {"sThousand", GetParam().thousand}}) {}
    std::string L(const std::string& text) const { return Localise(text, GetParam()); }
    intltest::Profile m_profile;
    Intl m_intl;
};

INSTANTIATE_TEST_SUITE_P(Pairs, Numeric, ::testing::ValuesIn(kPairs),
                         [](const ::testing::TestParamInfo<Pair>& param) { return std::string(param.param.name); });

TEST_P(Numeric, TextToNumeric)
{
    struct Case {
        const char* text;
        double value;
        bool ok;
        unsigned long offset;
    };
    const Case cases[] = {
        {"1G234D5", 1234.5, true, 0}, {" 12 ", 12.0, true, 0},
        {"1e3", 1000.0, true, 0},     {"1G234G567D5", 1234567.5, true, 0},
        {"12a", 0.0, false, 2},       {"", 0.0, false, 0},
        {"GGG", 0.0, true, 0},        {"-", 0.0, true, 0},
        {"--5", 0.0, true, 0},        {"x", 0.0, false, 0},
        {"1 2\t3", 123.0, true, 0},   {"D5", 0.5, true, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(L(c.text));
        bool ok = !c.ok;
        unsigned long offset = 99;
        EXPECT_EQ(m_intl.TextToNumeric(L(c.text), &ok, &offset), c.value);
        EXPECT_EQ(ok, c.ok);
        EXPECT_EQ(offset, c.offset);
    }
    EXPECT_EQ(m_intl.TextToNumeric(L("7D25"), nullptr, nullptr), 7.25);
}

TEST_P(Numeric, TextToLong)
{
    struct Case {
        const char* text;
        long scale;
        long value;
        bool ok;
        unsigned long offset;
    };
    const Case cases[] = {
        {"12D5", 0, 12, true, 0},
        {"12D5", -1, 125, true, 0},
        {"12D5", -3, 12500, true, 0},
        {"12D5", 1, 1, true, 0},
        {"-12D5", -1, -125, true, 0},
        {"12", -2, 1200, true, 0},
        {"1234", 2, 12, true, 0},
        {"12D567", -1, 125, true, 0},
        {"12a", 0, 0, false, 2},
        {"abc", 0, 0, false, 0},
        {"", -2, 0, false, 0},
        {"--5", 0, 0, true, 0},
        {"0x10", 0, 0, false, 1},
        {"2147483647", 0, 2147483647, true, 0},
        // 32-bit arithmetic: atoi stops at the ends of the range, multiplications wrap.
        {"99999999999", 0, 2147483647, true, 0},
        {"-99999999999", 0, -2147483647 - 1, true, 0},
        {"2147483648", 0, 2147483647, true, 0},
        {"-2147483649", 0, -2147483647 - 1, true, 0},
        {"429496730D0", -1, 4, true, 0},
        {"1D5", -40, 0, true, 0},
        {"7", 12, 0, true, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(L(c.text) + " scale " + std::to_string(c.scale));
        bool ok = !c.ok;
        unsigned long offset = 99;
        EXPECT_EQ(m_intl.TextToLong(L(c.text), c.scale, &ok, &offset), c.value);
        EXPECT_EQ(ok, c.ok);
        EXPECT_EQ(offset, c.offset);
    }
    // Only TextToNumeric drops grouping points: atoi stops at the first.
    EXPECT_EQ(m_intl.TextToLong(L("1G234"), 0, nullptr, nullptr), GetParam().thousand[0] == '.' ? 1 : 1234);
}

TEST_P(Numeric, NumericToText)
{
    struct Case {
        double value;
        short precision;
        long lzero;
        const char* text;
    };
    const Case cases[] = {
        {1234567.891, 2, 1, "1G234G567D89"},
        {1234567.891, -1000, 1, "1G234G567D89"},
        {1234.5, 3, 1, "1G234D5"},
        {1234.5, -3, 1, "1G234D500"},
        {-1234.5, -2, 1, "-1G234D50"},
        {0.5, 2, 1, "0D5"},
        {0.5, 2, 0, "D5"},
        {0.0, 2, 1, "0"},
        {0.0, 2, 0, ""},
        {1234.0, 0, 1, "1G234"},
        {1e99, 2, 1, ""},
        {-1e99, 2, 1, ""},
        {123.0, -1, 1, "123D0"},
        {-0.25, -2, 1, "-0D25"},
        {100.0, 2, 1, "100"},
        {999999.999, -2, 1, "1G000G000D00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " precision " + std::to_string(c.precision));
        m_intl.SetLzero(c.lzero);
        _SS<char> text("stale");
        m_intl.NumericToText(c.value, text, c.precision);
        EXPECT_EQ(text, L(c.text));
    }
    // -1000 takes m_iDigits: with none, the separator stands last.
    m_intl.SetLzero(1);
    m_intl.SetDigits(0);
    _SS<char> text;
    m_intl.NumericToText(0.0, text, -1000);
    EXPECT_EQ(text, L("0D"));
}

TEST_P(Numeric, OwnSeparatorIsRestored)
{
    _SS<char> text;
    m_intl.NumericToText(1234.5, text, _SS<char>(";"), 2);
    EXPECT_EQ(text, L("1G234;5"));
    EXPECT_EQ(m_intl.GetDecimalSep(), GetParam().decimal);
    // The separator may be the member itself.
    m_intl.NumericToText(2.5, text, m_intl.GetDecimalSep(), 2);
    EXPECT_EQ(text, L("2D5"));
    EXPECT_EQ(m_intl.GetDecimalSep(), GetParam().decimal);
}

TEST_P(Numeric, LongWithFactor)
{
    struct Case {
        long value;
        double factor;
        short precision;
        const char* text;
    };
    const Case cases[] = {
        {12345, 0.001, 2, "12D345"},
        {12300, 0.001, 2, "12D3"},
        {12300, 0.001, -1, "12D300"},
        {1234567, 1.0, 0, "1G234G567"},
        {1234567, 1.0, -1, "1G234G567D0"},
        {-12345, 0.01, -1, "-123D45"},
        // The fraction is padded to the factor's decimals, and a value below one unit keeps its sign.
        {1005, 0.001, 2, "1D005"},
        {-5, 0.001, -1, "-0D005"},
        {7, 0.1, 2, "0D7"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " x " + std::to_string(c.factor));
        _SS<char> text("stale");
        m_intl.NumericToText(c.value, c.factor, text, c.precision);
        EXPECT_EQ(text, L(c.text));
    }
}

TEST_P(Numeric, LongToText)
{
    const std::pair<long, const char*> cases[] = {
        {1000, "1G000"}, {999, "999"}, {-1234567, "-1G234G567"}, {0, "0"}, {-2147483647 - 1, "-2G147G483G648"}};
    for (const auto& [value, expected] : cases) {
        _SS<char> text("stale");
        m_intl.LongToText(value, text);
        EXPECT_EQ(text, L(expected));
    }
    m_intl.SetLzero(0);
    _SS<char> text("stale");
    m_intl.LongToText(0, text);
    EXPECT_EQ(text, "");
}

// NumericToText then TextToNumeric gives the value back within the printed precision. Where "."
// groups, a whole number's last grouping point reads as the decimal mark (1.234 is 1.234), so
// there the text keeps at least one decimal.
TEST_P(Numeric, RandomRoundTrip)
{
    const bool pointGroups = GetParam().thousand[0] == '.';
    std::mt19937_64 random(1234);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-6, 14);
    std::uniform_int_distribution<int> precision(pointGroups ? 1 : 0, 6);
    for (int i = 0; i < 100000; ++i) {
        const double value = mantissa(random) * std::pow(10.0, exponent(random));
        const auto digits = static_cast<short>(precision(random));
        _SS<char> text;
        const bool keepZeros = pointGroups || i % 2 == 0;
        m_intl.NumericToText(value, text, keepZeros ? static_cast<short>(-digits) : digits);
        bool ok = false;
        const double back = m_intl.TextToNumeric(text, &ok, nullptr);
        const double allowed = 0.5 * std::pow(10.0, -digits) + std::fabs(value) * 1e-15;
        if (!(std::fabs(back - value) <= allowed) || (!ok && !text.empty())) {
            FAIL() << value << " precision " << digits << " printed " << text << " read " << back;
        }
    }
}

TEST(NumericText, RemoveTrailingZeros)
{
    const std::pair<const char*, const char*> cases[] = {{"100", "100"}, {"1.500", "1.5"}, {"10.00", "10"}, {".00", ""},
                                                         {"", ""},       {"0.0", "0"},     {"00", "00"}};
    for (const auto& [before, after] : cases) {
        _SS<char> text(before);
        YXIntl::RemoveTrailingZeros(text, '.');
        EXPECT_EQ(text, after) << before;
    }
    // The first byte stays through the zeros, even when the separator is itself a zero.
    _SS<char> zeros("000");
    YXIntl::RemoveTrailingZeros(zeros, '0');
    EXPECT_EQ(zeros, "");
    _SS<char> hundred("100");
    YXIntl::RemoveTrailingZeros(hundred, '0');
    EXPECT_EQ(hundred, "1");
}

// A no-break space (0xA0) is never a digit: it is dropped where it groups, and stops the text
// elsewhere.
TEST(NumericText, NoBreakSpace)
{
    intltest::Profile profile({{"sThousand", "\xA0"}, {"sDecimal", ","}});
    Intl intl;
    EXPECT_EQ(intl.TextToNumeric("1\xA0"
                                 "234,5",
                                 nullptr, nullptr),
              1234.5);
    _SS<char> text;
    intl.NumericToText(1234567.5, text, 1);
    EXPECT_EQ(text, "1\xA0"
                    "234\xA0"
                    "567,5");
    profile.Set({});
    YXIntl plain;
    bool ok = true;
    unsigned long offset = 0;
    EXPECT_EQ(plain.TextToNumeric("1\xA0"
                                  "234",
                                  &ok, &offset),
              0.0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(offset, 1u);
}

// A separator of several bytes counts by its first; an empty one is never written.
TEST(NumericText, SeparatorBytes)
{
    intltest::Profile profile({{"sThousand", "'x"}, {"sDecimal", "::"}});
    Intl intl;
    _SS<char> text;
    intl.NumericToText(-1234567.25, text, 2);
    EXPECT_EQ(text, "-1'234'567:25");
    EXPECT_EQ(intl.TextToNumeric("1'234:5", nullptr, nullptr), 1234.5);
    profile.Set({{"sThousand", ""}});
    Intl bare;
    bare.LongToText(1234567, text);
    EXPECT_EQ(text, "1234567");
}

TEST(NumericText, LongTextIsCleanedWhole)
{
    intltest::Profile profile;
    Intl intl;
    const std::string digits(1000, '7');
    bool ok = false;
    EXPECT_EQ(intl.TextToLong(digits, 0, &ok, nullptr), 2147483647);
    EXPECT_TRUE(ok);
    EXPECT_GT(intl.TextToNumeric(digits, &ok, nullptr), 1e300);
    unsigned long offset = 0;
    EXPECT_EQ(intl.TextToNumeric(digits + "?", &ok, &offset), 0.0);
    EXPECT_EQ(offset, 1000u);
}

} // namespace
