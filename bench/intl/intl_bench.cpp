// Numeric text both ways: YXIntl against what a host would use instead. TextToNumeric against
// strtod and std::from_chars on texts with grouping (which the peers are given without it, since
// they cannot read it); NumericToText against snprintf with the grouping put in by hand.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <yxtools/intl.h>

namespace {

struct Sample {
    std::vector<double> values;
    std::vector<_SS<char>> grouped; // as YXIntl prints them: 1,234,567.89
    std::vector<std::string> plain; // as the C library prints them: 1234567.89

    Sample()
    {
        const YXIntl& intl = *YXIntl_Get();
        std::mt19937_64 random(42);
        std::uniform_real_distribution<double> pick(-1e7, 1e7);
        for (int i = 0; i < 1024; ++i) {
            const double v = pick(random);
            values.push_back(v);
            _SS<char> text;
            intl.NumericToText(v, text, -2);
            grouped.push_back(text);
            char buffer[64];
            std::snprintf(buffer, sizeof(buffer), "%.2f", v);
            plain.emplace_back(buffer);
        }
    }
};

const Sample& Data()
{
    static const Sample sample;
    return sample;
}

void TextToNumeric_YXIntl(benchmark::State& state)
{
    const Sample& s = Data();
    const YXIntl& intl = *YXIntl_Get();
    for (auto _ : state) {
        double sum = 0;
        for (const _SS<char>& text : s.grouped) {
            sum += intl.TextToNumeric(text, nullptr, nullptr);
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(s.grouped.size()));
}

void TextToNumeric_strtod(benchmark::State& state)
{
    const Sample& s = Data();
    for (auto _ : state) {
        double sum = 0;
        for (const std::string& text : s.plain) {
            sum += std::strtod(text.c_str(), nullptr);
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(s.plain.size()));
}

void TextToNumeric_from_chars(benchmark::State& state)
{
    const Sample& s = Data();
    for (auto _ : state) {
        double sum = 0;
        for (const std::string& text : s.plain) {
            double v = 0;
            std::from_chars(text.data(), text.data() + text.size(), v);
            sum += v;
        }
        const auto& result = sum;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(s.plain.size()));
}

void NumericToText_YXIntl(benchmark::State& state)
{
    const Sample& s = Data();
    const YXIntl& intl = *YXIntl_Get();
    _SS<char> text;
    for (auto _ : state) {
        std::size_t length = 0;
        for (const double v : s.values) {
            intl.NumericToText(v, text, -2);
            length += text.size();
        }
        const auto& result = length;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(s.values.size()));
}

// snprintf, then the thousands separators put in front of every third integer digit.
void NumericToText_snprintf(benchmark::State& state)
{
    const Sample& s = Data();
    std::string text;
    for (auto _ : state) {
        std::size_t length = 0;
        for (const double v : s.values) {
            char buffer[64];
            const int n = std::snprintf(buffer, sizeof(buffer), "%.2f", v);
            const int sign = buffer[0] == '-' ? 1 : 0;
            int digits = sign;
            while (digits < n && buffer[digits] != '.') {
                ++digits;
            }
            text.clear();
            for (int i = 0; i < n; ++i) {
                text += buffer[i];
                const int left = digits - i - 1;
                if (i >= sign && i < digits && left > 0 && left % 3 == 0) {
                    text += ',';
                }
            }
            length += text.size();
        }
        const auto& result = length;
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(s.values.size()));
}

BENCHMARK(TextToNumeric_YXIntl);
BENCHMARK(TextToNumeric_strtod);
BENCHMARK(TextToNumeric_from_chars);
BENCHMARK(NumericToText_YXIntl);
BENCHMARK(NumericToText_snprintf);

} // namespace

BENCHMARK_MAIN();
