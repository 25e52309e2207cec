// The buffer factory's get/release cycle against malloc/free and a reused std::vector, and the
// bit array against std::vector<bool> and std::bitset.
#include <benchmark/benchmark.h>

#include <bitset>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <yxtools/memory.h>

namespace {

// Request sizes that change from one cycle to the next, as a host's messages would.
constexpr unsigned long kSizes[] = {64, 1500, 300, 4096, 32, 900, 2500, 128};
constexpr std::size_t kSizeCount = sizeof(kSizes) / sizeof(kSizes[0]);

void BM_FactoryGetRelease(benchmark::State& state)
{
    YXAutoBufferFactory factory;
    std::size_t i = 0;
    for (auto _ : state) {
        YXAutoBuffer* buffer = factory.GetAutoBuffer(kSizes[i++ % kSizeCount]);
        buffer->m_pData[0] = 1;
        const auto& data = buffer->m_pData;
        benchmark::DoNotOptimize(data);
        factory.ReleaseAutoBuffer(buffer);
    }
}
BENCHMARK(BM_FactoryGetRelease);

void BM_MallocFree(benchmark::State& state)
{
    std::size_t i = 0;
    for (auto _ : state) {
        auto* data = static_cast<unsigned char*>(std::malloc(kSizes[i++ % kSizeCount]));
        data[0] = 1;
        const auto& held = data;
        benchmark::DoNotOptimize(held);
        std::free(data);
    }
}
BENCHMARK(BM_MallocFree);

void BM_ReusedVector(benchmark::State& state)
{
    std::vector<unsigned char> buffer;
    std::size_t i = 0;
    for (auto _ : state) {
        buffer.resize(kSizes[i++ % kSizeCount]);
        buffer[0] = 1;
        const auto& data = buffer.data();
        benchmark::DoNotOptimize(data);
        buffer.clear();
    }
}
BENCHMARK(BM_ReusedVector);

constexpr unsigned long kBits = 4096;

// Sets every third bit, tests them all, then asks whether any is set.
void BM_BitArray(benchmark::State& state)
{
    YXBitArray bits(kBits);
    for (auto _ : state) {
        bits.SetValue(false);
        for (unsigned long k = 0; k < kBits; k += 3) {
            bits.SetValue(k, true);
        }
        unsigned long count = 0;
        for (unsigned long k = 0; k < kBits; ++k) {
            count += bits[k] ? 1 : 0;
        }
        const bool any = bits.IsOneSet();
        const auto& result = count;
        benchmark::DoNotOptimize(result);
        benchmark::DoNotOptimize(any);
    }
}
BENCHMARK(BM_BitArray);

void BM_VectorBool(benchmark::State& state)
{
    std::vector<bool> bits(kBits);
    for (auto _ : state) {
        bits.assign(kBits, false);
        for (unsigned long k = 0; k < kBits; k += 3) {
            bits[k] = true;
        }
        unsigned long count = 0;
        for (unsigned long k = 0; k < kBits; ++k) {
            count += bits[k] ? 1 : 0;
        }
        bool any = false;
        for (unsigned long k = 0; k < kBits && !any; ++k) {
            any = bits[k];
        }
        const auto& result = count;
        benchmark::DoNotOptimize(result);
        benchmark::DoNotOptimize(any);
    }
}
BENCHMARK(BM_VectorBool);

void BM_Bitset(benchmark::State& state)
{
    std::bitset<kBits> bits;
    for (auto _ : state) {
        bits.reset();
        for (unsigned long k = 0; k < kBits; k += 3) {
            bits.set(k);
        }
        unsigned long count = 0;
        for (unsigned long k = 0; k < kBits; ++k) {
            count += bits.test(k) ? 1 : 0;
        }
        const bool any = bits.any();
        const auto& result = count;
        benchmark::DoNotOptimize(result);
        benchmark::DoNotOptimize(any);
    }
}
BENCHMARK(BM_Bitset);

// One bit at a time, read and written on their own: every bit of 4096 read (a third of them set),
// and every bit written with a value that alternates.
void BM_BitArrayRead(benchmark::State& state)
{
    YXBitArray bits(kBits);
    for (unsigned long k = 0; k < kBits; k += 3) {
        bits.SetValue(k, true);
    }
    for (auto _ : state) {
        unsigned long count = 0;
        for (unsigned long k = 0; k < kBits; ++k) {
            count += bits[k] ? 1 : 0;
        }
        const auto& result = count;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBits));
}
BENCHMARK(BM_BitArrayRead);

void BM_VectorBoolRead(benchmark::State& state)
{
    std::vector<bool> bits(kBits);
    for (unsigned long k = 0; k < kBits; k += 3) {
        bits[k] = true;
    }
    for (auto _ : state) {
        unsigned long count = 0;
        for (unsigned long k = 0; k < kBits; ++k) {
            count += bits[k] ? 1 : 0;
        }
        const auto& result = count;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBits));
}
BENCHMARK(BM_VectorBoolRead);

void BM_BitArraySet(benchmark::State& state)
{
    YXBitArray bits(kBits);
    for (auto _ : state) {
        for (unsigned long k = 0; k < kBits; ++k) {
            bits.SetValue(k, (k & 1) != 0);
        }
        const auto& held = bits;
        benchmark::DoNotOptimize(held);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBits));
}
BENCHMARK(BM_BitArraySet);

void BM_VectorBoolSet(benchmark::State& state)
{
    std::vector<bool> bits(kBits);
    for (auto _ : state) {
        for (unsigned long k = 0; k < kBits; ++k) {
            bits[k] = (k & 1) != 0;
        }
        const auto& held = bits;
        benchmark::DoNotOptimize(held);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBits));
}
BENCHMARK(BM_VectorBoolSet);

// IsOneSet alone on an array whose only set bit is the last one: a full scan.
void BM_BitArrayIsOneSet(benchmark::State& state)
{
    YXBitArray bits(kBits);
    bits.SetValue(kBits - 1, true);
    for (auto _ : state) {
        const bool any = bits.IsOneSet();
        benchmark::DoNotOptimize(any);
    }
}
BENCHMARK(BM_BitArrayIsOneSet);

void BM_BitsetAny(benchmark::State& state)
{
    std::bitset<kBits> bits;
    bits.set(kBits - 1);
    for (auto _ : state) {
        const bool any = bits.any();
        benchmark::DoNotOptimize(any);
    }
}
BENCHMARK(BM_BitsetAny);

} // namespace

BENCHMARK_MAIN();
