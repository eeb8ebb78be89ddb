#include "ScheduledTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::InvalidParameter;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Scheduled : public ScheduledProviderTest {
protected:
    Scheduled() {
        tool.Plays("--sched",
                   ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/scheduled/two_updates.tsv"));
    }
};

TEST_F(Scheduled, AnInstancePerLineWithItsElevenProperties) {
    const CIMInstanceArray instances = calls.EnumInstances(SCHEDULED);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Text(instances[0].getClassName()), SCHEDULED);
    EXPECT_THAT(
        PropertiesOf(instances[0]),
        ElementsAre(
            "string InstanceID=vim 9.0", "string Name=vim", "string ShortDescription=An editor",
            "string UpdateDescription=The long\ntext.\n", "string VersionString=9.0",
            "string Location=ftp://10.0.0.1/pub", "datetime DownloadDate=20250102030405.000000+000",
            "datetime ApplyDate=20260213225900.000000+000", "boolean RebootRequired=true",
            "string Status=Scheduled", "string Size=12 MB"));
    EXPECT_THAT(
        PropertiesOf(instances[1]),
        ElementsAre("string InstanceID=bash-doc 1:5.2", "string Name=bash-doc",
                    "string ShortDescription=A shell, and what it does",
                    "string UpdateDescription=The long\ntext.\n", "string VersionString=1:5.2",
                    "string Location=USB", "datetime DownloadDate=20250102030400.000000+000",
                    "datetime ApplyDate=20260213215900.000000+000", "boolean RebootRequired=false",
                    "string Status=Waiting", "string Size=7"));
}

TEST_F(Scheduled, TheClassIsItsOwnWhateverNameTheCallSpells) {
    EXPECT_EQ(Text(calls.EnumInstances("Other")[0].getClassName()), SCHEDULED);
    EXPECT_EQ(calls.EnumInstanceNames("Other")[0], PathOf("vim 9.0"));
}

TEST_F(Scheduled, InstancesHaveThePathsOfTheNames) {
    const CIMInstanceArray instances = calls.EnumInstances(SCHEDULED);
    const CIMObjectPathArray paths = calls.EnumInstanceNames(SCHEDULED);
    ASSERT_EQ(instances.size(), 2U);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(Text(paths[0].toString()),
              "/root/cimv2:ZNX_ScheduledSoftwareUpdate.InstanceID=\"vim 9.0\"");
    EXPECT_EQ(Text(paths[1].toString()),
              "/root/cimv2:ZNX_ScheduledSoftwareUpdate.InstanceID=\"bash-doc 1:5.2\"");
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(CIMObjectPath("root/cimv2", instances[i]), paths[i]);
    }
    EXPECT_EQ(CIMObjectPath("root/cimv2", Get("vim 9.0")), paths[0]);
}

TEST_F(Scheduled, PathsCarryTheNamespaceOfTheRequest) {
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder result(paths);
    provider.enumInstanceNames(env, "root/other", SCHEDULED, result, CIMClass());
    EXPECT_EQ(Text(paths[0].getNameSpace()), "root/other");
}

TEST_F(Scheduled, APathIsMadeThatOfTheRecord) {
    ScheduledUpdate record;
    provider.getScheduledUpdateWithCIMObjectPath(PathOf("vim 9.0"), record);
    CIMObjectPath path = test_support::PathOf("Other", "Other", "1");
    provider.ScheduledUpdateToCIMObjectPath(record, path);
    EXPECT_EQ(path, PathOf("vim 9.0"));
}

TEST_F(Scheduled, AnInstanceKeepsWhatItHoldsAlready) {
    ScheduledUpdate record;
    provider.getScheduledUpdateWithCIMObjectPath(PathOf("vim 9.0"), record);
    CIMInstance instance(SCHEDULED);
    instance.setProperty("Name", CIMValue("before"));
    provider.ScheduledUpdateToCIMInstance("root/cimv2", record, CIMClass(), instance);
    EXPECT_EQ(PropertiesOf(instance).size(), 11U);
    EXPECT_EQ(ValueOf(instance, "Name"), "vim");
}

