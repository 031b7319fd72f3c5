#include "loam/date_time.h"

#include <ctime>

namespace loam {

namespace {

// 100-nanosecond intervals from 1601 to 1970.
constexpr uint64_t fileTimeOf1970 = 116444736000000000ULL;
constexpr int64_t fileTimeTicksPerSecond = 10000000;
constexpr size_t formatBufferSize = 256;

int32_t LowBits(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

} // namespace

DateTime DateTime::Now() {
    return DateTime(LowBits(std::time(nullptr)));
}

void DateTime::FromFileTime(uint64_t fileTime) {
    // Signed, so that a time before 1970 comes out negative.
    const auto ticks = static_cast<int64_t>(fileTime - fileTimeOf1970);
    seconds = LowBits(ticks / fileTimeTicksPerSecond);
}

DateTimeSpan DateTime::operator-(const DateTime& other) const {
    return DateTimeSpan(LowBits(int64_t{seconds} - other.seconds));
}

void DateTime::Format(String& out, const char* format) const {
    out.Clear();
    const std::time_t value = seconds;
    std::tm fields{};
    if (!format || !localtime_r(&value, &fields))
        return;
    char buffer[formatBufferSize];
    if (std::strftime(buffer, sizeof buffer, format, &fields) > 0)
        out.Assign(buffer);
}

} // namespace loam
