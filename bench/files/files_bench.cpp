// File_CopyFile, both overloads that take a path as target, against std::filesystem::copy_file,
// on one 256 MiB file in a temporary folder.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <yxtools/files.h>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSize = 256u << 20;

struct Scratch {
    fs::path folder = fs::temp_directory_path() / "yxtools-bench-files";
    std::string source = (folder / "source.bin").string();
    std::string target = (folder / "target.bin").string();

    Scratch()
    {
        fs::create_directories(folder);
        std::vector<char> block(1 << 20);
        for (std::size_t i = 0; i < block.size(); ++i) {
            block[i] = static_cast<char>(i * 131 + 7);
        }
        std::ofstream out(source, std::ios::binary | std::ios::trunc);
        for (std::size_t done = 0; done < kSize; done += block.size()) {
            out.write(block.data(), static_cast<std::streamsize>(block.size()));
        }
    }
    ~Scratch() { fs::remove_all(folder); }
};

Scratch& Files()
{
    static Scratch scratch;
    return scratch;
}

void Report(benchmark::State& state)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(kSize));
}

void BM_FileCopyFile_Paths(benchmark::State& state)
{
    const _SS<char> from(Files().source.c_str());
    const _SS<char> to(Files().target.c_str());
    for (auto _ : state) {
        const bool copied = File_CopyFile(from, to);
        benchmark::DoNotOptimize(copied);
    }
    Report(state);
}

void BM_FileCopyFile_Object(benchmark::State& state)
{
    const YXBinaryFile from(Files().source.c_str(), YXFILE_READ);
    const _SS<char> to(Files().target.c_str());
    for (auto _ : state) {
        const bool copied = File_CopyFile(from, to);
        benchmark::DoNotOptimize(copied);
    }
    Report(state);
}

void BM_StdCopyFile(benchmark::State& state)
{
    for (auto _ : state) {
        const bool copied = fs::copy_file(Files().source, Files().target, fs::copy_options::overwrite_existing);
        benchmark::DoNotOptimize(copied);
    }
    Report(state);
}

BENCHMARK(BM_FileCopyFile_Paths)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_FileCopyFile_Object)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_StdCopyFile)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
