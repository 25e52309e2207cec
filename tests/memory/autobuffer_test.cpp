#include <gtest/gtest.h>

#include <string>

#include <yxtools/memory.h>

#include "buffer_fill.h"

namespace {

TEST(AutoBufferFactory, LastGivenBackIsFirstHandedOut)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* a = factory.GetAutoBuffer(10);
    YXAutoBuffer* b = factory.GetAutoBuffer(10);
    YXAutoBuffer* const aa = a;
    YXAutoBuffer* const bb = b;
    factory.ReleaseAutoBuffer(a);
    factory.ReleaseAutoBuffer(b);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(factory.GetAutoBuffer(1), bb);
    EXPECT_EQ(factory.GetAutoBuffer(1), aa);
}

TEST(AutoBufferFactory, GrowsToTheExactRequestAndNeverShrinks)
{
    YXAutoBufferFactory factory;
    const struct {
        unsigned long request;
        unsigned long capacity;
    } steps[] = {{1000, 1000}, {10, 1000}, {1500, 1500} /* doubling would give 2000 */, {0, 1500}};
    for (const auto& s : steps) {
        SCOPED_TRACE(s.request);
        YXAutoBuffer* buffer = factory.GetAutoBuffer(s.request);
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(buffer->m_dwCapacity, s.capacity);
        EXPECT_EQ(buffer->m_dwSize, s.request);
        factory.ReleaseAutoBuffer(buffer);
    }
}

TEST(AutoBufferFactory, LimitAndSetMaxBuffers)
{
    YXAutoBufferFactory factory(3);
    YXAutoBuffer* a = factory.GetAutoBuffer(8);
    YXAutoBuffer* const aa = a;
    ASSERT_NE(factory.GetAutoBuffer(8), nullptr);
    factory.SetMaxBuffers(2); // not above the 2 entries held: ignored
    factory.SetMaxBuffers(0);
    EXPECT_EQ(factory.GetMaxBuffers(), 3);
    ASSERT_NE(factory.GetAutoBuffer(8), nullptr);
    EXPECT_EQ(factory.GetAutoBuffer(8), nullptr);
    factory.ReleaseAutoBuffer(a);
    EXPECT_EQ(factory.GetAutoBuffer(8), aa);
    factory.SetMaxBuffers(4);
    EXPECT_NE(factory.GetAutoBuffer(1), nullptr);
    EXPECT_EQ(factory.GetAutoBuffer(1), nullptr);

    YXAutoBufferFactory fresh; // no entries yet: any value is taken, lower ones too
    fresh.SetMaxBuffers(5);
    fresh.SetMaxBuffers(1);
    EXPECT_EQ(fresh.GetMaxBuffers(), 1);
}

// A copy holds just the bytes in use; an assignment keeps the target's own settings, reserves its
// initial size when it has no block and grows to exactly the source's size.
TEST(AutoBufferEntry, CopiesAreDeep)
{
    YXAutoBufferEntry source;
    source.SetUsed(true);
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), std::string(150, 'q')));
    source.GetAutoBuffer()->m_dwSize = 10;
    const YXAutoBufferEntry copy(source);
    EXPECT_TRUE(copy.IsUsed());
    EXPECT_EQ(copy.GetAutoBuffer()->m_dwCapacity, 10u);

    YXAutoBufferEntry target;
    target = YXAutoBufferEntry();
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 100u);
    source.GetAutoBuffer()->m_dwSize = 150;
    target = source;
    EXPECT_TRUE(target.IsUsed());
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 150u);
    EXPECT_EQ(target.GetAutoBuffer()->m_dwInitialSize, 100u);

    source.GetAutoBuffer()->m_pData[0] = 'Z';
    EXPECT_EQ(BytesOf(copy.GetAutoBuffer()), std::string(10, 'q'));
    EXPECT_EQ(BytesOf(target.GetAutoBuffer()), std::string(150, 'q'));
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), "short"));
    target = source;
    target = target;
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 150u);
    EXPECT_EQ(BytesOf(target.GetAutoBuffer()), "short");
}

// Assignment to itself runs the first step as any assignment does: an entry with no block reserves
// its initial size; one with bytes keeps them.
TEST(AutoBufferEntry, SelfAssignment)
{
    YXAutoBufferEntry fresh;
    YXAutoBufferEntry& same = fresh;
    fresh = same;
    EXPECT_EQ(fresh.GetAutoBuffer()->m_dwCapacity, 100u);
    EXPECT_EQ(fresh.GetAutoBuffer()->m_dwSize, 0u);

    YXAutoBufferEntry filled;
    ASSERT_TRUE(FillBuffer(filled.GetAutoBuffer(), std::string(150, 'f')));
    YXAutoBufferEntry& alias = filled;
    filled = alias;
    EXPECT_EQ(filled.GetAutoBuffer()->m_dwCapacity, 150u);
    EXPECT_EQ(BytesOf(filled.GetAutoBuffer()), std::string(150, 'f'));
}

} // namespace
