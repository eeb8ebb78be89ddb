#include "e2e/OverHttp.hpp"

#include "support/ToolDouble.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

namespace {

using test_support::ToolAnswer;
using test_support::ToolDouble;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Inventory : public e2e::OverHttp {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tool_.Plays("", ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/two_packages.tsv"));
    }

    std::vector<std::string> Ask(const std::string& operation, const std::string& object) {
        return e2e::WithoutPrefix(Wbemcli(operation, object).Lines(), Prefix());
    }

    ToolDouble tool_;
};

TEST_F(Inventory, EnumerationShowsEveryPackageWithItsProperties) {
    StartServer();
    EXPECT_THAT(
        Ask("ei", "ZNX_SoftwareIdentity"),
        ElementsAre(
            R"(ZNX_SoftwareIdentity.InstanceID="0" InstanceID="0",Name="linux-image-amd64",)"
            R"(PackageVersion="6.1.123-1",RevisionNumber="6.1.123-1",Classifications=8,)"
            R"(InstalledDate=20250102030405.000000+000)",
            R"(ZNX_SoftwareIdentity.InstanceID="1" InstanceID="1",Name="znxliteEMcartridge",)"
            R"(PackageVersion="4.5.6",RevisionNumber="4.5.6",Classifications=0,)"
            R"(InstalledDate=20250228235959.000000+000)"));
    EXPECT_THAT(tool_.CommandLines(), ElementsAre("/qv/bin/patchkeeper"));
}

TEST_F(Inventory, EnumerationOfNamesShowsEveryPackage) {
    StartServer();
    EXPECT_THAT(Ask("ein", "ZNX_SoftwareIdentity"),
                ElementsAre(R"(ZNX_SoftwareIdentity.InstanceID="0")",
                            R"(ZNX_SoftwareIdentity.InstanceID="1")"));
}

TEST_F(Inventory, AnInstanceIsReadFromTheListOfTheLastEnumeration) {
    StartServer();
    Ask("ein", "ZNX_SoftwareIdentity");
    EXPECT_THAT(
        Ask("gi", R"(ZNX_SoftwareIdentity.InstanceID="1")"),
        ElementsAre(StartsWith(
            R"(ZNX_SoftwareIdentity.InstanceID="1" InstanceID="1",Name="znxliteEMcartridge")")));
    EXPECT_THAT(tool_.CommandLines(), ElementsAre("/qv/bin/patchkeeper"));
}

TEST_F(Inventory, BeforeTheFirstEnumerationNothingIsFound) {
    StartServer();
    const e2e::ClientRun run = Wbemcli("gi", R"(ZNX_SoftwareIdentity.InstanceID="0")");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_THAT(run.text, HasSubstr("CIM_ERR_NOT_FOUND"));
    EXPECT_THAT(tool_.CommandLines(), ElementsAre());
}

TEST_F(Inventory, TheCartridgeShowsItsVersionOnly) {
    StartServer();
    EXPECT_THAT(
        Ask("ei", "ZNX_ElementManagerCartridgeVersionInfo"),
        ElementsAre(R"(ZNX_ElementManagerCartridgeVersionInfo.Version="4.5.6" Version="4.5.6")"));
    EXPECT_THAT(
        Ask("gi", R"(ZNX_ElementManagerCartridgeVersionInfo.Version="4.5.6")"),
        ElementsAre(R"(ZNX_ElementManagerCartridgeVersionInfo.Version="4.5.6" Version="4.5.6")"));
}

TEST_F(Inventory, TheCartridgesNameComesFromTheConfiguration) {
    StartServer({}, "qv.em_filename = linux-image-amd64\n");
    EXPECT_THAT(Ask("ein", "ZNX_ElementManagerCartridgeVersionInfo"),
                ElementsAre(R"(ZNX_ElementManagerCartridgeVersionInfo.Version="6.1.123-1")"));
}

TEST_F(Inventory, NoPackagesIsAnEmptyAnswerAndNoError) {
    tool_.Plays("", ToolAnswer());
    StartServer();
    const e2e::ClientRun run = Wbemcli("ei", "ZNX_SoftwareIdentity");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.Lines(), ElementsAre());
}

TEST_F(Inventory, TenThousandPackagesArrive) {
    std::string listing;
    for (int i = 0; i < 10'000; ++i) {
        listing += "package-" + std::to_string(i) + "\t1\tOther\tJan 2 2025 03:04 UTC\n";
    }
    tool_.Plays("", ToolAnswer().Output(listing));
    StartServer();
    const std::vector<std::string> names = Ask("ein", "ZNX_SoftwareIdentity");
    ASSERT_EQ(names.size(), 10'000U);
    EXPECT_EQ(names.back(), R"(ZNX_SoftwareIdentity.InstanceID="9999")");
}

TEST_F(Inventory, MarkupInATextArrivesAsItIs) {
    tool_.Plays("", ToolAnswer().Output("a<b>&\"c'\t1\tOther\tJan 2 2025 03:04 UTC\n"));
    StartServer();
    EXPECT_THAT(Ask("ei", "ZNX_SoftwareIdentity"), ElementsAre(HasSubstr(R"(Name="a<b>&\"c'")")));
}

TEST_F(Inventory, BytesThatXmlDoesNotAllowAreReplaced) {
    tool_.Plays("", ToolAnswer().Output("a\x01\xff\xed\xa0\x80"
                                        "z\t1\tOther\tJan 2 2025 03:04 UTC\n"));
    StartServer();
    const test_support::HttpAnswer answer = Post(test_support::IntrinsicCall(
        "EnumerateInstances",
        R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/></IPARAMVALUE>)"));
    EXPECT_THAT(answer.body, HasSubstr("a\xef\xbf\xbd\xef\xbf\xbd"));
    EXPECT_THAT(answer.body, testing::Not(HasSubstr("\x01")));
    EXPECT_THAT(answer.body, testing::Not(HasSubstr("\xff")));
}

TEST_F(Inventory, WhatTheLibraryPrintsGoesToTheServersLog) {
    setenv("provider_agent_debug", "1", 1);
    StartServer();
    Wbemcli("ei", "ZNX_SoftwareIdentity");
    Server().Stop();
    EXPECT_THAT(Server().Log(), HasSubstr("ZNX_SoftwareIdentity.enumInstanes()\n"));
}

TEST_F(Inventory, TheToolInheritsNothingFromTheServer) {
    tool_.Plays("", ToolAnswer().ReportsItself());
    StartServer();
    Wbemcli("ei", "ZNX_SoftwareIdentity");
    const test_support::ToolReport report = tool_.Report();
    std::vector<int> numbers;
    for (const auto& [number, target] : report.descriptors) {
        numbers.push_back(number);
    }
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2));
    EXPECT_EQ(report.descriptors.at(0), "/dev/null");
    EXPECT_EQ(report.blockedSignals, 0U);
    // Above the standard signals stand two of the C library's own, ignored in every child of popen.
    EXPECT_EQ(report.ignoredSignals & 0x7FFF'FFFFU, 0U);
}

} // namespace
