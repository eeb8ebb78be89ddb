// The classes of updates as an administrator meets them: the way from the list of updates to the
// progress of an application, and every method and association once. The command lines of every
// situation stand in tests/matrix.
#include "e2e/OverHttp.hpp"

#include "support/ToolDouble.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <unistd.h>

namespace {

using test_support::ToolAnswer;
using test_support::ToolDouble;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class Updates : public e2e::OverHttp {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tool_.Plays("--cache", ToolAnswer().Output("N\tV\tDesc\t12\treboot\tAvailable\n"
                                                   "M\t2.0\tMore\t7\tno\tApplied\n"));
        tool_.Plays("--sched", ToolAnswer().Output("N\tV\tDesc\tftp\tJan 2 2026 03:04\t"
                                                   "Feb 3 2026 04:05\treboot\t12\tScheduled\n"));
        tool_.Plays("--hist",
                    ToolAnswer().Output("N\tV\tDesc\tFix\tJan 2 2026 03:04\tRemovable\n"));
        tool_.Plays("--components", ToolAnswer().Output("docs\nfonts\ntools\n"));
        tool_.Plays("--files", ToolAnswer().Output("one\ntwo\n"));
        tool_.Plays("--status", ToolAnswer().Output("1\tHalf of it\n"));
        tool_.Plays("--errors", ToolAnswer().Output("What it means.\n"));
        tool_.PlaysOtherwise(ToolAnswer());
        StartServer();
    }

    std::vector<std::string> Ask(const std::string& operation, const std::string& object,
                                 const std::string& words = "") {
        return e2e::WithoutPrefix(Wbemcli(operation, object, words).Lines(), Prefix());
    }

    // Once so many calls have started, the command lines since the last time.
    std::vector<std::string> CommandsAfter(std::size_t count) {
        EXPECT_TRUE(tool_.WaitForCalls(count));
        const std::vector<std::string> commands = tool_.ShellCommands();
        tool_.ForgetCalls();
        return commands;
    }

    static std::string Host() {
        char name[256] = "";
        gethostname(name, sizeof name - 1);
        return name;
    }

    ToolDouble tool_;
    const std::string update_ = R"(ZNX_AvailableSoftwareUpdate.InstanceID="0")";
    const std::string scheduled_ = R"(ZNX_ScheduledSoftwareUpdate.InstanceID="N V")";
    const std::string day_ = "20261224000000.000000+000";
    const std::string time_ = "20261224030405.000000+000";
};

TEST_F(Updates, FromTheListToTheProgressOfAnApplication) {
    EXPECT_THAT(Ask("ei", "ZNX_AvailableSoftwareUpdate"),
                ElementsAre(update_ + R"( InstanceID="0",Name="N",ShortDescription="Desc",)"
                                      R"(VersionString="V",Size="12",RebootRequired=TRUE,Status=3)",
                            HasSubstr(R"(Name="M")")));
    EXPECT_THAT(Ask("cm", update_, "HasOptionalComponents"),
                ElementsAre(update_ + " HasOptionalComponents: TRUE"));
    const std::string component = "ZNX_SoftwareUpdateComponent";
    EXPECT_THAT(Ask("ein", component),
                ElementsAre(component + R"(.InstanceID="0")", component + R"(.InstanceID="1")",
                            component + R"(.InstanceID="2")"));
    EXPECT_EQ(Wbemcli("mi", component + R"(.InstanceID="0")", "Install=true").exitCode, 0);
    EXPECT_EQ(Wbemcli("sp", component + R"(.InstanceID="2")", "Install=true").exitCode, 0);
    EXPECT_THAT(Ask("gp", component + R"(.InstanceID="2")", "Install"), ElementsAre("TRUE"));
    tool_.ForgetCalls();
    tool_.Plays("--apply", ToolAnswer().Held());

    EXPECT_THAT(Ask("cm", update_, "Apply"), ElementsAre(update_ + " Apply: "));
    EXPECT_THAT(CommandsAfter(2), ElementsAre("/qv/bin/patchkeeper --setinprogress",
                                              "/qv/bin/patchkeeper --apply N V docs tools"));
    EXPECT_THAT(
        Ask("cm", "ZNX_AvailableSoftwareUpdate", "GetProgress"),
        ElementsAre("ZNX_AvailableSoftwareUpdate GetProgress: 1, Status (string): Half of it"));
    tool_.Release("--apply");
}

