#include "HistoryTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::InvalidParameter;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class History : public HistoryTest {
protected:
    History() {
        tool.Plays("--hist",
                   ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/history/two_updates.tsv"));
    }
};

TEST_F(History, ALineBecomesARecord) {
    calls.EnumInstanceNames(HISTORY);
    const Array<HistoryUpdate> list = gHistoryList;
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].InstanceID, "0");
    EXPECT_EQ(list[0].Name, "openssl");
    EXPECT_EQ(list[0].Version, "3.0.17");
    EXPECT_EQ(list[0].Description, "Security fixes");
    EXPECT_EQ(list[0].Category, "Security");
    EXPECT_EQ(list[0].Date, "Thu Jan  2 03:04:05 UTC 2025");
    EXPECT_TRUE(list[0].Removable);
    EXPECT_EQ(list[1].InstanceID, "1");
    EXPECT_EQ(list[1].Name, "kernel");
    EXPECT_FALSE(list[1].Removable);
}

TEST_F(History, AnInstancePerLineWithItsSevenProperties) {
    const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Text(instances[0].getClassName()), "ZNX_HistorySoftwareUpdate");
    EXPECT_THAT(PropertiesOf(instances[0]),
                ElementsAre("string InstanceID=0", "string Name=openssl",
                            "string VersionString=3.0.17", "string ShortDescription=Security fixes",
                            "string Category=Security", "datetime Date=20250102030405.000000+000",
                            "boolean Removeable=true"));
    EXPECT_THAT(PropertiesOf(instances[1]),
                ElementsAre("string InstanceID=1", "string Name=kernel",
                            "string VersionString=6.1.140-1", "string ShortDescription=New kernel",
                            "string Category=System update",
                            "datetime Date=20250613220000.000000+000", "boolean Removeable=false"));
}

TEST_F(History, InstanceIDIsTheOnlyKey) {
    const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
    ASSERT_EQ(instances.size(), 2U);
    for (const CIMProperty& property : instances[1].getProperties()) {
        EXPECT_EQ(property.isKey(), Text(property.getName()) == "InstanceID");
    }
    EXPECT_EQ(CIMObjectPath("root/cimv2", instances[1]), PathOf("1"));
    EXPECT_EQ(calls.EnumInstanceNames(HISTORY)[1], PathOf("1"));
}

TEST_F(History, NamesBearTheClassAndNamespaceOfTheRequest) {
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder result(paths);
    provider.enumInstanceNames(env, "root/other", "znx_Historysoftwareupdate", result, CIMClass());
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(Text(paths[0].toString()), "/root/other:znx_Historysoftwareupdate.InstanceID=\"0\"");
}

TEST_F(History, EachEnumerationRunsAndLogsTheListing) {
    calls.EnumInstances(HISTORY);
    calls.EnumInstanceNames(HISTORY);
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --hist 2>&1", "/qv/bin/patchkeeper --hist 2>&1"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --hist",
                                        "INFO: Executing: /qv/bin/patchkeeper --hist"));
}

TEST_F(History, OnlyTheExactWordIsRemovable) {
    const std::vector<std::string> words = {"Removable",  "removable", "REMOVABLE",  "Removeable",
                                            "Removable ", "Remov",     "Removables", "yes"};
    std::string output;
    for (const std::string& word : words) {
        output += Line("n", "1", word);
    }
    Prints(output);
    const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
    ASSERT_EQ(instances.size(), words.size());
    for (std::size_t i = 0; i < words.size(); ++i) {
        EXPECT_EQ(ValueOf(instances[i], "Removeable"), words[i] == "Removable" ? "true" : "false")
            << words[i];
    }
}

TEST_F(History, TheListIsThatOfTheLastEnumeration) {
    calls.EnumInstances(HISTORY);
    Lists(Line("vim", "9"));
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "vim");
    EXPECT_EQ(CimErrorOf([&] { Get("1"); }), NotFound());
    EXPECT_EQ(CimErrorOf([&] { Invoke("1", "Remove"); }), NotFound());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(History, RefusedPathsAreLoggedWhereTheKeyIsMissing) {
    calls.EnumInstances(HISTORY);
    log->Forget();
    for (const char* const unknown : {"2", "-1", "", "00", " 0", "x"}) {
        EXPECT_EQ(CimErrorOf([&] { Get(unknown); }), NotFound()) << unknown;
    }
    EXPECT_THAT(log->All(), IsEmpty());
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(CIMObjectPath(HISTORY)); }), InvalidParameter());
    CIMObjectPath withNull(HISTORY);
    withNull.setKeys(CIMPropertyArray(1, CIMProperty("InstanceID", CIMDataType::STRING)));
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(withNull); }), InvalidParameter());
    EXPECT_THAT(log->All(), ElementsAre("ERROR: Missing InstanceID property",
                                        "ERROR: Missing InstanceID value"));
}

