#include "loam/date_time.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <tuple>

namespace {

using loam::DateTime;

TEST(DateTimeTest, FileTimeCountsWholeSecondsFrom1970) {
    constexpr uint64_t of1970 = 116444736000000000ULL;
    const std::pair<uint64_t, int32_t> cases[] = {
        {of1970, 0},
        {of1970 + 9999999, 0},
    };
    for (const auto& [fileTime, seconds] : cases) {
        DateTime time;
        time.FromFileTime(fileTime);
        EXPECT_EQ(time.GetSeconds(), seconds) << fileTime;
    }
}

TEST(DateTimeTest, FormatShowsLocalTimeOfTheZone) {
    const std::tuple<const char*, int32_t, std::string, std::string> cases[] = {
        {"UTC0", 946684800, "%d/%m/%y %H:%M", "01/01/00 00:00"},
        {"JST-9", 946684800, "%d/%m/%y %H:%M", "01/01/00 09:00"},
        {"EST5", 0, "%d/%m/%y %H:%M", "31/12/69 19:00"},
        {"UTC0", 0, std::string(255, 'y'), std::string(255, 'y')},
        {"UTC0", 0, std::string(300, 'x'), ""},
    };
    for (const auto& [zone, seconds, format, text] : cases) {
        ScopedEnvironment tz("TZ", zone);
        tzset();
        loam::String out("untouched");
        DateTime(seconds).Format(out, format.c_str());
        EXPECT_EQ(out.GetCString(), text) << zone;
    }
    tzset();
}

} // namespace
