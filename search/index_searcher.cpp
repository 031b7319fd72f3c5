#include "search/index_searcher.h"

#include "index/index_format.h"
#include "loam/error.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <locale>
#include <type_traits>

namespace {

// The matcher folds case through the ctype facet of the expression's locale, which is what
// FoldsAsciiOnly reads.
static_assert(std::is_same_v<boost::regex::traits_type,
                             boost::regex_traits<char, boost::cpp_regex_traits<char>>>);

constexpr int32_t SampleRuns = 16;
constexpr int32_t SampleRunRecords = 32;
// A scan for pieces that stands at more places than this, for each byte of the records, costs
// more than the automaton over every name.
constexpr double MostPiecesPerByte = 1.0 / 200;

using ByteCounts = std::array<uint32_t, 256>;

bool HoldsWildcard(const loam::String& pattern) {
    return pattern.FindChar('*', nullptr) || pattern.FindChar('?', nullptr);
}

loam::String WithAutoWildcards(const loam::String& pattern, bool autoWildcards) {
    return autoWildcards && !HoldsWildcard(pattern) ? "*" + pattern + "*" : pattern;
}

loam::String TranslateWildcards(const loam::String& wildcards) {
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

// The glob compares ASCII letters without regard to case and every other byte as it stands;
// the expression folds through its locale, which must then fold in just that way.
bool FoldsAsciiOnly(const boost::regex& expression) {
    const auto& ctype = std::use_facet<std::ctype<char>>(expression.getloc());
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        if (ctype.tolower(byte) != loam::FoldToLower(byte))
            return false;
    }
    return true;
}

// A bound on the steps of the matcher over a name of the given length: each state of the
// expression (at most twice its characters, and a few) is tried once for every length of every
// repeat that may be retried, and once more on the way back.
double MatcherSteps(int32_t expressionLength, int32_t repeats, int32_t nameLength) {
    const double states = 2.0 * expressionLength + 8;
    double tries = 0;
    double lengths = 1;
    for (int32_t repeat = 0; repeat <= repeats; ++repeat, lengths *= nameLength + 1)
        tries += lengths;
    return 2 * states * tries;
}

// The matcher may give up on a longer name, and a pass that did not ask it about that name
// would then end elsewhere than the plain pass does.
int32_t TrustedLength(int32_t expressionLength, int32_t repeats) {
    int32_t length = -1;
    while (length < LongestLoadableName &&
           MatcherSteps(expressionLength, repeats, length + 1) <= MatcherStepFloor)
        ++length;
    return length;
}

const char* BytesOf(const IndexRecord* record) {
    return reinterpret_cast<const char*>(record);
}

// How often each byte, folded, occurs in runs of records spread over the index. A run is read
// from one stretch of memory, which is quicker than as many records picked one by one.
ByteCounts SampleBytes(const IndexData& index) {
    ByteCounts counts{};
    const int32_t total = index.GetRecordCount();
    const int32_t step = std::max(SampleRunRecords, total / SampleRuns);
    for (int32_t run = 0; run < total; run += step) {
        const IndexRecord* record = index.GetRecord(run);
        const IndexRecord* end = index.GetRecord(std::min(run + SampleRunRecords, total) - 1);
        for (const char* at = BytesOf(record); at < BytesOf(end->GetNextRecord()); ++at)
            ++counts[static_cast<uint8_t>(loam::FoldToLower(*at))];
    }
    return counts;
}

// Two literal bytes of a piece, and how often they stand together, by the sample.
struct BytePair {
    double odds = std::numeric_limits<double>::infinity();
    int32_t first = -1;
    int32_t last = -1;
};

// The two literal bytes of a piece that the sample holds least often; a piece of one literal
// byte is looked for by that byte alone.
BytePair RarestPair(const std::string& piece, const ByteCounts& counts, double sampled) {
    const auto odds = [&counts](char byte) { return counts[static_cast<uint8_t>(byte)] + 1.0; };
    int32_t rarest = -1, second = -1;
    for (int32_t i = 0; i < static_cast<int32_t>(piece.size()); ++i) {
        if (piece[i] == '\0')
            continue;
        if (rarest < 0 || odds(piece[i]) < odds(piece[rarest])) {
            second = rarest;
            rarest = i;
        } else if (second < 0 || odds(piece[i]) < odds(piece[second])) {
            second = i;
        }
    }
    if (rarest < 0)
        return {};
    if (second < 0)
        return {odds(piece[rarest]) * sampled, rarest, rarest};
    return {odds(piece[rarest]) * odds(piece[second]), std::min(rarest, second),
            std::max(rarest, second)};
}

// The piece to look for, and the pair in it that makes the finder stop at fewest places; which
// of the glob's pieces it is.
PieceFinder ChooseAnchor(const NameGlob& glob, const ByteCounts& counts, size_t& anchorPiece) {
    double sampled = 1;
    for (uint32_t count : counts)
        sampled += count;
    BytePair best;
    const std::string* anchor = nullptr;
    for (const std::string& piece : glob.GetPieces()) {
        const BytePair pair = RarestPair(piece, counts, sampled);
        if (pair.odds < best.odds) {
            best = pair;
            anchor = &piece;
        }
    }
    anchorPiece = static_cast<size_t>(anchor - glob.GetPieces().data());
    return PieceFinder(*anchor, static_cast<uint32_t>(best.first),
                       static_cast<uint32_t>(best.last));
}

// The record that holds the byte at, among [first, end): the last one that starts at or before
// it. The table is read forward, eight records a step, so that the memory ahead is fetched
// before it is asked for; the last eight are narrowed down without a branch to mispredict.
int32_t RecordHolding(const IndexRecord* const* records, int32_t first, int32_t end,
                      const char* at) {
    int32_t found = first;
    while (found + 8 < end && BytesOf(records[found + 8]) <= at)
        found += 8;
    for (int32_t step = 4; step > 0; step /= 2) {
        const int32_t next = found + step;
        found = next < end && BytesOf(records[next]) <= at ? next : found;
    }
    return found;
}

} // namespace

