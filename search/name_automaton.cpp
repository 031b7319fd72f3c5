#include "search/name_automaton.h"

#include "loam/string.h"

#include <algorithm>
#include <bitset>
#include <cctype>
#include <cstring>
#include <map>
#include <string>

namespace {

// Past these the automaton costs more to build than it saves, and the library decides.
constexpr size_t MaxNodes = 4000;
constexpr size_t MaxStates = 2000;
constexpr int32_t MaxRepeatCount = 1000;
// Counting the ways through the expression for longer and longer names stops here, and the
// names beyond the length reached are left to the library.
constexpr double CountingWork = 2e6;
// Nor is an automaton built whose states and byte classes take more than this to work out.
constexpr double BuildingWork = 4e6;

using ByteSet = std::bitset<256>;

bool IsOneOf(char byte, const char* set) {
    return byte != '\0' && std::strchr(set, byte) != nullptr;
}

bool IsPunctuation(char byte) {
    return byte > ' ' && byte < 0x7F && !std::isalnum(static_cast<unsigned char>(byte));
}

// The bytes, as a folded name holds them, that one piece of the expression matches, as the
// library decides. A piece that matches the empty name or no byte at all is not one byte's
// piece: it may be an assertion, such as the escapes of a word's start and end.
bool LearnBytes(const std::string& piece, ByteSet& bytes) {
    try {
        const boost::regex expression(piece, SearchSyntax);
        const char none = '\0';
        if (boost::regex_match(&none, &none, expression, SearchMatchFlags))
            return false;
        for (int value = 1; value < 256; ++value) {
            const char byte = static_cast<char>(value);
            bytes[value] = loam::FoldToLower(byte) == byte &&
                           boost::regex_match(&byte, &byte + 1, expression, SearchMatchFlags);
        }
        return bytes.any();
    } catch (...) {
        return false;
    }
}

// A node of the automaton that may take several ways at once: it takes one byte of a set and
// goes on to out, or takes none and goes on to out and, for a branch, to other as well.
struct Node {
    int32_t set = -1;
    int32_t out = -1;
    int32_t other = -1;
};

// What the matches of a part of the expression hold, as folded bytes: texts that every match
// begins with one of, ends with one of, and holds one of somewhere. A set that holds the empty
// text says nothing. When exact, the part matches its texts and no other, and all three are
// those texts.
using Texts = std::vector<std::string>;

struct Literals {
    bool exact = false;
    Texts heads{""};
    Texts tails{""};
    Texts inner{""};
};

constexpr size_t MaxLiteralTexts = 16;
constexpr size_t MaxLiteralLength = 16;

size_t ShortestLength(const Texts& texts) {
    size_t shortest = MaxLiteralLength;
    for (const std::string& text : texts)
        shortest = std::min(shortest, text.size());
    return shortest;
}

// Of two sets of texts, the one that fewer names hold: the longer shortest text first, then the
// fewer texts.
const Texts& Better(const Texts& one, const Texts& another) {
    const size_t oneShortest = ShortestLength(one), anotherShortest = ShortestLength(another);
    if (oneShortest != anotherShortest)
        return oneShortest > anotherShortest ? one : another;
    return one.size() <= another.size() ? one : another;
}

// Each text of one followed by each of another; nothing known when there would be too many or
// too long.
Texts Cross(const Texts& one, const Texts& another) {
    if (one.size() * another.size() > MaxLiteralTexts)
        return {""};
    Texts both;
    for (const std::string& head : one) {
        for (const std::string& tail : another) {
            if (head.size() + tail.size() > MaxLiteralLength)
                return {""};
            both.push_back(head + tail);
        }
    }
    std::sort(both.begin(), both.end());
    both.erase(std::unique(both.begin(), both.end()), both.end());
    return both;
}

Texts Union(const Texts& one, const Texts& another) {
    Texts either = one;
    either.insert(either.end(), another.begin(), another.end());
    std::sort(either.begin(), either.end());
    either.erase(std::unique(either.begin(), either.end()), either.end());
    return either.size() > MaxLiteralTexts ? Texts{""} : either;
}

Literals Sequenced(const Literals& one, const Literals& another) {
    if (one.exact && another.exact) {
        const Texts both = Cross(one.inner, another.inner);
        if (both != Texts{""} || (one.inner == both && another.inner == both))
            return {true, both, both, both};
    }
    Literals sequence;
    sequence.heads = one.heads;
    if (one.exact && Cross(one.heads, another.heads) != Texts{""})
        sequence.heads = Cross(one.heads, another.heads);
    sequence.tails = another.tails;
    if (another.exact && Cross(one.tails, another.tails) != Texts{""})
        sequence.tails = Cross(one.tails, another.tails);
    const Texts across = Cross(one.tails, another.heads);
    sequence.inner = Better(Better(one.inner, another.inner), Better(across, sequence.heads));
    sequence.inner = Better(sequence.inner, sequence.tails);
    return sequence;
}

Literals Alternated(const Literals& one, const Literals& another) {
    return {one.exact && another.exact &&
                one.inner.size() + another.inner.size() <= MaxLiteralTexts,
            Union(one.heads, another.heads), Union(one.tails, another.tails),
            Union(one.inner, another.inner)};
}

Literals Exactly(const std::string& text) {
    return {true, {text}, {text}, {text}};
}

// A part of the automaton: where it begins, and the node taking no byte where it ends, whose
// way on is still open; and what its matches hold.
struct Fragment {
    int32_t first = -1;
    int32_t last = -1;
    Literals literals;
};

// Reads the expression into the nodes, and asks the library for each distinct byte piece.
class ExpressionReader {
public:
    explicit ExpressionReader(const char* text) : text(text) {}

