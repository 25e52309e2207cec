/// @file
/// Lock classes and a thread base class for hosts. The library itself uses none of them.
#ifndef YXTOOLS_CONCURRENCY_H
#define YXTOOLS_CONCURRENCY_H

#include <atomic>

#include "yxtools/config.h"

/// The abstract lock. A lock starts unlocked and must outlive every YXSingleLock that points to it.
class YXTOOLS_API YXSyncObject {
public:
    /// Nothing to set up.
    YXSyncObject() = default;
    /// Copies nothing: the base holds no state.
    YXSyncObject(const YXSyncObject& /*other*/) {}
    /// Copies nothing: the base holds no state.
    YXSyncObject& operator=(const YXSyncObject& /*other*/) { return *this; }
    /// Virtual, so that a lock is destroyed through its base.
    virtual ~YXSyncObject();

    /// Takes the lock; true when it is held. @p lTimeOut counts milliseconds; what each lock
    /// makes of it is its own.
    virtual bool Lock(long lTimeOut) = 0;
    /// Gives the lock back; true when it was given back.
    virtual bool Unlock() = 0;
};

/// The in-process lock over a platform critical section: recursive, without time-out. An Unlock
/// too many is harmless.
///
/// Copies: a platform section cannot be copied by its bytes, so a copy gets a section of its own,
/// and the count carries over as locks: the copying thread holds the copy as often as the source's
/// count says, so that the copy's count and its section agree and every Unlock of it is matched.
/// An assignment first gives back the holds of the target's count (the assigning thread must be
/// the one that holds the target, or nobody), then takes the source's count the same way; the
/// target keeps its own section. Each section is deleted once, by its object.
class YXTOOLS_API YXCriticalSection : public YXSyncObject {
public:
    YXCriticalSection();
    /// A section of its own, held by the copying thread as often as @p other's count says.
    YXCriticalSection(const YXCriticalSection& other);
    /// Gives back this object's holds, then takes @p other's count on this object's section.
    YXCriticalSection& operator=(const YXCriticalSection& other);
    ~YXCriticalSection() override;

    /// Waits without limit, whatever the time-out; always true.
    bool Lock(long lTimeOut) override;
    /// Always true; with a count of 0 it does nothing.
    bool Unlock() override;

    alignas(8) unsigned char m_CriticalSection[160]; ///< the platform's section at its start
    std::uint32_t m_dwLockCount;                     ///< Locks not yet matched by an Unlock
};

/// The lock with a real time-out, over a private platform mutex.
///
/// Copies: a copy holds a duplicate handle of the source's mutex, so both objects lock the same
/// mutex, each closes its own handle once, and the mutex goes with the last of them. An assignment
/// duplicates the source's handle before it closes its own; self-assignment changes nothing. A mutex's
/// owner is a thread, not an object, so a lock taken through one copy is released through either.
class YXTOOLS_API YXMutex : public YXSyncObject {
public:
    YXMutex();
    /// Holds a duplicate handle of @p other's mutex.
    YXMutex(const YXMutex& other);
    /// Duplicates @p other's handle, then closes its own.
    YXMutex& operator=(const YXMutex& other);
    ~YXMutex() override;

    /// -1 waits without limit, 0 only tries. False on a time-out, a failure, and on an abandoned
    /// mutex, which the thread then holds. On a platform where `long` is wider than 32 bits, a
    /// time-out beyond 32 bits waits without limit.
    bool Lock(long lTimeOut) override;
    /// Releases the mutex: true when the platform agrees (the calling thread must own it).
    bool Unlock() override;

    void* m_hMutex; ///< null when the mutex could not be created
};

/// A lock object built around a critical section, which it forwards to: recursive, the time-out
/// ignored, both calls always true.
class YXTOOLS_API YXLockable : public YXSyncObject {
public:
    YXLockable() = default;
    /// Copies the section as YXCriticalSection's copy does.
    YXLockable(const YXLockable& other) = default;
    /// Assigns the section as YXCriticalSection's assignment does.
    YXLockable& operator=(const YXLockable& other);
    ~YXLockable() override;

    /// Locks m_Section, which waits without limit; always true.
    bool Lock(long lTimeOut) override;
    /// Unlocks m_Section; always true.
    bool Unlock() override;

    YXCriticalSection m_Section; ///< the section, owned by value
};

/// One lock on a YXSyncObject for the length of a scope. Not shared between threads.
///
/// It keeps no count: m_bLocked is one flag, so two Lock calls over a YXCriticalSection take the
/// section twice and give it back once. The lock must outlive this object.
class YXTOOLS_API YXSingleLock {
public:
    /// Stores the object (not owned, may be null); with @p bInitialLock and an object, locks it
    /// without limit (Lock(-1)).
    explicit YXSingleLock(YXSyncObject* pObject = nullptr, bool bInitialLock = false);
    /// Copies both members.
    YXSingleLock(const YXSingleLock& other) = default;
    /// Copies both members; whatever this object held is not released.
    YXSingleLock& operator=(const YXSingleLock& other) = default;
    /// Unlock, result dropped.
    ~YXSingleLock();

