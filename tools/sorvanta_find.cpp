// sorvanta-find: the command-line finder over the index of the desktop program, with the same
// matching and the same settings.

#include "app/resources/string_table.h"
#include "app/settings.h"
#include "index/index_data.h"
#include "index/index_format.h"
#include "index/index_status.h"
#include "loam/disk_file.h"
#include "loam/error.h"
#include "loam/preferences.h"
#include "search/index_searcher.h"
#include "tools/finder_search.h"
#include "tools/index_list.h"
#include "tools/index_state.h"
#include "tools/paths_in_order.h"

#include <getopt.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr char ProgramName[] = "sorvanta-find";
constexpr int ExitMatched = 0;
constexpr int ExitNothingMatched = 1;
constexpr int ExitError = 2;
constexpr size_t OutputBufferSize = 1 << 20;

const char helpText[] =
    "Usage: sorvanta-find [OPTION]... PATTERN...\n"
    "Print the full path of every file and folder in the Sorvanta index whose name\n"
    "matches every PATTERN, in index order.\n"
    "\n"
    "  -r, --regex              the PATTERNs are regular expressions\n"
    "  -R, --no-regex           the PATTERNs are wildcard patterns\n"
    "  -w, --auto-wildcards     a wildcard pattern without * or ? matches anywhere in a name\n"
    "                           (in a path with -p)\n"
    "  -W, --no-auto-wildcards  a wildcard pattern must match the whole name (path)\n"
    "  -p, --path               match the full path instead of the name, with the same\n"
    "                           case folding, wildcards and regular expressions\n"
    "  -e, --existing           print only entries that still exist\n"
    "  -c, --count              print only the number of matches\n"
    "  -l, --limit N            print at most N matches\n"
    "  -d, --index FILE[:FILE]  search the FILEs instead of the user's index; may be given\n"
    "                           more than once; an empty FILE is the user's index\n"
    "  -0, --null               end each path with a NUL byte instead of a newline\n"
    "      --status             print the index's status line, as the main window shows it, "
    "and exit\n"
    "      --dump FILE          write the index as plain text to FILE (- for standard output) "
    "and exit\n"
    "  -h, --help               print this help and exit\n"
    "      --version            print the version and exit\n"
    "\n"
    "The defaults of -r/-R and -w/-W are the options saved by Sorvanta.\n"
    "\n"
    "With several indexes the paths come index by index, each index in its own order.\n"
    "-c counts and -l limits the matches of all indexes together; no index is searched\n"
    "after the one that reaches the limit. --status prints one line per index, --dump\n"
    "writes the indexes one after another into one FILE. With more than one index, each\n"
    "status line and each error begins with the file of its index.\n"
    "\n"
    "Exit status is 0 if something matched, 1 if nothing did, 2 if an error occurred.\n"
    "An index that cannot be read is an error; the other indexes are searched all the same.\n";

const char noIndexText[] = "No index available.";
const char gaveUpText[] = "the expression was too complex for a name, and the search stopped there";
const char dumpOntoIndexText[] = "the dump would take the place of the index it is made from";

enum Action { ActionSearch, ActionStatus, ActionDump, ActionHelp, ActionVersion };

struct Request {
    Action action = ActionSearch;
    bool isRegExp = false;
    bool autoWildcards = false;
    bool countOnly = false;
    bool matchPath = false;
    bool existingOnly = false;
    int32_t limit = INT32_MAX;
    char terminator = '\n';
    IndexList indexes;
    const char* dumpFile = nullptr;
    std::vector<loam::String> patterns;
};

enum LongOnly { OptionStatus = 256, OptionDump, OptionVersion };

