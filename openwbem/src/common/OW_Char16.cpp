#include "OW_Char16.hpp"

#include "OW_String.hpp"
#include "OW_Utf8.hpp"

#include <ostream>

namespace OpenWBEM {

namespace {

constexpr UInt16 REPLACEMENT = 0xFFFD;
constexpr UInt32 LARGEST_CODE_UNIT = 0xFFFF;

bool isHalfOfPair(UInt16 unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

UInt16 firstOf(const String& text) {
    if (text.empty()) {
        return 0;
    }
    const char* next = text.c_str();
    const UInt32 character = Utf8::take(next, next + text.length());
    return character > LARGEST_CODE_UNIT ? REPLACEMENT : static_cast<UInt16>(character);
}

} // namespace

Char16::Char16(const String& text) : m_value(firstOf(text)) {
}

String Char16::toString() const {
    if (m_value == 0) {
        return {};
    }
    char bytes[4];
    const int length = Utf8::put(isHalfOfPair(m_value) ? REPLACEMENT : m_value, bytes);
    return String(bytes, static_cast<size_t>(length));
}

std::ostream& operator<<(std::ostream& stream, const Char16& character) {
    return stream << character.toString();
}

} // namespace OpenWBEM
