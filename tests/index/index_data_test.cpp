#include "index/index_data.h"
#include "index_image.h"

#include <unistd.h>

namespace {

const char* const notUnderstood =
    "Warning: Index file is not understood by this version of Sorvanta.";
const char* const cannotLoad = "The index file data could not be loaded.";
const uint32_t threeGib = 3u << 30;

// A root "/" with a folder "/docs" and a file "/docs/a.txt" of 300 bytes.
IndexImage SmallIndex(int32_t version = 1, int32_t count = 3) {
    return IndexImage()
        .Header(version, 0, count)
        .Record(1, 0xFFFFFFFF, "/")
        .Record(1, 0, "docs", 0, 1000)
        .Record(0, 1, "a.txt", 300, 2000);
}

// The small index with two files of 3 GiB in "/docs".
IndexImage LargeFiles() {
    return SmallIndex(1, 5).Record(0, 1, "b.iso", threeGib).Record(0, 1, "c.iso", threeGib);
}

// Some megabytes: a root and files below it, the one at `damaged` (if any) made bad by `damage`:
// an empty name block, a block without its NUL, or a parent that comes later.
constexpr int32_t manyFiles = 100000;
std::string ManyFiles(int32_t damaged = 0, int damage = 0) {
    IndexImage image;
    image.Header(1, 0, manyFiles + 1).Record(1, 0xFFFFFFFF, "/data");
    for (int32_t ordinal = 1; ordinal <= manyFiles; ++ordinal) {
        const std::string name = "file " + std::to_string(ordinal) + ".txt";
        if (ordinal != damaged)
            image.Record(0, 0, name, static_cast<uint32_t>(ordinal));
        else if (damage == 0)
            image.Fixed(0, 0, 0);
        else if (damage == 1)
            image.Fixed(0, 4, 0).Raw("abcd");
        else
            image.Record(0, static_cast<uint32_t>(ordinal) + 1, name);
    }
    return image.GetBytes();
}

class IndexDataTest : public ScratchFolderTest {
protected:
    bool Load(IndexData& index, const std::string& name) { return index.Load(FileAt(name)); }
    bool LoadBytes(IndexData& index, const std::string& bytes) {
        MakeFile("sorvanta.idx", bytes);
        return Load(index, "sorvanta.idx");
    }
    // A file of the given length that takes no room on the disk.
    void MakeSparseFile(const std::string& name, uintmax_t length) {
        MakeFile(name, "");
        std::filesystem::resize_file(Path(name), length);
    }
    void ExpectFailure(IndexData& index, const char* text) {
        EXPECT_EQ(CurrentMessage(), text);
        EXPECT_EQ(loam::GetCurrentErrorInfo().GetCode(), 1u);
        EXPECT_EQ(loam::GetCurrentErrorInfo().GetSeverity(), 2u);
        EXPECT_FALSE(index.IsLoaded());
        EXPECT_EQ(index.GetRecordCount(), 0);
        loam::ClearErrors();
    }
};

TEST_F(IndexDataTest, RefusesDamagedFilesWithTheirOwnWords) {
    const std::string good = SmallIndex().GetBytes();
    struct Case {
        std::string what, bytes;
        const char* text;
    };
    std::vector<Case> cases = {
        {"empty", "", "The index file does not contain any data."},
        {"eleven bytes", good.substr(0, 11), notUnderstood},
        {"newer version", SmallIndex(2).GetBytes(),
         "Index file was built by a newer version of Sorvanta (and cannot be used)"},
        {"negative count", IndexImage().Header(1, 0, -1).GetBytes(), notUnderstood},
        {"count past the records", SmallIndex(1, 4).GetBytes(), notUnderstood},
        {"count beyond any allocation", IndexImage().Header(1, 0, 0x7FFFFFFF).GetBytes(),
         notUnderstood},
        {"fixed part cut short", good.substr(0, good.size() - 12 - 1), notUnderstood},
        {"name block cut short", good.substr(0, good.size() - 1), notUnderstood},
        {"name block without NUL",
         IndexImage().Header(1, 0, 1).Fixed(1, 4, 0xFFFFFFFF).Raw("abcd").GetBytes(),
         notUnderstood},
        {"empty name block", IndexImage().Header(1, 0, 1).Fixed(1, 0, 0xFFFFFFFF).GetBytes(),
         notUnderstood},
        {"parent is itself",
         IndexImage().Header(1, 0, 2).Record(1, 0xFFFFFFFF, "/").Record(0, 1, "x").GetBytes(),
         notUnderstood},
        {"parent past the table",
         IndexImage().Header(1, 0, 2).Record(1, 0xFFFFFFFF, "/").Record(0, 9, "x").GetBytes(),
         notUnderstood},
    };
    // In the middle, where the loader checks records in bulk, and as the very last record.
    for (int damage : {0, 1, 2}) {
        for (int32_t damaged : {manyFiles / 2, manyFiles})
            cases.push_back(
                {"damage " + std::to_string(damage) + " in record " + std::to_string(damaged),
                 ManyFiles(damaged, damage), notUnderstood});
    }
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        IndexData index;
        EXPECT_FALSE(LoadBytes(index, row.bytes));
        ExpectFailure(index, row.text);
    }
}

