// The search pass over indexes of one and ten million generated entries, per kind of pattern,
// with the plain pass beside the fast one.

#include "bench/index_generator.h"
#include "index/index_data.h"
#include "search/index_searcher.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace {

using Pass = IndexSearcher::Pass;

// An index is generated once per size and run into a folder of its own, loaded, and removed at
// exit.
class BenchIndex {
public:
    explicit BenchIndex(int32_t records) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "bench_search_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        folder = pattern;
        const loam::FileSpec location((folder + "/sorvanta.idx").c_str());
        loaded = GenerateIndex(location, records, 1) && index.Load(location);
    }
    ~BenchIndex() {
        if (!folder.empty())
            std::filesystem::remove_all(folder);
    }

    std::string folder;
    IndexData index;
    bool loaded = false;
};

BenchIndex& GetBenchIndex(int32_t records) {
    static std::map<int32_t, std::unique_ptr<BenchIndex>> indexes;
    std::unique_ptr<BenchIndex>& bench = indexes[records];
    if (!bench)
        bench = std::make_unique<BenchIndex>(records);
    return *bench;
}

void RunSearch(benchmark::State& state, const char* pattern, bool isRegExp, bool autoWildcards,
               Pass pass) {
    BenchIndex& bench = GetBenchIndex(static_cast<int32_t>(state.range(0)));
    if (!bench.loaded) {
        state.SkipWithError("the index could not be generated");
        return;
    }
    for (auto _ : state) {
        IndexSearcher searcher(pass);
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

constexpr int64_t OneMillion = 1000000;
constexpr int64_t TenMillion = 10000000;

#define SEARCH_BENCHMARK(name, pattern, isRegExp, autoWildcards)                                   \
    BENCHMARK_CAPTURE(RunSearch, name, pattern, isRegExp, autoWildcards, Pass::Fast)               \
        ->Arg(OneMillion)                                                                          \
        ->Unit(benchmark::kMillisecond);                                                           \
    BENCHMARK_CAPTURE(RunSearch, name##_plain, pattern, isRegExp, autoWildcards, Pass::Plain)      \
        ->Arg(OneMillion)                                                                          \
        ->Unit(benchmark::kMillisecond)

SEARCH_BENCHMARK(PlainWordWithAutomaticWildcards, "report", false, true);
SEARCH_BENCHMARK(ExtensionWildcard, "*.txt", false, false);
SEARCH_BENCHMARK(WildcardsOfSeveralRuns, "*re*po*rt*", false, false);
SEARCH_BENCHMARK(RegularExpressionWithLiteral, "img_[0-9]+\\.jpg", true, false);
SEARCH_BENCHMARK(RegularExpressionOfLiteralsAndRuns, ".*report.*\\.pdf", true, false);
SEARCH_BENCHMARK(RegularExpressionWithoutLiteral, "[a-z]+[0-9]+", true, false);
SEARCH_BENCHMARK(RegularExpressionWithGroup, "(img_|dsc)[0-9]+\\.jpe?g", true, false);
SEARCH_BENCHMARK(RegularExpressionOfAlternativeSuffixes, ".*\\.(jpg|png)", true, false);
SEARCH_BENCHMARK(RegularExpressionWithInterval, ".*[0-9]{4}.*", true, false);
SEARCH_BENCHMARK(RegularExpressionOfNestedGroups, "((img|dsc)_?|[a-z]+-)[0-9]{4,}(\\.[a-z]+)?",
                 true, false);
SEARCH_BENCHMARK(RegularExpressionOutsideTheAutomaton, "(.*)\\1", true, false);

BENCHMARK_CAPTURE(RunSearch, PlainWordWithAutomaticWildcards, "report", false, true, Pass::Fast)
    ->Arg(TenMillion)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunSearch, ExtensionWildcard, "*.txt", false, false, Pass::Fast)
    ->Arg(TenMillion)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunSearch, RegularExpressionOfAlternativeSuffixes, ".*\\.(jpg|png)", true, false,
                  Pass::Fast)
    ->Arg(TenMillion)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunSearch, RegularExpressionWithoutLiteral, "[a-z]+[0-9]+", true, false,
                  Pass::Fast)
    ->Arg(TenMillion)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunSearch, RegularExpressionWithInterval, ".*[0-9]{4}.*", true, false, Pass::Fast)
    ->Arg(TenMillion)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
