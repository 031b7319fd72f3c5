#include "loam/preferences.h"

#include <gtest/gtest.h>

#include "scratch_folder.h"

#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class PreferencesTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        loam::SetPreferenceLocation("Wendlemark", "Sorvanta");
    }

    std::string StorePath() const { return Path("config/Wendlemark/Sorvanta.conf"); }
    void WriteStore(const std::string& bytes) const {
        fs::create_directories(Path("config/Wendlemark"));
        std::ofstream(StorePath(), std::ios::binary) << bytes;
    }
    static int ModeOf(const std::string& path) {
        struct stat status {};
        return ::stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 0777) : -1;
    }

    // A tree of its own, as a process that starts afresh has.
    loam::Preferences prefs{"", nullptr};
};

TEST_F(PreferencesTest, DottedNamesMakeOneGroupPerNodeInTheCaseFirstWritten) {
    loam::Preferences& global = loam::GetPreferences();
    EXPECT_TRUE(global.SetString("IndexLocation", "/home/ann/index"));
    EXPECT_TRUE(global.SetBool("Options.AutoWildcards", true));
    EXPECT_TRUE(global.SetInt("UI.SearchPattern.Count", 1));
    EXPECT_TRUE(prefs.SetInt("ui.SEARCHPATTERN.count", 2));
    EXPECT_TRUE(prefs.SetString("ui.searchpattern.Item0", "a"));
    EXPECT_TRUE(prefs.SetBool("ui.searchpattern.deeper.On", true));
    EXPECT_TRUE(global.SetString("a.b.c", "x"));
    EXPECT_TRUE(global.SetInt("General.Width", 5));
    EXPECT_EQ(ReadWhole("config/Wendlemark/Sorvanta.conf"),
              "[General]\nIndexLocation=/home/ann/index\n\n[Options]\nAutoWildcards=true\n\n"
              "[UI/SearchPattern]\nCount=2\nItem0=a\n\n[UI/SearchPattern/deeper]\nOn=true\n\n"
              "[a/b]\nc=x\n\n[%General]\nWidth=5\n");
    uint32_t number = 0;
    EXPECT_TRUE(global.GetInt("Ui.SearchPattern.Count", number));
    EXPECT_EQ(number, 2u);
    EXPECT_TRUE(prefs.GetInt("general.width", number));
    EXPECT_EQ(number, 5u);
}

TEST_F(PreferencesTest, StoredTextReadsByType) {
    WriteStore("[General]\nN=42\nNeg=-5\nMax=4294967295\nOver=4294967296\nText=hello\n"
               "Yes=true\nNo=false\nEmpty=\n");
    ASSERT_TRUE(prefs.SetBool("Flag", true));
    ASSERT_TRUE(prefs.SetInt("All", 0xFFFFFFFF));
    const std::tuple<const char*, uint32_t, bool, const char*> cases[] = {
        {"N", 42, true, "42"},
        {"Neg", 0xFFFFFFFB, true, "-5"},
        {"Over", 7, false, "4294967296"},
        {"Max", 0xFFFFFFFF, true, "4294967295"},
        {"Text", 7, false, "hello"},
        {"Yes", 1, true, "true"},
        {"No", 0, false, "false"},
        {"Empty", 7, false, ""},
        {"Flag", 1, true, "true"},
        {"All", 0xFFFFFFFF, true, "-1"}};
    for (const auto& [name, expectedNumber, expectedFlag, expectedText] : cases) {
        uint32_t number = 7;
        bool flag = false;
        loam::String text;
        EXPECT_TRUE(prefs.GetInt(name, number) && prefs.GetBool(name, flag) &&
                    prefs.GetString(name, text));
        EXPECT_EQ(number, expectedNumber) << name;
        EXPECT_EQ(flag, expectedFlag) << name;
        EXPECT_STREQ(text.GetCString(), expectedText) << name;
    }
}

TEST_F(PreferencesTest, MissingOrDamagedStoreLeavesDefaults) {
    std::string garbage(4096, '\0');
    for (size_t i = 0; i < garbage.size(); ++i)
        garbage[i] = static_cast<char>((i * 7919 + 13) % 251);
    const std::tuple<const char*, std::function<void()>, bool> cases[] = {
        {"no file", [] {}, true},
        {"garbage", [&] { WriteStore(garbage); }, true},
        {"bad line", [&] { WriteStore("[Options]\nCount=1\nnot a pair\n"); }, true},
        {"truncated group", [&] { WriteStore("[Options]\nCount=1\n[Opti"); }, true},
        {"no group", [&] { WriteStore("Count=1\n[Options]\n"); }, true},
        {"a folder", [&] { fs::create_directories(StorePath()); }, false},
        {"a fifo",
         [&] {
             fs::create_directories(Path("config/Wendlemark"));
             ::mkfifo(StorePath().c_str(), 0600);
         },
         true},
    };
    for (const auto& [what, make, writable] : cases) {
        SCOPED_TRACE(what);
        fs::remove_all(Path("config"));
        make();
        uint32_t number = 7;
        loam::String text("default");
        EXPECT_FALSE(prefs.GetInt("Options.Count", number));
        EXPECT_FALSE(prefs.GetString("Options.Count", text));
        EXPECT_EQ(number, 7u);
        EXPECT_STREQ(text.GetCString(), "default");
        if (!writable)
            continue;
        EXPECT_TRUE(prefs.SetInt("Options.Count", 9));
        EXPECT_TRUE(prefs.GetInt("Options.Count", number));
        EXPECT_EQ(number, 9u);
    }
}