    /// Locks the object with @p lTimeOut (-1 waits without limit) and returns m_bLocked, which
    /// becomes the object's answer. False without an object. A failed Lock sets m_bLocked false
    /// even when an earlier Lock still holds the lock.
    bool Lock(long lTimeOut);
    /// When this object holds the lock, unlocks it; true unless the object's Unlock failed (then
    /// m_bLocked stays true and the destructor tries again). True when nothing was held.
    bool Unlock();
    /// Replaces the object and nothing else: m_bLocked now speaks of the new one.
    void SetObject(YXSyncObject* pObject);

    YXSyncObject* m_pObject; ///< the lock it works on, not owned; may be null
    bool m_bLocked;          ///< true while this object holds a lock on m_pObject
};

/// The base of a piece of work on a thread of its own: derive, and put the work into Process,
/// which looks at AskForStop and returns when it turns true.
///
/// The client and the worker share m_hThread and the two flags; they are atomic, so each is read
/// and written in one step. The worker's handle is closed exactly once, by whoever takes it out of
/// m_hThread: the worker when it ends by itself, else Wait, Stop or the destructor. Those wait for
/// the worker's end before they close it, so that no worker writes to an object that is gone.
/// Begin stores the handle and then looks whether the worker has already ended; if so it takes the
/// handle back, so that m_hThread is null once the worker has ended, whichever ran first.
///
/// Copies: a copy of an object with a worker holds a duplicate handle of that worker, so that both
/// can wait for it and each closes its own handle once. The worker knows only the source: it clears
/// the source's handle at its end, while the copy learns of the end by waiting. A copy whose handle
/// cannot be duplicated has none (IsCreated false).
class YXTOOLS_API YXThread {
public:
    /// No worker yet: IsCreated false, IsFinished true, default time-out 10000 ms; the calling
    /// thread is recorded as the main thread.
    YXThread();
    /// With a running worker, holds a duplicate handle of it; see the class's notes on copies.
    YXThread(const YXThread& other);
    /// Ends this object's own worker as the destructor does, then copies as the copy constructor.
    YXThread& operator=(const YXThread& other);
    /// Asks the worker to stop, gives it the default time-out twice and then ends it. By then the
    /// derived class's part of the object is gone while its Process may still run: a derived class
    /// whose Process uses its own members stops the worker in its own destructor.
    virtual ~YXThread();

    /// The work; its result is the thread's exit code. This one returns 0 at once. An exception
    /// that leaves it ends the worker with exit code 1, as a killed worker, not the process.
    virtual unsigned long Process();

    /// Starts a worker that runs Process. False when a worker runs already or the platform
    /// refused.
    bool Begin();
    /// Asks the worker to stop, then Wait(lTimeOut) and its result.
    bool Stop(long lTimeOut);
    /// True when the worker ended within the time-out (any negative one means m_lTimeOut); else it
    /// is asked to stop, given the time-out once more and then ended by force with exit code 1 (its
    /// frames are left without their destructors, and mutexes it owned are abandoned). The worker
    /// has ended when Wait returns. Not to be called from the worker itself.
    bool Wait(long lTimeOut);
    /// True once a stop has been asked for; Process polls it.
    bool AskForStop() const;
    /// Suspends the worker (counted by the platform); false without a worker or on refusal. The
    /// worker has stopped when the call returns.
    bool Suspend();
    /// Takes one count off the worker's suspension; false without a worker or on refusal.
    bool Resume();
    /// True while the object holds a worker's handle.
    bool IsCreated() const;
    /// True before Begin and again from the worker's end.
    bool IsFinished() const;
    /// The worker's handle as a number, 0 without a worker.
    long GetThreadHandle() const;
    /// The worker's platform id: 0 until Begin started one, then its last value.
    unsigned long GetThreadId() const;
    /// The handle of the constructing thread, as the platform's current-thread call gave it.
    long GetMainThreadHandle() const;
    /// The id of the thread that constructed the object.
    unsigned long GetMainThreadId() const;

protected:
    std::uint32_t m_dwThreadId;      ///< platform id of the worker, 0 until Begin started one
    std::atomic<void*> m_hThread;    ///< the worker's handle; null when there is none
    std::uint32_t m_dwMainThreadId;  ///< id of the thread that constructed the object
    void* m_hMainThread;             ///< the constructing thread's pseudo handle, stored unchanged
    std::int32_t m_lTimeOut;         ///< default time-out in milliseconds, 10000
    std::atomic<bool> m_bAskForStop; ///< a stop has been asked for
    std::atomic<bool> m_bFinished;   ///< true before Begin and from the worker's end

private:
    friend struct YXThreadEntry;
    static unsigned long runProcess(void* pContext);
    /// Steps 3 to 6 of Wait on a handle already taken out of m_hThread.
    bool WaitAndClose(void* hThread, long lTimeOut);
};

#endif
