// The character model and the searches under code page 932 (the program runs with
// LC_ALL=ja_JP.UTF-8), where 0x81..0x9F and 0xE0..0xFC are lead bytes.
#include <cstring>
#include <string>

#include "text_fixture.h"

namespace {

TEST_F(Text932, TablesFlagTheLeadBytes)
{
    EXPECT_TRUE(String_IsDBCSEnabled());
    const bool* lead = String_GetTabBLeadByte();
    for (int b = 0; b < 256; ++b) {
        EXPECT_EQ(lead[b], (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC)) << b;
    }
}

TEST_F(Text932, TrailRangeOfACharacterIs31ToFEWithout7F)
{
    struct Case {
        unsigned char trail;
        bool doubleByte;
    };
    const Case cases[] = {{0x30, false}, {0x31, true}, {0x7E, true},  {0x7F, false},
                          {0x80, true},  {0xFE, true}, {0xFF, false}, {0x00, false}};
    for (const Case& c : cases) {
        const char text[] = {'\x81', static_cast<char>(c.trail), 'z', '\0'};
        EXPECT_EQ(String_IsDoubleByteChar(text), c.doubleByte) << std::hex << int(c.trail);
        EXPECT_EQ(String_CharNext(text), text + (c.doubleByte ? 2 : 1)) << std::hex << int(c.trail);
        EXPECT_EQ(String_NbChar(text), c.trail == 0 ? 1 : c.doubleByte ? 2 : 3) << std::hex << int(c.trail);
        // The value reads the next byte behind a lead byte whatever it is.
        EXPECT_EQ(String_GetCharValue(text), 0x8100 + c.trail);
    }
}

TEST_F(Text932, BackwardWalkUsesTheNarrowTrailRange)
{
    struct Case {
        const char* text;
        long expected; // offset of the character before the end
    };
    const Case cases[] = {
        {"\x81\x40", 0},         // 0x40 could be a trail, one lead before it: a pair
        {"\x81\x3F", 1},         // 0x3F cannot be a trail here, though the forward walk pairs it
        {"\x81\xFC", 0},         // 0xFC is a lead byte: always a trail before a boundary
        {"\x41\xFD", 1},         // 0xFD cannot be a trail
        {"\x81\x7F", 1},         // 0x7F never
        {"\x81\x81\x41", 2},     // even run: 0x41 stands alone
        {"\x41\x81\x41", 1},     // odd run: 0x41 is the trail of 0x81
        {"\x81\x81\x81\x41", 2}, // odd run of three
        {"\x83\x41\x83\x41", 2}, // the second of two katakana A
        {"a", 0},
    };
    for (const Case& c : cases) {
        const char* end = c.text + std::strlen(c.text);
        EXPECT_EQ(At(c.text, String_CharPrev(c.text, end)), c.expected) << c.text;
    }
    const char* s = "\x81\x41";
    EXPECT_EQ(String_CharPrev(s, s), s);
    EXPECT_EQ(String_CharPrev(s, s + 1), s);
    EXPECT_EQ(String_CharPrev(nullptr, s), nullptr);
}

TEST_F(Text932, CountsInCharactersAndBytes)
{
    const char* text = "a\x83\x41"
                       "b\x81"; // a, katakana A, b, a lone lead before the terminator
    EXPECT_EQ(String_NbChar(text), 4);
    EXPECT_EQ(String_NbChar2NbBytes(text, 2), 3);
    EXPECT_EQ(String_NbChar2NbBytes(text, 99), 5); // never past the terminator
    EXPECT_EQ(String_NbChar2NbBytes(text, 0), 0);
    EXPECT_EQ(String_NbBytes2NbChar(text, 2), 2); // the pair straddling 2 counts whole
    EXPECT_EQ(String_NbBytes2NbChar(text, 3), 2);
    EXPECT_EQ(String_NbBytes2NbChar(nullptr, 3), 0);
}

TEST_F(Text932, CharacterValuesAreValidatedAgainstTheLeadBytes)
{
    char tag = 0;
    EXPECT_TRUE(String_IsValidChar(0x41, &tag));
    EXPECT_FALSE(String_IsValidChar(0x81, &tag));
    EXPECT_TRUE(String_IsValidChar(0x8100, &tag));
    EXPECT_FALSE(String_IsValidChar(0x4181, &tag));
    EXPECT_TRUE(String_IsValidChar(0, &tag));

    char out[3] = {'x', 'y', 'z'};
    EXPECT_TRUE(String_SetCharValue(out, 0x8100));
    EXPECT_EQ(std::string(out, 3), std::string("\x81yz", 3)); // one byte, no terminator
    EXPECT_FALSE(String_SetCharValue(out, 0x81));
    EXPECT_EQ(out[0], '\x81');
    EXPECT_TRUE(String_SetCharValue(out, 0x8341));
    EXPECT_EQ(std::string(out, 3), std::string("\x83\x41z", 3));

    _SS<char> text("a");
    EXPECT_TRUE(String_AddCharValue(text, 0x82A0));
    EXPECT_FALSE(String_AddCharValue(text, 0x9F));
    EXPECT_TRUE(String_AddCharValue(text, 0));
    EXPECT_EQ(text, std::string("a\x82\xA0\0", 4));

    char* end = String_StoreCharValue(out, 0x8341);
    EXPECT_EQ(end, out + 2);
}

TEST_F(Text932, CopyNeverEndsInHalfACharacter)
{
    struct Case {
        const char* src;
        long capacity;
        const char* expected;
    };
    const Case cases[] = {
        {"abcdef", 4, "abc"},
        {"ab\x83\x41"
         "cd",
         4, "ab"}, // the pair at capacity - 2 is left out
        {"a\x83\x41"
         "cd",
         4, "a\x83\x41"},  // the pair ends before the last byte: kept
        {"abc", 4, "abc"}, // shorter than capacity: whole
        {"abcd", 1, ""},
        {"\x83\x41\x83\x41", 0, "\x83\x41\x83\x41"},
        {"a\x81"
         "0bc",
         4,
         "a\x81"
         "0"}, // a lone lead is a character of one byte
    };
    for (const Case& c : cases) {
        char dst[16];
        std::memset(dst, '#', sizeof dst);
        EXPECT_EQ(StringCopy(dst, c.src, c.capacity), dst);
        EXPECT_STREQ(dst, c.expected) << c.src << " " << c.capacity;
        if (c.capacity > 1) {
            EXPECT_EQ(dst[c.capacity - 1], '\0');
        }
    }
    char dst[4] = "xyz";
    EXPECT_EQ(StringCopy(dst, "a", -1), nullptr);
    EXPECT_STREQ(dst, "xyz");
    EXPECT_EQ(StringCopy(nullptr, "a", 2), nullptr);
    char same[] = "ab\x83\x41";
    EXPECT_STREQ(StringCopy(same, same, 4), "ab");
}

TEST_F(Text932, FoldsWidthCaseAndKanaType)
{
    EXPECT_EQ(String_FoldChar(0x8281), 0x8260); // full-width a
    EXPECT_EQ(String_FoldChar(0x829A), 0x8279);
    EXPECT_EQ(String_FoldChar('a'), String_FoldChar(0x8260));
    EXPECT_EQ(String_FoldChar(0x8341), String_FoldChar(0x82A0)); // katakana and hiragana a
    EXPECT_EQ(String_FoldChar(0xB1), String_FoldChar(0x82A0));   // half-width katakana a
    EXPECT_EQ(String_FoldChar(0x889F), 0x889F);                  // a kanji stays
}

TEST_F(Text932, CompareDropsTheAccentBit)
{
    const char* ka = "\x82\xA9";
    const char* ga = "\x82\xAA";
    EXPECT_EQ(String_Compare(ka, ga, -1, YXSTRING_IGNORENONSPACE), String_Compare(ka, ga, -1, 0));
    EXPECT_EQ(String_Compare(ka, ga, -1, 0), -1);
    EXPECT_EQ(String_Compare("\x83\x41", "\x82\xA0", -1, YXSTRING_IGNOREKANATYPE), 0);
    EXPECT_EQ(String_Compare("a", "\x82\x81", -1, YXSTRING_IGNOREWIDTH), 0);
    EXPECT_EQ(String_Compare("a", "\x82\x81", -1, 0), -1);
}

TEST_F(Text932, CaseMappingTakesDoubleByteLetters)
{
    char text[] = "ab\x82\x81";
    EXPECT_STREQ(String_CharUpper(text, 0), "AB\x82\x60");
    EXPECT_STREQ(String_CharLower(text, 1), "aB\x82\x60");
}

TEST_F(Text932, SearchesNeverHitATrailByte)
{
    const char* text = "x\x83\x41y\x83\x41"
                       "A";
    EXPECT_EQ(At(text, String_StrChr(text, 'A')), 6);
    EXPECT_EQ(At(text, String_StrRChr(text, 'A')), 6);
    EXPECT_EQ(At(text, String_StrStr(text, "A")), 6);
    EXPECT_EQ(At(text, String_StrChr(text, 'A', 6)), -1);
    EXPECT_EQ(At(text, String_StrChr(text, 'A', 7)), 6);
    EXPECT_EQ(At(text, String_StrChr(text, 0x8341)), 1);
    EXPECT_EQ(At(text, String_StrRChr(text, 0x8341)), 4);
    EXPECT_EQ(At(text, String_StrStr(text, "\x83\x41y")), 1);

    // 0x8341 is the pair 83 41, not 41 83.
    const char* swapped = "\x41\x83\x41";
    EXPECT_EQ(At(swapped, String_StrChr(swapped, 0x8341)), 1);
    EXPECT_EQ(At(swapped, String_StrChr(swapped, 0x4183)), -1);
}

TEST_F(Text932, GateSendsNonTrailBytesToThePlainSearch)
{
    // 0x2F cannot be a trail byte: the plain search finds it even behind a lead byte.
    const char* slash = "\x81/a/";
    EXPECT_EQ(At(slash, String_StrChr(slash, '/')), 1);
    EXPECT_EQ(At(slash, String_StrChr(slash, '/', 4)), 1);
    EXPECT_EQ(At(slash, String_StrStr(slash, "/")), 1);
    // 0x5C can: the walk steps over the pair 95 5C.
    const char* backslash = "\x95\\a\\b\\";
    EXPECT_EQ(At(backslash, String_StrChr(backslash, '\\')), 3);
    EXPECT_EQ(At(backslash, String_StrRChr(backslash, '\\')), 5);
    EXPECT_EQ(At(backslash, String_StrStr(backslash, "\\")), 3);
    // A value whose first byte cannot be a trail byte goes to strchr with its low byte.
    const char* bytes = "ab\x41";
    EXPECT_EQ(At(bytes, String_StrChr(bytes, 0x2041)), 2);
    EXPECT_FALSE(String_IsDBCSSearchNeeded("a/b"));
    EXPECT_TRUE(String_IsDBCSSearchNeeded("ab\\"));
    EXPECT_TRUE(String_IsDBCSSearchNeeded(""));
}

TEST_F(Text932, InvalidAndTooLongValuesFindNothing)
{
    const char* text = "\x81\x41\x81";
    EXPECT_EQ(String_StrChr(text, 0x81), nullptr); // a lone lead-byte value
    EXPECT_EQ(String_StrRChr(text, 0x81), nullptr);
    EXPECT_EQ(String_StrChr(text, 0x8141, 1), nullptr); // last offset -1
    EXPECT_EQ(At(text, String_StrChr(text, 0x8141, 2)), 0);
    EXPECT_EQ(At(text, String_StrChr(text, 0x8100)), 2); // the lone lead before the terminator
    EXPECT_EQ(String_StrChr(static_cast<char const*>(nullptr), 'a', 3), nullptr);
}

TEST_F(Text932, CountedSearchPassesTerminators)
{
    const char text[] = {'a', '\0', '\x83', '\x41', '\0', '\\', 'z'};
    EXPECT_EQ(At(text, String_StrChr(text, 0x8341, 7)), 2);
    EXPECT_EQ(At(text, String_StrChr(text, '\\', 7)), 5);
    EXPECT_EQ(At(text, String_StrChr(text, '\\', 5)), -1);
    EXPECT_EQ(At(text, String_StrChr(text, 'z', 7)), 6);
    EXPECT_EQ(At(text, String_StrChr(text, 0x8341, 3)), -1);
}

TEST_F(Text932, FindFoldsAndRestartsAfterAPartialMatch)
{
    // Full-width "AB" found by ASCII "ab"; hiragana found by katakana.
    const char* text = "x\x82\x60\x82\x61y";
    EXPECT_EQ(At(text, String_Find(text, "ab")), 1);
    const char* kana = "\x82\xA0\x82\xA2"; // hiragana a i
    EXPECT_EQ(At(kana, String_Find(kana, "\x83\x41\x83\x43")), 0);
    // A failed partial match resumes one character behind its start.
    const char* repeat = "\x82\xA0\x82\xA0\x82\xA0\x82\xA2";
    EXPECT_EQ(At(repeat, String_Find(repeat, "\x82\xA0\x82\xA0\x82\xA2")), 2);
    EXPECT_EQ(String_Find(repeat, ""), nullptr);
    // No match through a trail byte.
    const char* pair = "\x83\x41";
    EXPECT_EQ(String_Find(pair, "A"), nullptr);
}

TEST_F(Text932, StrStrRestartsAndTreatsEmptyPatterns)
{
    const char* text = "\\\\\\x";
    EXPECT_EQ(At(text, String_StrStr(text, "\\\\x")), 1);
    EXPECT_EQ(String_StrStr(text, ""), nullptr); // DBCS: the character walk never matches the end
    EXPECT_EQ(String_StrStr("", "\\"), nullptr);
}

TEST_F(Text932, ExtractCountsCharacters)
{
    const char* three = "\x83\x41\x83\x43\x83\x45";
    char dst[16];
    EXPECT_TRUE(String_Extract(three, dst, sizeof dst, YXSTRING_EXTRACT_LAST, 0, 2));
    EXPECT_STREQ(dst, "\x83\x43\x83\x45");
    EXPECT_TRUE(String_Extract(three, dst, sizeof dst, YXSTRING_EXTRACT_FROM, 2, 1));
    EXPECT_STREQ(dst, "\x83\x43");
    // The last two of three in a buffer of 3: StringCopy leaves out the pair at the boundary.
    EXPECT_TRUE(String_Extract(three, dst, 3, YXSTRING_EXTRACT_LAST, 0, 2));
    EXPECT_STREQ(dst, "\x83\x43");
}

TEST_F(Text932, TruncateLeavesNoLeadByteAtTheEnd)
{
    char text[] = "ab\x83\x41"
                  "cd";
    EXPECT_STREQ(String_Truncate(text, 3), "ab");
    char whole[] = "ab\x83\x41"
                   "cd";
    EXPECT_STREQ(String_Truncate(whole, 4), "ab\x83\x41");
    char lead[8] = "a\x81";
    EXPECT_STREQ(String_Truncate(lead, 2), "a"); // a lead byte as the last byte goes
}

TEST_F(Text932, TransformMapsThroughTheLocale)
{
    char dst[32];
    EXPECT_EQ(String_Transform("ab", dst, sizeof dst, YXSTRING_FULLWIDTH), 4);
    EXPECT_STREQ(dst, "\x82\x81\x82\x82");
    EXPECT_EQ(String_Transform("\x83\x41", dst, sizeof dst, YXSTRING_HIRAGANA | YXSTRING_HALFWIDTH), 2);
    EXPECT_STREQ(dst, "\x82\xA0");
    // 0x40 alone sets no platform flag under 932: a plain copy.
    EXPECT_EQ(String_Transform("\x82\xAA", dst, sizeof dst, YXSTRING_NONSPACE), 2);
    EXPECT_STREQ(dst, "\x82\xAA");
    char text[] = "\x82\x81\x82\x82";
    EXPECT_EQ(String_Simplify(text, 0), 2);
    EXPECT_STREQ(text, "ab");
    // The mapped text of "ab" takes 5 bytes with its terminator: more than size 3.
    char small[] = "ab";
    EXPECT_EQ(String_Transform(small, 0, YXSTRING_FULLWIDTH), -1);
    EXPECT_STREQ(small, "ab");
}

} // namespace
