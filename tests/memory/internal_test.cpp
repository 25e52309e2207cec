// Reserve's growth, and what the memory tools do when the heap refuses: no buffer ever states a
// capacity that its block does not have, and a failed request leaves things as they were.
#include <gtest/gtest.h>

#include <string>

#include <yxtools/memory.h>

#include "buffer_fill.h"
#include "memory/autobuffer_internal.h"
#include "platform/heap.h"

namespace {

// Reserve doubles a buffer that has a block, where the factory and Assign grow to the exact size.
TEST(AutoBufferReserve, DoublesUntilTheRequestFits)
{
    const struct {
        unsigned long capacity;
        unsigned long request;
        unsigned long expected;
    } cases[] = {{100, 300, 400}, {100, 200, 200}, {100, 201, 400}, {0, 300, 300}, {100, 50, 100}, {1, 1000, 1024}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.capacity << " -> " << c.request);
        YXAutoBufferEntry entry;
        YXAutoBuffer* buffer = entry.GetAutoBuffer();
        ASSERT_TRUE(YXAutoBufferAccess::Reserve(*buffer, c.capacity));
        EXPECT_TRUE(YXAutoBufferAccess::Reserve(*buffer, c.request));
        EXPECT_EQ(buffer->m_dwCapacity, c.expected);
    }
    YXAutoBufferEntry entry;
    ASSERT_TRUE(FillBuffer(entry.GetAutoBuffer(), "twelve bytes"));
    EXPECT_TRUE(YXAutoBufferAccess::Reserve(*entry.GetAutoBuffer(), 13));
    EXPECT_EQ(BytesOf(entry.GetAutoBuffer()), "twelve bytes");
}

// For the length of a scope, `after` more allocations succeed and every later one fails.
struct HeapFailure {
    explicit HeapFailure(long after = 0) { yxplatform::FailHeapAllocationsAfter(after); }
    ~HeapFailure() { yxplatform::FailHeapAllocationsAfter(-1); }
};

TEST(AllocationFailure, FactoryRequestThatFailsLeavesTheFactoryAsItWas)
{
    for (long after : {0L, 1L}) { // a new entry fails on itself, then on its block
        YXAutoBufferFactory factory;
        {
            const HeapFailure failure(after);
            EXPECT_EQ(factory.GetAutoBuffer(32), nullptr);
        }
        factory.SetMaxBuffers(1); // taken only while the factory has no entry
        EXPECT_EQ(factory.GetMaxBuffers(), 1) << after;
    }

    YXAutoBufferFactory factory;
    YXAutoBuffer* a = factory.GetAutoBuffer(10);
    YXAutoBuffer* b = factory.GetAutoBuffer(20);
    YXAutoBuffer* const aa = a;
    YXAutoBuffer* const bb = b;
    factory.ReleaseAutoBuffer(a);
    factory.ReleaseAutoBuffer(b);
    {
        const HeapFailure failure;
        EXPECT_EQ(factory.GetAutoBuffer(1000), nullptr);
    }
    EXPECT_EQ(bb->m_dwCapacity, 20u);
    EXPECT_EQ(factory.GetAutoBuffer(5), bb); // still first in line, and free
    EXPECT_EQ(factory.GetAutoBuffer(5), aa);
}

TEST(AllocationFailure, ReserveAndToBufferKeepTheBufferAsItWas)
{
    void* block = YXHugePtr_Allocate(YXHUGEPTR_MOVEABLE, 100);
    YXAutoBufferEntry entry;
    YXAutoBuffer* buffer = entry.GetAutoBuffer();
    ASSERT_TRUE(FillBuffer(buffer, "content"));
    unsigned char* const before = buffer->m_pData;
    const HeapFailure failure;
    EXPECT_FALSE(YXAutoBufferAccess::Reserve(*buffer, 100));
    EXPECT_FALSE(YXHugePtr_ToBuffer(block, buffer));
    EXPECT_EQ(buffer->m_dwCapacity, 7u);
    EXPECT_EQ(buffer->m_pData, before);
    EXPECT_EQ(BytesOf(buffer), "content");
    YXHugePtr_Free(block);
}

TEST(AllocationFailure, AssignLeavesAnEmptyBufferWithAnHonestCapacity)
{
    YXAutoBufferEntry source;
    ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), std::string(200, 's')));
    YXAutoBufferEntry blockless; // fails on reserving its initial size
    YXAutoBufferEntry small;     // has a block, fails on growing to the source's size
    ASSERT_TRUE(FillBuffer(small.GetAutoBuffer(), "tiny"));
    const HeapFailure failure;
    EXPECT_FALSE(YXAutoBufferAccess::Assign(*blockless.GetAutoBuffer(), *source.GetAutoBuffer()));
    EXPECT_FALSE(YXAutoBufferAccess::Assign(*small.GetAutoBuffer(), *source.GetAutoBuffer()));
    const YXAutoBufferEntry copy(source); // a constructor cannot report: the copy comes out empty
    EXPECT_EQ(blockless.GetAutoBuffer()->m_dwCapacity, 0u);
    EXPECT_EQ(small.GetAutoBuffer()->m_dwCapacity, 4u);
    EXPECT_EQ(small.GetAutoBuffer()->m_dwSize, 0u);
    EXPECT_EQ(copy.GetAutoBuffer()->m_dwCapacity, 0u);
    EXPECT_EQ(copy.GetAutoBuffer()->m_dwSize, 0u);
}

TEST(AllocationFailure, BitArrayStaysAsItWas)
{
    YXBitArray bits(10);
    bits.SetValue(3UL, true);
    const YXBitArray wide(1000);
    const HeapFailure failure;
    EXPECT_FALSE(YXBitArray(100).IsOk());
    EXPECT_FALSE(bits.SetRange(100));
    EXPECT_EQ(bits.GetRange(), 10u);
    EXPECT_TRUE(bits.SetRange(20)); // within the word held: no allocation
    bits = wide;                    // cannot take the wider range: not copied at all
    EXPECT_EQ(bits.GetRange(), 20u);
    EXPECT_TRUE(bits[3]);
}

} // namespace
