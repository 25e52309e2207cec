#include <gtest/gtest.h>

#include <yxtools/memory.h>

namespace {

constexpr unsigned long kWordOnes = 0xFFFFFFFFUL;

TEST(BitArray, DefaultArrayHasNoWordsAndIgnoresEverything)
{
    YXBitArray bits;
    EXPECT_FALSE(bits.IsOk());
    EXPECT_EQ(bits.GetRange(), 0u);
    EXPECT_EQ(bits.GetBitArray(), nullptr);
    EXPECT_EQ(bits.GetByteSize(), 0u);
    bits.SetValue(true);
    bits.SetValue(0UL, true);
    EXPECT_FALSE(bits.IsOneSet());
    EXPECT_FALSE(bits[0]);
    EXPECT_FALSE(bits[31]);
}

// The word count is (range >> 5) + 1, so the last word always has spare bits, and a range that
// is a multiple of 32 has a whole spare word.
TEST(BitArray, WordBoundaries)
{
    const struct {
        unsigned long range;
        unsigned long words;
    } cases[] = {{1, 1}, {31, 1}, {32, 2}, {33, 2}, {63, 2}, {64, 3}, {100, 4}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.range);
        YXBitArray bits(c.range);
        ASSERT_TRUE(bits.IsOk());
        EXPECT_EQ(bits.GetByteSize(), (c.words + 1) * 4);
        for (unsigned long i = 0; i < c.words; ++i) {
            EXPECT_EQ(bits.GetBitArray()[i], 0u);
        }
        EXPECT_FALSE(bits.IsOneSet());

        bits.SetValue(c.range - 1, true);
        EXPECT_TRUE(bits[c.range - 1]);
        EXPECT_EQ(bits.GetBitArray()[(c.range - 1) >> 5], 1UL << ((c.range - 1) & 31));
        bits.SetValue(c.range, true); // past the range: ignored even where a word holds it
        EXPECT_FALSE(bits[c.range]);
        EXPECT_EQ(bits.GetBitArray()[c.range >> 5], c.range % 32 == 0 ? 0u : 1UL << ((c.range - 1) & 31));

        bits.SetValue(true); // whole words, spare bits included, each word 32 bits wide
        for (unsigned long i = 0; i < c.words; ++i) {
            EXPECT_EQ(bits.GetBitArray()[i], kWordOnes);
        }
        EXPECT_FALSE(bits[c.range]);
        bits.SetValue(c.range - 1, false);
        EXPECT_FALSE(bits[c.range - 1]);
        EXPECT_TRUE(bits.IsOneSet());
    }
}

TEST(BitArray, SpareBitsSurviveAShrinkAndComeBackOnGrowth)
{
    YXBitArray bits(100);
    bits.SetValue(20UL, true);
    unsigned long* const words = bits.GetBitArray();
    ASSERT_TRUE(bits.SetRange(10));
    EXPECT_EQ(bits.GetBitArray(), words); // the words are kept
    EXPECT_FALSE(bits[20]);
    EXPECT_TRUE(bits.IsOneSet()); // the word still holds bit 20
    ASSERT_TRUE(bits.SetRange(30));
    EXPECT_TRUE(bits[20]);
}

TEST(BitArray, SetValueTrueShowsAfterGrowthInsideTheWordButNewWordsAreZero)
{
    YXBitArray bits(10);
    bits.SetValue(true);
    ASSERT_TRUE(bits.SetRange(20));
    for (unsigned long k = 0; k < 20; ++k) {
        EXPECT_TRUE(bits[k]) << k;
    }
    ASSERT_TRUE(bits.SetRange(70)); // adds words 1 and 2
    EXPECT_TRUE(bits[31]);
    for (unsigned long k = 32; k < 70; ++k) {
        EXPECT_FALSE(bits[k]) << k;
    }
    bits.SetValue(false);
    EXPECT_FALSE(bits.IsOneSet());
    ASSERT_TRUE(bits.SetRange(31));
    ASSERT_TRUE(bits.SetRange(32));
    EXPECT_FALSE(bits[31]); // cleared with the spare bits
}

TEST(BitArray, GrowthKeepsTheOldBits)
{
    YXBitArray bits(10);
    for (unsigned long k = 0; k < 10; k += 3) {
        bits.SetValue(k, true);
    }
    ASSERT_TRUE(bits.SetRange(100));
    for (unsigned long k = 0; k < 100; ++k) {
        EXPECT_EQ(bits[k], k < 10 && k % 3 == 0) << k;
    }
}

TEST(BitArray, SetRangeAnswers)
{
    YXBitArray bits(40);
    EXPECT_FALSE(bits.SetRange(40));
    EXPECT_TRUE(bits.SetRange(0));
    EXPECT_FALSE(bits.IsOk());
    EXPECT_EQ(bits.GetBitArray(), nullptr);
    EXPECT_FALSE(bits.SetRange(0));
    EXPECT_TRUE(bits.SetRange(5));
    EXPECT_TRUE(bits.IsOk());
    EXPECT_FALSE(bits.IsOneSet()); // a first allocation is all zero
}

TEST(BitArray, CopiesAreDeepAndBringTheSpareBits)
{
    YXBitArray source(10);
    source.SetValue(true);
    YXBitArray copy(source);
    EXPECT_NE(copy.GetBitArray(), source.GetBitArray());
    EXPECT_EQ(copy.GetBitArray()[0], kWordOnes);
    copy.SetValue(3UL, false);
    EXPECT_TRUE(source[3]);
    ASSERT_TRUE(copy.SetRange(20));
    EXPECT_TRUE(copy[15]);

    YXBitArray target(300);
    target.SetValue(299UL, true);
    target = source;
    EXPECT_EQ(target.GetRange(), 10u);
    EXPECT_EQ(target.GetBitArray()[0], kWordOnes);
    EXPECT_TRUE(target.IsOneSet());

    target = target;
    EXPECT_EQ(target.GetRange(), 10u);
    EXPECT_EQ(target.GetBitArray()[0], kWordOnes);

    const YXBitArray empty;
    target = empty;
    EXPECT_FALSE(target.IsOk());
    EXPECT_EQ(target.GetRange(), 0u);
    EXPECT_EQ(target.GetBitArray(), nullptr);
}

} // namespace
