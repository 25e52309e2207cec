#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {

std::string Read(HGLOBAL block, SIZE_T count)
{
    const auto* address = static_cast<const char*>(GlobalLock(block));
    std::string bytes(address, count);
    GlobalUnlock(block);
    return bytes;
}

TEST(GlobalMemory, MovableBlockCountsLocksInTheLowByteOfItsFlags)
{
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 16);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalSize(block), 16u);
    EXPECT_EQ(GlobalFlags(block), 0u);
    void* address = GlobalLock(block);
    ASSERT_NE(address, nullptr);
    EXPECT_NE(address, block); // the handle is not the address
    EXPECT_EQ(GlobalHandle(address), block);
    EXPECT_EQ(GlobalLock(block), address);
    EXPECT_EQ(GlobalFlags(block) & GMEM_LOCKCOUNT, 2u);

    SetLastError(12345);
    EXPECT_TRUE(GlobalUnlock(block)); // still locked once
    EXPECT_EQ(GlobalFlags(block), 1u);
    EXPECT_FALSE(GlobalUnlock(block)); // unlocked for good
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(NO_ERROR));
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_LOCKED));
    EXPECT_EQ(GlobalFlags(block), 0u);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalMemory, FixedBlockIsItsOwnAddressAndNeverCountsLocks)
{
    HGLOBAL block = GlobalAlloc(GMEM_FIXED, 16);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalLock(block), block);
    EXPECT_EQ(GlobalFlags(block), 0u);
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_EQ(GlobalHandle(block), block);
    EXPECT_EQ(GlobalSize(block), 16u);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalMemory, ZeroInitClearsTheBlockAndWhatAReallocationAdds)
{
    for (UINT kind : {GMEM_FIXED, GMEM_MOVEABLE}) {
        SCOPED_TRACE(kind);
        HGLOBAL block = GlobalAlloc(kind | GMEM_ZEROINIT, 4000);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(Read(block, 4000), std::string(4000, '\0'));
        std::memset(GlobalLock(block), 0xAB, 4000);
        GlobalUnlock(block);
        block = GlobalReAlloc(block, 100000, GMEM_MOVEABLE | GMEM_ZEROINIT);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(GlobalSize(block), 100000u);
        const std::string bytes = Read(block, 100000);
        EXPECT_EQ(bytes.substr(0, 4000), std::string(4000, '\xAB'));
        EXPECT_EQ(bytes.substr(4000), std::string(96000, '\0'));
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST(GlobalMemory, MovableBlockKeepsItsHandleWhenItMoves)
{
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 8);
    std::memcpy(GlobalLock(block), "movable!", 8);
    GlobalUnlock(block);
    EXPECT_EQ(GlobalReAlloc(block, 200000, GMEM_MOVEABLE), block);
    EXPECT_EQ(GlobalSize(block), 200000u);
    EXPECT_EQ(Read(block, 8), "movable!");
    EXPECT_EQ(GlobalReAlloc(block, 4, GMEM_MOVEABLE), block);
    EXPECT_EQ(GlobalSize(block), 4u);
    EXPECT_EQ(Read(block, 4), "mova");
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalMemory, EmptyMovableBlockIsDiscarded)
{
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 0);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalSize(block), 0u);
    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_DISCARDED));
    SetLastError(0);
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DISCARDED));

    EXPECT_EQ(GlobalReAlloc(block, 10, GMEM_MOVEABLE | GMEM_ZEROINIT), block);
    EXPECT_EQ(GlobalFlags(block), 0u);
    EXPECT_EQ(Read(block, 10), std::string(10, '\0'));
    EXPECT_EQ(GlobalReAlloc(block, 0, GMEM_MOVEABLE), block); // discards it again
    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_DISCARDED));
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalMemory, HandlesThatAreNoBlocksAreRefused)
{
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    SetLastError(0);
    EXPECT_EQ(GlobalHandle(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 32);
    auto* address = static_cast<char*>(GlobalLock(block));
    SetLastError(0);
    EXPECT_EQ(GlobalHandle(address + 1), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(GlobalFree(block), nullptr); // locked or not

    SetLastError(0);
    EXPECT_EQ(GlobalFree(block), block);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    SetLastError(0);
    EXPECT_EQ(GlobalSize(block), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_INVALID_HANDLE));
    SetLastError(0);
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(GlobalMemory, RequestBeyondAnyHeapFails)
{
    for (UINT kind : {GMEM_FIXED, GMEM_MOVEABLE}) {
        SCOPED_TRACE(kind);
        SetLastError(0);
        EXPECT_EQ(GlobalAlloc(kind, static_cast<SIZE_T>(1) << 62), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    }
}

} // namespace
