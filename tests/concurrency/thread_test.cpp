#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "census.h"
#include "platform/win32.h"
#include "yxtools/concurrency.h"

namespace {

using Clock = std::chrono::steady_clock;
using census::MillisecondsSince;

enum class Kind { Quick, Cooperative, Spinning, Sleeping, Throwing };

// A worker of each kind; the time-out can be made short so that runaway workers do not keep the
// tests waiting for the default 10 seconds.
class Worker : public YXThread {
public:
    explicit Worker(Kind kind, std::int32_t timeOut = 10000) : m_kind(kind) { m_lTimeOut = timeOut; }
    ~Worker() override = default;
    Worker(const Worker& other) : YXThread(other), m_kind(other.m_kind) {}
    Worker& operator=(const Worker& other)
    {
        YXThread::operator=(other);
        m_kind = other.m_kind;
        return *this;
    }

    unsigned long Process() override
    {
        m_started = true;
        switch (m_kind) {
        case Kind::Quick:
            return 7;
        case Kind::Cooperative:
            while (!AskForStop()) {
                ++m_steps;
                Sleep(1);
            }
            return 5;
        case Kind::Spinning:
            for (;;) {
                m_steps.fetch_add(1, std::memory_order_relaxed);
            }
        case Kind::Sleeping:
            for (;;) {
                ++m_steps;
                Sleep(1);
            }
        case Kind::Throwing:
            while (!m_go) {
                Sleep(1);
            }
            throw std::runtime_error("worker failed");
        }
        return 0;
    }

    // A handle of our own on the worker, to read its exit code after the object has closed its.
    HANDLE Watch() const
    {
        HANDLE copy = nullptr;
        DuplicateHandle(GetCurrentProcess(), m_hThread.load(), GetCurrentProcess(), &copy, 0, FALSE,
                        DUPLICATE_SAME_ACCESS);
        return copy;
    }

    // Waits for the worker run begun last to enter Process, and takes the sign, so that the next
    // run is waited for anew.
    void WaitStarted() const
    {
        ASSERT_TRUE(census::Settles([this] { return m_started.exchange(false); }));
    }

