// The elements of CIM-XML (DMTF DSP0203 2.x).
#pragma once

#include <string_view>

namespace cimserver::cimxml {

bool IsDtdElement(std::string_view name);

/// True for elements that hold text and nothing else.
bool HoldsText(std::string_view name);

/// True for elements that hold no other elements.
bool HoldsNoElements(std::string_view name);

} // namespace cimserver::cimxml
