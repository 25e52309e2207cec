// GetACP and IsDBCSLeadByte in a Western European locale (the program runs with LC_ALL=en_US.UTF-8).
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/win32.h"

namespace {

TEST(GetACP, WesternEuropeanLocaleGives1252WithoutLeadBytes)
{
    EXPECT_EQ(GetACP(), 1252u);
    for (int b = 0; b < 256; ++b) {
        EXPECT_FALSE(IsDBCSLeadByte(static_cast<BYTE>(b))) << "byte " << b;
    }
}

#if !defined(_WIN32)
// Sets the three locale variables (null unsets one); the stand-in reads them at each call.
void SetLocale(const char* all, const char* ctype, const char* lang)
{
    const char* const names[] = {"LC_ALL", "LC_CTYPE", "LANG"};
    const char* const values[] = {all, ctype, lang};
    for (int i = 0; i < 3; ++i) {
        if (values[i] != nullptr) {
            setenv(names[i], values[i], 1);
        } else {
            unsetenv(names[i]);
        }
    }
}
#endif

TEST(GetACP, FollowsTheLanguageAsWineDoes)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Wine reads the locale variables once, when the process starts; the 932 program covers it";
#else
    // What Wine 8 answers for LC_ALL set to each name.
    const struct {
        const char* locale;
        UINT codePage;
    } cases[] = {
        {"C", 1252},
        {"POSIX", 1252},
        {"C.UTF-8", 1252},
        {"en_US.UTF-8", 1252},
        {"de_DE", 1252},
        {"fr_FR.ISO-8859-1", 1252},
        {"pt_BR", 1252},
        {"pl_PL.UTF-8", 1250},
        {"cs_CZ", 1250},
        {"ru_RU.UTF-8", 1251},
        {"uk_UA", 1251},
        {"el_GR", 1253},
        {"tr_TR", 1254},
        {"he_IL", 1255},
        {"ar_EG", 1256},
        {"fa_IR", 1256},
        {"lt_LT", 1257},
        {"vi_VN", 1258},
        {"th_TH", 874},
        {"ja_JP", 932},
        {"ja_JP.eucJP", 932},
        {"ja", 932},
        {"JA_jp", 932},
        {"zh_CN.UTF-8", 936},
        {"zh_SG", 936},
        {"zh", 936},
        {"zh_TW", 950},
        {"zh_HK", 950},
        {"zh_MO", 950},
        {"zh_TW@x", 950},
        {"ko_KR", 949},
        {"hi_IN", 65001},
        {"ka_GE", 65001},
        {"kk_KZ", 65001},
        {"sr_RS", 1252},
        {"sr_RS@latin", 1250},
        {"sr_RS@cyrillic", 1251},
        {"xx_YY", 1252},
        {"bogus", 1252},
    };
    for (const auto& c : cases) {
        SetLocale(c.locale, nullptr, nullptr);
        EXPECT_EQ(GetACP(), c.codePage) << c.locale;
    }
    SetLocale("en_US.UTF-8", nullptr, nullptr);
#endif
}

TEST(GetACP, TakesLcAllThenLcCtypeThenLang)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Wine reads the locale variables once, when the process starts";
#else
    const struct {
        const char* all;
        const char* ctype;
        const char* lang;
        UINT codePage;
    } cases[] = {
        {"ru_RU", "ja_JP", "ko_KR", 1251},      {nullptr, "ja_JP", "ko_KR", 932}, {"", "ja_JP", "ko_KR", 932},
        {nullptr, nullptr, "ko_KR.UTF-8", 949}, {nullptr, "C", "ja_JP", 1252},    {nullptr, nullptr, nullptr, 1252},
    };
    for (const auto& c : cases) {
        SetLocale(c.all, c.ctype, c.lang);
        EXPECT_EQ(GetACP(), c.codePage) << (c.all ? c.all : "-") << " " << (c.ctype ? c.ctype : "-") << " "
                                        << (c.lang ? c.lang : "-");
    }
    // The lead bytes follow a change of the variables at once.
    SetLocale("ko_KR.UTF-8", nullptr, nullptr);
    EXPECT_TRUE(IsDBCSLeadByte(0xFE));
    EXPECT_FALSE(IsDBCSLeadByte(0x80));
    SetLocale("en_US.UTF-8", nullptr, nullptr);
#endif
}

} // namespace