    Kind m_kind;
    mutable std::atomic<bool> m_started{false};
    std::atomic<bool> m_go{false};
    std::atomic<long> m_steps{0};
};

DWORD ExitCodeOf(HANDLE watched)
{
    EXPECT_EQ(WaitForSingleObject(watched, 5000), WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeThread(watched, &code);
    CloseHandle(watched);
    return code;
}

TEST(Thread, NewObjectHasNoWorkerAndAnswersWithoutOne)
{
    const census::Snapshot before;
    YXThread thread;
    EXPECT_FALSE(thread.IsCreated());
    EXPECT_TRUE(thread.IsFinished());
    EXPECT_FALSE(thread.AskForStop());
    EXPECT_EQ(thread.GetThreadId(), 0u);
    EXPECT_EQ(thread.GetMainThreadId(), GetCurrentThreadId());
    EXPECT_EQ(thread.GetMainThreadHandle(), static_cast<long>(reinterpret_cast<std::intptr_t>(GetCurrentThread())));
    EXPECT_FALSE(thread.Suspend());
    EXPECT_FALSE(thread.Resume());
    EXPECT_TRUE(thread.Wait(-1));
    EXPECT_TRUE(thread.Stop(0));
    EXPECT_TRUE(thread.AskForStop()); // Stop asks even when there is nothing to stop
    EXPECT_TRUE(before.Restored());
}

TEST(Thread, WorkerThatEndsByItselfLeavesTheEndedStateAndCanStartAgain)
{
    const census::Snapshot before;
    YXThread thread; // the class's own Process returns 0 at once
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(thread.Begin());
        ASSERT_NE(thread.GetThreadId(), 0u);
        ASSERT_NE(thread.GetThreadId(), thread.GetMainThreadId());
        // However the worker's end and Begin's store of the handle fall, the handle is gone once
        // the worker has ended.
        ASSERT_TRUE(census::Settles([&] { return thread.IsFinished() && !thread.IsCreated(); })) << round;
    }
    const auto start = Clock::now();
    EXPECT_TRUE(thread.Wait(10000));
    EXPECT_LT(MillisecondsSince(start), 100);
    EXPECT_TRUE(before.Restored());
}

TEST(Thread, SecondBeginOnARunningWorkerChangesNothing)
{
    const census::Snapshot before;
    {
        Worker worker(Kind::Cooperative);
        ASSERT_TRUE(worker.Begin());
        const long handle = worker.GetThreadHandle();
        const unsigned long id = worker.GetThreadId();
        worker.WaitStarted();
        EXPECT_FALSE(worker.Begin());
        EXPECT_EQ(worker.GetThreadHandle(), handle);
        EXPECT_EQ(worker.GetThreadId(), id);
        EXPECT_FALSE(worker.IsFinished());
        HANDLE watched = worker.Watch();
        EXPECT_TRUE(worker.Stop(5000));
        EXPECT_EQ(ExitCodeOf(watched), 5u);
        EXPECT_TRUE(worker.AskForStop()); // stays until the next Begin
        EXPECT_TRUE(worker.Begin());
        EXPECT_FALSE(worker.AskForStop());
        // Started: the worker's call of Process comes before the destructors, which change the
        // object's virtual table on their way.
        worker.WaitStarted();
    } // the destructor stops the second one
    EXPECT_TRUE(before.Restored());
}

TEST(Thread, CooperativeWorkerEndsWithinTheFirstTimeOut)
{
    const census::Snapshot before;
    Worker worker(Kind::Cooperative);
    ASSERT_TRUE(worker.Begin());
    worker.WaitStarted();
    const auto start = Clock::now();
    EXPECT_TRUE(worker.Stop(3000));
    EXPECT_LT(MillisecondsSince(start), 3000);
    EXPECT_TRUE(worker.IsFinished());
    EXPECT_FALSE(worker.IsCreated());
    const auto again = Clock::now();
    EXPECT_TRUE(worker.Wait(3000)); // an ended worker: at once
    EXPECT_LT(MillisecondsSince(again), 50);
    EXPECT_TRUE(before.Restored());
}

// Runaway workers, with the time-out given and with a negative one (the object's default).
TEST(Thread, RunawayWorkerIsEndedWithinTwiceTheTimeOutWithExitCodeOne)
{
    struct Case {
        Kind kind;
        long timeOut;
    };
    for (const Case& c : {Case{Kind::Spinning, 300}, Case{Kind::Sleeping, 300}, Case{Kind::Sleeping, -1},
                          Case{Kind::Spinning, -1000}}) {
        SCOPED_TRACE(c.timeOut);
        const census::Snapshot before;
        Worker worker(c.kind, 300);
        ASSERT_TRUE(worker.Begin());
        worker.WaitStarted();
        HANDLE watched = worker.Watch();
        const auto start = Clock::now();
        EXPECT_FALSE(worker.Wait(c.timeOut));
        const auto elapsed = MillisecondsSince(start);
        EXPECT_GE(elapsed, 550);
        EXPECT_LT(elapsed, 600 + 1500);
        EXPECT_TRUE(worker.AskForStop());
        EXPECT_TRUE(worker.IsFinished());
        EXPECT_FALSE(worker.IsCreated());
        EXPECT_EQ(ExitCodeOf(watched), 1u);
        const long steps = worker.m_steps;
        Sleep(50);
        EXPECT_EQ(worker.m_steps, steps); // it really stopped
        EXPECT_TRUE(before.Restored());
    }
}

TEST(Thread, TimeOutOfZeroEndsARunningWorkerAtOnce)
{
    const census::Snapshot before;
    Worker worker(Kind::Sleeping); // a cooperative one might just make it between the two waits
    ASSERT_TRUE(worker.Begin());
    worker.WaitStarted();
    HANDLE watched = worker.Watch();
    const auto start = Clock::now();
    EXPECT_FALSE(worker.Stop(0));
    EXPECT_LT(MillisecondsSince(start), 1000);
    EXPECT_EQ(ExitCodeOf(watched), 1u);
    EXPECT_TRUE(before.Restored());
}

TEST(Thread, DestructorEndsARunawayWorkerWithinTwiceTheDefaultTimeOut)
{
    const census::Snapshot before;
    HANDLE watched = nullptr;
    const auto start = Clock::now();
    {
        Worker worker(Kind::Spinning, 200);
        ASSERT_TRUE(worker.Begin());
        worker.WaitStarted();
        watched = worker.Watch();
    }
    const auto elapsed = MillisecondsSince(start);
    EXPECT_GE(elapsed, 350);
    EXPECT_LT(elapsed, 400 + 1500);
    EXPECT_EQ(ExitCodeOf(watched), 1u);
    EXPECT_TRUE(before.Restored());
}

TEST(Thread, WorkerThatThrowsEndsWithExitCodeOneAndTheProcessGoesOn)
{
    const census::Snapshot before;
    Worker worker(Kind::Throwing);
    ASSERT_TRUE(worker.Begin());
    HANDLE watched = worker.Watch();
    worker.m_go = true;
    EXPECT_EQ(ExitCodeOf(watched), 1u);
    EXPECT_TRUE(census::Settles([&] { return worker.IsFinished() && !worker.IsCreated(); }));
    EXPECT_TRUE(worker.Wait(1000));
    EXPECT_TRUE(before.Restored());
}

TEST(Thread, SuspendStopsTheWorkerUntilResume)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer holds signals back from a thread that makes no call, so the "
                    "stand-in cannot park a spinning worker under it";
#endif
    const census::Snapshot before;
    Worker worker(Kind::Spinning, 200);
    ASSERT_TRUE(worker.Begin());
    worker.WaitStarted();
    ASSERT_TRUE(worker.Suspend());
    const long steps = worker.m_steps;
    Sleep(100);
    EXPECT_EQ(worker.m_steps, steps);
    EXPECT_TRUE(worker.Suspend()); // counts
    EXPECT_TRUE(worker.Resume());
    Sleep(50);
    EXPECT_EQ(worker.m_steps, steps); // still suspended once
    EXPECT_TRUE(worker.Resume());
    EXPECT_TRUE(census::Settles([&] { return worker.m_steps != steps; }));
    // A suspended runaway worker is ended as well.
    ASSERT_TRUE(worker.Suspend());
    EXPECT_FALSE(worker.Wait(100));
    EXPECT_TRUE(before.Restored());
}

