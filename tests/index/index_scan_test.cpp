// A scan of an index, window by window, against a whole load of the same bytes: both take and
// refuse the same files with the same words, and a scan's results have the whole load's paths.
#include "index/index_data.h"
#include "index_image.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

// Every record as a result: its path, size and kind.
struct Entry {
    std::string path;
    uint32_t size;
    bool isFolder;
    bool operator==(const Entry&) const = default;
};

struct Outcome {
    bool loaded;
    std::string message;
    std::vector<Entry> entries;
    int32_t found = 0;
    uint32_t files = 0, folders = 0;
    uint64_t total = 0;
};

void TakeEntries(IndexData& index, Outcome& outcome, ScanMatches matches) {
    outcome.found = index.GetResultCount();
    for (int32_t i = 0; matches == ScanMatches::Kept && i < outcome.found; ++i)
        outcome.entries.push_back(
            {index.GetResultPath(i).GetCString(), index.GetResultSize(i), index.IsResultFolder(i)});
    outcome.files = index.GetFileCount();
    outcome.folders = index.GetFolderCount();
    outcome.total = index.GetTotalSize();
}

Outcome Finish(IndexData& index, bool loaded, ScanMatches matches = ScanMatches::Kept) {
    Outcome outcome{loaded, loaded ? "" : CurrentMessage(), {}};
    loam::ClearErrors();
    if (loaded)
        TakeEntries(index, outcome, matches);
    return outcome;
}

Outcome LoadWhole(const loam::FileSpec& file) {
    IndexData index;
    const bool loaded = index.Load(file);
    for (int32_t ordinal = 0; loaded && ordinal < index.GetRecordCount(); ++ordinal)
        index.AddResult(index.GetRecord(ordinal));
    return Finish(index, loaded);
}

std::unique_ptr<char[]> ImageOf(const std::string& bytes) {
    auto image = std::make_unique<char[]>(bytes.size());
    std::memcpy(image.get(), bytes.data(), bytes.size());
    return image;
}

Outcome LoadBytes(const std::string& bytes) {
    IndexData index;
    const bool loaded = index.LoadImage(ImageOf(bytes), static_cast<uint32_t>(bytes.size()));
    for (int32_t ordinal = 0; loaded && ordinal < index.GetRecordCount(); ++ordinal)
        index.AddResult(index.GetRecord(ordinal));
    return Finish(index, loaded);
}

// Every window's records become results before the window moves on.
Outcome ScanWindows(IndexData& index, bool started, ScanMatches matches = ScanMatches::Kept) {
    bool scanned = started;
    while (scanned && index.GetRecordCount() > 0) {
        for (int32_t i = 0; i < index.GetRecordCount(); ++i)
            index.AddResult(index.GetRecord(i));
        scanned = index.TakeNextWindow();
    }
    return Finish(index, scanned, matches);
}

Outcome ScanFile(const loam::FileSpec& file, ScanMatches matches = ScanMatches::Kept) {
    IndexData index;
    return ScanWindows(index, index.Scan(file, matches), matches);
}

// A scan that counts its matches keeps none of them, but takes, refuses and counts as one that
// keeps them.
void ExpectSameAsWhole(const Outcome& scanned, const Outcome& whole, ScanMatches matches) {
    EXPECT_EQ(scanned.loaded, whole.loaded);
    EXPECT_EQ(scanned.message, whole.message);
    EXPECT_EQ(scanned.found, whole.found);
    EXPECT_EQ(scanned.files, whole.files);
    EXPECT_EQ(scanned.folders, whole.folders);
    EXPECT_EQ(scanned.total, whole.total);
    if (matches == ScanMatches::Kept) {
        EXPECT_TRUE(scanned.entries == whole.entries) << scanned.entries.size();
    }
}

Outcome ScanBytes(const std::string& bytes) {
    auto image = std::make_unique<char[]>(bytes.size());
    std::memcpy(image.get(), bytes.data(), bytes.size());
    IndexData index;
    return ScanWindows(index,
                       index.ScanImage(std::move(image), static_cast<uint32_t>(bytes.size())));
}

enum Damage { Sound, EmptyBlock, NoNul, LaterParent, CutShort, LaterParentMidway, CountedPast };

