#include "tools/finder_search.h"

#include "index/long_name.h"
#include "loam/error.h"
#include "search/candidate_search.h"
#include "tools/index_state.h"
#include "tools/paths_in_order.h"

#include <sys/stat.h>

namespace {

// The path is the bytes of the disk's names as they stand, whatever their encoding: the entry is
// asked after itself, a link included, never after what a link points to.
bool StillExists(const loam::String& path) {
    struct stat status {};
    return ::lstat(path.GetCString(), &status) == 0;
}

} // namespace

FinderSearch::Outcome FinderSearch::Run(const loam::FileSpec& indexFile) {
    found.clear();
    gaveUp = false;
    sifts = query.existingOnly || (!query.matchPath && query.patterns.size() > 1);
    if (!query.matchPath && SearchCandidates(index, indexFile, query.patterns.front(),
                                             query.isRegExp, query.autoWildcards))
        return SiftCandidates();
    const bool keeps = !query.countOnly || sifts || query.matchPath;
    const bool scanned = index.Scan(indexFile, keeps ? ScanMatches::Kept : ScanMatches::Counted);
    // An index under build or left unfinished is no answer; why goes in place of the loader's
    // words.
    if (const char* reason = GetUnfinishedIndexReason(indexFile, scanned, index)) {
        loam::ClearErrors();
        loam::RaiseError(loam::ErrorGeneral, reason);
        return Outcome::IndexFailed;
    }
    if (!scanned)
        return Outcome::IndexFailed;
    const bool started = Start();
    bool searching = started;
    while (index.GetRecordCount() > 0) {
        if (searching)
            searching = SearchWindow();
        if (!index.TakeNextWindow())
            return Outcome::IndexFailed;
    }
    if (!started)
        return Outcome::PatternRefused;
    return gaveUp ? Outcome::GaveUp : Outcome::Searched;
}

// The trigram file led to the few records that the first pattern may find, and the search pass
// found its matches among them.
FinderSearch::Outcome FinderSearch::SiftCandidates() {
    const std::vector<loam::String> others(query.patterns.begin() + 1, query.patterns.end());
    if (!patterns.Compile(others, query.isRegExp, query.autoWildcards))
        return Outcome::PatternRefused;
    return Sift(0) ? Outcome::Searched : Outcome::GaveUp;
}

int32_t FinderSearch::GetFoundCount() const {
    return sifts ? static_cast<int32_t>(found.size()) : index.GetResultCount();
}

const IndexRecord* FinderSearch::GetFound(int32_t i) const {
    return sifts ? found[static_cast<size_t>(i)] : index.GetResult(i);
}

bool FinderSearch::Start() {
    if (query.matchPath) {
        index.ClearResults();
        return patterns.Compile(query.patterns, query.isRegExp, query.autoWildcards);
    }
    const std::vector<loam::String> others(query.patterns.begin() + 1, query.patterns.end());
    return searcher.Start(&index, query.patterns.front(), query.isRegExp, query.autoWildcards) &&
           patterns.Compile(others, query.isRegExp, query.autoWildcards);
}

// False when the search has ended before the end of the window, because a matcher gave up on a
// name or a path.
bool FinderSearch::SearchWindow() {
    const int32_t first = index.GetResultCount();
    if (query.matchPath)
        return MatchPaths() && Sift(first);
    searcher.RunToEnd(nullptr);
    const bool passed = searcher.Rewind();
    gaveUp = !passed;
    return Sift(first) && passed;
}

bool FinderSearch::MatchPaths() {
    // A search matches the names that the index stores.
    PathsInOrder paths(index, PathsInOrder::Names::Stored);
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        const IndexRecord* record = index.GetRecord(ordinal);
        const PatternSet::Verdict verdict = patterns.Match(paths.GetPath(record).GetCString());
        if (verdict == PatternSet::Verdict::GaveUp) {
            gaveUp = true;
            return false;
        }
        if (verdict == PatternSet::Verdict::Matched)
            index.AddResult(record);
    }
    return true;
}

// Takes the window's new matches that pass the other patterns and the existence check.
bool FinderSearch::Sift(int32_t first) {
    if (!sifts)
        return true;
    for (int32_t i = first; i < index.GetResultCount(); ++i) {
        const IndexRecord* record = index.GetResult(i);
        const PatternSet::Verdict verdict = Judge(record);
        if (verdict == PatternSet::Verdict::GaveUp) {
            gaveUp = true;
            return false;
        }
        if (verdict == PatternSet::Verdict::Matched)
            found.push_back(record);
    }
    return true;
}

PatternSet::Verdict FinderSearch::Judge(const IndexRecord* record) {
    if (!query.matchPath) {
        const PatternSet::Verdict verdict = patterns.Match(record->GetName());
        if (verdict != PatternSet::Verdict::Matched)
            return verdict;
    }
    if (query.existingOnly && !StillExists(GetRealPathOf(index, record)))
        return PatternSet::Verdict::NotMatched;
    return PatternSet::Verdict::Matched;
}
