// The code page calls and the runtime's path cut under Japanese (the program runs with
// LC_ALL=ja_JP.UTF-8, which gives code page 932 on both builds).
#include <gtest/gtest.h>

#include "platform/win32.h"
#include "splitpath_check.h"

namespace {

TEST(GetACP932, JapaneseLocaleGivesShiftJisLeadBytes)
{
    ASSERT_EQ(GetACP(), 932u);
    for (int b = 0; b < 256; ++b) {
        const bool lead = (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC);
        EXPECT_EQ(IsDBCSLeadByte(static_cast<BYTE>(b)) != FALSE, lead) << "byte " << b;
    }
}

TEST(SplitPath932, DoubleByteCharactersStayWhole)
{
    // 0x95 0x5C is one character (a trail byte equal to `\`); so is 0x81 0x2F.
    const SplitPathCase cases[] = {
        {"a\\\x95\x5C", "", "a\\", "\x95\x5C", ""},
        {"\x95\x5C\\x.t", "", "\x95\x5C\\", "x", ".t"},
        {"x\x81/y.z", "", "", "x\x81/y", ".z"},
        {"\x95:x", "\x95:", "", "x", ""}, // the drive is any first byte before a colon
    };
    for (const SplitPathCase& c : cases) {
        ExpectSplitPath(c);
    }
}

TEST(SplitPath932, TrailByteDotIsNoDot)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Wine's runtime takes 0x2E behind a lead byte for a dot (0x2E is no trail byte of code page 932)";
#else
    ExpectSplitPath({"a.b\x95.", "", "", "a", ".b\x95."});
#endif
}

} // namespace
