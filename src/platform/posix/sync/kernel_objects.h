// Kernel objects of the stand-in (mutexes and threads) and the table of their handles.
#ifndef YXTOOLS_PLATFORM_POSIX_SYNC_KERNEL_OBJECTS_H
#define YXTOOLS_PLATFORM_POSIX_SYNC_KERNEL_OBJECTS_H

#include <algorithm>
#include <chrono>
#include <csignal>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>

#include "platform/win32.h"

namespace yx::platform::sync {

// Something a thread can wait for. Wait answers WAIT_OBJECT_0, WAIT_ABANDONED or WAIT_TIMEOUT.
class KernelObject {
public:
    KernelObject() = default;
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;
    virtual ~KernelObject() = default;
    virtual DWORD Wait(DWORD dwMilliseconds) = 0;
};

// The object of a live handle, or null with ERROR_INVALID_HANDLE.
std::shared_ptr<KernelObject> Lookup(HANDLE handle);
HANDLE AddHandle(std::shared_ptr<KernelObject> object);
// True when the handle was a live kernel-object handle and is now closed.
bool CloseKernelHandle(HANDLE handle);
// Handles of kernel objects that are open, for the tests' leak counts.
std::size_t LiveHandles();

// True while the calling thread is one of ours that TerminateThread is ending.
bool TerminationPending();

// The signal by which TerminateThread ends one of the stand-in's threads.
int TerminateSignal();

// Runs a stand-in call with termination held back, so that a thread that is being terminated
// never stops inside the stand-in with one of its locks held. The termination, if one came,
// takes effect when the call is over.
template <class Call>
auto Uncancellable(Call call)
{
    sigset_t block;
    sigset_t previous;
    sigemptyset(&block);
    sigaddset(&block, TerminateSignal());
    pthread_sigmask(SIG_BLOCK, &block, &previous);
    auto result = call();
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return result;
}

enum class WaitEnd { Ready, TimedOut, Terminated };

// Waits on `wake` under `lock` until `ready` holds or the time runs out; INFINITE has no limit.
// The wait is cut into slices so that a thread being terminated leaves it within one slice.
template <class Ready>
WaitEnd WaitFor(std::condition_variable& wake, std::unique_lock<std::mutex>& lock, DWORD dwMilliseconds, Ready ready)
{
    using Clock = std::chrono::steady_clock;
    constexpr auto slice = std::chrono::milliseconds(20);
    const auto deadline = Clock::now() + std::chrono::milliseconds(dwMilliseconds);
    while (!ready()) {
        if (TerminationPending()) {
            return WaitEnd::Terminated;
        }
        auto next = Clock::now() + slice;
        if (dwMilliseconds != INFINITE) {
            if (Clock::now() >= deadline) {
                return WaitEnd::TimedOut;
            }
            next = std::min(next, deadline);
        }
        wake.wait_until(lock, next);
    }
    return WaitEnd::Ready;
}

} // namespace yx::platform::sync

#endif
