#include <gtest/gtest.h>

#include <string>

#include <yxtools/yxtools.h>

#include "support/intl_profile.h"

namespace {

// Code page 932: full-width ０-９ are 0x82 0x4F-0x58, ， is 0x81 0x43, ． 0x81 0x44, ａ 0x82 0x81.
const std::string kFull1234_5 = "\x82\x50\x81\x43\x82\x51\x82\x52\x82\x53\x81\x44\x82\x54";

class Intl : public YXIntl {
public:
    const _SS<char>& Country() const { return m_sCountry; }
    const _SS<char>& Thousand() const { return m_sThousand; }
};

TEST(Intl932, FullWidthSettingsArriveHalfWidth)
{
    intltest::Profile profile({{"sDecimal", "\x81\x43"}, {"sThousand", "\x81\x44"}, {"sCountry", "\x82\x69\x82\x6F"}});
    const Intl intl;
    EXPECT_EQ(intl.GetDecimalSep(), ",");
    EXPECT_EQ(intl.Thousand(), ".");
    EXPECT_EQ(intl.Country(), "\x82\x69\x82\x6F");
}

TEST(Intl932, FullWidthDigitsAndSeparators)
{
    intltest::Profile profile;
    const YXIntl intl;
    bool ok = false;
    EXPECT_EQ(intl.TextToNumeric(kFull1234_5, &ok, nullptr), 1234.5);
    EXPECT_TRUE(ok);
    EXPECT_EQ(intl.TextToLong(kFull1234_5, -2, &ok, nullptr), 123450);
    // The offset counts in the half-width text: the ａ is the third character, not the fifth byte.
    unsigned long offset = 0;
    EXPECT_EQ(intl.TextToLong("\x82\x50\x82\x51\x82\x81", 0, &ok, &offset), 0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(offset, 2u);
    // A lead byte among plain digits stops the text where it stands.
    EXPECT_EQ(intl.TextToNumeric("12\x88\x9F"
                                 "3",
                                 &ok, &offset),
              0.0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(offset, 2u);
}

} // namespace
