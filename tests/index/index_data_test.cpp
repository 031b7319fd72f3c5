#include "index/index_data.h"
#include "index_image.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

const char* const notUnderstood =
    "Warning: Index file is not understood by this version of Sorvanta.";
const char* const cannotLoad = "The index file data could not be loaded.";

// A root "/" with a folder "/docs" and a file "/docs/a.txt" of 300 bytes.
IndexImage SmallIndex(int32_t version = 1, int32_t count = 3) {
    return IndexImage()
        .Header(version, 0, count)
        .Record(1, 0xFFFFFFFF, "/")
        .Record(1, 0, "docs", 0, 1000)
        .Record(0, 1, "a.txt", 300, 2000);
}

// Every case holds whether the index is read into memory or seen where it lies.
class IndexDataTest : public ScratchFolderTest, public testing::WithParamInterface<IndexSource> {
protected:
    bool Load(IndexData& index, const loam::FileSpec& file) { return index.Load(file, GetParam()); }
    bool LoadBytes(IndexData& index, const std::string& bytes) {
        MakeFile("sorvanta.idx", bytes);
        return Load(index, FileAt("sorvanta.idx"));
    }
    // A file of the given length that takes no room on the disk.
    void MakeSparseFile(const std::string& name, off_t length) {
        const int descriptor = ::open(Path(name).c_str(), O_CREAT | O_WRONLY, 0600);
        ASSERT_GE(descriptor, 0);
        ASSERT_EQ(::ftruncate(descriptor, length), 0);
        ::close(descriptor);
    }
    void ExpectFailure(IndexData& index, const char* text, uint32_t code = 1) {
        EXPECT_EQ(CurrentMessage(), text);
        EXPECT_EQ(loam::GetCurrentErrorInfo().GetCode(), code);
        EXPECT_EQ(loam::GetCurrentErrorInfo().GetSeverity(), 2u);
        EXPECT_FALSE(index.IsLoaded());
        EXPECT_EQ(index.GetRecordCount(), 0);
        loam::ClearErrors();
    }
};

TEST_P(IndexDataTest, RefusesDamagedFilesWithTheirOwnWords) {
    const std::string good = SmallIndex().GetBytes();
    const struct {
        const char* what;
        std::string bytes;
        const char* text;
    } cases[] = {
        {"empty", "", "The index file does not contain any data."},
        {"one byte", "\1", notUnderstood},
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
        {"parent comes later",
         IndexImage().Header(1, 0, 2).Record(1, 1, "/").Record(1, 0xFFFFFFFF, "x").GetBytes(),
         notUnderstood},
        {"parent past the table",
         IndexImage()
             .Header(1, 0, 2)
             .Record(1, 0xFFFFFFFF, "/")
             .Record(0, 0x7FFFFFFF, "x")
             .GetBytes(),
         notUnderstood},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        IndexData index;
        EXPECT_FALSE(LoadBytes(index, row.bytes));
        ExpectFailure(index, row.text);
    }
}

TEST_P(IndexDataTest, RefusesWhatCannotBeLoadedWhole) {
    IndexData index;
    EXPECT_FALSE(Load(index, FileAt("missing.idx")));
    ExpectFailure(index, "The index file was not found.");
    EXPECT_FALSE(Load(index, loam::FileSpec(root.c_str())));
    ExpectFailure(index, "The index file was not found.");

    MakeSparseFile("two-gib.idx", 1LL << 31);
    EXPECT_FALSE(Load(index, FileAt("two-gib.idx")));
    ExpectFailure(index, cannotLoad);
    // Its size in 32 bits is that of a good index; the bytes behind give it away.
    const std::string good = SmallIndex().GetBytes();
    MakeSparseFile("wrapped.idx", (1LL << 32) + static_cast<off_t>(good.size()));
    EXPECT_FALSE(Load(index, FileAt("wrapped.idx")));
    ExpectFailure(index, cannotLoad);

    if (geteuid() != 0) {
        MakeFile("locked.idx", good);
        std::filesystem::permissions(Path("locked.idx"), std::filesystem::perms::none);
        EXPECT_FALSE(Load(index, FileAt("locked.idx")));
        ExpectFailure(index, "The index file could not be opened to load the data.");
    }
}

