#pragma once

#include <cstddef>

namespace OpenWBEM {

// The abbreviations of time zones that a date text may carry. Private to the library.
namespace DateTimeZone {

// What the abbreviation J stands for: local time.
const int LOCAL = 100;

// Hours east of UTC of an abbreviation, which is case-sensitive. False for an unknown one.
bool find(const char* text, std::size_t length, int& hoursEast);

} // namespace DateTimeZone
} // namespace OpenWBEM
