// The texts of literals in MOF (DMTF DSP0004, appendix A): what is between quotes, and numbers.
#pragma once

#include "cimserver/mof/Syntax.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace cimserver::mof::syntax {

/// The text between the quotes with its escapes resolved, as UTF-8. `place` is that of the first
/// character after the quote; no line ends in between. Throws Error at a bad escape.
std::string Unescape(std::string_view raw, Place place);

/// A whole number of either sign whose magnitude fits in 64 bits.
struct Integer {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

/// Decimal, octal (leading 0), hexadecimal (0x) or binary (trailing b). Throws Error when the text
/// is not a whole number, or too big for any type.
Integer ToInteger(const Literal& number);

/// A real number; a decimal whole number is one as well. Throws Error when the text is neither.
double ToReal(const Literal& number);

/// How a text of any length and content appears in a message: quoted, cut short, printable.
std::string Quote(std::string_view text);

} // namespace cimserver::mof::syntax
