#include "ActiveTest.hpp"

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

class Active : public ActiveProviderTest {
protected:
    Active() {
        tool.Plays("--apply",
                   ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/active/two_updates.tsv"));
    }
};

TEST_F(Active, AnInstancePerLineWithItsTenProperties) {
    const CIMInstanceArray instances = calls.EnumInstances(ACTIVE);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Text(instances[0].getClassName()), ACTIVE);
    EXPECT_THAT(
        PropertiesOf(instances[0]),
        ElementsAre(
            "string InstanceID=vim 9.0", "string Name=vim", "string ShortDescription=An editor",
            "string UpdateDescription=The long\ntext.\n", "string VersionString=9.0",
            "string Location=ftp://10.0.0.1/pub", "datetime ApplyDate=20260213225900.000000+000",
            "boolean RebootRequired=true", "string Status=Applying", "string Size=12 MB"));
    EXPECT_THAT(
        PropertiesOf(instances[1]),
        ElementsAre("string InstanceID=bash-doc 1:5.2", "string Name=bash-doc",
                    "string ShortDescription=A shell, and what it does",
                    "string UpdateDescription=The long\ntext.\n", "string VersionString=1:5.2",
                    "string Location=USB", "datetime ApplyDate=20260213215900.000000+000",
                    "boolean RebootRequired=false", "string Status=Waiting", "string Size=7"));
}

TEST_F(Active, TheClassIsItsOwnWhateverNameTheCallSpells) {
    EXPECT_EQ(Text(calls.EnumInstances("Other")[0].getClassName()), ACTIVE);
    EXPECT_EQ(calls.EnumInstanceNames("Other")[0], PathOf("vim 9.0"));
}

TEST_F(Active, InstancesHaveThePathsOfTheNames) {
    const CIMInstanceArray instances = calls.EnumInstances(ACTIVE);
    const CIMObjectPathArray paths = calls.EnumInstanceNames(ACTIVE);
    ASSERT_EQ(instances.size(), 2U);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(Text(paths[0].toString()),
              "/root/cimv2:ZNX_ActiveSoftwareUpdate.InstanceID=\"vim 9.0\"");
    EXPECT_EQ(Text(paths[1].toString()),
              "/root/cimv2:ZNX_ActiveSoftwareUpdate.InstanceID=\"bash-doc 1:5.2\"");
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(CIMObjectPath("root/cimv2", instances[i]), paths[i]);
    }
    EXPECT_EQ(CIMObjectPath("root/cimv2", Get("vim 9.0")), paths[0]);
}

TEST_F(Active, PathsCarryTheNamespaceOfTheRequest) {
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder result(paths);
    provider.enumInstanceNames(env, "root/other", ACTIVE, result, CIMClass());
    EXPECT_EQ(Text(paths[0].getNameSpace()), "root/other");
}

TEST_F(Active, APathIsMadeThatOfTheRecord) {
    ActiveUpdate record;
    provider.getActiveUpdateWithCIMObjectPath(PathOf("vim 9.0"), record);
    CIMObjectPath path = test_support::PathOf("Other", "Other", "1");
    provider.ActiveUpdateToCIMObjectPath(record, path);
    EXPECT_EQ(path, PathOf("vim 9.0"));
}

TEST_F(Active, AnInstanceKeepsWhatItHoldsAlready) {
    ActiveUpdate record;
    provider.getActiveUpdateWithCIMObjectPath(PathOf("vim 9.0"), record);
    CIMInstance instance(ACTIVE);
    instance.setProperty("Name", CIMValue("before"));
    provider.ActiveUpdateToCIMInstance("root/cimv2", record, CIMClass(), instance);
    EXPECT_EQ(PropertiesOf(instance).size(), 10U);
    EXPECT_EQ(ValueOf(instance, "Name"), "vim");
}

