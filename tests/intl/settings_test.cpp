#include <gtest/gtest.h>

#include <map>
#include <string>

#include <yxtools/yxtools.h>

#include "support/intl_profile.h"

namespace {

// Every member by its key, as text.
class Intl : public YXIntl {
public:
    std::map<std::string, std::string> Members() const
    {
        const auto n = [](long v) { return std::to_string(v); };
        return {{"sLanguage", m_sLanguage},
                {"sCountry", m_sCountry},
                {"iCountry", n(m_iCountry)},
                {"iDate", n(m_iDate)},
                {"iTime", n(m_iTime)},
                {"iTLZero", n(m_iTLZero)},
                {"iCurrency", n(m_iCurrency)},
                {"iCurrDigits", n(m_iCurrDigits)},
                {"iNegCurr", n(m_iNegCurr)},
                {"iLzero", n(m_iLzero)},
                {"iDigits", n(m_iDigits)},
                {"iMeasure", n(m_iMeasure)},
                {"s1159", m_s1159},
                {"s2359", m_s2359},
                {"sCurrency", m_sCurrency},
                {"sThousand", m_sThousand},
                {"sDecimal", m_sDecimal},
                {"sDate", m_sDate},
                {"sTime", m_sTime},
                {"sList", m_sList},
                {"sShortDate", m_sShortDate},
                {"sLongDate", m_sLongDate}};
    }
    bool Initialized() const { return m_bInitialized; }
};

const std::map<std::string, std::string> kDefaults = {{"sLanguage", "enu"},     {"sCountry", "United States"},
                                                      {"iCountry", "1"},        {"iDate", "0"},
                                                      {"iTime", "0"},           {"iTLZero", "0"},
                                                      {"iCurrency", "0"},       {"iCurrDigits", "2"},
                                                      {"iNegCurr", "0"},        {"iLzero", "1"},
                                                      {"iDigits", "2"},         {"iMeasure", "1"},
                                                      {"s1159", "AM"},          {"s2359", "PM"},
                                                      {"sCurrency", "$"},       {"sThousand", ","},
                                                      {"sDecimal", "."},        {"sDate", "/"},
                                                      {"sTime", ":"},           {"sList", ","},
                                                      {"sShortDate", "M/d/yy"}, {"sLongDate", "dddd, MMMM dd, yyyy"}};

// A value for every key, none of them its default.
const std::map<std::string, std::string> kGerman = {{"sLanguage", "DEU"},
                                                    {"sCountry", "Germany"},
                                                    {"iCountry", "49"},
                                                    {"iDate", "1"},
                                                    {"iTime", "1"},
                                                    {"iTLZero", "1"},
                                                    {"iCurrency", "3"},
                                                    {"iCurrDigits", "3"},
                                                    {"iNegCurr", "8"},
                                                    {"iLzero", "0"},
                                                    {"iDigits", "4"},
                                                    {"iMeasure", "0"},
                                                    {"s1159", "vorm."},
                                                    {"s2359", "nachm."},
                                                    {"sCurrency", "EUR"},
                                                    {"sThousand", "."},
                                                    {"sDecimal", ","},
                                                    {"sDate", "."},
                                                    {"sTime", "-"},
                                                    {"sList", ";"},
                                                    {"sShortDate", "dd.MM.yyyy"},
                                                    {"sLongDate", "dddd, d. MMMM yyyy"}};

TEST(IntlSettings, EveryKeyOrItsDefault)
{
    intltest::Profile profile;
    const Intl empty;
    EXPECT_TRUE(empty.Initialized());
    EXPECT_EQ(empty.Members(), kDefaults);
    EXPECT_EQ(empty.GetNumericPrecision(), 2);

    profile.Set(kGerman);
    const Intl german;
    EXPECT_EQ(german.Members(), kGerman);
    // Explicitly empty values stay empty; negative numbers read back negative.
    profile.Set({{"sShortDate", ""}, {"iDigits", "-3"}});
    const Intl blank;
    EXPECT_EQ(blank.Members().at("sShortDate"), "");
    EXPECT_EQ(blank.GetNumericPrecision(), -3);
    _SS<char> format("kept");
    EXPECT_FALSE(blank.GetShortDateFormat(format));
    EXPECT_EQ(format, "kept");
    EXPECT_TRUE(german.GetLongDateFormat(format));
    EXPECT_EQ(format, "dddd, d. MMMM yyyy");
}

// Each update reads its own keys and no others; InitInternationalValues reads nothing twice.
TEST(IntlSettings, UpdatesReadTheirKeysOnly)
{
    const std::map<std::string, std::vector<std::string>> groups = {
        {"GeneralLocalization", {"sLanguage", "sCountry", "iCountry"}},
        {"Numbers", {"iDigits", "sThousand", "sDecimal", "iLzero", "sList", "iMeasure"}},
        {"Currency", {"sCurrency", "iCurrency", "iCurrDigits", "iNegCurr"}},
        {"Time", {"sTime", "iTime", "iTLZero", "s1159", "s2359"}},
        {"Date", {"iDate", "sDate", "sShortDate", "sLongDate"}}};
    intltest::Profile profile;
    for (const auto& [group, keys] : groups) {
        SCOPED_TRACE(group);
        profile.Set({});
        Intl intl;
        profile.Set(kGerman);
        intl.InitInternationalValues();
        EXPECT_EQ(intl.Members(), kDefaults);
        bool answer = false;
        if (group == "GeneralLocalization") {
            answer = intl.UpdateGeneralLocalization();
        } else if (group == "Numbers") {
            answer = intl.UpdateNumbers();
        } else if (group == "Currency") {
            answer = intl.UpdateCurrency();
        } else if (group == "Time") {
            answer = intl.UpdateTime();
        } else {
            answer = intl.UpdateDate();
        }
        EXPECT_TRUE(answer);
        std::map<std::string, std::string> expected = kDefaults;
        for (const std::string& key : keys) {
            expected[key] = kGerman.at(key);
        }
        EXPECT_EQ(intl.Members(), expected);
    }
}

TEST(IntlSettings, AuthorizedChars)
{
    intltest::Profile profile({{"sThousand", "."}, {"sDecimal", ","}});
    const YXIntl intl;
    _SS<char> chars("old");
    intl.GetAuthorizedChars(chars);
    EXPECT_EQ(chars, "+-.01234567890 .,");
}

// A setting longer than the profile buffer arrives cut to its 999 first bytes.
TEST(IntlSettings, LongValueIsCut)
{
    intltest::Profile profile({{"sCountry", std::string(5000, 'c')}, {"sList", std::string(1200, ';')}});
    const Intl intl;
    EXPECT_EQ(intl.Members().at("sCountry"), std::string(999, 'c'));
    EXPECT_EQ(intl.Members().at("sList"), std::string(999, ';'));
}

TEST(IntlSettings, CopiesAreDeepAndTheProcessObjectIsRenewed)
{
    intltest::Profile profile;
    YXTools_Close();
    EXPECT_EQ(YXIntl_Get(), nullptr);
    profile.Set({{"sDecimal", ","}});
    YXTools_Init();
    YXIntl* intl = YXIntl_Get();
    ASSERT_NE(intl, nullptr);
    EXPECT_EQ(intl->GetDecimalSep(), ",");
    const YXIntl copy(*intl);
    YXIntl assigned;
    assigned = *intl;
    const YXIntl& alias = assigned;
    assigned = alias;
    profile.Set({{"sDecimal", ";"}});
    YXTools_Init(); // an existing object stays as it is
    EXPECT_EQ(YXIntl_Get(), intl);
    EXPECT_EQ(intl->GetDecimalSep(), ",");
    EXPECT_TRUE(intl->UpdateNumbers());
    EXPECT_EQ(intl->GetDecimalSep(), ";");
    EXPECT_EQ(copy.GetDecimalSep(), ",");
    EXPECT_EQ(assigned.GetDecimalSep(), ",");
    YXTools_Close();
    YXTools_Init();
}

} // namespace
