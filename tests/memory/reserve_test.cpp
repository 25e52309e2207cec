#include <gtest/gtest.h>

#include <yxtools/memory.h>

#include "buffer_fill.h"

namespace {

// Reserve doubles a buffer that has a block; Assign and the factory grow to the exact size.
TEST(AutoBufferReserve, DoublesUntilTheRequestFits)
{
    const struct {
        unsigned long capacity;
        unsigned long request;
        unsigned long expected;
    } cases[] = {{100, 300, 400}, {100, 200, 200}, {100, 201, 400}, {0, 300, 300},
                 {100, 50, 100},  {0, 0, 0},       {1, 1000, 1024}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.capacity << " -> " << c.request);
        YXAutoBufferEntry entry;
        YXAutoBuffer* buffer = entry.GetAutoBuffer();
        ASSERT_TRUE(buffer->Reserve(c.capacity));
        ASSERT_EQ(buffer->m_dwCapacity, c.capacity);
        EXPECT_TRUE(buffer->Reserve(c.request));
        EXPECT_EQ(buffer->m_dwCapacity, c.expected);
        EXPECT_EQ(buffer->m_dwSize, 0u);
    }
}

TEST(AutoBufferReserve, KeepsTheBytesInUse)
{
    YXAutoBufferEntry entry;
    YXAutoBuffer* buffer = entry.GetAutoBuffer();
    ASSERT_TRUE(FillBuffer(buffer, "twelve bytes"));
    unsigned char* const before = buffer->m_pData;
    EXPECT_TRUE(buffer->Reserve(12)); // fits: nothing moves
    EXPECT_EQ(buffer->m_pData, before);
    EXPECT_TRUE(buffer->Reserve(13));
    EXPECT_EQ(buffer->m_dwCapacity, 24u);
    EXPECT_EQ(BytesOf(buffer), "twelve bytes");
}

TEST(AutoBufferAssign, ReservesTheInitialSizeBeforeCopying)
{
    YXAutoBufferEntry source;
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), "abc"));
    YXAutoBufferEntry target;
    EXPECT_TRUE(target.GetAutoBuffer()->Assign(*source.GetAutoBuffer()));
    EXPECT_EQ(target.GetAutoBuffer()->m_dwCapacity, 100u); // the initial size, not 3
    EXPECT_EQ(BytesOf(target.GetAutoBuffer()), "abc");
}

} // namespace
