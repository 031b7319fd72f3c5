#include "index/file_index_writer.h"
#include "loam/disk_file.h"
#include "tools/finder_process.h"

#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// Names with a line break, with a Latin-1 byte that is no UTF-8, and a folder in UTF-8.
const std::string lineBreak = "tree/line\nbreak.txt";
const std::string latin1 = "tree/caf\xe9.txt";
const std::string utf8Folder = "tree/\xc3\x89t\xc3\xa9";
const std::string utf8File = utf8Folder + "/notes.txt";

// A tree on the disk and its index, in walk order, and a second index of entries that exist
// nowhere. After the index was written, one file went from the disk; a link that leads nowhere
// is still an entry of its own.
class FinderOptionsTest : public FinderProcessTest {
protected:
    void SetUp() override {
        FinderProcessTest::SetUp();
        const std::vector<std::string> folders = {"tree", "tree/docs", "tree/src", utf8Folder};
        const std::vector<std::string> files = {"tree/docs/readme.txt",
                                                "tree/docs/Old README.txt",
                                                "tree/src/main.cpp",
                                                "tree/src/readme.md",
                                                lineBreak,
                                                latin1,
                                                utf8File};
        for (const std::string& folder : folders)
            std::filesystem::create_directory(Path(folder));
        for (const std::string& file : files)
            MakeFile(file, "");
        ASSERT_EQ(symlink(Path("tree/nowhere").c_str(), Path("tree/link").c_str()), 0);
        WriteIndex("index.idx",
                   {"tree", "tree/docs", "tree/docs/readme.txt", "tree/docs/Old README.txt",
                    "tree/src", "tree/src/main.cpp", "tree/src/readme.md", lineBreak, latin1,
                    utf8Folder, utf8File, "tree/link"});
        std::filesystem::remove(Path("tree/docs/readme.txt"));
        WriteIndex("other.idx", {"other", "other/README", "other/x", "other/x/readme.txt"});
    }

    // The first path is the root; a path is a folder when the next one lies inside it.
    void WriteIndex(const std::string& name, const std::vector<std::string>& paths) const {
        loam::DiskFile file;
        ASSERT_TRUE(file.OpenFile(FileAt(name), loam::FileModeWrite));
        BinaryFileIndexWriter writer(&file);
        writer.AddRoot(FileAt(paths.front()), 0);
        for (size_t i = 1; i < paths.size(); ++i) {
            const bool isFolder = i + 1 < paths.size() && paths[i + 1].starts_with(paths[i] + "/");
            if (isFolder)
                writer.AddFolder(FileAt(paths[i]), 0);
            else
                writer.AddFile(FileAt(paths[i]), 1, 0);
        }
        writer.Finish();
    }
};

TEST_F(FinderOptionsTest, EveryPatternMustMatchTheName) {
    const std::string index = Path("index.idx");
    const std::string syntaxError = Said("The search failed because the regular expression you "
                                         "have entered has a syntax error.");
    ExpectRuns({
        {{"-d", index, "-R", "-w", "readme", "txt"},
         {0, Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}), ""}},
        {{"-d", index, "-R", "-w", "TXT", "readme"},
         {0, Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}), ""}},
        {{"-d", index, "-R", "-w", "readme", "md", "src"}, {1, "", ""}},
        {{"-d", index, "-r", "r.*", ".*\\.md"}, {0, Lines({"tree/src/readme.md"}), ""}},
        {{"-d", index, "-R", "-W", "*.txt", "*e*", "-c"}, {0, "4\n", ""}},
        {{"-d", index, "-R", "-W", "*.txt", "*e*", "-l", "1"},
         {0, Lines({"tree/docs/readme.txt"}), ""}},
        {{"-d", index, "-R", "-w", "line\nbreak", "txt", "-0"},
         {0, Lines({lineBreak}, std::string(1, '\0')), ""}},
        {{"-d", index, "-R", "-w", "\xe9", "caf"}, {0, Lines({latin1}), ""}},
        {{"-d", index, "-R", "-w", "caf\xc3\xa9"}, {1, "", ""}},
        {{"-d", index, "-r", ".*readme.*", "(?!.*md).*"},
         {0, Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}), ""}},
        {{"-d", index, "-r", "readme.*", "foo("}, {2, "", syntaxError}},
        {{"-d", index, "-R", "-W", "*", ""}, {2, "", syntaxError}},
    });
}

