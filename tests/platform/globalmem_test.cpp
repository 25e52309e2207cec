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
    void* address = GlobalLock(block);
    EXPECT_NE(address, block); // the handle is not the address
    EXPECT_EQ(GlobalHandle(address), block);
    EXPECT_EQ(GlobalLock(block), address);
    EXPECT_EQ(GlobalFlags(block) & GMEM_LOCKCOUNT, 2u);

    EXPECT_TRUE(GlobalUnlock(block)); // still locked once
    SetLastError(12345);
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
    EXPECT_EQ(GlobalLock(block), block);
    EXPECT_EQ(GlobalFlags(block), 0u);
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_EQ(GlobalHandle(block), block);
    EXPECT_EQ(GlobalSize(block), 16u);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalMemory, ReAllocationKeepsTheBytesAndZeroInitClearsWhatItAdds)
{
    for (UINT kind : {GMEM_FIXED, GMEM_MOVEABLE}) {
        SCOPED_TRACE(kind);
        HGLOBAL block = GlobalAlloc(kind | GMEM_ZEROINIT, 4000);
        EXPECT_EQ(Read(block, 4000), std::string(4000, '\0'));
        std::memset(GlobalLock(block), 0xAB, 4000);
        GlobalUnlock(block);
        HGLOBAL moved = GlobalReAlloc(block, 100000, GMEM_MOVEABLE | GMEM_ZEROINIT);
        EXPECT_TRUE(kind == GMEM_FIXED || moved == block); // a movable block keeps its handle
        EXPECT_EQ(GlobalSize(moved), 100000u);
        const std::string bytes = Read(moved, 100000);
        EXPECT_EQ(bytes.substr(0, 4000), std::string(4000, '\xAB'));
        EXPECT_EQ(bytes.substr(4000), std::string(96000, '\0'));
        EXPECT_EQ(GlobalFree(moved), nullptr);
    }
}

TEST(GlobalMemory, EmptyMovableBlockIsDiscarded)
{
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 0);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_DISCARDED));
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_EQ(GlobalReAlloc(block, 10, GMEM_MOVEABLE | GMEM_ZEROINIT), block);
    EXPECT_EQ(Read(block, 10), std::string(10, '\0'));
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalMemory, WhatIsNoBlockIsRefused)
{
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 32);
    auto* address = static_cast<char*>(GlobalLock(block));
    SetLastError(0);
    EXPECT_EQ(GlobalHandle(address + 1), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(GlobalFree(block), nullptr); // even while locked
    EXPECT_EQ(GlobalFree(block), block);
    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_INVALID_HANDLE));

    for (UINT kind : {GMEM_FIXED, GMEM_MOVEABLE}) {
        SetLastError(0);
        EXPECT_EQ(GlobalAlloc(kind, static_cast<SIZE_T>(1) << 62), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    }
}

} // namespace
