#include "OW_config.h"

#include "OW_DateTimeParse.hpp"

#include "OW_DateTimeCalendar.hpp"
#include "OW_DateTimeZone.hpp"

#include <cstring>

namespace OpenWBEM {
namespace DateTimeParse {

using DateTimeCalendar::CalendarTime;
using DateTimeCalendar::daysInMonth;
using DateTimeCalendar::secondsOfLocal;
using DateTimeCalendar::secondsOfUtc;

namespace {

struct Word {
    const char* begin;
    std::size_t length;
    bool hasColon;

    char operator[](std::size_t i) const { return begin[i]; }
};

bool isSpace(char c) {
    return static_cast<unsigned char>(c) <= ' ' &&
           (c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\v');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Far above every field's range, so that longer numbers fail the range check.
const int NUMBER_LIMIT = 1000000;

bool toNumber(const Word& word, int& number) {
    if (word.length == 0) {
        return false;
    }
    int value = 0;
    for (std::size_t i = 0; i < word.length; ++i) {
        if (!isDigit(word[i])) {
            return false;
        }
        if (value < NUMBER_LIMIT) {
            value = value * 10 + (word[i] - '0');
        }
    }
    number = value;
    return true;
}

bool inRange(const CalendarTime& time) {
    return time.year >= 0 && time.year <= 9999 && time.month >= 1 && time.month <= 12 &&
           time.day >= 1 && time.day <= 31 && time.hour >= 0 && time.hour <= 23 &&
           time.minute >= 0 && time.minute <= 59 && time.second >= 0 && time.second <= 60;
}

const std::size_t CIM_LENGTH = 25;
const std::size_t CIM_POINT = 14;
const std::size_t CIM_SIGN = 21;

bool looksLikeCimForm(const char* text, std::size_t length) {
    return length == CIM_LENGTH && text[CIM_POINT] == '.' &&
           (text[CIM_SIGN] == '+' || text[CIM_SIGN] == '-');
}

bool cimField(const char* text, std::size_t begin, std::size_t length, int& field) {
    int value = 0;
    for (std::size_t i = begin; i < begin + length; ++i) {
        const char c = text[i] == '*' ? '0' : text[i];
        if (!isDigit(c)) {
            return false;
        }
        value = value * 10 + (c - '0');
    }
    field = value;
    return true;
}

bool parseCimForm(const char* text, Instant& instant) {
    CalendarTime time;
    int microsecond = 0;
    int offset = 0;
    if (!cimField(text, 0, 4, time.year) || !cimField(text, 4, 2, time.month) ||
        !cimField(text, 6, 2, time.day) || !cimField(text, 8, 2, time.hour) ||
        !cimField(text, 10, 2, time.minute) || !cimField(text, 12, 2, time.second) ||
        !cimField(text, CIM_POINT + 1, 6, microsecond) ||
        !cimField(text, CIM_SIGN + 1, 3, offset) || !inRange(time)) {
        return false;
    }
    const Int64 east = text[CIM_SIGN] == '-' ? -offset : offset;
    instant.seconds = secondsOfUtc(time) - east * 60;
    instant.microseconds = static_cast<UInt32>(microsecond);
    instant.isLocal = false;
    return true;
}

struct FreeForm {
    bool hasWeekday = false;
    bool hasMonth = false;
    bool hasTime = false;
    bool hasDay = false;
    bool hasYear = false;
    bool hasZone = false;
    int hoursEast = 0;
    CalendarTime time = {};
};

constexpr UInt32 firstThree(const char* text) {
    return static_cast<UInt32>(static_cast<unsigned char>(text[0])) << 16 |
           static_cast<UInt32>(static_cast<unsigned char>(text[1])) << 8 |
           static_cast<UInt32>(static_cast<unsigned char>(text[2]));
}

struct Name {
    template <std::size_t N>
    constexpr Name(const char (&literal)[N])
        : whole(literal), length(N - 1), start(firstThree(literal)) {}

    const char* whole;
    std::size_t length;
    UInt32 start;
};

constexpr Name WEEKDAYS[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                             "Thursday", "Friday", "Saturday"};
constexpr Name MONTHS[] = {"January", "February", "March",     "April",   "May",      "June",
                           "July",    "August",   "September", "October", "November", "December"};

// The position of the name that the word is, whole or by its first three letters, else -1.
template <std::size_t N>
int indexOfName(const Word& word, const Name (&names)[N]) {
    if (word.length < 3) {
        return -1;
    }
    const UInt32 start = firstThree(word.begin);
    for (std::size_t i = 0; i < N; ++i) {
        const Name& name = names[i];
        if (start == name.start) {
            const bool whole =
                name.length == word.length && std::memcmp(name.whole, word.begin, word.length) == 0;
            return word.length == 3 || whole ? static_cast<int>(i) : -1;
        }
    }
    return -1;
}

// Fields between runs of colons, two or three of them.
bool readTime(const Word& word, CalendarTime& time) {
    int fields[3] = {0, 0, 0};
    std::size_t count = 0;
    std::size_t i = 0;
    while (i < word.length) {
        if (word[i] == ':') {
            ++i;
            continue;
        }
        const std::size_t begin = i;
        while (i < word.length && word[i] != ':') {
            ++i;
        }
        if (count == 3 || !toNumber(Word{word.begin + begin, i - begin, false}, fields[count])) {
            return false;
        }
        ++count;
    }
    time.hour = fields[0];
    time.minute = fields[1];
    time.second = fields[2];
    return count >= 2;
}

bool readYear(const Word& word, int& year) {
    if (!toNumber(word, year)) {
        return false;
    }
    if (year < 1900) {
        year += 1900;
    }
    return true;
}

bool takeZone(const Word& word, FreeForm& form) {
    int hoursEast = 0;
    if (form.hasZone || !DateTimeZone::find(word.begin, word.length, hoursEast)) {
        return false;
    }
    if (hoursEast != DateTimeZone::LOCAL) {
        form.hasZone = true;
        form.hoursEast = hoursEast;
    }
    return true;
}

bool takeNumber(const Word& word, FreeForm& form) {
    if (!form.hasDay) {
        form.hasDay = true;
        return toNumber(word, form.time.day);
    }
    if (!form.hasYear) {
        form.hasYear = true;
        return readYear(word, form.time.year);
    }
    return false;
}

// Gives the word the first meaning that fits it; false when none does.
bool take(const Word& word, FreeForm& form) {
    if (isDigit(word[0]) && !word.hasColon) {
        return takeNumber(word, form);
    }
    if (!form.hasWeekday && indexOfName(word, WEEKDAYS) >= 0) {
        form.hasWeekday = true;
        return true;
    }
    if (!form.hasMonth) {
        const int month = indexOfName(word, MONTHS);
        if (month >= 0) {
            form.hasMonth = true;
            form.time.month = month + 1;
            return true;
        }
    }
    if (!form.hasTime && word.hasColon) {
        form.hasTime = true;
        return readTime(word, form.time);
    }
    return takeZone(word, form);
}

bool takeWords(const char* text, std::size_t length, FreeForm& form) {
    std::size_t i = 0;
    while (i < length) {
        if (isSpace(text[i])) {
            ++i;
            continue;
        }
        Word word = {text + i, 0, false};
        for (; i < length && !isSpace(text[i]); ++i, ++word.length) {
            word.hasColon = word.hasColon || text[i] == ':';
        }
        if (!take(word, form)) {
            return false;
        }
    }
    return form.hasMonth && form.hasDay && form.hasTime && form.hasYear && inRange(form.time);
}

bool twoDigits(const char* text, int& number) {
    return toNumber(Word{text, 2, false}, number);
}

// `Thu Jan  2 03:04:05 UTC 2025`, as date(1) writes it: every field at its place. False
// for anything else, which takeWords may still understand; both read this form alike.
bool takeDateForm(const char* text, std::size_t length, FreeForm& form) {
    const std::size_t zoneBegin = 20;
    const std::size_t yearLength = 4;
    if (length < zoneBegin + 1 + 1 + yearLength || text[3] != ' ' || text[7] != ' ' ||
        text[10] != ' ' || text[13] != ':' || text[16] != ':' || text[19] != ' ' ||
        text[length - yearLength - 1] != ' ') {
        return false;
    }
    const int month = indexOfName(Word{text + 4, 3, false}, MONTHS);
    const bool blankDay = text[8] == ' ';
    const Word day = {text + (blankDay ? 9 : 8), blankDay ? 1U : 2U, false};
    const Word zone = {text + zoneBegin, length - zoneBegin - 1 - yearLength, false};
    form.time.month = month + 1;
    return month >= 0 && indexOfName(Word{text, 3, false}, WEEKDAYS) >= 0 &&
           toNumber(day, form.time.day) && twoDigits(text + 11, form.time.hour) &&
           twoDigits(text + 14, form.time.minute) && twoDigits(text + 17, form.time.second) &&
           takeZone(zone, form) &&
           readYear(Word{text + length - yearLength, yearLength, false}, form.time.year) &&
           inRange(form.time);
}

// False where the shift would go back into the year before.
bool shiftBack(CalendarTime& time, int hours) {
    time.hour -= hours;
    if (time.hour >= 0) {
        return true;
    }
    time.hour += 24;
    if (--time.day >= 1) {
        return true;
    }
    if (--time.month < 1) {
        return false;
    }
    time.day = daysInMonth(time.year, time.month);
    return true;
}

// Every day beyond the month's end becomes the first of the next, whether the shift led there or
// not.
void shiftForward(CalendarTime& time, int hours) {
    time.hour += hours;
    if (time.hour > 23) {
        time.hour -= 24;
        ++time.day;
    }
    if (time.day > daysInMonth(time.year, time.month)) {
        time.day = 1;
        if (++time.month > 12) {
            time.month = 1;
            ++time.year;
        }
    }
}

bool shiftToUtc(CalendarTime& time, int hoursEast) {
    if (hoursEast > 0) {
        return shiftBack(time, hoursEast);
    }
    if (hoursEast < 0) {
        shiftForward(time, -hoursEast);
    }
    return true;
}

bool parseFreeForm(const char* text, std::size_t length, Instant& instant) {
    FreeForm form;
    if (!takeDateForm(text, length, form)) {
        form = FreeForm();
        if (!takeWords(text, length, form)) {
            return false;
        }
    }
    if (form.hasZone) {
        if (!shiftToUtc(form.time, form.hoursEast)) {
            return false;
        }
        instant.seconds = secondsOfUtc(form.time);
    } else {
        instant.seconds = secondsOfLocal(form.time);
    }
    instant.microseconds = 0;
    instant.isLocal = !form.hasZone;
    return true;
}

} // namespace

bool parse(const char* text, std::size_t length, Instant& instant) {
    if (looksLikeCimForm(text, length)) {
        return parseCimForm(text, instant);
    }
    return parseFreeForm(text, length, instant);
}

} // namespace DateTimeParse
} // namespace OpenWBEM