// Many windows and more than one piece of the file: folders nested a few deep, with files of
// long names among them, and parents that are no folders: a file and a record of another kind,
// named long after they were passed. The last record may be damaged, or one in the middle of
// the file, or the header may count more records than there are.
std::string BigTree(Damage damage = Sound) {
    constexpr int32_t count = 40000;
    IndexImage image;
    image.Header(1, 0, damage == CountedPast ? count + 1 : count)
        .Record(1, 0xFFFFFFFF, "/big")
        .Record(0, 0, "host")
        .Record(2, 0, "odd");
    uint32_t folder = 0;
    for (int32_t ordinal = 3; ordinal < count - 1; ++ordinal) {
        const std::string name =
            "entry " + std::to_string(ordinal) + std::string(ordinal % 37, 'x');
        if (ordinal % 97 == 0) {
            image.Record(1, ordinal % 5 == 0 ? 0 : folder, name);
            folder = static_cast<uint32_t>(ordinal);
        } else {
            const uint32_t parent = ordinal % 1009 == 0 ? 1 : ordinal % 1013 == 0 ? 2 : folder;
            const bool midway = damage == LaterParentMidway && ordinal == count / 2;
            image.Record(0, midway ? static_cast<uint32_t>(ordinal) : parent, name,
                         static_cast<uint32_t>(ordinal));
        }
    }
    const uint32_t last = count - 1;
    switch (damage) {
    case Sound:
    case LaterParentMidway:
    case CountedPast:
        return image.Record(0, 1, "last").GetBytes();
    case EmptyBlock:
        return image.Fixed(0, 0, 0).GetBytes();
    case NoNul:
        return image.Fixed(0, 4, 0).Raw("abcd").GetBytes();
    case LaterParent:
        return image.Record(0, last, "last").GetBytes();
    case CutShort:
        return image.Fixed(0, 8, 0).Raw("abc").GetBytes();
    }
    return {};
}

class IndexScanTest : public ScratchFolderTest {};

TEST_F(IndexScanTest, TakesAndRefusesWhatALoadDoesWithTheSamePaths) {
    const struct {
        const char* what;
        std::string bytes;
        bool loads;
    } cases[] = {
        {"empty", "", false},
        {"part of a header", "\1\0\0\0\0", false},
        {"header alone", IndexImage().Header(1, 0, 0).GetBytes(), true},
        {"unfinished with records behind", IndexImage().Header(1, 1, 0).Raw("junk").GetBytes(),
         true},
        {"newer version", IndexImage().Header(2, 0, 0).GetBytes(), false},
        {"count past the records",
         IndexImage().Header(1, 0, 2).Record(1, 0xFFFFFFFF, "/").GetBytes(), false},
        {"fewer counted",
         IndexImage().Header(1, 0, 1).Record(1, 0xFFFFFFFF, "/").Record(0, 0, "a").GetBytes(),
         true},
        {"negative count", IndexImage().Header(1, 0, -1).GetBytes(), false},
        {"many windows", BigTree(), true},
        {"an empty name block at the end", BigTree(EmptyBlock), false},
        {"a name without its NUL at the end", BigTree(NoNul), false},
        {"a later parent at the end", BigTree(LaterParent), false},
        {"cut short at the end", BigTree(CutShort), false},
        {"a later parent midway", BigTree(LaterParentMidway), false},
        {"counted past the records of many pieces", BigTree(CountedPast), false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        MakeFile("sorvanta.idx", row.bytes);
        const Outcome fromFile = LoadWhole(FileAt("sorvanta.idx"));
        const Outcome fromBytes = LoadBytes(row.bytes);
        // The loader tables a file piece by piece as it reads it, and an image given whole at
        // once: both come to the same, but for an empty file, which has words of its own.
        if (!row.bytes.empty())
            ExpectSameAsWhole(fromFile, fromBytes, ScanMatches::Kept);
        const struct {
            Outcome whole, scanned;
            ScanMatches matches;
        } pairs[] = {
            {fromFile, ScanFile(FileAt("sorvanta.idx")), ScanMatches::Kept},
            {fromFile, ScanFile(FileAt("sorvanta.idx"), ScanMatches::Counted),
             ScanMatches::Counted},
            {fromBytes, ScanBytes(row.bytes), ScanMatches::Kept},
        };
        for (const auto& pair : pairs) {
            EXPECT_EQ(pair.whole.loaded, row.loads) << pair.whole.message;
            ExpectSameAsWhole(pair.scanned, pair.whole, pair.matches);
        }
    }
}

TEST_F(IndexScanTest, FailsAsALoadDoesBeforeTheRecords) {
    MakeFile("empty.idx", "");
    for (const char* name : {"missing.idx", "empty.idx", "."}) {
        SCOPED_TRACE(name);
        const Outcome whole = LoadWhole(FileAt(name));
        const Outcome scanned = ScanFile(FileAt(name));
        EXPECT_FALSE(scanned.loaded);
        EXPECT_EQ(scanned.message, whole.message);
    }
}

} // namespace
