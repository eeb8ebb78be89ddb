#include "patchkeeper/LocalTime.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

namespace patchkeeper {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::array<std::string_view, 7> weekdays = {"Sun", "Mon", "Tue", "Wed",
                                                      "Thu", "Fri", "Sat"};
constexpr std::array<std::string_view, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::vector<std::string_view> Words(std::string_view text) {
    std::vector<std::string_view> words;
    for (auto start = text.find_first_not_of(whiteSpace); start != std::string_view::npos;
         start = text.find_first_not_of(whiteSpace, start)) {
        const auto end = std::min(text.find_first_of(whiteSpace, start), text.size());
        words.push_back(text.substr(start, end - start));
        start = end;
    }
    return words;
}

// A number of so many digits at least and at most.
std::optional<int> Number(std::string_view text, std::size_t least, std::size_t most) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.size() < least || text.size() > most || text.front() == '-' || error != std::errc() ||
        end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

template <std::size_t size>
std::optional<int> Position(const std::array<std::string_view, size>& names,
                            std::string_view name) {
    const auto* found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? std::nullopt
                                : std::optional(static_cast<int>(found - names.begin()));
}

bool ReadClock(std::string_view text, std::tm& parts) {
    if (text.size() != 8 || text[2] != ':' || text[5] != ':') {
        return false;
    }
    const auto hour = Number(text.substr(0, 2), 2, 2);
    const auto minute = Number(text.substr(3, 2), 2, 2);
    const auto second = Number(text.substr(6, 2), 2, 2);
    if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) {
        return false;
    }
    parts.tm_hour = *hour;
    parts.tm_min = *minute;
    parts.tm_sec = *second;
    return true;
}

bool ReadDay(const std::vector<std::string_view>& words, std::tm& parts) {
    const auto weekday = Position(weekdays, words[0]);
    const auto month = Position(months, words[1]);
    const auto day = Number(words[2], 1, 2);
    const auto year = Number(words[4], 4, 4);
    if (!weekday || !month || !day || !year) {
        return false;
    }
    parts.tm_mon = *month;
    parts.tm_mday = *day;
    parts.tm_year = *year - 1900;
    std::tm normal = parts;
    timegm(&normal); // a day that does not exist becomes another one
    return normal.tm_mon == *month && normal.tm_mday == *day && normal.tm_wday == *weekday;
}

std::tm Read(std::string_view text) {
    const auto words = Words(text);
    std::tm parts{};
    if (words.size() != 5 || !ReadClock(words[3], parts) || !ReadDay(words, parts)) {
        throw Unreadable("'" + std::string(text) +
                         "' is not a date and time of the form Fri Feb 13 23:59:00 2026");
    }
    return parts;
}

// Nothing when the local time of this machine has no such moment with or without summer time.
std::optional<std::time_t> Moment(const std::tm& wanted, int summerTime) {
    std::tm parts = wanted;
    parts.tm_isdst = summerTime;
    const std::time_t moment = mktime(&parts);
    if (parts.tm_isdst != summerTime || parts.tm_hour != wanted.tm_hour ||
        parts.tm_min != wanted.tm_min || parts.tm_mday != wanted.tm_mday) {
        return std::nullopt;
    }
    return moment;
}

} // namespace

std::time_t LocalMoment(std::string_view date, std::string_view time) {
    std::tm parts = Read(date);
    const std::tm clock = Read(time);
    parts.tm_hour = clock.tm_hour;
    parts.tm_min = clock.tm_min;
    parts.tm_sec = clock.tm_sec;
    const auto inSummer = Moment(parts, 1);
    const auto inWinter = Moment(parts, 0);
    if (inSummer && inWinter) {
        return std::min(*inSummer, *inWinter);
    }
    if (inSummer || inWinter) {
        return inSummer ? *inSummer : *inWinter;
    }
    throw Unreadable("there is no such local time as '" + std::string(time) + "' on the day of '" +
                     std::string(date) + "'");
}

} // namespace patchkeeper
