// What is associated with an object, and the associations themselves: for an instance the providers
// of the association classes tell it, for a class the schema.
#pragma once

#include "cimserver/operations/Operations.hpp"
#include "cimserver/operations/Surroundings.hpp"

namespace cimserver::operations {

// What a provider is given and what becomes of its results is the real server's way: every
// association class that comes into question is asked once under its declared name, whether the
// source instance exists is not looked at, and of the results nothing is filtered; they get the
// name of this host.
void Carry(const Associators& call, const Surroundings& around, ResultSink& sink);
void Carry(const AssociatorNames& call, const Surroundings& around, ResultSink& sink);
void Carry(const References& call, const Surroundings& around, ResultSink& sink);
void Carry(const ReferenceNames& call, const Surroundings& around, ResultSink& sink);

} // namespace cimserver::operations