    bool Read();

    std::vector<Node> nodes;
    std::vector<ByteSet> sets;
    std::vector<std::string> required;
    int32_t startNode = -1;
    int32_t matchNode = -1;

private:
    int32_t Add(Node node) {
        nodes.push_back(node);
        return static_cast<int32_t>(nodes.size()) - 1;
    }
    Fragment Empty() {
        const int32_t end = Add({});
        return {end, end, {true, {""}, {""}, {""}}};
    }
    // A set of one byte value is a literal byte.
    Fragment OneByte(int32_t set) {
        const int32_t end = Add({});
        Literals literals;
        if (sets[set].count() == 1) {
            for (int value = 1; value < 256; ++value) {
                if (sets[set][value])
                    literals = Exactly(std::string(1, static_cast<char>(value)));
            }
        }
        return {Add({set, end}), end, literals};
    }
    void Join(Fragment& fragment, const Fragment& next) {
        nodes[fragment.last].out = next.first;
        fragment.last = next.last;
        fragment.literals = Sequenced(fragment.literals, next.literals);
    }
    Fragment Either(const Fragment& one, const Fragment& another) {
        const int32_t end = Add({});
        nodes[one.last].out = end;
        nodes[another.last].out = end;
        return {Add({-1, one.first, another.first}), end,
                Alternated(one.literals, another.literals)};
    }
    // The fragment, then as many more times over as the name allows.
    Fragment Loop(const Fragment& fragment) {
        const int32_t end = Add({});
        nodes[fragment.last].out = Add({-1, fragment.first, end});
        return {fragment.first,
                end,
                {false, fragment.literals.heads, fragment.literals.tails, fragment.literals.inner}};
    }

    bool Alternatives(Fragment& fragment, int depth);
    bool Sequence(Fragment& fragment, int depth);
    bool Piece(Fragment& fragment, int depth);
    bool Atom(Fragment& fragment, int depth);
    bool Repeat(int32_t& least, int32_t& most);
    bool Count(int32_t& count);
    bool ClassEnd(size_t& end) const;
    bool Bytes(size_t length, Fragment& fragment);