TEST_F(Updates, EveryFetchStartsTheToolAndReturnsAnEmptyText) {
    const std::string server = "Server=10.0.0.1,User=u,Password=p,Path=f";
    const std::pair<std::string, std::string> fetches[] = {
        {"GetViaFtp." + server, "/qv/bin/patchkeeper --ftp 10.0.0.1 'u' 'p' 'f'"},
        {"GetViaHttp." + server + ",Secure=true",
         "/qv/bin/patchkeeper --http 10.0.0.1 'u' 'p' 'f' true"},
        {"GetViaSamba." + server, "/qv/bin/patchkeeper --samba 10.0.0.1 'u' 'p' 'f'"},
        {"GetViaUsb.Path=/media/x", "/qv/bin/patchkeeper --usb /media/x"},
        {"GetViaHardDrive.Path=/x", "/qv/bin/patchkeeper --hd /x"},
        {"GetViaElementManager", "/qv/bin/patchkeeper --em "},
    };
    for (const auto& [call, command] : fetches) {
        const std::string method = call.substr(0, call.find('.'));
        EXPECT_THAT(Ask("cm", "ZNX_AvailableSoftwareUpdate", call),
                    ElementsAre("ZNX_AvailableSoftwareUpdate " + method + ": "));
        EXPECT_THAT(CommandsAfter(2), ElementsAre("/qv/bin/patchkeeper --setinprogress", command));
    }
}

TEST_F(Updates, ARefusedFetchSaysWhyAndRunsNothing) {
    EXPECT_THAT(
        Ask("cm", "ZNX_AvailableSoftwareUpdate", "GetViaFtp.Server=host,User=u,Password=p,Path=f"),
        ElementsAre("ZNX_AvailableSoftwareUpdate GetViaFtp: Invalid IP Address"));
    // The array of parameters always has the declared length; what the client leaves out is null.
    EXPECT_THAT(Wbemcli("cm", "ZNX_AvailableSoftwareUpdate", "GetViaSamba.Server=10.0.0.1").text,
                HasSubstr("(4) CIM_ERR_INVALID_PARAMETER"));
    EXPECT_THAT(tool_.CommandLines(), ElementsAre());
}

TEST_F(Updates, AnUpdateIsScheduledMovedAndDropped) {
    Ask("ein", "ZNX_AvailableSoftwareUpdate");
    const std::string when = "Date=" + day_ + ",Time=" + time_;
    const std::string texts = R"( "Thu Dec 24 00:00:00 2026" "Thu Dec 24 03:04:05 2026")";
    tool_.ForgetCalls();
    Ask("cm", update_, "AddToSchedule." + when);
    EXPECT_THAT(CommandsAfter(1), ElementsAre("/qv/bin/patchkeeper --sched N V" + texts + " 2>&1"));
    EXPECT_THAT(Ask("ein", "ZNX_ScheduledSoftwareUpdate"), ElementsAre(scheduled_));
    EXPECT_THAT(Ask("cm", scheduled_, "Modify." + when), ElementsAre(scheduled_ + " Modify: "));
    EXPECT_EQ(CommandsAfter(1).back(), "/qv/bin/patchkeeper --msched N V" + texts);
    EXPECT_THAT(Ask("cm", scheduled_, "Remove"), ElementsAre(scheduled_ + " Remove: "));
    EXPECT_EQ(CommandsAfter(1).back(), "/qv/bin/patchkeeper --msched N V");
    EXPECT_EQ(Wbemcli("di", scheduled_).exitCode, 0);
    EXPECT_EQ(CommandsAfter(1).back(), "/qv/bin/patchkeeper --msched N V");
}