TEST_F(FinderOptionsTest, PathsMatchWholeWithTheSameRules) {
    const std::string index = Path("index.idx");
    const std::string docs =
        Lines({"tree/docs", "tree/docs/readme.txt", "tree/docs/Old README.txt"});
    ExpectRuns({
        {{"-d", index, "-R", "-w", "docs"}, {0, Lines({"tree/docs"}), ""}},
        {{"-d", index, "-p", "-R", "-w", "/docs"}, {0, docs, ""}},
        {{"-d", index, "--path", "-R", "-w", "DOCS/old"},
         {0, Lines({"tree/docs/Old README.txt"}), ""}},
        {{"-d", index, "-R", "-W", "*/src/*.cpp"}, {1, "", ""}},
        {{"-d", index, "-p", "-R", "-W", "*/src/*.cpp"}, {0, Lines({"tree/src/main.cpp"}), ""}},
        {{"-d", index, "-p", "-R", "-W", "*/src"}, {0, Lines({"tree/src"}), ""}},
        {{"-d", index, "-p", "-r", ".*/src"}, {0, Lines({"tree/src"}), ""}},
        {{"-d", index, "-p", "-r", "src"}, {1, "", ""}},
        {{"-d", index, "-p", "-r", "(?=.*/src/).*readme.*"},
         {0, Lines({"tree/src/readme.md"}), ""}},
        {{"-d", index, "-p", "-r", Path("tree")}, {0, Lines({"tree"}), ""}},
        {{"-d", index, "-p", "-R", "-w", "/src/", "readme"},
         {0, Lines({"tree/src/readme.md"}), ""}},
        {{"-d", index, "-p", "-R", "-w", "\xc3\x89t\xc3\xa9/"}, {0, Lines({utf8File}), ""}},
        {{"-d", index, "-p", "-R", "-w", "tree/line\nb"}, {0, Lines({lineBreak}), ""}},
        {{"-d", index, "-p", "-c", "-R", "-w", "/docs"}, {0, "3\n", ""}},
        {{"-d", index, "-p", "-l", "1", "-R", "-w", "/docs"}, {0, Lines({"tree/docs"}), ""}},
    });
}

// A name or a path on which the expression's library gives up ends the search with an error,
// never with "nothing matched"; what was found before it is printed.
TEST_F(FinderOptionsTest, AGivenUpMatchIsAnError) {
    WriteIndex("long.idx", {"long", "long/aab", "long/" + std::string(60, 'a')});
    const std::string index = Path("long.idx");
    const std::string backtracking = ".*(a|aa)*\\1b";
    const std::string gaveUpText =
        "the expression was too complex for a name, and the search stopped there";
    const std::string gaveUp = Said(gaveUpText);
    ExpectRuns({
        {{"-d", index, "-r", backtracking}, {2, Lines({"long/aab"}), gaveUp}},
        {{"-d", index, "-p", "-r", backtracking}, {2, Lines({"long/aab"}), gaveUp}},
        {{"-d", index, "-r", ".*", backtracking}, {2, Lines({"long/aab"}), gaveUp}},
        {{"-d", index, "-c", "-r", "a*", backtracking}, {2, "0\n", gaveUp}},
        {{"-d", index + ":" + Path("other.idx"), "-c", "-r", ".*", backtracking},
         {2, "1\n", Said(index + ": " + gaveUpText)}},
    });
}

// The entries are asked after under the index's bytes, and a link after itself.
TEST_F(FinderOptionsTest, ExistingLeavesOutWhatIsGone) {
    const std::string index = Path("index.idx");
    ExpectRuns({
        {{"-d", index, "-R", "-w", "readme"},
         {0, Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt", "tree/src/readme.md"}),
          ""}},
        {{"-d", index, "-e", "-R", "-w", "readme"},
         {0, Lines({"tree/docs/Old README.txt", "tree/src/readme.md"}), ""}},
        {{"-d", index, "--existing", "-c", "-R", "-w", "readme"}, {0, "2\n", ""}},
        {{"-d", index, "-e", "-l", "1", "-R", "-w", "readme"},
         {0, Lines({"tree/docs/Old README.txt"}), ""}},
        {{"-d", index, "-e", "-R", "-W", "readme.txt"}, {1, "", ""}},
        {{"-d", index, "-e", "-R", "-w", "link"}, {0, Lines({"tree/link"}), ""}},
        {{"-d", index, "-e", "-R", "-w", "caf"}, {0, Lines({latin1}), ""}},
        {{"-d", index, "-e", "-R", "-w", "break"}, {0, Lines({lineBreak}), ""}},
        {{"-d", index, "-e", "-R", "-w", "notes"}, {0, Lines({utf8File}), ""}},
        {{"-d", index, "-e", "-p", "-R", "-w", "/docs"},
         {0, Lines({"tree/docs", "tree/docs/Old README.txt"}), ""}},
    });
}

