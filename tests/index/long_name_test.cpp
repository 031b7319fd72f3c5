#include "index/long_name.h"

#include "walk_fixture.h"

#include <glib.h>

#include <map>

namespace {

using walk_test::WalkTest;

const std::string mark = LongNameMark;

std::string Repeat(const std::string& text, int count) {
    std::string repeated;
    for (int i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

std::string StandIn(const std::string& name) {
    char stored[MaxIndexNameBlock] = {};
    const int32_t length =
        MakeLongNameStandIn(name.c_str(), static_cast<int32_t>(name.size()), stored);
    return std::string(stored, static_cast<size_t>(length));
}

// As much of the head as fits and about 32 bytes of the end, each cut where a character starts:
// a record holds 251 bytes, the mark takes 3.
TEST(LongNameStandIn, KeepsHeadAndTailWholeCharactersAndFitsARecord) {
    std::string digits;
    for (int i = 0; i < 255; ++i)
        digits += static_cast<char>('0' + i % 10);
    const std::string cjk = "\xE6\x96\x87", accented = "\xC3\xA9";
    const struct {
        const char* what;
        std::string name;
        size_t head, tail;
    } cases[] = {
        {"252 ASCII bytes", digits.substr(0, 252), 216, 32},
        {"255 ASCII bytes", digits, 216, 32},
        {"84 CJK characters", Repeat(cjk, 84), 72 * 3, 10 * 3},
        {"85 CJK characters", Repeat(cjk, 85), 72 * 3, 10 * 3},
        {"83 CJK characters and an extension", Repeat(cjk, 83) + ".pdf", 72 * 3, 9 * 3 + 4},
        {"two-byte characters", Repeat(accented, 127) + "a", 108 * 2, 15 * 2 + 1},
        {"bytes that are no UTF-8", std::string(255, '\xFF'), 216, 32},
        {"continuation bytes alone", std::string(255, '\x80'), 216, 29},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string stored = StandIn(c.name);
        EXPECT_EQ(stored, c.name.substr(0, c.head) + mark + c.name.substr(c.name.size() - c.tail));
        EXPECT_LE(stored.size(), static_cast<size_t>(MaxIndexNameLength));
        EXPECT_GE(stored.size(), static_cast<size_t>(MaxIndexNameLength - 3));
        const auto isUtf8 = [](const std::string& text) {
            return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr);
        };
        EXPECT_TRUE(!isUtf8(c.name) || isUtf8(stored));
    }
}

class LongNameTest : public WalkTest {
protected:
    // The real path of every record of an index of the tree, by its stored path.
    std::map<std::string, std::string> RealPaths() const {
        IndexData index;
        EXPECT_TRUE(index.Load(WriteIndex()));
        std::map<std::string, std::string> paths;
        for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
            const IndexRecord* record = index.GetRecord(ordinal);
            paths.emplace(index.GetPathOf(record).GetCString() + std::to_string(ordinal),
                          GetRealPathOf(index, record).GetCString());
        }
        return paths;
    }
};

// Entries whose names differ only where their stand-ins cut are told apart by kind, then by
// size, then by byte order; a real name that looks like a stand-in is itself.
TEST_F(LongNameTest, EntriesSharingAStandInAreToldApartByWhatTheRecordSays) {
    const std::string head(216, 'h'), tail(32, 't');
    const auto name = [&](char middle) { return head + std::string(7, middle) + tail; };
    const std::string standIn = head + mark + tail;
    ASSERT_EQ(StandIn(name('A')), standIn);
    MakeFile(name('A') + "/inside.txt", "1");
    MakeFile(name('B'), "123");
    MakeFile(name('C'), "12345");
    MakeFile(name('D'), "12345");
    MakeFile(standIn, "1234567");
    for (const char* entry : {"", "A", "B", "C", "D"})
        SetTime(*entry ? name(*entry) : standIn, 1000000);

    std::multiset<std::string> real;
    for (const auto& [stored, path] : RealPaths())
        real.insert(path);
    // C and D agree in all the record says: the first in byte order stands for both.
    const std::multiset<std::string> expected = {
        tree + "/",      Path(name('A')), Path(name('A') + "/inside.txt"),
        Path(name('B')), Path(name('C')), Path(name('C')),
        Path(standIn),
    };
    EXPECT_EQ(real, expected);
}

// An entry gone since the build keeps its stored name, and its path names nothing.
TEST_F(LongNameTest, AnEntryGoneSinceTheBuildKeepsItsStoredName) {
    const std::string longName = std::string(250, 'g') + ".bin";
    MakeFile(longName + "/inner.txt", "1");
    const loam::FileSpec file = WriteIndex();
    std::filesystem::remove_all(Path(longName));
    IndexData index;
    ASSERT_TRUE(index.Load(file));
    ASSERT_EQ(index.GetRecordCount(), 3);
    EXPECT_EQ(GetRealPathOf(index, index.GetRecord(2)).GetCString(),
              Path(StandIn(longName) + "/inner.txt"));
}

} // namespace
