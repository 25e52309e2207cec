// Lock classes and a thread base class for hosts. The library itself uses none of them.
#ifndef YXTOOLS_CONCURRENCY_H
#define YXTOOLS_CONCURRENCY_H

#include <atomic>

#include "yxtools/config.h"

// The abstract lock.
class YXTOOLS_API YXSyncObject {
public:
    YXSyncObject() = default;
    YXSyncObject(const YXSyncObject& /*other*/) {}
    YXSyncObject& operator=(const YXSyncObject& /*other*/) { return *this; }
    virtual ~YXSyncObject();

    // Time-outs count milliseconds; what each lock makes of them is its own.
    virtual bool Lock(long lTimeOut) = 0;
    virtual bool Unlock() = 0;
};

// The in-process lock: recursive, without time-out. An Unlock too many is harmless.
//
// Copies: a platform section cannot be copied by its bytes, so a copy gets a section of its own,
// and the count carries over as locks: the copying thread holds the copy as often as the source's
// count says, so that the copy's count and its section agree and every Unlock of it is matched.
// An assignment first gives back the holds of the target's count (the assigning thread must be
// the one that holds the target, or nobody), then takes the source's count the same way; the
// target keeps its own section. Each section is deleted once, by its object.
class YXTOOLS_API YXCriticalSection : public YXSyncObject {
public:
    YXCriticalSection();
    YXCriticalSection(const YXCriticalSection& other);
    YXCriticalSection& operator=(const YXCriticalSection& other);
    ~YXCriticalSection() override;

    // Waits without limit, whatever the time-out; always true.
    bool Lock(long lTimeOut) override;
    // Always true; with a count of 0 it does nothing.
    bool Unlock() override;

    alignas(8) unsigned char m_CriticalSection[160]; // the platform's section at its start
    std::uint32_t m_dwLockCount;                     // Locks not yet matched by an Unlock
};

// The lock with a real time-out, over a private platform mutex.
//
// Copies: a copy holds a duplicate handle of the source's mutex, so both objects lock the same
// mutex, each closes its own handle once, and the mutex goes with the last of them. An assignment
// duplicates the source's handle before it closes its own; self-assignment changes nothing. A mutex's
// owner is a thread, not an object, so a lock taken through one copy is released through either.
class YXTOOLS_API YXMutex : public YXSyncObject {
public:
    YXMutex();
    YXMutex(const YXMutex& other);
    YXMutex& operator=(const YXMutex& other);
    ~YXMutex() override;

    // -1 waits without limit, 0 only tries. False on a time-out, a failure, and on an abandoned
    // mutex, which the thread then holds. On a platform where `long` is wider than 32 bits, a
    // time-out beyond 32 bits waits without limit.
    bool Lock(long lTimeOut) override;
    bool Unlock() override;

    void* m_hMutex; // null when the mutex could not be created
};

// A lock object built around a critical section, which it forwards to.
class YXTOOLS_API YXLockable : public YXSyncObject {
public:
    YXLockable() = default;
    YXLockable(const YXLockable& other) = default;
    YXLockable& operator=(const YXLockable& other);
    ~YXLockable() override;

    bool Lock(long lTimeOut) override;
    bool Unlock() override;

    YXCriticalSection m_Section;
};

// One lock on a YXSyncObject for the length of a scope. Not shared between threads.
class YXTOOLS_API YXSingleLock {
public:
    explicit YXSingleLock(YXSyncObject* pObject = nullptr, bool bInitialLock = false);
    YXSingleLock(const YXSingleLock& other) = default;
    // Copies both members; whatever this object held is not released.
    YXSingleLock& operator=(const YXSingleLock& other) = default;
    ~YXSingleLock();

    bool Lock(long lTimeOut);
    bool Unlock();
    // Replaces the object and nothing else: m_bLocked now speaks of the new one.
    void SetObject(YXSyncObject* pObject);

    YXSyncObject* m_pObject;
    bool m_bLocked;
};

// The base of a piece of work on a thread of its own: derive, and put the work into Process,
// which looks at AskForStop and returns when it turns true.
//
// The client and the worker share m_hThread and the two flags; they are atomic, so each is read
// and written in one step. The worker's handle is closed exactly once, by whoever takes it out of
// m_hThread: the worker when it ends by itself, else Wait, Stop or the destructor. Those wait for
// the worker's end before they close it, so that no worker writes to an object that is gone.
// Begin stores the handle and then looks whether the worker has already ended; if so it takes the
// handle back, so that m_hThread is null once the worker has ended, whichever ran first.
//
// Copies: a copy of an object with a worker holds a duplicate handle of that worker, so that both
// can wait for it and each closes its own handle once. The worker knows only the source: it clears
// the source's handle at its end, while the copy learns of the end by waiting. A copy whose handle
// cannot be duplicated has none (IsCreated false).
class YXTOOLS_API YXThread {
public:
    YXThread();
    YXThread(const YXThread& other);
    YXThread& operator=(const YXThread& other);
    // Asks the worker to stop, gives it the default time-out twice and then ends it. By then the
    // derived class's part of the object is gone while its Process may still run: a derived class
    // whose Process uses its own members stops the worker in its own destructor.
    virtual ~YXThread();

    // The work; its result is the thread's exit code. This one returns 0 at once.
    virtual unsigned long Process();

    // False when a worker runs already or the platform refused.
    bool Begin();
    // Asks the worker to stop, then Wait.
    bool Stop(long lTimeOut);
    // True when the worker ended within the time-out (any negative one means m_lTimeOut); else it
    // is asked to stop, given the time-out once more and then ended with exit code 1. The worker
    // has ended when Wait returns. Not to be called from the worker itself.
    bool Wait(long lTimeOut);
    bool AskForStop() const;
    bool Suspend();
    bool Resume();
    bool IsCreated() const;
    bool IsFinished() const;
    long GetThreadHandle() const;
    unsigned long GetThreadId() const;
    long GetMainThreadHandle() const;
    unsigned long GetMainThreadId() const;

protected:
    std::uint32_t m_dwThreadId;
    std::atomic<void*> m_hThread;
    std::uint32_t m_dwMainThreadId;
    void* m_hMainThread;
    std::int32_t m_lTimeOut;
    std::atomic<bool> m_bAskForStop;
    std::atomic<bool> m_bFinished;

private:
    friend struct YXThreadEntry;
    static unsigned long runProcess(void* pContext);
    // Steps 3 to 6 of Wait on a handle already taken out of m_hThread.
    bool WaitAndClose(void* hThread, long lTimeOut);
};

#endif
