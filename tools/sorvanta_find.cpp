// sorvanta-find: the command-line finder over the index of the desktop program, with the same
// matching and the same settings.

#include "app/resources/string_table.h"
#include "app/settings.h"
#include "index/index_data.h"
#include "index/index_format.h"
#include "index/index_status.h"
#include "index/long_name.h"
#include "loam/disk_file.h"
#include "loam/error.h"
#include "loam/preferences.h"
#include "search/candidate_search.h"
#include "search/index_searcher.h"
#include "tools/index_state.h"

#include <getopt.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char ProgramName[] = "sorvanta-find";
constexpr int ExitMatched = 0;
constexpr int ExitNothingMatched = 1;
constexpr int ExitError = 2;
constexpr size_t OutputBufferSize = 1 << 20;

const char helpText[] =
    "Usage: sorvanta-find [OPTION]... PATTERN\n"
    "Print the full path of every file and folder in the Sorvanta index whose name\n"
    "matches PATTERN, in index order.\n"
    "\n"
    "  -r, --regex              PATTERN is a regular expression\n"
    "  -R, --no-regex           PATTERN is a wildcard pattern\n"
    "  -w, --auto-wildcards     a wildcard pattern without * or ? matches anywhere in a name\n"
    "  -W, --no-auto-wildcards  a wildcard pattern must match the whole name\n"
    "  -c, --count              print only the number of matches\n"
    "  -l, --limit N            print at most N matches\n"
    "  -d, --index FILE         search FILE instead of the user's index\n"
    "  -0, --null               end each path with a NUL byte instead of a newline\n"
    "      --status             print the index's status line, as the main window shows it, "
    "and exit\n"
    "      --dump FILE          write the index as plain text to FILE (- for standard output) "
    "and exit\n"
    "  -h, --help               print this help and exit\n"
    "      --version            print the version and exit\n"
    "\n"
    "The defaults of -r/-R and -w/-W are the options saved by Sorvanta.\n"
    "Exit status is 0 if something matched, 1 if nothing did, 2 if an error occurred.\n";

const char noIndexText[] = "No index available.";
const char gaveUpText[] = "the expression was too complex for a name, and the search stopped there";
const char dumpOntoIndexText[] = "the dump would take the place of the index it is made from";

enum Action { ActionSearch, ActionStatus, ActionDump, ActionHelp, ActionVersion };

struct Request {
    Action action = ActionSearch;
    bool isRegExp = false;
    bool autoWildcards = false;
    bool countOnly = false;
    int32_t limit = INT32_MAX;
    char terminator = '\n';
    const char* indexFile = nullptr;
    const char* dumpFile = nullptr;
    const char* pattern = nullptr;
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
    {"null", no_argument, nullptr, '0'},
    {"status", no_argument, nullptr, OptionStatus},
    {"dump", required_argument, nullptr, OptionDump},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, OptionVersion},
    {nullptr, 0, nullptr, 0},
};

int Fail(const char* text) {
    std::fprintf(stderr, "%s: %s\n", ProgramName, text);
    return ExitError;
}

int FailWithTopError() {
    const loam::String message = loam::GetCurrentErrorInfo().GetMessage();
    loam::ClearErrors();
    return Fail(message.GetCString());
}

