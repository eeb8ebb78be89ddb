#pragma once

#include "provider/available/AvaliableProvider.hpp"
#include "provider/component/ComponentTest.hpp"

#include <string>

// The name of the class, as clients write it.
inline constexpr const char* UPDATE = "ZNX_AvailableSoftwareUpdate";

// The class provider by itself with an empty list, and that of the components.
class AvailableTest : public ComponentTest {
protected:
    AvailableTest() { gAvaliableList = OpenWBEM::Array<AvaliableUpdate>(); }

    // Background tasks of a test end before the members go.
    ~AvailableTest() override { WaitForBackgroundTasks(); }

    void Lists(const std::string& output) {
        tool.Plays("--cache", test_support::ToolAnswer().Output(output));
    }

    static std::string Line(const std::string& name, const std::string& version = "1.0") {
        return name + "\t" + version + "\tDesc\t12\tno\tAvailable\n";
    }

    OpenWBEM::CIMInstanceArray Updates(const OpenWBEM::StringArray* properties = nullptr) const {
        return available.EnumInstances(UPDATE, properties);
    }

    test_support::CimError UpdatesError() const {
        return test_support::CimErrorOf([&] { Updates(); });
    }

    OpenWBEM::CIMInstance GetUpdate(const char* id,
                                    const OpenWBEM::StringArray* properties = nullptr) const {
        return available.GetInstance(test_support::PathOf(UPDATE, "InstanceID", id), properties);
    }

    // A method of the class, or of the update with this id.
    OpenWBEM::CIMValue Invoke(const char* method, const std::vector<OpenWBEM::CIMValue>& in = {}) {
        return InvokeAt(OpenWBEM::CIMObjectPath(UPDATE, "root/cimv2"), method, in);
    }
    OpenWBEM::CIMValue InvokeOn(const char* id, const char* method,
                                const std::vector<OpenWBEM::CIMValue>& in = {}) {
        return InvokeAt(test_support::PathOf(UPDATE, "InstanceID", id), method, in);
    }

    static AvaliableUpdate Record(const char* name, const char* version) {
        AvaliableUpdate record;
        record.Name = name;
        record.Version = version;
        return record;
    }

    AvaliableUpdateProvider provider;
    test_support::Calls available{provider, env};
    OpenWBEM::CIMParamValueArray out;

private:
    OpenWBEM::CIMValue InvokeAt(const OpenWBEM::CIMObjectPath& path, const char* method,
                                const std::vector<OpenWBEM::CIMValue>& in) {
        OpenWBEM::CIMParamValueArray parameters;
        for (const OpenWBEM::CIMValue& value : in) {
            parameters.push_back(OpenWBEM::CIMParamValue("Any", value));
        }
        return provider.invokeMethod(env, "root/cimv2", path, method, parameters, out);
    }
};
