// The NLS calls answer as Wine's Win32 does: every character of the ANSI code page through each
// mapping flag and through the case calls, the counts and failures of LCMapStringA, every
// combination of its flags, and CompareStringA over pairs of texts with every combination of its
// flags. The program runs under one locale (LC_ALL, set by the build) and compares its answers,
// in order, with those that Wine gave under the same locale.
//
// Wine's answers are tests/data/nls<code page>_wine.txt. To remake them, run the Windows build's
// program under Wine with YXTOOLS_NLS_DUMP set to that file's name: the answers are written there,
// one a line.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "nls/nls_cases.h"

// One program for each code page: the suite's name carries the code page, so that the names of the
// test cases stay apart.
#define NLS_CAT2(a, b) a##b
#define NLS_CAT(a, b) NLS_CAT2(a, b)
#define NlsContract NLS_CAT(NlsContract, YXTOOLS_NLS_CODE_PAGE)

namespace {

const char* const kWine[] = {
#if YXTOOLS_NLS_CODE_PAGE == 932
#include "nls932_wine.inc"
#else
#include "nls1252_wine.inc"
#endif
};

// Known Wine defect: Wine's NORM_IGNORENONSPACE removes the spacing accents (circumflex, grave,
// diaeresis, macron, acute, middle dot, cedilla, modifier circumflex and tilde, the kana sound
// marks) as if they were combining marks; Windows keeps them, one character for each character.
bool IsWineSpacingAccentDefect(const std::string& line)
{
    static const char* const kRemoved[] = {"5E", "60", "88",   "98",   "A8",   "AF",  "B4",
                                           "B7", "B8", "814A", "814B", "814C", "814E"};
    for (const char* accent : kRemoved) {
        if (line == std::string("map IGNORENONSPACE ") + accent + "=fail0") {
            return true;
        }
    }
    return false;
}

TEST(NlsContract, AnswersAsWineDoes)
{
    const std::vector<std::string> answers = nlscases::AllAnswers();
    if (const char* dump = std::getenv("YXTOOLS_NLS_DUMP")) {
        std::ofstream out(dump);
        for (const std::string& line : answers) {
            out << line << "\n";
        }
    }
    std::vector<std::string> wine;
    for (const char* line : kWine) {
        if (!IsWineSpacingAccentDefect(line)) {
            wine.emplace_back(line);
        }
    }
#if defined(_WIN32)
    // Under Wine the defect is there to see.
    wine.assign(std::begin(kWine), std::end(kWine));
#endif
    int reported = 0;
    for (std::size_t i = 0; i < wine.size() && i < answers.size() && reported < 20; ++i) {
        if (wine[i] != answers[i]) {
            ADD_FAILURE() << "answer " << i << ": Wine gives \"" << wine[i] << "\", here \"" << answers[i] << "\"";
            ++reported;
        }
    }
    EXPECT_EQ(answers.size(), wine.size());
}

TEST(NlsContract, SingleCharacterFormOfTheCaseCalls)
{
    // A pointer with no high bits carries one character.
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(CharUpperA(reinterpret_cast<LPSTR>(std::uintptr_t{'q'}))),
              std::uintptr_t{'Q'});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(CharLowerA(reinterpret_cast<LPSTR>(std::uintptr_t{'Q'}))),
              std::uintptr_t{'q'});
    char text[] = "mIxEd 1";
    EXPECT_EQ(CharUpperA(text), text);
    EXPECT_STREQ(text, "MIXED 1");
    EXPECT_EQ(CharLowerA(text), text);
    EXPECT_STREQ(text, "mixed 1");
}

TEST(NlsContract, CompareStringFailures)
{
    SetLastError(0);
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, 0, nullptr, -1, "a", -1), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    // Counted texts compare their counts only.
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, 0, "abX", 2, "abY", 2), CSTR_EQUAL);
    EXPECT_EQ(CompareStringA(LOCALE_USER_DEFAULT, 0, "ab", 2, "abc", 3), CSTR_LESS_THAN);
}

} // namespace
