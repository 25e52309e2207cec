// Lock, unlock and copy critical sections and mutexes from three threads, against a model of
// owners and counts. Each operation runs on the thread it names while the others wait, so the
// order of events is the input's and every answer can be predicted exactly; an operation that
// would block (a section held by another thread, which waits without limit) is left out.
#include <array>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "fuzz_support.h"
#include "yxtools/concurrency.h"

namespace {

constexpr int kThreads = 3;
constexpr int kSections = 2;
constexpr int kMutexes = 3;

// A thread that runs one task at a time, handed over by the input's driver. Ending it while it
// owns mutexes abandons them.
class Runner {
public:
    Runner() : m_thread([this] { Loop(); }) {}
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;
    ~Runner()
    {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_quit = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }

    void Run(std::function<void()> task)
    {
        std::unique_lock<std::mutex> lock(m_lock);
        m_task = std::move(task);
        m_wake.notify_all();
        m_wake.wait(lock, [this] { return !m_task; });
    }

private:
    void Loop()
    {
        std::unique_lock<std::mutex> lock(m_lock);
        for (;;) {
            m_wake.wait(lock, [this] { return m_quit || m_task; });
            if (!m_task) {
                return;
            }
            // The task runs without the runner's lock: it takes and keeps the locks under test.
            lock.unlock();
            m_task();
            lock.lock();
            m_task = nullptr;
            m_wake.notify_all();
        }
    }

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::function<void()> m_task;
    bool m_quit = false;
    std::thread m_thread; // last: starts when the rest is ready
};

struct SectionModel {
    int owner = -1; // thread index, -1 when free
    std::uint32_t count = 0;
};

struct MutexModel {
    int owner = -1;
    int count = 0;
    bool abandoned = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    std::array<std::unique_ptr<Runner>, kThreads> runners;
    for (auto& runner : runners) {
        runner = std::make_unique<Runner>();
    }
    std::array<std::unique_ptr<YXCriticalSection>, kSections> sections;
    std::array<SectionModel, kSections> sectionModels;
    for (auto& section : sections) {
        section = std::make_unique<YXCriticalSection>();
    }
    // Mutex objects refer to platform mutexes; copies share one. mutexOf says which.
    std::array<std::unique_ptr<YXMutex>, kMutexes> mutexes;
    std::array<int, kMutexes> mutexOf{};
    std::array<MutexModel, kMutexes> mutexModels;
    for (int i = 0; i < kMutexes; ++i) {
        mutexes[i] = std::make_unique<YXMutex>();
        mutexOf[i] = i;
    }

    for (int steps = 0; !in.Done() && steps < 200; ++steps) {
        const int t = static_cast<int>(in.Below(kThreads));
        const unsigned op = in.Below(7);
        const int s = static_cast<int>(in.Below(kSections));
        const int m = static_cast<int>(in.Below(kMutexes));
        SectionModel& section = sectionModels[s];
        MutexModel& mutex = mutexModels[mutexOf[m]];
        bool result = false;
        switch (op) {
        case 0: // lock a section, unless that would wait for another thread
            if (section.owner != -1 && section.owner != t) {
                break;
            }
            runners[t]->Run([&] { result = sections[s]->Lock(static_cast<long>(in.Byte()) - 128); });
            FUZZ_CHECK(result);
            section.owner = t;
            ++section.count;
            break;
        case 1: // unlock a section: the holder's, or one too many from anyone
            if (section.count != 0 && section.owner != t) {
                break;
            }
            runners[t]->Run([&] { result = sections[s]->Unlock(); });
            FUZZ_CHECK(result);
            if (section.count > 0 && --section.count == 0) {
                section.owner = -1;
            }
            break;
        case 2: { // try a mutex: 0 only tries
            const long timeOut = in.Byte() % 2 == 0 ? 0 : 1;
            runners[t]->Run([&] { result = mutexes[m]->Lock(timeOut); });
            const bool free = mutex.owner == -1 || mutex.owner == t;
            FUZZ_CHECK(result == (free && !(mutex.owner == -1 && mutex.abandoned)));
            if (free) {
                mutex.abandoned = mutex.owner == -1 ? false : mutex.abandoned;
                mutex.owner = t;
                ++mutex.count;
            }
            break;
        }
        case 3: // release a mutex
            runners[t]->Run([&] { result = mutexes[m]->Unlock(); });
            FUZZ_CHECK(result == (mutex.owner == t));
            if (mutex.owner == t && --mutex.count == 0) {
                mutex.owner = -1;
            }
            break;
        case 4: { // a mutex object becomes a copy or the assignee of another: they share one
            const int other = static_cast<int>(in.Below(kMutexes));
            runners[t]->Run([&] {
                if (in.Byte() % 2 == 0) {
                    *mutexes[m] = *mutexes[other];
                } else {
                    mutexes[m] = std::make_unique<YXMutex>(*mutexes[other]);
                }
            });
            mutexOf[m] = mutexOf[other];
            break;
        }
        case 5: { // a section is copied on a thread that may hold it; the copy replaces a free one
            const int target = 1 - s;
            if ((section.count != 0 && section.owner != t) || sectionModels[target].count != 0) {
                break;
            }
            runners[t]->Run([&] { sections[target] = std::make_unique<YXCriticalSection>(*sections[s]); });
            sectionModels[target] = section;
            break;
        }
        case 6: { // a thread ends, holding what it holds; a new one takes its place
            // Sections it holds would never be given back: end only a thread without one.
            bool holdsSection = false;
            for (const auto& model : sectionModels) {
                holdsSection = holdsSection || model.owner == t;
            }
            if (holdsSection) {
                break;
            }
            runners[t] = std::make_unique<Runner>();
            for (auto& model : mutexModels) {
                if (model.owner == t) {
                    model = MutexModel{-1, 0, true};
                }
            }
            break;
        }
        default:
            break;
        }
        for (int i = 0; i < kSections; ++i) {
            FUZZ_CHECK(sections[i]->m_dwLockCount == sectionModels[i].count);
        }
    }

    // Every hold is given back by its owner, so that the objects go unheld.
    for (int i = 0; i < kSections; ++i) {
        if (sectionModels[i].count != 0) {
            runners[sectionModels[i].owner]->Run([&] {
                while (sections[i]->m_dwLockCount != 0) {
                    sections[i]->Unlock();
                }
            });
        }
    }
    for (int i = 0; i < kMutexes; ++i) {
        MutexModel& model = mutexModels[mutexOf[i]];
        for (; model.owner != -1 && model.count > 0; --model.count) {
            runners[model.owner]->Run([&] { FUZZ_CHECK(mutexes[i]->Unlock()); });
        }
    }
    return 0;
}
