#include "AvailableTest.hpp"

#include <cstdlib>
#include <filesystem>

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const MARK = "/qv/bin/patchkeeper --setinprogress";

} // namespace

class AvailableMethods : public AvailableTest {
protected:
    AvailableMethods() {
        setenv("TZ", "UTC", 1);
        tool.PlaysOtherwise(ToolAnswer());
        Lists("N\tV\tDesc\t12\treboot\tApplied\nM\t2.0\tMore\t7\tno\tAvailable\n");
        Updates();
        tool.ForgetCalls();
        log->Forget();
    }

    // The text that the tool is asked with, as the log shows it also where the shell fails.
    void ExpectStarted(const std::string& command) {
        WaitForBackgroundTasks();
        EXPECT_TRUE(log->Contains("INFO: Executing: " + command)) << command;
        EXPECT_TRUE(log->Contains("INFO: Spawing background thread for " + command)) << command;
    }

    bool LogHas(const std::string& beginning) const {
        for (const std::string& line : log->All()) {
            if (line.rfind(beginning, 0) == 0) {
                return true;
            }
        }
        return false;
    }
};

// Every fetch and the application: mark first, then the action on a task of its own.
class AvailableBackground : public AvailableMethods {
protected:
    struct Action {
        const char* option;
        const char* command;
        std::function<CIMValue()> call;
    };

    std::vector<Action> Actions() {
        const CIMValue server("10.0.0.1");
        const std::vector<CIMValue> four = {server, CIMValue("u"), CIMValue("p"), CIMValue("f")};
        const std::vector<CIMValue> five = {server, CIMValue("u"), CIMValue("p"), CIMValue("f"),
                                            CIMValue(true)};
        const std::vector<CIMValue> path = {CIMValue("/media/a b")};
        return {
            {"--ftp", "/qv/bin/patchkeeper --ftp 10.0.0.1 'u' 'p' 'f'",
             [=, this] { return Invoke("GetViaFtp", four); }},
            {"--http", "/qv/bin/patchkeeper --http 10.0.0.1 'u' 'p' 'f' true",
             [=, this] { return Invoke("GetViaHttp", five); }},
            {"--samba", "/qv/bin/patchkeeper --samba 10.0.0.1 'u' 'p' 'f'",
             [=, this] { return Invoke("GetViaSamba", four); }},
            {"--usb", "/qv/bin/patchkeeper --usb /media/a b",
             [=, this] { return Invoke("GetViaUsb", path); }},
            {"--hd", "/qv/bin/patchkeeper --hd /media/a b",
             [=, this] { return Invoke("GetViaHardDrive", path); }},
            {"--em", "/qv/bin/patchkeeper --em ",
             [this] { return Invoke("GetViaElementManager"); }},
            {"--apply", "/qv/bin/patchkeeper --apply M 2.0 ",
             [this] { return InvokeOn("1", "Apply"); }},
        };
    }
};

TEST_F(AvailableBackground, TheCallReturnsWhileTheToolStillRuns) {
    for (const Action& action : Actions()) {
        tool.Plays(action.option, ToolAnswer().Held());
        tool.ForgetCalls();
        EXPECT_EQ(action.call(), CIMValue(""));
        ASSERT_TRUE(tool.WaitForCalls(2));
        EXPECT_TRUE(BackgroundTasksRun()) << action.option;
        EXPECT_THAT(tool.ShellCommands(), ElementsAre(MARK, action.command));
        tool.Release(action.option);
        WaitForBackgroundTasks();
        EXPECT_EQ(tool.Calls().size(), 2U);
    }
}

TEST_F(AvailableBackground, AFailureOfTheToolIsOnlyLogged) {
    for (const Action& action : Actions()) {
        tool.Plays(action.option, ToolAnswer().ExitCode(11));
        log->Forget();
        EXPECT_EQ(action.call(), CIMValue(""));
        WaitForBackgroundTasks();
        const std::string command = action.command;
        EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --setinprogress",
                                            "INFO: Spawing background thread for " + command,
                                            "INFO: Executing: " + command,
                                            "INFO: Error during background " + command +
                                                ": SWU_Patchkeeper_Unknown"));
    }
}

