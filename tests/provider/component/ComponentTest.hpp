#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/common/SharedList.hpp"
#include "provider/component/ComponentProvider.hpp"

#include <string>
#include <vector>

// The name of the class, as clients write it.
inline constexpr const char* COMPONENT = "ZNX_SoftwareUpdateComponent";

// The class provider by itself; no update is selected.
class ComponentTest : public ToolTest {
protected:
    ComponentTest() {
        SelectComponentsOf("", "");
        tool.Plays("--errors", test_support::ToolAnswer().Output("A description.\n"));
    }

    void Prints(const std::string& output) {
        tool.Plays("--components", test_support::ToolAnswer().Output(output));
    }

    // The instances of an enumeration; what it prints is not shown.
    OpenWBEM::CIMInstanceArray Enumerate() const {
        OpenWBEM::CIMInstanceArray instances;
        PrintedBy([&] { instances = calls.EnumInstances(COMPONENT); });
        return instances;
    }

    // The failure in which an enumeration ends.
    test_support::CimError EnumerationError() const {
        test_support::CimError error;
        PrintedBy(
            [&] { error = test_support::CimErrorOf([&] { calls.EnumInstances(COMPONENT); }); });
        return error;
    }

    OpenWBEM::CIMInstance Get(const char* id) const {
        return calls.GetInstance(test_support::PathOf(COMPONENT, "InstanceID", id));
    }

    static OpenWBEM::CIMInstance Chosen(const OpenWBEM::CIMValue& id,
                                        const OpenWBEM::CIMValue& install) {
        OpenWBEM::CIMInstance instance(COMPONENT);
        instance.setProperty("InstanceID", id);
        instance.setProperty("Install", install);
        return instance;
    }

    void Choose(const char* id, bool install = true) const {
        calls.ModifyInstance(Chosen(OpenWBEM::CIMValue(id), OpenWBEM::CIMValue(install)));
    }

    ComponentProvider componentProvider;
    test_support::Calls calls{componentProvider, env};
};