TEST_F(Active, EveryCallAsksTheToolAnew) {
    Get("vim 9.0");
    Prints(Line("new", "1"));
    EXPECT_EQ(CimErrorOf([&] { Get("vim 9.0"); }), NotFound());
    EXPECT_EQ(ValueOf(Get("new 1"), "Name"), "new");
    EXPECT_EQ(Text(calls.EnumInstanceNames(ACTIVE)[0].getKeyValue("InstanceID").toString()),
              "new 1");
    Prints("");
    EXPECT_TRUE(calls.EnumInstances(ACTIVE).empty());
    EXPECT_TRUE(calls.EnumInstanceNames(ACTIVE).empty());
}

TEST_F(Active, TheLogNamesEveryRun) {
    Get("vim 9.0");
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --apply ",
                                        "INFO: Executing: /qv/bin/patchkeeper -l vim-9.0"));
}

TEST_F(Active, ARefusedLookupLogsOnlyTheRun) {
    EXPECT_EQ(CimErrorOf([&] { Get("other 1"); }), NotFound());
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(CIMObjectPath(ACTIVE)); }), InvalidParameter());
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --apply "));
}

TEST_F(Active, AnInstanceFindsItsUpdate) {
    const CIMInstance instance = Get("bash-doc 1:5.2");
    ActiveUpdate record;
    provider.getActiveUpdateWithCIMInstance(instance, record);
    String name;
    record.getName(name);
    EXPECT_EQ(Text(name), "bash-doc");
}

TEST_F(Active, AnInstanceIsLookedUpAsAPathIs) {
    ActiveUpdate record;
    const auto find = [&](const CIMInstance& instance) {
        return CimErrorOf([&] { provider.getActiveUpdateWithCIMInstance(instance, record); });
    };
    CIMInstance instance(ACTIVE);
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
    tool.Plays("--apply", ToolAnswer().ExitCode(34));
    instance.setProperty(CIMProperty("InstanceID", CIMValue("vim 9.0")));
    EXPECT_EQ(find(instance), NotFound());
}

TEST_F(Active, AnArrayIsNoKey) {
    CIMObjectPath path(ACTIVE);
    path.setKeyValue("InstanceID", CIMValue(StringArray(1, "vim 9.0")));
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(path); }), InvalidParameter());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(Active, AnUnreadableDateIsTheLibrarysException) {
    Prints("a\t1\td\tl\tsoon\tno\ts\tt\n");
    EXPECT_THROW(calls.EnumInstances(ACTIVE), DateTimeException);
    EXPECT_THROW(Get("a 1"), DateTimeException);
    EXPECT_EQ(calls.EnumInstanceNames(ACTIVE).size(), 1U);
    tool.Plays("--rback", ToolAnswer());
    EXPECT_EQ(Text(Invoke("a 1", "Cancel").toString()), "");
}

TEST_F(Active, TheInstancesBeforeAnUnreadableDateAreHandedOver) {
    Prints(Line("a", "1") + "b\t1\td\tl\tyesterday\tno\ts\tt\n");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    EXPECT_THROW(calls.EnumInstances(ACTIVE, result), DateTimeException);
    EXPECT_EQ(instances.size(), 1U);
}

TEST_F(Active, AShortLineHandsOverNothing) {
    Prints(Line("a", "1") + "short\n");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(ACTIVE, result); }),
              Failed(MissingField("Version")));
    EXPECT_TRUE(instances.empty());
}

TEST_F(Active, AHandlerThatThrowsEndsTheEnumeration) {
    RefusingResult refusing;
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(ACTIVE, refusing); }).number, 2);
    EXPECT_EQ(tool.Calls().size(), 2U);
}

TEST_F(Active, TooManyRecordsAreAFailureOfTheEnumerationAndNotFoundOfALookup) {
    std::string output;
    for (int i = 0; i < 70000; ++i) {
        output += Line("u", std::to_string(i));
    }
    Prints(output);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(ACTIVE); }),
              Failed("Too many records: more than 65535 lines from /qv/bin/patchkeeper --apply "));
    EXPECT_EQ(CimErrorOf([&] { Get("u 1"); }), NotFound());
    Prints(Line("a", "1"));
    EXPECT_EQ(calls.EnumInstanceNames(ACTIVE).size(), 1U);
}