TEST_F(AvailableBackground, WithoutTheMarkNothingIsStarted) {
    tool.Plays("--setinprogress", ToolAnswer().ExitCode(1));
    for (const Action& action : Actions()) {
        tool.ForgetCalls();
        const std::string failure = std::string("Failed: ") + action.command;
        const std::string printed = PrintedBy([&] {
            EXPECT_EQ(CimErrorOf([&] { action.call(); }),
                      Failed(failure + "\n#SWU_Error_ExecutionFailed," + failure + "#"));
        });
        EXPECT_EQ(printed, failure + "\n");
        EXPECT_THAT(tool.ShellCommands(), ElementsAre(MARK));
    }
}

TEST_F(AvailableBackground, ACommandOverTheSystemsLimitIsOnlyLogged) {
    const CIMValue large(std::string(100'000, 'x').c_str());
    EXPECT_EQ(Invoke("GetViaFtp", {CIMValue("10.0.0.1"), large, large, CIMValue("f")}),
              CIMValue(""));
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre(MARK));
    EXPECT_TRUE(LogHas("INFO: Error during background /qv/bin/patchkeeper --ftp 10.0.0.1 'xxx"));
}

TEST_F(AvailableBackground, ProgressCanBeAskedForMeanwhile) {
    tool.Plays("--em", ToolAnswer().Held());
    tool.Plays("--status", ToolAnswer().Output("1\tHalf of it\n"));
    Invoke("GetViaElementManager");
    ASSERT_TRUE(tool.WaitForCalls(2));
    EXPECT_EQ(Invoke("GetProgress"), CIMValue(Int8(1)));
    EXPECT_TRUE(BackgroundTasksRun());
    tool.Release("--em");
}

TEST_F(AvailableMethods, ThePathIsGivenToTheShellAsItIs) {
    for (const char* const path : {"a&b`c<d>e", "it's", "a\"b", "\xc3\xa4\xe2\x82\xac", ""}) {
        const std::string text = path;
        EXPECT_EQ(Invoke("GetViaUsb", {CIMValue(path)}), CIMValue(""));
        ExpectStarted("/qv/bin/patchkeeper --usb " + text);
        EXPECT_EQ(Invoke("GetViaHardDrive", {CIMValue(path)}), CIMValue(""));
        ExpectStarted("/qv/bin/patchkeeper --hd " + text);
    }
}

TEST_F(AvailableMethods, QuotedTextsReachTheToolUnchanged) {
    const std::string user = "a;(b)[c]*$d#e|f";
    const std::string password = "g&h`i<j>k\"l m";
    const std::string path = "\xc3\xa4\nn\to\\";
    Invoke("GetViaFtp", {CIMValue("10.0.0.1"), CIMValue(user.c_str()), CIMValue(password.c_str()),
                         CIMValue(path.c_str())});
    WaitForBackgroundTasks();
    ASSERT_EQ(tool.Calls().size(), 2U);
    EXPECT_THAT(tool.Calls()[1],
                ElementsAre("/qv/bin/patchkeeper", "--ftp", "10.0.0.1", user, password, path));
}

TEST_F(AvailableMethods, NamesOfParametersAreNotLookedAt) {
    CIMParamValueArray in;
    in.push_back(CIMParamValue("Path", CIMValue("10.0.0.1")));
    in.push_back(CIMParamValue("Path", CIMValue("u")));
    in.push_back(CIMParamValue("Server", CIMValue("p")));
    in.push_back(CIMParamValue("X", CIMValue("f")));
    provider.invokeMethod(env, "root/cimv2", CIMObjectPath(UPDATE), "GetViaFtp", in, out);
    ExpectStarted("/qv/bin/patchkeeper --ftp 10.0.0.1 'u' 'p' 'f'");
}

TEST_F(AvailableMethods, ProgressIsLogged) {
    tool.Plays("--status", ToolAnswer().Output("2\nAll of it\nmore\n"));
    EXPECT_EQ(Invoke("GetProgress"), CIMValue(Int8(2)));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --status ",
                                        "INFO: GetProgress: 2 All of it"));
    log->Forget();
    tool.Plays("--status", ToolAnswer().Output("7\tx\n"));
    EXPECT_EQ(Invoke("GetProgress"), CIMValue(Int8(-1)));
    EXPECT_TRUE(log->Contains("INFO: GetProgress: -1 Invalid GetProgress Return Code"));
}

