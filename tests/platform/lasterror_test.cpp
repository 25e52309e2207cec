#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/win32.h"

namespace {

TEST(LastError, KeepsWhatWasSetUntilTheNextSet)
{
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER)); // reading does not clear it
    SetLastError(0xE0000001u);                                                // any 32-bit value
    EXPECT_EQ(GetLastError(), 0xE0000001u);
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(LastError, EachThreadHasItsOwn)
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
    SetLastError(ERROR_INVALID_PARAMETER);
    turn = 2;
    while (turn != 3) {
    }
    const DWORD seenByMain = GetLastError();
    other.join();
    EXPECT_EQ(seenAtStart, static_cast<DWORD>(ERROR_SUCCESS)); // a new thread starts clear
    EXPECT_EQ(seenByOther, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(seenByMain, static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

} // namespace
