#pragma once

#include "loam/string.h"

#include <cstdint>

namespace loam {

class DateTimeSpan {
public:
    DateTimeSpan() = default;
    explicit DateTimeSpan(int32_t seconds) : seconds(seconds) {}
    int32_t GetSeconds() const { return seconds; }

private:
    int32_t seconds = 0;
};

// A point in time: signed 32-bit seconds since 1 January 1970 UTC, as the index stores it.
class DateTime {
public:
    DateTime() = default;
    DateTime(int32_t seconds) : seconds(seconds) {}

    static DateTime Now();
    // From a count of 100-nanosecond intervals since 1601.
    void FromFileTime(uint64_t fileTime);
    int32_t GetSeconds() const { return seconds; }

    bool operator>(const DateTime& other) const { return seconds > other.seconds; }
    bool operator<(const DateTime& other) const { return seconds < other.seconds; }
    bool operator==(const DateTime& other) const = default;
    DateTimeSpan operator-(const DateTime& other) const;

    // The value as local calendar time through strftime.
    void Format(String& out, const char* format) const;

private:
    int32_t seconds = 0;
};

} // namespace loam