TEST_F(Active, FailuresLeaveNothingOpenAndNothingRunning) {
    const std::size_t before = OpenDescriptors();
    for (int i = 0; i < 20; ++i) {
        tool.Plays("--apply", ToolAnswer().ExitCode(11));
        EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(ACTIVE); }).number, 1);
        Prints("short\n");
        EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(ACTIVE); }).number, 1);
        EXPECT_EQ(CimErrorOf([&] { Get("a 1"); }), NotFound());
    }
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_TRUE(NoChildIsLeft());
}

class ActiveCancel : public ActiveProviderTest {
protected:
    ActiveCancel() {
        Prints(Line("vim", "9.0"));
        tool.Plays("--rback", ToolAnswer());
    }
};

TEST_F(ActiveCancel, TheAnswerIsAnEmptyTextWhateverTheToolPrints) {
    tool.Plays("--rback", ToolAnswer().Output("Rolled back.\n"));
    EXPECT_EQ(Invoke("vim 9.0", "Cancel"), CIMValue(""));
}

TEST_F(ActiveCancel, OutParametersStayAsTheyAre) {
    CIMParamValueArray out(1, CIMParamValue("Status", CIMValue("before")));
    provider.invokeMethod(env, "root/cimv2", PathOf("vim 9.0"), "Cancel", CIMParamValueArray(),
                          out);
    ASSERT_EQ(out.size(), 1U);
    EXPECT_EQ(out[0].getValue(), CIMValue("before"));
}

class ActiveOddities : public ActiveProviderTest {
protected:
    ActiveOddities() {
        Prints(Line("vim", "9.0"));
        tool.Plays("--rback", ToolAnswer());
    }
};

TEST_F(ActiveOddities, AC1_ApplyWithoutAnUpdateListsThoseBeingApplied) {
    calls.EnumInstanceNames(ACTIVE);
    EXPECT_THAT(tool.Calls(), ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--apply")));
}

TEST_F(ActiveOddities, AC2_LinesOfErrorOutputAreRecords) {
    tool.Plays("--apply", ToolAnswer().Output(Line("a", "1")).ErrorText(Line("warning", "2")));
    const CIMObjectPathArray paths = calls.EnumInstanceNames(ACTIVE);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[1], PathOf("warning 2"));
}

TEST_F(ActiveOddities, AC3_AskingForTheNextRecordMovesOnAndNextDoesNot) {
    Prints(Line("a", "1") + Line("b", "2") + Line("c", "3"));
    ActiveUpdate_ObjectList list;
    list.getObjectList();
    EXPECT_TRUE(list.hasObject());
    list.next();
    list.end();
    EXPECT_EQ(Text(list.getName()), "a");
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    EXPECT_EQ(Text(list.getName()), "c");
}

TEST_F(ActiveOddities, AC4_NameAndVersionReachTheShellUnquoted) {
    Prints(Line("a'b c'", "$((1+1))"));
    const CIMInstance instance = Get("a'b c' $((1+1))");
    Invoke("a'b c' $((1+1))", "Cancel");
    EXPECT_THAT(tool.Calls(),
                ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--apply"),
                            ElementsAre("/qv/bin/patchkeeper", "-l", "ab c-2"),
                            ElementsAre("/qv/bin/patchkeeper", "--apply"),
                            ElementsAre("/qv/bin/patchkeeper", "--rback", "ab c", "2")));
}

TEST_F(ActiveOddities, AC5_CancelWaitsForTheRollBack) {
    tool.Plays("--rback", ToolAnswer().ExitCode(16).Held());
    std::thread client([&] {
        EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Cancel"); }),
                  Failed("It failed.\n\n#SWU_Patchkeeper_PatchRemoveFailed#"));
    });
    EXPECT_TRUE(tool.WaitForCalls(2));
    EXPECT_FALSE(BackgroundTasksRun());
    tool.Release("--rback");
    client.join();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --apply  2>&1",
                                                  "/qv/bin/patchkeeper --rback vim 9.0",
                                                  "/qv/bin/patchkeeper --errors 16 2>&1"));
}