TEST_F(Scheduled, EveryCallAsksTheToolAnew) {
    Get("vim 9.0");
    Prints(Line("new", "1"));
    EXPECT_EQ(CimErrorOf([&] { Get("vim 9.0"); }), NotFound());
    EXPECT_EQ(ValueOf(Get("new 1"), "Name"), "new");
    EXPECT_EQ(Text(calls.EnumInstanceNames(SCHEDULED)[0].getKeyValue("InstanceID").toString()),
              "new 1");
    Prints("");
    EXPECT_TRUE(calls.EnumInstances(SCHEDULED).empty());
    EXPECT_TRUE(calls.EnumInstanceNames(SCHEDULED).empty());
}

TEST_F(Scheduled, TheLogNamesEveryRun) {
    Get("vim 9.0");
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --sched ",
                                        "INFO: Executing: /qv/bin/patchkeeper -l vim-9.0"));
}

TEST_F(Scheduled, ARefusedLookupLogsOnlyTheRun) {
    EXPECT_EQ(CimErrorOf([&] { Get("other 1"); }), NotFound());
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(CIMObjectPath(SCHEDULED)); }), InvalidParameter());
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --sched "));
}

TEST_F(Scheduled, AnInstanceFindsItsUpdate) {
    const CIMInstance instance = Get("bash-doc 1:5.2");
    ScheduledUpdate record;
    provider.getScheduledUpdateWithCIMInstance(instance, record);
    String name;
    record.getName(name);
    EXPECT_EQ(Text(name), "bash-doc");
}

TEST_F(Scheduled, AnInstanceIsLookedUpAsAPathIs) {
    ScheduledUpdate record;
    const auto find = [&](const CIMInstance& instance) {
        return CimErrorOf([&] { provider.getScheduledUpdateWithCIMInstance(instance, record); });
    };
    CIMInstance instance(SCHEDULED);
    EXPECT_EQ(find(instance), InvalidParameter());
    instance.setProperty(CIMProperty("InstanceID", CIMDataType::STRING));
    EXPECT_EQ(find(instance), InvalidParameter());
    instance.setProperty(CIMProperty("InstanceID", CIMValue(UInt32(1))));
    EXPECT_EQ(find(instance), InvalidParameter());
    instance.setProperty(CIMProperty("InstanceID", CIMValue(StringArray(1, "vim 9.0"))));
    EXPECT_EQ(find(instance), InvalidParameter());
    EXPECT_THAT(tool.Calls(), IsEmpty());
    instance.setProperty(CIMProperty("InstanceID", CIMValue("other 1")));
    EXPECT_EQ(find(instance), NotFound());
    tool.Plays("--sched", ToolAnswer().ExitCode(34));
    instance.setProperty(CIMProperty("InstanceID", CIMValue("vim 9.0")));
    EXPECT_EQ(find(instance), NotFound());
}

TEST_F(Scheduled, AnArrayIsNoKey) {
    CIMObjectPath path(SCHEDULED);
    path.setKeyValue("InstanceID", CIMValue(StringArray(1, "vim 9.0")));
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(path); }), InvalidParameter());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(Scheduled, AnUnreadableDateIsTheLibrarysException) {
    Prints("a\t1\td\tl\tyesterday\tFeb 3 2025 04:05\tno\ts\tt\n");
    EXPECT_THROW(calls.EnumInstances(SCHEDULED), DateTimeException);
    EXPECT_THROW(Get("a 1"), DateTimeException);
    Prints("a\t1\td\tl\tFeb 3 2025 04:05\tsoon\tno\ts\tt\n");
    EXPECT_THROW(calls.EnumInstances(SCHEDULED), DateTimeException);
    EXPECT_THROW(Get("a 1"), DateTimeException);
    EXPECT_EQ(calls.EnumInstanceNames(SCHEDULED).size(), 1U);
    tool.Plays("--msched", ToolAnswer());
    EXPECT_EQ(Text(Invoke("a 1", "Remove").toString()), "");
}

TEST_F(Scheduled, TheInstancesBeforeAnUnreadableDateAreHandedOver) {
    Prints(Line("a", "1") + "b\t1\td\tl\tyesterday\tFeb 3 2025 04:05\tno\ts\tt\n");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    EXPECT_THROW(calls.EnumInstances(SCHEDULED, result), DateTimeException);
    EXPECT_EQ(instances.size(), 1U);
}

TEST_F(Scheduled, AShortLineHandsOverNothing) {
    Prints(Line("a", "1") + "short\n");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(SCHEDULED, result); }),
              Failed(MissingField("Version")));
    EXPECT_TRUE(instances.empty());
}

