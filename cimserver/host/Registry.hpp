// Which provider serves which class.
#pragma once

#include "cimserver/host/Host.hpp"

#include "OW_AssociatorProviderInfo.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_Logger.hpp"
#include "OW_MethodProviderInfo.hpp"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cimserver::host {

/// Filled at start, then read by several threads. What is registered for one interface says nothing
/// of the others.
class Registry {
public:
    // These take the classes that provider `id` registers. A class that is taken stays with the one
    // who has it, and an error line says so.
    void Add(const std::string& id, const OpenWBEM::InstanceProviderInfo& info,
             const OpenWBEM::Logger& log);
    void Add(const std::string& id, const OpenWBEM::AssociatorProviderInfo& info,
             const OpenWBEM::Logger& log);
    void Add(const std::string& id, const OpenWBEM::MethodProviderInfo& info,
             const OpenWBEM::Logger& log);

    // The id of the provider: one that registered the class for all namespaces, else one that
    // registered it for this namespace, else what the qualifier names. None: a class without
    // provider; a qualifier that names no C++ provider is as none, with an error line.
    std::optional<std::string> ChooseForInstances(const Target& target,
                                                  const OpenWBEM::Logger& log) const;
    std::optional<std::string> ChooseForAssociations(const Target& target,
                                                     const OpenWBEM::Logger& log) const;
    /// For all namespaces as for one, who registered the whole class comes before who registered
    /// the method.
    std::optional<std::string> ChooseForMethod(const Target& target,
                                               const OpenWBEM::String& methodName,
                                               const OpenWBEM::Logger& log) const;

private:
    /// `class` or `namespace:class`, for methods also with `/method` behind it, folded, to the id.
    using Table = std::map<std::string, std::string>;

    static void Register(Table& table, const std::string& key, const std::string& id,
                         const OpenWBEM::Logger& log);
    template <class Info>
    static void RegisterClasses(Table& table, const std::string& id, const Info& info,
                                const OpenWBEM::Logger& log);
    static std::optional<std::string> Choose(const Table& table,
                                             const std::vector<std::string>& keys,
                                             const Target& target, const OpenWBEM::Logger& log);

    Table instances_;
    Table associations_;
    Table methods_;
};

} // namespace cimserver::host
