#pragma once

#include <ctime>
#include <stdexcept>
#include <string>
#include <string_view>

namespace patchkeeper {

// The moment that two texts name in the local time of this machine: the day of `date` and the time
// of day of `time`. Both are whole texts of the form `Fri Feb 13 23:59:00 2026`, blanks and a
// newline around them allowed. Of a time that comes twice, when clocks are put back, it is the
// first one. Throws Unreadable for every other text, for a day or time that does not exist, and for
// a weekday that is not that of the day.
std::time_t LocalMoment(std::string_view date, std::string_view time);

// what() is a sentence without a full stop.
class Unreadable : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace patchkeeper
