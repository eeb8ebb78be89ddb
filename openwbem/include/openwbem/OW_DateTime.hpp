#pragma once

#include "OW_config.h"

#include "OW_CommonFwd.hpp"
#include "OW_Exception.hpp"
#include "OW_Types.hpp"

#include <ctime>

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(DateTime, OW_COMMON_API)

// An instant: seconds since 1 January 1970 UTC and microseconds. A small value, copied freely.
//
// Calendar fields are read and set either in UTC or in local time, which is the time zone of the
// process as the C library has it (TZ or the machine's default, POSIX localtime). A program that
// changes TZ while it runs calls tzset() before it goes on.
//
// Instants before 1970 cannot come out of a text or of calendar fields: DateTimeException.
class OW_COMMON_API DateTime {
public:
    enum ETimeOffset { E_LOCAL_TIME, E_UTC_TIME };

    // The format of strftime that gives the classic C form: "%c".
    static const char DEFAULT_FORMAT[];

    DateTime() : m_time(0), m_microseconds(0) {}
    explicit DateTime(time_t t, UInt32 microseconds = 0)
        : m_time(t), m_microseconds(microseconds) {}

    // Reads a text in one of two forms, else throws DateTimeException "Invalid DateTime: <text>"
    // ("Unable to represent time ..." when the instant lies before 1970).
    //
    // CIM form (DMTF DSP0004): yyyymmddhhmmss.mmmmmm+ooo, always 25 characters, ooo in minutes east
    // of UTC after + or -. An asterisk counts as the digit 0. Intervals are refused.
    //
    // Free form: words between white space, in any order but for day and year.
    //   weekday  optional, English, three letters or whole, capitalised; not compared with the date
    //   month    the same way of writing
    //   time     h:m or h:m:s, 24 hours
    //   day      the first word that begins with a digit
    //   year     the second such word; below 1900 it counts from 1900
    //   zone     optional: an abbreviation such as UTC, CET, EST or a military letter; local time
    //            without one, or with J
    // A day that the month does not have and second 60 carry over into what follows.
    //
    // Two peculiarities of zones are kept because clients may have met them: with a zone east of
    // UTC a shift back over 1 January is refused, and with a zone west of UTC a day that the month
    // does not have becomes the first of the next month.
    explicit DateTime(const String& text);

    DateTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
             UInt32 microsecond = 0, ETimeOffset timeOffset = E_LOCAL_TIME);

    int getYear(ETimeOffset timeOffset = E_LOCAL_TIME) const;
    int getMonth(ETimeOffset timeOffset = E_LOCAL_TIME) const; // 1 to 12
    int getDay(ETimeOffset timeOffset = E_LOCAL_TIME) const;   // 1 to 31
    int getHour(ETimeOffset timeOffset = E_LOCAL_TIME) const;
    int getMinute(ETimeOffset timeOffset = E_LOCAL_TIME) const;
    int getSecond(ETimeOffset timeOffset = E_LOCAL_TIME) const;
    int getDow(ETimeOffset timeOffset = E_LOCAL_TIME) const; // 0 is Sunday
    UInt32 getMicrosecond() const { return m_microseconds; }
    time_t get() const { return m_time; }

    // Fields out of their range carry over as mktime does it. setTime leaves date and microseconds
    // alone.
    void setYear(int year, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setMonth(int month, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setDay(int day, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setHour(int hour, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setMinute(int minute, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setSecond(int second, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setMicrosecond(UInt32 microseconds) { m_microseconds = microseconds; }
    void setTime(int hour, int minute, int second, ETimeOffset timeOffset = E_LOCAL_TIME);
    void set(time_t t, UInt32 microseconds = 0);
    void set(int year, int month, int day, int hour, int minute, int second,
             UInt32 microseconds = 0, ETimeOffset timeOffset = E_LOCAL_TIME);
    void setToCurrent();

    // Days and weeks are 24 hours each; months and years move the UTC calendar date.
    void addDays(long days);
    void addWeeks(long weeks);
    void addMonths(long months);
    void addYears(long years);
    void addSeconds(long seconds) { m_time += seconds; }
    void addMinutes(long minutes) { m_time += minutes * 60; }
    void addHours(long hours) { m_time += hours * 3600; }

    DateTime& operator+=(long seconds) {
        m_time += seconds;
        return *this;
    }
    DateTime& operator-=(long seconds) {
        m_time -= seconds;
        return *this;
    }

    // The classic C form of 24 characters and a newline, "Thu Jan  2 03:04:05 2025\n", with English
    // names whatever the locale. Zone and microseconds are not shown.
    String toString(ETimeOffset timeOffset = E_LOCAL_TIME) const;
    // What strftime makes of the format; nothing is added. The format is not null.
    String toString(const char* format, ETimeOffset timeOffset = E_LOCAL_TIME) const;
    // The older spelling of toString(E_UTC_TIME).
    String toStringGMT() const;

    // Minutes east of UTC, at this moment and at this instant. toLocal fills in the local fields.
    static Int16 getGMTOffsetMinutesNow();
    Int16 toLocal(struct tm& local) const;

private:
    struct tm fields(ETimeOffset timeOffset) const;
    void setFields(struct tm fields, ETimeOffset timeOffset);

    time_t m_time;
    UInt32 m_microseconds;
};

inline bool operator==(const DateTime& x, const DateTime& y) {
    return x.get() == y.get() && x.getMicrosecond() == y.getMicrosecond();
}
inline bool operator!=(const DateTime& x, const DateTime& y) {
    return !(x == y);
}
inline bool operator<(const DateTime& x, const DateTime& y) {
    return x.get() != y.get() ? x.get() < y.get() : x.getMicrosecond() < y.getMicrosecond();
}
inline bool operator>(const DateTime& x, const DateTime& y) {
    return y < x;
}
inline bool operator<=(const DateTime& x, const DateTime& y) {
    return !(y < x);
}
inline bool operator>=(const DateTime& x, const DateTime& y) {
    return !(x < y);
}

} // namespace OpenWBEM
