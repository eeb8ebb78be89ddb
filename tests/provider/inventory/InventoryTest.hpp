#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/common/SharedList.hpp"
#include "provider/inventory/InventoryProvider.hpp"

#include <string>

// The names of the two classes, as clients write them.
inline constexpr const char* IDENTITY = "ZNX_SoftwareIdentity";
inline constexpr const char* CARTRIDGE = "ZNX_ElementManagerCartridgeVersionInfo";

// The class provider by itself, after initialize.
class InventoryTest : public ToolTest {
protected:
    InventoryTest() {
        provider.initialize(env);
        gInventoryList = OpenWBEM::Array<InventoryObject>();
    }

    void Prints(const std::string& output) {
        tool.Plays("", test_support::ToolAnswer().Output(output));
    }

    static std::string Line(const std::string& name, const std::string& version,
                            const std::string& classification = "Other") {
        return name + "\t" + version + "\t" + classification + "\tThu Jan  2 03:04:05 UTC 2025\n";
    }

    OpenWBEM::CIMInstance Get(const char* id) const {
        return calls.GetInstance(test_support::PathOf(IDENTITY, "InstanceID", id));
    }

    InventoryProvider provider;
    test_support::Calls calls{provider, env};
};
