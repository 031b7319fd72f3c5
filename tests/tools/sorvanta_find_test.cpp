#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/volume_index_builder.h"
#include "loam/disk_file.h"
#include "loam/file_lock.h"
#include "search/index_searcher.h"
#include "tools/finder_process.h"

#include <chrono>
#include <csignal>
#include <poll.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

class SorvantaFindTest : public FinderProcessTest {
protected:
    void SetUp() override {
        FinderProcessTest::SetUp();
        // A root, two folders and four files of 100 to 400 bytes, in walk order.
        loam::DiskFile file;
        ASSERT_TRUE(file.OpenFile(FileAt("index.idx"), loam::FileModeWrite));
        BinaryFileIndexWriter writer(&file);
        writer.AddRoot(FileAt("tree"), 0);
        writer.AddFolder(FileAt("tree/docs"), 0);
        writer.AddFile(FileAt("tree/docs/readme.txt"), 100, 0);
        writer.AddFile(FileAt("tree/docs/Old README.txt"), 200, 0);
        writer.AddFile(FileAt("tree/NOTES.TXT"), 300, 0);
        writer.AddFolder(FileAt("tree/src"), 0);
        writer.AddFile(FileAt("tree/src/main.cpp"), 400, 0);
        writer.Finish();
    }
};

TEST_F(SorvantaFindTest, OutputsExitCodesAndMessages) {
    MakeFile("empty.idx", "");
    MakeFile("damaged.idx", std::string("\1\0\0\0\0\0\0\0\5\0\0\0", 12));
    const std::string index = Path("index.idx");
    const std::string readmes = Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"});
    const std::string nulEnded =
        Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}, std::string(1, '\0'));
    const std::string all = Lines({"tree", "tree/docs"}) + readmes +
                            Lines({"tree/NOTES.TXT", "tree/src", "tree/src/main.cpp"});
    const std::string syntaxError = Said("The search failed because the regular expression you "
                                         "have entered has a syntax error.");
    const std::string notFound = Said("The index file was not found.");
    const std::string dump =
        Lines({"tree/", "tree/docs/", "tree/docs/readme.txt", "tree/docs/Old README.txt",
               "tree/NOTES.TXT", "tree/src/", "tree/src/main.cpp"},
              "\r\n");
    const std::string usage = Said("Usage: sorvanta-find [OPTION]... PATTERN...") +
                              Said("Try 'sorvanta-find --help' for more information.");
    ExpectRuns({
        {{"-d", index, "-R", "-w", "readme"}, {0, readmes, ""}},
        {{"--index", index, "--no-auto-wildcards", "*.TXT"},
         {0, readmes + Lines({"tree/NOTES.TXT"}), ""}},
        {{"-d", index, "-r", ".*"}, {0, all, ""}},
        {{"-d", index, "-l", "1", "*.txt"}, {0, Lines({"tree/docs/readme.txt"}), ""}},
        {{"-d", index, "-0", "-l", "2", "*.txt"}, {0, nulEnded, ""}},
        {{"-d", index, "-l", "0", "*.txt"}, {0, "", ""}},
        {{"-d", index, "-c", "nothing"}, {1, "0\n", ""}},
        {{"-d", index, "-c", "-l", "1", "-w", "readme"}, {0, "1\n", ""}},
        {{"-d", index, "--regex", "main\\.CPP"}, {0, Lines({"tree/src/main.cpp"}), ""}},
        {{"-d", index, "-r", "foo("}, {2, "", syntaxError}},
        {{"-d", index, "-R", "foo("}, {2, "", syntaxError}},
        {{"-d", index, "-R", "-W", ""}, {2, "", syntaxError}},
        {{"-d", Path("missing.idx"), "x"}, {2, "", notFound}},
        {{"-d", root, "x"}, {2, "", notFound}},
        {{"-d", Path("empty.idx"), "x"},
         {2, "", Said("The index file does not contain any data.")}},
        {{"-d", Path("damaged.idx"), "x"},
         {2, "", Said("Warning: Index file is not understood by this version of Sorvanta.")}},
        {{"--status", "-d", index},
         {0, "Index status good, updated just now, 4 files in 3 folders, totalling 1000 bytes\n",
          ""}},
        {{"--status"}, {2, "", Said("No index available.")}},
        {{"-d", index, "--dump", "-"}, {0, dump, ""}},
        {{"-d", index, "--dump", Path("dump.txt")}, {0, "", ""}},
        {{"-d", index, "--dump", Path("no/such")},
         {2, "",
          Said("The file '" + Path("no/such") +
               "' could not be opened (reason: No such file or directory).")}},
        {{"-d", index, "--dump", "/dev/full"},
         {2, "",
          Said("The application was unable to write to a file because there is insufficient space "
               "available.")}},
        {{"-x", "a"}, {2, "", Said("invalid option -- 'x'") + usage}},
        {{"-l", "many", "a"}, {2, "", Said("invalid limit 'many'") + usage}},
        {{}, {2, "", usage}},
        {{"--status", "a"}, {2, "", usage}},
    });
    EXPECT_EQ(ReadWhole("dump.txt"), dump);
}