TEST_F(ActiveOddities, AC6_ABlankInANameMakesTwoUpdatesOne) {
    Prints(Line("a b", "1", "reboot") + Line("a", "b 1", "no"));
    const CIMObjectPathArray paths = calls.EnumInstanceNames(ACTIVE);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0], paths[1]);
    EXPECT_EQ(ValueOf(Get("a b 1"), "Name"), "a b");
    EXPECT_EQ(ValueOf(Get("a b 1"), "RebootRequired"), "true");
}

TEST_F(ActiveOddities, AC7_AToolFailureDuringALookupIsNotFound) {
    tool.Plays("--apply", ToolAnswer().ExitCode(34));
    EXPECT_EQ(CimErrorOf([&] { Get("vim 9.0"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(PathOf("vim 9.0")); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Cancel"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(ACTIVE); }).number, 1);
}

TEST_F(ActiveOddities, AC8_InstanceIDIsAPlainPropertyAndTheKeyOfThePath) {
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

TEST_F(ActiveOddities, AC9_WithoutADescriptionThePropertyIsMissing) {
    tool.Plays("-l", ToolAnswer().Output("Some of it.\n").ExitCode(1));
    const CIMInstance instance = calls.EnumInstances(ACTIVE)[0];
    EXPECT_EQ(PropertiesOf(instance).size(), 9U);
    EXPECT_THAT(PropertiesOf(instance), Not(Contains(StartsWith("string UpdateDescription="))));
    EXPECT_EQ(PropertiesOf(Get("vim 9.0")), PropertiesOf(instance));
}

TEST_F(ActiveOddities, AC10_ThePropertyListChangesNothing) {
    const StringArray nothing;
    const StringArray name(1, "Name");
    EXPECT_EQ(PropertiesOf(calls.EnumInstances(ACTIVE, &nothing)[0]).size(), 10U);
    EXPECT_EQ(PropertiesOf(calls.EnumInstances(ACTIVE, &name)[0]).size(), 10U);
    EXPECT_EQ(PropertiesOf(Get("vim 9.0", &nothing)).size(), 10U);
    EXPECT_EQ(PropertiesOf(Get("vim 9.0", &name)).size(), 10U);
}

TEST_F(ActiveOddities, AC11_ADeletionIsRefusedOnlyOnceTheUpdateIsFound) {
    EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(PathOf("vim 9.0")); }).number, 7);
    EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(PathOf("other 1")); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(CIMObjectPath(ACTIVE)); }).number, 4);
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --apply  2>&1",
                                                  "/qv/bin/patchkeeper --apply  2>&1"));
}

TEST_F(ActiveOddities, AC12_TheUpdateComesBeforeTheMethod) {
    EXPECT_EQ(CimErrorOf([&] { Invoke("other 1", "Unknown"); }).number, 6);
    EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", "Unknown"); }).number, 17);
}

TEST_F(ActiveOddities, AC13_MethodNamesAreComparedWithTheirCase) {
    for (const char* const other : {"cancel", "CANCEL"}) {
        EXPECT_EQ(CimErrorOf([&] { Invoke("vim 9.0", other); }).number, 17) << other;
    }
}

TEST_F(ActiveOddities, AC14_CancelReadsNoParameters) {
    const CIMValue null(CIMNULL);
    EXPECT_EQ(Invoke("vim 9.0", "Cancel", In({null, CIMValue(1), CIMValue("x")})), CIMValue(""));
    EXPECT_EQ(tool.ShellCommands().back(), "/qv/bin/patchkeeper --rback vim 9.0");
}

TEST_F(ActiveOddities, AC15_NoOperationLooksForTheUpdateOfAnInstance) {
    const CIMInstance instance = Get("vim 9.0");
    tool.ForgetCalls();
    ActiveUpdate record;
    provider.getActiveUpdateWithCIMInstance(instance, record);
    EXPECT_EQ(tool.Calls().size(), 1U);
    tool.ForgetCalls();
    // Neither the update of an instance is looked for, nor is one without a key refused as such.
    for (const CIMInstance& given : {instance, CIMInstance(ACTIVE)}) {
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(given); }).number, 7);
        EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(given); }).number, 7);
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}
