// A search whose results fill the results list to its largest limit, 50,000 rows, on an index
// of one million generated entries, and a header click that sorts those rows, on the offscreen
// backend.

#include "bench/index_generator.h"
#include "index/index_data.h"
#include "quilt/offscreen/testing/offscreen_driver.h"
#include "search/index_searcher.h"
#include "search/search_results_list.h"
#include "tests/support/results_dialog.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

constexpr int32_t IndexRecords = 1000000;
constexpr int32_t ShownResults = 50000;
constexpr int32_t ResultsId = results_dialog::ListId;

// Patterns tried in turn at set-up: the first that finds at least 50,000 entries is timed.
constexpr const char* candidatePatterns[] = {"*.jpg", "*.txt", "*.pdf", "*e*", "*"};

// The generated index, in a folder of its own that goes at exit, and the pattern to time.
class BenchIndex {
public:
    BenchIndex() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "bench_results_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        folder = pattern;
        const loam::FileSpec location((folder + "/sorvanta.idx").c_str());
        if (!GenerateIndex(location, IndexRecords, 1) || !index.Load(location))
            return;
        for (const char* candidate : candidatePatterns) {
            if (Search(candidate) >= ShownResults) {
                chosen = candidate;
                return;
            }
        }
    }
    ~BenchIndex() {
        if (!folder.empty())
            std::filesystem::remove_all(folder);
    }

    // Runs the pass and keeps the first 50,000 results, as many as the list may show.
    int32_t Search(const char* pattern) {
        IndexSearcher searcher;
        if (!searcher.Start(&index, pattern, false, false))
            return 0;
        searcher.RunToEnd(nullptr);
        const int32_t found = index.GetResultCount();
        if (found > ShownResults) {
            std::vector<const IndexRecord*> kept;
            for (int32_t i = 0; i < ShownResults; ++i)
                kept.push_back(index.GetResult(i));
            index.ClearResults();
            for (const IndexRecord* record : kept)
                index.AddResult(record);
        }
        return found;
    }

    std::string folder;
    IndexData index;
    const char* chosen = nullptr;
};

BenchIndex& GetBenchIndex() {
    static BenchIndex bench;
    return bench;
}

void SearchAndFill(benchmark::State& state) {
    BenchIndex& bench = GetBenchIndex();
    if (bench.chosen == nullptr) {
        state.SkipWithError("no index with enough results could be generated");
        return;
    }
    quilt::OffscreenDriver driver;
    ResultsDialog::Register();
    ResultsDialog dialog;
    dialog.RunModeless(false);
    for (auto _ : state) {
        bench.Search(bench.chosen);
        dialog.list.Fill(bench.index);
    }
    state.SetLabel(bench.chosen);
    state.counters["rows"] = dialog.list.GetCount();
}

// Each click sorts the rows by size, ascending and descending in turn.
void SortByHeader(benchmark::State& state) {
    BenchIndex& bench = GetBenchIndex();
    if (bench.chosen == nullptr) {
        state.SkipWithError("no index with enough results could be generated");
        return;
    }
    quilt::OffscreenDriver driver;
    ResultsDialog::Register();
    ResultsDialog dialog;
    dialog.RunModeless(false);
    bench.Search(bench.chosen);
    dialog.list.Fill(bench.index);
    for (auto _ : state) {
        driver.ClickColumnHeader(dialog, ResultsId, static_cast<int32_t>(state.range(0)));
        driver.PumpMessages();
    }
    state.counters["rows"] = dialog.list.GetCount();
}

BENCHMARK(SearchAndFill)->Unit(benchmark::kMillisecond);
BENCHMARK(SortByHeader)
    ->Arg(ResultColumnName)
    ->Arg(ResultColumnSize)
    ->Arg(ResultColumnDate)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
