#include <gtest/gtest.h>

#include <yxtools/memory.h>

namespace {

TEST(BitArray, RangeChangesAndAnArrayWithoutWords)
{
    YXBitArray bits;
    bits.SetValue(true);
    bits.SetValue(0UL, true);
    EXPECT_FALSE(bits.IsOneSet());
    EXPECT_EQ(bits.GetByteSize(), 0u);
    EXPECT_TRUE(bits.SetRange(40));
    EXPECT_FALSE(bits.SetRange(40));
    EXPECT_TRUE(bits.SetRange(0));
    EXPECT_EQ(bits.GetBitArray(), nullptr);
    EXPECT_FALSE(bits[0]);
}

// The word count is (range >> 5) + 1, so the last word always has spare bits, and a range that
// is a multiple of 32 has a whole spare word.
TEST(BitArray, WordBoundaries)
{
    const struct {
        unsigned long range;
        unsigned long words;
    } cases[] = {{1, 1}, {31, 1}, {32, 2}, {33, 2}, {64, 3}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.range);
        YXBitArray bits(c.range);
        EXPECT_EQ(bits.GetByteSize(), (c.words + 1) * 4);
        EXPECT_FALSE(bits.IsOneSet());
        bits.SetValue(c.range - 1, true);
        bits.SetValue(c.range, true); // past the range: ignored even where a word holds it
        EXPECT_TRUE(bits[c.range - 1]);
        EXPECT_EQ(bits.GetBitArray()[(c.range - 1) >> 5], 1UL << ((c.range - 1) & 31));

        bits.SetValue(true); // whole words, spare bits included, each word 32 bits wide
        for (unsigned long i = 0; i < c.words; ++i) {
            EXPECT_EQ(bits.GetBitArray()[i], 0xFFFFFFFFUL);
        }
        EXPECT_FALSE(bits[c.range]);
        bits.SetValue(c.range - 1, false);
        EXPECT_TRUE(bits.IsOneSet());
    }
}

// IsOneSet reads every word to the last, also one that holds only spare bits.
TEST(BitArray, IsOneSetReadsTheLastWord)
{
    for (const unsigned long range : {1UL, 31UL, 32UL, 64UL, 100UL}) {
        YXBitArray bits(range);
        const unsigned long last = range >> 5;
        bits.GetBitArray()[last] = 0x80000000UL; // the highest spare bit
        EXPECT_TRUE(bits.IsOneSet()) << range;
        bits.GetBitArray()[last] = 0;
        EXPECT_FALSE(bits.IsOneSet()) << range;
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

    bits.SetValue(true);
    bits.SetValue(4UL, false);
    ASSERT_TRUE(bits.SetRange(100)); // keeps the old word and adds cleared ones
    for (unsigned long k = 0; k < 100; ++k) {
        EXPECT_EQ(bits[k], k < 32 && k != 4) << k;
    }
}

TEST(BitArray, CopiesAreDeepAndBringTheSpareBits)
{
    YXBitArray source(10);
    source.SetValue(true);
    YXBitArray copy(source);
    copy.SetValue(3UL, false);
    EXPECT_TRUE(source[3]);
    ASSERT_TRUE(copy.SetRange(20));
    EXPECT_TRUE(copy[15]);

    YXBitArray target(300);
    target = source;
    ASSERT_TRUE(target.SetRange(20));
    EXPECT_TRUE(target[15]);
    target = YXBitArray();
    EXPECT_FALSE(target.IsOk());
}

} // namespace
