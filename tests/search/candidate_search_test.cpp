#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/trigram_sidecar.h"
#include "loam/disk_file.h"
#include "loam/scratch_folder.h"
#include "search/candidate_search.h"
#include "search/index_searcher.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/time.h>

#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

// Whether the trigram file must answer a query: it must when the query has a piece of three
// bytes and few candidates, and cannot without such a piece.
enum Answer { Must, Cannot, May };

struct Query {
    const char* pattern;
    bool isRegExp;
    bool autoWildcards;
    Answer answer;
};

// Words of the crafted names, which the queries look for among generated noise.
const char* const words[] = {"fstab",     "zlib",      "x86_64-linux-gnu", "Lib",   "README",
                             "notes.TXT", "\xc9t\xe9", "line\nbreak",      "a.b.c", "img_2024",
                             "ZLIB1g"};

const Query queries[] = {
    {"fstab", false, true, Must},
    {"fstab", false, false, Must},
    {"a.b.c", false, false, Must},
    {"x", false, false, May},
    {"lib?", false, false, May},
    {"?ab", false, false, May},
    {"\xc9T\xc9*", false, false, May},
    {"*BREAK", false, false, May},
    {"zlib", false, true, Must},
    {"ZLIB", false, true, Must},
    {"x86_64-linux-gnu", false, true, Must},
    {"*.txt", false, false, Must},
    {"readme", false, false, Must},
    {"README*", false, false, Must},
    {"?lib*", false, false, Must},
    {"\xc9t\xe9", false, true, Must},
    {"\xe9t\xc9", false, true, Must},
    {"line\nbreak", false, true, Must},
    {"a.b", false, true, Must},
    {".*zlib.*", true, false, Must},
    {"(fstab|zlib)\\.[a-z0-9]+", true, false, Must},
    {"img_[0-9]{4}", true, false, Must},
    {"lib", false, true, May},
    {".*fstab.*\\.[a-z]+", true, false, Must},
    {".*a.*b.*c.*zlib.*", true, false, May},
    {"[a-z]+[0-9]+", true, false, Cannot},
    {"ab", false, true, Cannot},
    {"*", false, false, Cannot},
    {"", false, true, Cannot},
    {"foo(", false, true, Cannot},
};

class CandidateSearchTest : public ScratchFolderTest {
protected:
    // A tree of generated names in nested folders, with the words among them in every case,
    // bytes above 127, line ends and names of the longest length the index holds.
    void WriteIndex(const std::string& name, uint32_t seed, int32_t entries) {
        std::mt19937 random(seed);
        const std::string alphabet =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
            "._- \xc9\xe9\xff\x80\n";
        const auto pick = [&](uint32_t below) { return random() % below; };
        const auto noise = [&](uint32_t length) {
            std::string text;
            for (uint32_t i = 0; i < length; ++i)
                text += alphabet[pick(static_cast<uint32_t>(alphabet.size()))];
            return text;
        };
        const auto entryName = [&]() {
            std::string text = noise(pick(12));
            if (pick(40) == 0)
                text += words[pick(std::size(words))];
            if (pick(2) == 0)
                text += noise(1 + pick(8));
            if (pick(200) == 0)
                text += noise(251);
            text = text.substr(0, pick(60) == 0 ? 260 : 251);
            for (char& byte : text) {
                if (byte == '/' || byte == '\0')
                    byte = '_';
            }
            return text.empty() || text == "." || text == ".." ? std::string("x") : text;
        };
        loam::DiskFile file;
        auto writer = BinaryFileIndexWriter::Begin(file, FileAt(name));
        ASSERT_TRUE(writer);
        std::vector<std::string> folders{Path("tree")};
        writer->AddRoot(loam::FileSpec(folders[0].c_str()), 0);
        for (int32_t i = 1; i < entries; ++i) {
            if (pick(12) == 0 && folders.size() > 1)
                folders.pop_back();
            const std::string path = folders.back() + "/" + entryName();
            if (pick(8) == 0) {
                writer->AddFolder(loam::FileSpec(path.c_str()), 0);
                folders.push_back(path);
            } else {
                writer->AddFile(loam::FileSpec(path.c_str()), 1, 0);
            }
        }
        writer->Finish();
    }