    const char* text;
    size_t at = 0;
    std::map<std::string, int32_t> known;
};

bool ExpressionReader::Read() {
    if (text[0] == '^') {
        at = 1;
        if (IsOneOf(text[at], "*+?{"))
            return false;
    }
    Fragment whole;
    if (!Alternatives(whole, 0) || text[at] != '\0')
        return false;
    matchNode = Add({});
    nodes[whole.last].out = matchNode;
    startNode = whole.first;
    if (ShortestLength(whole.literals.inner) > 0)
        required = whole.literals.inner;
    return nodes.size() <= MaxNodes;
}

bool ExpressionReader::Alternatives(Fragment& fragment, int depth) {
    if (!Sequence(fragment, depth))
        return false;
    while (text[at] == '|') {
        ++at;
        Fragment next;
        if (!Sequence(next, depth))
            return false;
        fragment = Either(fragment, next);
    }
    return true;
}

bool ExpressionReader::Sequence(Fragment& fragment, int depth) {
    fragment = Empty();
    while (!IsOneOf(text[at], "|)") && text[at] != '\0') {
        Fragment piece;
        if (!Piece(piece, depth))
            return false;
        Join(fragment, piece);
    }
    return true;
}

// An atom and its repeat. Each copy that an interval asks for is read again from the text.
bool ExpressionReader::Piece(Fragment& fragment, int depth) {
    const size_t from = at;
    Fragment atom;
    int32_t least = 1, most = 1;
    if (!Atom(atom, depth) || !Repeat(least, most))
        return false;
    const size_t after = at;
    const auto copy = [&](Fragment& next) {
        at = from;
        const bool read = Atom(next, depth);
        at = after;
        return read;
    };
    fragment = Empty();
    for (int32_t count = 0; count < least; ++count) {
        Fragment next = atom;
        if (count > 0 && !copy(next))
            return false;
        Join(fragment, most < 0 && count + 1 == least ? Loop(next) : next);
    }
    if (most < 0) {
        if (least == 0)
            Join(fragment, Either(Loop(atom), Empty()));
        return nodes.size() <= MaxNodes;
    }
    // The optional copies nest, so that each count is one way through them.
    Fragment tail = Empty();
    for (int32_t count = most - least; count > 0; --count) {
        Fragment next;
        if (least == 0 && count == 1)
            next = atom;
        else if (!copy(next))
            return false;
        Join(next, tail);
        tail = Either(next, Empty());
    }
    Join(fragment, tail);
    return nodes.size() <= MaxNodes;
}

bool ExpressionReader::Atom(Fragment& fragment, int depth) {
    if (nodes.size() > MaxNodes)
        return false;
    const char byte = text[at];
    if (byte == '(') {
        if (text[at + 1] == '?' && text[at + 2] != ':')
            return false;
        at += text[at + 1] == '?' ? 3 : 1;
        if (!Alternatives(fragment, depth + 1) || text[at] != ')')
            return false;
        ++at;
        return true;
    }
    if (byte == '$' && depth == 0 && text[at + 1] == '\0') {
        ++at;
        fragment = Empty();
        return true;
    }
    if (byte == '[') {
        size_t end = 0;
        return ClassEnd(end) && Bytes(end + 1 - at, fragment);
    }
    if (byte == '\\') {
        const char next = text[at + 1];
        return (IsPunctuation(next) || IsOneOf(next, "dswDSW")) && Bytes(2, fragment);
    }
    if (IsOneOf(byte, "*+?{^$"))
        return false;
    return Bytes(1, fragment);
}

// A repeat after an atom, lazy or not: none gives one time exactly, and most is -1 for no bound.
// A possessive repeat, or a repeat of a repeat, is not read.
bool ExpressionReader::Repeat(int32_t& least, int32_t& most) {
    const char repeat = text[at];
    if (repeat == '*' || repeat == '+' || repeat == '?') {
        least = repeat == '+' ? 1 : 0;
        most = repeat == '?' ? 1 : -1;
        ++at;
    } else if (repeat == '{') {
        ++at;
        if (!Count(least))
            return false;
        most = least;
        if (text[at] == ',') {
            ++at;
            most = -1;
            if (text[at] != '}' && (!Count(most) || most < least))
                return false;
        }
        if (text[at] != '}')
            return false;
        ++at;
    } else {
        return true;
    }
    if (text[at] == '?')
        ++at;
    return !IsOneOf(text[at], "*+?{");
}

bool ExpressionReader::Count(int32_t& count) {
    if (!std::isdigit(static_cast<unsigned char>(text[at])))
        return false;
    count = 0;
    while (std::isdigit(static_cast<unsigned char>(text[at]))) {
        count = count * 10 + (text[at++] - '0');
        if (count > MaxRepeatCount)
            return false;
    }
    return true;
}

// Where a class that opens at the current place closes. Collating elements, equivalence
// classes and escapes that could reach past the closing bracket are not read.
bool ExpressionReader::ClassEnd(size_t& end) const {
    end = at + 1;
    if (text[end] == '^')
        ++end;
    if (text[end] == ']')
        ++end;
    for (; text[end] != ']'; ++end) {
        const char byte = text[end];
        const char next = text[end + 1];
        if (byte == '\0' || (byte == '[' && IsOneOf(next, ".=")))
            return false;
        if (byte == '[' && next == ':') {
            size_t close = end + 2;
            while (std::islower(static_cast<unsigned char>(text[close])))
                ++close;
            if (text[close] != ':' || text[close + 1] != ']')
                return false;
            end = close + 1;
        } else if (byte == '\\') {
            if (!IsPunctuation(next) && !IsOneOf(next, "dswDSW"))
                return false;
            ++end;
        }
    }
    return true;
}

// The piece of the given length at the current place, which matches one byte of a set.
bool ExpressionReader::Bytes(size_t length, Fragment& fragment) {
    const std::string piece(text + at, length);
    at += length;
    auto found = known.find(piece);
    if (found == known.end()) {
        ByteSet bytes;
        if (!LearnBytes(piece, bytes))
            return false;
        sets.push_back(bytes);
        found = known.emplace(piece, static_cast<int32_t>(sets.size()) - 1).first;
    }
    fragment = OneByte(found->second);
    return true;
}

// A node that takes a byte or ends the match, and the number of ways to reach it.
struct Way {
    int32_t node;
    double count;
};
using Ways = std::vector<Way>;

// For every node, the nodes that take a byte or end the match that it reaches without taking a
// byte, and in how many ways. A loop of such moves, which a repeat of what may match nothing
// makes, has no finite count, and the library then decides.
class Closures {
public:
    explicit Closures(const std::vector<Node>& nodes)
        : nodes(nodes), ways(nodes.size()), marks(nodes.size(), Unseen) {}