const option longOptions[] = {
    {"regex", no_argument, nullptr, 'r'},
    {"no-regex", no_argument, nullptr, 'R'},
    {"auto-wildcards", no_argument, nullptr, 'w'},
    {"no-auto-wildcards", no_argument, nullptr, 'W'},
    {"count", no_argument, nullptr, 'c'},
    {"limit", required_argument, nullptr, 'l'},
    {"index", required_argument, nullptr, 'd'},
    {"path", no_argument, nullptr, 'p'},
    {"existing", no_argument, nullptr, 'e'},
    {"null", no_argument, nullptr, '0'},
    {"status", no_argument, nullptr, OptionStatus},
    {"dump", required_argument, nullptr, OptionDump},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, OptionVersion},
    {nullptr, 0, nullptr, 0},
};

// With more than one index, what failed names the file of its index.
const char* indexLabel = "";

int Fail(const char* text) {
    std::fprintf(stderr, "%s: %s%s\n", ProgramName, indexLabel, text);
    return ExitError;
}

int FailWithTopError() {
    const loam::String message = loam::GetCurrentErrorInfo().GetMessage();
    loam::ClearErrors();
    return Fail(message.GetCString());
}

int FailUsage() {
    std::fprintf(stderr, "%s: Usage: %s [OPTION]... PATTERN...\n", ProgramName, ProgramName);
    std::fprintf(stderr, "%s: Try '%s --help' for more information.\n", ProgramName, ProgramName);
    return ExitError;
}

// Standard output through one large buffer. A reader that went away ends the output quietly:
// it has what it wanted.
class Output {
public:
    bool Write(const char* text, size_t length) {
        errno = 0;
        if (failure == 0 && std::fwrite(text, 1, length, stdout) != length)
            failure = errno ? errno : EIO;
        return failure == 0;
    }
    bool Finish() {
        errno = 0;
        if (failure == 0 && std::fflush(stdout) != 0)
            failure = errno ? errno : EIO;
        if (failure == 0 || failure == EPIPE)
            return true;
        std::fprintf(stderr, "%s: write error: %s\n", ProgramName, std::strerror(failure));
        return false;
    }

private:
    int failure = 0;
};

// What the user saved in the program's options is the finder's default as well.
void ReadSavedOptions(Request& request) {
    loam::Preferences& preferences = loam::GetPreferences();
    preferences.GetBool(KeyUseRegExp, request.isRegExp);
    preferences.GetBool(KeyAutoWildcards, request.autoWildcards);
}

bool ParseLimit(const char* text, int32_t& limit) {
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || value < 0)
        return false;
    limit = static_cast<int32_t>(std::min<long long>(value, INT32_MAX));
    return true;
}

bool ParseOption(int option, Request& request) {
    switch (option) {
    case 'r':
    case 'R':
        request.isRegExp = option == 'r';
        return true;
    case 'w':
    case 'W':
        request.autoWildcards = option == 'w';
        return true;
    case 'c':
        request.countOnly = true;
        return true;
    case 'l':
        if (ParseLimit(optarg, request.limit))
            return true;
        std::fprintf(stderr, "%s: invalid limit '%s'\n", ProgramName, optarg);
        return false;
    case 'd':
        request.indexes.Add(optarg);
        return true;
    case 'p':
        request.matchPath = true;
        return true;
    case 'e':
        request.existingOnly = true;
        return true;
    case '0':
        request.terminator = '\0';
        return true;
    case OptionStatus:
        request.action = ActionStatus;
        return true;
    case OptionDump:
        request.action = ActionDump;
        request.dumpFile = optarg;
        return true;
    case 'h':
        request.action = ActionHelp;
        return true;
    case OptionVersion:
        request.action = ActionVersion;
        return true;
    default:
        return false;
    }
}

// A search takes one pattern or more; the other actions take none.
bool ParseArguments(int argc, char** argv, Request& request) {
    // The parser names the program in its messages as it was called; the finder's own name
    // reads better than a full path.
    argv[0] = const_cast<char*>(ProgramName);
    int option = 0;
    while ((option = getopt_long(argc, argv, "rRwWpecl:d:0h", longOptions, nullptr)) != -1) {
        if (!ParseOption(option, request))
            return false;
    }
    const int operands = argc - optind;
    if (request.action == ActionHelp || request.action == ActionVersion)
        return true;
    if (request.action != ActionSearch)
        return operands == 0;
    if (operands < 1)
        return false;
    request.patterns.assign(argv + optind, argv + argc);
    return true;
}

