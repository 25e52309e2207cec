#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <thread>

#include "census.h"
#include "platform/win32.h"
#include "yxtools/concurrency.h"

namespace {

using Clock = std::chrono::steady_clock;
using census::MillisecondsSince;

// Whether another thread finds the lock free: a mutex with a try of 0, a section (whose Lock
// would wait) with the platform's try.
bool FreeForOthers(YXSyncObject& lock)
{
    bool got = false;
    std::thread other([&] {
        if (auto* lockable = dynamic_cast<YXLockable*>(&lock)) {
            auto* section = reinterpret_cast<CRITICAL_SECTION*>(lockable->m_Section.m_CriticalSection);
            got = TryEnterCriticalSection(section) != FALSE;
            if (got) {
                LeaveCriticalSection(section);
            }
        } else if (auto* critical = dynamic_cast<YXCriticalSection*>(&lock)) {
            auto* section = reinterpret_cast<CRITICAL_SECTION*>(critical->m_CriticalSection);
            got = TryEnterCriticalSection(section) != FALSE;
            if (got) {
                LeaveCriticalSection(section);
            }
        } else if (lock.Lock(0)) {
            got = true;
            lock.Unlock();
        }
    });
    other.join();
    return got;
}

// A lock whose answers are set by the test, to drive YXSingleLock.
class Scripted : public YXSyncObject {
public:
    bool Lock(long lTimeOut) override
    {
        ++locks;
        lastTimeOut = lTimeOut;
        return lockResult;
    }
    bool Unlock() override
    {
        ++unlocks;
        return unlockResult;
    }
    int locks = 0;
    int unlocks = 0;
    long lastTimeOut = 0;
    bool lockResult = true;
    bool unlockResult = true;
};

TEST(SingleLock, WithoutObject)
{
    YXSingleLock lock;
    EXPECT_EQ(lock.m_pObject, nullptr);
    EXPECT_FALSE(lock.m_bLocked);
    EXPECT_FALSE(lock.Lock(-1));
    EXPECT_TRUE(lock.Unlock());
    YXSingleLock initial(nullptr, true);
    EXPECT_FALSE(initial.m_bLocked);
}

TEST(SingleLock, FlagFollowsTheObjectsAnswers)
{
    Scripted object;
    {
        YXSingleLock lock(&object, true);
        EXPECT_EQ(object.lastTimeOut, -1);
        EXPECT_TRUE(lock.m_bLocked);
        EXPECT_TRUE(lock.Lock(25)); // a second lock is the object's; the flag stays one flag
        EXPECT_EQ(object.lastTimeOut, 25);
        EXPECT_TRUE(lock.Unlock());
        EXPECT_TRUE(lock.Unlock()); // nothing held: the object is not asked
        EXPECT_EQ(object.unlocks, 1);
        // A failed Lock clears the flag although an earlier one still holds.
        EXPECT_TRUE(lock.Lock(0));
        object.lockResult = false;
        EXPECT_FALSE(lock.Lock(0));
        EXPECT_FALSE(lock.m_bLocked);
    }
    EXPECT_EQ(object.locks, 4);
    EXPECT_EQ(object.unlocks, 1); // the destructor released nothing
}

TEST(SingleLock, FailedUnlockKeepsTheFlagAndTheDestructorTriesAgain)
{
    Scripted object;
    object.unlockResult = false;
    {
        YXSingleLock lock(&object);
        EXPECT_EQ(object.locks, 0);
        EXPECT_TRUE(lock.Lock(10));
        EXPECT_FALSE(lock.Unlock());
        EXPECT_TRUE(lock.m_bLocked);
    }
    EXPECT_EQ(object.unlocks, 2);
}

TEST(SingleLock, SetObjectAndCopiesMoveOnlyThePointerAndTheFlag)
{
    Scripted first;
    Scripted second;
    YXSingleLock lock;
    lock.SetObject(&first);
    EXPECT_TRUE(lock.Lock(-1));
    lock.SetObject(&second); // the lock on first stays held; the flag now speaks of second
    EXPECT_TRUE(lock.m_bLocked);
    YXSingleLock copy(lock);
    EXPECT_EQ(copy.m_pObject, &second);
    EXPECT_TRUE(copy.m_bLocked);
    YXSingleLock target(&first);
    target = lock;
    EXPECT_EQ(target.m_pObject, &second);
    EXPECT_TRUE(target.Unlock());
    EXPECT_EQ(second.unlocks, 1);
    EXPECT_EQ(first.unlocks, 0);
    copy.m_bLocked = false;
    lock.m_bLocked = false;
}

TEST(CriticalSection, CountsRecursiveLocksAndIgnoresAnUnlockTooMany)
{
    YXCriticalSection section;
    EXPECT_TRUE(section.Unlock());
    EXPECT_EQ(section.m_dwLockCount, 0u);
    EXPECT_TRUE(section.Lock(0)); // the time-out is ignored
    EXPECT_TRUE(section.Lock(-1));
    EXPECT_EQ(section.m_dwLockCount, 2u);
    EXPECT_TRUE(section.Unlock());
    EXPECT_FALSE(FreeForOthers(section));
    EXPECT_TRUE(section.Unlock());
    EXPECT_TRUE(section.Unlock());
    EXPECT_EQ(section.m_dwLockCount, 0u);
    EXPECT_TRUE(FreeForOthers(section));
    // Two scope locks on one section can both give it back.
    {
        YXSingleLock one(&section, true);
        YXSingleLock two(&section, true);
        EXPECT_TRUE(one.Unlock());
    }
    EXPECT_EQ(section.m_dwLockCount, 0u);
}

TEST(CriticalSection, LockOfZeroWaitsForAnotherThreadsHold)
{
    YXLockable lockable; // forwards to its section
    lockable.Lock(0);
    std::atomic<bool> got{false};
    std::thread other([&] {
        lockable.Lock(0);
        got = true;
        lockable.Unlock();
    });
    Sleep(150);
    EXPECT_FALSE(got);
    lockable.Unlock();
    other.join();
    EXPECT_TRUE(got);
}

// A copy has a section of its own, held by the copying thread as often as the count says.
TEST(CriticalSection, CopiesCarryTheCountAsHoldsOfTheirOwnSection)
{
    YXCriticalSection source;
    source.Lock(-1);
    source.Lock(-1);
    YXCriticalSection copy(source);
    EXPECT_EQ(copy.m_dwLockCount, 2u);
    source.Unlock();
    source.Unlock();
    EXPECT_TRUE(FreeForOthers(source));
    EXPECT_FALSE(FreeForOthers(copy));
    copy.Unlock();
    copy.Unlock();
    EXPECT_TRUE(FreeForOthers(copy));

    YXLockable held;
    held.Lock(-1);
    YXLockable target;
    target = held; // target now held once, by this thread
    EXPECT_EQ(target.m_Section.m_dwLockCount, 1u);
    held.Unlock();
    target = held; // gives the hold back: count 0
    EXPECT_EQ(target.m_Section.m_dwLockCount, 0u);
    EXPECT_TRUE(FreeForOthers(target));
    const YXLockable& same = target;
    target.Lock(-1);
    target = same;
    EXPECT_EQ(target.m_Section.m_dwLockCount, 1u);
    target.Unlock();
    YXLockable copied(target);
    EXPECT_TRUE(FreeForOthers(copied));
}

TEST(Mutex, LockOfZeroOnAHeldMutexFailsAtOnceAndTimeOutsAreReal)
{
    YXMutex mutex;
    ASSERT_NE(mutex.m_hMutex, nullptr);
    ASSERT_TRUE(mutex.Lock(-1));
    EXPECT_TRUE(mutex.Lock(0)); // the owner may lock again
    std::thread other([&] {
        auto start = Clock::now();
        EXPECT_FALSE(mutex.Lock(0));
        EXPECT_LT(MillisecondsSince(start), 100);
        start = Clock::now();
        EXPECT_FALSE(mutex.Lock(300));
        const auto waited = MillisecondsSince(start);
        EXPECT_GE(waited, 290);
        EXPECT_LT(waited, 300 + 1500);
        EXPECT_FALSE(mutex.Unlock()); // not the owner
    });
    other.join();
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_FALSE(mutex.Unlock()); // not held any more
    EXPECT_TRUE(FreeForOthers(mutex));
}

TEST(Mutex, WaitingThreadGetsTheMutexWhenTheOwnerLetsGo)
{
    YXMutex mutex;
    ASSERT_TRUE(mutex.Lock(-1));
    std::atomic<bool> got{false};
    std::thread other([&] {
        got = mutex.Lock(-1); // INFINITE
        mutex.Unlock();
    });
    Sleep(100);
    EXPECT_FALSE(got);
    mutex.Unlock();
    other.join();
    EXPECT_TRUE(got);
}

TEST(Mutex, AbandonedMutexAnswersFalseButIsHeld)
{
    YXMutex mutex;
    std::thread owner([&] { EXPECT_TRUE(mutex.Lock(-1)); }); // ends holding it
    owner.join();
    EXPECT_FALSE(mutex.Lock(1000));
    EXPECT_FALSE(FreeForOthers(mutex));
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_TRUE(mutex.Lock(0)); // no longer abandoned
    EXPECT_TRUE(mutex.Unlock());
}

TEST(Mutex, HugeAndNegativeTimeOuts)
{
    YXMutex mutex;
    for (const long timeOut : {-1L, -2L, LONG_MAX, LONG_MIN, 0x7FFFFFFFL}) {
        SCOPED_TRACE(timeOut);
        ASSERT_TRUE(mutex.Lock(timeOut)); // free: at once
        EXPECT_TRUE(mutex.Unlock());
    }
    ASSERT_TRUE(mutex.Lock(-1));
    std::thread other([&] {
        const auto start = Clock::now();
        EXPECT_FALSE(mutex.Lock(0));
        EXPECT_LT(MillisecondsSince(start), 100);
    });
    other.join();
    mutex.Unlock();
}

// Copies refer to one mutex through handles of their own; each handle is closed once.
TEST(Mutex, CopiesShareOneMutexAndCloseTheirOwnHandles)
{
    const census::Snapshot before;
    {
        YXMutex source;
        YXMutex copy(source);
        EXPECT_NE(copy.m_hMutex, source.m_hMutex);
        ASSERT_TRUE(copy.Lock(0));
        EXPECT_FALSE(FreeForOthers(source));
        EXPECT_TRUE(source.Unlock()); // the owner is the thread
        EXPECT_TRUE(FreeForOthers(source));

        YXMutex target;
        target = source;
        ASSERT_TRUE(target.Lock(0));
        EXPECT_FALSE(FreeForOthers(copy));
        target.Unlock();
        const YXMutex& same = target;
        target = same;
        ASSERT_NE(target.m_hMutex, nullptr);
        EXPECT_TRUE(target.Lock(0));
        EXPECT_FALSE(FreeForOthers(source));
        target.Unlock();
    }
    EXPECT_TRUE(before.Restored());
}

} // namespace
