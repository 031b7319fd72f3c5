#include "index/file_index_writer.h"
#include "loam/disk_file.h"
#include "loam/preferences.h"
#include "loam/scratch_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

struct Outcome {
    int exitCode = -1;
    std::string out;
    std::string err;
};

class SorvantaFindTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        std::filesystem::create_directories(Path("tree"));
        WriteIndex(Path("index.idx"));
        loam::SetPreferenceLocation("Wendlemark", "Sorvanta");
    }

    // A root, two folders and four files of 100 to 400 bytes, in walk order.
    void WriteIndex(const std::string& path) const {
        loam::DiskFile file;
        ASSERT_TRUE(file.OpenFile(loam::FileSpec(path.c_str()), loam::FileModeWrite));
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

    std::string Lines(const std::vector<std::string>& names, char end = '\n') const {
        std::string text;
        for (const std::string& name : names)
            text += Path(name) + end;
        return text;
    }

    // Runs the finder with standard output and error in files; a closed pipe as standard
    // output if asked.
    Outcome Run(std::vector<std::string> arguments, bool closedPipe = false) const {
        const std::string out = Path("stdout"), err = Path("stderr");
        int pipeEnds[2];
        if (closedPipe && pipe(pipeEnds) != 0)
            return {};
        const pid_t child = fork();
        if (child == 0) {
            const int outFile =
                closedPipe ? pipeEnds[1] : open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            const int errFile = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(outFile, 1);
            dup2(errFile, 2);
            if (closedPipe)
                close(pipeEnds[0]);
            std::vector<char*> argv{const_cast<char*>(SORVANTA_FIND)};
            for (std::string& argument : arguments)
                argv.push_back(argument.data());
            argv.push_back(nullptr);
            execv(SORVANTA_FIND, argv.data());
            _exit(127);
        }
        if (closedPipe) {
            close(pipeEnds[0]);
            close(pipeEnds[1]);
        }
        int status = 0;
        waitpid(child, &status, 0);
        Outcome outcome;
        outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        outcome.out = closedPipe ? "" : ReadWhole("stdout");
        outcome.err = ReadWhole("stderr");
        return outcome;
    }
};

const char syntaxError[] = "sorvanta-find: The search failed because the regular expression "
                           "you have entered has a syntax error.\n";

struct Invocation {
    std::vector<std::string> arguments;
    int exitCode;
    std::string out;
    std::string err;
};

TEST_F(SorvantaFindTest, OutputsExitCodesAndMessages) {
    MakeFile("empty.idx", "");
    MakeFile("damaged.idx", std::string("\1\0\0\0\0\0\0\0\5\0\0\0", 12));
    const std::string index = Path("index.idx");
    const std::string readmes = Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"});
    const Invocation table[] = {
        {{"-d", index, "-R", "-w", "readme"}, 0, readmes, ""},
        {{"--index", index, "--no-auto-wildcards", "*.TXT"},
         0,
         readmes + Lines({"tree/NOTES.TXT"}),
         ""},
        {{"-d", index, "-r", ".*"},
         0,
         Lines({"tree", "tree/docs", "tree/docs/readme.txt", "tree/docs/Old README.txt",
                "tree/NOTES.TXT", "tree/src", "tree/src/main.cpp"}),
         ""},
        {{"-d", index, "-l", "1", "*.txt"}, 0, Lines({"tree/docs/readme.txt"}), ""},
        {{"-d", index, "-0", "-l", "2", "*.txt"},
         0,
         Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}, '\0'),
         ""},
        {{"-d", index, "-l", "0", "*.txt"}, 0, "", ""},
        {{"-d", index, "-c", "nothing"}, 1, "0\n", ""},
        {{"-d", index, "-c", "-w", "readme"}, 0, "2\n", ""},
        {{"-d", index, "-c", "-l", "1", "-w", "readme"}, 0, "1\n", ""},
        {{"-d", index, "--regex", "main\\.CPP"}, 0, Path("tree/src/main.cpp") + "\n", ""},
        {{"-d", index, "-r", "foo("}, 2, "", syntaxError},
        {{"-d", index, "-R", "foo("}, 2, "", syntaxError},
        {{"-d", index, "-R", "-W", ""}, 2, "", syntaxError},
        {{"-d", Path("missing.idx"), "x"}, 2, "", "sorvanta-find: The index file was not found.\n"},
        {{"-d", Path("tree"), "x"}, 2, "", "sorvanta-find: The index file was not found.\n"},
        {{"-d", Path("empty.idx"), "x"},
         2,
         "",
         "sorvanta-find: The index file does not contain any data.\n"},
        {{"-d", Path("damaged.idx"), "x"},
         2,
         "",
         "sorvanta-find: Warning: Index file is not understood by this version of Sorvanta.\n"},
    };
    for (const Invocation& row : table) {
        const Outcome outcome = Run(row.arguments);
        SCOPED_TRACE(row.arguments[row.arguments.size() - 2] + " " + row.arguments.back());
        EXPECT_EQ(outcome.exitCode, row.exitCode);
        EXPECT_EQ(outcome.out, row.out);
        EXPECT_EQ(outcome.err, row.err);
    }
}