TEST_F(SorvantaFindTest, SavedOptionsAndIndexAreTheDefaults) {
    std::filesystem::create_directories(Path("data/Wendlemark/Sorvanta"));
    std::filesystem::copy_file(Path("index.idx"), Path("data/Wendlemark/Sorvanta/sorvanta.idx"));
    EXPECT_EQ(Run({"readme.txt"}).out, Lines({"tree/docs/readme.txt"}));
    EXPECT_EQ(Run({"readme"}).exitCode, 1);
    loam::GetPreferences().SetBool("Options.AutoWildcards", true);
    EXPECT_EQ(Run({"readme"}).out, Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}));
    EXPECT_EQ(Run({"-W", "readme"}).exitCode, 1);
    loam::GetPreferences().SetBool("Options.UseRegExp", true);
    EXPECT_EQ(Run({"m.*"}).out, Lines({"tree/src/main.cpp"}));
    EXPECT_EQ(Run({"-R", "m.*"}).exitCode, 1);
}

// The trigram file that a build writes beside its index changes nothing that the finder prints:
// the same paths in the same order, counts, limits and failures, whether the file is there,
// damaged or gone.
TEST_F(SorvantaFindTest, TheTrigramFileChangesNothingPrinted) {
    loam::DiskFile file;
    auto writer = BinaryFileIndexWriter::Begin(file, FileAt("built.idx"));
    ASSERT_TRUE(writer);
    writer->AddRoot(FileAt("tree"), 0);
    const char* const names[] = {"fstab",     "FSTAB.5.gz",       "zlib1g",
                                 "notes.txt", "x86_64-linux-gnu", "Caf\xe9 menu",
                                 "two\nlines"};
    for (int32_t folder = 0; folder < 40; ++folder) {
        const std::string path = "tree/folder" + std::to_string(folder);
        writer->AddFolder(FileAt(path), 0);
        for (int32_t entry = 0; entry < 60; ++entry)
            writer->AddFile(
                FileAt(path + "/file" + std::to_string(entry) +
                       (entry % 23 == folder % 23 ? names[folder % std::size(names)] : ".dat")),
                1, 0);
    }
    writer->Finish();
    ASSERT_TRUE(std::filesystem::exists(Path("built.idx.trigrams")));
    const std::string index = Path("built.idx");
    const std::vector<std::string> searches[] = {
        {"-d", index, "-R", "-w", "fstab"},
        {"-d", index, "-R", "-W", "*.txt"},
        {"-d", index, "-c", "-w", "zlib"},
        {"-d", index, "-l", "3", "-0", "-w", "x86_64-linux-gnu"},
        {"-d", index, "-w", "caf\xc9"},
        {"-d", index, "-w", "two\nlines"},
        {"-d", index, "-r", ".*fstab.*\\.[a-z]+"},
        {"-d", index, "-r", "(zlib|notes)[0-9a-z.]*"},
        {"-d", index, "-R", "-w", "nothing here"},
        {"-d", index, "-R", "-w", "foo("},
    };
    const std::string trigrams = ReadWhole("built.idx.trigrams");
    std::string damaged = trigrams;
    damaged[damaged.size() / 2] ^= 1;
    for (const std::vector<std::string>& arguments : searches) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        MakeFile("built.idx.trigrams", trigrams);
        const Outcome through = Run(arguments);
        MakeFile("built.idx.trigrams", damaged);
        const Outcome throughDamaged = Run(arguments);
        std::filesystem::remove(Path("built.idx.trigrams"));
        const Outcome whole = Run(arguments);
        EXPECT_EQ(through.exitCode, whole.exitCode);
        EXPECT_EQ(through.out, whole.out);
        EXPECT_EQ(through.err, whole.err);
        EXPECT_EQ(throughDamaged.out, whole.out);
    }
    EXPECT_EQ(Run(searches[0]).out.find("FSTAB.5.gz") != std::string::npos, true);
}

TEST_F(SorvantaFindTest, AClosedPipeEndsQuietly) {
    const Outcome piped = Run({"-d", Path("index.idx"), "*"}, true);
    EXPECT_EQ(piped.exitCode, 0);
    EXPECT_EQ(piped.err, "");
}