TEST_F(Scheduled, AHandlerThatThrowsEndsTheEnumeration) {
    RefusingResult refusing;
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(SCHEDULED, refusing); }).number, 2);
    EXPECT_EQ(tool.Calls().size(), 2U);
}

TEST_F(Scheduled, TooManyRecordsAreAFailureOfTheEnumerationAndNotFoundOfALookup) {
    std::string output;
    for (int i = 0; i < 70000; ++i) {
        output += Line("u", std::to_string(i));
    }
    Prints(output);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(SCHEDULED); }),
              Failed("Too many records: more than 65535 lines from /qv/bin/patchkeeper --sched "));
    EXPECT_EQ(CimErrorOf([&] { Get("u 1"); }), NotFound());
    Prints(Line("a", "1"));
    EXPECT_EQ(calls.EnumInstanceNames(SCHEDULED).size(), 1U);
}

TEST_F(Scheduled, FailuresLeaveNothingOpenAndNothingRunning) {
    const std::size_t before = OpenDescriptors();
    for (int i = 0; i < 20; ++i) {
        tool.Plays("--sched", ToolAnswer().ExitCode(11));
        EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(SCHEDULED); }).number, 1);
        Prints("short\n");
        EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(SCHEDULED); }).number, 1);
        EXPECT_EQ(CimErrorOf([&] { Get("a 1"); }), NotFound());
    }
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_TRUE(NoChildIsLeft());
}

class ScheduledModify : public ScheduledProviderTest {
protected:
    ScheduledModify() {
        Prints(Line("vim", "9.0"));
        tool.Plays("--msched", ToolAnswer());
    }

    // The command line that a day and a time end up on, in the zone of TZ.
    std::string CommandOf(const char* day, const char* time) {
        EXPECT_EQ(Invoke("vim 9.0", "Modify", In({When(day), When(time)})), CIMValue(""));
        return tool.ShellCommands().back();
    }
};

TEST_F(ScheduledModify, TextsAreInLocalTimeWithoutTheirNewline) {
    EXPECT_EQ(CommandOf("20260213000000.000000+000", "20260101235900.000000+000"),
              "/qv/bin/patchkeeper --msched vim 9.0 "
              "\"Fri Feb 13 00:00:00 2026\" \"Thu Jan  1 23:59:00 2026\"");
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    EXPECT_EQ(CommandOf("20260213000000.000000+000", "20260701235900.000000+000"),
              "/qv/bin/patchkeeper --msched vim 9.0 "
              "\"Fri Feb 13 01:00:00 2026\" \"Thu Jul  2 01:59:00 2026\"");
    setenv("TZ", "America/New_York", 1);
    tzset();
    EXPECT_EQ(CommandOf("20260213000000.000000+060", "20260213030000.000000-120"),
              "/qv/bin/patchkeeper --msched vim 9.0 "
              "\"Thu Feb 12 18:00:00 2026\" \"Fri Feb 13 00:00:00 2026\"");
}

TEST_F(ScheduledModify, AsterisksAreZeros) {
    EXPECT_EQ(CommandOf("20260213******.******+000", "202602132359**.******+***"),
              "/qv/bin/patchkeeper --msched vim 9.0 "
              "\"Fri Feb 13 00:00:00 2026\" \"Fri Feb 13 23:59:00 2026\"");
}

TEST_F(ScheduledModify, ParametersGoByPositionAndNotByName) {
    CIMParamValueArray in;
    in.push_back(CIMParamValue("Time", When("20260213000000.000000+000")));
    in.push_back(CIMParamValue("Date", When("20260101235900.000000+000")));
    EXPECT_EQ(Invoke("vim 9.0", "Modify", in), CIMValue(""));
    EXPECT_EQ(tool.ShellCommands().back(),
              "/qv/bin/patchkeeper --msched vim 9.0 "
              "\"Fri Feb 13 00:00:00 2026\" \"Thu Jan  1 23:59:00 2026\"");
}

