#pragma once

#include "index/index_data.h"
#include "loam/string.h"
#include "quilt/job_worker.h"

#include <boost/regex.hpp>

#include <cstdint>

// What a search tells the user when its pattern does not give a valid expression.
inline constexpr char SearchSyntaxErrorText[] =
    "The search failed because the regular expression you have entered has a syntax error.";

// One pass over the record table of a loaded index: every record's name, folded to lower case,
// is matched whole against one expression, and the matches go into the index's result table in
// record order. The pass runs in slices, so that a progress dialog can breathe between them.
class IndexSearcher : public quilt::JobWorker {
public:
    static constexpr int32_t SliceRecords = 10000;

    IndexSearcher();
    ~IndexSearcher() override;

    // Turns what the user typed into the text of the expression: a regular expression as it
    // stands; a wildcard pattern with "*", "?" and "." translated and nothing else quoted.
    static loam::String MakeExpression(const loam::String& pattern, bool isRegExp,
                                       bool autoWildcards);

    // Compiles the expression and clears the result table. On false the pattern was refused,
    // the result table keeps what it held, and the error stack says why.
    bool Start(IndexData* data, loam::String pattern, bool isRegExp, bool autoWildcards);
    int32_t RunSlice(quilt::JobController* controller, int32_t* percent) override;

private:
    bool Compile(const loam::String& text);
    int32_t TestRecords(int32_t* percent);

    IndexData* index = nullptr;
    boost::regex expression;
    int32_t cursor = 0;
    // Reused from record to record, so that matching a name allocates nothing.
    loam::String name;
    boost::cmatch match;
};