    bool Of(int32_t node) {
        if (marks[node] == Done)
            return true;
        if (marks[node] == Open)
            return false;
        marks[node] = Open;
        const Node& at = nodes[node];
        if (at.set >= 0 || at.out < 0) {
            ways[node] = {{node, 1}};
        } else {
            if (!Of(at.out) || (at.other >= 0 && !Of(at.other)))
                return false;
            ways[node] = at.other >= 0 ? Merged(ways[at.out], ways[at.other]) : ways[at.out];
        }
        marks[node] = Done;
        return true;
    }
    const Ways& Get(int32_t node) const { return ways[node]; }

private:
    enum Mark { Unseen, Open, Done };

    static Ways Merged(const Ways& one, const Ways& another) {
        Ways merged;
        std::merge(one.begin(), one.end(), another.begin(), another.end(),
                   std::back_inserter(merged),
                   [](const Way& a, const Way& b) { return a.node < b.node; });
        Ways summed;
        for (const Way& way : merged) {
            if (!summed.empty() && summed.back().node == way.node)
                summed.back().count += way.count;
            else
                summed.push_back(way);
        }
        return summed;
    }

    const std::vector<Node>& nodes;
    std::vector<Ways> ways;
    std::vector<Mark> marks;
};

// The automaton without the table: its states, each the set of nodes that the next byte may be
// taken by (and the match's end), and where each state goes on each class of bytes.
struct StateGraph {
    std::vector<std::vector<int32_t>> states;
    std::vector<std::vector<int32_t>> next;
    int32_t classCount = 0;
};

class AutomatonBuilder {
public:
    AutomatonBuilder(const ExpressionReader& reader, const Closures& closures)
        : reader(reader), closures(closures) {}

