// An error that is found when part of the answer has left already (DMTF DSP0200, on chunked
// responses). The standard's third trailer, CIMError, is for requests that are no call of an
// operation; these are refused before anything leaves.
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

#include "OW_CIMException.hpp"

namespace cimserver::cimxml {

/// The error's number and its text on one line: line breaks are blanks; what cannot stand in a
/// header, bytes above ASCII and the percent sign are written as `%` and two hexadecimal digits.
/// At most 4,096 bytes of it; the rest is cut off between two characters.
HeaderList TrailersOf(const OpenWBEM::CIMException& error);

} // namespace cimserver::cimxml
