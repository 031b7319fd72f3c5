#include "loam/preferences.h"

#include <gtest/gtest.h>

#include "scratch_folder.h"

#include <functional>
#include <set>
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
    static fs::perms ModeOf(const std::string& path) { return fs::status(path).permissions(); }

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
        {"All", 0xFFFFFFFF, true, "-1"},
    };
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
        {"garbage", [&] { WriteStore(garbage); }, true},
        {"truncated group", [&] { WriteStore("[Options]\nOther=1\n[Opti"); }, true},
        {"no group", [&] { WriteStore("Count=1\n[Options]\n"); }, true},
        {"a folder", [&] { fs::create_directory(StorePath()); }, false},
        {"a fifo", [&] { ::mkfifo(StorePath().c_str(), 0600); }, true},
    };
    for (const auto& [what, make, writable] : cases) {
        SCOPED_TRACE(what);
        fs::remove_all(Path("config"));
        fs::create_directories(Path("config/Wendlemark"));
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

// One line that the key file refuses costs that line, or the values of its group when it is the
// group's own line; a write keeps the rest, keeps the file as it was beside it, and clears away
// what killed writes left behind.
TEST_F(PreferencesTest, AStrayLineCostsOnlyItself) {
    const std::string original = "[General]\nIndexLocation=/home/ann/index\n\n"
                                 "[Options]\nUseRegExp=true\nstray line\nAutoWildcards=true\n\n"
                                 "[UI/Search\x01Pattern]\nLost=1\n"
                                 "[UI/SearchPattern]\nCount=2\nItem0=a\n=no key\nItem1=b\n";
    WriteStore(original);
    for (const char* name : {"Sorvanta.conf.x1Y2z3", "Sorvanta.conf.aB3dE6", "Sorvanta.conf.1"})
        std::ofstream(Path("config/Wendlemark/") + name) << "left";
    fs::create_directory(Path("config/Wendlemark/Sorvanta.conf.folder"));
    const auto expectAllKept = [this](const char* index) {
        loam::String text;
        EXPECT_TRUE(prefs.GetString("IndexLocation", text));
        EXPECT_STREQ(text.GetCString(), index);
        bool flag = false;
        EXPECT_TRUE(prefs.GetBool("Options.UseRegExp", flag) && flag);
        EXPECT_TRUE(prefs.GetBool("Options.AutoWildcards", flag) && flag);
        uint32_t count = 0;
        EXPECT_TRUE(prefs.GetInt("UI.SearchPattern.Count", count));
        EXPECT_EQ(count, 2u);
        EXPECT_TRUE(prefs.GetString("UI.SearchPattern.Item1", text));
        EXPECT_STREQ(text.GetCString(), "b");
        EXPECT_FALSE(prefs.GetInt("UI.SearchPattern.Lost", count));
    };
    expectAllKept("/home/ann/index");
    EXPECT_TRUE(prefs.SetString("IndexLocation", "/srv/index"));
    expectAllKept("/srv/index");
    EXPECT_EQ(ReadWhole("config/Wendlemark/Sorvanta.conf.bad"), original);
    std::set<std::string> left;
    for (const auto& entry : fs::directory_iterator(Path("config/Wendlemark")))
        left.insert(entry.path().filename().string());
    EXPECT_EQ(left,
              (std::set<std::string>{"Sorvanta.conf", "Sorvanta.conf.bad", "Sorvanta.conf.lock",
                                     "Sorvanta.conf.1", "Sorvanta.conf.folder"}));

    // A clean file is replaced without a copy; the earlier one stays.
    EXPECT_TRUE(prefs.SetInt("Options.Limit", 5));
    EXPECT_EQ(ReadWhole("config/Wendlemark/Sorvanta.conf.bad"), original);
}

TEST_F(PreferencesTest, WithoutLocationNothingIsReadOrWritten) {
    loam::SetPreferenceLocation("Wendlemark", "");
    uint32_t number = 7;
    EXPECT_FALSE(prefs.SetInt("Options.Count", 1));
    EXPECT_FALSE(prefs.GetInt("Options.Count", number));
    EXPECT_EQ(number, 7u);
    EXPECT_FALSE(Exists("config"));
    loam::SetPreferenceLocation("", "Sorvanta");
    EXPECT_TRUE(prefs.SetInt("Count", 1));
    EXPECT_TRUE(Exists("config/Sorvanta.conf"));
}

TEST_F(PreferencesTest, StoreFilesArePrivate) {
    WriteStore("[General]\nOld=1\n");
    fs::permissions(StorePath(), fs::perms(0644));
    fs::permissions(Path("config/Wendlemark"), fs::perms(0755));
    EXPECT_TRUE(prefs.SetInt("New", 2));
    EXPECT_EQ(ModeOf(StorePath()), fs::perms(0600));
    EXPECT_EQ(ModeOf(StorePath() + ".lock"), fs::perms(0600));
    fs::remove_all(Path("config/Wendlemark"));
    EXPECT_TRUE(prefs.SetInt("New", 2));
    EXPECT_EQ(ModeOf(Path("config/Wendlemark")), fs::perms(0700));
    EXPECT_EQ(ModeOf(StorePath()), fs::perms(0600));
}

TEST_F(PreferencesTest, TextRoundTrips) {
    const std::string cases[] = {
        "  padded  ",
        "\ttab\r\n",
        "back\\slash \\n",
        "\xE9t\xE9\\ \n  latin",
        "",
        std::string(10000, 'x'),
    };
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
}

// Every process reads the store afresh and takes its lock to write, so none loses another's
// writes and none keeps a stale value.
TEST_F(PreferencesTest, AnotherProcessSeesEveryWrite) {
    constexpr int writers = 2, writes = 100;
    const auto key = [](int writer, int i) {
        return "Race.W" + std::to_string(writer) + "_" + std::to_string(i);
    };
    uint32_t number = 0;
    ASSERT_TRUE(prefs.SetInt(key(0, 1).c_str(), 99));
    ASSERT_TRUE(prefs.GetInt(key(0, 1).c_str(), number));
    pid_t children[writers];
    for (int writer = 0; writer < writers; ++writer) {
        children[writer] = ::fork();
        if (children[writer] != 0)
            continue;
        loam::Preferences own("", nullptr);
        bool ok = true;
        for (int i = 0; i < writes; ++i)
            ok = own.SetInt(key(writer, i).c_str(), i) && ok;
        ::_exit(ok ? 0 : 1);
    }
    for (pid_t child : children) {
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    int found = 0;
    for (int writer = 0; writer < writers; ++writer) {
        for (int i = 0; i < writes; ++i)
            found += prefs.GetInt(key(writer, i).c_str(), number) && number == uint32_t(i);
    }
    EXPECT_EQ(found, writers * writes);
}

} // namespace
