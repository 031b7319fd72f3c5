// Searches through an index's trigram file and over the whole index, and holds the two answers
// side by side. An input is either names and a pattern, from which an index and its trigram
// file are made, or damage to the trigram file of a fixed index: byte changes and a new length.
// Whatever the input, nothing crashes, hangs or leaks, and a search that the trigram file
// answers finds exactly what the whole pass finds, in the same order and with the same paths.
#include "index/index_data.h"
#include "index/index_format.h"
#include "index/trigram_sidecar.h"
#include "loam/error.h"
#include "search/candidate_search.h"
#include "search/index_searcher.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

// Enough records for many blocks, however few names an input has.
constexpr size_t LeastRecords = 200;
// Patterns whose whole pass takes long teach nothing more about the trigram file.
constexpr size_t LongestPattern = 48;

void AppendInt(std::string& bytes, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift);
}

// Names in turn under the root and the folders among them: a name whose first byte is odd is a
// folder, and the names after it go inside it until one of the even names that start with a
// digit.
std::string MakeImage(const std::vector<std::string>& names) {
    std::string records;
    uint32_t count = 1;
    std::string root = "/data";
    records += static_cast<char>(IndexKindFolder);
    records += static_cast<char>((root.size() + 4) & ~3u);
    AppendInt(records, IndexNoParent);
    AppendInt(records, 0);
    AppendInt(records, 0);
    records += root;
    records.append(((root.size() + 4) & ~3u) - root.size(), '\0');
    uint32_t folder = 0;
    for (size_t round = 0; count < LeastRecords && !names.empty(); ++round) {
        for (const std::string& name : names) {
            const bool isFolder = !name.empty() && (name[0] & 1);
            const auto block = static_cast<uint8_t>((name.size() + 4) & ~3u);
            records += static_cast<char>(isFolder ? IndexKindFolder : IndexKindFile);
            records += static_cast<char>(block);
            AppendInt(records, folder);
            AppendInt(records, 1);
            AppendInt(records, 0);
            records += name;
            records.append(block - name.size(), '\0');
            if (isFolder)
                folder = count;
            else if (!name.empty() && name[0] >= '0' && name[0] <= '9')
                folder = 0;
            ++count;
        }
    }
    std::string image;
    AppendInt(image, IndexFormatVersion);
    AppendInt(image, 0);
    AppendInt(image, count);
    return image + records;
}

// Made at the first input and removed at exit; the name outlives every static object. In memory
// where the system offers it, since every trigram file written is brought to the disk.
const std::string& Folder() {
    static const std::string* const folder = [] {
        const std::filesystem::path memory = "/dev/shm";
        auto* made = new std::string(
            ((std::filesystem::is_directory(memory) ? memory
                                                    : std::filesystem::temp_directory_path()) /
             "trigrams_XXXXXX")
                .string());
        if (!mkdtemp(made->data()))
            std::abort();
        std::atexit([] { std::filesystem::remove_all(Folder()); });
        return made;
    }();
    return *folder;
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::vector<std::string> WholePass(const std::string& path, const std::string& pattern,
                                   bool isRegExp, bool autoWildcards) {
    IndexData index;
    std::vector<std::string> paths;
    IndexSearcher searcher;
    if (index.Load(loam::FileSpec(path.c_str())) &&
        searcher.Start(&index, pattern.c_str(), isRegExp, autoWildcards)) {
        searcher.RunToEnd(nullptr);
        for (int32_t i = 0; i < index.GetResultCount(); ++i)
            paths.emplace_back(index.GetResultPath(i).GetCString());
    }
    loam::ClearErrors();
    return paths;
}

void Compare(const std::string& path, const std::string& pattern, bool isRegExp, bool autoWildcards,
             const std::vector<std::string>& whole) {
    IndexData index;
    if (!SearchCandidates(index, loam::FileSpec(path.c_str()), pattern.c_str(), isRegExp,
                          autoWildcards))
        return;
    if (loam::GetCurrentErrorCode() != 0)
        std::abort();
    std::vector<std::string> paths;
    for (int32_t i = 0; i < index.GetResultCount(); ++i)
        paths.emplace_back(index.GetResultPath(i).GetCString());
    if (paths != whole) {
        std::fprintf(stderr, "the trigram file found %zu paths, the whole pass %zu\n", paths.size(),
                     whole.size());
        std::abort();
    }
}

// Names and a pattern, split at NUL bytes: the pattern first.
void FromNames(const uint8_t* data, size_t size) {
    std::vector<std::string> pieces(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == '\0')
            pieces.emplace_back();
        else if (pieces.back().size() < MaxIndexNameLength)
            pieces.back() += static_cast<char>(data[i]);
    }
    const std::string pattern = pieces[0];
    if (pattern.size() > LongestPattern)
        return;
    pieces.erase(pieces.begin());
    const std::string path = Folder() + "/names.idx";
    WriteFile(path, MakeImage(pieces));
    if (!trigram::WriteFileOf(loam::FileSpec(path.c_str())))
        std::abort();
    for (const bool isRegExp : {false, true}) {
        for (const bool autoWildcards : {false, true}) {
            if (isRegExp && autoWildcards)
                continue;
            Compare(path, pattern, isRegExp, autoWildcards,
                    WholePass(path, pattern, isRegExp, autoWildcards));
        }
    }
}

const char* const damageQueries[] = {"fstab", "zlib", "*.conf", ".*lib.*\\.so"};

struct Fixed {
    std::string path = Folder() + "/fixed.idx";
    std::string sidecar;
    std::vector<std::vector<std::string>> whole;

    Fixed() {
        std::vector<std::string> names;
        const char* const words[] = {"fstab", "libz.so", "zlib.h",    "host.conf", "README",
                                     "lib",   "x",       "\xc9t\xe9", "a\nb"};
        for (int i = 0; i < 3000; ++i)
            names.push_back(std::to_string(i * 7919 % 10007) + words[i % std::size(words)]);
        WriteFile(path, MakeImage(names));
        if (!trigram::WriteFileOf(loam::FileSpec(path.c_str())))
            std::abort();
        std::ifstream in(path + ".trigrams", std::ios::binary);
        sidecar.assign(std::istreambuf_iterator<char>(in), {});
        for (const char* query : damageQueries)
            whole.push_back(WholePass(path, query, query[0] == '.', true));
    }
};

// Pairs of a 24-bit place and a byte to change it by, then maybe a new length.
void FromDamage(const uint8_t* data, size_t size) {
    static const Fixed fixed;
    std::string bytes = fixed.sidecar;
    size_t at = 0;
    for (; at + 4 <= size; at += 4) {
        const uint32_t place = data[at] | data[at + 1] << 8 | data[at + 2] << 16;
        if (!bytes.empty())
            bytes[place % bytes.size()] ^= static_cast<char>(data[at + 3]);
    }
    if (at < size && data[at] < 16)
        bytes.resize(bytes.size() * data[at] / 16);
    WriteFile(fixed.path + ".trigrams", bytes);
    for (size_t i = 0; i < std::size(damageQueries); ++i)
        Compare(fixed.path, damageQueries[i], damageQueries[i][0] == '.', true, fixed.whole[i]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    if (data[0] & 1)
        FromDamage(data + 1, size - 1);
    else
        FromNames(data + 1, size - 1);
    return 0;
}
