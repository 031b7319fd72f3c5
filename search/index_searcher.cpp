#include "search/index_searcher.h"

#include "index/index_format.h"
#include "loam/error.h"

#include <algorithm>

namespace {

bool HoldsWildcard(const loam::String& pattern) {
    return pattern.FindChar('*', nullptr) || pattern.FindChar('?', nullptr);
}

} // namespace

IndexSearcher::IndexSearcher() {
    name.Reserve(MaxIndexNameLength);
}

IndexSearcher::~IndexSearcher() = default;

loam::String IndexSearcher::MakeExpression(const loam::String& pattern, bool isRegExp,
                                           bool autoWildcards) {
    if (isRegExp)
        return pattern;
    const loam::String wildcards =
        autoWildcards && !HoldsWildcard(pattern) ? "*" + pattern + "*" : pattern;
    loam::String text;
    text.Reserve(wildcards.GetLength() * 2);
    for (const char* at = wildcards.GetCString(); *at; ++at) {
        switch (*at) {
        case '*':
            text.Append(".*");
            break;
        case '.':
            text.Append("\\.");
            break;
        case '?':
            text.Append('.');
            break;
        default:
            text.Append(*at);
        }
    }
    return text;
}

bool IndexSearcher::Start(IndexData* data, loam::String pattern, bool isRegExp,
                          bool autoWildcards) {
    if (!Compile(MakeExpression(pattern, isRegExp, autoWildcards)))
        return loam::RaiseError(loam::ErrorGeneral, SearchSyntaxErrorText);
    index = data;
    index->ClearResults();
    cursor = 0;
    return true;
}

// The regular-expression library reports a bad expression by throwing; the exception stops
// here. An empty expression is refused as a syntax error, though the library would take it.
bool IndexSearcher::Compile(const loam::String& text) {
    if (text.IsEmpty())
        return false;
    try {
        expression.assign(text.GetCString(), text.GetCString() + text.GetLength(),
                          boost::regex::perl | boost::regex::icase);
        return true;
    } catch (...) {
        return false;
    }
}

// A failure inside the library ends the pass: what was found so far is the result.
int32_t IndexSearcher::RunSlice(quilt::JobController*, int32_t* percent) {
    if (!index)
        return 0;
    try {
        return TestRecords(percent);
    } catch (...) {
        return 0;
    }
}

int32_t IndexSearcher::TestRecords(int32_t* percent) {
    const int32_t total = index->GetRecordCount();
    const IndexRecord* const* records = index->GetRecords();
    const int32_t end = cursor + std::min(SliceRecords, total - cursor);
    for (; cursor < end; ++cursor) {
        name.Assign(records[cursor]->GetName());
        name.ToLower();
        const char* first = name.GetCString();
        if (boost::regex_match(first, first + name.GetLength(), match, expression,
                               boost::match_any))
            index->AddResult(records[cursor]);
    }
    if (total > 0)
        *percent = static_cast<int32_t>(static_cast<int64_t>(cursor) * 100 / total);
    return cursor < total ? 1 : 0;
}
