// The headers of a CIM-XML request (DMTF DSP0200, encapsulation in HTTP).
#pragma once

#include "cimserver/cimxml/CimXml.hpp"
#include "cimserver/cimxml/MethodCall.hpp"

#include <string>

namespace cimserver::cimxml {

// `prefix` is that of all CIM headers of the request.

/// Throws ProtocolError when the headers are not those of an operation request that this server can
/// read: one call, in XML, in UTF-8.
void CheckHeaders(const Message& message, const std::string& prefix);

/// Throws ProtocolError when CIMMethod or CIMObject are not there once, or name something else than
/// the body.
void CheckAgainstHeaders(const MethodCall& call, const Message& message, const std::string& prefix);

} // namespace cimserver::cimxml