    // The paths that the pass over the whole index finds, and whether it ran to the end.
    static std::vector<std::string> WholePass(const loam::FileSpec& file, const Query& query,
                                              bool& ended) {
        IndexData index;
        EXPECT_TRUE(index.Load(file));
        IndexSearcher searcher;
        std::vector<std::string> paths;
        ended = false;
        if (!searcher.Start(&index, query.pattern, query.isRegExp, query.autoWildcards)) {
            loam::ClearErrors();
            return paths;
        }
        searcher.RunToEnd(nullptr);
        ended = searcher.Rewind();
        for (int32_t i = 0; i < index.GetResultCount(); ++i)
            paths.emplace_back(index.GetResultPath(i).GetCString());
        return paths;
    }

    static bool Candidates(const loam::FileSpec& file, const Query& query,
                           std::vector<std::string>& paths) {
        IndexData index;
        const bool answered =
            SearchCandidates(index, file, query.pattern, query.isRegExp, query.autoWildcards);
        EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
        paths.clear();
        for (int32_t i = 0; i < index.GetResultCount(); ++i)
            paths.emplace_back(index.GetResultPath(i).GetCString());
        return answered;
    }

    // Every query finds through the trigram file what the whole pass finds, or leaves it to
    // the whole pass; the queries that must be answered are.
    void ExpectSameResults(const std::string& name, bool checksAnswered) {
        for (const Query& query : queries) {
            SCOPED_TRACE(testing::Message() << name << ": " << query.pattern);
            bool ended = false;
            const std::vector<std::string> whole = WholePass(FileAt(name), query, ended);
            std::vector<std::string> paths;
            const bool answered = Candidates(FileAt(name), query, paths);
            if (answered) {
                EXPECT_TRUE(ended);
                EXPECT_EQ(paths, whole);
            }
            if (query.answer == Cannot || (checksAnswered && query.answer == Must)) {
                EXPECT_EQ(answered, query.answer == Must);
            }
        }
    }
};

TEST_F(CandidateSearchTest, EveryQueryFindsWhatTheWholePassFinds) {
    const int32_t sizes[] = {1, 17, 700, 4000};
    for (uint32_t seed = 1; seed <= 2; ++seed) {
        for (const int32_t size : sizes) {
            const std::string name = "index" + std::to_string(seed) + "_" + std::to_string(size);
            WriteIndex(name, seed, size);
            ASSERT_TRUE(std::filesystem::exists(Path(name + ".trigrams")));
            ExpectSameResults(name, size == 4000);
        }
    }
}

