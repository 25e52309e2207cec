#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <yxtools/memory.h>

#include "buffer_fill.h"

namespace {

TEST(AutoBufferFactory, FirstRequestMakesABufferOfExactlyThatSize)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* buffer = factory.GetAutoBuffer(100);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->m_dwCapacity, 100u);
    EXPECT_EQ(buffer->m_dwSize, 100u);
    EXPECT_NE(buffer->m_pData, nullptr);
    EXPECT_TRUE(buffer->m_bOwner);
}

TEST(AutoBufferFactory, ZeroSizeRequestGivesAnEmptyBufferThatIsInUse)
{
    YXAutoBufferFactory factory(1);
    YXAutoBuffer* buffer = factory.GetAutoBuffer(0);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->m_dwSize, 0u);
    EXPECT_EQ(buffer->m_dwCapacity, 0u);
    EXPECT_EQ(buffer->m_pData, nullptr);
    EXPECT_EQ(factory.GetAutoBuffer(1), nullptr); // the only entry is out
}

TEST(AutoBufferFactory, ReleaseClearsTheVariableAndTheSameBufferComesBack)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* buffer = factory.GetAutoBuffer(16);
    YXAutoBuffer* const first = buffer;
    std::memcpy(buffer->m_pData, "0123456789abcdef", 16);
    factory.ReleaseAutoBuffer(buffer);
    EXPECT_EQ(buffer, nullptr);
    YXAutoBuffer* again = factory.GetAutoBuffer(4);
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->m_dwSize, 4u);
    EXPECT_EQ(std::memcmp(again->m_pData, "0123", 4), 0); // a reused block is not cleared
}

TEST(AutoBufferFactory, LastGivenBackIsFirstHandedOut)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* a = factory.GetAutoBuffer(10);
    YXAutoBuffer* b = factory.GetAutoBuffer(10);
    YXAutoBuffer* const aa = a;
    YXAutoBuffer* const bb = b;
    ASSERT_NE(aa, bb);
    factory.ReleaseAutoBuffer(a);
    factory.ReleaseAutoBuffer(b);
    EXPECT_EQ(factory.GetAutoBuffer(1), bb);
    EXPECT_EQ(factory.GetAutoBuffer(1), aa);
    YXAutoBuffer* c = factory.GetAutoBuffer(1);
    EXPECT_NE(c, aa);
    EXPECT_NE(c, bb);
}

TEST(AutoBufferFactory, GrowsToTheExactRequestAndNeverShrinks)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* buffer = factory.GetAutoBuffer(1000);
    factory.ReleaseAutoBuffer(buffer);
    buffer = factory.GetAutoBuffer(10);
    EXPECT_EQ(buffer->m_dwCapacity, 1000u);
    EXPECT_EQ(buffer->m_dwSize, 10u);
    factory.ReleaseAutoBuffer(buffer);
    buffer = factory.GetAutoBuffer(1500); // doubling would give 2000
    EXPECT_EQ(buffer->m_dwCapacity, 1500u);
    EXPECT_EQ(buffer->m_dwSize, 1500u);
    factory.ReleaseAutoBuffer(buffer);
    buffer = factory.GetAutoBuffer(0);
    EXPECT_EQ(buffer->m_dwCapacity, 1500u);
    EXPECT_EQ(buffer->m_dwSize, 0u);
}

TEST(AutoBufferFactory, LimitCountsEveryEntry)
{
    YXAutoBufferFactory factory(2);
    YXAutoBuffer* a = factory.GetAutoBuffer(8);
    YXAutoBuffer* b = factory.GetAutoBuffer(8);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(factory.GetAutoBuffer(8), nullptr);
    YXAutoBuffer* const aa = a;
    factory.ReleaseAutoBuffer(a);
    EXPECT_EQ(factory.GetAutoBuffer(8), aa);
    EXPECT_EQ(factory.GetAutoBuffer(8), nullptr);
}

