// The end of the server while calls run.
#include "e2e/Robust.hpp"

#include "support/ComesTrue.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <future>
#include <stdexcept>

namespace {

using test_support::ToolAnswer;
using testing::HasSubstr;
using testing::Not;

class Stop : public e2e::Robust {
protected:
    /// An enumeration that is inside the tool when this returns. Its future holds the answer, or
    /// the words of the failure.
    std::future<std::string> Running() {
        tool_.Plays("", ToolAnswer().Output(e2e::Line("one")).Held());
        auto answer = std::async(std::launch::async, [port = Server().Port()] {
            try {
                return test_support::CimClient(port)
                    .Post(e2e::EnumerationOf("ZNX_SoftwareIdentity"))
                    .body;
            } catch (const std::runtime_error& error) {
                return std::string(error.what());
            }
        });
        EXPECT_TRUE(tool_.WaitForCalls(1));
        return answer;
    }
    void WaitUntilItStops() {
        EXPECT_TRUE(
            test_support::ComesTrue([this] { return e2e::RefusesConnections(Server().Port()); }));
    }
};

TEST_F(Stop, TakesNobodyMoreAndFinishesTheRunningCall) {
    StartServer();
    test_support::CimClient idle(Server().Port());
    EXPECT_EQ(idle.Post(test_support::IntrinsicCall("EnumerateClassNames", "")).status, 200);
    auto answer = Running();
    Server().Signal(SIGTERM);
    WaitUntilItStops();
    EXPECT_EQ(idle.Post(e2e::EnumerationOf("ZNX_SoftwareIdentity")).status, 503);
    tool_.Release("");
    EXPECT_THAT(answer.get(), HasSubstr("<VALUE>one</VALUE>"));
    EXPECT_EQ(Server().Wait(), 0);
    EXPECT_THAT(Server().Log(), Not(HasSubstr("calls still run")));
}

TEST_F(Stop, WaitsForAHangingCallOnlySoLong) {
    StartServer("cimserver.stop_seconds = 1\n");
    auto answer = Running();
    const auto start = std::chrono::steady_clock::now();
    Server().Signal(SIGTERM);
    EXPECT_EQ(Server().Wait(), 0);
    const auto time = std::chrono::steady_clock::now() - start;
    EXPECT_GE(time, std::chrono::milliseconds(900));
    EXPECT_LT(time, std::chrono::seconds(5));
    EXPECT_THAT(Server().Log(), HasSubstr("calls still run after 1 s; the server ends without "));
    EXPECT_THAT(answer.get(), HasSubstr("closed"));
    tool_.Release("");
}

TEST_F(Stop, IsAtOnceWithASecondSignal) {
    StartServer("cimserver.stop_seconds = 1000\n");
    auto answer = Running();
    Server().Signal(SIGTERM);
    WaitUntilItStops();
    Server().Signal(SIGTERM);
    EXPECT_EQ(Server().Wait(), 0);
    EXPECT_THAT(answer.get(), HasSubstr("closed"));
    tool_.Release("");
}

TEST_F(Stop, IdleConnectionsDoNotHoldItUp) {
    StartServer("cimserver.stop_seconds = 1000\n");
    const test_support::CimClient silent(Server().Port());
    test_support::CimClient half(Server().Port());
    half.Send("POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Len");
    EXPECT_THAT(EnumerateInventory(), HasSubstr("<VALUE>one</VALUE>"));
    EXPECT_EQ(Server().Stop(), 0);
}

TEST_F(Stop, LeavesABackgroundTaskRunning) {
    tool_.Plays("--cache", ToolAnswer().Output("N\tV\tDesc\t12\treboot\tAvailable\n"));
    tool_.Plays("--setinprogress", ToolAnswer());
    tool_.Plays("--apply", ToolAnswer().Held().ReportsItself().Output("done\n"));
    tool_.Plays("--hist", ToolAnswer().Output("N\tV\tDesc\tFix\tJan 2 2026 03:04\tRemovable\n"));
    StartServer();
    EXPECT_THAT(Ask(e2e::EnumerationOf("ZNX_AvailableSoftwareUpdate")),
                HasSubstr("<VALUE>N</VALUE>"));
    const std::string update =
        R"(<INSTANCENAME CLASSNAME="ZNX_AvailableSoftwareUpdate"><KEYBINDING NAME="InstanceID">)"
        R"(<KEYVALUE VALUETYPE="string">0</KEYVALUE></KEYBINDING></INSTANCENAME>)";
    tool_.ForgetCalls();
    EXPECT_THAT(Ask(test_support::ExtrinsicCall("Apply", update, "")), HasSubstr("RETURNVALUE"));
    ASSERT_TRUE(tool_.WaitForCalls(2));
    EXPECT_EQ(tool_.CommandLines().back(), "/qv/bin/patchkeeper --apply N V");
    const auto tools = e2e::ToolsBelow(Server().Pid());
    ASSERT_THAT(tools, testing::SizeIs(1));

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Server().Stop(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5))
        << "a background task is no running call";
    StartServer();
    EXPECT_EQ(kill(tools.front(), 0), 0) << "the tool still runs";
    tool_.Release("--apply");
    EXPECT_TRUE(test_support::ComesTrue([&] { return kill(tools.front(), 0) != 0; }));
    EXPECT_FALSE(tool_.Report().descriptors.empty()) << "it ran to its end";
    EXPECT_THAT(Ask(e2e::EnumerationOf("ZNX_HistorySoftwareUpdate")), HasSubstr("Desc"));
}

} // namespace
