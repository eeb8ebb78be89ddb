// The pass over all provider libraries at the start of the server.
#pragma once

#include "cimserver/host/Registry.hpp"
#include "cimserver/host/Store.hpp"

#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace cimserver::host {

/// Opens every file of the directories whose name ends in `.so`, asks the object it makes what it
/// offers and which classes it registers, and destroys object and library again. A provider that
/// wants to be polled or to export indications is initialized and kept instead. What goes wrong
/// with one library is an error line and hinders no other.
class StartUp {
public:
    StartUp(Store& store, Registry& registry, const OpenWBEM::LoggerRef& log,
            OpenWBEM::ProviderEnvironmentIFCRef env);

    void Run(const std::vector<std::filesystem::path>& directories);

private:
    void Inspect(const std::filesystem::path& file);
    void InspectObject(const std::string& id, Store::Opened opened);
    void AskForClasses(const std::string& id, OpenWBEM::CppProviderBaseIFC& object);

    Store& store_;
    Registry& registry_;
    const OpenWBEM::LoggerRef& log_;
    OpenWBEM::ProviderEnvironmentIFCRef env_;
};

} // namespace cimserver::host
