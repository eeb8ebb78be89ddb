#pragma once

#include "support/ToolDouble.hpp"
#include "support/provider/Provider.hpp"

#include "provider/common/Common.hpp"

#include <memory>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
