// What a client can ask of the schema, and what is refused.

#include "e2e/OverHttp.hpp"

#include "support/ToolDouble.hpp"

#include <gmock/gmock.h>

namespace {

using test_support::ToolAnswer;
using test_support::ToolDouble;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class Operations : public e2e::OverHttp {
protected:
    void SetUp() override {
        tool_.Plays("", ToolAnswer().Output("a\t1\tOther\tJan 2 2025 03:04 UTC\n"));
        StartServer();
    }

    std::string ErrorOf(const std::string& operation, const std::string& object,
                        const std::string& moreWords = "",
                        const std::string& nameSpace = "root/cimv2") {
        const e2e::ClientRun run = Wbemcli(operation, object, moreWords, nameSpace);
        EXPECT_NE(run.exitCode, 0) << run.text;
        return run.text;
    }

    ToolDouble tool_;
};

TEST_F(Operations, TheNineClassesAreListed) {
    EXPECT_THAT(e2e::WithoutPrefix(Wbemcli("ecn").Lines(), Prefix()),
                UnorderedElementsAre("ZNX_AvailableSoftwareUpdate", "ZNX_ScheduledSoftwareUpdate",
                                     "ZNX_ActiveSoftwareUpdate", "ZNX_HistorySoftwareUpdate",
                                     "ZNX_SoftwareUpdateComponent", "ZNX_AvailableSoftwareFileName",
                                     "ZNX_AvailableSoftwareFileList", "ZNX_SoftwareIdentity",
                                     "ZNX_ElementManagerCartridgeVersionInfo"));
}

TEST_F(Operations, AClassShowsItsProperties) {
    const e2e::ClientRun run = Wbemcli("gc", "ZNX_SoftwareIdentity");
    EXPECT_EQ(run.exitCode, 0) << run.text;
    for (const char* property : {"InstanceID", "Name", "PackageVersion", "RevisionNumber",
                                 "Classifications", "InstalledDate"}) {
        EXPECT_THAT(run.text, HasSubstr(property));
    }
}

TEST_F(Operations, EveryClassCanBeRead) {
    const std::vector<std::string> names = e2e::WithoutPrefix(Wbemcli("ecn").Lines(), Prefix());
    EXPECT_EQ(names.size(), 9U);
    for (const std::string& name : names) {
        EXPECT_EQ(Wbemcli("gc", name).exitCode, 0) << name;
    }
    EXPECT_EQ(Wbemcli("ec").exitCode, 0);
}

TEST_F(Operations, AnUnknownClassIsNamed) {
    const std::string text = ErrorOf("ei", "ZNX_Nothing");
    EXPECT_THAT(text, HasSubstr("CIM_ERR_INVALID_CLASS"));
    EXPECT_THAT(text, HasSubstr("/root/cimv2:ZNX_Nothing"));
}

TEST_F(Operations, AnUnknownNamespaceIsRefused) {
    EXPECT_THAT(ErrorOf("ei", "ZNX_SoftwareIdentity", "", "root/elsewhere"),
                HasSubstr("CIM_ERR_INVALID_NAMESPACE"));
}

TEST_F(Operations, AnUnknownInstanceIsNotFound) {
    Wbemcli("ein", "ZNX_SoftwareIdentity");
    EXPECT_THAT(ErrorOf("gi", R"(ZNX_SoftwareIdentity.InstanceID="77")"),
                HasSubstr("CIM_ERR_NOT_FOUND"));
}

TEST_F(Operations, AClassNameInOtherCaseIsRefusedByTheLibraryOnlyWhereItArrives) {
    // An enumeration reaches the library in the declared spelling, a get in the client's.
    EXPECT_EQ(Wbemcli("ein", "znx_softwareidentity").exitCode, 0);
    EXPECT_THAT(ErrorOf("gi", R"(znx_softwareidentity.InstanceID="0")"),
                HasSubstr("CIM_ERR_INVALID_CLASS"));
}

TEST_F(Operations, WhatTheLibraryDoesNotOfferForAClassIsRefused) {
    Wbemcli("ein", "ZNX_SoftwareIdentity"); // the client reads what it is to modify
    const std::string instance = R"(ZNX_SoftwareIdentity.InstanceID="0")";
    EXPECT_THAT(ErrorOf("di", instance), HasSubstr("CIM_ERR_NOT_SUPPORTED"));
    EXPECT_THAT(ErrorOf("mi", instance, "Name=x"), HasSubstr("CIM_ERR_NOT_SUPPORTED"));
    EXPECT_THAT(ErrorOf("sp", instance, "Name=x"), HasSubstr("CIM_ERR_NOT_SUPPORTED"));
    EXPECT_THAT(ErrorOf("ci", instance, "InstanceID=0"), HasSubstr("CIM_ERR_NOT_SUPPORTED"));
    EXPECT_THAT(tool_.CommandLines(), ElementsAre("/qv/bin/patchkeeper"));
}

TEST_F(Operations, APropertyIsRead) {
    Wbemcli("ein", "ZNX_SoftwareIdentity");
    EXPECT_THAT(Wbemcli("gp", R"(ZNX_SoftwareIdentity.InstanceID="0")", "Name").Lines(),
                ElementsAre("a"));
}

TEST_F(Operations, EveryOtherOperationIsRefusedAsNotSupported) {
    EXPECT_THAT(ErrorOf("dc", "ZNX_SoftwareIdentity"), HasSubstr("CIM_ERR_NOT_SUPPORTED"));
    EXPECT_THAT(Post(test_support::IntrinsicCall("ExecQuery", "")).body,
                HasSubstr(R"(<ERROR CODE="7")"));
    EXPECT_THAT(tool_.CommandLines(), testing::IsEmpty());
}

TEST_F(Operations, ABodyThatIsNoXmlIsRefusedAndTheServerGoesOn) {
    test_support::CimClient client(Server().Port());
    EXPECT_EQ(client.Post("this is no XML").status, 400);
    EXPECT_EQ(Wbemcli("ein", "ZNX_SoftwareIdentity").exitCode, 0);
}

} // namespace
