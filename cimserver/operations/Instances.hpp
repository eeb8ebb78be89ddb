// The operations on instances, answered by providers.
#pragma once

#include "cimserver/host/Host.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

#include <string>

namespace cimserver::operations {

/// What an operation works on, for the time of one call.
struct Surroundings {
    const mof::Schema& schema;
    host::ProviderSource& providers;
    OpenWBEM::String nameSpace; ///< without leading slash
    std::string user;
};

// What a provider is given and what becomes of its results is the real server's way: the
// enumerations name the class as it is declared, call the providers of all subclasses too, and
// change nothing of what comes back.
void Carry(const GetInstance& call, const Surroundings& around, ResultSink& sink);
void Carry(const EnumerateInstances& call, const Surroundings& around, ResultSink& sink);
void Carry(const EnumerateInstanceNames& call, const Surroundings& around, ResultSink& sink);

} // namespace cimserver::operations