// A finder stopped in the middle of its output holds no build up: the build puts its new index in
// the name's place at once, and the finder, let go on, prints the whole index that it opened and
// nothing else. (A finder that held the file by a lease kept a build waiting for 45 s, and then
// printed a mix of both indexes or died.)
TEST_F(SorvantaFindTest, AStoppedFinderNeitherHoldsUpABuildNorTearsItsOutput) {
    // More than the finder's output buffer and the pipe together.
    constexpr int files = 40000;
    const std::string name = "a-name-long-enough-to-fill-the-buffers-soon-";
    std::string expected = Lines({"old"});
    {
        loam::DiskFile file;
        const auto writer = BinaryFileIndexWriter::Begin(file, FileAt("index.idx"));
        ASSERT_NE(writer, nullptr);
        writer->AddRoot(FileAt("old"), 0);
        for (int i = 0; i < files; ++i) {
            const std::string path = "old/" + name + std::to_string(i);
            writer->AddFile(FileAt(path), 1, 0);
            expected += Lines({path});
        }
        writer->Finish();
    }
    MakeFile("new.txt", "");
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t finder = fork();
    if (finder == 0) {
        dup2(ends[1], 1);
        close(ends[0]);
        close(ends[1]);
        execl(SORVANTA_FIND, SORVANTA_FIND, "-d", Path("index.idx").c_str(), "-R", "-W", "*",
              nullptr);
        _exit(127);
    }
    close(ends[1]);
    pollfd output{ends[0], POLLIN, 0};
    ASSERT_EQ(poll(&output, 1, 30000), 1);
    ::kill(finder, SIGSTOP);

    const auto started = std::chrono::steady_clock::now();
    {
        loam::DiskFile file;
        const auto writer = BinaryFileIndexWriter::Begin(file, FileAt("index.idx"));
        ASSERT_NE(writer, nullptr);
        EXPECT_TRUE(VolumeIndexBuilder(nullptr).RunToCompletion(writer.get()));
        writer->Finish();
    }
    // A guard against the wait, far below the time-out of a lease.
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));

    ::kill(finder, SIGCONT);
    std::string printed;
    char buffer[65536];
    for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
        printed.append(buffer, static_cast<size_t>(count));
    close(ends[0]);
    int status = 0;
    waitpid(finder, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_TRUE(printed == expected) << printed.size() << " bytes printed of " << expected.size();
    IndexData rebuilt;
    ASSERT_TRUE(rebuilt.Load(FileAt("index.idx")));
    EXPECT_GT(rebuilt.GetRecordCount(), 0);
}

// Names longer than a record holds are found by their head or their ending, and printed as they
// are on the disk, whether they are the entry's own name or a folder's on its path.
TEST_F(SorvantaFindTest, LongNamesArePrintedAsTheyAreOnTheDisk) {
    std::string cjk83;
    for (int i = 0; i < 83; ++i)
        cjk83 += "\xE6\x96\x87";
    const std::string cjk84 = cjk83 + "\xE5\xAD\x97";
    const std::string pdf = "tree/" + cjk84 + "/" + cjk83 + ".pdf";
    const std::string folders = "tree/" + std::string(255, 'y') + "/" + std::string(253, 'z');
    std::filesystem::create_directories(Path(folders));
    std::filesystem::create_directories(Path("tree/" + cjk84));
    MakeFile(pdf, "%PDF");
    MakeFile(folders + "/report.txt", "12");
    {
        const ScopedEnvironment roots("SORVANTA_ROOTS", Path("tree").c_str());
        loam::DiskFile file;
        const auto writer = BinaryFileIndexWriter::Begin(file, FileAt("long.idx"));
        ASSERT_NE(writer, nullptr);
        EXPECT_TRUE(VolumeIndexBuilder(nullptr).RunToCompletion(writer.get()));
        writer->Finish();
    }
    const std::string index = Path("long.idx");
    const std::pair<std::vector<std::string>, std::string> table[] = {
        {{"-R", "-W", "*.pdf"}, Lines({pdf})},
        {{"-R", "-W", "report.txt"}, Lines({folders + "/report.txt"})},
        {{"-r", "y.*"}, Lines({"tree/" + std::string(255, 'y')})},
        {{"-R", "-W", "*zzz"}, Lines({folders})},
        {{"-R", "-W", "*.txt"}, Lines({folders + "/report.txt"})},
    };
    for (const auto& [arguments, printed] : table) {
        std::vector<std::string> all = {"-d", index};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome outcome = Run(all);
        EXPECT_EQ(outcome.exitCode, 0) << arguments.back();
        EXPECT_EQ(outcome.out, printed) << arguments.back();
        EXPECT_EQ(outcome.err, "") << arguments.back();
    }
}

