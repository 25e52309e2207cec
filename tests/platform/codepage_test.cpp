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
void SetLocale(const char* all, const char* ctype = nullptr, const char* lang = nullptr)
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

TEST(GetACP, FollowsTheLocaleVariablesAsWineDoes)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Wine reads the locale variables once, when the process starts; the 932 program covers it";
#else
    // What Wine 8 answers for LC_ALL set to each name: one row for each rule of the choice.
    const struct {
        const char* locale;
        UINT codePage;
    } cases[] = {
        {"C", 1252},     {"fr_FR.ISO-8859-1", 1252}, {"ru_RU", 1251}, {"JA_jp", 932},
        {"zh", 936},     {"zh_TW@x", 950},           {"ko_KR", 949},  {"hi_IN", 65001},
        {"sr_RS", 1252}, {"sr_RS@latin", 1250},      {"bogus", 1252},
    };
    for (const auto& c : cases) {
        SetLocale(c.locale);
        EXPECT_EQ(GetACP(), c.codePage) << c.locale;
    }
    // LC_ALL, then LC_CTYPE, then LANG; an empty one does not count.
    SetLocale("ru_RU", "ja_JP", "ko_KR");
    EXPECT_EQ(GetACP(), 1251u);
    SetLocale("", "ja_JP", "ko_KR");
    EXPECT_EQ(GetACP(), 932u);
    SetLocale(nullptr, nullptr, "ko_KR.UTF-8");
    EXPECT_EQ(GetACP(), 949u);
    EXPECT_TRUE(IsDBCSLeadByte(0xFE)); // the lead bytes follow a change at once
    SetLocale(nullptr);
    EXPECT_EQ(GetACP(), 1252u);
    SetLocale("en_US.UTF-8");
#endif
}

} // namespace
