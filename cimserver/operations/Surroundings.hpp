// What an operation works on.
#pragma once

#include "cimserver/host/Host.hpp"
#include "cimserver/mof/Mof.hpp"

#include "OW_String.hpp"

#include <string>

namespace cimserver::operations {

/// For the time of one call.
struct Surroundings {
    const mof::Schema& schema;
    host::ProviderSource& providers;
    OpenWBEM::String nameSpace; ///< without leading slash
    OpenWBEM::String hostName;
    std::string user;
};

} // namespace cimserver::operations