// The index holds a shortened stand-in for a name longer than a record; a path is matched as the
// index holds it, and printed and looked up on the disk as the disk names it.
TEST_F(FinderOptionsTest, ALongNameIsMatchedAsStoredAndLookedUpAsReal) {
    const std::string name = "long/" + std::string(251, 'x') + ".txt";
    std::filesystem::create_directory(Path("long"));
    MakeFile(name, "");
    WriteIndex("long.idx", {"long", name});
    const std::string index = Path("long.idx");
    ExpectRuns({
        {{"-d", index, "-e", "-R", "-W", "*.txt"}, {0, Lines({name}), ""}},
        {{"-d", index, "-e", "-p", "-R", "-W", "*/long/x*x.txt"}, {0, Lines({name}), ""}},
    });
}

TEST_F(FinderOptionsTest, SeveralIndexesAnswerInTurn) {
    std::filesystem::create_directories(Path("data/Wendlemark/Sorvanta"));
    std::filesystem::copy_file(Path("index.idx"), Path("data/Wendlemark/Sorvanta/sorvanta.idx"));
    const std::string index = Path("index.idx");
    const std::string other = Path("other.idx");
    const std::string missing = Path("missing.idx");
    const std::string tree =
        Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt", "tree/src/readme.md"});
    const std::string others = Lines({"other/README", "other/x/readme.txt"});
    const std::string syntaxError = Said(other + ": The search failed because the regular "
                                                 "expression you have entered has a syntax error.");
    const std::string status = "Index status good, updated just now, ";
    ExpectRuns({
        {{"-d", index, "-d", other, "-R", "-w", "readme"}, {0, tree + others, ""}},
        {{"-d", other + ":" + index, "-R", "-w", "readme"}, {0, others + tree, ""}},
        {{"-d", other, "-d", ":", "-R", "-w", "readme"}, {0, others + tree + tree, ""}},
        {{"-d", "", "-R", "-w", "readme"}, {0, tree, ""}},
        {{"-d", index + ":" + other, "-c", "-R", "-w", "readme"}, {0, "5\n", ""}},
        {{"-d", index + ":" + other, "-l", "4", "-R", "-w", "readme"},
         {0, tree + Lines({"other/README"}), ""}},
        {{"-d", index + ":" + other, "-c", "-l", "4", "-R", "-w", "readme"}, {0, "4\n", ""}},
        {{"-d", index + ":" + missing, "-l", "3", "-R", "-w", "readme"}, {0, tree, ""}},
        {{"-d", other + ":" + index, "-l", "0", "-R", "-w", "main"}, {0, "", ""}},
        {{"-d", index + ":" + other, "-e", "-R", "-w", "readme"},
         {0, Lines({"tree/docs/Old README.txt", "tree/src/readme.md"}), ""}},
        {{"-d", index + ":" + other, "-p", "-R", "-w", "/x/"},
         {0, Lines({"other/x/readme.txt"}), ""}},
        {{"-d", index + ":" + other, "-R", "-w", "nothing"}, {1, "", ""}},
        {{"-d", missing + ":" + index, "-R", "-w", "main"},
         {2, Lines({"tree/src/main.cpp"}), Said(missing + ": The index file was not found.")}},
        {{"-d", index + ":" + missing, "-R", "-w", "nothing"},
         {2, "", Said(missing + ": The index file was not found.")}},
        {{"-d", other + ":" + index, "-r", "foo("}, {2, "", syntaxError}},
        {{"--status", "-d", index + ":" + other},
         {0,
          index + ": " + status + "8 files in 4 folders, totalling 8 bytes\n" + other + ": " +
              status + "2 files in 2 folders, totalling 2 bytes\n",
          ""}},
        {{"--status", "-d", missing + ":" + other},
         {2, other + ": " + status + "2 files in 2 folders, totalling 2 bytes\n",
          Said(missing + ": No index available.")}},
        {{"--dump", "-", "-d", other + ":" + other},
         {0,
          Lines({"other/", "other/README", "other/x/", "other/x/readme.txt"}, "\r\n") +
              Lines({"other/", "other/README", "other/x/", "other/x/readme.txt"}, "\r\n"),
          ""}},
        {{"--dump", Path("dump.txt"), "-d", other + ":" + missing},
         {2, "", Said(missing + ": The index file was not found.")}},
    });
    EXPECT_FALSE(Exists("dump.txt"));
}

} // namespace
