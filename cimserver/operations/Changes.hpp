// The operations that change instances, answered by providers.
#pragma once

#include "cimserver/operations/Operations.hpp"
#include "cimserver/operations/Surroundings.hpp"

namespace cimserver::operations {

// What a provider is given is the real server's way: the instance is brought into the form of its
// class, and the provider is asked for the instance before it is changed or deleted, so that one
// that is not there is refused by getInstance. One of these calls is one entry into the provider's
// library.
void Carry(const CreateInstance& call, const Surroundings& around, ResultSink& sink);
/// With a property list the provider sees only the properties listed. Different from the real
/// server, the key bindings of the instance name are there too, as properties, unless the client
/// sent and listed these itself: without them a provider that looks at properties cannot tell which
/// instance is meant.
void Carry(const ModifyInstance& call, const Surroundings& around, ResultSink& sink);
void Carry(const DeleteInstance& call, const Surroundings& around, ResultSink& sink);
/// A modification whose list is the one property.
void Carry(const SetProperty& call, const Surroundings& around, ResultSink& sink);

} // namespace cimserver::operations