// However the dump's file is named, it never takes the place of the index it is made from: the
// index stays whole and loads as before.
TEST_F(SorvantaFindTest, ADumpNeverReplacesItsIndex) {
    const std::string index = Path("index.idx");
    const std::string before = ReadWhole("index.idx");
    std::filesystem::create_directories(Path("sub"));
    std::filesystem::create_symlink(index, Path("link.idx"));
    std::filesystem::create_hard_link(index, Path("hard.idx"));
    const std::string refused = Said("the dump would take the place of the index it is made from");
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"-d", index, "--dump", index}, refused},
        {{"-d", index, "--dump", Path("sub/../index.idx")}, refused},
        {{"-d", index, "--dump", Path("link.idx")}, refused},
        {{"-d", index, "--dump", Path("hard.idx")}, refused},
        {{"-d", Path("link.idx"), "--dump", index}, refused},
        {{"-d", index, "--dump", Path("index.idx.txt")}, ""},
    };
    for (const auto& [arguments, said] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, said.empty() ? 0 : 2);
        EXPECT_EQ(outcome.err, said);
        EXPECT_EQ(ReadWhole("index.idx"), before);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(Path("link.idx")));
    EXPECT_EQ(ReadWhole("hard.idx"), before);
}

// An index that a build is writing, or that a build left unfinished, is no answer: the finder says
// which, and never "nothing matched".
TEST_F(SorvantaFindTest, AnIndexUnderBuildOrLeftUnfinishedIsAnError) {
    const std::string index = Path("index.idx");
    const std::string rebuilt = Said("the index is being rebuilt");
    const std::string incomplete = Said("the index is incomplete; run 'sorvanta /buildindex'");
    const std::vector<std::vector<std::string>> questions = {{"-d", index, "*"},
                                                             {"-d", index, "-c", "nothing"},
                                                             {"-d", index, "-r", "x"},
                                                             {"-d", index, "--dump", "-"}};
    const auto ask = [&](const std::string& expected) {
        for (const auto& arguments : questions) {
            SCOPED_TRACE(testing::PrintToString(arguments));
            const Outcome outcome = Run(arguments);
            EXPECT_EQ(outcome.exitCode, 2);
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(outcome.err, expected);
        }
    };
    loam::DiskFile file;
    auto writer = BinaryFileIndexWriter::Begin(file, FileAt("index.idx"));
    ASSERT_NE(writer, nullptr);
    writer->AddRoot(FileAt("tree"), 0);
    {
        SCOPED_TRACE("during the build");
        ask(rebuilt);
    }
    writer.reset();
    {
        SCOPED_TRACE("after a cancelled build");
        ask(incomplete);
    }
    {
        SCOPED_TRACE("a file that does not load while a build holds the lock");
        loam::FileLock lock;
        ASSERT_EQ(lock.Take(loam::FileSpec((index + ".lock").c_str())),
                  loam::FileLock::Outcome::Taken);
        MakeFile("index.idx", "");
        ask(rebuilt);
    }
}

// A name on which the expression library gives up ends the pass, as in the window: the finder
// prints what the window shows, then says that the search stopped, with the exit code of an error,
// though a match was printed.
TEST_F(SorvantaFindTest, AnExpressionGivenUpOnANameIsAnError) {
    // A root of a short name, so that the pass finds something before the long name.
    const std::string deep = "/r/" + std::string(200, 'd');
    {
        loam::DiskFile file;
        ASSERT_TRUE(file.OpenFile(FileAt("index.idx"), loam::FileModeWrite));
        BinaryFileIndexWriter writer(&file);
        writer.AddRoot(loam::FileSpec("/r"), 0);
        writer.AddFile(loam::FileSpec("/r/a.pdf"), 1, 0);
        writer.AddFolder(loam::FileSpec(deep.c_str()), 0);
        writer.AddFile(loam::FileSpec((deep + "/b.pdf").c_str()), 1, 0);
        writer.AddFile(loam::FileSpec("/r/c.pdf"), 1, 0);
        writer.Finish();
    }
    const char pattern[] = "(.*)+\\.pdf";
    IndexData loaded;
    ASSERT_TRUE(loaded.Load(FileAt("index.idx")));
    IndexSearcher searcher;
    ASSERT_TRUE(searcher.Start(&loaded, pattern, true, false));
    searcher.RunToEnd(nullptr);
    ASSERT_FALSE(searcher.Rewind()) << "the library did not give up";
    std::string shown;
    for (int32_t i = 0; i < loaded.GetResultCount(); ++i)
        shown += std::string(loaded.GetResultPath(i).GetCString()) + "\n";
    EXPECT_EQ(shown, "/r/a.pdf\n");

    const Outcome outcome = Run({"-d", Path("index.idx"), "-r", pattern});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, shown);
    EXPECT_EQ(outcome.err,
              Said("the expression was too complex for a name, and the search stopped there"));
}

} // namespace
