// Puts what a request asks for into its outcome.
#pragma once

#include "cimserver/cimxml/CimXml.hpp"
#include "cimserver/cimxml/MethodCall.hpp"

namespace cimserver::cimxml {

/// The operation; for the call of a method `InvokeMethod` and the method's name.
void Note(const MethodCall& call, Outcome& outcome);

/// The class of the object; no keys.
void Note(const operations::Call& call, Outcome& outcome);

} // namespace cimserver::cimxml
