#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/scheduled/Scheduled.hpp"
#include "provider/scheduled/ScheduledProvider.hpp"

#include <cstdlib>
#include <string>
#include <vector>

// The name of the class, as clients write it.
inline constexpr const char* SCHEDULED = "ZNX_ScheduledSoftwareUpdate";

// What the tool prints for the scheduled updates, and what it says of one of them and of its
// failures.
class ScheduledTest : public ToolTest {
protected:
    ScheduledTest() {
        setenv("TZ", "UTC", 1);
        tzset();
        tool.Plays("-l", test_support::ToolAnswer().Output("The long\ntext.\n"));
        tool.Plays("--errors", test_support::ToolAnswer().Output("It failed.\n"));
    }

    void Prints(const std::string& output) {
        tool.Plays("--sched", test_support::ToolAnswer().Output(output));
    }

    static std::string Line(const std::string& name, const std::string& version,
                            const std::string& reboot = "reboot") {
        return name + "\t" + version + "\tWhat it does\tftp\tJan 2 2025 03:04:05\t" +
               "Feb 3 2025 04:05:06\t" + reboot + "\t12 MB\tScheduled\n";
    }

    static std::string MissingField(const std::string& field) {
        return FailureToParse(field, "/qv/bin/patchkeeper --sched ");
    }
};

// The class provider by itself, after initialize.
class ScheduledProviderTest : public ScheduledTest {
protected:
    ScheduledProviderTest() { provider.initialize(env); }

    static OpenWBEM::CIMObjectPath PathOf(const char* id) {
        return test_support::PathOf(SCHEDULED, "InstanceID", id);
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

    ScheduledUpdateProvider provider;
    test_support::Calls calls{provider, env};
};

// The identifiers of a list's records, from its beginning to its end.
inline std::vector<std::string> IdentifiersOf(ScheduledUpdate_ObjectList& list) {
    std::vector<std::string> identifiers;
    for (list.begin(); list.hasObject(); list.next()) {
        identifiers.push_back(Text(list.getInstanceID()));
    }
    list.end();
    return identifiers;
}
