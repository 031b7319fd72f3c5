#pragma once

#include "index/index_data.h"
#include "loam/string.h"
#include "quilt/job_worker.h"
#include "search/name_automaton.h"
#include "search/name_glob.h"
#include "search/piece_finder.h"

#include <boost/regex.hpp>

#include <cstdint>

// What a search tells the user when its pattern does not give a valid expression.
inline constexpr char SearchSyntaxErrorText[] =
    "The search failed because the regular expression you have entered has a syntax error.";

// One pass over the record table of a loaded index: every record's name, folded to lower case,
// is matched whole against one expression, and the matches go into the index's result table in
// record order. The pass runs in slices, so that a progress dialog can breathe between them.
//
// Where the expression is no more than literal bytes and wildcards, the fast pass reads it as a
// glob and passes over the names that cannot match without asking the expression; where the
// glob says exactly what the expression would, it decides alone. It gives the results of the
// plain pass, which asks the expression about every name and is kept for comparison.
//
// Where the expression is a regular language that a finite automaton decides, the automaton
// takes the expression's place for every name on which the expression's matcher cannot give
// up, after the glob's scan where the glob finds a literal piece.
class IndexSearcher : public quilt::JobWorker {
public:
    static constexpr int32_t SliceRecords = 10000;

    enum class Pass { Fast, Plain };

    explicit IndexSearcher(Pass pass = Pass::Fast);
    ~IndexSearcher() override;

    // Turns what the user typed into the text of the expression: a regular expression as it
    // stands; a wildcard pattern with "*", "?" and "." translated and nothing else quoted.
    static loam::String MakeExpression(const loam::String& pattern, bool isRegExp,
                                       bool autoWildcards);

    // Compiles the expression and clears the result table. On false the pattern was refused,
    // the result table keeps what it held, and the error stack says why.
    bool Start(IndexData* data, loam::String pattern, bool isRegExp, bool autoWildcards);
    int32_t RunSlice(quilt::JobController* controller, int32_t* percent) override;
    // Takes the pass back to the first record of the index's table, keeping the expression and
    // the results, so that it goes on over the next window of a windowed index. False when the
    // pass ended before the end of the table, as it does when the matcher gives up on a name:
    // that ends the search.
    bool Rewind() {
        const bool passed = index && cursor >= index->GetRecordCount();
        cursor = 0;
        return passed;
    }

    // What every name that the expression matches holds, as the pass reads it: each piece of
    // allOf, in order, the first at the name's start and the last at its end, and one of oneOf
    // anywhere when that is not empty. Folded bytes, NUL for a byte of any value.
    void GetRequiredPieces(std::vector<std::string>& allOf, std::vector<std::string>& oneOf) const;
    // Names up to this length cannot make the expression's matcher give up; -1 for none.
    int32_t GetTrustedLength() const { return trustedLength; }
    // The same for the names that lack one of the pieces of allOf.
    int32_t GetTrustedLengthWithout(size_t piece) const;

private:
    bool Compile(const loam::String& text);
    void ChooseMode(bool isGlob, const loam::String& text);
    int32_t TestRecords(int32_t* percent);
    void MatchRecords(int32_t end);
    void FilterRecords(int32_t end);
    void ScanRecords(int32_t end);
    void RunAutomaton(int32_t end);
    bool ChoosePieces();
    bool MayGiveUpOn(const IndexRecord* record) const;
    void AskAboutLongNames(int32_t first, int32_t end);
    bool Decide(const IndexRecord* record);
    bool EndsInAnchorAt(const IndexRecord* record, const char* hit) const;
    bool MatchName(const IndexRecord* record);

    Pass pass;
    IndexData* index = nullptr;
    boost::regex expression;
    int32_t cursor = 0;
    // Reused from record to record, so that matching a name allocates nothing.
    loam::String name;
    boost::cmatch match;
    // How the records of a slice are tested: MatchRecords, FilterRecords, ScanRecords or
    // RunAutomaton.
    void (IndexSearcher::*testRecords)(int32_t end) = &IndexSearcher::MatchRecords;
    NameGlob glob;
    // Whether the glob turns names down.
    bool globDecides = false;
    NameAutomaton automaton;
    bool hasAutomaton = false;
    // The pieces a scan looks for: the glob's anchor piece, or where the glob cannot read the
    // expression the automaton's pieces; and the next place that each stands at.
    std::vector<PieceFinder> finders;
    std::vector<const char*> hits;
    // Names up to this length cannot make the expression's matcher give up; -1 for none.
    int32_t trustedLength = -1;
    // The same for the names that lack the pieces a scan looks for.
    int32_t trustedWithoutPiece = -1;
    int32_t expressionLength = 0;
    // When all the glob asks is that a name end in the anchor piece, which is all literal bytes:
    // that piece's length; 0 otherwise.
    size_t suffixLength = 0;
};
