// From the call of a request to an operation with its parameters (DMTF DSP0200).
#pragma once

#include "cimserver/cimxml/MethodCall.hpp"
#include "cimserver/operations/Operations.hpp"

namespace cimserver::cimxml {

/// Names of operations and parameters are taken in any case. Throws ProtocolError when the elements
/// do not fit the DTD. A parameter that is unknown, given twice, missing or of the wrong type makes
/// it a FaultyCall with INVALID_PARAMETER and a text that names it. The user is left empty.
operations::Request ReadRequest(const MethodCall& call);

} // namespace cimserver::cimxml
