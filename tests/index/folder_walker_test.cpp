#include "index/folder_walker.h"

#include "walk_fixture.h"

#include <functional>
#include <iostream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using walk_test::Entry;
using walk_test::Kind;
using walk_test::RecordingWriter;
using walk_test::WalkTest;

constexpr int skipped = 77;

// Runs `check` in a child process, for what must not touch the test process: its limits, its
// mounts. The child's exit code is the result: 0 passed, `skipped` cannot run here.
int RunInChild(const std::function<int()>& check) {
    const pid_t child = fork();
    if (child == 0)
        _exit(check());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// For a child, which cannot report through the test: 0 when equal, else 1 and the differences.
int Compare(const std::set<Entry>& actual, const std::set<Entry>& expected) {
    int result = 0;
    for (const Entry& entry : actual) {
        if (!expected.count(entry)) {
            std::cerr << "unexpected: " << entry << '\n';
            result = 1;
        }
    }
    for (const Entry& entry : expected) {
        if (!actual.count(entry)) {
            std::cerr << "missing: " << entry << '\n';
            result = 1;
        }
    }
    return result;
}

std::set<std::string> RootsOf(const std::vector<Entry>& entries) {
    std::set<std::string> roots;
    for (const Entry& entry : entries) {
        if (entry.kind == Kind::Root)
            roots.insert(entry.path);
    }
    return roots;
}

bool WriteText(const char* file, const std::string& text) {
    std::ofstream out(file);
    return static_cast<bool>(out << text);
}

// Mounts made after this are seen by this process alone.
bool EnterPrivateMounts() {
    if (unshare(CLONE_NEWNS) != 0) {
        const std::string uid = std::to_string(getuid());
        const std::string gid = std::to_string(getgid());
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 ||
            !WriteText("/proc/self/setgroups", "deny") ||
            !WriteText("/proc/self/uid_map", "0 " + uid + " 1") ||
            !WriteText("/proc/self/gid_map", "0 " + gid + " 1"))
            return false;
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

class FolderWalkerTest : public WalkTest {};

// Each folder and file once, as `find` lists them, whatever the roots; a name too long for the
// index leaves out its whole subtree.
TEST_F(FolderWalkerTest, AnIndexedTreeHoldsWhatFindListsEachOnce) {
    const std::string longest(251, 'k'), tooLong(252, 'x'), nameMax(255, 'y');
    MakeFile("a.txt", "hello");
    MakeFile(".hidden");
    MakeFile("big");
    ASSERT_EQ(truncate(Path("big").c_str(), (int64_t{1} << 32) + 7), 0);
    MakeFile("sub/deeper/inner.bin", std::string(3000, 'x'));
    MakeFile(".../dots", "1");
    MakeFolder("empty");
    MakeFile("a/inner/deep/file.txt", "12");
    MakeFile(longest + "/kept.txt");
    MakeFile(tooLong + "/below/lost.txt");
    MakeFile(nameMax + "/lost.txt");
    MakeFile("files/" + tooLong);
    std::filesystem::create_directory_symlink("sub", Path("folder-link"));
    std::filesystem::create_directory_symlink("..", Path("sub/up"));
    std::filesystem::create_symlink("a.txt", Path("file-link"));
    std::filesystem::create_symlink("missing", Path("dangling"));
    SetTime("a.txt", 1000000000);
    SetTime("big", -100);
    SetTime("sub", 1234567890);
    SetTime("folder-link", 42);
    SetTime("", 777);
    std::set<Entry> found;
    for (const Entry& entry : Find(tree)) {
        if (entry.path.find(tooLong) == std::string::npos &&
            entry.path.find(nameMax) == std::string::npos)
            found.insert(entry);
    }

    const std::pair<std::vector<std::string>, std::set<std::string>> cases[] = {
        {{""}, {""}},
        {{"", "a/inner"}, {""}},
        {{"a/inner", ""}, {"", "a/inner"}},
        {{"", ""}, {""}},
    };
    for (const auto& [names, expectedRoots] : cases) {
        SCOPED_TRACE(names.front() + " then " + names.back());
        SetRoots(names);
        const std::vector<Entry> entries = BuildIndex();
        EXPECT_EQ(AsFolders(entries), found);
        EXPECT_EQ(entries.size(), found.size());
        std::set<std::string> paths;
        for (const std::string& name : expectedRoots)
            paths.insert(Path(name));
        EXPECT_EQ(RootsOf(entries), paths);
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
        const std::vector<Entry> alone = BuildIndex();
        int failed = Compare(AsFolders(alone), Find(tree)) | (alone.size() != Find(tree).size());
        SetRoots({"", "mnt"});
        std::set<Entry> both = Find(tree);
        both.merge(Find(Path("mnt")));
        const std::vector<Entry> joined = BuildIndex();
        failed |= Compare(AsFolders(joined), both) | (joined.size() != both.size());
        return failed | (RootsOf(joined).size() != 1);
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
        return Compare(AsFolders(writer.entries), expected) | !finished | !writer.orphans.empty() |
               (writer.entries.size() != expected.size());
    });
    EXPECT_EQ(result, 0);
}

} // namespace
