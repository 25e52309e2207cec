// Contract tests of critical sections, mutexes and threads: Win32's answers, which the stand-in
// must give as Windows does.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/win32.h"

namespace {

using Clock = std::chrono::steady_clock;

long long Since(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

HANDLE BogusHandle()
{
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(0x7FF0)); // NOLINT(performance-no-int-to-ptr)
}

TEST(SyncContract, CriticalSectionIsRecursiveAndExcludesOtherThreads)
{
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    EnterCriticalSection(&section);
    EXPECT_NE(TryEnterCriticalSection(&section), FALSE); // the owner enters again
    bool other = true;
    std::thread([&] { other = TryEnterCriticalSection(&section) != FALSE; }).join();
    EXPECT_FALSE(other);
    LeaveCriticalSection(&section);
    std::thread([&] { other = TryEnterCriticalSection(&section) != FALSE; }).join();
    EXPECT_FALSE(other); // still held once
    LeaveCriticalSection(&section);
    std::thread([&] {
        other = TryEnterCriticalSection(&section) != FALSE;
        LeaveCriticalSection(&section);
    }).join();
    EXPECT_TRUE(other);
    DeleteCriticalSection(&section);
}

TEST(SyncContract, MutexOwnerRules)
{
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    ASSERT_NE(mutex, nullptr);
    SetLastError(12345);
    EXPECT_EQ(ReleaseMutex(mutex), FALSE); // nobody owns it
    EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0); // recursive
    std::thread([&] {
        const auto start = Clock::now();
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
        EXPECT_LT(Since(start), 100);
        EXPECT_EQ(WaitForSingleObject(mutex, 200), WAIT_TIMEOUT);
        EXPECT_GE(Since(start), 190);
        SetLastError(0);
        EXPECT_EQ(ReleaseMutex(mutex), FALSE);
        EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
    }).join();
    EXPECT_NE(ReleaseMutex(mutex), FALSE);
    EXPECT_NE(ReleaseMutex(mutex), FALSE);
    EXPECT_EQ(ReleaseMutex(mutex), FALSE);
    EXPECT_NE(CloseHandle(mutex), FALSE);

    HANDLE owned = CreateMutexA(nullptr, TRUE, nullptr);
    std::thread([&] { EXPECT_EQ(WaitForSingleObject(owned, 0), WAIT_TIMEOUT); }).join();
    EXPECT_NE(ReleaseMutex(owned), FALSE);
    EXPECT_NE(CloseHandle(owned), FALSE);
}

TEST(SyncContract, MutexWhoseOwnerEndedIsAbandonedOnce)
{
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    std::thread([&] { EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0); }).join();
    EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0); // held now, counted
    EXPECT_NE(ReleaseMutex(mutex), FALSE);
    EXPECT_NE(ReleaseMutex(mutex), FALSE);
    std::thread([&] {
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        ReleaseMutex(mutex);
    }).join();
    CloseHandle(mutex);
}

TEST(SyncContract, DuplicateHandleReachesTheSameObjectAndEachHandleClosesOnce)
{
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    HANDLE copy = nullptr;
    ASSERT_NE(DuplicateHandle(GetCurrentProcess(), mutex, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS),
              FALSE);
    EXPECT_NE(copy, mutex);
    EXPECT_EQ(WaitForSingleObject(copy, 0), WAIT_OBJECT_0);
    EXPECT_NE(CloseHandle(mutex), FALSE);
    std::thread([&] { EXPECT_EQ(WaitForSingleObject(copy, 0), WAIT_TIMEOUT); }).join(); // still held
    EXPECT_NE(ReleaseMutex(copy), FALSE);
    EXPECT_NE(CloseHandle(copy), FALSE);
}

