#include "AvailableTest.hpp"

#include <map>

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::PathOf;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class Available : public AvailableTest {
protected:
    Available() {
        tool.Plays("--cache",
                   ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/available/two_updates.tsv"));
        tool.Plays("-l", ToolAnswer().Output("The long\ntext.\n"));
    }
};

TEST_F(Available, AnInstancePerLineWithItsSevenProperties) {
    const CIMInstanceArray instances = Updates();
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Text(instances[0].getClassName()), "ZNX_AvailableSoftwareUpdate");
    EXPECT_THAT(PropertiesOf(instances[0]),
                ElementsAre("string InstanceID=0", "string Name=N", "string ShortDescription=Desc",
                            "string VersionString=V", "string Size=12",
                            "boolean RebootRequired=true", "uint8 Status=1"));
    EXPECT_THAT(PropertiesOf(instances[1]),
                ElementsAre("string InstanceID=1", "string Name=kernel-patch",
                            "string ShortDescription=Mends the kernel",
                            "string VersionString=1.2-3", "string Size=4.5 MB",
                            "boolean RebootRequired=false", "uint8 Status=3"));
}

TEST_F(Available, TheListHoldsTheRecordsInOrder) {
    Updates();
    ASSERT_EQ(gAvaliableList.size(), 2U);
    const AvaliableUpdate record = gAvaliableList[0];
    EXPECT_EQ(Text(record.InstanceID), "0");
    EXPECT_EQ(Text(record.Name), "N");
    EXPECT_EQ(Text(record.Version), "V");
    EXPECT_EQ(Text(record.ShortDescription), "Desc");
    EXPECT_EQ(Text(record.Size), "12");
    EXPECT_TRUE(record.RebootRequired);
    EXPECT_EQ(record.Status, 1);
    EXPECT_EQ(Text(gAvaliableList[1].InstanceID), "1");
}

TEST_F(Available, InstanceIDIsTheOnlyKey) {
    const StringArray description = Names({"UpdateDescription"});
    const CIMInstance instance = Updates(&description)[1];
    for (const CIMProperty& property : instance.getProperties()) {
        EXPECT_EQ(property.isKey(), Text(property.getName()) == "InstanceID");
    }
    EXPECT_EQ(CIMObjectPath("root/cimv2", instance), PathOf(UPDATE, "InstanceID", "1"));
}

TEST_F(Available, APathHasTheClassNameOfTheRequestAndOneKey) {
    const CIMObjectPathArray paths = available.EnumInstanceNames("znx_x");
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(Text(paths[1].toString()), "/root/cimv2:znx_x.InstanceID=\"1\"");
}

TEST_F(Available, OtherKeysOfAPathAreReplaced) {
    CIMObjectPath path = PathOf(UPDATE, "Name", "N");
    provider.SetObjectPathKeys(path, 1, provider.GetCachedList());
    EXPECT_EQ(Text(path.toString()), "/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"1\"");
}

TEST_F(Available, EachEnumerationRunsTheToolOnce) {
    Updates();
    available.EnumInstanceNames(UPDATE);
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --cache  2>&1",
                                                  "/qv/bin/patchkeeper --cache  2>&1"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --cache ",
                                        "INFO: Executing: /qv/bin/patchkeeper --cache "));
}

TEST_F(Available, StatusFollowsTheTable) {
    const std::map<std::string, std::string> table = {
        {"Obsolete", "0"},   {"Applied", "1"},   {"Schedule", "2"},   {"Available", "3"},
        {"Invalid", "4"},    {"applied", "154"}, {"Applied ", "154"}, {"Scheduled", "154"},
        {" Invalid", "154"}, {"Avail", "154"},   {"3", "154"},        {"Security", "154"},
    };
    std::string output;
    for (const auto& [text, value] : table) {
        output += "N\tV\tDesc\t12\tno\t" + text + "\n";
    }
    Lists(output);
    const CIMInstanceArray instances = Updates();
    ASSERT_EQ(instances.size(), table.size());
    std::size_t i = 0;
    for (const auto& [text, value] : table) {
        EXPECT_EQ(ValueOf(instances[i++], "Status"), value) << text;
    }
}