// Names the index in what is said about it, when there are several.
class IndexLabel {
public:
    IndexLabel(const loam::FileSpec& file, size_t indexCount) {
        if (indexCount > 1)
            label.Format("%s: ", file.GetPath().GetCString());
        indexLabel = label.GetCString();
    }
    ~IndexLabel() { indexLabel = ""; }
    const loam::String& GetText() const { return label; }

private:
    loam::String label;
};

// What goes through every record by its ordinal needs the whole table.
bool LoadIndex(IndexData& index, const loam::FileSpec& file) {
    return index.Load(file);
}

// The status line needs only the counts, which a scan that keeps nothing gathers.
bool CountIndex(IndexData& index, const loam::FileSpec& file) {
    bool scanned = index.Scan(file, ScanMatches::Counted);
    while (scanned && index.GetRecordCount() > 0)
        scanned = index.TakeNextWindow();
    return scanned;
}

// Paths are built only for what is printed, and no longer once the output has failed. They are
// the real paths on the disk, as GetRealPathOf builds them.
bool WritePaths(Output& output, const FinderSearch& search, int32_t count, char terminator) {
    PathsInOrder paths(search.GetIndex(), PathsInOrder::Names::Real);
    for (int32_t i = 0; i < count; ++i) {
        const loam::String& text = paths.GetPath(search.GetFound(i));
        if (!output.Write(text.GetCString(), static_cast<size_t>(text.GetLength())) ||
            !output.Write(&terminator, 1))
            return false;
    }
    return true;
}

FinderQuery MakeQuery(const Request& request) {
    FinderQuery query;
    query.patterns = request.patterns;
    query.isRegExp = request.isRegExp;
    query.autoWildcards = request.autoWildcards;
    query.matchPath = request.matchPath;
    query.existingOnly = request.existingOnly;
    query.countOnly = request.countOnly;
    return query;
}

// Each index is read whole before any of its paths is printed: a file refused at its end shows
// the refusal alone, as the loader would. An index that fails is told, and the others are
// searched all the same; a refused pattern would be refused by all of them. What a search that
// stopped early found is printed, as the window shows it, but it is no answer to the whole
// question.
int RunSearch(const Request& request) {
    const std::vector<loam::FileSpec> files = request.indexes.GetFiles();
    const FinderQuery query = MakeQuery(request);
    Output output;
    int32_t shown = 0;
    bool matched = false;
    bool failed = false;
    bool searched = false;
    for (const loam::FileSpec& file : files) {
        const IndexLabel label(file, files.size());
        FinderSearch search(query);
        const FinderSearch::Outcome outcome = search.Run(file);
        if (outcome == FinderSearch::Outcome::IndexFailed ||
            outcome == FinderSearch::Outcome::PatternRefused) {
            failed = true;
            FailWithTopError();
            if (outcome == FinderSearch::Outcome::PatternRefused)
                break;
            continue;
        }
        searched = true;
        const int32_t found = search.GetFoundCount();
        const int32_t count = std::min(found, request.limit - shown);
        matched = matched || found > 0;
        shown += count;
        if (!request.countOnly && !WritePaths(output, search, count, request.terminator))
            break;
        if (outcome == FinderSearch::Outcome::GaveUp) {
            failed = true;
            Fail(gaveUpText);
        }
        if (matched && shown >= request.limit)
            break;
    }
    // A count that no index gave would be no answer.
    if (request.countOnly && searched) {
        char text[16];
        const int length = std::snprintf(text, sizeof text, "%d\n", shown);
        output.Write(text, static_cast<size_t>(length));
    }
    if (!output.Finish() || failed)
        return ExitError;
    return matched ? ExitMatched : ExitNothingMatched;
}