TEST_F(History, RecordsAreCopied) {
    HistoryUpdate record;
    EXPECT_FALSE(record.Removable);
    record.InstanceID = "7";
    record.Date = "d";
    record.Category = "c";
    record.Name = "n";
    record.Version = "v";
    record.Description = "t";
    record.Removable = true;
    HistoryUpdate assigned;
    assigned = record;
    const HistoryUpdate copy(assigned);
    record.Name = "other";
    EXPECT_EQ(copy.InstanceID, "7");
    EXPECT_EQ(copy.Date, "d");
    EXPECT_EQ(copy.Category, "c");
    EXPECT_EQ(copy.Name, "n");
    EXPECT_EQ(copy.Version, "v");
    EXPECT_EQ(copy.Description, "t");
    EXPECT_TRUE(copy.Removable);
}

TEST_F(History, InitializeAndCleanupTouchNothing) {
    Lists(Line("vim", "9"));
    provider.cleanup();
    provider.initialize(env);
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "vim");
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_THAT(log->All(), IsEmpty());
}

// The long description, which a request gets when it lists the property by name.
class HistoryDescription : public HistoryTest {
protected:
    HistoryDescription() {
        tool.Plays("-l", ToolAnswer().Output("First line.\n\n\tLast line.\n"));
        tool.Plays("--errors", ToolAnswer().Output("It failed.\n"));
        Lists(Line("vim", "9") + Line("bash", "5"));
    }
};

TEST_F(HistoryDescription, IsAllThatTheToolPrints) {
    const StringArray wanted = Names({"UpdateDescription"});
    const CIMInstance instance = Get("1", &wanted);
    EXPECT_EQ(ValueOf(instance, "UpdateDescription"), "First line.\n\n\tLast line.\n");
    EXPECT_EQ(Text(instance.getProperty("UpdateDescription").getDataType().toString()), "string");
    EXPECT_EQ(PropertiesOf(instance).size(), 8U);
    EXPECT_EQ(PropertiesOf(instance).back().substr(0, 24), "string UpdateDescription");
    EXPECT_THAT(tool.Calls(), ElementsAre(ElementsAre("/qv/bin/patchkeeper", "-l", "bash-5")));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper -l bash-5"));
}

TEST_F(HistoryDescription, IsFetchedForEveryRecordOfAnEnumeration) {
    const StringArray wanted = Names({"Name", "UpdateDescription"});
    EXPECT_EQ(calls.EnumInstances(HISTORY, &wanted).size(), 2U);
    EXPECT_THAT(tool.ShellCommands(),
                ElementsAre("/qv/bin/patchkeeper --hist 2>&1", "/qv/bin/patchkeeper -l vim-9 2>&1",
                            "/qv/bin/patchkeeper -l bash-5 2>&1"));
}

