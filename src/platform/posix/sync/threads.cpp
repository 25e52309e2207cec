// Threads and mutexes of the stand-in.
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <ctime>
#include <utility>
#include <vector>

#include "platform/posix/sync/kernel_objects.h"

namespace yx::platform::sync {
namespace {

int SuspendSignal()
{
    return SIGRTMIN + 4;
}

int ResumeSignal()
{
    return SIGRTMIN + 5;
}

} // namespace

int TerminateSignal()
{
    return SIGRTMIN + 6;
}

namespace {

class Mutex;

// Per thread: the mutexes it owns, so that they are abandoned when it ends. Kept in a pthread key
// whose destructor runs at every thread end, a cancelled one's included.
struct HeldMutexes {
    std::vector<std::weak_ptr<Mutex>> mutexes;
};

pthread_key_t HeldKey();

HeldMutexes& Held()
{
    auto* held = static_cast<HeldMutexes*>(pthread_getspecific(HeldKey()));
    if (held == nullptr) {
        held = new HeldMutexes;
        pthread_setspecific(HeldKey(), held);
    }
    return *held;
}

class Mutex : public KernelObject, public std::enable_shared_from_this<Mutex> {
public:
    DWORD Wait(DWORD dwMilliseconds) override
    {
        const DWORD self = GetCurrentThreadId();
        std::unique_lock<std::mutex> lock(m_lock);
        if (m_owner == self) {
            ++m_count;
            return WAIT_OBJECT_0;
        }
        switch (WaitFor(m_wake, lock, dwMilliseconds, [this] { return m_owner == 0; })) {
        case WaitEnd::TimedOut:
            return WAIT_TIMEOUT;
        case WaitEnd::Terminated:
            return WAIT_FAILED;
        case WaitEnd::Ready:
            break;
        }
        Take(self);
        if (m_abandoned) {
            m_abandoned = false;
            return WAIT_ABANDONED;
        }
        return WAIT_OBJECT_0;
    }

    // The creator's initial ownership.
    void TakeInitially()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        Take(GetCurrentThreadId());
    }

    BOOL Release()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_owner != GetCurrentThreadId()) {
            SetLastError(ERROR_NOT_OWNER);
            return FALSE;
        }
        if (--m_count == 0) {
            m_owner = 0;
            Forget();
            m_wake.notify_one();
        }
        return TRUE;
    }

    // The owner thread ends while it holds the mutex.
    void Abandon(DWORD owner)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_owner == owner) {
            m_owner = 0;
            m_count = 0;
            m_abandoned = true;
            m_wake.notify_one();
        }
    }

private:
    void Take(DWORD owner)
    {
        m_owner = owner;
        m_count = 1;
        Held().mutexes.push_back(weak_from_this());
    }

    void Forget()
    {
        auto& mutexes = Held().mutexes;
        for (auto it = mutexes.begin(); it != mutexes.end(); ++it) {
            if (it->lock().get() == this) {
                mutexes.erase(it);
                return;
            }
        }
    }

    std::mutex m_lock;
    std::condition_variable m_wake;
    DWORD m_owner = 0; // thread id, 0 when free
    DWORD m_count = 0;
    bool m_abandoned = false;
};

void AbandonHeld(void* value)
{
    auto* held = static_cast<HeldMutexes*>(value);
    // The key's value is gone by now; Abandon must not find the list again.
    const DWORD self = GetCurrentThreadId();
    for (const auto& weak : held->mutexes) {
        if (const auto mutex = weak.lock()) {
            mutex->Abandon(self);
        }
    }
    delete held;
}

pthread_key_t HeldKey()
{
    static const pthread_key_t key = [] {
        pthread_key_t created{};
        pthread_key_create(&created, AbandonHeld);
        return created;
    }();
    return key;
}

// A thread made by CreateThread. The thread itself holds a reference until it has ended, so the
// object outlives the handles that are closed while it runs.
class Thread : public KernelObject {
public:
    Thread(LPTHREAD_START_ROUTINE start, LPVOID parameter, bool suspended)
        : m_start(start), m_parameter(parameter), m_suspendCount(suspended ? 1 : 0)
    {}

    DWORD Wait(DWORD dwMilliseconds) override
    {
        std::unique_lock<std::mutex> lock(m_lock);
        switch (WaitFor(m_wake, lock, dwMilliseconds, [this] { return m_ended; })) {
        case WaitEnd::Ready:
            return WAIT_OBJECT_0;
        case WaitEnd::TimedOut:
            return WAIT_TIMEOUT;
        case WaitEnd::Terminated:
            break;
        }
        return WAIT_FAILED;
    }

