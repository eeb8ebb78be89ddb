// The operations that read instances, answered by providers.
#pragma once

#include "cimserver/operations/Operations.hpp"
#include "cimserver/operations/Surroundings.hpp"

namespace cimserver::operations {

// What a provider is given and what becomes of its results is the real server's way: the
// enumerations name the class as it is declared, call the providers of all subclasses too, and
// change nothing of what comes back.
void Carry(const GetInstance& call, const Surroundings& around, ResultSink& sink);
void Carry(const EnumerateInstances& call, const Surroundings& around, ResultSink& sink);
void Carry(const EnumerateInstanceNames& call, const Surroundings& around, ResultSink& sink);
/// The provider is asked for the instance with a list of this one property. What the class declares
/// and the instance lacks is null.
void Carry(const GetProperty& call, const Surroundings& around, ResultSink& sink);

} // namespace cimserver::operations
