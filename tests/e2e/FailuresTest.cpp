// Whatever the tool does, the client gets a reason, the next call works, and the server keeps
// neither descriptors nor ended children.

#include "e2e/OverHttp.hpp"

#include "support/ToolDouble.hpp"
#include "support/XmlNode.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

namespace {

using test_support::ToolAnswer;
using test_support::ToolDouble;
using testing::HasSubstr;

const char* const oneLine = "a\t1\tOther\tJan 2 2025 03:04 UTC\n";

class Failures : public e2e::OverHttp {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tool_.Plays("", ToolAnswer().Output(oneLine));
        tool_.Plays("--errors", ToolAnswer().Output("What the code means.\n"));
        StartServer();
        Wbemcli("ei", "ZNX_SoftwareIdentity"); // loads the library
        descriptors_ = Server().OpenDescriptors();
    }

    void TearDown() override {
        tool_.Plays("", ToolAnswer().Output(oneLine));
        EXPECT_THAT(Wbemcli("ein", "ZNX_SoftwareIdentity").text, HasSubstr(R"(InstanceID="0")"));
        EXPECT_TRUE(DescriptorsComeBack()) << Server().OpenDescriptors() << " open descriptors";
        EXPECT_EQ(Server().Zombies(), 0U);
        OverHttp::TearDown();
    }

    // The server learns of a connection's end a moment after the client.
    bool DescriptorsComeBack() {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (Server().OpenDescriptors() > descriptors_) {
            if (std::chrono::steady_clock::now() > limit) {
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return true;
    }

    std::string TextOfFailure() {
        const e2e::ClientRun run = Wbemcli("ei", "ZNX_SoftwareIdentity");
        EXPECT_NE(run.exitCode, 0) << run.text;
        EXPECT_THAT(run.text, HasSubstr("CIM_ERR_FAILED"));
        return run.text;
    }

    ToolDouble tool_;
    std::size_t descriptors_ = 0;
};

TEST_F(Failures, AnExitCodeArrivesAsTheToolsWordsAndTheMessageId) {
    tool_.Plays("", ToolAnswer().ExitCode(12));
    EXPECT_THAT(TextOfFailure(), HasSubstr("general error (What the code means.&#10;"
                                           "&#10;#SWU_Patchkeeper_SoftwareUpdateFailed#)"));
    EXPECT_EQ(tool_.CommandLines().back(), "/qv/bin/patchkeeper --errors 12");
}

TEST_F(Failures, AClientThatReadsXmlGetsTheLineEndBeforeTheMessageId) {
    tool_.Plays("", ToolAnswer().ExitCode(12));
    const std::string body =
        Post(test_support::IntrinsicCall(
                 "EnumerateInstances",
                 R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/>)"
                 R"(</IPARAMVALUE>)"))
            .body;
    const auto answer = test_support::ReadXml(body);
    ASSERT_TRUE(answer.has_value() && answer->Find("ERROR") != nullptr) << body;
    EXPECT_EQ(answer->Find("ERROR")->Attribute("DESCRIPTION"),
              "general error (What the code means.\n\n#SWU_Patchkeeper_SoftwareUpdateFailed#)");
}

TEST_F(Failures, ToolNotThere) {
    tool_.TakeToolAway();
    EXPECT_THAT(TextOfFailure(), HasSubstr("general error (SWU_Patchkeeper_Unknown)"));
    tool_.RestoreTool();
}

TEST_F(Failures, ToolNotExecutable) {
    tool_.MakeToolNotExecutable();
    EXPECT_THAT(TextOfFailure(), HasSubstr("general error (SWU_Patchkeeper_Unknown)"));
    tool_.RestoreTool();
}

TEST_F(Failures, AKilledToolIsTheExitCodeThatTheShellMakesOfIt) {
    tool_.Plays("", ToolAnswer().Output(oneLine).DiesBySignal(SIGKILL));
    EXPECT_THAT(TextOfFailure(), HasSubstr("#SWU_Patchkeeper_Unknown#)"));
    EXPECT_EQ(tool_.CommandLines().back(), "/qv/bin/patchkeeper --errors 137");
}

TEST_F(Failures, GarbageIsAParseFailureThatNamesTheField) {
    tool_.Plays("", ToolAnswer().Output("neither\n\x01\x02 nor\n"));
    EXPECT_THAT(
        TextOfFailure(),
        HasSubstr("general error (Failed to parse Version field from /qv/bin/patchkeeper "));
}

TEST_F(Failures, AnUnreadableDateIsNamed) {
    tool_.Plays("", ToolAnswer().Output("a\t1\tOther\tyesterday\n"));
    EXPECT_THAT(TextOfFailure(), HasSubstr("Invalid DateTime: yesterday"));
}

TEST_F(Failures, TenMegabytesInOneLine) {
    tool_.Plays("", ToolAnswer().Output(std::string(10'000'000, 'x') + "\n"));
    EXPECT_THAT(TextOfFailure(), HasSubstr("Failed to parse Version field"));
}

TEST_F(Failures, TenMegabytesOfRecords) {
    std::string listing;
    while (listing.size() < 10'000'000) {
        listing += std::string(900, 'n') + "\t1\tOther\tJan 2 2025 03:04 UTC\n";
    }
    tool_.Plays("", ToolAnswer().Output(listing));
    const test_support::HttpAnswer answer = Post(test_support::IntrinsicCall(
        "EnumerateInstances",
        R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/></IPARAMVALUE>)"));
    EXPECT_EQ(answer.status, 200);
    EXPECT_GT(answer.body.size(), 10'000'000U);
}

TEST_F(Failures, FiftyFailuresLeaveNothingBehind) {
    tool_.Plays("", ToolAnswer().ExitCode(12).ErrorText("no\n"));
    for (int i = 0; i < 50; ++i) {
        const test_support::HttpAnswer answer = Post(test_support::IntrinsicCall(
            "EnumerateInstances",
            R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/></IPARAMVALUE>)"));
        ASSERT_THAT(answer.body, HasSubstr(R"(<ERROR CODE="1")"));
    }
}

} // namespace