    // Suspension. The first suspend signals the thread and waits until it has parked.
    DWORD Suspend()
    {
        std::unique_lock<std::mutex> lock(m_lock);
        const DWORD previous = m_suspendCount;
        if (previous >= MAXIMUM_SUSPEND_COUNT) {
            SetLastError(ERROR_SIGNAL_REFUSED);
            return static_cast<DWORD>(-1);
        }
        ++m_suspendCount;
        if (previous == 0 && m_started && !m_ended) {
            if (pthread_equal(m_thread, pthread_self())) {
                // The handler parks this very thread: Resume must find the lock free.
                lock.unlock();
                pthread_kill(m_thread, SuspendSignal());
                return previous;
            }
            m_resumed.store(false);
            pthread_kill(m_thread, SuspendSignal());
            // The handler takes no lock, so it cannot tell when it has parked: look often. A
            // thread that ends or is terminated first parks no more.
            while (!m_parked.load() && !m_ended && !m_terminating.load()) {
                m_wake.wait_for(lock, std::chrono::microseconds(200));
            }
        }
        return previous;
    }

    DWORD Resume()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        const DWORD previous = m_suspendCount;
        if (previous > 0 && --m_suspendCount == 0) {
            m_resumed.store(true);
            if (m_started && !m_ended) {
                pthread_kill(m_thread, ResumeSignal());
            }
            m_wake.notify_all(); // a thread made suspended waits for its start
        }
        return previous;
    }

    BOOL Terminate(DWORD exitCode)
    {
        std::unique_lock<std::mutex> lock(m_lock);
        if (m_ended) {
            m_exitCode = exitCode; // as Wine does: the last word counts
            return TRUE;
        }
        if (m_terminating.load()) {
            return TRUE;
        }
        m_terminating.store(true);
        m_exitCode = exitCode;
        if (!m_started) {
            // Still held at its start: it ends there without running its routine.
            m_wake.notify_all();
            return TRUE;
        }
        // A parked thread is let out of the suspend handler first, and the terminate signal finds
        // it outside: a jump out of nested handlers is what ThreadSanitizer cannot follow. It
        // parks no more once it knows it is terminated.
        if (m_parked.load()) {
            m_resumed.store(true);
            pthread_kill(m_thread, ResumeSignal());
            while (m_parked.load() && !m_ended) {
                m_wake.wait_for(lock, std::chrono::microseconds(200));
            }
        }
        pthread_kill(m_thread, TerminateSignal());
        return TRUE;
    }

    BOOL ExitCode(LPDWORD lpExitCode)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        *lpExitCode = m_ended ? m_exitCode : STILL_ACTIVE;
        return TRUE;
    }

    DWORD Id() const { return m_id.load(); }
    bool Terminating() const { return m_terminating.load(); }
    // The thread's own reference while it runs; for the pseudo-handle of the current thread.
    std::shared_ptr<Thread> Self()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_self;
    }

    // Starts the thread, which keeps `self` until it ends.
    bool Start(const std::shared_ptr<Thread>& self);

    // Called in the terminate signal's handler on the thread itself: leaves the thread's routine
    // at once, running none of its code, unless the routine is not running.
    void Leave()
    {
        if (m_inRoutine.load()) {
            m_inRoutine.store(false);
            siglongjmp(m_jump, 1);
        }
    }

    // Called in the suspend signal's handler on the thread itself: parks until resumed.
    void Park()
    {
        if (m_over.load() || m_terminating.load()) {
            return; // the thread is ending: it is too late to stop it
        }
        m_parked.store(true);
        // The waiting suspender polls m_parked under its slices; no lock may be taken here.
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        sigdelset(&mask, ResumeSignal());
        while (!m_resumed.load() && !m_terminating.load()) {
            sigsuspend(&mask);
        }
        m_parked.store(false);
    }

private:
    static void* Main(void* argument);
    void Run();
    void End(DWORD exitCode);

    LPTHREAD_START_ROUTINE m_start;
    LPVOID m_parameter;
    std::shared_ptr<Thread> m_self; // the thread's own reference, dropped at its end
    pthread_t m_thread{};
    std::atomic<DWORD> m_id{0};
    std::mutex m_lock;
    std::condition_variable m_wake;
    DWORD m_suspendCount;
    DWORD m_exitCode = STILL_ACTIVE;
    bool m_started = false; // the routine may run (past a CREATE_SUSPENDED hold)
    std::atomic<bool> m_terminating{false};
    bool m_ended = false;
    std::atomic<bool> m_over{false}; // the thread is past its routine
    std::atomic<bool> m_parked{false};
    std::atomic<bool> m_inRoutine{false}; // m_jump leads out of the routine
    sigjmp_buf m_jump{};
    std::atomic<bool> m_resumed{false};
};

