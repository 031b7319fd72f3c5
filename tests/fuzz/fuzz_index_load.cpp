// Feeds arbitrary bytes to the index loader as the image of an index file. What loads must then
// answer every path, result and status question without leaving its buffer. A scan of the same
// bytes, window by window, and a load of them from a file, which tables them as they are read,
// must take and refuse them alike, with the same words, and give every record the same path.
#include "index/index_data.h"
#include "index/index_status.h"
#include "loam/error.h"
#include "loam/format.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

void AskEverything(IndexData& index) {
    loam::String text;
    loam::FormatThousands(text, static_cast<int32_t>(index.GetFileCount()));
    loam::FormatThousands(text, static_cast<int32_t>(index.GetFolderCount()));
    loam::FormatByteSize(text, static_cast<int64_t>(index.GetTotalSize()));
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        const IndexRecord* record = index.GetRecord(ordinal);
        index.AddResult(record);
        FormatIndexAge(text, loam::DateTimeSpan(record->GetModified()));
    }
    for (int32_t result = 0; result < index.GetResultCount(); ++result) {
        index.IsResultFolder(result);
        index.GetResultSize(result);
        index.GetResultDate(result);
        index.GetResultName(result);
        index.GetResultFolder(result);
        index.GetResultPath(result);
    }
    index.GetResultsTotalSize();
    index.ClearResults();
}

std::unique_ptr<char[]> ImageOf(const uint8_t* data, size_t size) {
    auto image = std::make_unique_for_overwrite<char[]>(size);
    if (size > 0)
        std::memcpy(image.get(), data, size);
    return image;
}

// The message of a refusal, empty for an index that loaded, the number of records and the path
// of every record (none for a scan that only counts).
struct Outcome {
    std::string message;
    int32_t found = 0;
    std::vector<std::string> paths;
};

std::string TakeMessage(bool loaded) {
    const std::string message = loaded ? "" : loam::GetCurrentErrorInfo().GetMessage().GetCString();
    loam::ClearErrors();
    return message;
}

std::vector<std::string> ResultPaths(const IndexData& index) {
    std::vector<std::string> paths;
    for (int32_t result = 0; result < index.GetResultCount(); ++result)
        paths.push_back(index.GetResultPath(result).GetCString());
    return paths;
}

Outcome Scan(const uint8_t* data, size_t size, ScanMatches matches) {
    IndexData index;
    bool scanned = index.ScanImage(ImageOf(data, size), static_cast<uint32_t>(size), matches);
    while (scanned && index.GetRecordCount() > 0) {
        for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal)
            index.AddResult(index.GetRecord(ordinal));
        scanned = index.TakeNextWindow();
    }
    const std::string message = TakeMessage(scanned);
    if (!scanned)
        return {message, 0, {}};
    const bool kept = matches == ScanMatches::Kept;
    return {message, index.GetResultCount(),
            kept ? ResultPaths(index) : std::vector<std::string>{}};
}

// A file of the process's own, there only while it is loaded.
const std::string& ScratchFile() {
    static const std::string path = [] {
        const char* folder = std::getenv("TMPDIR");
        return std::string(folder && *folder ? folder : "/tmp") + "/fuzz_index_load." +
               std::to_string(::getpid()) + ".idx";
    }();
    return path;
}

Outcome LoadFile(const uint8_t* data, size_t size) {
    FILE* file = std::fopen(ScratchFile().c_str(), "wb");
    if (!file || std::fwrite(data, 1, size, file) != size || std::fclose(file) != 0)
        std::abort();
    IndexData index;
    const bool loaded = index.Load(loam::FileSpec(ScratchFile().c_str()));
    std::remove(ScratchFile().c_str());
    for (int32_t ordinal = 0; loaded && ordinal < index.GetRecordCount(); ++ordinal)
        index.AddResult(index.GetRecord(ordinal));
    const std::string message = TakeMessage(loaded);
    return {message, loaded ? index.GetResultCount() : 0,
            loaded ? ResultPaths(index) : std::vector<std::string>{}};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > UINT32_MAX)
        return 0;
    Outcome whole;
    {
        IndexData index;
        const bool loaded = index.LoadImage(ImageOf(data, size), static_cast<uint32_t>(size));
        if (loaded) {
            AskEverything(index);
            for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal)
                index.AddResult(index.GetRecord(ordinal));
            whole.found = index.GetResultCount();
            whole.paths = ResultPaths(index);
        }
        whole.message = TakeMessage(loaded);
    }
    const Outcome scanned = Scan(data, size, ScanMatches::Kept);
    const Outcome counted = Scan(data, size, ScanMatches::Counted);
    if (scanned.message != whole.message || scanned.found != whole.found ||
        scanned.paths != whole.paths || counted.message != whole.message ||
        counted.found != whole.found)
        std::abort();
    // An empty file has words of its own.
    if (size == 0)
        return 0;
    const Outcome fromFile = LoadFile(data, size);
    if (fromFile.message != whole.message || fromFile.found != whole.found ||
        fromFile.paths != whole.paths)
        std::abort();
    return 0;
}
