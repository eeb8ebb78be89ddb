// UTF-8 and the case of letters, without the locale. Private to the library.
#pragma once

#include "OW_Types.hpp"

namespace OpenWBEM {
namespace Utf8 {

// Stands for a byte that is no UTF-8: one value per byte, none of them a character.
constexpr UInt32 INVALID_BYTE = 0x110000;

// Takes one character, or one byte that is no UTF-8, from the front of a range that is not empty.
UInt32 take(const char*& begin, const char* end);

// Writes a code point up to U+FFFF and returns the number of bytes, at most 3.
int put(UInt32 character, char* out);

// One letter for one letter, of the ranges that OW_String.hpp names. What has no other case stays.
UInt32 toLower(UInt32 character);
UInt32 toUpper(UInt32 character);
// toLower, and final sigma becomes sigma.
UInt32 fold(UInt32 character);

} // namespace Utf8
} // namespace OpenWBEM
