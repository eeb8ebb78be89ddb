// The headers of a CIM-XML request (DMTF DSP0200, encapsulation in HTTP).
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

namespace cimserver::cimxml {

/// Throws ProtocolError when method or headers are not those of an operation request.
void CheckHeaders(const Message& message);

} // namespace cimserver::cimxml
