#include "loam/date_time.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <tuple>

namespace {

using loam::DateTime;

TEST(DateTimeTest, FormatShowsLocalTimeOfTheZone) {
    const std::tuple<const char*, int32_t, std::string, std::string> cases[] = {
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
