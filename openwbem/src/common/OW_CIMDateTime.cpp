#include "OW_config.h"

#include "OW_CIMDateTime.hpp"

#include "OW_CIMModelView.hpp"
#include "OW_String.hpp"

#include <ostream>

namespace OpenWBEM {

OW_DEFINE_EXCEPTION_WITH_ID(CIMDateTime)

namespace {

const std::size_t SIGN = 21;
const int WITHOUT_ERROR = 0;

// The leading digits of a field, of which there are at most `length`.
UInt32 field(const char* text, std::size_t begin, std::size_t length) {
    UInt32 value = 0;
    for (const char* c = text + begin; c != text + begin + length && *c >= '0' && *c <= '9'; ++c) {
        value = value * 10 + static_cast<UInt32>(*c - '0');
    }
    return value;
}

UInt8 shortField(const char* text, std::size_t begin) {
    return static_cast<UInt8>(field(text, begin, 2));
}

// Decimal with leading zeros to at least `width` digits.
char* put(char* out, UInt32 value, int width) {
    static const UInt32 POWERS[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
    if (value < POWERS[width]) {
        for (int place = width; place > 0; --place, value /= 10) {
            out[place - 1] = static_cast<char>('0' + value % 10);
        }
        return out + width;
    }
    char digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0 || count < width);
    while (count > 0) {
        *out++ = digits[--count];
    }
    return out;
}

} // namespace

CIMDateTime::CIMDateTime()
    : m_days(0), m_microSeconds(0), m_year(0), m_utc(0), m_month(0), m_hours(0), m_minutes(0),
      m_seconds(0), m_kind(E_INTERVAL) {
}

CIMDateTime::CIMDateTime(CIMNULL_t) : CIMDateTime() {
    m_kind = E_NULL;
}

CIMDateTime::CIMDateTime(const String& text) : CIMDateTime() {
    if (text.empty()) {
        return;
    }
    const char* const t = text.c_str();
    const char sign = text.length() > SIGN ? t[SIGN] : '\0';
    if (sign != '+' && sign != '-' && sign != ':') {
        OW_THROW_ERR(CIMDateTimeException, "Invalid format for date time", WITHOUT_ERROR);
    }
    if (sign == ':') {
        m_days = field(t, 0, 8);
    } else {
        m_kind = E_POINT_IN_TIME;
        m_year = static_cast<UInt16>(field(t, 0, 4));
        m_month = shortField(t, 4);
        m_days = field(t, 6, 2);
        const Int16 offset = static_cast<Int16>(field(t, SIGN + 1, 3));
        m_utc = sign == '-' ? static_cast<Int16>(-offset) : offset;
    }
    m_hours = shortField(t, 8);
    m_minutes = shortField(t, 10);
    m_seconds = shortField(t, 12);
    m_microSeconds = field(t, 15, 6);
}

CIMDateTime::CIMDateTime(const DateTime& instant) : CIMDateTime() {
    struct tm local;
    m_utc = instant.toLocal(local);
    m_year = static_cast<UInt16>(local.tm_year + 1900);
    m_month = static_cast<UInt8>(local.tm_mon + 1);
    m_days = static_cast<UInt32>(local.tm_mday);
    m_hours = static_cast<UInt8>(local.tm_hour);
    m_minutes = static_cast<UInt8>(local.tm_min);
    m_seconds = static_cast<UInt8>(local.tm_sec);
    m_microSeconds = instant.getMicrosecond();
    m_kind = E_POINT_IN_TIME;
}

CIMDateTime::CIMDateTime(UInt64 microSeconds) : CIMDateTime() {
    const UInt64 seconds = microSeconds / 1000000;
    m_microSeconds = static_cast<UInt32>(microSeconds % 1000000);
    m_seconds = static_cast<UInt8>(seconds % 60);
    m_minutes = static_cast<UInt8>(seconds / 60 % 60);
    m_hours = static_cast<UInt8>(seconds / 3600 % 24);
    m_days = static_cast<UInt32>(seconds / 86400);
}

void CIMDateTime::setNull() {
    *this = CIMDateTime(CIMNULL);
}

CIMDateTime& CIMDateTime::setYear(UInt16 year) {
    checked().m_year = year;
    return *this;
}

CIMDateTime& CIMDateTime::setMonth(UInt8 month) {
    checked().m_month = month;
    return *this;
}

CIMDateTime& CIMDateTime::setDay(UInt32 day) {
    checked().m_days = day;
    return *this;
}

CIMDateTime& CIMDateTime::setDays(UInt32 days) {
    checked().m_days = days;
    return *this;
}

CIMDateTime& CIMDateTime::setHours(UInt8 hours) {
    checked().m_hours = hours;
    return *this;
}

CIMDateTime& CIMDateTime::setMinutes(UInt8 minutes) {
    checked().m_minutes = minutes;
    return *this;
}

CIMDateTime& CIMDateTime::setSeconds(UInt8 seconds) {
    checked().m_seconds = seconds;
    return *this;
}

CIMDateTime& CIMDateTime::setMicroSeconds(UInt32 microSeconds) {
    checked().m_microSeconds = microSeconds;
    return *this;
}

CIMDateTime& CIMDateTime::setUtc(Int16 minutesEast) {
    checked().m_utc = minutesEast;
    return *this;
}

CIMDateTime& CIMDateTime::setInterval(bool isInterval) {
    checked().m_kind = isInterval ? E_INTERVAL : E_POINT_IN_TIME;
    return *this;
}

std::size_t CIMModelView::writeText(const CIMDateTime& value, char* text) {
    const bool interval = value.isInterval();
    char* end = text;
    if (interval) {
        end = put(end, value.getDays(), 8);
    } else {
        end = put(end, value.getYear(), 4);
        end = put(end, value.getMonth(), 2);
        end = put(end, value.getDays(), 2);
    }
    end = put(end, value.getHours(), 2);
    end = put(end, value.getMinutes(), 2);
    end = put(end, value.getSeconds(), 2);
    *end++ = '.';
    end = put(end, value.getMicroSeconds(), 6);
    if (interval) {
        *end++ = ':';
        end = put(end, 0, 3);
    } else {
        const int utc = value.getUtc();
        *end++ = utc < 0 ? '-' : '+';
        end = put(end, static_cast<UInt32>(utc < 0 ? -utc : utc), 3);
    }
    return static_cast<std::size_t>(end - text);
}

String CIMDateTime::toString() const {
    char text[CIMModelView::longestDateTime];
    return String(text, CIMModelView::writeText(*this, text));
}

DateTime CIMDateTime::toDateTime() const {
    return DateTime(toString());
}

bool CIMDateTime::equal(const CIMDateTime& other) const {
    const CIMDateTime& x = checked();
    const CIMDateTime& y = other.checked();
    return x.m_kind == y.m_kind && x.m_days == y.m_days && x.m_microSeconds == y.m_microSeconds &&
           x.m_year == y.m_year && x.m_utc == y.m_utc && x.m_month == y.m_month &&
           x.m_hours == y.m_hours && x.m_minutes == y.m_minutes && x.m_seconds == y.m_seconds;
}

bool CIMDateTime::hasValue() const {
    return m_kind != E_NULL && (m_days != 0 || m_microSeconds != 0 || m_year != 0 || m_utc != 0 ||
                                m_month != 0 || m_hours != 0 || m_minutes != 0 || m_seconds != 0);
}

bool operator<(const CIMDateTime& x, const CIMDateTime& y) {
    return x.toDateTime() < y.toDateTime();
}

std::ostream& operator<<(std::ostream& stream, const CIMDateTime& value) {
    return stream << value.toString();
}

} // namespace OpenWBEM