TEST_F(ScheduledModify, TheAnswerIsAnEmptyTextWhateverTheToolPrints) {
    tool.Plays("--msched", ToolAnswer().Output("Moved.\n"));
    const CIMValue result =
        Invoke("vim 9.0", "Modify",
               In({When("20260213000000.000000+000"), When("20260213000000.000000+000")}));
    EXPECT_EQ(result, CIMValue(""));
    EXPECT_EQ(Invoke("vim 9.0", "Remove"), CIMValue(""));
}

TEST_F(ScheduledModify, OutParametersStayAsTheyAre) {
    CIMParamValueArray out(1, CIMParamValue("Status", CIMValue("before")));
    provider.invokeMethod(env, "root/cimv2", PathOf("vim 9.0"), "Remove", CIMParamValueArray(),
                          out);
    ASSERT_EQ(out.size(), 1U);
    EXPECT_EQ(out[0].getValue(), CIMValue("before"));
}

TEST_F(ScheduledModify, TheCallWaitsForTheTool) {
    tool.Plays("--msched", ToolAnswer().ExitCode(18).Held());
    std::thread client([&] {
        EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Remove"); }),
                  Failed("It failed.\n\n#SWU_Patchkeeper_PatchModifyFailed#"));
    });
    EXPECT_TRUE(tool.WaitForCalls(2));
    tool.Release("--msched");
    client.join();
    EXPECT_FALSE(BackgroundTasksRun());
}

class ScheduledOddities : public ScheduledProviderTest {
protected:
    ScheduledOddities() {
        Prints(Line("vim", "9.0"));
        tool.Plays("--msched", ToolAnswer());
    }
};

TEST_F(ScheduledOddities, SC1_OneOptionMovesAndDropsTheSchedule) {
    const CIMValue when = When("20260213000000.000000+000");
    Invoke("vim 9.0", "Modify", In({when, when}));
    Invoke("vim 9.0", "Remove");
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --sched  2>&1",
                            "/qv/bin/patchkeeper --msched vim 9.0 "
                            "\"Fri Feb 13 00:00:00 2026\" \"Fri Feb 13 00:00:00 2026\"",
                            "/qv/bin/patchkeeper --sched  2>&1",
                            "/qv/bin/patchkeeper --msched vim 9.0"));
}

TEST_F(ScheduledOddities, SC2_LinesOfErrorOutputAreRecords) {
    tool.Plays("--sched", ToolAnswer().Output(Line("a", "1")).ErrorText(Line("warning", "2")));
    const CIMObjectPathArray paths = calls.EnumInstanceNames(SCHEDULED);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[1], PathOf("warning 2"));
}

TEST_F(ScheduledOddities, SC3_AskingForTheNextRecordMovesOnAndNextDoesNot) {
    Prints(Line("a", "1") + Line("b", "2") + Line("c", "3"));
    ScheduledUpdate_ObjectList list;
    list.getObjectList();
    EXPECT_TRUE(list.hasObject());
    list.next();
    list.end();
    EXPECT_EQ(Text(list.getName()), "a");
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "c");
}

TEST_F(ScheduledOddities, SC4_NameAndVersionReachTheShellUnquoted) {
    Prints(Line("a'b c'", "$((1+1))"));
    const CIMInstance instance = Get("a'b c' $((1+1))");
    Invoke("a'b c' $((1+1))", "Remove");
    EXPECT_THAT(tool.Calls(),
                ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--sched"),
                            ElementsAre("/qv/bin/patchkeeper", "-l", "ab c-2"),
                            ElementsAre("/qv/bin/patchkeeper", "--sched"),
                            ElementsAre("/qv/bin/patchkeeper", "--msched", "ab c", "2")));
}

TEST_F(ScheduledOddities, SC5_ABlankInANameMakesTwoUpdatesOne) {
    Prints(Line("a b", "1", "reboot") + Line("a", "b 1", "no"));
    const CIMObjectPathArray paths = calls.EnumInstanceNames(SCHEDULED);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0], paths[1]);
    EXPECT_EQ(ValueOf(Get("a b 1"), "Name"), "a b");
    EXPECT_EQ(ValueOf(Get("a b 1"), "RebootRequired"), "true");
}