TEST_F(AvailableMethods, StatusIsSetWhereItStands) {
    tool.Plays("--status", ToolAnswer().Output("1\tHalf of it\n"));
    for (const char* const name : {"Status", "status", "STATUS"}) {
        out = CIMParamValueArray();
        out.push_back(CIMParamValue("Before"));
        out.push_back(CIMParamValue(name));
        out.push_back(CIMParamValue("After", CIMValue("kept")));
        Invoke("GetProgress");
        ASSERT_EQ(out.size(), 3U);
        EXPECT_FALSE(out[0].getValue());
        EXPECT_EQ(Text(out[1].getName()), name);
        EXPECT_EQ(out[1].getValue(), CIMValue("Half of it"));
        EXPECT_EQ(out[2].getValue(), CIMValue("kept"));
    }
}

TEST_F(AvailableMethods, StatusIsAppendedWhereItIsAbsent) {
    tool.Plays("--status", ToolAnswer().Output("1\tHalf of it\n"));
    out.push_back(CIMParamValue("StatusX"));
    Invoke("GetProgress");
    ASSERT_EQ(out.size(), 2U);
    EXPECT_EQ(Text(out[1].getName()), "Status");
    EXPECT_EQ(out[1].getValue(), CIMValue("Half of it"));
}

TEST_F(AvailableMethods, AFailingProgressLeavesTheOutParametersAlone) {
    tool.Plays("--status", ToolAnswer().ExitCode(19));
    EXPECT_EQ(CimErrorOf([&] { Invoke("GetProgress"); }),
              Failed("A description.\n\n#SWU_Patchkeeper_HttpFailed#"));
    EXPECT_TRUE(out.empty());
}

TEST_F(AvailableMethods, DateAndTimeAreLocal) {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    tool.Plays("--sched", ToolAnswer().Output("Scheduled.\n"));
    EXPECT_EQ(InvokeOn("1", "AddToSchedule",
                       {When("20250102030405.000000+000"), When("20250702030405.999999-300")}),
              CIMValue("Scheduled.\n"));
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --sched M 2.0 \"Thu Jan  2 04:04:05 2025\" "
                            "\"Wed Jul  2 10:04:05 2025\" 2>&1"));
}

TEST_F(AvailableMethods, AMethodRefersToTheLastEnumeration) {
    Lists(Line("vim", "9"));
    InvokeOn("0", "Warnings");
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --warnings N V"));
    Updates();
    tool.ForgetCalls();
    InvokeOn("0", "Warnings");
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --warnings vim 9"));
    EXPECT_EQ(CimErrorOf([&] { InvokeOn("1", "Warnings"); }), NotFound());
}

// From the question to the application: what a client does.
TEST_F(AvailableMethods, TheChosenComponentsAreApplied) {
    Prints("a\nb\nc\n");
    EXPECT_EQ(InvokeOn("1", "HasOptionalComponents"), CIMValue(true));
    Enumerate();
    Choose("0");
    Choose("2");
    EXPECT_EQ(InvokeOn("1", "Apply"), CIMValue(""));
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --hascomponents M 2.0",
                                                  "/qv/bin/patchkeeper --components  M 2.0 2>&1",
                                                  MARK, "/qv/bin/patchkeeper --apply M 2.0 a c"));
}

TEST_F(AvailableMethods, HavingComponentsForgetsThoseOfBefore) {
    Prints("a\n");
    InvokeOn("1", "HasOptionalComponents");
    Enumerate();
    Choose("0");
    tool.Plays("--hascomponents", ToolAnswer().ExitCode(1));
    EXPECT_EQ(InvokeOn("0", "HasOptionalComponents"), CIMValue(false));
    EXPECT_EQ(gComponentList.size(), 0U);
    EXPECT_EQ(Text(GetOptionalComponentList()), "");
    EXPECT_EQ(Text(gPatchName), "N");
    EXPECT_EQ(Text(gPatchVersion), "V");
}

