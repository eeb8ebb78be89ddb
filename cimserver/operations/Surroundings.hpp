// What an operation works on.
#pragma once

#include "cimserver/host/Host.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

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
    ProviderWatch* watch;

    /// For a call into a provider library.
    host::CallInfo InfoFor(const std::string& operation) const {
        host::CallInfo info{operation, user};
        if (watch != nullptr) {
            info.entered = [to = watch](const std::string& what) { to->Entered(what); };
            info.left = [to = watch] { to->Left(); };
        }
        return info;
    }
};

} // namespace cimserver::operations
