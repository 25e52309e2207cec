// A host links every operation that the memory header declares to it: this program links the
// shared library only, as a host does, and calls each public member, so that one the library does
// not export fails the build. The one-bit accessors of the bit array are inline in the header,
// so this program does not call the library's copies; the export check reads them in the table.
#include <gtest/gtest.h>

#include <cstring>

#include <yxtools/memory.h>

namespace {

TEST(PublicMembers, MemoryFamilyLinks)
{
    YXAutoBufferFactory factory(2);
    YXAutoBuffer* buffer = factory.GetAutoBuffer(4);
    ASSERT_NE(buffer, nullptr);
    std::memcpy(buffer->m_pData, "host", 4);
    factory.SetMaxBuffers(3);
    EXPECT_EQ(factory.GetMaxBuffers(), 3);

    YXAutoBufferEntry entry;
    entry.SetUsed(true);
    YXAutoBufferEntry copy(entry);
    copy = entry;
    EXPECT_TRUE(copy.IsUsed());
    EXPECT_EQ(copy.GetAutoBuffer()->m_dwSize, 0u);

    void* block = YXHugePtr_FromBuffer(YXHUGEPTR_MOVEABLE, buffer);
    factory.ReleaseAutoBuffer(buffer);
    EXPECT_EQ(buffer, nullptr);
    block = YXHugePtr_ReAllocate(block, 8, YXHUGEPTR_MOVEABLE);
    void* copyBlock = YXHugePtr_Duplicate(block);
    EXPECT_EQ(std::memcmp(YXHugePtr_Lock(copyBlock), "host", 4), 0);
    EXPECT_EQ(YXHugePtr_GetHandle(YXHugePtr_Lock(block)), block);
    EXPECT_EQ(YXHugePtr_Flags(block) & 0xFF, 1u);
    EXPECT_FALSE(YXHugePtr_Unlock(block));
    YXHugePtr_Unlock(copyBlock);
    EXPECT_GE(YXHugePtr_Size(block), 8u);
    EXPECT_TRUE(YXHugePtr_ToBuffer(block, entry.GetAutoBuffer()));
    EXPECT_EQ(YXHugePtr_Free(copyBlock), nullptr);
    EXPECT_EQ(YXHugePtr_Free(block), nullptr);
    EXPECT_EQ(YXHugePtr_Free(YXHugePtr_Allocate(YXHUGEPTR_ZEROINIT, 1)), nullptr);

    YXBitArray bits(40);
    YXBitArray other(bits);
    other = bits;
    other.SetValue(false);
    other.SetValue(3, true);
    EXPECT_TRUE(other[3] && other.IsOneSet() && other.IsOk());
    EXPECT_TRUE(other.SetRange(64));
    EXPECT_EQ(other.GetRange(), 64u);
    EXPECT_EQ(other.GetByteSize(), 16u);
    EXPECT_EQ(other.GetBitArray()[0], 8u);
}

} // namespace
