// Day numbers to dates and back: the library against the standard library's civil calendar
// (std::chrono::year_month_day and sys_days), on the same dates.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

#include <yxtools/calendar.h>

namespace {

using namespace std::chrono;

constexpr long kUnixEpoch = 141427; // our day number of 1 January 1970

// 4096 day numbers from about year -600 to 3700, and their dates in both forms.
struct Dates {
    std::vector<long> numbers;
    std::vector<DISKDATE> records;
    std::vector<year_month_day> civil;

    Dates()
    {
        std::mt19937 random(1582);
        std::uniform_int_distribution<long> pick(-800000, 800000);
        for (int i = 0; i < 4096; ++i) {
            const long n = pick(random);
            DISKDATE date{};
            YXDate_GregorianToDate(n, date);
            numbers.push_back(n);
            records.push_back(date);
            civil.push_back(year_month_day{sys_days{days{n - kUnixEpoch}}});
        }
    }
};

const Dates& Sample()
{
    static const Dates dates;
    return dates;
}

void DayNumberToDate_YXTools(benchmark::State& state)
{
    const Dates& dates = Sample();
    for (auto _ : state) {
        unsigned sum = 0;
        for (const long n : dates.numbers) {
            DISKDATE date{};
            YXDate_GregorianToDate(n, date);
            sum += static_cast<unsigned>(date.m_nYear) + date.m_byMonth + date.m_byDay;
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(dates.numbers.size()));
}

void DayNumberToDate_Chrono(benchmark::State& state)
{
    const Dates& dates = Sample();
    for (auto _ : state) {
        unsigned sum = 0;
        for (const long n : dates.numbers) {
            const year_month_day date{sys_days{days{n - kUnixEpoch}}};
            sum += static_cast<unsigned>(static_cast<int>(date.year())) + static_cast<unsigned>(date.month()) +
                   static_cast<unsigned>(date.day());
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(dates.numbers.size()));
}

void DateToDayNumber_YXTools(benchmark::State& state)
{
    const Dates& dates = Sample();
    for (auto _ : state) {
        long sum = 0;
        for (const DISKDATE& date : dates.records) {
            sum += YXDate_DateToGregorian(date);
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(dates.records.size()));
}

void DateToDayNumber_Chrono(benchmark::State& state)
{
    const Dates& dates = Sample();
    for (auto _ : state) {
        long sum = 0;
        for (const year_month_day& date : dates.civil) {
            sum += static_cast<long>(sys_days{date}.time_since_epoch().count()) + kUnixEpoch;
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(dates.civil.size()));
}

BENCHMARK(DayNumberToDate_YXTools);
BENCHMARK(DayNumberToDate_Chrono);
BENCHMARK(DateToDayNumber_YXTools);
BENCHMARK(DateToDayNumber_Chrono);

} // namespace

BENCHMARK_MAIN();
