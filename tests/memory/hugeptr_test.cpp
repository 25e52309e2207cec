#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <yxtools/memory.h>

#include "buffer_fill.h"

namespace {

const std::string kBytes("a \0 block \xff\x80", 12);

// A locked movable block has an address other than its handle and counts its lock; a fixed
// block is its own address and counts none.
bool IsMovable(void* block)
{
    void* address = YXHugePtr_Lock(block);
    const bool movable = address != block && YXHugePtr_Flags(block) == 1;
    EXPECT_EQ(YXHugePtr_GetHandle(address), block);
    YXHugePtr_Unlock(block);
    return movable;
}

TEST(HugePtr, KindsChooseTheBlock)
{
    static const unsigned char kZeros[4096] = {};
    const struct {
        unsigned kind;
        bool movable;
    } cases[] = {{0, false}, {YXHUGEPTR_ZEROINIT, true}, {YXHUGEPTR_MOVEABLE, true}, {3, false}, {100, false}};
    for (const auto& c : cases) {
        void* block = YXHugePtr_Allocate(c.kind, sizeof kZeros);
        EXPECT_EQ(IsMovable(block), c.movable) << c.kind;
        const bool zeroed = std::memcmp(YXHugePtr_Lock(block), kZeros, sizeof kZeros) == 0;
        EXPECT_TRUE(zeroed || c.kind != YXHUGEPTR_ZEROINIT);
        YXHugePtr_Unlock(block);
        EXPECT_EQ(YXHugePtr_Free(block), nullptr);
    }
}

// The source's lock count picks the copy's kind, and the copy leaves that count as it was.
TEST(HugePtr, DuplicateCopiesBytesAndLeavesTheLockCount)
{
    EXPECT_EQ(YXHugePtr_Duplicate(nullptr), nullptr);
    YXAutoBufferEntry entry;
    ASSERT_TRUE(FillBuffer(entry.GetAutoBuffer(), kBytes));
    for (unsigned locks = 0; locks < 4; ++locks) {
        SCOPED_TRACE(locks);
        void* source = YXHugePtr_FromBuffer(YXHUGEPTR_MOVEABLE, entry.GetAutoBuffer());
        for (unsigned i = 0; i < locks; ++i) {
            YXHugePtr_Lock(source);
        }
        void* copy = YXHugePtr_Duplicate(source);
        EXPECT_EQ(YXHugePtr_Flags(source), locks);
        EXPECT_EQ(YXHugePtr_Flags(copy), 0u);
        EXPECT_EQ(IsMovable(copy), locks == 1 || locks == 2);
        ASSERT_TRUE(YXHugePtr_ToBuffer(copy, entry.GetAutoBuffer()));
        EXPECT_EQ(BytesOf(entry.GetAutoBuffer()), kBytes);
        YXHugePtr_Free(copy);
        YXHugePtr_Free(source);
    }
}

// ToBuffer grows a buffer to exactly the block's size, not by doubling, and never shrinks it.
TEST(HugePtr, FromBufferAndBackIsByteExact)
{
    YXAutoBufferFactory factory;
    YXAutoBuffer* roomy = factory.GetAutoBuffer(100);
    EXPECT_FALSE(YXHugePtr_ToBuffer(nullptr, roomy));
    EXPECT_EQ(roomy->m_dwSize, 100u);
    for (const std::string& bytes : {std::string(), kBytes, kBytes + std::string(200, '\xfe')}) {
        for (unsigned kind : {0U, 1U, 2U}) {
            if (bytes.empty() && kind == 0) {
                continue; // Windows may give a fixed block of 0 bytes a size of its own
            }
            SCOPED_TRACE(testing::Message() << "kind " << kind << ", " << bytes.size() << " bytes");
            YXAutoBufferEntry source;
            ASSERT_TRUE(FillBuffer(source.GetAutoBuffer(), bytes));
            void* block = YXHugePtr_FromBuffer(kind, source.GetAutoBuffer());
            EXPECT_EQ(YXHugePtr_Flags(block) & 0xFF, 0u); // left unlocked
            ASSERT_TRUE(YXHugePtr_ToBuffer(block, roomy));
            EXPECT_EQ(roomy->m_dwCapacity, bytes.size() > 100 ? bytes.size() : 100U);
            EXPECT_EQ(BytesOf(roomy), bytes);
            YXHugePtr_Free(block);
        }
    }
}

} // namespace
