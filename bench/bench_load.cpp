// Loading indexes of one and ten million generated entries, beside a plain read of the same
// file into a new buffer, and the memory that a loaded index takes beyond the file's own size.

#include "bench/index_generator.h"
#include "index/index_data.h"
#include "index/large_array.h"
#include "loam/disk_file.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

// The index is written once per run into a folder of its own and removed at exit.
class BenchIndex {
public:
    explicit BenchIndex(int32_t records) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "bench_load_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        folder = pattern;
        location = loam::FileSpec((folder + "/sorvanta.idx").c_str());
        if (GenerateIndex(location, records, 1))
            size = location.GetFileSize();
    }
    ~BenchIndex() {
        if (!folder.empty())
            std::filesystem::remove_all(folder);
    }

    std::string folder;
    loam::FileSpec location;
    uint32_t size = 0;
};

const BenchIndex& GetBenchIndex(int32_t records) {
    static std::map<int32_t, std::unique_ptr<BenchIndex>> indexes;
    std::unique_ptr<BenchIndex>& bench = indexes[records];
    if (!bench)
        bench = std::make_unique<BenchIndex>(records);
    return *bench;
}

// The process's address space in bytes: what it has allocated, whether touched yet or not.
size_t MappedBytes() {
    unsigned long pages = 0;
    if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%lu", &pages) != 1)
            pages = 0;
        std::fclose(statm);
    }
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

// One read of the whole file into a new buffer: from new[], or from the memory the loader uses
// for its image, which costs less to touch first in a new process and more in a loop that frees
// and takes the same memory again and again.
template <typename Buffer, Buffer (*allocate)(uint32_t)> void ReadFile(benchmark::State& state) {
    const BenchIndex& index = GetBenchIndex(static_cast<int32_t>(state.range(0)));
    if (index.size == 0) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    for (auto _ : state) {
        Buffer buffer = allocate(index.size);
        loam::DiskFile file;
        if (!buffer || !file.OpenFile(index.location, loam::FileModeRead) ||
            !file.Read(buffer.get(), index.size, nullptr)) {
            state.SkipWithError("the index could not be read");
            return;
        }
        benchmark::DoNotOptimize(buffer.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * index.size);
    state.counters["file_MB"] = index.size / 1e6;
}

std::unique_ptr<char[]> AllocatePlain(uint32_t size) {
    return std::make_unique_for_overwrite<char[]>(size);
}

void ReadFileAlone(benchmark::State& state) {
    ReadFile<std::unique_ptr<char[]>, AllocatePlain>(state);
}

void ReadFileIntoLargeArray(benchmark::State& state) {
    ReadFile<LargeArray<char>, AllocateLargeArray<char>>(state);
}

// The least a read can cost here: memory of whole huge pages, without the small pages of a
// partial last one.
void ReadFileIntoHugePages(benchmark::State& state) {
    ReadFile<LargeArray<char>, AllocateHugePageArray<char>>(state);
}

// Loading as the main window does: the file read into memory of the program's own, and tabled.
void LoadIndex(benchmark::State& state) {
    const BenchIndex& index = GetBenchIndex(static_cast<int32_t>(state.range(0)));
    if (index.size == 0) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    size_t beyondFile = 0;
    for (auto _ : state) {
        const size_t before = MappedBytes();
        IndexData data;
        if (!data.Load(index.location)) {
            state.SkipWithError("the index could not be loaded");
            return;
        }
        beyondFile = MappedBytes() - before - index.size;
        benchmark::DoNotOptimize(data.GetTotalSize());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * index.size);
    const auto records = static_cast<double>(state.range(0));
    state.counters["records"] = records;
    state.counters["file_MB"] = index.size / 1e6;
    state.counters["beyond_file_MB"] = beyondFile / 1e6;
    state.counters["beyond_file_B/record"] = static_cast<double>(beyondFile) / records;
}

// The finder's pass: every record checked, a window at a time, the file read a piece at a time.
void ScanIndex(benchmark::State& state) {
    const BenchIndex& index = GetBenchIndex(static_cast<int32_t>(state.range(0)));
    if (index.size == 0) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    for (auto _ : state) {
        IndexData data;
        bool scanned = data.Scan(index.location);
        while (scanned && data.GetRecordCount() > 0)
            scanned = data.TakeNextWindow();
        if (!scanned) {
            state.SkipWithError("the index could not be scanned");
            return;
        }
        benchmark::DoNotOptimize(data.GetTotalSize());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * index.size);
}

BENCHMARK(ReadFileAlone)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadFileIntoLargeArray)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadFileIntoHugePages)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadIndex)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);

BENCHMARK(ScanIndex)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
