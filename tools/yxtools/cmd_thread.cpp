// yxtools thread: a worker that stops when asked and one that runs on and is ended by force, each
// stopped with the same time-out, with the times measured.
#include <yxtools/yxtools.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "cli.h"

namespace {

using Clock = std::chrono::steady_clock;

class Worker : public YXThread {
public:
    explicit Worker(bool cooperative) : m_cooperative(cooperative) {}
    unsigned long Process() override
    {
        m_running = true;
        while (!m_cooperative || !AskForStop()) {
            ++m_steps;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return 0;
    }
    std::atomic<bool> m_running{false};
    std::atomic<unsigned long> m_steps{0};

private:
    bool m_cooperative;
};

// Runs one worker, stops it and reports; false when the worker could not be started.
bool Show(cli::Context& context, const char* name, bool cooperative, long timeOut, cli::Json& out)
{
    Worker worker(cooperative);
    if (!worker.Begin()) {
        context.Line("%s worker: could not be started", name);
        return false;
    }
    while (!worker.m_running) {
        std::this_thread::yield();
    }
    const auto start = Clock::now();
    const bool inTime = worker.Stop(timeOut);
    const long long ms = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    const unsigned long steps = worker.m_steps;
    context.Line("%s worker %lu: Stop(%ld) -> %s after %lld ms (%s), %lu steps done", name, worker.GetThreadId(),
                 timeOut, inTime ? "true" : "false", ms,
                 inTime ? "it stopped when asked" : "ended by force, exit code 1", steps);
    out = cli::Json{{"stop_result", inTime},
                    {"ms", ms},
                    {"finished", worker.IsFinished()},
                    {"created", worker.IsCreated()},
                    {"steps", steps}};
    return true;
}

} // namespace

namespace cli {

void AddThreadCommand(CLI::App& app, Context& context)
{
    CLI::App* thread = app.add_subcommand("thread", "a worker stopped when asked and one ended by force, timed");
    static long timeOut = 300;
    thread->add_option("--timeout", timeOut, "the time-out given to Stop, in ms")->check(CLI::Range(0, 60000));
    context.SetAction(thread, [&context] {
        Json cooperative;
        Json runaway;
        if (!Show(context, "cooperative", true, timeOut, cooperative) ||
            !Show(context, "runaway", false, timeOut, runaway)) {
            return 1;
        }
        context.result["timeout_ms"] = timeOut;
        context.result["cooperative"] = cooperative;
        context.result["runaway"] = runaway;
        return 0;
    });
}

} // namespace cli

namespace {
const cli::Registration registration("thread", cli::AddThreadCommand);
}
