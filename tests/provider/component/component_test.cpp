#include "ComponentTest.hpp"

#include "provider/available/AvaliableProvider.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::InvalidParameter;
using test_support::NotFound;
using test_support::PathOf;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class Components : public ComponentTest {
protected:
    Components() {
        SelectComponentsOf("N", "V");
        Prints("a\nb\nc\n");
    }

    std::vector<std::string> Install() const {
        std::vector<std::string> values;
        const Array<Component> list = ListSnapshot(gComponentList);
        for (const Component& record : list) {
            values.emplace_back(record.Install ? "yes" : "no");
        }
        return values;
    }
};

TEST_F(Components, AnInstancePerLineWithItsFiveProperties) {
    const CIMInstanceArray instances = Enumerate();
    ASSERT_EQ(instances.size(), 3U);
    EXPECT_EQ(Text(instances[0].getClassName()), "ZNX_SoftwareUpdateComponent");
    EXPECT_THAT(PropertiesOf(instances[0]),
                ElementsAre("string InstanceID=0", "string Name=a", "string VersionString=",
                            "string ShortDescription=", "boolean Install=false"));
    EXPECT_THAT(PropertiesOf(instances[2]),
                ElementsAre("string InstanceID=2", "string Name=c", "string VersionString=",
                            "string ShortDescription=", "boolean Install=false"));
}

TEST_F(Components, InstanceIDIsTheOnlyKey) {
    const CIMInstance instance = Enumerate()[1];
    for (const CIMProperty& property : instance.getProperties()) {
        EXPECT_EQ(property.isKey(), Text(property.getName()) == "InstanceID");
    }
    EXPECT_EQ(CIMObjectPath("root/cimv2", instance), PathOf(COMPONENT, "InstanceID", "1"));
}

TEST_F(Components, TheClassNameOfAPathIsThatOfTheRequest) {
    PrintedBy([&] {
        const CIMObjectPathArray paths = calls.EnumInstanceNames("znx_x");
        ASSERT_EQ(paths.size(), 3U);
        EXPECT_EQ(Text(paths[2].toString()), "/root/cimv2:znx_x.InstanceID=\"2\"");
    });
}

TEST_F(Components, EveryPropertyIsSetWhateverThePropertyListNames) {
    const StringArray name(1, "Name");
    PrintedBy(
        [&] { EXPECT_EQ(calls.EnumInstances(COMPONENT, &name)[0].getProperties().size(), 5U); });
    EXPECT_EQ(calls.GetInstance(PathOf(COMPONENT, "InstanceID", "0"), &name).getProperties().size(),
              5U);
}

TEST_F(Components, EachEnumerationAsksForTheSelectedUpdate) {
    Enumerate();
    PrintedBy([&] { calls.EnumInstanceNames(COMPONENT); });
    SelectComponentsOf("other", "2.0");
    Enumerate();
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --components N V",
                                                 "/qv/bin/patchkeeper --components N V",
                                                 "/qv/bin/patchkeeper --components other 2.0"));
    EXPECT_THAT(log->All(),
                ElementsAre("INFO: Executing: /qv/bin/patchkeeper --components  N V",
                            "INFO: Executing: /qv/bin/patchkeeper --components  N V",
                            "INFO: Executing: /qv/bin/patchkeeper --components  other 2.0"));
}

TEST_F(Components, WithoutASelectedUpdateNothingIsAsked) {
    const std::vector<std::pair<const char*, const char*>> incomplete = {
        {"", ""}, {"N", ""}, {"", "V"}};
    for (const auto& [name, version] : incomplete) {
        SelectComponentsOf("N", "V");
        Enumerate();
        tool.ForgetCalls();
        log->Forget();
        gPatchName = name;
        gPatchVersion = version;
        EXPECT_EQ(EnumerationError(), Failed("Missing Name and/or Version"));
        EXPECT_THAT(tool.Calls(), IsEmpty());
        EXPECT_THAT(log->All(), ElementsAre("INFO: Exception: Missing Name and/or Version"));
        EXPECT_EQ(gComponentList.size(), 0U) << name << version;
    }
}

TEST_F(Components, SelectingAnUpdateEmptiesTheList) {
    Enumerate();
    Choose("0");
    SelectComponentsOf("N", "V");
    EXPECT_EQ(gComponentList.size(), 0U);
    EXPECT_EQ(Text(GetOptionalComponentList()), "");
    EXPECT_EQ(Text(gPatchName), "N");
    EXPECT_EQ(Text(gPatchVersion), "V");
}

