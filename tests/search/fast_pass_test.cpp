// The fast pass against the plain one: for generated names and patterns of every kind, both
// refuse the same patterns and find the same records in the same order.
#include "search/index_searcher.h"

#include "index/index_image.h"
#include "loam/error.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Names = std::vector<std::string>;
using Results = std::vector<const IndexRecord*>;

const char* const words[] = {"report", "README", "notes", "a",       "b",         "ab",
                             "aab",    "txt",    "img",   "Caf\xC9", "\xE9t\xE9", "\xFF",
                             "x",      "Data",   "TXT",   "q",       "2024",      "IMG_0042"};
const char* const joins[] = {".", " ",   "_", "-",    "(",    ")",    "[",    "]",      "+", "$",
                             "^", "|",   "{", "}",    "\\",   "*",    "?",    "\n",     "",  "",
                             "",  ".tx", "t", "\x80", ".txt", ".TXT", ".jpg", ".tar.gz"};
// Pieces of regular expressions, with and without literal bytes.
const char* const atoms[] = {
    ".", ".*", ".+", ".?", "[a-c]", "[^x]", "[]a]", "a*", "b+", "t?", "\\.", "\\+", "\\$", "(a|b)",
    "(x)*", "\\d", "x{2}", "[[:alpha:]]", "|", "\xC9", "\xE9*", "\n", "TxT", "report",
    // What the automaton reads, and what it leaves to the library.
    "\\.(txt|TXT|tar\\.gz)", "(jpg|png)", "[0-9]{2,4}", "[a-z]+", "[^a-c]*", "(ab|a)+", "(a|b){2}",
    "\\s", "\\S+", "\\w*", "\\W", "\\D", "[[:digit:]]", "[\\d.]", "(?:x|\\n)", ".{1,3}",
    "(a(b|c)*)?", "[\xC0-\xFF]", "\xC9+", "[A-Z]", "a{0}", "b{2,}", "(a*)*", "^", "$", "\\b", "a*?",
    "a++", "(?=a)", "(a)\\1", "[]-]", "x{2}?", "\\t", "(|a)", "\\}", "}", "]", "\\<", "\\>", "\\`"};

class Generator {
public:
    explicit Generator(uint32_t seed) : random(seed) {}

    // Mostly words; now and then no name, one byte, or a name of the longest length: all "a",
    // ending in "b.TxT", or of any bytes.
    std::string Name() {
        const size_t longest = MaxIndexNameLength;
        const uint32_t kind = Pick(16);
        if (kind > 4)
            return MixCase(Words(1 + Pick(4)));
        std::string name(kind == 2 || kind == 3 ? longest : 0, 'a');
        while (name.size() < (kind == 1 ? 1 : kind == 4 ? longest : 0))
            name += Byte();
        if (kind == 3)
            name.replace(longest - 5, 5, "b.TxT");
        return name;
    }

    // A wildcard pattern made from words and joins, with "*" and "?" put in here and there.
    std::string Wildcards() {
        std::string pattern = MixCase(Words(1 + Pick(3)));
        for (uint32_t count = Pick(4); count > 0; --count)
            pattern.insert(Pick(static_cast<uint32_t>(pattern.size()) + 1), Pick(3) ? "*" : "?");
        return pattern;
    }

    std::string Expression() {
        std::string expression = Pick(4) == 0 ? "^" : "";
        for (uint32_t count = 1 + Pick(4); count > 0; --count)
            expression += Pick(2) ? atoms[Pick(std::size(atoms))] : MixCase(Word());
        return expression + (Pick(4) == 0 ? "$" : "");
    }

    uint32_t Pick(uint32_t bound) { return static_cast<uint32_t>(random() % bound); }

private:
    char Byte() {
        static const char bytes[] = "aAbBtTxX.*?[]()\\+$^ \n\x80\xC9\xE9\xFF";
        return bytes[Pick(sizeof bytes - 1)];
    }
    std::string Word() { return words[Pick(std::size(words))]; }
    std::string Words(uint32_t count) {
        std::string text = Word();
        while (--count > 0)
            text += joins[Pick(std::size(joins))] + Word();
        if (Pick(2))
            text += joins[Pick(std::size(joins))];
        return text;
    }
    std::string MixCase(std::string text) {
        for (char& byte : text) {
            const int letter = static_cast<unsigned char>(byte);
            byte = static_cast<char>(Pick(3) == 0   ? std::toupper(letter)
                                     : Pick(3) == 0 ? std::tolower(letter)
                                                    : letter);
        }
        return text;
    }

    std::mt19937 random;
};

