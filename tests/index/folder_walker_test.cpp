#include "index/folder_walker.h"

#include "walk_fixture.h"

#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using walk_test::Entry;
using walk_test::RecordingWriter;
using walk_test::WalkTest;

constexpr int skipped = 77;

// Runs `check` in a child process, for what must not touch the test process: its limits, its
// mounts. The child's exit code is the result: 0 passed, `skipped` cannot run here.
template <typename Check> int RunInChild(const Check& check) {
    const pid_t child = fork();
    if (child == 0)
        _exit(check());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool WriteText(const char* file, const std::string& text) {
    return static_cast<bool>(std::ofstream(file) << text);
}

// Mounts made after this are seen by this process alone.
bool EnterPrivateMounts() {
    const std::string uid = std::to_string(getuid()), gid = std::to_string(getgid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteText("/proc/self/setgroups", "deny") &&
           WriteText("/proc/self/uid_map", "0 " + uid + " 1") &&
           WriteText("/proc/self/gid_map", "0 " + gid + " 1") &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

class FolderWalkerTest : public WalkTest {
protected:
    // 0 when the entries are those expected, each once; else 1, and both on standard error, as
    // a child cannot report through the test.
    static int Differs(const std::vector<Entry>& entries, const std::set<Entry>& expected) {
        if (std::set<Entry>(entries.begin(), entries.end()) == expected &&
            entries.size() == expected.size())
            return 0;
        std::cerr << testing::PrintToString(entries) << "\nexpected "
                  << testing::PrintToString(expected) << '\n';
        return 1;
    }
};

// Each folder and file once, as `find` lists them, whatever the roots, and each found again on the
// disk from the index: names of every length the file system allows, folders of such names with
// everything below them among them.
TEST_F(FolderWalkerTest, AnIndexedTreeHoldsWhatFindListsEachOnce) {
    // 84 characters of three bytes each make 252 bytes; 85 make 255.
    std::string cjk83;
    for (int i = 0; i < 83; ++i)
        cjk83 += "\xE6\x96\x87";
    const std::string cjk84 = cjk83 + "\xE5\xAD\x97", cjk85 = cjk84 + "\xE6\x96\x87";
    const std::string longest(251, 'k'), tooLong(252, 'x'), nameMax(255, 'y');
    MakeFile("a.txt", "hello");
    MakeFile(".hidden");
    MakeFile("big");
    ASSERT_EQ(truncate(Path("big").c_str(), (int64_t{1} << 32) + 7), 0);
    MakeFile("sub/deeper/inner.bin", std::string(3000, 'x'));
    MakeFile(".../dots", "1");
    std::filesystem::create_directories(Path("empty"));
    MakeFile("a/inner/deep/file.txt", "12");
    MakeFile(longest + "/kept.txt");
    MakeFile(tooLong + "/below/kept.txt");
    MakeFile(nameMax + "/kept.txt", "12345");
    MakeFile(nameMax + "/" + std::string(253, 'z') + "/" + std::string(254, 'w'), "1");
    MakeFile(cjk84 + "/" + cjk83 + ".pdf/" + cjk85, "abc");
    MakeFile("files/" + tooLong);
    MakeFile("files/" + cjk85);
    std::filesystem::create_directory_symlink("sub", Path("folder-link"));
    std::filesystem::create_directory_symlink("..", Path("sub/up"));
    std::filesystem::create_symlink("missing", Path("dangling"));
    SetTime("big", -100);
    SetTime("sub", 1234567890);
    SetTime("folder-link", 42);
    SetTime("", 777);
    const std::set<Entry> found = Find(tree);

    const std::pair<std::vector<std::string>, std::set<std::string>> cases[] = {
        {{""}, {""}},
        {{"", "a/inner"}, {""}},
        {{"a/inner", ""}, {"", "a/inner"}},
        {{"", ""}, {""}},
    };
    for (const auto& [names, expectedRoots] : cases) {
        SCOPED_TRACE(names.front() + " then " + names.back());
        SetRoots(names);
        const RecordingWriter built = BuildIndex();
        EXPECT_EQ(Differs(built.entries, found), 0);
        std::set<std::string> paths;
        for (const std::string& name : expectedRoots)
            paths.insert(Path(name));
        EXPECT_EQ(built.roots, paths);
    }
}

TEST_F(FolderWalkerTest, AFolderOfAnotherFileSystemStaysEmptyUnlessItIsARoot) {
    MakeFile("mnt/hidden-under-mount.txt");
    MakeFile("home/notes.txt");
    const int result = RunInChild([this] {
        if (!EnterPrivateMounts() ||
            mount("tmpfs", Path("mnt").c_str(), "tmpfs", 0, "size=1m") != 0)
            return skipped;
        MakeFile("mnt/inside.txt", "abc");
        MakeFile("mnt/dir/deep.txt");
        // The mount point alone, as `find -xdev` lists it.
        const int failed = Differs(BuildIndex().entries, Find(tree));
        SetRoots({"", "mnt"});
        std::set<Entry> both = Find(tree);
        both.merge(Find(Path("mnt")));
        const RecordingWriter joined = BuildIndex();
        return failed | Differs(joined.entries, both) | (joined.roots.size() != 1);
    });
    if (result == skipped)
        GTEST_SKIP() << "no private mount namespace here";
    EXPECT_EQ(result, 0);
}

TEST_F(FolderWalkerTest, ATreeDeeperThanTheDescriptorLimitIsWalkedWhole) {
    constexpr int depth = 200;
    std::string folder = "d";
    for (int level = 0; level < depth; ++level, folder += "/d")
        MakeFile(folder + "/f", "f");
    const std::set<Entry> expected = Find(tree);
    const int result = RunInChild([&] {
        const rlimit limit{64, 64};
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
            return 1;
        RecordingWriter writer;
        FolderWalker walker(&writer, loam::FileSpec((tree + "/").c_str()), nullptr);
        bool finished = false;
        for (int slice = 0; slice <= depth && !finished; ++slice)
            walker.WalkSteps(1, &finished);
        return Differs(writer.entries, expected) | !finished | !writer.orphans.empty();
    });
    EXPECT_EQ(result, 0);
}

// Folders deeper than the system takes a path for are walked through their ancestors'
// descriptors: the bottom file of a 2,600-deep chain, its path over 5,000 bytes, is indexed.
TEST_F(FolderWalkerTest, APathLongerThanTheSystemTakesIsWalked) {
    constexpr int depth = 2600;
    int folder = open(tree.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < depth && folder >= 0; ++level) {
        mkdirat(folder, "d", 0700);
        const int below = openat(folder, "d", O_RDONLY | O_DIRECTORY);
        close(folder);
        folder = below;
    }
    ASSERT_GE(folder, 0);
    close(openat(folder, "bottom.txt", O_WRONLY | O_CREAT, 0600));
    close(folder);
    std::string bottom = tree;
    for (int level = 0; level < depth; ++level)
        bottom += "/d";
    bottom += "/bottom.txt";

    const loam::FileSpec file((root + "/sorvanta.idx").c_str());
    {
        loam::DiskFile disk;
        const auto writer = BinaryFileIndexWriter::Begin(disk, file);
        ASSERT_NE(writer, nullptr);
        EXPECT_TRUE(VolumeIndexBuilder(nullptr).RunToCompletion(writer.get()));
        writer->Finish();
    }
    IndexData index;
    ASSERT_TRUE(index.Load(file));
    ASSERT_EQ(index.GetRecordCount(), depth + 2);
    EXPECT_EQ(index.GetPathOf(index.GetRecord(depth + 1)).GetCString(), bottom);
    // Deeper than a path the system takes: the tree goes the way it was made.
    EXPECT_EQ(std::system(("rm -rf '" + tree + "'").c_str()), 0);
}

} // namespace
