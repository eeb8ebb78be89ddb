#pragma once

#include "support/ToolDouble.hpp"
#include "support/provider/Provider.hpp"

#include "provider/common/Common.hpp"

#include "OW_CIMDateTime.hpp"

#include <cerrno>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

// A logger that records is in place, as after the master's initialize.
class LogTest : public testing::Test {
protected:
    LogTest() { SetLogger(env); }

    std::shared_ptr<test_support::LogLines> log = std::make_shared<test_support::LogLines>();
    test_support::Environment* environment = new test_support::Environment(log);
    OpenWBEM::ProviderEnvironmentIFCRef env{environment};
};

// The same with the scripted tool; background tasks end before the tool goes.
class ToolTest : public LogTest {
protected:
    ~ToolTest() override { WaitForBackgroundTasks(); }

    static void WaitForBackgroundTasks() {
        while (BackgroundTasksRun()) {
            std::this_thread::yield();
        }
    }

    test_support::ToolDouble tool;
};

// What an action prints on standard output.
template <typename Action>
std::string PrintedBy(const Action& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

inline std::string Text(const OpenWBEM::String& text) {
    return text.c_str();
}

inline std::vector<std::string> Texts(const OpenWBEM::Array<OpenWBEM::String>& texts) {
    std::vector<std::string> result;
    for (const OpenWBEM::String& text : texts) {
        result.emplace_back(text.c_str());
    }
    return result;
}

// "type Name=value" of each property, in the order of the instance.
inline std::vector<std::string> PropertiesOf(const OpenWBEM::CIMInstance& instance) {
    std::vector<std::string> result;
    const OpenWBEM::CIMPropertyArray properties = instance.getProperties();
    for (const OpenWBEM::CIMProperty& property : properties) {
        result.push_back(std::string(property.getDataType().toString().c_str()) + " " +
                         property.getName().c_str() + "=" + property.getValue().toString().c_str());
    }
    return result;
}

// The value of a property as text, "(null)" without one.
inline std::string ValueOf(const OpenWBEM::CIMInstance& instance, const char* name) {
    return instance.getPropertyValue(name).toString().c_str();
}

// A client's property list.
inline OpenWBEM::StringArray Names(std::initializer_list<const char*> names) {
    OpenWBEM::StringArray list;
    for (const char* const name : names) {
        list.push_back(name);
    }
    return list;
}

// The message of a failure to cut this field off a line that the command line has printed.
inline std::string FailureToParse(const std::string& field, const std::string& command) {
    return "Failed to parse " + field + " field from " + command + "\n#SWU_Error_ParsingFailed," +
           field + "," + command + "#";
}

// Parameters of a method, whose names nobody reads.
inline OpenWBEM::CIMParamValueArray In(const std::vector<OpenWBEM::CIMValue>& values) {
    OpenWBEM::CIMParamValueArray parameters;
    for (const OpenWBEM::CIMValue& value : values) {
        parameters.push_back(OpenWBEM::CIMParamValue("Any", value));
    }
    return parameters;
}

// A date as CIM writes it: yyyymmddhhmmss.mmmmmmsutc.
inline OpenWBEM::CIMValue When(const char* text) {
    return OpenWBEM::CIMValue(OpenWBEM::CIMDateTime(OpenWBEM::String(text)));
}

// A result handler that is interrupted once: at its fourth instance.
class InterruptedResult : public OpenWBEM::CIMInstanceResultHandlerIFC {
public:
    explicit InterruptedResult(std::function<void()> interruption)
        : interruption_(std::move(interruption)) {}
    std::size_t handled = 0;

private:
    void doHandle(const OpenWBEM::CIMInstance&) override {
        if (handled++ == 3) {
            interruption_();
        }
    }
    std::function<void()> interruption_;
};

// A result handler that takes nothing: it throws CIM_ERR_ACCESS_DENIED.
class RefusingResult : public OpenWBEM::CIMInstanceResultHandlerIFC {
    void doHandle(const OpenWBEM::CIMInstance&) override {
        OW_THROWCIM(OpenWBEM::CIMException::ACCESS_DENIED);
    }
};

// Runs the actions side by side, each the given number of times.
inline void SideBySide(const std::vector<std::function<void()>>& actions, int times) {
    std::vector<std::thread> threads;
    for (const auto& action : actions) {
        threads.emplace_back([&action, times] {
            for (int i = 0; i < times; ++i) {
                action();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// What a run of the tool may leave behind in this process: descriptors that stay open, and children
// that nobody has waited for.
inline std::size_t OpenDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

inline bool NoChildIsLeft() {
    return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}