// What a tool that could not be started gives: -1 where its output is wanted.
TEST_F(AvailableMethods, ACommandOverTheSystemsLimitIsAFailure) {
    const AvaliableUpdate record = Record(std::string(200'000, 'n').c_str(), "V");
    EXPECT_EQ(CimErrorOf([&] { record.Schedule("d", "t"); }),
              Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_EQ(CimErrorOf([&] { record.HasOptionalComponents(); }),
              Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --errors -1 2>&1",
                                                  "/qv/bin/patchkeeper --errors 127 2>&1"));
}

TEST_F(AvailableMethods, ActionsOfARecordNeedNoList) {
    tool.Plays("--warnings", ToolAnswer().Output("Beware.\nAlso of this.\n").ErrorText("And.\n"));
    tool.Plays("--sched", ToolAnswer().Output("Scheduled.\n"));
    const AvaliableUpdate record = Record("x", "y");
    EXPECT_EQ(Text(record.Warnings()), "Beware.\nAlso of this.\nAnd.\n");
    EXPECT_EQ(Text(record.Schedule("d", "t")), "Scheduled.\n");
    EXPECT_TRUE(record.HasOptionalComponents());
    EXPECT_EQ(Text(record.Apply()), "");
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --warnings x y 2>&1",
                            "/qv/bin/patchkeeper --sched x y \"d\" \"t\" 2>&1",
                            "/qv/bin/patchkeeper --hascomponents x y", MARK,
                            "/qv/bin/patchkeeper --apply x y "));
}

class AvailableMethodOddities : public AvailableMethods {
protected:
    std::filesystem::path trace_ = tool.Directory() / "trace";
};

TEST_F(AvailableMethodOddities, AV5_ABlankEndsTheApplicationWithoutComponents) {
    InvokeOn("0", "Apply");
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre(MARK, "/qv/bin/patchkeeper --apply N V "));
}

TEST_F(AvailableMethodOddities, AV6_ComponentsOfAnotherUpdateAreAppliedToo) {
    Prints("a\nb\n");
    InvokeOn("1", "HasOptionalComponents");
    Enumerate();
    Choose("1");
    tool.ForgetCalls();
    InvokeOn("0", "Apply");
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre(MARK, "/qv/bin/patchkeeper --apply N V b"));
}

