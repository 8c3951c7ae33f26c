// Date: local wall-clock fields.
#include "date.h"

#include "table.h"

#include <cmath>
#include <cstdio>
#include <ctime>

namespace studio {

namespace {

// Fields are stored as they are set and brought into range when they are read, so that Year, Month and Day
// can be set one after the other.
struct Date {
    std::int32_t year = 0, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    double gmtOffset = 0; // hours
};

constexpr double kSecondsFrom1904To1970 = 2082844800.0;

Date& date(REALobject self) { return dataOf<Date>(self); }

std::time_t seconds(const Date& d) {
    std::tm fields = {};
    fields.tm_year = d.year - 1900;
    fields.tm_mon = d.month - 1;
    fields.tm_mday = d.day;
    fields.tm_hour = d.hour;
    fields.tm_min = d.minute;
    fields.tm_sec = d.second;
    return timegm(&fields);
}

void setFields(Date& d, const std::tm& fields) {
    d.year = fields.tm_year + 1900;
    d.month = fields.tm_mon + 1;
    d.day = fields.tm_mday;
    d.hour = fields.tm_hour;
    d.minute = fields.tm_min;
    d.second = fields.tm_sec;
}

void setLocal(Date& d, std::time_t time) {
    std::tm local = {};
    localtime_r(&time, &local);
    setFields(d, local);
    d.gmtOffset = double(local.tm_gmtoff) / 3600;
}

std::tm fields(const Date& d) {
    std::time_t time = seconds(d);
    std::tm result = {};
    gmtime_r(&time, &result);
    return result;
}

Date inRange(REALobject self) {
    Date d = date(self);
    setFields(d, fields(d));
    return d;
}

template <std::int32_t Date::*field>
FrameworkProperty fieldProperty(const char* name) {
    return property(
        name, "Integer", [](REALobject self) { return inRange(self).*field; },
        [](REALobject self, std::uint32_t, std::int32_t value) { date(self).*field = value; });
}

void setSQL(REALobject self, REALstring text) {
    Date d = date(self);
    d.hour = d.minute = d.second = 0;
    int read = std::sscanf(toUtf8(text).c_str(), "%d-%d-%d %d:%d:%d", &d.year, &d.month, &d.day, &d.hour,
                           &d.minute, &d.second);
    if (read != 3 && read != 6)
        raise("InvalidArgumentException", "expected a date as 2012-12-31 or 2012-12-31 23:59:59");
    date(self) = d;
}

REALstring sql(REALobject self, bool time) {
    Date d = inRange(self);
    char text[64];
    int length = std::snprintf(text, sizeof text, "%04d-%02d-%02d", d.year, d.month, d.day);
    if (time)
        std::snprintf(text + length, sizeof text - std::size_t(length), " %02d:%02d:%02d", d.hour, d.minute,
                      d.second);
    return makeString(text);
}

// In English, as on a Mac set up for the United States.
REALstring formatted(REALobject self, const char* format) {
    std::tm f = fields(date(self));
    char text[100];
    return heap().newString({text, std::strftime(text, sizeof text, format, &f)}, kREALTextEncodingUTF8);
}

/// A day and a time of day, to the second; a new one is now. Fields out of range carry over when they are
/// read.
///     Dim landing As New Date(1969, 7, 20, 20, 17, 40)
FrameworkClass dateClass() {
    FrameworkClass table = classWithData<Date>("Date");
    table.variantType = kREALVariantDate;
    table.constructor = +[](REALobject self) {
        new (instanceData(self)) Date();
        setLocal(date(self), std::time(nullptr));
    };
    table.properties = {
        /// The year, with all of its digits.
        ///     Print Str(landing.Year)
        fieldProperty<&Date::year>("Year"),
        /// The month, from 1 to 12.
        ///     Print Str(landing.Month)
        fieldProperty<&Date::month>("Month"),
        /// The day of the month, from 1.
        ///     Print Str(landing.Day)
        fieldProperty<&Date::day>("Day"),
        /// The hour, from 0 to 23.
        ///     Print Str(landing.Hour)
        fieldProperty<&Date::hour>("Hour"),
        /// The minute, from 0 to 59.
        ///     Print Str(landing.Minute)
        fieldProperty<&Date::minute>("Minute"),
        /// The second, from 0 to 59.
        ///     Print Str(landing.Second)
        fieldProperty<&Date::second>("Second"),
        /// The day of the week: 1 is Sunday, 7 is Saturday.
        ///     Print Str(landing.DayOfWeek)
        property("DayOfWeek", "Integer",
                 [](REALobject self) { return std::int32_t(fields(date(self)).tm_wday + 1); }),
        /// The day of the year, from 1.
        ///     Print Str(landing.DayOfYear)
        property("DayOfYear", "Integer",
                 [](REALobject self) { return std::int32_t(fields(date(self)).tm_yday + 1); }),
        /// The difference to Greenwich in hours. Setting it leaves the other fields as they are.
        ///     Print Str(landing.GMTOffset)
        property(
            "GMTOffset", "Double", [](REALobject self) { return date(self).gmtOffset; },
            [](REALobject self, std::uint32_t, double value) { date(self).gmtOffset = value; }),
        /// The seconds since the start of 1904, in the date's own zone.
        ///     landing.TotalSeconds = landing.TotalSeconds + 60
        property(
            "TotalSeconds", "Double",
            [](REALobject self) { return double(seconds(date(self))) + kSecondsFrom1904To1970; },
            [](REALobject self, std::uint32_t, double value) {
                std::time_t time = std::time_t(std::floor(value - kSecondsFrom1904To1970));
                std::tm utc = {};
                gmtime_r(&time, &utc);
                setFields(date(self), utc);
            }),
        /// The day as 1969-07-20. Setting it takes a time as well and otherwise sets midnight; raises
        /// InvalidArgumentException for other text.
        ///     Print landing.SQLDate
        property(
            "SQLDate", "String", [](REALobject self) { return sql(self, false); },
            [](REALobject self, std::uint32_t, REALstring text) { setSQL(self, text); }),
        /// The day and time as 1969-07-20 20:17:40. Setting it takes a day alone as well and then sets
        /// midnight; raises InvalidArgumentException for other text.
        ///     Print landing.SQLDateTime
        property(
            "SQLDateTime", "String", [](REALobject self) { return sql(self, true); },
            [](REALobject self, std::uint32_t, REALstring text) { setSQL(self, text); }),
        /// The day as 7/20/69.
        ///     Print landing.ShortDate
        property("ShortDate", "String", [](REALobject self) { return formatted(self, "%-m/%-d/%y"); }),
        /// The day as Sunday, July 20, 1969.
        ///     Print landing.LongDate
        property("LongDate", "String", [](REALobject self) { return formatted(self, "%A, %B %-d, %Y"); }),
        /// The day as Sun, Jul 20, 1969.
        ///     Print landing.AbbreviatedDate
        property("AbbreviatedDate", "String",
                 [](REALobject self) { return formatted(self, "%a, %b %-d, %Y"); }),
        /// The time as 8:17 PM.
        ///     Print landing.ShortTime
        property("ShortTime", "String", [](REALobject self) { return formatted(self, "%-I:%M %p"); }),
        /// The time as 8:17:40 PM.
        ///     Print landing.LongTime
        property("LongTime", "String", [](REALobject self) { return formatted(self, "%-I:%M:%S %p"); }),
        /// The week of the year, from 1; weeks start on Sunday.
        ///     Print Str(landing.WeekOfYear)
        property("WeekOfYear", "Integer",
                 [](REALobject self) {
                     std::tm f = fields(date(self));
                     int firstWeekday = (f.tm_wday - f.tm_yday % 7 + 7) % 7;
                     return std::int32_t((f.tm_yday + firstWeekday) / 7 + 1);
                 }),
    };
    table.methods = {
        /// The difference in seconds, which makes <, = and > work; zones are not compared.
        ///     Print Str(landing < New Date)
        method("Operator_Compare(other As Date) As Double",
               [](REALobject self, REALobject other) {
                   return double(seconds(date(self))) - double(seconds(date(other)));
               }),
        /// Makes the date of this moment, in local time.
        ///     Dim today As New Date
        method("Constructor", [](REALobject) {}),
        /// Makes a copy. Raises NilObjectException without a date.
        ///     Dim same As New Date(landing)
        method("Constructor(other As Date)",
               [](REALobject self, REALobject other) {
                   if (!other) raise("NilObjectException", "the Date to copy is nil");
                   date(self) = date(other);
               }),
        /// Makes a date of its fields.
        ///     Dim christmas As New Date(2012, 12, 24)
        method("Constructor(year As Integer, month As Integer, day As Integer, hour As Integer = 0, "
               "minute As Integer = 0, second As Integer = 0)",
               [](REALobject self, std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
                  std::int32_t minute, std::int32_t second) {
                   date(self) = {year, month, day, hour, minute, second, date(self).gmtOffset};
               }),
    };
    return table;
}

// Month, day and year as 12/31/2012, or as 2012-12-31.
bool parseDate(REALstring text, REALobject result) {
    if (!result) raise("NilObjectException", "the Date to set is nil");
    Date d = date(result);
    std::string utf8 = toUtf8(text);
    int used = 0;
    bool read = (std::sscanf(utf8.c_str(), " %d/%d/%d %n", &d.month, &d.day, &d.year, &used) == 3 ||
                 std::sscanf(utf8.c_str(), " %d-%d-%d %n", &d.year, &d.month, &d.day, &used) == 3) &&
                std::size_t(used) == utf8.size();
    if (!read || d.month < 1 || d.month > 12 || d.day < 1 || d.day > 31) return false;
    if (d.year < 100) d.year += d.year < 50 ? 2000 : 1900;
    d.hour = d.minute = d.second = 0;
    date(result) = d;
    return true;
}

/// Reading dates.
FrameworkFunctions dateFunctions() {
    return {
        /// Sets a date from 12/31/2012 or 2012-12-31, at midnight, and returns False for any other text;
        /// years below 100 lie from 1950 to 2049. Raises NilObjectException without a date.
        ///     Dim day As New Date
        ///     Print Str(ParseDate("12/31/2012", day))
        method("ParseDate(text As String, value As Date) As Boolean", parseDate),
    };
}

const Registrar registrar([] { return FrameworkPart{{dateClass()}, dateFunctions()}; });

} // namespace

REALobject newDate(std::time_t time) {
    REALobject result = newInstance("Date");
    setLocal(date(result), time);
    return result;
}

} // namespace studio
