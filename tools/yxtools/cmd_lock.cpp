// yxtools lock: a mutex held by a worker thread while this thread tries it, once without waiting
// and once with a time-out, with the times measured.
#include <yxtools/yxtools.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "cli.h"

namespace {

using Clock = std::chrono::steady_clock;

long long Since(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// Takes the mutex, keeps it for a while and gives it back.
class Holder : public YXThread {
public:
    Holder(YXMutex& mutex, long holdMs) : m_mutex(mutex), m_holdMs(holdMs) {}
    unsigned long Process() override
    {
        if (!m_mutex.Lock(-1)) {
            return 1;
        }
        m_held = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(m_holdMs));
        m_mutex.Unlock();
        return 0;
    }
    std::atomic<bool> m_held{false};

private:
    YXMutex& m_mutex;
    long m_holdMs;
};

} // namespace

namespace cli {

void AddLockCommand(CLI::App& app, Context& context)
{
    CLI::App* lock = app.add_subcommand("lock", "a mutex held by another thread, tried with and without a time-out");
    static long hold = 500;
    static long timeOut = 200;
    lock->add_option("--hold", hold, "how long the worker holds the mutex, in ms")->check(CLI::Range(1, 60000));
    lock->add_option("--timeout", timeOut, "how long this thread waits for it, in ms")->check(CLI::Range(0, 60000));
    context.SetAction(lock, [&context] {
        YXMutex mutex;
        if (mutex.m_hMutex == nullptr) {
            context.Line("the platform gave no mutex");
            context.result["created"] = false;
            return 1;
        }
        Holder holder(mutex, hold);
        const auto begun = Clock::now();
        if (!holder.Begin()) {
            context.Line("the worker could not be started");
            context.result["started"] = false;
            return 1;
        }
        while (!holder.m_held && !holder.IsFinished()) {
            std::this_thread::yield();
        }
        context.Line("worker %lu holds the mutex for %ld ms", holder.GetThreadId(), hold);

        auto start = Clock::now();
        const bool tried = mutex.Lock(0);
        const long long triedMs = Since(start);
        context.Line("Lock(0)   -> %s after %lld ms", tried ? "true" : "false", triedMs);
        if (tried) {
            mutex.Unlock();
        }
        start = Clock::now();
        const bool waited = mutex.Lock(timeOut);
        const long long waitedMs = Since(start);
        context.Line("Lock(%ld) -> %s after %lld ms (%s)", timeOut, waited ? "true" : "false", waitedMs,
                     waited ? "the worker let go in time" : "timed out while the worker held it");
        if (waited) {
            mutex.Unlock();
        }
        const bool ended = holder.Wait(-1);
        context.Line("worker ended after %lld ms in all", Since(begun));

        context.result["hold_ms"] = hold;
        context.result["try"] = Json{{"result", tried}, {"ms", triedMs}};
        context.result["wait"] = Json{{"timeout_ms", timeOut}, {"result", waited}, {"ms", waitedMs}};
        context.result["worker_ended_in_time"] = ended;
        return 0;
    });
}

} // namespace cli

namespace {
const cli::Registration registration("lock", cli::AddLockCommand);
}