// Names of words, numbers and extensions, as a machine's are: the file stays within half the
// index's size, and is private to the user like the index.
TEST_F(CandidateSearchTest, TheFileIsSmallBesideTheIndex) {
    const char* const parts[] = {"lib",    "config",  "python3", "share",  "doc",   "locale",
                                 "x86_64", "linux",   "gnu",     "module", "test",  "include",
                                 "kernel", "drivers", "net",     "sound",  "icons", "README"};
    const char* const extensions[] = {"", ".so", ".h", ".py", ".gz", ".txt", ".mo", ".png"};
    loam::DiskFile file;
    auto writer = BinaryFileIndexWriter::Begin(file, FileAt("index"));
    ASSERT_TRUE(writer);
    writer->AddRoot(FileAt("tree"), 0);
    std::mt19937 random(5);
    std::string folder = Path("tree");
    for (int32_t i = 0; i < 40000; ++i) {
        std::string name = parts[random() % std::size(parts)];
        name += random() % 2 ? "-" : "_";
        name += parts[random() % std::size(parts)];
        name += std::to_string(random() % 100) + extensions[random() % std::size(extensions)];
        const std::string path = folder + "/" + name;
        if (random() % 10 == 0) {
            writer->AddFolder(loam::FileSpec(path.c_str()), 0);
            folder = random() % 3 ? path : Path("tree");
        } else {
            writer->AddFile(loam::FileSpec(path.c_str()), 1, 0);
        }
    }
    writer->Finish();
    EXPECT_LT(std::filesystem::file_size(Path("index.trigrams")) * 2,
              std::filesystem::file_size(Path("index")));
    struct stat status {};
    ASSERT_EQ(stat(Path("index.trigrams").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

// However little memory the build keeps for the lists between its runs, the file is the same.
TEST_F(CandidateSearchTest, TheFileIsTheSameHoweverLittleTheBuildKeeps) {
    WriteIndex("index", 3, 4000);
    const std::string written = ReadWhole("index.trigrams");
    for (const size_t kept : {size_t{8}, size_t{1000}, size_t{1} << 16}) {
        ASSERT_TRUE(trigram::WriteFileOf(FileAt("index"), kept));
        EXPECT_EQ(ReadWhole("index.trigrams"), written) << kept;
    }
}

// Whatever is damaged, stale or missing, the answer is the whole pass's.
TEST_F(CandidateSearchTest, DamagedOrStaleFilesLeaveTheSearchToTheWholePass) {
    WriteIndex("other", 12, 3000);
    const Query& rare = queries[0];
    std::string good;
    struct Damage {
        const char* what;
        std::function<void()> apply;
        // Whether the file may still serve the rare word's search, the damage being elsewhere.
        bool mayServe;
    };
    const auto flip = [&](double share) {
        return [&, share] {
            std::string bytes = good;
            bytes[std::min(static_cast<size_t>(bytes.size() * share), bytes.size() - 1)] ^= 0x10;
            MakeFile("index.trigrams", bytes);
        };
    };
    const auto flipAt = [&](size_t at) {
        return [&, at] {
            std::string bytes = good;
            bytes[at] ^= 0x10;
            MakeFile("index.trigrams", bytes);
        };
    };
    const Damage damages[] = {
        {"missing", [&] { std::filesystem::remove(Path("index.trigrams")); }, false},
        {"empty", [&] { MakeFile("index.trigrams", ""); }, false},
        {"cut short", [&] { MakeFile("index.trigrams", good.substr(0, good.size() / 2)); }, false},
        {"one byte short", [&] { MakeFile("index.trigrams", good.substr(0, good.size() - 1)); },
         false},
        {"longer", [&] { MakeFile("index.trigrams", good + "x"); }, false},
        {"magic", flipAt(0), false},
        {"index size", flipAt(17), false},
        {"record count", flipAt(56), false},
        {"first landmark", flipAt(140), true},
        {"a quarter in", flip(0.25), true},
        {"half way", flip(0.5), true},
        {"three quarters in", flip(0.75), true},
        {"last byte", flip(1.0), false},
        {"another index's", [&] { MakeFile("index.trigrams", ReadWhole("other.trigrams")); },
         false},
        {"index touched",
         [&] {
             const timeval times[2] = {{1000, 0}, {1000, 0}};
             utimes(Path("index").c_str(), times);
         },
         false},
        {"index rewritten alike",
         [&] {
             std::string bytes = ReadWhole("index");
             bytes[bytes.size() - 3] ^= 1;
             MakeFile("index", bytes);
         },
         false},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.what);
        WriteIndex("index", 11, 3000);
        good = ReadWhole("index.trigrams");
        std::vector<std::string> paths;
        ASSERT_TRUE(Candidates(FileAt("index"), rare, paths));
        damage.apply();
        for (const Query& query : {queries[0], queries[4], queries[13], queries[16]}) {
            SCOPED_TRACE(query.pattern);
            bool ended = false;
            const std::vector<std::string> whole = WholePass(FileAt("index"), query, ended);
            if (Candidates(FileAt("index"), query, paths)) {
                EXPECT_EQ(paths, whole);
            }
        }
        if (!damage.mayServe) {
            EXPECT_FALSE(Candidates(FileAt("index"), rare, paths));
        }
    }
}

TEST_F(CandidateSearchTest, AFileWrittenForAnIndexOnDiskServesIt) {
    loam::DiskFile file;
    ASSERT_TRUE(file.OpenFile(FileAt("plain"), loam::FileModeWrite));
    BinaryFileIndexWriter writer(&file);
    writer.AddRoot(FileAt("tree"), 0);
    for (int32_t i = 0; i < 3000; ++i)
        writer.AddFile(FileAt("tree/file" + std::to_string(i) + (i == 2500 ? "fstab" : "")), 1, 0);
    writer.Finish();
    EXPECT_FALSE(std::filesystem::exists(Path("plain.trigrams")));
    std::vector<std::string> paths;
    EXPECT_FALSE(Candidates(FileAt("plain"), queries[0], paths));
    ASSERT_TRUE(trigram::WriteFileOf(FileAt("plain")));
    ASSERT_TRUE(Candidates(FileAt("plain"), queries[0], paths));
    EXPECT_EQ(paths, std::vector<std::string>{Path("tree/file2500fstab")});
    EXPECT_FALSE(trigram::WriteFileOf(FileAt("missing")));
}

} // namespace