int FailUsage() {
    std::fprintf(stderr, "%s: Usage: %s [OPTION]... PATTERN\n", ProgramName, ProgramName);
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
        request.indexFile = optarg;
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

// A search takes exactly one pattern; the other actions take none.
bool ParseArguments(int argc, char** argv, Request& request) {
    // The parser names the program in its messages as it was called; the finder's own name
    // reads better than a full path.
    argv[0] = const_cast<char*>(ProgramName);
    int option = 0;
    while ((option = getopt_long(argc, argv, "rRwWcl:d:0h", longOptions, nullptr)) != -1) {
        if (!ParseOption(option, request))
            return false;
    }
    const int operands = argc - optind;
    if (request.action == ActionHelp || request.action == ActionVersion)
        return true;
    if (request.action != ActionSearch)
        return operands == 0;
    if (operands != 1)
        return false;
    request.pattern = argv[optind];
    return true;
}

loam::FileSpec GetIndexFile(const Request& request) {
    if (request.indexFile)
        return loam::FileSpec(request.indexFile);
    SorvantaSettings::LoadSettings();
    return SorvantaSettings::GetIndexFile();
}

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
// the real paths on the disk, as GetRealPathOf builds them, but results come in index order and
// most share their folder with the one before, so the folder is walked up to only when it changes.
void WritePaths(Output& output, const IndexData& index, int32_t count, char terminator) {
    loam::FileSpec folder, path;
    uint32_t parentOfFolder = IndexNoParent;
    for (int32_t i = 0; i < count; ++i) {
        const IndexRecord* record = index.GetResult(i);
        if (i == 0 || record->GetParent() != parentOfFolder) {
            GetRealFolderOf(index, record, folder);
            parentOfFolder = record->GetParent();
        }
        path = folder;
        AppendRealName(path, *record);
        const loam::String& text = path.GetPath();
        if (!output.Write(text.GetCString(), static_cast<size_t>(text.GetLength())) ||
            !output.Write(&terminator, 1))
            return;
    }
}

// A search goes through the records once, in file order, so the index is scanned a window at a
// time, and the pass goes on from window to window. Nothing is printed before the last window
// has been checked: a file refused at its end shows the refusal alone, as the loader would.
bool SearchWholeIndex(IndexData& index, const loam::FileSpec& file, const Request& request,
                      bool& gaveUp) {
    const ScanMatches matches = request.countOnly ? ScanMatches::Counted : ScanMatches::Kept;
    const bool scanned = index.Scan(file, matches);
    // An index under build or left unfinished is no answer; why goes in place of the loader's
    // words.
    if (const char* reason = GetUnfinishedIndexReason(file, scanned, index)) {
        loam::ClearErrors();
        return loam::RaiseError(loam::ErrorGeneral, reason);
    }
    if (!scanned)
        return false;
    IndexSearcher searcher;
    const bool started =
        searcher.Start(&index, request.pattern, request.isRegExp, request.autoWildcards);
    bool searching = started;
    // A refused pattern is told only of an index that loads whole: a damaged record's failure
    // goes on top of the pattern's.
    while (index.GetRecordCount() > 0) {
        if (searching) {
            searcher.RunToEnd(nullptr);
            searching = searcher.Rewind();
            gaveUp = !searching;
        }
        if (!index.TakeNextWindow())
            return false;
    }
    return started;
}

// The index's trigram file, where it serves, leads to the few records that may match.
int RunSearch(const Request& request) {
    const loam::FileSpec file = GetIndexFile(request);
    IndexData index;
    bool gaveUp = false;
    if (!SearchCandidates(index, file, request.pattern, request.isRegExp, request.autoWildcards) &&
        !SearchWholeIndex(index, file, request, gaveUp))
        return FailWithTopError();
    const int32_t found = index.GetResultCount();
    const int32_t shown = std::min(found, request.limit);
    Output output;
    if (request.countOnly) {
        char text[16];
        const int length = std::snprintf(text, sizeof text, "%d\n", shown);
        output.Write(text, static_cast<size_t>(length));
    } else {
        WritePaths(output, index, shown, request.terminator);
    }
    if (!output.Finish())
        return ExitError;
    // What was found stands, as in the window, but it is no answer to the whole question.
    if (gaveUp)
        return Fail(gaveUpText);
    return found > 0 ? ExitMatched : ExitNothingMatched;
}

// The line of the main window: without an index file the window's own words, after a failed
// load the loader's.
int RunStatus(const Request& request) {
    const loam::FileSpec file = GetIndexFile(request);
    if (file.GetKind() != loam::FileKindFile)
        return Fail(noIndexText);
    IndexData index;
    if (!CountIndex(index, file))
        return FailWithTopError();
    RegisterSorvantaStrings();
    loam::String line;
    FormatIndexStatus(line, index, file, loam::DateTime::Now());
    line.Append('\n');
    Output output;
    output.Write(line.GetCString(), static_cast<size_t>(line.GetLength()));
    return output.Finish() ? ExitMatched : ExitError;
}

// Standard output may be a pipe or a file opened for appending: it is written, never reopened.
int DumpToStandardOutput(const IndexData& index) {
    Output output;
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        loam::String line = index.GetDumpLine(index.GetRecord(ordinal));
        line.Append("\r\n");
        if (!output.Write(line.GetCString(), static_cast<size_t>(line.GetLength())))
            break;
    }
    return output.Finish() ? ExitMatched : ExitError;
}

// The same lines as the index's own dump, but a file that cannot be made or filled, a full disk
// above all, is told in the system's words; the file takes its name only once it is whole.
int RunDump(const Request& request) {
    IndexData index;
    const loam::FileSpec indexFile = GetIndexFile(request);
    const bool loaded = LoadIndex(index, indexFile);
    if (const char* reason = GetUnfinishedIndexReason(indexFile, loaded, index)) {
        loam::ClearErrors();
        return Fail(reason);
    }
    if (!loaded)
        return FailWithTopError();
    if (std::strcmp(request.dumpFile, "-") == 0)
        return DumpToStandardOutput(index);
    if (loam::FileSpec(request.dumpFile).IsSameFile(indexFile))
        return Fail(dumpOntoIndexText);
    loam::DiskFile file;
    if (!file.CreateBeside(loam::FileSpec(request.dumpFile)))
        return FailWithTopError();
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        if (!file.WriteLine(index.GetDumpLine(index.GetRecord(ordinal))))
            return FailWithTopError();
    }
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