TEST_F(Components, ChosenOnesAreListedInTheirOrder) {
    Enumerate();
    EXPECT_EQ(Text(GetOptionalComponentList()), "");
    Choose("2");
    EXPECT_EQ(Text(GetOptionalComponentList()), "c");
    Choose("0");
    EXPECT_EQ(Text(GetOptionalComponentList()), "a c");
    Choose("1");
    EXPECT_EQ(Text(GetOptionalComponentList()), "a b c");
    Choose("0", false);
    EXPECT_EQ(Text(GetOptionalComponentList()), "b c");
}

TEST_F(Components, AChoiceChangesInstallOfOneRecordAndNothingElse) {
    Enumerate();
    tool.ForgetCalls();
    log->Forget();
    CIMInstance changed = Chosen(CIMValue("1"), CIMValue(true));
    changed.setProperty("Name", CIMValue("other"));
    changed.setProperty("VersionString", CIMValue("9"));
    calls.ModifyInstance(changed);
    EXPECT_THAT(PropertiesOf(Get("1")),
                ElementsAre("string InstanceID=1", "string Name=b", "string VersionString=",
                            "string ShortDescription=", "boolean Install=true"));
    EXPECT_THAT(Install(), ElementsAre("no", "yes", "no"));
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(Components, AnInstanceIDOfAnotherTypeIsTakenAsItsText) {
    Enumerate();
    calls.ModifyInstance(Chosen(CIMValue(UInt32(2)), CIMValue(true)));
    EXPECT_EQ(Text(GetOptionalComponentList()), "c");
}

TEST_F(Components, ARefusedChoiceChangesNothing) {
    Enumerate();
    Choose("1");
    const auto errorOf = [&](const CIMInstance& instance) {
        return CimErrorOf([&] { calls.ModifyInstance(instance); });
    };
    CIMInstance withoutInstall(COMPONENT);
    withoutInstall.setProperty("InstanceID", CIMValue("0"));
    EXPECT_EQ(errorOf(withoutInstall), NotFound());
    EXPECT_EQ(errorOf(Chosen(CIMValue("0"), CIMValue(CIMNULL))), NotFound());
    for (const CIMValue& wrong :
         {CIMValue("true"), CIMValue(UInt8(1)), CIMValue(BoolArray(1, Bool(true))), CIMValue("")}) {
        EXPECT_EQ(errorOf(Chosen(CIMValue("0"), wrong)), InvalidParameter()) << wrong.toString();
        EXPECT_EQ(errorOf(Chosen(CIMValue("1"), wrong)), InvalidParameter()) << wrong.toString();
    }
    CIMInstance withoutId(COMPONENT);
    withoutId.setProperty("Install", CIMValue(true));
    EXPECT_EQ(errorOf(withoutId), InvalidParameter());
    EXPECT_EQ(errorOf(Chosen(CIMValue(CIMNULL), CIMValue(true))), InvalidParameter());
    EXPECT_EQ(errorOf(Chosen(CIMValue("3"), CIMValue(true))), NotFound());
    EXPECT_THAT(Install(), ElementsAre("no", "yes", "no"));
}

// The record is looked for before Install is.
TEST_F(Components, AnUnknownComponentIsNotFoundWhateverInstallIs) {
    Enumerate();
    EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(Chosen(CIMValue("3"), CIMValue("x"))); }),
              NotFound());
}

TEST_F(Components, TheKeyOfAnInstanceIsNoProperty) {
    Enumerate();
    CIMInstance instance(COMPONENT);
    instance.setProperty("Install", CIMValue(true));
    instance.setKeys(CIMPropertyArray(1, CIMProperty("InstanceID", CIMValue("0"))));
    EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(instance); }), InvalidParameter());
}

TEST_F(Components, FieldsBehindTheNameAreIgnored) {
    Prints("a\t1.0\tA component\tmore\nb\t\n");
    const CIMInstanceArray instances = Enumerate();
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[0], "Name"), "a");
    EXPECT_EQ(ValueOf(instances[1], "Name"), "b");
}

TEST_F(Components, WithoutOutputThereIsNothing) {
    Enumerate();
    Choose("0");
    Prints("");
    EXPECT_TRUE(Enumerate().empty());
    EXPECT_EQ(Text(GetOptionalComponentList()), "");
    EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound());
}