    bool Build(uint16_t (&classes)[256]);
    int32_t TrustedLength(size_t expressionLength) const;

    StateGraph graph;
    std::vector<std::vector<bool>> members;

private:
    void MakeClasses(uint16_t (&classes)[256]);
    std::vector<int32_t> NextState(const std::vector<int32_t>& state, int32_t byteClass) const;
    bool Takes(int32_t node, int32_t byteClass) const {
        const int32_t set = reader.nodes[node].set;
        return set >= 0 && members[set][byteClass];
    }
    double CountNext(const std::vector<double>& counts, int32_t from, int32_t byteClass,
                     std::vector<double>& into) const;

    const ExpressionReader& reader;
    const Closures& closures;
};

// Bytes that every set treats alike share a class; a name's NUL has a class of its own, the
// last.
void AutomatonBuilder::MakeClasses(uint16_t (&classes)[256]) {
    std::map<std::vector<bool>, uint16_t> known;
    for (int value = 1; value < 256; ++value) {
        const auto folded = static_cast<uint8_t>(loam::FoldToLower(static_cast<char>(value)));
        std::vector<bool> signature;
        for (const ByteSet& set : reader.sets)
            signature.push_back(set[folded]);
        const auto found = known.emplace(signature, static_cast<uint16_t>(known.size())).first;
        classes[value] = found->second;
    }
    graph.classCount = static_cast<int32_t>(known.size()) + 1;
    classes[0] = static_cast<uint16_t>(graph.classCount - 1);
    members.assign(reader.sets.size(), std::vector<bool>(graph.classCount, false));
    for (const auto& [signature, byteClass] : known) {
        for (size_t set = 0; set < signature.size(); ++set)
            members[set][byteClass] = signature[set];
    }
}

std::vector<int32_t> AutomatonBuilder::NextState(const std::vector<int32_t>& state,
                                                 int32_t byteClass) const {
    std::vector<int32_t> next;
    for (int32_t node : state) {
        if (!Takes(node, byteClass))
            continue;
        for (const Way& way : closures.Get(reader.nodes[node].out))
            next.push_back(way.node);
    }
    std::sort(next.begin(), next.end());
    next.erase(std::unique(next.begin(), next.end()), next.end());
    return next;
}

bool AutomatonBuilder::Build(uint16_t (&classes)[256]) {
    MakeClasses(classes);
    std::map<std::vector<int32_t>, int32_t> known;
    std::vector<int32_t> first;
    for (const Way& way : closures.Get(reader.startNode))
        first.push_back(way.node);
    known.emplace(first, 0);
    graph.states.push_back(first);
    double work = 0;
    for (size_t state = 0; state < graph.states.size(); ++state) {
        std::vector<int32_t> next(graph.classCount - 1, -1);
        work += static_cast<double>(graph.states[state].size()) * graph.classCount;
        if (work > BuildingWork)
            return false;
        for (int32_t byteClass = 0; byteClass + 1 < graph.classCount; ++byteClass) {
            std::vector<int32_t> target = NextState(graph.states[state], byteClass);
            if (target.empty())
                continue;
            const auto found =
                known.emplace(std::move(target), static_cast<int32_t>(known.size())).first;
            if (found->second == static_cast<int32_t>(graph.states.size())) {
                if (graph.states.size() == MaxStates)
                    return false;
                graph.states.push_back(found->first);
            }
            next[byteClass] = found->second;
        }
        graph.next.push_back(std::move(next));
    }
    return true;
}

// The ways that reach each node of the state the class leads to, from the ways that reached
// the nodes of the state it leads from; the work it took.
double AutomatonBuilder::CountNext(const std::vector<double>& counts, int32_t from,
                                   int32_t byteClass, std::vector<double>& into) const {
    const std::vector<int32_t>& source = graph.states[from];
    const std::vector<int32_t>& target = graph.states[graph.next[from][byteClass]];
    double work = 0;
    for (size_t i = 0; i < source.size(); ++i) {
        if (!Takes(source[i], byteClass))
            continue;
        for (const Way& way : closures.Get(reader.nodes[source[i]].out)) {
            const auto place = std::lower_bound(target.begin(), target.end(), way.node);
            into[place - target.begin()] += counts[i] * way.count;
            ++work;
        }
    }
    return work + 1;
}

// The matcher tries each way into each node once for each place in the name, whatever the
// name's bytes; counted per state of the automaton, with the most that any name reaching that
// state can give, and summed over the places of a name, the ways bound the matcher's steps.
int32_t AutomatonBuilder::TrustedLength(size_t expressionLength) const {
    const double stepsPerWay = 2 * (2.0 * static_cast<double>(expressionLength) + 8);
    const double allowedWays = MatcherStepFloor / stepsPerWay;
    const size_t count = graph.states.size();
    std::vector<std::vector<double>> ways(count);
    ways[0].assign(graph.states[0].size(), 0);
    const Ways& first = closures.Get(reader.startNode);
    for (size_t i = 0; i < first.size(); ++i)
        ways[0][i] = first[i].count;
    double total = 0, work = 0;
    for (int32_t length = 0;; ++length) {
        double most = 0;
        for (const std::vector<double>& counts : ways) {
            double sum = 0;
            for (double value : counts)
                sum += value;
            most = std::max(most, sum);
        }
        total += most;
        if (total > allowedWays)
            return length - 1;
        if (length == LongestLoadableName || work > CountingWork)
            return length;
        std::vector<std::vector<double>> next(count);
        for (size_t state = 0; state < count; ++state) {
            if (ways[state].empty())
                continue;
            for (int32_t byteClass = 0; byteClass + 1 < graph.classCount; ++byteClass) {
                const int32_t to = graph.next[state][byteClass];
                if (to < 0)
                    continue;
                std::vector<double> counts(graph.states[to].size(), 0);
                work += CountNext(ways[state], static_cast<int32_t>(state), byteClass, counts);
                std::vector<double>& into = next[to];
                if (into.empty())
                    into = counts;
                for (size_t i = 0; i < counts.size(); ++i)
                    into[i] = std::max(into[i], counts[i]);
            }
        }
        // From here on every place costs what this one did.
        if (next == ways) {
            const double more = most > 0 ? (allowedWays - total) / most : LongestLoadableName;
            return static_cast<int32_t>(std::min<double>(LongestLoadableName, length + more));
        }
        ways = std::move(next);
    }
}

// The states that match whatever follows (every byte leads to such a state, and a name's end
// matches), and the states from which no match can be reached. A name is decided on reaching
// either.
enum Outcome : int32_t { Open, Matched, Refused };

std::vector<int32_t> Outcomes(const StateGraph& graph, int32_t matchNode) {
    const size_t count = graph.states.size();
    std::vector<int32_t> outcome(count, Open);
    std::vector<bool> matching(count), live(count);
    for (size_t state = 0; state < count; ++state) {
        const std::vector<int32_t>& nodes = graph.states[state];
        matching[state] = std::binary_search(nodes.begin(), nodes.end(), matchNode);
        live[state] = matching[state];
    }
    for (bool changed = true; changed;) {
        changed = false;
        for (size_t state = 0; state < count; ++state) {
            bool leadsToLive = live[state], staysMatching = matching[state];
            for (int32_t to : graph.next[state]) {
                leadsToLive = leadsToLive || (to >= 0 && live[to]);
                staysMatching = staysMatching && to >= 0 && matching[to];
            }
            changed = changed || leadsToLive != live[state] || staysMatching != matching[state];
            live[state] = leadsToLive;
            matching[state] = staysMatching;
        }
    }
    for (size_t state = 0; state < count; ++state)
        outcome[state] = matching[state] ? Matched : live[state] ? Open : Refused;
    return outcome;
}

} // namespace