TEST_F(Available, RebootIsRequiredByExactlyOneWord) {
    const std::map<std::string, std::string> table = {
        {"reboot", "true"},   {"Reboot", "false"}, {"reboot ", "false"}, {" reboot", "false"},
        {"reboots", "false"}, {"yes", "false"},    {"REBOOT", "false"},  {"no", "false"},
    };
    std::string output;
    for (const auto& [text, value] : table) {
        output += "N\tV\tDesc\t12\t" + text + "\tApplied\n";
    }
    Lists(output);
    const CIMInstanceArray instances = Updates();
    ASSERT_EQ(instances.size(), table.size());
    std::size_t i = 0;
    for (const auto& [text, value] : table) {
        EXPECT_EQ(ValueOf(instances[i++], "RebootRequired"), value) << text;
    }
}

TEST_F(Available, TheListIsThatOfTheLastEnumeration) {
    Updates();
    Lists(Line("vim"));
    available.EnumInstanceNames(UPDATE);
    EXPECT_EQ(ValueOf(GetUpdate("0"), "Name"), "vim");
    EXPECT_EQ(CimErrorOf([&] { GetUpdate("1"); }), NotFound());
}

TEST_F(Available, WithoutOutputThereIsNothing) {
    Updates();
    Lists("");
    EXPECT_TRUE(Updates().empty());
    EXPECT_EQ(gAvaliableList.size(), 0U);
    EXPECT_TRUE(available.EnumInstanceNames(UPDATE).empty());
}

TEST_F(Available, InitializeAppendsThePlaceholder) {
    Updates();
    tool.ForgetCalls();
    provider.initialize(env);
    ASSERT_EQ(gAvaliableList.size(), 3U);
    const AvaliableUpdate record = gAvaliableList[2];
    EXPECT_EQ(Text(record.InstanceID), "1");
    EXPECT_EQ(Text(record.Name), "Dummy");
    EXPECT_EQ(Text(record.Version), "");
    EXPECT_EQ(Text(record.ShortDescription), "");
    EXPECT_EQ(Text(record.Size), "");
    EXPECT_FALSE(record.RebootRequired);
    EXPECT_EQ(record.Status, 0);
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(Available, TheFirstEnumerationDropsThePlaceholder) {
    provider.initialize(env);
    Lists("");
    Updates();
    EXPECT_EQ(gAvaliableList.size(), 0U);
}

TEST_F(Available, OfTwoEqualIdsTheFirstIsFound) {
    Updates();
    provider.initialize(env);
    EXPECT_EQ(ValueOf(GetUpdate("1"), "Name"), "kernel-patch");
}

TEST_F(Available, CleanupLeavesTheListAlone) {
    Updates();
    provider.cleanup();
    EXPECT_EQ(gAvaliableList.size(), 2U);
}

TEST_F(Available, OtherSpellingsFetchNoDescription) {
    Updates();
    tool.ForgetCalls();
    const StringArray others =
        Names({"updatedescription", "UpdateDescriptio", "UpdateDescription ", "", "Name"});
    EXPECT_EQ(GetUpdate("0", &others).getProperties().size(), 7U);
    const StringArray none;
    EXPECT_EQ(GetUpdate("0", &none).getProperties().size(), 7U);
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(Available, AnEnumerationFetchesTheDescriptionOfEachUpdate) {
    const StringArray description = Names({"UpdateDescription"});
    EXPECT_EQ(Updates(&description).size(), 2U);
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --cache  2>&1", "/qv/bin/patchkeeper -l N-V 2>&1",
                            "/qv/bin/patchkeeper -l kernel-patch-1.2-3 2>&1"));
}

