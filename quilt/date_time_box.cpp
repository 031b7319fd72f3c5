#include "quilt/date_time_box.h"

#include "quilt/imp_factory.h"

#include <langinfo.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>

namespace quilt {

namespace {

constexpr char defaultTimeSeparator[] = ":";

constexpr int32_t monthLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

bool IsLeapYear(int32_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

loam::String Number(int32_t value, int32_t digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*d", digits, value);
    return loam::String(text);
}

int32_t WeekDay(const DateTimeFields& fields) {
    std::tm tm{};
    tm.tm_year = fields.year - 1900;
    tm.tm_mon = fields.month - 1;
    tm.tm_mday = fields.day;
    tm.tm_hour = 12;
    tm.tm_isdst = -1;
    std::mktime(&tm);
    return tm.tm_wday;
}

loam::String RenderDay(const DateTimeFields& fields, int32_t count) {
    if (count <= 2) {
        return Number(fields.day, count);
    }
    nl_item first = count == 3 ? ABDAY_1 : DAY_1;
    return loam::String(nl_langinfo(static_cast<nl_item>(first + WeekDay(fields))));
}

loam::String RenderMonth(const DateTimeFields& fields, int32_t count) {
    if (count <= 2) {
        return Number(fields.month, count);
    }
    nl_item first = count == 3 ? ABMON_1 : MON_1;
    return loam::String(nl_langinfo(static_cast<nl_item>(first + fields.month - 1)));
}

loam::String RenderYear(const DateTimeFields& fields, int32_t count) {
    if (count == 1) {
        return Number(fields.year % 10, 1);
    }
    return count == 2 ? Number(fields.year % 100, 2) : Number(fields.year, 1);
}

int32_t TwelveHour(int32_t hour) {
    return hour % 12 == 0 ? 12 : hour % 12;
}

loam::String RenderHour12(const DateTimeFields& fields, int32_t count) {
    return Number(TwelveHour(fields.hour), count >= 2 ? 2 : 1);
}

loam::String RenderHour24(const DateTimeFields& fields, int32_t count) {
    return Number(fields.hour, count >= 2 ? 2 : 1);
}

loam::String RenderMinute(const DateTimeFields& fields, int32_t count) {
    return Number(fields.minute, count >= 2 ? 2 : 1);
}

loam::String RenderSecond(const DateTimeFields& fields, int32_t count) {
    return Number(fields.second, count >= 2 ? 2 : 1);
}

loam::String RenderMarker(const DateTimeFields& fields, int32_t count) {
    const char* marker = fields.hour < 12 ? "AM" : "PM";
    return count >= 2 ? loam::String(marker) : loam::String(marker).Left(1);
}

// A run of one of these letters in a picture shows a field; its length chooses the form.
struct FieldLetter {
    char letter;
    loam::String (*render)(const DateTimeFields& fields, int32_t count);
};

constexpr FieldLetter fieldLetters[] = {
    {'d', RenderDay},    {'M', RenderMonth},  {'y', RenderYear},   {'h', RenderHour12},
    {'H', RenderHour24}, {'m', RenderMinute}, {'s', RenderSecond}, {'t', RenderMarker},
};

const FieldLetter* FindFieldLetter(char letter) {
    for (const FieldLetter& field : fieldLetters) {
        if (field.letter == letter) {
            return &field;
        }
    }
    return nullptr;
}

// Copies quoted text from after the opening quote; the index of the byte behind the closing one.
size_t CopyQuoted(const char* picture, size_t index, loam::String& out) {
    while (picture[index] != '\0') {
        if (picture[index] != '\'') {
            out.Append(picture[index++]);
        } else if (picture[index + 1] == '\'') {
            out.Append('\'');
            index += 2;
        } else {
            return index + 1;
        }
    }
    return index;
}

// The picture of a strftime conversion of the locale's date format.
struct DateConversion {
    char conversion;
    const char* picture;
};

constexpr DateConversion dateConversions[] = {
    {'d', "dd"},   {'e', "d"},    {'m', "MM"},       {'y', "yy"},
    {'Y', "yyyy"}, {'b', "MMM"},  {'h', "MMM"},      {'B', "MMMM"},
    {'a', "ddd"},  {'A', "dddd"}, {'D', "MM/dd/yy"}, {'F', "yyyy-MM-dd"},
};

const char* FindDateConversion(char conversion) {
    for (const DateConversion& entry : dateConversions) {
        if (entry.conversion == conversion) {
            return entry.picture;
        }
    }
    return nullptr;
}

} // namespace

bool TimeOfDay::Set(int32_t newHour, int32_t newMinute, int32_t newSecond) {
    if (newHour < 0 || newHour > 23 || newMinute < 0 || newMinute > 59 || newSecond < 0 ||
        newSecond > 59) {
        return false;
    }
    hour = static_cast<uint8_t>(newHour);
    minute = static_cast<uint8_t>(newMinute);
    second = static_cast<uint8_t>(newSecond);
    return true;
}

int32_t CalendarDate::GetMonthLength(int32_t month, int32_t year) {
    if (month < 1 || month > 12) {
        return 0;
    }
    return month == 2 && IsLeapYear(year) ? 29 : monthLengths[month - 1];
}

bool CalendarDate::Set(int32_t newDay, int32_t newMonth, int32_t newYear) {
    if (newDay < 1 || newDay > GetMonthLength(newMonth, newYear)) {
        return false;
    }
    day = newDay;
    month = newMonth - 1;
    year = newYear;
    return true;
}

DateTimeFields DateTimeFields::FromDateTime(const loam::DateTime& time) {
    std::time_t seconds = time.GetSeconds();
    std::tm local{};
    localtime_r(&seconds, &local);
    DateTimeFields fields;
    fields.year = local.tm_year + 1900;
    fields.month = local.tm_mon + 1;
    fields.day = local.tm_mday;
    fields.hour = local.tm_hour;
    fields.minute = local.tm_min;
    fields.second = local.tm_sec;
    fields.valid = true;
    return fields;
}

bool DateTimeFields::ToDateTime(loam::DateTime& time) const {
    if (!valid) {
        return false;
    }
    std::tm local{};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_sec = second;
    local.tm_isdst = -1;
    std::time_t seconds = std::mktime(&local);
    bool inRange = seconds >= std::numeric_limits<int32_t>::min() &&
                   seconds <= std::numeric_limits<int32_t>::max();
    if (seconds == -1 || !inRange || local.tm_mday != day || local.tm_mon != month - 1) {
        return false;
    }
    time = loam::DateTime(static_cast<int32_t>(seconds));
    return true;
}

loam::String BuildDateTimeFormat(int32_t kind, const char* timeSeparator,
                                 const char* shortDateFormat) {
    if (kind == DateTimeFormatShortDate) {
        return loam::String(shortDateFormat);
    }
    if (kind < DateTimeFormatTime12 || kind > DateTimeFormatTime24Seconds) {
        return loam::String();
    }
    bool twelveHours = kind == DateTimeFormatTime12 || kind == DateTimeFormatTime12Seconds;
    bool seconds = kind == DateTimeFormatTime12Seconds || kind == DateTimeFormatTime24Seconds;
    loam::String picture(twelveHours ? "hh'" : "HH'");
    picture.Append(timeSeparator);
    picture.Append("'mm");
    if (seconds) {
        picture.Append("'");
        picture.Append(timeSeparator);
        picture.Append("'ss");
    }
    if (twelveHours) {
        picture.Append(" tt");
    }
    return picture;
}

// The bytes between the hours and the minutes of the locale's time format.
loam::String GetLocaleTimeSeparator() {
    const char* format = nl_langinfo(T_FMT);
    const char* hours = std::strpbrk(format, "HIkl");
    while (hours != nullptr && (hours == format || hours[-1] != '%')) {
        hours = std::strpbrk(hours + 1, "HIkl");
    }
    if (hours == nullptr) {
        return loam::String(defaultTimeSeparator);
    }
    const char* end = std::strchr(hours + 1, '%');
    size_t length = end != nullptr ? static_cast<size_t>(end - hours - 1) : 0;
    if (length == 0) {
        return loam::String(defaultTimeSeparator);
    }
    return loam::String(hours + 1).Left(static_cast<int32_t>(length));
}

// Letters of the locale's format that are text, not fields, are quoted so that they stay text.
loam::String GetLocaleShortDateFormat() {
    const char* format = nl_langinfo(D_FMT);
    loam::String picture;
    for (size_t index = 0; format[index] != '\0'; ++index) {
        char byte = format[index];
        if (byte == '%' && format[index + 1] != '\0') {
            if (const char* converted = FindDateConversion(format[++index])) {
                picture.Append(converted);
            }
        } else if (FindFieldLetter(byte) != nullptr || byte == '\'') {
            picture.Append('\'');
            if (byte == '\'') {
                picture.Append("''");
            } else {
                picture.Append(byte);
            }
            picture.Append('\'');
        } else {
            picture.Append(byte);
        }
    }
    return picture;
}

loam::String FormatDateTime(const char* picture, const DateTimeFields& fields) {
    loam::String text;
    size_t index = 0;
    while (picture[index] != '\0') {
        char byte = picture[index];
        if (byte == '\'') {
            index = CopyQuoted(picture, index + 1, text);
            continue;
        }
        const FieldLetter* field = FindFieldLetter(byte);
        if (field == nullptr) {
            text.Append(byte);
            ++index;
            continue;
        }
        int32_t count = 0;
        while (picture[index] == byte) {
            ++count;
            ++index;
        }
        text.Append(field->render(fields, count));
    }
    return text;
}

bool DateTimeBoxImp::SetDateTime(const loam::DateTime& time) {
    return SetFields(DateTimeFields::FromDateTime(time));
}

bool DateTimeBoxImp::GetDateTime(loam::DateTime& time) {
    DateTimeFields fields;
    return GetFields(fields) && fields.ToDateTime(time);
}

// A box without a value takes the time on today's date.
bool DateTimeBoxImp::SetTime(const TimeOfDay& time) {
    DateTimeFields fields;
    if (!GetFields(fields)) {
        return false;
    }
    if (!fields.valid) {
        fields = DateTimeFields::FromDateTime(loam::DateTime::Now());
    }
    fields.hour = time.hour;
    fields.minute = time.minute;
    fields.second = time.second;
    return SetFields(fields);
}

bool DateTimeBoxImp::GetTime(TimeOfDay& time) {
    DateTimeFields fields;
    return GetFields(fields) && fields.valid && time.Set(fields.hour, fields.minute, fields.second);
}

// A box without a value takes the date at midnight.
bool DateTimeBoxImp::SetDate(const CalendarDate& date) {
    DateTimeFields fields;
    if (!GetFields(fields)) {
        return false;
    }
    if (!fields.valid) {
        fields = DateTimeFields{};
        fields.valid = true;
    }
    fields.day = date.day;
    fields.month = date.month + 1;
    fields.year = date.year;
    return SetFields(fields);
}

bool DateTimeBoxImp::GetDate(CalendarDate& date) {
    DateTimeFields fields;
    return GetFields(fields) && fields.valid && date.Set(fields.day, fields.month, fields.year);
}

void DateTimeBoxImp::SetFormat(int32_t kind) {
    SetFormatText(BuildDateTimeFormat(kind, GetLocaleTimeSeparator().GetCString(),
                                      GetLocaleShortDateFormat().GetCString()));
}

void DateTimeBoxImp::SetFormatText(const loam::String& picture) {
    if (!picture.IsEmpty()) {
        SetPicture(picture);
    }
}

DateTimeBox::DateTimeBox() : Window(GetImpFactory().CreateDateTimeBoxImp()) {
    boxImp = dynamic_cast<DateTimeBoxImp*>(GetImp());
}

} // namespace quilt
