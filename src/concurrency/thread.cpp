#include <cstdint>
#include <new>
#if !defined(_WIN32)
#include <cxxabi.h>
#endif

#include "concurrency/duplicate.h"
#include "platform/win32.h"
#include "yxtools/concurrency.h"

namespace {

constexpr std::int32_t kDefaultTimeOut = 10000;

// Wait's time-out: any negative one means the object's default. On a platform where `long` is
// wider than 32 bits, a longer one is cut to the longest finite wait, so that a worker is always
// ended in the end.
DWORD ThreadTimeOut(long lTimeOut, std::int32_t lDefault)
{
    const auto wide = static_cast<long long>(lTimeOut < 0 ? lDefault : lTimeOut);
    return wide >= static_cast<long long>(INFINITE) ? INFINITE - 1 : static_cast<DWORD>(wide);
}

} // namespace

// The platform's thread procedure, with the platform's signature, around runProcess.
struct YXThreadEntry {
    static DWORD WINAPI Run(LPVOID pContext) { return static_cast<DWORD>(YXThread::runProcess(pContext)); }
};

YXThread::YXThread()
    : m_dwThreadId(0), m_hThread(nullptr), m_dwMainThreadId(GetCurrentThreadId()), m_hMainThread(GetCurrentThread()),
      m_lTimeOut(kDefaultTimeOut), m_bAskForStop(false), m_bFinished(true)
{}

YXThread::YXThread(const YXThread& other)
    : m_dwThreadId(other.m_dwThreadId), m_hThread(yx::concurrency::Duplicate(other.m_hThread.load())),
      m_dwMainThreadId(other.m_dwMainThreadId), m_hMainThread(other.m_hMainThread), m_lTimeOut(other.m_lTimeOut),
      m_bAskForStop(other.m_bAskForStop.load()), m_bFinished(other.m_bFinished.load())
{}

YXThread& YXThread::operator=(const YXThread& other)
{
    if (this == &other) {
        return *this;
    }
    // A worker of this object's own is waited for as the destructor does, so that its handle is
    // closed once and it writes to nothing that is reused.
    m_bAskForStop = true;
    if (HANDLE own = m_hThread.exchange(nullptr)) {
        WaitAndClose(own, m_lTimeOut);
    }
    m_dwThreadId = other.m_dwThreadId;
    m_hThread = yx::concurrency::Duplicate(other.m_hThread.load());
    m_dwMainThreadId = other.m_dwMainThreadId;
    m_hMainThread = other.m_hMainThread;
    m_lTimeOut = other.m_lTimeOut;
    m_bAskForStop = other.m_bAskForStop.load();
    m_bFinished = other.m_bFinished.load();
    return *this;
}

YXThread::~YXThread()
{
    m_bAskForStop = true;
    if (HANDLE hThread = m_hThread.exchange(nullptr)) {
        if (m_bFinished) {
            // The worker is past Process and about to let go of the object: wait for that.
            WaitForSingleObject(hThread, INFINITE);
            CloseHandle(hThread);
        } else {
            WaitAndClose(hThread, m_lTimeOut);
        }
    }
}

unsigned long YXThread::Process()
{
    return 0;
}

bool YXThread::Begin()
{
    if (m_hThread.load() != nullptr) {
        return false;
    }
    auto* context = new (std::nothrow) YXThread*(this);
    if (context == nullptr) {
        return false;
    }
    m_bAskForStop = false;
    m_bFinished = false;
    DWORD id = 0;
    HANDLE hThread = CreateThread(nullptr, 0, YXThreadEntry::Run, context, 0, &id);
    if (hThread == nullptr) {
        delete context;
        return false;
    }
    m_dwThreadId = id;
    m_hThread = hThread;
    // A worker that ended before the store found no handle to close: take it back, and wait for
    // the worker to let go of the object.
    if (m_bFinished) {
        if (HANDLE late = m_hThread.exchange(nullptr)) {
            WaitForSingleObject(late, INFINITE);
            CloseHandle(late);
        }
    }
    return true;
}

unsigned long YXThread::runProcess(void* pContext)
{
    auto* context = static_cast<YXThread**>(pContext);
    YXThread* self = *context;
    delete context;
    if (GetCurrentThreadId() == self->m_dwMainThreadId) {
        return 0;
    }
    self->m_bFinished = false;
    unsigned long result = 1;
    // An exception that leaves Process ends the worker as a killed one does, with exit code 1,
    // rather than the whole process; the object still ends in the ended state.
    try {
        result = self->Process();
#if !defined(_WIN32)
    } catch (abi::__forced_unwind&) {
        throw; // the thread is being terminated: its unwinding must go on
#endif
    } catch (...) {
        result = 1;
    }
    self->m_bFinished = true;
    // The last touch of the object: from here on the client may destroy it.
    HANDLE own = self->m_hThread.exchange(nullptr);
    if (own != nullptr) {
        CloseHandle(own);
    }
    return result;
}

bool YXThread::Stop(long lTimeOut)
{
    m_bAskForStop = true;
    return Wait(lTimeOut);
}

bool YXThread::Wait(long lTimeOut)
{
    if (m_bFinished || m_hThread.load() == nullptr) {
        return true;
    }
    HANDLE hThread = m_hThread.exchange(nullptr);
    if (hThread == nullptr) {
        m_bFinished = true; // the worker ended meanwhile and closed its handle
        return true;
    }
    return WaitAndClose(hThread, lTimeOut);
}

bool YXThread::WaitAndClose(void* hThread, long lTimeOut)
{
    const DWORD timeOut = ThreadTimeOut(lTimeOut, m_lTimeOut);
    bool result = true;
    if (WaitForSingleObject(hThread, timeOut) == WAIT_TIMEOUT) {
        result = false;
        m_bAskForStop = true;
        if (WaitForSingleObject(hThread, timeOut) == WAIT_TIMEOUT) {
            TerminateThread(hThread, 1);
            // A terminated thread runs none of its own end steps; the object must not be given
            // up before it has really stopped.
            WaitForSingleObject(hThread, INFINITE);
        }
    }
    CloseHandle(hThread);
    m_bFinished = true;
    m_hThread = nullptr;
    return result;
}

bool YXThread::AskForStop() const
{
    return m_bAskForStop;
}

bool YXThread::Suspend()
{
    HANDLE hThread = m_hThread.load();
    return hThread != nullptr && SuspendThread(hThread) != static_cast<DWORD>(-1);
}

bool YXThread::Resume()
{
    HANDLE hThread = m_hThread.load();
    return hThread != nullptr && ResumeThread(hThread) != static_cast<DWORD>(-1);
}

bool YXThread::IsCreated() const
{
    return m_hThread.load() != nullptr;
}

bool YXThread::IsFinished() const
{
    return m_bFinished;
}

long YXThread::GetThreadHandle() const
{
    return static_cast<long>(reinterpret_cast<std::intptr_t>(m_hThread.load()));
}

unsigned long YXThread::GetThreadId() const
{
    return m_dwThreadId;
}

long YXThread::GetMainThreadHandle() const
{
    return static_cast<long>(reinterpret_cast<std::intptr_t>(m_hMainThread));
}

unsigned long YXThread::GetMainThreadId() const
{
    return m_dwMainThreadId;
}
