// Calls of the methods that classes declare.
#pragma once

#include "cimserver/operations/Operations.hpp"
#include "cimserver/operations/Surroundings.hpp"

namespace cimserver::operations {

/// The real server's way: a method of an instance is called only after getInstance of the class's
/// provider has found that instance. The method's provider sees all in-parameters that the class
/// declares, in that order and of these types, null where the client sent none, and finds the
/// out-parameters prepared.
void Carry(const InvokeMethod& call, const Surroundings& around, ResultSink& sink);

} // namespace cimserver::operations