// A copy holds its own handle on the same worker: each object closes its own once, and the copy
// learns of the worker's end by waiting.
TEST(Thread, CopyOfARunningWorkerSharesItThroughItsOwnHandle)
{
    const census::Snapshot before;
    Worker worker(Kind::Cooperative);
    ASSERT_TRUE(worker.Begin());
    worker.WaitStarted();
    {
        Worker copy(worker);
        EXPECT_TRUE(copy.IsCreated());
        EXPECT_NE(copy.GetThreadHandle(), worker.GetThreadHandle());
        EXPECT_EQ(copy.GetThreadId(), worker.GetThreadId());
        EXPECT_FALSE(copy.IsFinished());
        Worker assigned(Kind::Quick);
        assigned = copy;
        const Worker& same = assigned;
        assigned = same;
        EXPECT_TRUE(assigned.IsCreated());
        EXPECT_TRUE(worker.Stop(5000));
        const auto start = Clock::now();
        EXPECT_TRUE(copy.Wait(5000));
        EXPECT_TRUE(assigned.Wait(5000));
        EXPECT_LT(MillisecondsSince(start), 1000);
        EXPECT_FALSE(copy.IsCreated());
    }
    Worker ended(worker); // a copy of an ended object has no worker
    EXPECT_FALSE(ended.IsCreated());
    EXPECT_TRUE(ended.IsFinished());
    EXPECT_TRUE(before.Restored());
}

} // namespace