// A root, the names as files below it, and records whose name blocks are unusual but loadable:
// text after the name's NUL, a block of an odd length.
IndexImage MakeImage(const Names& names) {
    IndexImage image;
    image.Header(1, 0, static_cast<int32_t>(names.size() + 4)).Record(1, 0xFFFFFFFF, "/data");
    image.Fixed(0, 12, 0).Raw(std::string("ab\0report.t\0", 12));
    image.Fixed(0, 8, 0).Raw(std::string("ab\0.txt\0", 8));
    image.Fixed(0, 255, 0).Raw(std::string(250, 'b') + std::string(".txt\0", 5));
    for (const std::string& name : names)
        image.Record(0, 0, name, 10);
    return image;
}

void LoadIndex(IndexData& index, const Names& names) {
    ASSERT_TRUE(MakeImage(names).LoadInto(index));
}

std::vector<std::string> ResultPaths(const IndexData& index) {
    std::vector<std::string> paths;
    for (int32_t i = 0; i < index.GetResultCount(); ++i)
        paths.push_back(index.GetResultPath(i).GetCString());
    return paths;
}

// The pass as the command-line finder runs it: over a scan of the image, window by window.
std::pair<bool, std::vector<std::string>> SearchWindows(const IndexImage& image,
                                                        const std::string& pattern, bool isRegExp,
                                                        bool autoWildcards) {
    IndexData index;
    const std::string& bytes = image.GetBytes();
    auto buffer = std::make_unique<char[]>(bytes.size());
    std::memcpy(buffer.get(), bytes.data(), bytes.size());
    EXPECT_TRUE(index.ScanImage(std::move(buffer), static_cast<uint32_t>(bytes.size())));
    IndexSearcher searcher;
    const bool started = searcher.Start(&index, pattern.c_str(), isRegExp, autoWildcards);
    loam::ClearErrors();
    bool searching = started;
    while (index.GetRecordCount() > 0) {
        if (searching) {
            searcher.RunToEnd(nullptr);
            searching = searcher.Rewind();
        }
        EXPECT_TRUE(index.TakeNextWindow());
    }
    return {started, ResultPaths(index)};
}

// Whether the pass started, and what it found.
std::pair<bool, Results> Search(IndexData& index, IndexSearcher::Pass pass,
                                const std::string& pattern, bool isRegExp, bool autoWildcards) {
    index.ClearResults();
    IndexSearcher searcher(pass);
    const bool started = searcher.Start(&index, pattern.c_str(), isRegExp, autoWildcards);
    loam::ClearErrors();
    if (started)
        searcher.RunToEnd(nullptr);
    Results results;
    for (int32_t i = 0; i < index.GetResultCount(); ++i)
        results.push_back(index.GetResult(i));
    return {started, results};
}

void ExpectSamePasses(IndexData& index, const std::string& pattern, bool isRegExp,
                      bool autoWildcards) {
    const auto plain = Search(index, IndexSearcher::Pass::Plain, pattern, isRegExp, autoWildcards);
    const auto fast = Search(index, IndexSearcher::Pass::Fast, pattern, isRegExp, autoWildcards);
    EXPECT_EQ(fast.first, plain.first) << pattern;
    EXPECT_EQ(fast.second, plain.second)
        << "pattern '" << pattern << "' regexp " << isRegExp << " auto " << autoWildcards;
}

class FastPassTest : public ::testing::Test {
protected:
    IndexData index;
    Generator generator{20240611};
};

TEST_F(FastPassTest, FindsWhatThePlainPassFinds) {
    Names names;
    for (int i = 0; i < 1500; ++i)
        names.push_back(generator.Name());
    LoadIndex(index, names);
    for (int i = 0; i < 250; ++i) {
        const std::string wildcards = generator.Wildcards();
        ExpectSamePasses(index, wildcards, false, false);
        ExpectSamePasses(index, wildcards, false, true);
        ExpectSamePasses(index, generator.Expression(), true, false);
    }
}

// Several slices, with records that match at slice boundaries and in the last record.
TEST_F(FastPassTest, FindsWhatThePlainPassFindsAcrossSlices) {
    Names names;
    for (int i = 0; i < 3 * IndexSearcher::SliceRecords; ++i)
        names.push_back(i % 9973 == 0 || i % IndexSearcher::SliceRecords >= 9996
                            ? "report.TXT"
                            : std::string(generator.Pick(2) ? "x" : "a.tx"));
    names.back() = "Report.txt";
    LoadIndex(index, names);
    for (const char* pattern : {"report", "*.txt", "x", "*x", "?*.t?t", "", "*a*"})
        ExpectSamePasses(index, pattern, false, true);
    for (const char* pattern : {"report\\..*", ".*\\.txt$", "x", "[r]eport.*"})
        ExpectSamePasses(index, pattern, true, false);
}

