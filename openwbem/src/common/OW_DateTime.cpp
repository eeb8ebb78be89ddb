#include "OW_config.h"

#include "OW_DateTime.hpp"

#include "OW_DateTimeParse.hpp"
#include "OW_String.hpp"

#include <chrono>
#include <cstring>
#include <string>

namespace OpenWBEM {

OW_DEFINE_EXCEPTION_WITH_ID(DateTime)

const char DateTime::DEFAULT_FORMAT[] = "%c";

namespace {

// asctime_r's: 26 for the years it is meant for; longer years make a longer text.
const std::size_t C_FORM_SIZE = 64;

struct tm utcFields(time_t t) {
    struct tm fields = {};
    gmtime_r(&t, &fields);
    return fields;
}

struct tm localFields(time_t t) {
    struct tm fields = {};
    localtime_r(&t, &fields);
    return fields;
}

// Without the newline that asctime_r adds.
std::string cForm(const struct tm& fields) {
    char text[C_FORM_SIZE] = "";
    asctime_r(&fields, text);
    return std::string(text, std::strcspn(text, "\n"));
}

[[noreturn]] void throwNotRepresentable(const struct tm& fields) {
    const std::string message = "Unable to represent time \"" + cForm(fields) + "\" as a time_t";
    OW_THROW(DateTimeException, message.c_str());
}

// -Wformat-nonliteral is off for this function only: the format is the caller's by design.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::size_t strftimeInto(std::string& text, const char* format, const struct tm& fields) {
    return std::strftime(&text[0], text.size(), format, &fields);
}
#pragma GCC diagnostic pop

[[noreturn]] void throwInvalid(const String& text) {
    const std::string message = std::string("Invalid DateTime: ") + text.c_str();
    OW_THROW(DateTimeException, message.c_str());
}

} // namespace

DateTime::DateTime(const String& text) : m_time(0), m_microseconds(0) {
    DateTimeParse::Instant instant;
    if (!DateTimeParse::parse(text.c_str(), text.length(), instant)) {
        throwInvalid(text);
    }
    if (instant.seconds < 0) {
        throwNotRepresentable(instant.isLocal ? localFields(instant.seconds)
                                              : utcFields(instant.seconds));
    }
    m_time = instant.seconds;
    m_microseconds = instant.microseconds;
}

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second,
                   UInt32 microsecond, ETimeOffset timeOffset)
    : m_time(0), m_microseconds(0) {
    set(year, month, day, hour, minute, second, microsecond, timeOffset);
}

struct tm DateTime::fields(ETimeOffset timeOffset) const {
    return timeOffset == E_LOCAL_TIME ? localFields(m_time) : utcFields(m_time);
}

void DateTime::setFields(struct tm fields, ETimeOffset timeOffset) {
    fields.tm_isdst = timeOffset == E_LOCAL_TIME ? -1 : 0;
    const time_t t = timeOffset == E_LOCAL_TIME ? mktime(&fields) : timegm(&fields);
    if (t < 0) {
        throwNotRepresentable(fields);
    }
    m_time = t;
}

int DateTime::getYear(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_year + 1900;
}
int DateTime::getMonth(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_mon + 1;
}
int DateTime::getDay(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_mday;
}
int DateTime::getHour(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_hour;
}
int DateTime::getMinute(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_min;
}
int DateTime::getSecond(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_sec;
}
int DateTime::getDow(ETimeOffset timeOffset) const {
    return fields(timeOffset).tm_wday;
}

void DateTime::setYear(int year, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_year = year - 1900;
    setFields(changed, timeOffset);
}

void DateTime::setMonth(int month, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_mon = month - 1;
    setFields(changed, timeOffset);
}

void DateTime::setDay(int day, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_mday = day;
    setFields(changed, timeOffset);
}

void DateTime::setHour(int hour, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_hour = hour;
    setFields(changed, timeOffset);
}

void DateTime::setMinute(int minute, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_min = minute;
    setFields(changed, timeOffset);
}

void DateTime::setSecond(int second, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_sec = second;
    setFields(changed, timeOffset);
}

void DateTime::setTime(int hour, int minute, int second, ETimeOffset timeOffset) {
    struct tm changed = fields(timeOffset);
    changed.tm_hour = hour;
    changed.tm_min = minute;
    changed.tm_sec = second;
    setFields(changed, timeOffset);
}

void DateTime::set(time_t t, UInt32 microseconds) {
    m_time = t;
    m_microseconds = microseconds;
}

void DateTime::set(int year, int month, int day, int hour, int minute, int second,
                   UInt32 microseconds, ETimeOffset timeOffset) {
    struct tm all = {};
    all.tm_year = year - 1900;
    all.tm_mon = month - 1;
    all.tm_mday = day;
    all.tm_hour = hour;
    all.tm_min = minute;
    all.tm_sec = second;
    setFields(all, timeOffset);
    m_microseconds = microseconds;
}

void DateTime::setToCurrent() {
    const auto now = std::chrono::duration_cast<std::chrono::microseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    m_time = now / 1000000;
    m_microseconds = static_cast<UInt32>(now % 1000000);
}

void DateTime::addDays(long days) {
    m_time += days * 86400;
}

void DateTime::addWeeks(long weeks) {
    addDays(weeks * 7);
}

void DateTime::addMonths(long months) {
    struct tm changed = fields(E_UTC_TIME);
    changed.tm_mon += static_cast<int>(months);
    setFields(changed, E_UTC_TIME);
}

void DateTime::addYears(long years) {
    struct tm changed = fields(E_UTC_TIME);
    changed.tm_year += static_cast<int>(years);
    setFields(changed, E_UTC_TIME);
}

String DateTime::toString(ETimeOffset timeOffset) const {
    return String((cForm(fields(timeOffset)) + '\n').c_str());
}

// A blank more than asked for tells an empty result from one that did not fit.
String DateTime::toString(const char* format, ETimeOffset timeOffset) const {
    const struct tm shown = fields(timeOffset);
    const std::string withBlank = std::string(format) + ' ';
    std::string text(withBlank.size() + 64, '\0');
    std::size_t length = 0;
    while ((length = strftimeInto(text, withBlank.c_str(), shown)) == 0) {
        text.resize(text.size() * 2);
    }
    return String(text.c_str(), length - 1);
}

String DateTime::toStringGMT() const {
    return toString(E_UTC_TIME);
}

Int16 DateTime::getGMTOffsetMinutesNow() {
    struct tm local;
    return DateTime(std::time(nullptr)).toLocal(local);
}

Int16 DateTime::toLocal(struct tm& local) const {
    local = localFields(m_time);
    return static_cast<Int16>(local.tm_gmtoff / 60);
}

} // namespace OpenWBEM