IndexSearcher::IndexSearcher(Pass pass) : pass(pass) {
    name.Reserve(MaxIndexNameLength);
}

IndexSearcher::~IndexSearcher() = default;

loam::String IndexSearcher::MakeExpression(const loam::String& pattern, bool isRegExp,
                                           bool autoWildcards) {
    return isRegExp ? pattern : TranslateWildcards(WithAutoWildcards(pattern, autoWildcards));
}

bool IndexSearcher::Start(IndexData* data, loam::String pattern, bool isRegExp,
                          bool autoWildcards) {
    const loam::String wildcards = isRegExp ? pattern : WithAutoWildcards(pattern, autoWildcards);
    const loam::String text = isRegExp ? pattern : TranslateWildcards(wildcards);
    if (!Compile(text))
        return loam::RaiseError(loam::ErrorGeneral, SearchSyntaxErrorText);
    index = data;
    index->ClearResults();
    cursor = 0;
    const bool isGlob =
        pass == Pass::Fast && (isRegExp ? glob.ReadExpression(text.GetCString())
                                        : glob.ReadWildcards(wildcards.GetCString()));
    ChooseMode(isGlob, text);
    return true;
}

// The regular-expression library reports a bad expression by throwing; the exception stops
// here. An empty expression is refused as a syntax error, though the library would take it.
bool IndexSearcher::Compile(const loam::String& text) {
    if (text.IsEmpty())
        return false;
    try {
        expression.assign(text.GetCString(), text.GetCString() + text.GetLength(), SearchSyntax);
        return true;
    } catch (...) {
        return false;
    }
}

