// What the text functions of String read: its bytes, or those of a literal.
#pragma once

#include "OW_String.hpp"

#include <string_view>

namespace OpenWBEM {

inline std::string_view viewOf(const String& text) {
    return {text.c_str(), text.length()};
}

inline std::string_view viewOf(const char* text) {
    return text ? text : "";
}

} // namespace OpenWBEM