TEST_P(IndexDataTest, LoadsWhatTheHeaderCountsAndNothingBehind) {
    const struct {
        const char* what;
        std::string bytes;
        int32_t records;
        uint32_t files;
        uint32_t folders;
        uint64_t total;
    } cases[] = {
        {"header alone", IndexImage().Header(1, 0, 0).GetBytes(), 0, 0, 0, 0},
        {"unfinished with records behind", IndexImage().Header(1, 1, 0).Raw("junk").GetBytes(), 0,
         0, 0, 0},
        {"all counted", SmallIndex().GetBytes(), 3, 1, 2, 300},
        {"fewer counted", SmallIndex(1, 2).GetBytes(), 2, 0, 2, 0},
        {"version 0", SmallIndex(0).GetBytes(), 3, 1, 2, 300},
        {"version -1", SmallIndex(-1).GetBytes(), 3, 1, 2, 300},
        {"other kinds kept uncounted", SmallIndex(1, 4).Record(2, 1, "odd", 77).GetBytes(), 4, 1, 2,
         300},
        {"largest size",
         IndexImage()
             .Header(1, 0, 3)
             .Record(1, 0xFFFFFFFF, "/")
             .Record(0, 0, "a", 0xFFFFFFFF)
             .Record(0, 0, "b", 1)
             .GetBytes(),
         3, 2, 1, 0x100000000ULL},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        IndexData index;
        ASSERT_TRUE(LoadBytes(index, row.bytes)) << CurrentMessage();
        EXPECT_EQ(index.GetRecordCount(), row.records);
        EXPECT_EQ(index.GetFileCount(), row.files);
        EXPECT_EQ(index.GetFolderCount(), row.folders);
        EXPECT_EQ(index.GetTotalSize(), row.total);
        EXPECT_EQ(index.GetResultCount(), 0);
    }
}

// An image of some megabytes: a root and files below it, one of them damaged in the middle or
// as the very last record, where the loader checks each record before it reads it.
std::string LargeImage(int32_t files, int32_t damaged, int damage) {
    IndexImage image;
    image.Header(1, 0, files + 1).Record(1, 0xFFFFFFFF, "/data");
    for (int32_t ordinal = 1; ordinal <= files; ++ordinal) {
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

TEST_P(IndexDataTest, ChecksEveryRecordOfALargeFile) {
    constexpr int32_t files = 100000;
    IndexData index;
    ASSERT_TRUE(LoadBytes(index, LargeImage(files, 0, 0))) << CurrentMessage();
    EXPECT_EQ(index.GetRecordCount(), files + 1);
    EXPECT_EQ(index.GetFileCount(), static_cast<uint32_t>(files));
    EXPECT_EQ(index.GetFolderCount(), 1u);
    EXPECT_EQ(index.GetTotalSize(), uint64_t(files) * (files + 1) / 2);
    EXPECT_EQ(index.GetPathOf(index.GetRecord(files)), "/data/file 100000.txt");
    for (int32_t damaged : {files / 2, files}) {
        for (int damage : {0, 1, 2}) {
            SCOPED_TRACE(testing::Message() << "record " << damaged << " damage " << damage);
            EXPECT_FALSE(LoadBytes(index, LargeImage(files, damaged, damage)));
            ExpectFailure(index, notUnderstood);
        }
    }
}

TEST_P(IndexDataTest, AnswersForResultsAndRebuildsTheirPaths) {
    IndexData index;
    ASSERT_TRUE(LoadBytes(index, SmallIndex().GetBytes()));
    for (int32_t i = 0; i < 3; ++i)
        index.AddResult(index.GetRecord(i));
    ASSERT_EQ(index.GetResultCount(), 3);

    EXPECT_EQ(index.GetResultName(0), "/");
    EXPECT_EQ(index.GetResultFolder(0), "");
    EXPECT_EQ(index.GetResultPath(0), "/");
    EXPECT_EQ(index.GetResultFolder(1), "/");
    EXPECT_EQ(index.GetResultPath(1), "/docs");
    EXPECT_EQ(index.GetResultFolder(2), "/docs");
    EXPECT_EQ(index.GetResultPath(2), "/docs/a.txt");
    EXPECT_TRUE(index.IsResultFolder(1));
    EXPECT_FALSE(index.IsResultFolder(2));
    EXPECT_EQ(index.GetResultSize(2), 300u);
    EXPECT_EQ(index.GetResultDate(2), loam::DateTime(2000));
    EXPECT_EQ(index.GetResultsTotalSize(), 300u);

    for (int32_t outside : {-1, 3, 1000}) {
        EXPECT_FALSE(index.IsResultFolder(outside));
        EXPECT_EQ(index.GetResultSize(outside), 0u);
        EXPECT_EQ(index.GetResultDate(outside), loam::DateTime());
    }
    index.ClearResults();
    EXPECT_EQ(index.GetResultCount(), 0);
}

TEST_P(IndexDataTest, AddsResultSizesInSixtyFourBits) {
    const uint32_t threeGib = 3u << 30;
    IndexData index;
    ASSERT_TRUE(LoadBytes(index, IndexImage()
                                     .Header(1, 0, 3)
                                     .Record(1, 0xFFFFFFFF, "/srv/data")
                                     .Record(0, 0, "one.iso", threeGib)
                                     .Record(0, 0, "two.iso", threeGib)
                                     .GetBytes()));
    index.AddResult(index.GetRecord(1));
    index.AddResult(index.GetRecord(2));
    EXPECT_EQ(index.GetResultsTotalSize(), 6ULL << 30);
    EXPECT_EQ(index.GetResultPath(1), "/srv/data/two.iso");
    EXPECT_EQ(index.GetResultFolder(1), "/srv/data");
}

INSTANTIATE_TEST_SUITE_P(Sources, IndexDataTest,
                         testing::Values(IndexSource::Read, IndexSource::View));

} // namespace
