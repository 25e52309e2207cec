#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/win32.h"

namespace {

TEST(LastError, EachThreadKeepsItsOwnUntilItsNextSet)
{
    // Starting and joining a thread are platform calls that may set the caller's value, so the two
    // threads take turns by spinning on an atomic, with no call in between.
    std::atomic<int> turn{0};
    DWORD seenAtStart = 1;
    DWORD seenByOther = 0;
    std::thread other([&] {
        seenAtStart = GetLastError();
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        turn = 1;
        while (turn != 2) {
        }
        seenByOther = GetLastError();
        turn = 3;
    });
    while (turn != 1) {
    }
    SetLastError(0xE0000001u);
    turn = 2;
    while (turn != 3) {
    }
    EXPECT_EQ(GetLastError(), 0xE0000001u);
    other.join();
    EXPECT_EQ(seenAtStart, static_cast<DWORD>(ERROR_SUCCESS)); // a new thread starts clear
    EXPECT_EQ(seenByOther, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

} // namespace
