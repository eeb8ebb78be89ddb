#pragma once

#include "OW_config.h"

#include "OW_CIMNULL.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_DateTime.hpp"
#include "OW_Exception.hpp"
#include "OW_SafeBool.hpp"
#include "OW_Types.hpp"

#include <iosfwd>

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(CIMDateTime, OW_COMMON_API)

// The CIM datetime type (DMTF DSP0004): a point in time with its offset from UTC, or an interval.
// A small value without memory of its own, copied freely.
//
// Fields are kept as they are set or read, in range or not; only toDateTime and the orderings
// check them. A null object (made with CIMNULL or setNull) tests false, can be assigned to, and
// throws NULLCOWIntrusiveReferenceException on every other use.
class OW_COMMON_API CIMDateTime {
public:
    // The interval of length zero.
    CIMDateTime();
    explicit CIMDateTime(CIMNULL_t);
    // "yyyymmddhhmmss.mmmmmm+ooo" or "ddddddddhhmmss.mmmmmm:000". Only the sign at position 21 is
    // looked at: + and - make a point in time, : an interval, anything else throws
    // CIMDateTimeException. What is no digit reads as 0; an empty text is the zero interval.
    explicit CIMDateTime(const String& text);
    // The instant in local time with the offset that holds there and then.
    CIMDateTime(const DateTime& instant);
    // The interval of so many microseconds.
    explicit CIMDateTime(UInt64 microSeconds);

    void setNull();

    UInt16 getYear() const { return checked().m_year; }
    UInt8 getMonth() const { return checked().m_month; }
    UInt32 getDay() const { return checked().m_days; }
    // The day of the month, or the days of an interval: one field.
    UInt32 getDays() const { return checked().m_days; }
    UInt8 getHours() const { return checked().m_hours; }
    UInt8 getMinutes() const { return checked().m_minutes; }
    UInt8 getSeconds() const { return checked().m_seconds; }
    UInt32 getMicroSeconds() const { return checked().m_microSeconds; }
    // Minutes east of UTC.
    Int16 getUtc() const { return checked().m_utc; }
    bool isInterval() const { return checked().m_kind == E_INTERVAL; }

    CIMDateTime& setYear(UInt16 year);
    CIMDateTime& setMonth(UInt8 month);
    CIMDateTime& setDay(UInt32 day);
    CIMDateTime& setDays(UInt32 days);
    CIMDateTime& setHours(UInt8 hours);
    CIMDateTime& setMinutes(UInt8 minutes);
    CIMDateTime& setSeconds(UInt8 seconds);
    CIMDateTime& setMicroSeconds(UInt32 microSeconds);
    CIMDateTime& setUtc(Int16 minutesEast);
    CIMDateTime& setInterval(bool isInterval);

    String toString() const;

    // The same instant; DateTimeException for an interval or fields that make no date.
    DateTime toDateTime() const;

    // All fields alike, the offset included: the same instant in two zones is not equal.
    bool equal(const CIMDateTime& other) const;

    // In a condition: false for a null object and for one whose fields are all 0.
    OW_SAFE_BOOL(hasValue())

private:
    enum EKind : UInt8 { E_INTERVAL, E_POINT_IN_TIME, E_NULL };

    bool hasValue() const;

    const CIMDateTime& checked() const {
        if (m_kind == E_NULL) {
            throwNullCOWIntrusiveReference();
        }
        return *this;
    }
    CIMDateTime& checked() {
        if (m_kind == E_NULL) {
            throwNullCOWIntrusiveReference();
        }
        return *this;
    }

    UInt32 m_days;
    UInt32 m_microSeconds;
    UInt16 m_year;
    Int16 m_utc;
    UInt8 m_month;
    UInt8 m_hours;
    UInt8 m_minutes;
    UInt8 m_seconds;
    EKind m_kind;
};

inline bool operator==(const CIMDateTime& x, const CIMDateTime& y) {
    return x.equal(y);
}
inline bool operator!=(const CIMDateTime& x, const CIMDateTime& y) {
    return !x.equal(y);
}

// By instant: DateTimeException when one of them is an interval or makes no date.
OW_COMMON_API bool operator<(const CIMDateTime& x, const CIMDateTime& y);
inline bool operator>(const CIMDateTime& x, const CIMDateTime& y) {
    return y < x;
}
inline bool operator<=(const CIMDateTime& x, const CIMDateTime& y) {
    return !(y < x);
}
inline bool operator>=(const CIMDateTime& x, const CIMDateTime& y) {
    return !(x < y);
}

OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const CIMDateTime& value);

} // namespace OpenWBEM