TEST_F(IndexDataTest, RefusesWhatCannotBeLoadedWhole) {
    IndexData index;
    EXPECT_FALSE(Load(index, "missing.idx"));
    ExpectFailure(index, "The index file was not found.");
    MakeSparseFile("two-gib.idx", uintmax_t{1} << 31);
    EXPECT_FALSE(Load(index, "two-gib.idx"));
    ExpectFailure(index, cannotLoad);
    // Its size in 32 bits is that of a good index; the bytes behind give it away.
    const std::string good = SmallIndex().GetBytes();
    MakeSparseFile("wrapped.idx", (uintmax_t{1} << 32) + good.size());
    EXPECT_FALSE(Load(index, "wrapped.idx"));
    ExpectFailure(index, cannotLoad);

    if (geteuid() != 0) {
        MakeFile("locked.idx", good);
        std::filesystem::permissions(Path("locked.idx"), std::filesystem::perms::none);
        EXPECT_FALSE(Load(index, "locked.idx"));
        ExpectFailure(index, "The index file could not be opened to load the data.");
    }
}

TEST_F(IndexDataTest, LoadsWhatTheHeaderCountsAndNothingBehind) {
    const struct {
        const char* what;
        std::string bytes;
        int32_t records;
        uint32_t files, folders;
        uint64_t total;
    } cases[] = {
        {"unfinished with records behind", IndexImage().Header(1, 1, 0).Raw("junk").GetBytes(), 0,
         0, 0, 0},
        {"fewer counted", SmallIndex(1, 2).GetBytes(), 2, 0, 2, 0},
        {"all counted, version -1", SmallIndex(-1).GetBytes(), 3, 1, 2, 300},
        {"other kinds kept uncounted", SmallIndex(1, 4).Record(2, 1, "odd", 77).GetBytes(), 4, 1, 2,
         300},
        {"sizes past 32 bits", LargeFiles().GetBytes(), 5, 3, 2, 6 * (uint64_t{1} << 30) + 300},
        {"some megabytes", ManyFiles(), manyFiles + 1, manyFiles, 1,
         uint64_t{manyFiles} * (manyFiles + 1) / 2},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        IndexData index;
        ASSERT_TRUE(LoadBytes(index, row.bytes)) << CurrentMessage();
        EXPECT_EQ(index.GetRecordCount(), row.records);
        EXPECT_EQ(index.GetFileCount(), row.files);
        EXPECT_EQ(index.GetFolderCount(), row.folders);
        EXPECT_EQ(index.GetTotalSize(), row.total);
    }
}

TEST_F(IndexDataTest, AnswersForResultsAndRebuildsTheirPaths) {
    IndexData index;
    ASSERT_TRUE(LoadBytes(index, LargeFiles().GetBytes()));
    for (int32_t i = 0; i < 5; ++i)
        index.AddResult(index.GetRecord(i));

    EXPECT_EQ(index.GetResultFolder(0), "");
    EXPECT_EQ(index.GetResultPath(0), "/");
    EXPECT_EQ(index.GetResultFolder(1), "/");
    EXPECT_EQ(index.GetResultPath(1), "/docs");
    EXPECT_TRUE(index.IsResultFolder(1));
    EXPECT_FALSE(index.IsResultFolder(2));
    EXPECT_EQ(index.GetResultSize(3), threeGib);
    EXPECT_EQ(index.GetResultDate(2), loam::DateTime(2000));
    // The results' sizes add up in 64 bits.
    EXPECT_EQ(index.GetResultsTotalSize(), 2 * uint64_t{threeGib} + 300);

    for (int32_t outside : {-1, 5, 1000}) {
        EXPECT_FALSE(index.IsResultFolder(outside));
        EXPECT_EQ(index.GetResultSize(outside), 0u);
        EXPECT_EQ(index.GetResultDate(outside), loam::DateTime());
    }
}

} // namespace
