// The walk of a build: the longest idle slice of 500 files in one very large folder, and in a
// chain of folders deeper than a path the system takes, with the walk's peak memory beside it.
// The writer only counts, so that the figures are the walk's own.
//
//   make bench && build/bench/bench_walk

#include "index/file_index_writer.h"
#include "index/volume_index_builder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class CountingWriter : public FileIndexWriter {
public:
    void AddFile(const loam::FileSpec&, uint32_t, loam::DateTime) override { ++entries; }
    void AddFolder(const loam::FileSpec&, loam::DateTime) override { ++entries; }
    void Finish() override {}

    int64_t entries = 0;
};

// A tree made once per run in a folder of its own, removed at exit.
class BenchTree {
public:
    BenchTree() {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base ? base : "/tmp") + "/bench_walk_XXXXXX";
        if (mkdtemp(pattern.data()))
            folder = pattern;
    }
    ~BenchTree() {
        // rm walks a tree of any depth.
        if (!folder.empty())
            (void)!std::system(("rm -rf '" + folder + "'").c_str());
    }
    BenchTree(const BenchTree&) = delete;
    BenchTree& operator=(const BenchTree&) = delete;

    std::string folder;
};

bool MakeWideFolder(const std::string& folder, int files) {
    for (int i = 0; i < files; ++i) {
        const int file =
            open((folder + "/file-" + std::to_string(i)).c_str(), O_WRONLY | O_CREAT, 0600);
        if (file < 0)
            return false;
        close(file);
    }
    return true;
}

// One folder and one file on every level.
bool MakeDeepChain(const std::string& folder, int depth) {
    int level = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth && level >= 0; ++i) {
        close(openat(level, "f", O_WRONLY | O_CREAT, 0600));
        mkdirat(level, "d", 0700);
        const int below = openat(level, "d", O_RDONLY | O_DIRECTORY);
        close(level);
        level = below;
    }
    if (level < 0)
        return false;
    close(level);
    return true;
}

int64_t ReadStatusKiB(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(field, 0) == 0)
            return std::atoll(line.c_str() + std::char_traits<char>::length(field));
    }
    return 0;
}

// Sets the peak of the resident memory back to what is resident now.
void ResetPeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

void Walk(benchmark::State& state, const std::string& root) {
    setenv("SORVANTA_ROOTS", root.c_str(), 1);
    double longest = 0;
    int64_t peak = 0, entries = 0;
    for (auto _ : state) {
        CountingWriter writer;
        ResetPeakMemory();
        const int64_t before = ReadStatusKiB("VmRSS:");
        VolumeIndexBuilder builder(nullptr);
        for (bool done = false; !done;) {
            const auto started = std::chrono::steady_clock::now();
            builder.RunSteps(&writer, VolumeIndexBuilder::SliceSteps, &done);
            const std::chrono::duration<double, std::milli> slice =
                std::chrono::steady_clock::now() - started;
            longest = std::max(longest, slice.count());
        }
        peak = std::max(peak, ReadStatusKiB("VmHWM:") - before);
        entries = writer.entries;
    }
    state.counters["longest_slice_ms"] = longest;
    state.counters["walk_peak_KiB"] = static_cast<double>(peak);
    state.counters["entries"] = static_cast<double>(entries);
}

void WideFolder(benchmark::State& state) {
    static BenchTree tree;
    static const bool made = MakeWideFolder(tree.folder, static_cast<int>(state.range(0)));
    if (!made) {
        state.SkipWithError("cannot make the folder");
        return;
    }
    Walk(state, tree.folder);
}

void DeepChain(benchmark::State& state) {
    static BenchTree tree;
    static const bool made = MakeDeepChain(tree.folder, static_cast<int>(state.range(0)));
    if (!made) {
        state.SkipWithError("cannot make the chain");
        return;
    }
    Walk(state, tree.folder);
}

} // namespace

BENCHMARK(WideFolder)->Arg(200000)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(DeepChain)->Arg(2600)->Iterations(3)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