bool NameAutomaton::Build(const char* expression) {
    table.clear();
    pieces.clear();
    start = stopped = accepted = 0;
    trustedLength = -1;
    ExpressionReader reader(expression);
    if (!reader.Read())
        return false;
    Closures closures(reader.nodes);
    if (!closures.Of(reader.startNode))
        return false;
    for (size_t node = 0; node < reader.nodes.size(); ++node) {
        if (reader.nodes[node].set >= 0 && !closures.Of(reader.nodes[node].out))
            return false;
    }
    AutomatonBuilder builder(reader, closures);
    if (!builder.Build(classes))
        return false;
    const StateGraph& graph = builder.graph;
    const std::vector<int32_t> outcome = Outcomes(graph, reader.matchNode);
    const auto width = static_cast<uint32_t>(graph.classCount);
    const auto count = static_cast<uint32_t>(graph.states.size());
    // Two rows after the states' rows, which keep a decided name where it is.
    stopped = count * width;
    accepted = stopped + width;
    table.assign(static_cast<size_t>(count + 2) * width, stopped);
    std::fill(table.begin() + accepted, table.end(), accepted);
    const auto entry = [&](int32_t to) {
        return to < 0 || outcome[to] == Refused ? stopped
               : outcome[to] == Matched         ? accepted
                                                : static_cast<uint32_t>(to) * width;
    };
    for (uint32_t state = 0; state < count; ++state) {
        uint32_t* row = &table[state * width];
        for (uint32_t byteClass = 0; byteClass + 1 < width; ++byteClass)
            row[byteClass] = entry(graph.next[state][byteClass]);
        const std::vector<int32_t>& nodes = graph.states[state];
        row[width - 1] =
            std::binary_search(nodes.begin(), nodes.end(), reader.matchNode) ? accepted : stopped;
    }
    start = entry(0);
    pieces = reader.required;
    trustedLength = builder.TrustedLength(std::strlen(expression));
    return true;
}

// Four names at once, each on its own chain of table reads, so that the processor overlaps
// them; a decided name's place stays where it was decided.
void NameAutomaton::MatchFour(const char* const (&names)[4], bool (&matched)[4]) const {
    const uint32_t* rows = table.data();
    const auto* a = reinterpret_cast<const uint8_t*>(names[0]);
    const auto* b = reinterpret_cast<const uint8_t*>(names[1]);
    const auto* c = reinterpret_cast<const uint8_t*>(names[2]);
    const auto* d = reinterpret_cast<const uint8_t*>(names[3]);
    uint32_t sa = start, sb = start, sc = start, sd = start;
    while (std::min(std::min(sa, sb), std::min(sc, sd)) < stopped) {
        sa = rows[sa + classes[*a]];
        sb = rows[sb + classes[*b]];
        sc = rows[sc + classes[*c]];
        sd = rows[sd + classes[*d]];
        a += sa < stopped;
        b += sb < stopped;
        c += sc < stopped;
        d += sd < stopped;
    }
    matched[0] = sa == accepted;
    matched[1] = sb == accepted;
    matched[2] = sc == accepted;
    matched[3] = sd == accepted;
}