thread_local Thread* t_current = nullptr;

void OnSuspendSignal(int /*signal*/)
{
    const int saved = errno;
    if (t_current != nullptr) {
        t_current->Park();
    }
    errno = saved;
}

void OnResumeSignal(int /*signal*/) {}

void OnTerminateSignal(int /*signal*/)
{
    if (t_current != nullptr) {
        t_current->Leave();
    }
}

void InstallSignals()
{
    static const bool installed = [] {
        struct sigaction action = {};
        action.sa_handler = OnResumeSignal;
        sigemptyset(&action.sa_mask);
        sigaction(ResumeSignal(), &action, nullptr);
        action.sa_handler = OnSuspendSignal;
        action.sa_flags = SA_RESTART;
        // The resume signal stays blocked in the handler except inside sigsuspend, so that one
        // sent between the test and the sleep is not lost.
        sigaddset(&action.sa_mask, ResumeSignal());
        sigaction(SuspendSignal(), &action, nullptr);
        action.sa_handler = OnTerminateSignal;
        action.sa_flags = 0;
        sigemptyset(&action.sa_mask);
        sigaction(TerminateSignal(), &action, nullptr);
        return true;
    }();
    (void)installed;
}

bool Thread::Start(const std::shared_ptr<Thread>& self)
{
    InstallSignals();
    m_self = self;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    // The new thread must not see m_thread before it is set: it waits for m_lock.
    std::unique_lock<std::mutex> lock(m_lock);
    const int error = pthread_create(&m_thread, &attributes, Main, this);
    pthread_attr_destroy(&attributes);
    if (error != 0) {
        m_self.reset();
        return false;
    }
    if (m_suspendCount == 0) {
        m_started = true;
    }
    return true;
}

void* Thread::Main(void* argument)
{
    static_cast<Thread*>(argument)->Run();
    return nullptr;
}

void Thread::Run()
{
    t_current = this;
    // The thread was made inside CreateThread, which holds the terminate signal back.
    sigset_t terminate;
    sigemptyset(&terminate);
    sigaddset(&terminate, TerminateSignal());
    pthread_sigmask(SIG_UNBLOCK, &terminate, nullptr);
    m_id.store(GetCurrentThreadId());
    // Runs at the end of the routine and when a cancellation unwinds the thread.
    struct Ending {
        Thread& thread;
        DWORD exitCode = 0;
        ~Ending() { thread.End(exitCode); }
    } ending{*this};
    {
        std::unique_lock<std::mutex> lock(m_lock);
        m_wake.notify_all();
        m_wake.wait(lock, [this] { return m_suspendCount == 0 || m_terminating.load(); });
        m_started = true;
        if (m_terminating.load()) {
            return;
        }
    }
    // From here on TerminateThread ends the thread wherever it is, as on Windows: its signal jumps
    // back here, past the routine's frames, whose destructors do not run. The stand-in's own calls
    // hold the signal back while they run, so that none of their locks stays held.
    if (sigsetjmp(m_jump, 1) == 0) {
        m_inRoutine.store(true);
        if (m_terminating.load()) {
            return; // terminated just before: the signal may have come too early to jump
        }
        const DWORD result = m_start(m_parameter);
        m_inRoutine.store(false);
        ending.exitCode = result;
    } else {
        m_parked.store(false); // it may have left from the suspend handler
    }
}

void Thread::End(DWORD exitCode)
{
    m_over.store(true);
    // Mutexes still owned are abandoned now, before waiters learn of the end.
    if (void* held = pthread_getspecific(HeldKey())) {
        pthread_setspecific(HeldKey(), nullptr);
        AbandonHeld(held);
    }
    std::shared_ptr<Thread> self;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (!m_terminating.load()) {
            m_exitCode = exitCode;
        }
        m_ended = true;
        self = std::move(m_self);
        m_wake.notify_all();
    }
    t_current = nullptr;
    // `self` may be the last reference: the object goes here.
}