// The line of the main window: without an index file the window's own words, after a failed
// load the loader's.
int WriteStatus(Output& output, const loam::FileSpec& file, const loam::String& label) {
    if (file.GetKind() != loam::FileKindFile)
        return Fail(noIndexText);
    IndexData index;
    if (!CountIndex(index, file))
        return FailWithTopError();
    loam::String status;
    FormatIndexStatus(status, index, file, loam::DateTime::Now());
    loam::String line = label + status;
    line.Append('\n');
    output.Write(line.GetCString(), static_cast<size_t>(line.GetLength()));
    return ExitMatched;
}

int RunStatus(const Request& request) {
    const std::vector<loam::FileSpec> files = request.indexes.GetFiles();
    RegisterSorvantaStrings();
    Output output;
    int status = ExitMatched;
    for (const loam::FileSpec& file : files) {
        const IndexLabel label(file, files.size());
        status = std::max(status, WriteStatus(output, file, label.GetText()));
    }
    return output.Finish() ? status : ExitError;
}

// Standard output may be a pipe or a file opened for appending: it is written, never reopened.
bool DumpToStandardOutput(Output& output, const IndexData& index) {
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        loam::String line = index.GetDumpLine(index.GetRecord(ordinal));
        line.Append("\r\n");
        if (!output.Write(line.GetCString(), static_cast<size_t>(line.GetLength())))
            return false;
    }
    return true;
}

// Whether writing `output` would replace one of the indexes, whatever the spelling of the paths.
bool IsAnyOf(const loam::FileSpec& output, const std::vector<loam::FileSpec>& indexes) {
    return std::any_of(indexes.begin(), indexes.end(),
                       [&output](const loam::FileSpec& index) { return output.IsSameFile(index); });
}

// The same lines as the index's own dump, but a file that cannot be made or filled, a full disk
// above all, is told in the system's words; the file takes its name only once it is whole. Of
// several indexes each follows the one before; the first that fails ends the dump.
int RunDump(const Request& request) {
    const std::vector<loam::FileSpec> files = request.indexes.GetFiles();
    const bool toStandardOutput = std::strcmp(request.dumpFile, "-") == 0;
    Output output;
    loam::DiskFile file;
    if (!toStandardOutput && IsAnyOf(loam::FileSpec(request.dumpFile), files))
        return Fail(dumpOntoIndexText);
    if (!toStandardOutput && !file.CreateBeside(loam::FileSpec(request.dumpFile)))
        return FailWithTopError();
    for (const loam::FileSpec& indexFile : files) {
        const IndexLabel label(indexFile, files.size());
        IndexData index;
        const bool loaded = LoadIndex(index, indexFile);
        if (const char* reason = GetUnfinishedIndexReason(indexFile, loaded, index)) {
            loam::ClearErrors();
            output.Finish();
            return Fail(reason);
        }
        if (!loaded) {
            output.Finish();
            return FailWithTopError();
        }
        if (toStandardOutput) {
            if (!DumpToStandardOutput(output, index))
                break;
            continue;
        }
        for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
            if (!file.WriteLine(index.GetDumpLine(index.GetRecord(ordinal))))
                return FailWithTopError();
        }
    }
    if (toStandardOutput)
        return output.Finish() ? ExitMatched : ExitError;
    return file.PutInPlace() ? ExitMatched : FailWithTopError();
}

int RunHelp(const Request&) {
    Output output;
    output.Write(helpText, sizeof helpText - 1);
    return output.Finish() ? ExitMatched : ExitError;
}

int RunVersion(const Request&) {
    const char text[] = "sorvanta-find (Sorvanta) " SORVANTA_VERSION "\n";
    Output output;
    output.Write(text, sizeof text - 1);
    return output.Finish() ? ExitMatched : ExitError;
}

int (*const actions[])(const Request&) = {RunSearch, RunStatus, RunDump, RunHelp, RunVersion};

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    std::setvbuf(stdout, nullptr, _IOFBF, OutputBufferSize);
    loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
    Request request;
    ReadSavedOptions(request);
    if (!ParseArguments(argc, argv, request))
        return FailUsage();
    return actions[request.action](request);
}