TEST(SyncContract, DeadHandlesAreRefused)
{
    SetLastError(0);
    EXPECT_EQ(WaitForSingleObject(BogusHandle(), 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0);
    EXPECT_EQ(ReleaseMutex(BogusHandle()), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0);
    EXPECT_EQ(SuspendThread(BogusHandle()), static_cast<DWORD>(-1));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0);
    EXPECT_EQ(ResumeThread(BogusHandle()), static_cast<DWORD>(-1));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0);
    EXPECT_EQ(TerminateThread(BogusHandle(), 3), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0);
    EXPECT_EQ(CloseHandle(BogusHandle()), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

std::atomic<long> g_steps{0};
std::atomic<bool> g_stop{false};

DWORD WINAPI Counter(LPVOID parameter)
{
    while (!g_stop) {
        g_steps.fetch_add(1, std::memory_order_relaxed);
    }
    return static_cast<DWORD>(reinterpret_cast<std::intptr_t>(parameter));
}

DWORD WINAPI OwnId(LPVOID parameter)
{
    *static_cast<DWORD*>(parameter) = GetCurrentThreadId();
    return 0;
}

TEST(SyncContract, ThreadRunsReportsItsIdAndItsExitCode)
{
    EXPECT_EQ(GetCurrentThread(), reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-2)));
    EXPECT_NE(GetCurrentThreadId(), 0u);
    DWORD seen = 0;
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, OwnId, &seen, 0, &id);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, 5000), WAIT_OBJECT_0);
    EXPECT_EQ(seen, id);
    EXPECT_NE(id, GetCurrentThreadId());
    EXPECT_EQ(GetThreadId(thread), id);
    DWORD code = 99;
    EXPECT_NE(GetExitCodeThread(thread, &code), FALSE);
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0); // stays signalled
    EXPECT_NE(CloseHandle(thread), FALSE);
    SetLastError(0);
    EXPECT_EQ(CloseHandle(thread), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(SyncContract, SuspendCountsAndReallyStopsTheThread)
{
    g_stop = false;
    g_steps = 0;
    HANDLE thread =
        CreateThread(nullptr, 0, Counter, reinterpret_cast<LPVOID>(std::intptr_t{4}), CREATE_SUSPENDED, nullptr);
    ASSERT_NE(thread, nullptr);
    Sleep(50);
    EXPECT_EQ(g_steps, 0); // made suspended: not started
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    EXPECT_EQ(code, STILL_ACTIVE);
    EXPECT_EQ(ResumeThread(thread), 1u);
    while (g_steps == 0) {
        Sleep(1);
    }
    EXPECT_EQ(SuspendThread(thread), 0u);
    EXPECT_EQ(SuspendThread(thread), 1u);
    const long steps = g_steps;
    Sleep(100);
    EXPECT_EQ(g_steps, steps);
    EXPECT_EQ(ResumeThread(thread), 2u);
    Sleep(50);
    EXPECT_EQ(g_steps, steps);
    EXPECT_EQ(ResumeThread(thread), 1u);
    EXPECT_EQ(ResumeThread(thread), 0u); // not suspended: nothing to do
    g_stop = true;
    EXPECT_EQ(WaitForSingleObject(thread, 5000), WAIT_OBJECT_0);
    GetExitCodeThread(thread, &code);
    EXPECT_EQ(code, 4u);
    CloseHandle(thread);
}

TEST(SyncContract, TerminateEndsASpinningThreadWithTheGivenCode)
{
    for (const DWORD flags : {DWORD{0}, DWORD{CREATE_SUSPENDED}}) {
        SCOPED_TRACE(flags);
        g_stop = false;
        HANDLE thread = CreateThread(nullptr, 0, Counter, nullptr, flags, nullptr);
        ASSERT_NE(thread, nullptr);
        Sleep(20);
        EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
        EXPECT_NE(TerminateThread(thread, 42), FALSE);
        EXPECT_EQ(WaitForSingleObject(thread, 5000), WAIT_OBJECT_0);
        DWORD code = 0;
        EXPECT_NE(GetExitCodeThread(thread, &code), FALSE);
        EXPECT_EQ(code, 42u);
        EXPECT_NE(TerminateThread(thread, 43), FALSE); // ended already: Wine takes the new code
        GetExitCodeThread(thread, &code);
        EXPECT_EQ(code, 43u);
        CloseHandle(thread);
    }
}

TEST(SyncContract, TerminateEndsASuspendedThread)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "under ThreadSanitizer the terminate signal does not reach a thread parked by the "
                    "suspend signal";
#endif
    g_stop = false;
    HANDLE thread = CreateThread(nullptr, 0, Counter, nullptr, 0, nullptr);
    Sleep(20);
    EXPECT_EQ(SuspendThread(thread), 0u);
    EXPECT_NE(TerminateThread(thread, 7), FALSE);
    EXPECT_EQ(WaitForSingleObject(thread, 5000), WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    EXPECT_EQ(code, 7u);
    CloseHandle(thread);
}

DWORD WINAPI HoldAndWait(LPVOID parameter)
{
    WaitForSingleObject(static_cast<HANDLE>(parameter), INFINITE);
    for (;;) {
        Sleep(1);
    }
}

TEST(SyncContract, ClosingARunningThreadsHandleLeavesItRunningAndTerminateAbandonsItsMutex)
{
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    HANDLE thread = CreateThread(nullptr, 0, HoldAndWait, mutex, 0, nullptr);
    HANDLE second = nullptr;
    DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &second, 0, FALSE, DUPLICATE_SAME_ACCESS);
    EXPECT_NE(CloseHandle(thread), FALSE);
    Sleep(50);
    EXPECT_EQ(WaitForSingleObject(second, 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_NE(TerminateThread(second, 1), FALSE);
    EXPECT_EQ(WaitForSingleObject(second, 5000), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
    ReleaseMutex(mutex);
    CloseHandle(second);
    CloseHandle(mutex);
}

} // namespace
