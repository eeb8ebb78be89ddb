#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/active/Active.hpp"
#include "provider/active/ActiveProvider.hpp"

#include <cstdlib>
#include <string>
#include <vector>

// The name of the class, as clients write it.
inline constexpr const char* ACTIVE = "ZNX_ActiveSoftwareUpdate";

// What the tool prints for the updates being applied, and what it says of one of them and of its
// failures.
class ActiveTest : public ToolTest {
protected:
    ActiveTest() {
        setenv("TZ", "UTC", 1);
        tzset();
        tool.Plays("-l", test_support::ToolAnswer().Output("The long\ntext.\n"));
        tool.Plays("--errors", test_support::ToolAnswer().Output("It failed.\n"));
    }

    void Prints(const std::string& output) {
        tool.Plays("--apply", test_support::ToolAnswer().Output(output));
    }

    static std::string Line(const std::string& name, const std::string& version,
                            const std::string& reboot = "reboot") {
        return name + "\t" + version + "\tWhat it does\tftp\tFeb 3 2025 04:05:06\t" + reboot +
               "\t12 MB\tApplying\n";
    }

    static std::string MissingField(const std::string& field) {
        return FailureToParse(field, "/qv/bin/patchkeeper --apply ");
    }
};

// The class provider by itself, after initialize.
class ActiveProviderTest : public ActiveTest {
protected:
    ActiveProviderTest() { provider.initialize(env); }

    static OpenWBEM::CIMObjectPath PathOf(const char* id) {
        return test_support::PathOf(ACTIVE, "InstanceID", id);
    }

    OpenWBEM::CIMInstance Get(const char* id,
                              const OpenWBEM::StringArray* properties = nullptr) const {
        return calls.GetInstance(PathOf(id), properties);
    }

    OpenWBEM::CIMValue
    Invoke(const char* id, const char* method,
           const OpenWBEM::CIMParamValueArray& in = OpenWBEM::CIMParamValueArray()) {
        OpenWBEM::CIMParamValueArray out;
        OpenWBEM::CIMValue result =
            provider.invokeMethod(env, "root/cimv2", PathOf(id), method, in, out);
        EXPECT_TRUE(out.empty());
        return result;
    }

    ActiveUpdateProvider provider;
    test_support::Calls calls{provider, env};
};

// The identifiers of a list's records, from its beginning to its end.
inline std::vector<std::string> IdentifiersOf(ActiveUpdate_ObjectList& list) {
    std::vector<std::string> identifiers;
    for (list.begin(); list.hasObject(); list.next()) {
        identifiers.push_back(Text(list.getInstanceID()));
    }
    list.end();
    return identifiers;
}
