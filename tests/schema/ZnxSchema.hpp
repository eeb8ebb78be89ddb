// The schema as it stands in schema/, read once per test program.
#pragma once

#include "cimserver/mof/Mof.hpp"

namespace test {

/// In the order of declaration.
inline constexpr const char* znxClasses[] = {
    "ZNX_AvailableSoftwareUpdate",
    "ZNX_ScheduledSoftwareUpdate",
    "ZNX_ActiveSoftwareUpdate",
    "ZNX_HistorySoftwareUpdate",
    "ZNX_SoftwareUpdateComponent",
    "ZNX_AvailableSoftwareFileName",
    "ZNX_AvailableSoftwareFileList",
    "ZNX_SoftwareIdentity",
    "ZNX_ElementManagerCartridgeVersionInfo",
};

inline const cimserver::mof::Schema& ZnxSchema() {
    static const cimserver::mof::Schema schema = [] {
        cimserver::mof::Schema read;
        read.AddFile(SCHEMA_DIRECTORY "/qualifiers.mof");
        read.AddFile(SCHEMA_DIRECTORY "/ZNX.mof");
        return read;
    }();
    return schema;
}

} // namespace test