struct Misuse {
    std::vector<std::string> arguments;
    std::string complaint;
};

TEST_F(SorvantaFindTest, BadUsageShowsTheUsageLine) {
    const std::string usage = "Usage: sorvanta-find [OPTION]... PATTERN\n"
                              "Try 'sorvanta-find --help' for more information.\n";
    const Misuse table[] = {
        {{"-x", "a"}, "sorvanta-find: invalid option -- 'x'\n"},
        {{"--bogus", "a"}, "sorvanta-find: unrecognized option '--bogus'\n"},
        {{"-d"}, "sorvanta-find: option requires an argument -- 'd'\n"},
        {{"-l", "many", "a"}, "sorvanta-find: invalid limit 'many'\n"},
        {{}, ""},
        {{"a", "b"}, ""},
        {{"--status", "a"}, ""},
    };
    for (const Misuse& row : table) {
        const Outcome outcome = Run(row.arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, row.complaint + usage);
    }
}

TEST_F(SorvantaFindTest, SavedOptionsAndIndexAreTheDefaults) {
    std::filesystem::create_directories(Path("data/Wendlemark/Sorvanta"));
    WriteIndex(Path("data/Wendlemark/Sorvanta/sorvanta.idx"));
    EXPECT_EQ(Run({"readme.txt"}).out, Lines({"tree/docs/readme.txt"}));
    EXPECT_EQ(Run({"readme"}).exitCode, 1);
    loam::GetPreferences().SetBool("Options.AutoWildcards", true);
    EXPECT_EQ(Run({"readme"}).out, Lines({"tree/docs/readme.txt", "tree/docs/Old README.txt"}));
    EXPECT_EQ(Run({"-W", "readme"}).exitCode, 1);
    loam::GetPreferences().SetBool("Options.UseRegExp", true);
    EXPECT_EQ(Run({"m.*"}).out, Lines({"tree/src/main.cpp"}));
    EXPECT_EQ(Run({"-R", "m.*"}).exitCode, 1);
}

TEST_F(SorvantaFindTest, StatusLineAsTheMainWindowShowsIt) {
    const Outcome status = Run({"--status", "-d", Path("index.idx")});
    EXPECT_EQ(status.exitCode, 0);
    EXPECT_EQ(status.out,
              "Index status good, updated just now, 4 files in 3 folders, totalling 1000 bytes\n");
    const Outcome missing = Run({"--status"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.err, "sorvanta-find: No index available.\n");
}

TEST_F(SorvantaFindTest, DumpsTheIndexAsText) {
    const std::string expected =
        Path("tree") + "/\r\n" + Path("tree/docs") + "/\r\n" + Path("tree/docs/readme.txt") +
        "\r\n" + Path("tree/docs/Old README.txt") + "\r\n" + Path("tree/NOTES.TXT") + "\r\n" +
        Path("tree/src") + "/\r\n" + Path("tree/src/main.cpp") + "\r\n";
    const Outcome dumped = Run({"-d", Path("index.idx"), "--dump", "-"});
    EXPECT_EQ(dumped.exitCode, 0);
    EXPECT_EQ(dumped.out, expected);
    EXPECT_EQ(Run({"-d", Path("index.idx"), "--dump", Path("dump.txt")}).exitCode, 0);
    EXPECT_EQ(ReadWhole("dump.txt"), expected);
    const Outcome refused = Run({"-d", Path("index.idx"), "--dump", Path("no/such/dump.txt")});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err, "");
    const Outcome full = Run({"-d", Path("index.idx"), "--dump", "/dev/full"});
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_NE(full.err.find("insufficient space"), std::string::npos) << full.err;
}

TEST_F(SorvantaFindTest, AClosedPipeEndsQuietly) {
    const Outcome outcome = Run({"-d", Path("index.idx"), "*"}, true);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

} // namespace
