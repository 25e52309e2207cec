// The hole managers side by side with what a host would write instead: std::priority_queue for
// the speed manager, std::sort for the efficient manager's sort, and a best-fit free list on
// std::multimap with an offset map for merging, for the whole allocate/free cycle.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <numeric>
#include <queue>
#include <random>
#include <vector>

#include <yxtools/holes.h>

namespace {

constexpr std::uint32_t kSeed = 12345;

// N holes with the distinct sizes 1..N in random order, at offsets that do not touch.
std::vector<tagFILEHOLE> DistinctHoles(std::int32_t n)
{
    std::vector<std::int32_t> sizes(static_cast<std::size_t>(n));
    std::iota(sizes.begin(), sizes.end(), 1);
    std::shuffle(sizes.begin(), sizes.end(), std::mt19937(kSeed));
    std::vector<tagFILEHOLE> holes;
    std::uint32_t offset = 0;
    for (std::int32_t size : sizes) {
        holes.push_back({offset, size});
        offset += static_cast<std::uint32_t>(size) + 1;
    }
    return holes;
}

// N holes with random sizes (many equal) at random offsets, the efficient manager's sort input.
std::vector<tagFILEHOLE> RandomHoles(std::int32_t n)
{
    std::mt19937 rng(kSeed);
    std::vector<tagFILEHOLE> holes(static_cast<std::size_t>(n));
    for (tagFILEHOLE& h : holes) {
        h.dwOffset = rng() & 0x7FFFFFFF;
        h.lSize = static_cast<std::int32_t>(rng() % 65536);
    }
    return holes;
}

// --- the speed manager against std::priority_queue ------------------------------------------------

struct BySizeLess {
    bool operator()(const tagFILEHOLE& a, const tagFILEHOLE& b) const { return a.lSize < b.lSize; }
};
using StdQueue = std::priority_queue<tagFILEHOLE, std::vector<tagFILEHOLE>, BySizeLess>;

void BM_Speed_Add(benchmark::State& state)
{
    const std::vector<tagFILEHOLE> holes = DistinctHoles(static_cast<std::int32_t>(state.range(0)));
    YXSpeedHoleManager m;
    for (auto _ : state) {
        for (const tagFILEHOLE& h : holes) {
            m.AddHole(h.dwOffset, h.lSize);
        }
        const long count = m.GetNumberOfHoles();
        benchmark::DoNotOptimize(count);
        m.ClearHoleList();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_StdQueue_Push(benchmark::State& state)
{
    const std::vector<tagFILEHOLE> holes = DistinctHoles(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) {
        StdQueue q;
        for (const tagFILEHOLE& h : holes) {
            q.push(h);
        }
        const std::size_t count = q.size();
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Speed_ReadHead(benchmark::State& state)
{
    YXSpeedHoleManager m;
    for (const tagFILEHOLE& h : DistinctHoles(static_cast<std::int32_t>(state.range(0)))) {
        m.AddHole(h.dwOffset, h.lSize);
    }
    long request = 1;
    for (auto _ : state) {
        const unsigned long offset = m.GetBestHole(request);
        benchmark::DoNotOptimize(offset);
        request = (request & 1023) + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_StdQueue_ReadHead(benchmark::State& state)
{
    StdQueue q;
    for (const tagFILEHOLE& h : DistinctHoles(static_cast<std::int32_t>(state.range(0)))) {
        q.push(h);
    }
    const std::int32_t footPrint = 0;
    std::int32_t request = 1;
    for (auto _ : state) {
        // A host's heap changes between two allocations, so its head is read afresh each time;
        // without this the compiler reads it once, outside the loop.
        benchmark::ClobberMemory();
        // What a host writes to ask a heap of holes for a block.
        const tagFILEHOLE& head = q.top();
        const std::uint32_t offset =
            !q.empty() && (head.lSize == request || head.lSize >= request + footPrint) ? head.dwOffset : 0xFFFFFFFF;
        benchmark::DoNotOptimize(offset);
        request = (request & 1023) + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

// The least that any call into the shared library costs a host: a call of an exported member
// that reads one counter. The standard queue, inlined into the host's loop, pays nothing of it.
void BM_Speed_CallFloor(benchmark::State& state)
{
    YXSpeedHoleManager m;
    for (auto _ : state) {
        const long count = m.GetNumberOfHoles();
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(state.iterations());
}

// Each iteration empties a queue of N holes, head by head; the filling is not timed.
void BM_Speed_RemoveHead(benchmark::State& state)
{
    const auto n = static_cast<std::int32_t>(state.range(0));
    const std::vector<tagFILEHOLE> holes = DistinctHoles(n);
    std::vector<std::uint32_t> offsetOfSize(static_cast<std::size_t>(n) + 1);
    for (const tagFILEHOLE& h : holes) {
        offsetOfSize[static_cast<std::size_t>(h.lSize)] = h.dwOffset;
    }
    YXSpeedHoleManager m;
    for (auto _ : state) {
        state.PauseTiming();
        for (const tagFILEHOLE& h : holes) {
            m.AddHole(h.dwOffset, h.lSize);
        }
        state.ResumeTiming();
        for (std::int32_t size = n; size > 0; --size) {
            const tagFILEHOLE* rest = m.RemoveHole(offsetOfSize[static_cast<std::size_t>(size)], size);
            benchmark::DoNotOptimize(rest);
        }
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_StdQueue_Pop(benchmark::State& state)
{
    const auto n = static_cast<std::int32_t>(state.range(0));
    const std::vector<tagFILEHOLE> holes = DistinctHoles(n);
    StdQueue q;
    for (auto _ : state) {
        state.PauseTiming();
        for (const tagFILEHOLE& h : holes) {
            q.push(h);
        }
        state.ResumeTiming();
        while (!q.empty()) {
            q.pop();
        }
        const std::size_t left = q.size();
        benchmark::DoNotOptimize(left);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// --- the efficient manager's sort against std::sort -----------------------------------------------

void BM_Efficient_Sort(benchmark::State& state)
{
    const std::vector<tagFILEHOLE> holes = RandomHoles(static_cast<std::int32_t>(state.range(0)));
    YXEfficientHoleManager m;
    for (auto _ : state) {
        state.PauseTiming();
        m.ClearHoleList();
        for (const tagFILEHOLE& h : holes) {
            m.AddHole(h.dwOffset, h.lSize);
        }
        state.ResumeTiming();
        m.SortHoles(state.range(1) != 0 ? YXHOLESORT_SIZE : YXHOLESORT_OFFSET);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_StdSort(benchmark::State& state)
{
    const std::vector<tagFILEHOLE> holes = RandomHoles(static_cast<std::int32_t>(state.range(0)));
    std::vector<tagFILEHOLE> work;
    for (auto _ : state) {
        state.PauseTiming();
        work = holes;
        state.ResumeTiming();
        if (state.range(1) != 0) {
            std::sort(work.begin(), work.end(), BySizeLess());
        } else {
            std::sort(work.begin(), work.end(),
                      [](const tagFILEHOLE& a, const tagFILEHOLE& b) { return a.dwOffset < b.dwOffset; });
        }
        const tagFILEHOLE& first = work.front();
        benchmark::DoNotOptimize(first);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// --- the allocate/free cycle ----------------------------------------------------------------------

// What a host writes without the library: best fit on a multimap by size, and a map by offset
// to merge a freed range with its neighbours.
class MapFreeList {
public:
    void Add(std::uint32_t offset, std::int32_t size)
    {
        auto next = m_byOffset.lower_bound(offset);
        if (next != m_byOffset.end() && offset + static_cast<std::uint32_t>(size) == next->first) {
            size += next->second;
            EraseSize(next->first, next->second);
            next = m_byOffset.erase(next);
        }
        if (next != m_byOffset.begin()) {
            auto prev = std::prev(next);
            if (prev->first + static_cast<std::uint32_t>(prev->second) == offset) {
                EraseSize(prev->first, prev->second);
                offset = prev->first;
                size += prev->second;
                m_byOffset.erase(prev);
            }
        }
        m_byOffset.emplace(offset, size);
        m_bySize.emplace(size, offset);
    }
    // Best fit: the smallest hole that takes the block. 0xFFFFFFFF when none does.
    std::uint32_t Take(std::int32_t size)
    {
        const auto fit = m_bySize.lower_bound(size);
        if (fit == m_bySize.end()) {
            return 0xFFFFFFFF;
        }
        const std::uint32_t offset = fit->second;
        const std::int32_t rest = fit->first - size;
        m_bySize.erase(fit);
        m_byOffset.erase(offset);
        if (rest > 0) {
            m_byOffset.emplace(offset + static_cast<std::uint32_t>(size), rest);
            m_bySize.emplace(rest, offset + static_cast<std::uint32_t>(size));
        }
        return offset;
    }
    std::size_t Count() const { return m_byOffset.size(); }

private:
    void EraseSize(std::uint32_t offset, std::int32_t size)
    {
        auto range = m_bySize.equal_range(size);
        for (auto it = range.first; it != range.second; ++it) {
            if (it->second == offset) {
                m_bySize.erase(it);
                return;
            }
        }
    }

    std::multimap<std::int32_t, std::uint32_t> m_bySize;
    std::map<std::uint32_t, std::int32_t> m_byOffset;
};

// Allocation and freeing through a hole manager, as a host drives it.
struct ManagerHost {
    YXHoleManager* manager;
    std::uint32_t Take(std::int32_t size)
    {
        const unsigned long offset = manager->GetBestHole(size);
        if (offset != 0xFFFFFFFFUL) {
            manager->RemoveHole(offset, size);
        }
        return static_cast<std::uint32_t>(offset);
    }
    void Add(std::uint32_t offset, std::int32_t size) { manager->AddHole(offset, size); }
    std::size_t Count() const { return static_cast<std::size_t>(manager->GetNumberOfHoles()); }
};

// A file of 2N blocks with every other one freed gives N holes; then each cycle frees a random
// block and allocates one of a random size, extending the file when no hole takes it.
template <class Host>
void RunCycle(benchmark::State& state, Host& host)
{
    const auto n = static_cast<std::int32_t>(state.range(0));
    std::mt19937 rng(kSeed);
    const auto randomSize = [&rng] { return static_cast<std::int32_t>(1 + rng() % 512); };
    std::vector<tagFILEHOLE> blocks; // allocated
    std::uint32_t fileLength = 0;
    for (std::int32_t i = 0; i < 2 * n; ++i) {
        const std::int32_t size = randomSize();
        if (i % 2 == 0) {
            host.Add(fileLength, size);
        } else {
            blocks.push_back({fileLength, size});
        }
        fileLength += static_cast<std::uint32_t>(size);
    }
    for (auto _ : state) {
        const std::size_t victim = rng() % blocks.size();
        host.Add(blocks[victim].dwOffset & 0x7FFFFFFF, blocks[victim].lSize);
        const std::int32_t size = randomSize();
        std::uint32_t offset = host.Take(size);
        if (offset == 0xFFFFFFFF) {
            offset = fileLength;
            fileLength += static_cast<std::uint32_t>(size);
        }
        blocks[victim] = {offset, size};
    }
    state.counters["holes_at_end"] = static_cast<double>(host.Count());
    state.SetItemsProcessed(state.iterations());
}

void BM_Cycle_Efficient(benchmark::State& state)
{
    YXEfficientHoleManager m;
    ManagerHost host{&m};
    RunCycle(state, host);
}

void BM_Cycle_Speed(benchmark::State& state)
{
    YXSpeedHoleManager m;
    ManagerHost host{&m};
    RunCycle(state, host);
}

void BM_Cycle_MapFreeList(benchmark::State& state)
{
    MapFreeList list;
    RunCycle(state, list);
}

// --- memory per hole ------------------------------------------------------------------------------

std::size_t HeapInUse()
{
    return mallinfo2().uordblks;
}

template <class Fill>
void MeasureBytesPerHole(benchmark::State& state, Fill fill)
{
    const std::vector<tagFILEHOLE> holes = DistinctHoles(static_cast<std::int32_t>(state.range(0)));
    double bytes = 0;
    for (auto _ : state) {
        const std::size_t before = HeapInUse();
        const std::size_t after = fill(holes);
        bytes = static_cast<double>(after - before);
    }
    state.counters["bytes_per_hole"] = bytes / static_cast<double>(holes.size());
}

// What the efficient manager asks the allocator for, from its own counters: its blocks of 200
// records and its table of block pointers. The allocator's headers come on top.
class CountedEfficientManager : public YXEfficientHoleManager {
public:
    std::size_t BytesAskedFor() const
    {
        const auto blocks = static_cast<std::size_t>(m_lBlockTableSize - m_wFreeTableEntries);
        return blocks * 200 * sizeof(tagFILEHOLE) + static_cast<std::size_t>(m_lBlockTableSize) * sizeof(void*);
    }
};

void BM_Memory_Efficient(benchmark::State& state)
{
    double asked = 0;
    MeasureBytesPerHole(state, [&asked](const std::vector<tagFILEHOLE>& holes) {
        CountedEfficientManager m;
        for (const tagFILEHOLE& h : holes) {
            m.AddHole(h.dwOffset, h.lSize);
        }
        asked = static_cast<double>(m.BytesAskedFor()) / static_cast<double>(holes.size());
        return HeapInUse();
    });
    state.counters["asked_bytes_per_hole"] = asked;
}

void BM_Memory_MapFreeList(benchmark::State& state)
{
    MeasureBytesPerHole(state, [](const std::vector<tagFILEHOLE>& holes) {
        MapFreeList list;
        for (const tagFILEHOLE& h : holes) {
            list.Add(h.dwOffset, h.lSize);
        }
        return HeapInUse();
    });
}

} // namespace

BENCHMARK(BM_Speed_Add)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_StdQueue_Push)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_Speed_ReadHead)->Arg(100000);
BENCHMARK(BM_StdQueue_ReadHead)->Arg(100000);
BENCHMARK(BM_Speed_CallFloor);
BENCHMARK(BM_Speed_RemoveHead)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_StdQueue_Pop)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_Efficient_Sort)->ArgsProduct({{100000, 1000000}, {1, 0}})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StdSort)->ArgsProduct({{100000, 1000000}, {1, 0}})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Cycle_Efficient)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Cycle_Speed)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Cycle_MapFreeList)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Memory_Efficient)->Arg(1000000)->Iterations(1);
BENCHMARK(BM_Memory_MapFreeList)->Arg(1000000)->Iterations(1);

BENCHMARK_MAIN();
