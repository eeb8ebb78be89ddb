// Texts of the C++ library for the provider API.
#pragma once

#include "OW_String.hpp"

#include <string>

namespace cimserver::host {

inline OpenWBEM::String Text(const std::string& text) {
    return OpenWBEM::String(text.c_str());
}

} // namespace cimserver::host