TEST_F(Components, MoreOfThemThanASixteenBitCounterNumbersAreServed) {
    std::string output;
    for (int i = 0; i < 70'000; ++i) {
        output += "c" + std::to_string(i) + "\n";
    }
    Prints(output);
    EXPECT_EQ(Enumerate().size(), 70'000U);
    EXPECT_EQ(ValueOf(Get("69999"), "Name"), "c69999");
    Choose("69999");
    EXPECT_EQ(Text(GetOptionalComponentList()), "c69999");
}

// Whatever the tool prints, the next enumeration works.
class ComponentFailures : public ComponentTest {
protected:
    ComponentFailures() {
        SelectComponentsOf("N", "V");
        Prints("former\n");
        Enumerate();
        log->Forget();
    }

    ~ComponentFailures() override {
        tool.RestoreTool();
        Prints("later\n");
        EXPECT_EQ(Enumerate().size(), 1U);
    }

    const std::string noName = "Failed to parse Name field from /qv/bin/patchkeeper --hist\n"
                               "#SWU_Error_ParsingFailed,Name,/qv/bin/patchkeeper --hist#";
};

TEST_F(ComponentFailures, AFailingToolIsDescribedAndLeavesNothing) {
    tool.Plays("--components", ToolAnswer().Output("a\n").ExitCode(23));
    const std::string text = "A description.\n\n#SWU_Patchkeeper_NoPatchesFound#";
    EXPECT_EQ(EnumerationError(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --components  N V",
                                        "INFO: Executing: /qv/bin/patchkeeper --errors 23",
                                        "INFO: Exception: " + text));
    EXPECT_EQ(gComponentList.size(), 0U);
}

TEST_F(ComponentFailures, AMissingToolIsAFailureWithoutADescription) {
    tool.TakeToolAway();
    EXPECT_EQ(EnumerationError(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_EQ(gComponentList.size(), 0U);
}

TEST_F(ComponentFailures, ALineWithoutAFieldKeepsTheRecordsBeforeIt) {
    for (const char* const line : {"\n", "\t\n", "\t\t\t\n"}) {
        Prints(std::string("a\nb\n") + line + "c\n");
        EXPECT_EQ(EnumerationError(), Failed(noName));
        EXPECT_EQ(gComponentList.size(), 2U);
    }
    Choose("1");
    EXPECT_EQ(Text(GetOptionalComponentList()), "b");
}

TEST_F(ComponentFailures, TheFirstFieldIsTheNameAlsoBehindATab) {
    Prints("\ta\n");
    EXPECT_EQ(ValueOf(Enumerate()[0], "Name"), "a");
}

TEST_F(ComponentFailures, ALineOf1023BytesIsOneComponent) {
    const std::string name(1022, 'n');
    Prints(name + "\n");
    const CIMInstanceArray instances = Enumerate();
    ASSERT_EQ(instances.size(), 1U);
    EXPECT_EQ(ValueOf(instances[0], "Name"), name);
}

TEST_F(ComponentFailures, OfALineOf1024BytesTheNewlineIsALineOfItsOwn) {
    Prints(std::string(1023, 'n') + "\n");
    EXPECT_EQ(EnumerationError(), Failed(noName));
    EXPECT_EQ(gComponentList.size(), 1U);
}

TEST_F(ComponentFailures, ALongerLineIsTwoComponents) {
    Prints(std::string(1025, 'n') + "\n");
    const CIMInstanceArray instances = Enumerate();
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[1], "Name"), "nn");
}

TEST_F(ComponentFailures, TheLastLineNeedsNoNewline) {
    Prints("a\nb");
    EXPECT_EQ(ValueOf(Enumerate()[1], "Name"), "b");
}

TEST_F(ComponentFailures, AnyBytesPassAsText) {
    Prints("\xff\xc3\x01\na\r\n");
    const CIMInstanceArray instances = Enumerate();
    EXPECT_EQ(ValueOf(instances[0], "Name"), "\xff\xc3\x01");
    EXPECT_EQ(ValueOf(instances[1], "Name"), "a\r");
}

TEST_F(ComponentFailures, AZeroByteEndsItsLine) {
    Prints(std::string("a\0b\nc\n", 6));
    EXPECT_EQ(ValueOf(Enumerate()[0], "Name"), "a");
    Prints(std::string("\0b\nc\n", 5));
    EXPECT_EQ(EnumerationError(), Failed(noName));
}

TEST_F(ComponentFailures, EqualNamesAreRecordsOfTheirOwn) {
    Prints("a\na\n");
    EXPECT_EQ(Enumerate().size(), 2U);
    Choose("1");
    EXPECT_EQ(Text(GetOptionalComponentList()), "a");
    EXPECT_EQ(ValueOf(Get("0"), "Install"), "false");
}

using ComponentOddities = Components;

TEST_F(ComponentOddities, CO1_TwoBlanksStandBehindTheOption) {
    Enumerate();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --components  N V 2>&1"));
}

TEST_F(ComponentOddities, CO2_AParseFailureNamesTheHistory) {
    Prints("\n");
    EXPECT_EQ(EnumerationError(),
              Failed("Failed to parse Name field from /qv/bin/patchkeeper --hist\n"
                     "#SWU_Error_ParsingFailed,Name,/qv/bin/patchkeeper --hist#"));
    EXPECT_TRUE(log->Contains("ERROR: Failed to parse Name field from /qv/bin/patchkeeper --hist"));
}

TEST_F(ComponentOddities, CO3_VersionAndDescriptionStayEmpty) {
    Prints("a\t1.0\tA component\n");
    const CIMInstance instance = Enumerate()[0];
    EXPECT_EQ(ValueOf(instance, "VersionString"), "");
    EXPECT_EQ(ValueOf(instance, "ShortDescription"), "");
}

TEST_F(ComponentOddities, CO4_AMissingInstallIsNotFound) {
    Enumerate();
    CIMInstance instance(COMPONENT);
    instance.setProperty("InstanceID", CIMValue("0"));
    EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(instance); }).number, 6);
}