// A glob that only tells which names cannot match is of no use without a literal byte; with
// one, the records are searched for a piece of it, and without, each name is put to the glob or
// to the automaton, which decides what a glob that is not exact leaves open.
void IndexSearcher::ChooseMode(bool isGlob, const loam::String& text) {
    testRecords = &IndexSearcher::MatchRecords;
    suffixLength = 0;
    expressionLength = text.GetLength();
    hasAutomaton =
        pass == Pass::Fast && !(isGlob && glob.IsExact()) && automaton.Build(text.GetCString());
    const bool useGlob =
        isGlob && (glob.IsExact() || glob.HasLiteral()) && FoldsAsciiOnly(expression);
    globDecides = useGlob;
    if (!useGlob) {
        trustedLength = automaton.GetTrustedLength();
        trustedWithoutPiece = trustedLength;
        if (hasAutomaton)
            testRecords =
                ChoosePieces() ? &IndexSearcher::ScanRecords : &IndexSearcher::RunAutomaton;
        return;
    }
    trustedLength = TrustedLength(text.GetLength(), glob.GetRetriedRepeats());
    if (hasAutomaton)
        trustedLength = std::min(trustedLength, automaton.GetTrustedLength());
    trustedWithoutPiece = trustedLength;
    testRecords = &IndexSearcher::FilterRecords;
    if (glob.HasLiteral()) {
        size_t anchor = 0;
        finders.assign(1, ChooseAnchor(glob, SampleBytes(*index), anchor));
        trustedWithoutPiece = GetTrustedLengthWithout(anchor);
        testRecords = &IndexSearcher::ScanRecords;
    }
    const std::vector<std::string>& pieces = glob.GetPieces();
    suffixLength = glob.IsExact() && trustedLength == LongestLoadableName && pieces.size() == 2 &&
                           pieces[0].empty() && pieces[1].find('\0') == std::string::npos
                       ? pieces[1].size()
                       : 0;
}

// The matcher reaches what the expression asks after a piece only through a place where the
// piece stands, so on a name without it only the repeats before the piece can be retried, the
// first piece being after as many repeats as its place among the pieces.
int32_t IndexSearcher::GetTrustedLengthWithout(size_t piece) const {
    if (!globDecides)
        return trustedLength;
    return std::max(trustedLength, TrustedLength(expressionLength, static_cast<int32_t>(piece)));
}

void IndexSearcher::GetRequiredPieces(std::vector<std::string>& allOf,
                                      std::vector<std::string>& oneOf) const {
    allOf = globDecides ? glob.GetPieces() : std::vector<std::string>();
    oneOf = hasAutomaton ? automaton.GetPieces() : std::vector<std::string>();
}

// The automaton's pieces are looked for when they are rare enough, by the sample, that a scan
// for them and the automaton at each place found cost less than the automaton over every name.
bool IndexSearcher::ChoosePieces() {
    finders.clear();
    const std::vector<std::string>& pieces = automaton.GetPieces();
    if (pieces.empty())
        return false;
    const ByteCounts counts = SampleBytes(*index);
    double sampled = 1;
    for (uint32_t count : counts)
        sampled += count;
    double odds = 0;
    for (const std::string& piece : pieces) {
        const BytePair pair = RarestPair(piece, counts, sampled);
        odds += pair.odds / (sampled * sampled);
        finders.emplace_back(piece, static_cast<uint32_t>(pair.first),
                             static_cast<uint32_t>(pair.last));
    }
    return odds < MostPiecesPerByte;
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
    (this->*testRecords)(cursor + std::min(SliceRecords, total - cursor));
    if (total > 0)
        *percent = static_cast<int32_t>(static_cast<int64_t>(cursor) * 100 / total);
    return cursor < total ? 1 : 0;
}

void IndexSearcher::MatchRecords(int32_t end) {
    const IndexRecord* const* records = index->GetRecords();
    for (; cursor < end; ++cursor) {
        if (MatchName(records[cursor]))
            index->AddResult(records[cursor]);
    }
}

void IndexSearcher::FilterRecords(int32_t end) {
    const IndexRecord* const* records = index->GetRecords();
    for (; cursor < end; ++cursor) {
        if (Decide(records[cursor]))
            index->AddResult(records[cursor]);
    }
}

// Four names at a time, unless one of them is left to the library.
void IndexSearcher::RunAutomaton(int32_t end) {
    const IndexRecord* const* records = index->GetRecords();
    while (cursor < end) {
        const IndexRecord* const* four = records + cursor;
        if (end - cursor < 4 || MayGiveUpOn(four[0]) || MayGiveUpOn(four[1]) ||
            MayGiveUpOn(four[2]) || MayGiveUpOn(four[3])) {
            if (MayGiveUpOn(four[0]) ? MatchName(four[0]) : automaton.Matches(four[0]->GetName()))
                index->AddResult(four[0]);
            ++cursor;
            continue;
        }
        const char* const names[4] = {four[0]->GetName(), four[1]->GetName(), four[2]->GetName(),
                                      four[3]->GetName()};
        bool matched[4];
        automaton.MatchFour(names, matched);
        for (int i = 0; i < 4; ++i) {
            if (matched[i])
                index->AddResult(four[i]);
        }
        cursor += 4;
    }
}