TEST_F(HistoryDescription, IsNotFetchedForOtherNames) {
    const StringArray others = Names({"updatedescription", "UpdateDescription ", "Name", ""});
    EXPECT_EQ(PropertiesOf(Get("0", &others)).size(), 7U);
    const StringArray none;
    EXPECT_EQ(PropertiesOf(Get("0", &none)).size(), 7U);
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(HistoryDescription, MayBeEmpty) {
    tool.Plays("-l", ToolAnswer());
    const StringArray wanted = Names({"UpdateDescription"});
    EXPECT_EQ(ValueOf(Get("0", &wanted), "UpdateDescription"), "");
}

TEST_F(HistoryDescription, AnUnreadableDateComesBeforeIt) {
    Lists("vim\t9\tt\tc\tyesterday\tRemovable\n");
    const StringArray wanted = Names({"UpdateDescription"});
    EXPECT_THROW(Get("0", &wanted), DateTimeException);
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

class HistoryOddities : public HistoryDescription {};

TEST_F(HistoryOddities, HI1_ThePropertyIsSpelledRemoveable) {
    const CIMInstance instance = Get("0");
    EXPECT_EQ(Text(instance.getProperty("Removeable").getName()), "Removeable");
    EXPECT_FALSE(instance.getProperty("Removable"));
}

TEST_F(HistoryOddities, HI2_DescriptionFailureIsReportedAsCode1) {
    const StringArray wanted = Names({"UpdateDescription"});
    tool.Plays("-l", ToolAnswer().Output("partial").ExitCode(23));
    EXPECT_EQ(CimErrorOf([&] { Get("0", &wanted); }),
              Failed("It failed.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_THAT(tool.CommandLines(),
                ElementsAre("/qv/bin/patchkeeper -l vim-9", "/qv/bin/patchkeeper --errors 1"));
    tool.Plays("-l", ToolAnswer().ExitCode(1));
    EXPECT_EQ(CimErrorOf([&] { Get("0", &wanted); }).number, 1);
}

TEST_F(HistoryOddities, HI3_NameAndVersionStandUnquotedForTheShell) {
    tool.Plays("--setinprogress", ToolAnswer());
    tool.Plays("--rback", ToolAnswer());
    Lists(Line("two $((1+1))", "3 'x y'"));
    Invoke("0", "Remove");
    WaitForBackgroundTasks();
    const StringArray wanted = Names({"UpdateDescription"});
    Get("0", &wanted);
    EXPECT_EQ(tool.ShellCommands()[1], "/qv/bin/patchkeeper --rback two $((1+1)) 3 'x y'");
    EXPECT_EQ(tool.ShellCommands()[2], "/qv/bin/patchkeeper -l two $((1+1))-3 'x y' 2>&1");
    EXPECT_THAT(tool.Calls()[1],
                ElementsAre("/qv/bin/patchkeeper", "--rback", "two", "2", "3", "x y"));
    EXPECT_THAT(tool.Calls()[2], ElementsAre("/qv/bin/patchkeeper", "-l", "two", "2-3", "x y"));
}

TEST_F(HistoryOddities, HI4_RemoveReturnsTrueHoweverTheRollBackEnds) {
    tool.Plays("--setinprogress", ToolAnswer());
    tool.Plays("--rback", ToolAnswer().ExitCode(16));
    EXPECT_EQ(Invoke("0", "Remove"), CIMValue(true));
    WaitForBackgroundTasks();
    EXPECT_TRUE(log->Contains("INFO: Error during background /qv/bin/patchkeeper --rback vim 9: "
                              "SWU_Patchkeeper_Unknown"));
}

TEST_F(HistoryOddities, HI5_LinesOfErrorOutputAreRecords) {
    tool.Plays("--hist", ToolAnswer().Output(Line("bash", "5")).ErrorText(Line("warning", "1")));
    const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[1], "Name"), "warning");
}

TEST_F(HistoryOddities, HI6_AllPropertiesDoNotIncludeTheDescription) {
    EXPECT_FALSE(Get("0", nullptr).getProperty("UpdateDescription"));
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(HistoryOddities, HI7_NamedTwiceTheDescriptionIsFetchedTwice) {
    const StringArray wanted = Names({"UpdateDescription", "UpdateDescription"});
    EXPECT_EQ(PropertiesOf(Get("0", &wanted)).size(), 8U);
    EXPECT_THAT(tool.CommandLines(),
                ElementsAre("/qv/bin/patchkeeper -l vim-9", "/qv/bin/patchkeeper -l vim-9"));
}

TEST_F(HistoryOddities, HI8_GetInstanceNeverListsAnew) {
    Prints(Line("other", "1"));
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "vim");
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(HistoryOddities, HI9_AnUnknownMethodOfAnUnknownRecordIsNotFound) {
    EXPECT_EQ(CimErrorOf([&] { Invoke("9", "Unknown"); }), NotFound());
    EXPECT_EQ(CimErrorOf([&] { Invoke("0", "Unknown"); }).number, 17);
}

TEST_F(HistoryOddities, HI10_TheMethodNameIsComparedWithItsCase) {
    EXPECT_EQ(CimErrorOf([&] { Invoke("0", "remove"); }).number, 17);
    EXPECT_EQ(CimErrorOf([&] { Invoke("0", "REMOVE"); }).number, 17);
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(HistoryOddities, HI11_ParametersOfRemoveAreNotCounted) {
    tool.Plays("--setinprogress", ToolAnswer());
    tool.Plays("--rback", ToolAnswer());
    CIMParamValueArray in;
    in.push_back(CIMParamValue("A", CIMValue("x")));
    in.push_back(CIMParamValue("B", CIMValue(CIMNULL)));
    EXPECT_EQ(Invoke("0", "Remove", in), CIMValue(true));
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --setinprogress",
                                                 "/qv/bin/patchkeeper --rback vim 9"));
}