TEST_F(AvailableMethodOddities, AV7_WarningsWithExitCode1OrWithoutAToolAreNoFailure) {
    tool.Plays("--warnings", ToolAnswer().Output("Beware.\n").ExitCode(1));
    EXPECT_EQ(InvokeOn("0", "Warnings"), CIMValue("Beware.\n"));
    const AvaliableUpdate record = Record(std::string(200'000, 'n').c_str(), "V");
    EXPECT_EQ(Text(record.Warnings()), "");
    tool.Plays("--warnings", ToolAnswer().Output("Beware.\n").ExitCode(2));
    EXPECT_EQ(CimErrorOf([&] { InvokeOn("0", "Warnings"); }).number, 1);
}

TEST_F(AvailableMethodOddities, AV10_TheShellSeesWhatFollowsTheAddress) {
    const std::string server = "127.0.0.1 ; touch " + trace_.string() + " #";
    const std::vector<CIMValue> in = {CIMValue(server.c_str()), CIMValue("u"), CIMValue("p"),
                                      CIMValue("f")};
    EXPECT_EQ(Invoke("GetViaFtp", in), CIMValue(""));
    ExpectStarted("/qv/bin/patchkeeper --ftp " + server + " 'u' 'p' 'f'");
    ASSERT_EQ(tool.Calls().size(), 2U);
    EXPECT_THAT(tool.Calls()[1], ElementsAre("/qv/bin/patchkeeper", "--ftp", "127.0.0.1"));
    EXPECT_TRUE(std::filesystem::exists(trace_));
}

TEST_F(AvailableMethodOddities, AV11_TheShellSeesAnAmpersandABackQuoteAndANewline) {
    const std::string touch = "touch " + trace_.string();
    for (const std::string& path : {"x && " + touch, "x `" + touch + "`", "x\n" + touch}) {
        for (const char* const method : {"GetViaUsb", "GetViaHardDrive"}) {
            std::filesystem::remove(trace_);
            EXPECT_EQ(Invoke(method, {CIMValue(path.c_str())}), CIMValue(""));
            WaitForBackgroundTasks();
            EXPECT_TRUE(std::filesystem::exists(trace_)) << method << " " << path;
        }
    }
}

TEST_F(AvailableMethodOddities, AV12_AProgressThatIsNoNumberIs0) {
    tool.Plays("--status", ToolAnswer().Output("soon\tAlmost there\n"));
    EXPECT_EQ(Invoke("GetProgress"), CIMValue(Int8(0)));
    EXPECT_EQ(out[0].getValue(), CIMValue("Almost there"));
}

TEST_F(AvailableMethodOddities, AV13_TheUpdateIsLookedForBeforeTheMethod) {
    EXPECT_EQ(CimErrorOf([&] { InvokeOn("0", "Unknown"); }).number, 17);
    EXPECT_EQ(CimErrorOf([&] { InvokeOn("7", "Unknown"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { Invoke("Unknown"); }).number, 4);
    EXPECT_EQ(CimErrorOf([&] { InvokeOn("7", "Apply", {CIMValue("too many")}); }).number, 6);
}

TEST_F(AvailableMethodOddities, AV14_ThreeMethodsCallAWrongCountAFailure) {
    const auto codeOf = [&](const char* method, std::size_t count) {
        const std::vector<CIMValue> in(count, CIMValue("10.0.0.1"));
        return CimErrorOf([&] { Invoke(method, in); }).number;
    };
    EXPECT_EQ(codeOf("GetViaSamba", 3), 1);
    EXPECT_EQ(codeOf("GetViaHardDrive", 0), 1);
    EXPECT_EQ(codeOf("GetViaElementManager", 1), 1);
    EXPECT_EQ(codeOf("GetViaFtp", 3), 4);
    EXPECT_EQ(codeOf("GetViaHttp", 4), 4);
    EXPECT_EQ(codeOf("GetViaUsb", 0), 4);
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(AvailableMethodOddities, AV15_ProgressTakesAnyParameters) {
    tool.Plays("--status", ToolAnswer().Output("0\tNothing\n"));
    EXPECT_EQ(Invoke("GetProgress", {CIMValue("x"), CIMValue(CIMNULL)}), CIMValue(Int8(0)));
}

TEST_F(AvailableMethodOddities, AV16_AskingForComponentsSelectsAlsoWhenTheToolFails) {
    gComponentList = Array<Component>(2);
    tool.Plays("--hascomponents", ToolAnswer().ExitCode(15));
    EXPECT_EQ(CimErrorOf([&] { InvokeOn("1", "HasOptionalComponents"); }),
              Failed("A description.\n\n#SWU_Patchkeeper_PatchApplyFailed#"));
    EXPECT_EQ(Text(gPatchName), "M");
    EXPECT_EQ(Text(gPatchVersion), "2.0");
    EXPECT_EQ(gComponentList.size(), 0U);
}

TEST_F(AvailableMethodOddities, AV17_NameAndVersionAreNotQuoted) {
    const AvaliableUpdate record = Record("two words", "\"1 0\"");
    record.Schedule("a date", "a time");
    ASSERT_EQ(tool.Calls().size(), 1U);
    EXPECT_THAT(tool.Calls()[0], ElementsAre("/qv/bin/patchkeeper", "--sched", "two", "words",
                                             "1 0", "a date", "a time"));
}

TEST_F(AvailableMethodOddities, AV19_ARefusalIsAReturnedText) {
    const auto ftp = [&](const char* server, const char* last) {
        return Invoke("GetViaFtp",
                      {CIMValue(server), CIMValue("u"), CIMValue("p"), CIMValue(last)});
    };
    EXPECT_EQ(ftp("server", "f"), CIMValue("Invalid IP Address"));
    EXPECT_EQ(ftp("server", "it's"), CIMValue("Invalid Parameters"));
    EXPECT_EQ(Invoke("GetViaUsb", {CIMValue("a;b")}), CIMValue("Invalid Parameters"));
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(AvailableMethodOddities, AV22_MethodNamesAreComparedWithTheirCase) {
    for (const char* const other :
         {"getviaftp", "GetViaFTP", "getviahttp", "getviasamba", "getviausb", "getviaharddrive",
          "getviaelementmanager", "getprogress", "apply", "WARNINGS", "hasoptionalcomponents",
          "addtoschedule"}) {
        EXPECT_EQ(CimErrorOf([&] { InvokeOn("0", other); }).number, 17) << other;
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(AvailableMethodOddities, AV23_BothTextsCarryTheDayAndTheTimeOfDay) {
    InvokeOn("0", "AddToSchedule",
             {When("20260213010203.000000+000"), When("20270405060708.000000+000")});
    EXPECT_THAT(tool.Calls().back(),
                ElementsAre("/qv/bin/patchkeeper", "--sched", "N", "V", "Fri Feb 13 01:02:03 2026",
                            "Mon Apr  5 06:07:08 2027"));
}