TEST_F(ScheduledOddities, SC6_AToolFailureDuringALookupIsNotFound) {
    tool.Plays("--sched", ToolAnswer().ExitCode(34));
    EXPECT_EQ(CimErrorOf([&] { Get("vim 9.0"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(PathOf("vim 9.0")); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Remove"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(SCHEDULED); }).number, 1);
}

TEST_F(ScheduledOddities, SC7_BothTextsCarryTheDayAndTheTimeOfDay) {
    Invoke("vim 9.0", "Modify",
           In({When("20260213010203.000000+000"), When("20270405060708.000000+000")}));
    EXPECT_THAT(tool.Calls().back(),
                ElementsAre("/qv/bin/patchkeeper", "--msched", "vim", "9.0",
                            "Fri Feb 13 01:02:03 2026", "Mon Apr  5 06:07:08 2027"));
}

TEST_F(ScheduledOddities, SC8_InstanceIDIsAPlainPropertyAndTheKeyOfThePath) {
    const CIMInstance instance = Get("vim 9.0");
    for (const CIMProperty& property : instance.getProperties()) {
        EXPECT_FALSE(property.isKey()) << property.getName().c_str();
        EXPECT_TRUE(property.getQualifiers().empty()) << property.getName().c_str();
    }
    const CIMPropertyArray keys = instance.getKeyValuePairs();
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_EQ(Text(keys[0].getName()), "InstanceID");
    EXPECT_EQ(keys[0].getValue(), CIMValue("vim 9.0"));
}

TEST_F(ScheduledOddities, SC9_WithoutADescriptionThePropertyIsMissing) {
    tool.Plays("-l", ToolAnswer().Output("Some of it.\n").ExitCode(1));
    const CIMInstance instance = calls.EnumInstances(SCHEDULED)[0];
    EXPECT_EQ(PropertiesOf(instance).size(), 10U);
    EXPECT_THAT(PropertiesOf(instance), Not(Contains(StartsWith("string UpdateDescription="))));
    EXPECT_EQ(PropertiesOf(Get("vim 9.0")), PropertiesOf(instance));
}

TEST_F(ScheduledOddities, SC10_ThePropertyListChangesNothing) {
    const StringArray nothing;
    const StringArray name(1, "Name");
    EXPECT_EQ(PropertiesOf(calls.EnumInstances(SCHEDULED, &nothing)[0]).size(), 11U);
    EXPECT_EQ(PropertiesOf(calls.EnumInstances(SCHEDULED, &name)[0]).size(), 11U);
    EXPECT_EQ(PropertiesOf(Get("vim 9.0", &nothing)).size(), 11U);
    EXPECT_EQ(PropertiesOf(Get("vim 9.0", &name)).size(), 11U);
}

TEST_F(ScheduledOddities, SC11_DeletingAnInstanceDropsTheScheduleAlone) {
    calls.DeleteInstance(PathOf("vim 9.0"));
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --sched  2>&1",
                                                  "/qv/bin/patchkeeper --msched vim 9.0"));
}

TEST_F(ScheduledOddities, SC12_TheUpdateComesBeforeTheMethodAndItsParameters) {
    EXPECT_EQ(CimErrorOf([&] { Invoke("other 1", "Unknown"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { Invoke("other 1", "Modify"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Unknown"); }).number, 17);
    EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Modify"); }).number, 4);
}

TEST_F(ScheduledOddities, SC13_MethodNamesAreComparedWithTheirCase) {
    for (const char* const other : {"modify", "MODIFY", "remove", "REMOVE"}) {
        EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", other); }).number, 17) << other;
    }
}

TEST_F(ScheduledOddities, SC14_RemoveReadsNoParameters) {
    const CIMValue null(CIMNULL);
    EXPECT_EQ(Invoke("vim 9.0", "Remove", In({null, CIMValue(1), CIMValue("x")})), CIMValue(""));
    EXPECT_EQ(tool.ShellCommands().back(), "/qv/bin/patchkeeper --msched vim 9.0");
}

TEST_F(ScheduledOddities, SC15_NoOperationLooksForTheUpdateOfAnInstance) {
    const CIMInstance instance = Get("vim 9.0");
    tool.ForgetCalls();
    ScheduledUpdate record;
    provider.getScheduledUpdateWithCIMInstance(instance, record);
    EXPECT_EQ(tool.Calls().size(), 1U);
    tool.ForgetCalls();
    // Neither the update of an instance is looked for, nor is one without a key refused as such.
    for (const CIMInstance& given : {instance, CIMInstance(SCHEDULED)}) {
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(given); }).number, 7);
        EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(given); }).number, 7);
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}
