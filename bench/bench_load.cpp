// Loading an index of one million generated entries, beside a plain read of the same file, and
// the memory that a loaded index takes beyond the file's own size.

#include "bench/index_generator.h"
#include "index/index_data.h"
#include "loam/disk_file.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <memory>
#include <string>

namespace {

constexpr int32_t RecordCount = 1000000;

// The index is written once per run into a folder of its own and removed at exit.
class BenchIndex {
public:
    BenchIndex() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "bench_load_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        folder = pattern;
        spec = loam::FileSpec((folder + "/sorvanta.idx").c_str());
        if (GenerateIndex(spec, RecordCount, 1))
            size = spec.GetFileSize();
    }
    ~BenchIndex() {
        if (!folder.empty())
            std::filesystem::remove_all(folder);
    }

    std::string folder;
    loam::FileSpec spec;
    uint32_t size = 0;
};

const BenchIndex& GetBenchIndex() {
    static const BenchIndex index;
    return index;
}

size_t AllocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void ReadFileAlone(benchmark::State& state) {
    const BenchIndex& index = GetBenchIndex();
    if (index.size == 0) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    for (auto _ : state) {
        auto buffer = std::make_unique_for_overwrite<char[]>(index.size);
        loam::DiskFile file;
        if (!file.OpenFile(index.spec, loam::FileModeRead) ||
            !file.Read(buffer.get(), index.size, nullptr)) {
            state.SkipWithError("the index could not be read");
            return;
        }
        benchmark::DoNotOptimize(buffer.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * index.size);
    state.counters["file_MB"] = index.size / 1e6;
}

void LoadIndex(benchmark::State& state) {
    const BenchIndex& index = GetBenchIndex();
    if (index.size == 0) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    size_t beyondFile = 0;
    for (auto _ : state) {
        const size_t before = AllocatedBytes();
        IndexData data;
        if (!data.Load(index.spec)) {
            state.SkipWithError("the index could not be loaded");
            return;
        }
        beyondFile = AllocatedBytes() - before - index.size;
        benchmark::DoNotOptimize(data.GetTotalSize());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * index.size);
    state.counters["records"] = RecordCount;
    state.counters["file_MB"] = index.size / 1e6;
    state.counters["beyond_file_MB"] = beyondFile / 1e6;
    state.counters["beyond_file_B/record"] = static_cast<double>(beyondFile) / RecordCount;
}

BENCHMARK(ReadFileAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadIndex)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