TEST_F(Available, ADescriptionThatFailsEndsTheEnumerationAndLeavesTheList) {
    tool.Plays("-l", ToolAnswer().ExitCode(11));
    const StringArray description = Names({"UpdateDescription"});
    EXPECT_EQ(CimErrorOf([&] { Updates(&description); }),
              Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_EQ(gAvaliableList.size(), 2U);
    EXPECT_EQ(ValueOf(GetUpdate("0"), "Name"), "N");
}

TEST_F(Available, AnEmptyDescriptionIsAnEmptyText) {
    Updates();
    tool.Plays("-l", ToolAnswer());
    const StringArray description = Names({"UpdateDescription"});
    EXPECT_EQ(GetUpdate("0", &description).getPropertyValue("UpdateDescription"), CIMValue(""));
}

using AvailableOddities = Available;

TEST_F(AvailableOddities, AV1_TheUnitsNamesAreSpelledAvaliable) {
    EXPECT_STREQ(typeid(AvaliableUpdateProvider).name(), "23AvaliableUpdateProvider");
    EXPECT_STREQ(typeid(AvaliableUpdate).name(), "15AvaliableUpdate");
}

TEST_F(AvailableOddities, AV2_AnUnknownStatusIs154) {
    Lists("N\tV\tDesc\t12\tno\tapplied\n");
    EXPECT_EQ(Updates()[0].getPropertyValue("Status"), CIMValue(UInt8(154)));
}

TEST_F(AvailableOddities, AV3_AMissingStatusIsCalledCategory) {
    Lists("N\tV\tDesc\t12\tno\n");
    EXPECT_EQ(UpdatesError(), Failed("Failed to parse Category field from "
                                     "/qv/bin/patchkeeper --cache \n#SWU_Error_ParsingFailed,"
                                     "Category,/qv/bin/patchkeeper --cache #"));
}

TEST_F(AvailableOddities, AV4_DescriptionFailureIsReportedAsCode1) {
    Updates();
    const StringArray description = Names({"UpdateDescription"});
    for (const int code : {2, 5, 23, 34}) {
        tool.Plays("-l", ToolAnswer().ExitCode(code));
        tool.ForgetCalls();
        EXPECT_EQ(CimErrorOf([&] { GetUpdate("0", &description); }),
                  Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
        EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper -l N-V 2>&1",
                                                      "/qv/bin/patchkeeper --errors 1 2>&1"));
    }
}

TEST_F(AvailableOddities, AV8_ThePlaceholderIsFoundAs1) {
    provider.initialize(env);
    EXPECT_THAT(PropertiesOf(GetUpdate("1")),
                ElementsAre("string InstanceID=1", "string Name=Dummy", "string ShortDescription=",
                            "string VersionString=", "string Size=", "boolean RebootRequired=false",
                            "uint8 Status=0"));
    EXPECT_EQ(CimErrorOf([&] { GetUpdate("0"); }), NotFound());
}

TEST_F(AvailableOddities, AV9_AllPropertiesGoWithoutTheDescription) {
    Updates();
    tool.ForgetCalls();
    EXPECT_EQ(GetUpdate("0").getProperties().size(), 7U);
    EXPECT_THAT(tool.Calls(), IsEmpty());
    const StringArray description = Names({"UpdateDescription"});
    EXPECT_EQ(GetUpdate("0", &description).getProperties().size(), 8U);
}

TEST_F(AvailableOddities, AV18_GetInstanceNeverAsksForTheList) {
    Updates();
    Lists(Line("vim"));
    EXPECT_EQ(ValueOf(GetUpdate("0"), "Name"), "N");
    EXPECT_EQ(tool.Calls().size(), 1U);
}

TEST_F(AvailableOddities, AV20_LinesOfErrorOutputAreRecords) {
    tool.Plays("--cache", ToolAnswer().Output(Line("vim")).ErrorText(Line("warning")));
    const CIMInstanceArray instances = Updates();
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[1], "Name"), "warning");
}

TEST_F(AvailableOddities, AV21_NamedTwiceTheDescriptionIsFetchedTwice) {
    Updates();
    tool.ForgetCalls();
    const StringArray twice = Names({"UpdateDescription", "Name", "UpdateDescription"});
    const CIMInstance instance = GetUpdate("1", &twice);
    EXPECT_EQ(instance.getProperties().size(), 8U);
    EXPECT_EQ(Text(instance.getProperties()[7].getName()), "UpdateDescription");
    EXPECT_EQ(ValueOf(instance, "UpdateDescription"), "The long\ntext.\n");
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper -l kernel-patch-1.2-3 2>&1",
                            "/qv/bin/patchkeeper -l kernel-patch-1.2-3 2>&1"));
}