TEST_F(ComponentOddities, CO5_TheExitCodeIsPrintedAlwaysAndLoggedNever) {
    gProviderAgentDebug = false;
    EXPECT_EQ(PrintedBy([&] { calls.EnumInstances(COMPONENT); }), "Exit code: 0\n");
    EXPECT_EQ(PrintedBy([&] { calls.EnumInstanceNames(COMPONENT); }), "Exit code: 0\n");
    tool.Plays("--components", ToolAnswer().ExitCode(34));
    const std::string printed = PrintedBy(
        [&] { EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(COMPONENT); }).number, 1); });
    EXPECT_EQ(printed, "Exit code: 34\n");
    EXPECT_FALSE(log->Contains("INFO: Exit code: 34"));
    SelectComponentsOf("", "");
    EXPECT_EQ(PrintedBy([&] { CimErrorOf([&] { calls.EnumInstances(COMPONENT); }); }), "");
}

TEST_F(ComponentOddities, CO6_EveryEnumerationForgetsWhatWasChosen) {
    Enumerate();
    Choose("0");
    Choose("2");
    EXPECT_EQ(Text(GetOptionalComponentList()), "a c");
    PrintedBy([&] { calls.EnumInstanceNames(COMPONENT); });
    EXPECT_THAT(Install(), ElementsAre("no", "no", "no"));
    EXPECT_EQ(Text(GetOptionalComponentList()), "");
}

TEST_F(ComponentOddities, CO7_LinesOfErrorOutputAreComponents) {
    tool.Plays("--components", ToolAnswer().Output("a\n").ErrorText("cannot read cache\n"));
    const CIMInstanceArray instances = Enumerate();
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[1], "Name"), "cannot read cache");
}

TEST_F(ComponentOddities, CO8_GetInstanceNeverListsAnew) {
    Enumerate();
    Prints("x\n");
    tool.ForgetCalls();
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "a");
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(ComponentOddities, CO9_NamesReachTheShellUnquoted) {
    SelectComponentsOf("a'b c'", "$((1+1))");
    Prints("two 'words and' $((3+4))\n");
    Enumerate();
    Choose("0");
    AvaliableUpdate update;
    update.Name = "N";
    update.Version = "V";
    tool.PlaysOtherwise(ToolAnswer());
    update.Apply();
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.Calls(),
                ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--components", "ab c", "2"),
                            ElementsAre("/qv/bin/patchkeeper", "--setinprogress"),
                            ElementsAre("/qv/bin/patchkeeper", "--apply", "N", "V", "two",
                                        "words and", "7")));
}
