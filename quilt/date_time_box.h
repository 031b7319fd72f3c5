#pragma once

#include "loam/date_time.h"
#include "loam/string.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>

namespace quilt {

// A time of day. Setting refuses a value that no clock shows.
struct TimeOfDay {
    uint8_t hour = 0;
    uint8_t minute = 0;
    uint8_t second = 0;

    // False, and nothing changes, unless hour <= 23 and minute, second <= 59.
    bool Set(int32_t newHour, int32_t newMinute, int32_t newSecond);
};

// A day of the calendar; `month` counts from 0.
struct CalendarDate {
    int32_t day = 1;
    int32_t month = 0;
    int32_t year = 1970;

    // `newMonth` counts from 1. False, and nothing changes, for a month outside 1 to 12 or a
    // day outside that month in that year.
    bool Set(int32_t newDay, int32_t newMonth, int32_t newYear);
    // The days of `month` (1 to 12) in `year`, by the Gregorian calendar.
    static int32_t GetMonthLength(int32_t month, int32_t year);
};

// What a date and time box holds: local calendar time, the month from 1. Without a value the
// box shows nothing and answers no date or time.
struct DateTimeFields {
    int32_t year = 1970;
    int32_t month = 1;
    int32_t day = 1;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;
    bool valid = false;

    static DateTimeFields FromDateTime(const loam::DateTime& time);
    // False when the fields are no valid local time of the range a DateTime holds.
    bool ToDateTime(loam::DateTime& time) const;
};

// The formats that SetFormat builds.
enum DateTimeFormatKind : int32_t {
    DateTimeFormatTime12 = 0,        // hours on the 12-hour clock, minutes, AM or PM
    DateTimeFormatTime12Seconds = 1, // the same with seconds
    DateTimeFormatTime24 = 2,
    DateTimeFormatTime24Seconds = 3,
    DateTimeFormatShortDate = 4, // the locale's short date
};

// The picture of a format kind, the separator quoted between the fields of a time; empty for a
// kind that has none.
loam::String BuildDateTimeFormat(int32_t kind, const char* timeSeparator,
                                 const char* shortDateFormat);
// The locale's separator between hours and minutes, and its short date as a picture.
loam::String GetLocaleTimeSeparator();
loam::String GetLocaleShortDateFormat();
// The text that a picture shows for the fields: d dd ddd dddd, M MM MMM MMMM, y yy yyyy,
// h hh H HH, m mm, s ss, t tt, text in single quotes as it stands ('' is one quote), and any
// other byte as it stands.
loam::String FormatDateTime(const char* picture, const DateTimeFields& fields);

// A box that shows one date and time in a format and lets the user change it. Reading and
// writing the date or the time alone works on the present value, the rest kept.
class DateTimeBoxImp : public virtual WindowImp {
public:
    bool SetDateTime(const loam::DateTime& time);
    bool GetDateTime(loam::DateTime& time);
    bool SetTime(const TimeOfDay& time);
    // False when the box holds no value.
    bool GetTime(TimeOfDay& time);
    bool SetDate(const CalendarDate& date);
    bool GetDate(CalendarDate& date);
    // A kind without a picture, or an empty one, leaves the format as it was.
    void SetFormat(int32_t kind);
    // An empty picture changes nothing.
    void SetFormatText(const loam::String& picture);

protected:
    // The platform keeps the value and shows it in the picture. Reading fails without a native
    // window; writing then does nothing.
    virtual bool GetFields(DateTimeFields& fields) = 0;
    virtual bool SetFields(const DateTimeFields& fields) = 0;
    virtual void SetPicture(const loam::String& picture) = 0;
};

class DateTimeBox : public Window {
public:
    DateTimeBox();

    bool SetDateTime(const loam::DateTime& time) { return boxImp->SetDateTime(time); }
    bool GetDateTime(loam::DateTime& time) { return boxImp->GetDateTime(time); }
    bool SetTime(const TimeOfDay& time) { return boxImp->SetTime(time); }
    bool GetTime(TimeOfDay& time) { return boxImp->GetTime(time); }
    bool SetDate(const CalendarDate& date) { return boxImp->SetDate(date); }
    bool GetDate(CalendarDate& date) { return boxImp->GetDate(date); }
    void SetFormat(int32_t kind) { boxImp->SetFormat(kind); }
    void SetFormatText(const loam::String& picture) { boxImp->SetFormatText(picture); }

private:
    DateTimeBoxImp* boxImp;
};

} // namespace quilt