TEST(AutoBufferFactory, SetMaxBuffersOnlyRaisesAboveTheEntryCount)
{
    YXAutoBufferFactory fresh;
    EXPECT_EQ(fresh.GetMaxBuffers(), 0);
    fresh.SetMaxBuffers(5);
    EXPECT_EQ(fresh.GetMaxBuffers(), 5);
    fresh.SetMaxBuffers(0);
    EXPECT_EQ(fresh.GetMaxBuffers(), 5);
    fresh.SetMaxBuffers(2); // lower, but still above the 0 entries
    EXPECT_EQ(fresh.GetMaxBuffers(), 2);

    YXAutoBufferFactory three;
    for (int i = 0; i < 3; ++i) {
        ASSERT_NE(three.GetAutoBuffer(1), nullptr);
    }
    three.SetMaxBuffers(3);
    EXPECT_EQ(three.GetMaxBuffers(), 0);
    three.SetMaxBuffers(4);
    EXPECT_EQ(three.GetMaxBuffers(), 4);
    EXPECT_NE(three.GetAutoBuffer(1), nullptr);
    EXPECT_EQ(three.GetAutoBuffer(1), nullptr);
}

TEST(AutoBufferFactory, ReleaseOfAForeignBufferChangesNothing)
{
    YXAutoBufferFactory mine;
    YXAutoBufferFactory other;
    YXAutoBuffer* own = mine.GetAutoBuffer(4);
    YXAutoBuffer* foreign = other.GetAutoBuffer(4);
    YXAutoBuffer* const foreignBefore = foreign;
    mine.ReleaseAutoBuffer(foreign);
    EXPECT_EQ(foreign, foreignBefore);
    EXPECT_NE(mine.GetAutoBuffer(4), own); // own is still out, so a new buffer is made
    YXAutoBuffer* nothing = nullptr;
    mine.ReleaseAutoBuffer(nothing);
    EXPECT_EQ(nothing, nullptr);
}

TEST(AutoBufferEntry, DefaultEntryIsEmptyAndFree)
{
    const YXAutoBufferEntry entry;
    const YXAutoBuffer* buffer = entry.GetAutoBuffer();
    EXPECT_FALSE(entry.IsUsed());
    EXPECT_EQ(buffer->m_dwCapacity, 0u);
    EXPECT_EQ(buffer->m_pData, nullptr);
    EXPECT_TRUE(buffer->m_bOwner);
    EXPECT_EQ(buffer->m_dwInitialSize, 100u);
}

TEST(AutoBufferEntry, CopyHoldsTheBytesInUseInABlockOfItsOwn)
{
    YXAutoBufferEntry source;
    source.SetUsed(true);
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), std::string(100, 'x')));
    source.GetAutoBuffer()->m_dwSize = 10;
    std::memcpy(source.GetAutoBuffer()->m_pData, "abcdefghij", 10);

    const YXAutoBufferEntry copy(source);
    const YXAutoBuffer* buffer = copy.GetAutoBuffer();
    EXPECT_TRUE(copy.IsUsed());
    EXPECT_EQ(buffer->m_dwCapacity, 10u);
    EXPECT_EQ(buffer->m_dwInitialSize, 0u);
    EXPECT_TRUE(buffer->m_bOwner);
    EXPECT_NE(buffer->m_pData, source.GetAutoBuffer()->m_pData);
    source.GetAutoBuffer()->m_pData[0] = 'Z';
    EXPECT_EQ(BytesOf(buffer), "abcdefghij");

    const YXAutoBufferEntry blank;
    const YXAutoBufferEntry emptyCopy(blank);
    EXPECT_EQ(emptyCopy.GetAutoBuffer()->m_dwCapacity, 0u);
    EXPECT_EQ(emptyCopy.GetAutoBuffer()->m_pData, nullptr);
}

TEST(AutoBufferEntry, AssignmentCopiesBytesAndKeepsTheTargetsOwnSettings)
{
    YXAutoBufferEntry target;
    const YXAutoBufferEntry empty;
    target = empty; // a buffer without a block first reserves its initial size
    EXPECT_EQ(target.GetAutoBuffer()->m_dwSize, 0u);
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 100u);

    YXAutoBufferEntry source;
    source.SetUsed(true);
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), std::string(150, 'q')));
    target = source;
    EXPECT_TRUE(target.IsUsed());
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 150u); // exactly the source's size
    EXPECT_EQ(target.GetAutoBuffer()->m_dwInitialSize, 100u);
    EXPECT_EQ(BytesOf(target.GetAutoBuffer()), std::string(150, 'q'));

    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), "short"));
    target = source;
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 150u);
    EXPECT_EQ(BytesOf(target.GetAutoBuffer()), "short");
    target = target;
    EXPECT_EQ(BytesOf(target.GetAutoBuffer()), "short");
}

} // namespace
