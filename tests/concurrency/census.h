// What a process holds, for the tests that check that nothing is left behind: its threads, its
// open mutex and thread handles, and on POSIX its file descriptors.
#ifndef YXTOOLS_TESTS_CONCURRENCY_CENSUS_H
#define YXTOOLS_TESTS_CONCURRENCY_CENSUS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#include <tlhelp32.h>
#else
#include <filesystem>

#include "platform/posix/sync/kernel_objects.h"
#endif

namespace census {

inline std::size_t Threads()
{
#if defined(_WIN32)
    std::size_t count = 0;
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Thread32First(snapshot, &entry); more != FALSE; more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
#else
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
#endif
}

inline std::size_t Handles()
{
#if defined(_WIN32)
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
#else
    return yx::platform::sync::LiveHandles();
#endif
}

inline std::size_t Descriptors()
{
#if defined(_WIN32)
    return 0; // descriptors are handles there
#else
    const std::filesystem::directory_iterator fds("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(fds), end(fds)));
#endif
}

// A thread that has been waited for may still be on its way out of the system for a moment.
inline bool Settles(const std::function<bool()>& done)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!done()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// A first thread, started and joined once, so that helper threads a runtime starts with the
// first thread of the process (ThreadSanitizer's) are there before anything is counted.
inline bool FirstThreadStarted()
{
    static const bool started = [] {
        std::thread([] {}).join();
        return true;
    }();
    return started;
}

// The counts at its construction, to compare with at the end of a test.
struct Snapshot {
    bool ready = FirstThreadStarted();
    std::size_t threads = Threads();
    std::size_t handles = Handles();
    std::size_t descriptors = Descriptors();

    bool Restored() const
    {
        return Settles([this] { return Threads() == threads && Handles() == handles && Descriptors() == descriptors; });
    }
};

inline long long MillisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
}

} // namespace census

#endif
