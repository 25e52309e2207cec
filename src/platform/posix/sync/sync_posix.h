// The synchronisation part of the POSIX stand-in: critical sections, mutexes and threads, on
// pthreads. Included by win32_posix.h.
//
// Mutexes and threads are kernel objects behind handles. A handle is a token of its own, so
// DuplicateHandle gives a second handle to the same object, and the object lives until its last
// handle is closed (a thread also until it has ended). A handle that is not live is refused with
// ERROR_INVALID_HANDLE.
//
// Mutexes follow Win32's owner rules: the owner may wait again (it counts), only the owner may
// release, and a mutex whose owner thread ends while holding it is abandoned: the next wait takes
// it and answers WAIT_ABANDONED.
//
// SuspendThread really stops the thread before it returns: a signal (SIGRTMIN + 4) parks the
// thread in its handler until ResumeThread brings the count back to 0 (SIGRTMIN + 5). Only
// threads made by CreateThread can be suspended. TerminateThread cancels the thread
// asynchronously; as on Windows, a thread ended that way may leave behind locks it held, and
// the exit code is the one given. The stand-in's threads unwind when cancelled, so the
// destructors of their frames run, which a Windows host cannot count on.
#ifndef YXTOOLS_PLATFORM_SYNC_POSIX_H
#define YXTOOLS_PLATFORM_SYNC_POSIX_H

#include <pthread.h>

constexpr DWORD ERROR_NOT_OWNER = 288;
constexpr DWORD ERROR_SIGNAL_REFUSED = 156;

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0x00000000;
constexpr DWORD WAIT_ABANDONED = 0x00000080;
constexpr DWORD WAIT_TIMEOUT = 0x00000102;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
constexpr DWORD STILL_ACTIVE = 259;
constexpr DWORD CREATE_SUSPENDED = 0x00000004;
constexpr DWORD MAXIMUM_SUSPEND_COUNT = 127;
constexpr DWORD DUPLICATE_CLOSE_SOURCE = 0x00000001;
constexpr DWORD DUPLICATE_SAME_ACCESS = 0x00000002;

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
using LPHANDLE = HANDLE*;

// A recursive lock in the caller's memory. The owner may enter as often as it likes and must
// leave as often; leaving a section that the thread does not hold is ignored.
struct CRITICAL_SECTION {
    pthread_mutex_t Mutex;
};
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

YX_PLATFORM void InitializeCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
YX_PLATFORM void DeleteCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
YX_PLATFORM void EnterCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
YX_PLATFORM void LeaveCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
YX_PLATFORM BOOL TryEnterCriticalSection(LPCRITICAL_SECTION lpCriticalSection);

// A mutex without a name: security attributes and names are not supported (a name fails with
// ERROR_INVALID_PARAMETER). bInitialOwner makes the calling thread its owner.
YX_PLATFORM HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES lpMutexAttributes, BOOL bInitialOwner, LPCSTR lpName);
// FALSE with ERROR_NOT_OWNER unless the calling thread owns the mutex; the mutex is free when
// every wait of its owner has been released.
YX_PLATFORM BOOL ReleaseMutex(HANDLE hMutex);
// Waits for a mutex (taking it) or for a thread's end. dwMilliseconds INFINITE waits without
// limit, 0 only tests. WAIT_FAILED with ERROR_INVALID_HANDLE for a handle that is not live.
YX_PLATFORM DWORD WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds);
// Only within this process: both process handles must be GetCurrentProcess().
YX_PLATFORM BOOL DuplicateHandle(HANDLE hSourceProcessHandle, HANDLE hSourceHandle, HANDLE hTargetProcessHandle,
                                 LPHANDLE lpTargetHandle, DWORD dwDesiredAccess, BOOL bInheritHandle, DWORD dwOptions);
YX_PLATFORM HANDLE GetCurrentProcess();

using LPTHREAD_START_ROUTINE = DWORD (*)(LPVOID);
#define WINAPI

// dwStackSize 0 is the default stack; CREATE_SUSPENDED holds the thread before its routine
// until ResumeThread.
YX_PLATFORM HANDLE CreateThread(LPSECURITY_ATTRIBUTES lpThreadAttributes, std::size_t dwStackSize,
                                LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter, DWORD dwCreationFlags,
                                LPDWORD lpThreadId);
// The pseudo-handle (HANDLE)-2 that always means the calling thread.
YX_PLATFORM HANDLE GetCurrentThread();
// The thread's id, never 0, unique among the threads that run.
YX_PLATFORM DWORD GetCurrentThreadId();
// The id of a thread handle; 0 with ERROR_INVALID_HANDLE.
YX_PLATFORM DWORD GetThreadId(HANDLE Thread);
// The previous suspend count, or (DWORD)-1 on failure: ERROR_INVALID_HANDLE, or
// ERROR_SIGNAL_REFUSED past MAXIMUM_SUSPEND_COUNT. A suspended thread has stopped when the call
// returns. Suspending a thread that has ended succeeds and does nothing.
YX_PLATFORM DWORD SuspendThread(HANDLE hThread);
YX_PLATFORM DWORD ResumeThread(HANDLE hThread);
// Ends the thread with dwExitCode. On a thread that has already ended the call succeeds and
// replaces its exit code, as under Wine.
YX_PLATFORM BOOL TerminateThread(HANDLE hThread, DWORD dwExitCode);
// STILL_ACTIVE while the thread runs.
YX_PLATFORM BOOL GetExitCodeThread(HANDLE hThread, LPDWORD lpExitCode);
// Sleeps the calling thread.
YX_PLATFORM void Sleep(DWORD dwMilliseconds);

#endif
