#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/common/SharedList.hpp"
#include "provider/history/HistoryProvider.hpp"

#include <cstdlib>
#include <string>
#include <vector>

// The name of the class, as clients write it.
inline constexpr const char* HISTORY = "ZNX_HistorySoftwareUpdate";

// The class provider by itself, after initialize, with nothing enumerated yet.
class HistoryTest : public ToolTest {
protected:
    HistoryTest() {
        setenv("TZ", "UTC", 1);
        provider.initialize(env);
        gHistoryList = OpenWBEM::Array<HistoryUpdate>();
    }

    void Prints(const std::string& output) {
        tool.Plays("--hist", test_support::ToolAnswer().Output(output));
    }

    // Makes this the output and enumerates it.
    void Lists(const std::string& output) {
        Prints(output);
        calls.EnumInstanceNames(HISTORY);
        tool.ForgetCalls();
        log->Forget();
    }

    static std::string Line(const std::string& name, const std::string& version,
                            const std::string& removable = "Removable") {
        return name + "\t" + version + "\tWhat it does\tSecurity\tThu Jan  2 03:04:05 UTC 2025\t" +
               removable + "\n";
    }

    static OpenWBEM::CIMObjectPath PathOf(const char* id) {
        return test_support::PathOf(HISTORY, "InstanceID", id);
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

    HistoryUpdateProvider provider;
    test_support::Calls calls{provider, env};
};