TEST_F(Updates, AnApplicationIsCancelledAndAnAppliedUpdateRolledBack) {
    tool_.Plays("--apply",
                ToolAnswer().Output("N\tV\tDesc\tftp\tFeb 3 2026 04:05\treboot\t12\tApplying\n"));
    const std::string active = R"(ZNX_ActiveSoftwareUpdate.InstanceID="N V")";
    EXPECT_THAT(Ask("ein", "ZNX_ActiveSoftwareUpdate"), ElementsAre(active));
    EXPECT_THAT(Ask("cm", active, "Cancel"), ElementsAre(active + " Cancel: "));
    EXPECT_EQ(CommandsAfter(1).back(), "/qv/bin/patchkeeper --rback N V");

    const std::string applied = R"(ZNX_HistorySoftwareUpdate.InstanceID="0")";
    EXPECT_THAT(Ask("ein", "ZNX_HistorySoftwareUpdate"), ElementsAre(applied));
    tool_.ForgetCalls();
    EXPECT_THAT(Ask("cm", applied, "Remove"), ElementsAre(applied + " Remove: TRUE"));
    EXPECT_THAT(CommandsAfter(2), ElementsAre("/qv/bin/patchkeeper --setinprogress",
                                              "/qv/bin/patchkeeper --rback N V"));
}

TEST_F(Updates, FromAnUpdateToItsFiles) {
    Ask("ein", "ZNX_AvailableSoftwareUpdate");
    const std::string file = Host() + "/root/cimv2:ZNX_AvailableSoftwareFileName.FileName=";
    const std::string words =
        "-ac ZNX_AvailableSoftwareFileList -arc ZNX_AvailableSoftwareFileName";
    EXPECT_THAT(Wbemcli("ain " + words, update_).Lines(),
                ElementsAre(file + R"("one")", file + R"("two")"));
    EXPECT_THAT(Wbemcli("ai " + words, update_).Lines(),
                ElementsAre(file + R"("one" FileName="one")", file + R"("two" FileName="two")"));
    const auto association = [](const std::string& name) {
        return AllOf(HasSubstr("ZNX_AvailableSoftwareFileList.Antecedent="),
                     HasSubstr(R"(ZNX_AvailableSoftwareUpdate.InstanceID="0")"),
                     HasSubstr("FileName=\"" + name + "\""));
    };
    EXPECT_THAT(Wbemcli("rin", update_).Lines(),
                ElementsAre(association("one"), association("two")));
    EXPECT_THAT(Wbemcli("ri", update_).Lines(),
                ElementsAre(association("one"), association("two")));
    EXPECT_EQ(Ask("ein", "ZNX_AvailableSoftwareFileList").size(), 4U);
    EXPECT_EQ(CommandsAfter(7).back(), "/qv/bin/patchkeeper --files M-2.0 2>&1");
}

TEST_F(Updates, WhatCannotBeDoneIsRefusedWithItsCode) {
    Ask("ein", "ZNX_AvailableSoftwareUpdate");
    EXPECT_THAT(Wbemcli("di", update_).text, HasSubstr("(7) CIM_ERR_NOT_SUPPORTED"));
    EXPECT_THAT(Wbemcli("gi", R"(ZNX_AvailableSoftwareUpdate.InstanceID="7")").text,
                HasSubstr("(6) CIM_ERR_NOT_FOUND"));
    EXPECT_THAT(Wbemcli("cm", update_, "Explode").text, HasSubstr("(17) CIM_ERR_METHOD_NOT_FOUND"));
    EXPECT_THAT(Wbemcli("gi", R"(ZNX_AvailableSoftwareFileList.Other="x")").text,
                HasSubstr("instance has no class name"));
    tool_.Plays("--warnings", ToolAnswer().ExitCode(12));
    EXPECT_THAT(Wbemcli("cm", update_, "Warnings").text,
                AllOf(HasSubstr("(1) CIM_ERR_FAILED"), HasSubstr("What it means."),
                      HasSubstr("#SWU_Patchkeeper_SoftwareUpdateFailed#")));
}

} // namespace
