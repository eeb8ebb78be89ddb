// Between the texts of a request and those of the provider API.
#pragma once

#include "OW_CIM.hpp"

#include <string_view>

namespace cimserver::cimxml {

inline OpenWBEM::String ToString(std::string_view text) {
    return OpenWBEM::String(text.data(), text.size());
}

/// Throws CIMException INVALID_PARAMETER.
[[noreturn]] inline void Refuse(const OpenWBEM::String& text) {
    OW_THROWCIMMSG(OpenWBEM::CIMException::INVALID_PARAMETER, text.c_str());
}

} // namespace cimserver::cimxml
