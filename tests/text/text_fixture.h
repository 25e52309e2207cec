// The text tests run under one locale each (LC_ALL, set by the build for the program): the
// fixture checks the code page that the locale gives and builds the tables for it.
#ifndef YXTOOLS_TESTS_TEXT_FIXTURE_H
#define YXTOOLS_TESTS_TEXT_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "text/text_internal.h"

template <unsigned CodePage>
class TextUnder : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(GetACP(), CodePage) << "the program runs under a locale of code page " << CodePage;
        String_InitTables();
    }
};

using Text932 = TextUnder<932>;
using Text1252 = TextUnder<1252>;

// Offset of a search result in its text, -1 for null.
inline long At(char const* text, char const* found)
{
    return found == nullptr ? -1 : static_cast<long>(found - text);
}

#endif
