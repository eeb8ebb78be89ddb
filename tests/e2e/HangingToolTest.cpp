// A tool that hangs: what its caller and those behind it are told, and how it ends.
#include "e2e/Robust.hpp"

#include "support/ComesTrue.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <future>

namespace {

using test_support::ToolAnswer;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::SizeIs;

class HangingTool : public e2e::Robust {
protected:
    void SetUp() override {
        tool_.Plays("", ToolAnswer().Output(e2e::Line("one")).Held());
        StartServer("cimserver.call_seconds = 1\ncimserver.busy_seconds = 1\n");
    }
    void TearDown() override {
        EXPECT_EQ(Server().Stop(), 0);
        EXPECT_THAT(Server().Log(), testing::Not(HasSubstr("calls still run")));
    }
};

TEST_F(HangingTool, IsToldToItsCallerAndToOthersUntilItIsKilled) {
    EXPECT_THAT(EnumerateInventory(),
                HasSubstr("<ERROR CODE=\"1\" DESCRIPTION=\"general error (EnumerateInstances of "
                          "ZNX_SoftwareIdentity has been running for 1 s; it is left to finish)"));
    EXPECT_THAT(EnumerateInventory(),
                ContainsRegex("<ERROR CODE=\"1\" DESCRIPTION=\"general error \\(busy with "
                              "EnumerateInstances of ZNX_SoftwareIdentity since [2-9] s\\)"));
    EXPECT_THAT(Ask(e2e::EnumerationOf("ZNX_HistorySoftwareUpdate")),
                HasSubstr("busy with EnumerateInstances of ZNX_SoftwareIdentity since "));
    EXPECT_THAT(Ask(test_support::IntrinsicCall("EnumerateClassNames", "")),
                HasSubstr("ZNX_SoftwareIdentity"))
        << "what needs no library is served";

    const std::vector<pid_t> tools = e2e::ToolsBelow(Server().Pid());
    ASSERT_THAT(tools, SizeIs(1));
    tool_.Plays("", ToolAnswer().Output(e2e::Line("two")));
    ASSERT_EQ(kill(tools.front(), SIGTERM), 0);
    EXPECT_THAT(EnumerateInventory(), HasSubstr("<VALUE>two</VALUE>"));
}

TEST_F(HangingTool, IsInTheLogWhenItsCallerIsTold) {
    EXPECT_THAT(EnumerateInventory(), HasSubstr("has been running"));
    EXPECT_THAT(
        Server().Log(),
        HasSubstr(" ERROR ow.owcimomd.CIMServer: EnumerateInstances of ZNX_SoftwareIdentity "
                  "has been running for 1 s; it is left to finish, client 127.0.0.1\n"));
    tool_.Release("");
}

TEST_F(HangingTool, LeavesNothingBehind) {
    const std::size_t threads = Server().Threads();
    const std::size_t descriptors = Server().OpenDescriptors();
    EXPECT_THAT(EnumerateInventory(), HasSubstr("has been running"));
    tool_.Release("");
    EXPECT_TRUE(test_support::ComesTrue([&] {
        return Server().Threads() <= threads && Server().OpenDescriptors() <= descriptors &&
               Server().Zombies() == 0;
    })) << Server().Threads()
        << " threads, " << Server().OpenDescriptors() << " descriptors";
}

TEST_F(HangingTool, ThatGoesOnAfterAllServesTheNextCaller) {
    EXPECT_THAT(EnumerateInventory(), HasSubstr("has been running for 1 s"));
    auto next = std::async(std::launch::async, [this] { return EnumerateInventory(); });
    tool_.Release("");
    EXPECT_THAT(next.get(), HasSubstr("<VALUE>one</VALUE>"));
}

TEST_F(HangingTool, InAMethodIsNamedByTheMethod) {
    tool_.Plays("--status", ToolAnswer().Held());
    EXPECT_THAT(Ask(test_support::ExtrinsicCall(
                    "GetProgress", R"(<CLASSNAME NAME="ZNX_AvailableSoftwareUpdate"/>)", "")),
                HasSubstr("general error (InvokeMethod GetProgress of ZNX_AvailableSoftwareUpdate "
                          "has been running for 1 s; it is left to finish)"));
    tool_.Release("--status");
}

} // namespace
