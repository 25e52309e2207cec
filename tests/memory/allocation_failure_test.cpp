// What the memory tools do when the heap refuses: no buffer ever states a capacity that its block
// does not have, and a failed request leaves things as they were.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <yxtools/memory.h>

#include "buffer_fill.h"
#include "heap_failure.h"

namespace {

TEST(AllocationFailure, NewEntryThatCannotBeMadeLeavesTheFactoryEmpty)
{
    for (long after : {0L, 1L}) { // the entry itself, then its block
        SCOPED_TRACE(after);
        YXAutoBufferFactory factory;
        {
            const HeapFailure failure(after);
            EXPECT_EQ(factory.GetAutoBuffer(32), nullptr);
        }
        factory.SetMaxBuffers(1); // stored only while the factory has no entry
        EXPECT_EQ(factory.GetMaxBuffers(), 1);
        YXAutoBuffer* buffer = factory.GetAutoBuffer(32);
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(buffer->m_dwCapacity, 32u);
    }
}

TEST(AllocationFailure, ReusedEntryGoesBackFreeWithItsOldBlock)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* a = factory.GetAutoBuffer(10);
    YXAutoBuffer* b = factory.GetAutoBuffer(20);
    YXAutoBuffer* const aa = a;
    YXAutoBuffer* const bb = b;
    unsigned char* const bData = b->m_pData;
    factory.ReleaseAutoBuffer(a);
    factory.ReleaseAutoBuffer(b); // b is now first in line
    {
        const HeapFailure failure;
        EXPECT_EQ(factory.GetAutoBuffer(1000), nullptr);
    }
    EXPECT_EQ(bb->m_dwCapacity, 20u);
    EXPECT_EQ(bb->m_pData, bData);
    YXAutoBuffer* again = factory.GetAutoBuffer(5);
    EXPECT_EQ(again, bb); // still first in line, and free
    EXPECT_EQ(factory.GetAutoBuffer(5), aa);
}

TEST(AllocationFailure, ReserveKeepsTheBufferAsItWas)
{
    YXAutoBufferEntry entry;
    YXAutoBuffer* buffer = entry.GetAutoBuffer();
    ASSERT_TRUE(FillBuffer(buffer, "content"));
    unsigned char* const before = buffer->m_pData;
    const HeapFailure failure;
    EXPECT_FALSE(buffer->Reserve(100));
    EXPECT_EQ(buffer->m_dwCapacity, 7u);
    EXPECT_EQ(buffer->m_pData, before);
    EXPECT_EQ(BytesOf(buffer), "content");
}

TEST(AllocationFailure, AssignLeavesAnEmptyBufferWithAnHonestCapacity)
{
    YXAutoBufferEntry source;
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), std::string(200, 's')));

    YXAutoBufferEntry blockless; // fails on reserving its initial size
    YXAutoBufferEntry small;     // has a block, fails on growing to the source's size
    ASSERT_TRUE(FillBuffer(small.GetAutoBuffer(), "tiny"));
    {
        const HeapFailure failure;
        EXPECT_FALSE(blockless.GetAutoBuffer()->Assign(*source.GetAutoBuffer()));
        EXPECT_FALSE(small.GetAutoBuffer()->Assign(*source.GetAutoBuffer()));
    }
    EXPECT_EQ(blockless.GetAutoBuffer()->m_dwCapacity, 0u);
    EXPECT_EQ(blockless.GetAutoBuffer()->m_pData, nullptr);
    EXPECT_EQ(blockless.GetAutoBuffer()->m_dwSize, 0u);
    EXPECT_EQ(small.GetAutoBuffer()->m_dwCapacity, 4u);
    EXPECT_EQ(small.GetAutoBuffer()->m_dwSize, 0u);

    const HeapFailure failure;
    const YXAutoBufferEntry copy(source); // cannot report: comes out empty
    EXPECT_EQ(copy.GetAutoBuffer()->m_dwCapacity, 0u);
    EXPECT_EQ(copy.GetAutoBuffer()->m_dwSize, 0u);
}

TEST(AllocationFailure, ToBufferLeavesTheBufferAsItWas)
{
    void* block = YXHugePtr_Allocate(YXHUGEPTR_ZEROINIT, 10);
    YXAutoBufferEntry entry;
    YXAutoBuffer* buffer = entry.GetAutoBuffer();
    ASSERT_TRUE(FillBuffer(buffer, "abcd"));
    buffer->m_dwSize = 3;
    {
        const HeapFailure failure;
        EXPECT_FALSE(YXHugePtr_ToBuffer(block, buffer));
    }
    EXPECT_EQ(buffer->m_dwCapacity, 4u);
    EXPECT_EQ(BytesOf(buffer), "abc");
    EXPECT_TRUE(YXHugePtr_ToBuffer(block, buffer));
    EXPECT_EQ(BytesOf(buffer), std::string(10, '\0'));
    YXHugePtr_Free(block);
}

TEST(AllocationFailure, BitArrayStaysAsItWas)
{
    {
        const HeapFailure failure;
        const YXBitArray never(100);
        EXPECT_FALSE(never.IsOk());
        EXPECT_EQ(never.GetRange(), 0u);
    }
    YXBitArray bits(10);
    bits.SetValue(3UL, true);
    unsigned long* const words = bits.GetBitArray();
    const YXBitArray wide(1000);
    const HeapFailure failure;
    EXPECT_FALSE(bits.SetRange(100));
    EXPECT_EQ(bits.GetRange(), 10u);
    EXPECT_EQ(bits.GetBitArray(), words);
    EXPECT_TRUE(bits[3]);
    EXPECT_TRUE(bits.SetRange(20)); // within the word held: no allocation
    bits = wide;                    // cannot take the wider range: not copied at all
    EXPECT_EQ(bits.GetRange(), 20u);
    EXPECT_TRUE(bits[3]);
}

} // namespace