// The name is no longer than its block less the NUL, which most often settles it.
bool IndexSearcher::MayGiveUpOn(const IndexRecord* record) const {
    return record->nameLength > trustedLength + 1 &&
           static_cast<int64_t>(std::strlen(record->GetName())) > trustedLength;
}

// The records lie one after the other in the image, so the slice's bytes are searched as one
// stretch for the pieces looked for (the glob's anchor piece, or the automaton's pieces), and
// only the records that hold one are looked at, in the order of the places found; the next
// place of each piece is kept. A piece found in a record's fixed part, or across two records,
// is turned down by the glob or the automaton.
void IndexSearcher::ScanRecords(int32_t end) {
    if (cursor == end)
        return;
    const IndexRecord* const* records = index->GetRecords();
    const int32_t total = index->GetRecordCount();
    const char* limit = BytesOf(records[total - 1]->GetNextRecord());
    const char* stop = end < total ? BytesOf(records[end]) : limit;
    hits.resize(finders.size());
    for (size_t i = 0; i < finders.size(); ++i)
        hits[i] = finders[i].Find(BytesOf(records[cursor]), stop, limit);
    for (int32_t next = cursor; next < end; ++next) {
        const char* hit = *std::min_element(hits.begin(), hits.end());
        const int32_t holder = hit == stop ? end : RecordHolding(records, next, end, hit);
        AskAboutLongNames(next, holder);
        if (holder == end)
            break;
        next = holder;
        if (EndsInAnchorAt(records[next], hit) || Decide(records[next]))
            index->AddResult(records[next]);
        const char* after = BytesOf(records[next]->GetNextRecord());
        for (size_t i = 0; i < finders.size(); ++i) {
            if (hits[i] < after)
                hits[i] = finders[i].Find(after, stop, limit);
        }
    }
    cursor = end;
}

// The records in [first, end) hold no piece that was looked for, so none of them can match;
// but a name on which the matcher might give up is put to the expression all the same.
void IndexSearcher::AskAboutLongNames(int32_t first, int32_t end) {
    if (trustedWithoutPiece == LongestLoadableName)
        return;
    const IndexRecord* const* records = index->GetRecords();
    for (int32_t ordinal = first; ordinal < end; ++ordinal) {
        if (records[ordinal]->nameLength > trustedWithoutPiece + 1 && Decide(records[ordinal]))
            index->AddResult(records[ordinal]);
    }
}

// A name that the matcher might give up on is put to the expression whatever the glob says, and
// so is every name that a glob which is not exact lets through.
bool IndexSearcher::Decide(const IndexRecord* record) {
    const char* text = record->GetName();
    const size_t length = std::strlen(text);
    if (static_cast<int64_t>(length) > trustedLength)
        return MatchName(record);
    if (globDecides && !glob.Matches(text, length))
        return false;
    return (globDecides && glob.IsExact()) ||
           (hasAutomaton ? automaton.Matches(text) : MatchName(record));
}

// A glob that asks only for a name ending in the anchor piece is answered by the hit alone when
// the piece ends the name there. A name may end before its block does, with bytes behind its
// NUL, so the hit must have no NUL before it in the name.
bool IndexSearcher::EndsInAnchorAt(const IndexRecord* record, const char* hit) const {
    const char* text = record->GetName();
    return suffixLength > 0 && hit >= text &&
           !std::memchr(text, '\0', static_cast<size_t>(hit - text)) && hit[suffixLength] == '\0';
}

bool IndexSearcher::MatchName(const IndexRecord* record) {
    name.Assign(record->GetName());
    name.ToLower();
    const char* first = name.GetCString();
    return boost::regex_match(first, first + name.GetLength(), match, expression, SearchMatchFlags);
}
