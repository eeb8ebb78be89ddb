#include "OW_config.h"

#include "OW_DateTimeZone.hpp"

#include "OW_Types.hpp"

namespace OpenWBEM {
namespace DateTimeZone {
namespace {

// Up to four characters as one number, so that a word is looked up with a single switch.
constexpr UInt32 key(const char* text, std::size_t length) {
    UInt32 packed = 0;
    for (std::size_t i = 0; i < length; ++i) {
        packed = packed << 8 | static_cast<unsigned char>(text[i]);
    }
    return packed;
}

template <std::size_t N>
constexpr UInt32 key(const char (&literal)[N]) {
    static_assert(N <= 5, "four characters at most");
    return key(literal, N - 1);
}

const int UNKNOWN = 101;

// A to I, then K to M count eastwards, N to Y westwards.
int hoursOfLetter(char letter) {
    if (letter >= 'A' && letter <= 'I') {
        return letter - 'A' + 1;
    }
    if (letter >= 'K' && letter <= 'M') {
        return letter - 'K' + 10;
    }
    if (letter >= 'N' && letter <= 'Y') {
        return -(letter - 'N' + 1);
    }
    if (letter == 'Z') {
        return 0;
    }
    return letter == 'J' ? LOCAL : UNKNOWN;
}

int hoursOfName(const char* text, std::size_t length) {
    switch (key(text, length)) {
    case key("UTC"):
    case key("GMT"):
    case key("WET"):
        return 0;
    case key("BST"):
    case key("IST"):
    case key("WEST"):
    case key("CET"):
        return 1;
    case key("CEST"):
    case key("EET"):
        return 2;
    case key("EEST"):
    case key("MSK"):
        return 3;
    case key("MSD"):
        return 4;
    case key("WST"):
        return 8;
    case key("ADT"):
        return -3;
    case key("AST"):
    case key("EDT"):
        return -4;
    case key("EST"):
    case key("ET"):
    case key("CDT"):
        return -5;
    case key("CST"):
    case key("CT"):
    case key("MDT"):
        return -6;
    case key("MST"):
    case key("MT"):
    case key("PDT"):
        return -7;
    case key("PST"):
    case key("PT"):
    case key("AKDT"):
        return -8;
    case key("AKST"):
        return -9;
    case key("HST"):
        return -10;
    default:
        return UNKNOWN;
    }
}

} // namespace

bool find(const char* text, std::size_t length, int& hoursEast) {
    if (length == 0 || length > 4) {
        return false;
    }
    hoursEast = length == 1 ? hoursOfLetter(text[0]) : hoursOfName(text, length);
    return hoursEast != UNKNOWN;
}

} // namespace DateTimeZone
} // namespace OpenWBEM
