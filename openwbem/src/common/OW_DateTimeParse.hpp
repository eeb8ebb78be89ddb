#pragma once

#include "OW_Types.hpp"

#include <cstddef>
#include <ctime>

namespace OpenWBEM {

// How a date text becomes an instant; the two forms are described at DateTime. Private to the
// library. Nothing here allocates memory: inventories hold a date per line.
namespace DateTimeParse {

struct Instant {
    time_t seconds;
    UInt32 microseconds;
    // Which of the two the text was written in, for messages that show it as it was meant.
    bool isLocal;
};

// False when the text is in neither form. The instant may lie before 1970.
bool parse(const char* text, std::size_t length, Instant& instant);

} // namespace DateTimeParse
} // namespace OpenWBEM