std::shared_ptr<Thread> LookupThread(HANDLE handle)
{
    if (handle == GetCurrentThread()) {
        // Only the stand-in's own threads can be reached through the pseudo-handle.
        auto self = t_current == nullptr ? nullptr : t_current->Self();
        if (self == nullptr) {
            SetLastError(ERROR_INVALID_HANDLE);
        }
        return self;
    }
    auto object = Lookup(handle);
    auto thread = std::dynamic_pointer_cast<Thread>(object);
    if (object != nullptr && thread == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return thread;
}

std::shared_ptr<Mutex> LookupMutex(HANDLE handle)
{
    auto object = Lookup(handle);
    auto mutex = std::dynamic_pointer_cast<Mutex>(object);
    if (object != nullptr && mutex == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return mutex;
}

} // namespace

bool TerminationPending()
{
    return t_current != nullptr && t_current->Terminating();
}

} // namespace yx::platform::sync

using namespace yx::platform::sync; // NOLINT(google-build-using-namespace)

DWORD GetCurrentThreadId()
{
    thread_local const DWORD id = static_cast<DWORD>(::syscall(SYS_gettid));
    return id;
}

HANDLE GetCurrentThread()
{
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-2)); // NOLINT(performance-no-int-to-ptr)
}

HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES lpMutexAttributes, BOOL bInitialOwner, LPCSTR lpName)
{
    return Uncancellable([&]() -> HANDLE {
        if (lpMutexAttributes != nullptr || lpName != nullptr) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return nullptr;
        }
        auto mutex = std::make_shared<Mutex>();
        if (bInitialOwner != FALSE) {
            mutex->TakeInitially();
        }
        SetLastError(ERROR_SUCCESS);
        return AddHandle(std::move(mutex));
    });
}

BOOL ReleaseMutex(HANDLE hMutex)
{
    return Uncancellable([&]() -> BOOL {
        const auto mutex = LookupMutex(hMutex);
        return mutex == nullptr ? FALSE : mutex->Release();
    });
}

HANDLE CreateThread(LPSECURITY_ATTRIBUTES lpThreadAttributes, std::size_t dwStackSize,
                    LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter, DWORD dwCreationFlags,
                    LPDWORD lpThreadId)
{
    return Uncancellable([&]() -> HANDLE {
        if (lpThreadAttributes != nullptr || lpStartAddress == nullptr) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return nullptr;
        }
        (void)dwStackSize;
        auto thread = std::make_shared<Thread>(lpStartAddress, lpParameter, (dwCreationFlags & CREATE_SUSPENDED) != 0);
        if (!thread->Start(thread)) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        // The id is the thread's own gettid, known once it runs.
        while (thread->Id() == 0) {
            sched_yield();
        }
        if (lpThreadId != nullptr) {
            *lpThreadId = thread->Id();
        }
        return AddHandle(std::move(thread));
    });
}

DWORD GetThreadId(HANDLE Thread)
{
    return Uncancellable([&]() -> DWORD {
        if (Thread == GetCurrentThread()) {
            return GetCurrentThreadId();
        }
        const auto thread = LookupThread(Thread);
        return thread == nullptr ? 0 : thread->Id();
    });
}

DWORD SuspendThread(HANDLE hThread)
{
    return Uncancellable([&]() -> DWORD {
        const auto thread = LookupThread(hThread);
        return thread == nullptr ? static_cast<DWORD>(-1) : thread->Suspend();
    });
}

DWORD ResumeThread(HANDLE hThread)
{
    return Uncancellable([&]() -> DWORD {
        const auto thread = LookupThread(hThread);
        return thread == nullptr ? static_cast<DWORD>(-1) : thread->Resume();
    });
}

BOOL TerminateThread(HANDLE hThread, DWORD dwExitCode)
{
    return Uncancellable([&]() -> BOOL {
        const auto thread = LookupThread(hThread);
        return thread == nullptr ? FALSE : thread->Terminate(dwExitCode);
    });
}

BOOL GetExitCodeThread(HANDLE hThread, LPDWORD lpExitCode)
{
    return Uncancellable([&]() -> BOOL {
        const auto thread = LookupThread(hThread);
        return thread == nullptr ? FALSE : thread->ExitCode(lpExitCode);
    });
}

void Sleep(DWORD dwMilliseconds)
{
    timespec remaining{static_cast<time_t>(dwMilliseconds / 1000), static_cast<long>(dwMilliseconds % 1000) * 1000000L};
    // A suspension interrupts the sleep; it goes on for the time that is left.
    while (nanosleep(&remaining, &remaining) != 0 && errno == EINTR) {
    }
}