TEST_F(PreferencesTest, WithoutLocationNothingIsReadOrWritten) {
    for (const char* company : {"", "Wendlemark"}) {
        loam::SetPreferenceLocation(company, "");
        uint32_t number = 7;
        EXPECT_FALSE(prefs.SetInt("Options.Count", 1));
        EXPECT_FALSE(prefs.GetInt("Options.Count", number));
        EXPECT_EQ(number, 7u);
        EXPECT_FALSE(Exists("config"));
    }
    loam::SetPreferenceLocation("", "Sorvanta");
    EXPECT_TRUE(prefs.SetInt("Count", 1));
    EXPECT_TRUE(Exists("config/Sorvanta.conf"));
}

TEST_F(PreferencesTest, StoreFilesArePrivate) {
    WriteStore("[General]\nOld=1\n");
    ::chmod(StorePath().c_str(), 0644);
    ::chmod(Path("config/Wendlemark").c_str(), 0755);
    EXPECT_TRUE(prefs.SetInt("New", 2));
    EXPECT_EQ(ModeOf(StorePath()), 0600);
    EXPECT_EQ(ModeOf(StorePath() + ".lock"), 0600);
    fs::remove_all(Path("config/Wendlemark"));
    EXPECT_TRUE(prefs.SetInt("New", 2));
    EXPECT_EQ(ModeOf(Path("config/Wendlemark")), 0700);
    EXPECT_EQ(ModeOf(StorePath()), 0600);
}

TEST_F(PreferencesTest, TextAndPathsRoundTrip) {
    const std::string cases[] = {"line one\nline two",
                                 "a=b",
                                 "[Options]",
                                 "  padded  ",
                                 "\ttab\r\n",
                                 "back\\slash \\n",
                                 "\xE9t\xE9\\ \n  latin",
                                 "#not a comment",
                                 "",
                                 std::string(10000, 'x')};
    ASSERT_TRUE(prefs.SetInt("Text.Sentinel", 1));
    for (const std::string& value : cases) {
        SCOPED_TRACE(value);
        ASSERT_TRUE(prefs.SetString("Text.Value", value.c_str()));
        loam::Preferences reader("", nullptr);
        loam::String text;
        uint32_t sentinel = 0;
        EXPECT_TRUE(reader.GetString("Text.Value", text));
        EXPECT_EQ(std::string(text.GetCString()), value);
        EXPECT_TRUE(reader.GetInt("Text.Sentinel", sentinel));
        EXPECT_EQ(sentinel, 1u);
    }
    const loam::FileSpec index("/home/ann/My Index/");
    loam::FileSpec read;
    EXPECT_TRUE(prefs.SetFileSpec("IndexLocation", index));
    EXPECT_TRUE(prefs.GetFileSpec("IndexLocation", read));
    EXPECT_STREQ(read.GetPath().GetCString(), index.GetPath().GetCString());
}

// Runs `work` in a child process and gives its exit code.
pid_t Spawn(const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work() ? 0 : 1);
    return child;
}

int WaitFor(pid_t child) {
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(PreferencesTest, AnotherProcessSeesEveryWrite) {
    loam::String text;
    ASSERT_TRUE(prefs.SetString("UI.Last", "parent"));
    ASSERT_TRUE(prefs.GetString("UI.Last", text));
    EXPECT_EQ(WaitFor(Spawn([this] { return prefs.SetString("UI.Last", "child"); })), 0);
    EXPECT_TRUE(prefs.GetString("UI.Last", text));
    EXPECT_STREQ(text.GetCString(), "child");

    constexpr int writers = 2;
    constexpr int writes = 100;
    const auto key = [](int writer, int i) {
        return "Race.W" + std::to_string(writer) + "_" + std::to_string(i);
    };
    pid_t children[writers];
    for (int writer = 0; writer < writers; ++writer) {
        children[writer] = Spawn([&key, writer] {
            loam::Preferences own("", nullptr);
            bool ok = true;
            for (int i = 0; i < writes; ++i)
                ok = own.SetInt(key(writer, i).c_str(), i) && ok;
            return ok;
        });
    }
    for (pid_t child : children)
        EXPECT_EQ(WaitFor(child), 0);
    int found = 0;
    for (int writer = 0; writer < writers; ++writer) {
        for (int i = 0; i < writes; ++i) {
            uint32_t number = 0xFFFF;
            found += prefs.GetInt(key(writer, i).c_str(), number) && number == uint32_t(i);
        }
    }
    EXPECT_EQ(found, writers * writes);
}

struct NamedNode : loam::TreeNode {
    explicit NamedNode(char name) : name(name) {}
    char name;
};

// The tree as "r(a b(c))", checking that every back link agrees with the forward ones.
std::string Render(const loam::TreeNode* node) {
    std::string text(1, static_cast<const NamedNode*>(node)->name);
    if (!node->GetFirstChild())
        return text;
    text += "(";
    const loam::TreeNode* previous = nullptr;
    for (const loam::TreeNode* child = node->GetFirstChild(); child; child = child->GetNext()) {
        if (child->GetParent() != node || child->GetPrevious() != previous)
            return "broken links at " + text;
        text += (previous ? " " : "") + Render(child);
        previous = child;
    }
    return text + ")";
}

// Groups are built by AddToParent and freed by DeleteTree, the only edits the store makes.
TEST(TreeNodeTest, AddedChildrenKeepOrderAndLinks) {
    auto* r = new NamedNode('r');
    auto* a = new NamedNode('a');
    auto* b = new NamedNode('b');
    a->AddToParent(r);
    b->AddToParent(r);
    (new NamedNode('c'))->AddToParent(b);
    (new NamedNode('d'))->AddToParent(r);
    EXPECT_EQ(Render(r), "r(a b(c) d)");
    b->DeleteTree();
    EXPECT_EQ(Render(r), "r(a d)");
    r->DeleteTree();
}

} // namespace
