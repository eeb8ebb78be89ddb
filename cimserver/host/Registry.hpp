// Which provider serves which class.
#pragma once

#include "cimserver/host/Host.hpp"

#include "OW_InstanceProviderInfo.hpp"
#include "OW_Logger.hpp"

#include <map>
#include <optional>
#include <string>

namespace cimserver::host {

/// Filled at start, then read by several threads.
class Registry {
public:
    /// Takes the classes that provider `id` registers. A class that is taken stays with the one who
    /// has it, and an error line says so.
    void Add(const std::string& id, const OpenWBEM::InstanceProviderInfo& info,
             const OpenWBEM::Logger& log);

    /// The id of the provider: one that registered the class for all namespaces, else one that
    /// registered it for this namespace, else what the qualifier names. None: a class without
    /// provider; a qualifier that names no C++ provider is as none, with an error line.
    std::optional<std::string> Choose(const Target& target, const OpenWBEM::Logger& log) const;

private:
    std::map<std::string, std::string>
        instances_; ///< `class` or `namespace:class`, folded, to the id
};

} // namespace cimserver::host
