// The search pass over an index of one million generated entries, per kind of pattern.

#include "bench/index_generator.h"
#include "index/index_data.h"
#include "search/index_searcher.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

constexpr int32_t RecordCount = 1000000;

// The index is generated once per run into a folder of its own, loaded, and removed at exit.
class BenchIndex {
public:
    BenchIndex() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "bench_search_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        folder = pattern;
        const loam::FileSpec spec((folder + "/sorvanta.idx").c_str());
        loaded = GenerateIndex(spec, RecordCount, 1) && index.Load(spec);
    }
    ~BenchIndex() {
        if (!folder.empty())
            std::filesystem::remove_all(folder);
    }

    std::string folder;
    IndexData index;
    bool loaded = false;
};

BenchIndex& GetBenchIndex() {
    static BenchIndex bench;
    return bench;
}

void RunSearch(benchmark::State& state, const char* pattern, bool isRegExp, bool autoWildcards) {
    BenchIndex& bench = GetBenchIndex();
    if (!bench.loaded) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    for (auto _ : state) {
        IndexSearcher searcher;
        if (!searcher.Start(&bench.index, pattern, isRegExp, autoWildcards)) {
            state.SkipWithError("the pattern was refused");
            return;
        }
        searcher.RunToEnd(nullptr);
    }
    const int32_t records = bench.index.GetRecordCount();
    state.counters["records"] = records;
    state.counters["results"] = bench.index.GetResultCount();
    state.counters["records/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * records, benchmark::Counter::kIsRate);
}

void PlainWordWithAutomaticWildcards(benchmark::State& state) {
    RunSearch(state, "report", false, true);
}

void ExtensionWildcard(benchmark::State& state) {
    RunSearch(state, "*.txt", false, false);
}

void RegularExpression(benchmark::State& state) {
    RunSearch(state, "(img_|dsc)[0-9]+\\.jpe?g", true, false);
}

BENCHMARK(PlainWordWithAutomaticWildcards)->Unit(benchmark::kMillisecond);
BENCHMARK(ExtensionWildcard)->Unit(benchmark::kMillisecond);
BENCHMARK(RegularExpression)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
