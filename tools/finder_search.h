#pragma once

#include "index/index_data.h"
#include "loam/file_spec.h"
#include "loam/string.h"
#include "search/index_searcher.h"
#include "tools/pattern_set.h"

#include <cstdint>
#include <vector>

// What the finder asks of each entry of an index.
struct FinderQuery {
    // One or more: a name, or with matchPath the whole path, must match every one of them.
    std::vector<loam::String> patterns;
    bool isRegExp = false;
    bool autoWildcards = false;
    bool matchPath = false;
    // Only entries that are still on the disk, under the path the index gives them.
    bool existingOnly = false;
    // Only the number of matches is wanted, so no more than that need be kept.
    bool countOnly = false;
};

// One search of the finder over one index file, which is read once, a window of records at a
// time, or only where the index's trigram file leads. The first pattern of a name search goes to
// the search pass, with all its shortcuts; the others and the existence check sift what it found. A
// path search builds every entry's path and matches it against all the patterns.
class FinderSearch {
public:
    enum class Outcome { Searched, IndexFailed, PatternRefused, GaveUp };

    explicit FinderSearch(const FinderQuery& query) : query(query) {}
    FinderSearch(const FinderSearch&) = delete;
    FinderSearch& operator=(const FinderSearch&) = delete;

    // A failed index and a refused pattern have their reason on the error stack. A refused
    // pattern is told only of an index that reads whole: a damaged record's failure goes on top
    // of the pattern's. When a matcher gave up on a name or a path, the search ended there, and
    // what it found before stands.
    Outcome Run(const loam::FileSpec& indexFile);

    // The matches, in index order, and the index that tells their paths.
    int32_t GetFoundCount() const;
    const IndexRecord* GetFound(int32_t i) const;
    const IndexData& GetIndex() const { return index; }

private:
    Outcome SiftCandidates();
    bool Start();
    bool SearchWindow();
    bool MatchPaths();
    bool Sift(int32_t first);
    PatternSet::Verdict Judge(const IndexRecord* record);

    const FinderQuery& query;
    IndexData index;
    IndexSearcher searcher;
    // Of a name search the patterns after the first; of a path search all of them.
    PatternSet patterns;
    // Whether what the first pass finds is sifted into found, or stands as the index's results.
    bool sifts = false;
    // Whether a matcher gave up on a name or a path, which ends the search.
    bool gaveUp = false;
    std::vector<const IndexRecord*> found;
};
