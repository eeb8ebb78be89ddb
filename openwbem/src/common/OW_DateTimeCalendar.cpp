#include "OW_config.h"

#include "OW_DateTimeCalendar.hpp"

#include <ctime>

namespace OpenWBEM {
namespace DateTimeCalendar {
namespace {

const Int64 SECONDS_PER_DAY = 86400;

bool isLeap(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// Days from 1 January 1970. The year is counted from March, so that the leap day comes last.
Int64 daysSinceEpoch(int year, int month, int day) {
    const Int64 y = month > 2 ? year : Int64(year) - 1;
    const Int64 era = (y >= 0 ? y : y - 399) / 400;
    const Int64 yearOfEra = y - era * 400;
    const Int64 monthFromMarch = month > 2 ? month - 3 : month + 9;
    const Int64 dayOfYear = (153 * monthFromMarch + 2) / 5;
    const Int64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468 + (day - 1);
}

long offsetAt(Int64 seconds) {
    const time_t t = seconds;
    struct tm local;
    return localtime_r(&t, &local) == nullptr ? 0 : local.tm_gmtoff;
}

Int64 secondsByMktime(const CalendarTime& time) {
    struct tm fields = {};
    fields.tm_year = time.year - 1900;
    fields.tm_mon = time.month - 1;
    fields.tm_mday = time.day;
    fields.tm_hour = time.hour;
    fields.tm_min = time.minute;
    fields.tm_sec = time.second;
    fields.tm_isdst = -1;
    return mktime(&fields);
}

} // namespace

int daysInMonth(int year, int month) {
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : days[month - 1];
}

Int64 secondsOfUtc(const CalendarTime& time) {
    return daysSinceEpoch(time.year, time.month, time.day) * SECONDS_PER_DAY +
           time.hour * Int64(3600) + time.minute * Int64(60) + time.second;
}

// The instant lies within a day of what it would be in UTC. When the offset is the same at both
// ends of that span there is no choice left; mktime is asked only near a change of the offset,
// because it looks at the machine's zone file each time when TZ is not set.
Int64 secondsOfLocal(const CalendarTime& time) {
    const Int64 asUtc = secondsOfUtc(time);
    const long before = offsetAt(asUtc - SECONDS_PER_DAY);
    if (before == offsetAt(asUtc + SECONDS_PER_DAY)) {
        return asUtc - before;
    }
    return secondsByMktime(time);
}

} // namespace DateTimeCalendar
} // namespace OpenWBEM