// The matcher gives up on a long name that a pattern of many runs nearly matches, and that ends
// the pass; the fast pass must end it on the same name, not pass over it.
TEST_F(FastPassTest, EndsWhereThePlainPassGivesUp) {
    LoadIndex(index, {"ab", std::string(MaxIndexNameLength, 'a'), "aaab", "aab"});
    const std::tuple<const char*, bool, Names> table[] = {
        {"*a*a*a*b", false, {}},
        {".*a.*a.*a.*b", true, {}},
        {"*a*b", false, {"ab", "ab", "ab", "aaab", "aab"}},
        {"(a+)+b", true, {"ab", "ab", "ab"}},
        {"(a|aa)*c", true, {}},
        {"[ab]*b", true, {"ab", "ab", "ab", "aaab", "aab"}},
    };
    for (const auto& [pattern, isRegExp, expected] : table) {
        ExpectSamePasses(index, pattern, isRegExp, false);
        Names found;
        for (const IndexRecord* record :
             Search(index, IndexSearcher::Pass::Fast, pattern, isRegExp, false).second)
            found.push_back(record->GetName());
        EXPECT_EQ(found, expected) << pattern;
    }
}

// Names of the longest length that nearly hold the piece a scan looks for, but lack it: the
// matcher reaches what comes after the piece only through it, so on these it retries no more
// than the repeats before it and cannot give up, and the fast pass passes over them unasked.
// Asked about each of them, the plain pass must still run to the end.
TEST_F(FastPassTest, PassesOverLongNamesThatLackThePiece) {
    const auto filled = [](const std::string& unit) {
        std::string name;
        while (name.size() < static_cast<size_t>(MaxIndexNameLength))
            name += unit;
        return name.substr(0, MaxIndexNameLength);
    };
    LoadIndex(index, {filled("fsta"), filled("f.s"), filled("fSta.B"), filled(".a"), filled("zli"),
                      filled("Zl.b"), "fstab.conf", "libz.so", "zlib.h"});
    const std::tuple<const char*, bool, Names> table[] = {
        {".*fstab.*\\.[a-z]+", true, {"fstab.conf"}},
        {".*fstab.*", true, {"fstab.conf"}},
        {".*zlib.*\\.h", true, {"zlib.h"}},
        {"*fstab*.?o*", false, {"fstab.conf"}},
        {"*zlib*", false, {"zlib.h"}},
    };
    for (const auto& [pattern, isRegExp, expected] : table) {
        ExpectSamePasses(index, pattern, isRegExp, false);
        IndexSearcher plain(IndexSearcher::Pass::Plain);
        ASSERT_TRUE(plain.Start(&index, pattern, isRegExp, false));
        plain.RunToEnd(nullptr);
        EXPECT_TRUE(plain.Rewind()) << pattern;
        Names found;
        for (int32_t i = 0; i < index.GetResultCount(); ++i)
            found.push_back(index.GetResult(i)->GetName());
        EXPECT_EQ(found, expected) << pattern;
    }
}

// The finder's pass goes window by window over a scan; it finds what the plain pass finds over
// the whole loaded index, in the same order, across windows and the pieces the file is read in.
TEST_F(FastPassTest, FindsWhatThePlainPassFindsWindowByWindow) {
    Names names;
    for (int i = 0; i < 60000; ++i)
        names.push_back(generator.Name());
    const IndexImage image = MakeImage(names);
    ASSERT_GT(image.GetBytes().size(), size_t{1} << 21);
    ASSERT_TRUE(image.LoadInto(index));
    const std::tuple<std::string, bool, bool> table[] = {
        {"report", false, true},     {"*.txt", false, true},          {"a?b", false, false},
        {"*", false, false},         {".*\\.(txt|jpg)", true, false}, {"[a-z]+[0-9]+", true, false},
        {"(a|b){2}.*", true, false}, {".*(\\w)\\1.*", true, false},   {"x", true, false},
    };
    for (const auto& [pattern, isRegExp, autoWildcards] : table) {
        const auto plain =
            Search(index, IndexSearcher::Pass::Plain, pattern, isRegExp, autoWildcards);
        const auto windows = SearchWindows(image, pattern, isRegExp, autoWildcards);
        EXPECT_EQ(windows.first, plain.first) << pattern;
        EXPECT_EQ(windows.second, ResultPaths(index)) << pattern;
    }
    for (int i = 0; i < 10; ++i) {
        const std::string expression = generator.Expression();
        const auto plain = Search(index, IndexSearcher::Pass::Plain, expression, true, false);
        EXPECT_EQ(SearchWindows(image, expression, true, false).second, ResultPaths(index))
            << expression;
    }
}

} // namespace
