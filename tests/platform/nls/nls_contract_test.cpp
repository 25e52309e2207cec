// The NLS calls answer as Wine's Win32 does: every character of the ANSI code page through each
// mapping flag and through the case calls, the counts and failures of LCMapStringA, every
// combination of its flags, and CompareStringA over pairs of texts with every combination of its
// flags. The program runs under one locale (LC_ALL, set by the build) and compares its answers,
// in order, with those that Wine gave under the same locale.
//
// To remake the answers, run the Windows build's program under Wine with YXTOOLS_NLS_DUMP set to
// a file name: the answers are written there, one a line.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "nls/nls_cases.h"

namespace {

const char* const kWine[] = {
#if YXTOOLS_NLS_CODE_PAGE == 932
#include "nls/wine932.inc"
#else
#include "nls/wine1252.inc"
#endif
};

TEST(NlsContract, AnswersAsWineDoes)
{
    const std::vector<std::string> answers = nlscases::AllAnswers();
    if (const char* dump = std::getenv("YXTOOLS_NLS_DUMP")) {
        std::ofstream out(dump);
        for (const std::string& line : answers) {
            out << line << "\n";
        }
    }
    const std::vector<std::string> wine(std::begin(kWine), std::end(kWine));
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
