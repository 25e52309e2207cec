#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <yxtools/memory.h>

#include "buffer_fill.h"

namespace {

// A movable block of `bytes`, unlocked.
void* MovableWith(const std::string& bytes)
{
    void* block = YXHugePtr_Allocate(YXHUGEPTR_MOVEABLE, static_cast<unsigned long>(bytes.size()));
    std::memcpy(YXHugePtr_Lock(block), bytes.data(), bytes.size());
    YXHugePtr_Unlock(block);
    return block;
}

std::string BytesOfBlock(void* block)
{
    const unsigned long size = YXHugePtr_Size(block);
    const std::string bytes(static_cast<const char*>(YXHugePtr_Lock(block)), size);
    YXHugePtr_Unlock(block);
    return bytes;
}

// A locked movable block has an address other than its handle and counts its lock; a fixed
// block is its own address and counts none.
bool IsMovable(void* block)
{
    void* address = YXHugePtr_Lock(block);
    const bool movable = address != block && YXHugePtr_Flags(block) == 1;
    YXHugePtr_Unlock(block);
    return movable;
}

TEST(HugePtr, KindsChooseTheBlock)
{
    const struct {
        unsigned kind;
        bool movable;
    } cases[] = {{0, false}, {YXHUGEPTR_ZEROINIT, true}, {YXHUGEPTR_MOVEABLE, true}, {3, false}, {100, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        void* block = YXHugePtr_Allocate(c.kind, 64);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(YXHugePtr_Size(block), 64u);
        EXPECT_EQ(IsMovable(block), c.movable);
        void* address = YXHugePtr_Lock(block);
        EXPECT_EQ(YXHugePtr_GetHandle(address), block);
        YXHugePtr_Unlock(block);
        EXPECT_EQ(YXHugePtr_Free(block), nullptr);
    }
    void* cleared = YXHugePtr_Allocate(YXHUGEPTR_ZEROINIT, 4096);
    EXPECT_EQ(BytesOfBlock(cleared), std::string(4096, '\0'));
    YXHugePtr_Free(cleared);
}

TEST(HugePtr, DuplicateOfNullIsNull)
{
    EXPECT_EQ(YXHugePtr_Duplicate(nullptr), nullptr);
}

// The source's lock count picks the copy's kind, and the copy leaves that count as it was.
TEST(HugePtr, DuplicateCopiesBytesAndLeavesTheLockCount)
{
    using namespace std::string_literals;
    const std::string bytes = "a block \0 with every kind of byte \xff\x80"s;
    const struct {
        unsigned locks;
        bool movableCopy;
    } cases[] = {{0, false}, {1, true}, {2, true}, {3, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.locks);
        void* source = MovableWith(bytes);
        for (unsigned i = 0; i < c.locks; ++i) {
            YXHugePtr_Lock(source);
        }
        void* copy = YXHugePtr_Duplicate(source);
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy, source);
        EXPECT_EQ(YXHugePtr_Flags(source), c.locks);
        EXPECT_EQ(YXHugePtr_Flags(copy), 0u);
        EXPECT_EQ(IsMovable(copy), c.movableCopy);
        EXPECT_EQ(BytesOfBlock(copy), bytes);
        for (unsigned i = 0; i < c.locks; ++i) {
            YXHugePtr_Unlock(source);
        }
        YXHugePtr_Free(copy);
        YXHugePtr_Free(source);
    }
    void* fixed = YXHugePtr_Allocate(0, 3);
    std::memcpy(fixed, "xyz", 3);
    void* copy = YXHugePtr_Duplicate(fixed);
    EXPECT_FALSE(IsMovable(copy));
    EXPECT_EQ(BytesOfBlock(copy), "xyz");
    YXHugePtr_Free(copy);
    YXHugePtr_Free(fixed);
}

TEST(HugePtr, ToBufferOfNullLeavesTheBufferAlone)
{
    YXAutoBufferEntry entry;
    ASSERT_TRUE(FillBuffer(entry.GetAutoBuffer(), "kept"));
    EXPECT_FALSE(YXHugePtr_ToBuffer(nullptr, entry.GetAutoBuffer()));
    EXPECT_EQ(BytesOf(entry.GetAutoBuffer()), "kept");
}

TEST(HugePtr, ToBufferGrowsOnlyToTheBlocksExactSize)
{
    void* block = MovableWith("0123456789");
    YXAutoBufferFactory factory;

    YXAutoBuffer* roomy = factory.GetAutoBuffer(100);
    unsigned char* const roomyData = roomy->m_pData;
    ASSERT_TRUE(YXHugePtr_ToBuffer(block, roomy));
    EXPECT_EQ(roomy->m_dwCapacity, 100u);
    EXPECT_EQ(roomy->m_dwSize, 10u);
    EXPECT_EQ(roomy->m_pData, roomyData);
    EXPECT_EQ(BytesOf(roomy), "0123456789");

    YXAutoBuffer* small = factory.GetAutoBuffer(4);
    ASSERT_TRUE(YXHugePtr_ToBuffer(block, small));
    EXPECT_EQ(small->m_dwCapacity, 10u);
    EXPECT_EQ(small->m_dwSize, 10u);
    EXPECT_EQ(BytesOf(small), "0123456789");
    EXPECT_EQ(YXHugePtr_Size(block), 10u); // the block stays the caller's
    YXHugePtr_Free(block);

    void* empty = YXHugePtr_Allocate(YXHUGEPTR_MOVEABLE, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_TRUE(YXHugePtr_ToBuffer(empty, small));
    EXPECT_EQ(small->m_dwSize, 0u);
    EXPECT_EQ(small->m_dwCapacity, 10u);
    YXHugePtr_Free(empty);
}

TEST(HugePtr, FromBufferAndBackIsByteExact)
{
    std::string every;
    for (int i = 0; i < 256; ++i) {
        every.push_back(static_cast<char>(i));
    }
    const std::string contents[] = {std::string(1, '\0'), every, every + every + "tail"};
    const unsigned kinds[] = {0, YXHUGEPTR_ZEROINIT, YXHUGEPTR_MOVEABLE};
    for (const std::string& bytes : contents) {
        for (unsigned kind : kinds) {
            SCOPED_TRACE(testing::Message() << "kind " << kind << ", " << bytes.size() << " bytes");
            YXAutoBufferEntry source;
            ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), bytes));
            void* block = YXHugePtr_FromBuffer(kind, source.GetAutoBuffer());
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(YXHugePtr_Size(block), bytes.size());
            EXPECT_EQ(YXHugePtr_Flags(block), 0u); // left unlocked
            YXAutoBufferEntry target;
            ASSERT_TRUE(YXHugePtr_ToBuffer(block, target.GetAutoBuffer()));
            EXPECT_EQ(BytesOf(target.GetAutoBuffer()), bytes);
            YXHugePtr_Free(block);
        }
    }
    const YXAutoBufferEntry empty;
    void* block = YXHugePtr_FromBuffer(YXHUGEPTR_MOVEABLE, empty.GetAutoBuffer());
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(YXHugePtr_Size(block), 0u);
    YXHugePtr_Free(block);
}

} // namespace
