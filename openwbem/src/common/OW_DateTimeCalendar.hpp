#pragma once

#include "OW_Types.hpp"

namespace OpenWBEM {

// From calendar fields to seconds. Private to the library.
namespace DateTimeCalendar {

// A date and time of day by the calendar, in a zone that is known from elsewhere. The day may lie
// beyond the month's end and the second may be 60.
struct CalendarTime {
    int year;
    int month; // 1 to 12
    int day;
    int hour;
    int minute;
    int second;
};

// By the Gregorian rule.
int daysInMonth(int year, int month);

// Seconds since 1970 when the calendar is UTC's, by the Gregorian rule, month in range.
Int64 secondsOfUtc(const CalendarTime& time);

// The same when it is the local calendar. A time that the zone skips or has twice is what mktime
// makes of it when it is not told about daylight saving.
Int64 secondsOfLocal(const CalendarTime& time);

} // namespace DateTimeCalendar
} // namespace OpenWBEM
