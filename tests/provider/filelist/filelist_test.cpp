#include "FileListTest.hpp"

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::InvalidParameter;
using test_support::NotSupported;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> PropertyNames(const CIMInstance& instance) {
    std::vector<std::string> names;
    for (const CIMProperty& property : instance.getProperties()) {
        names.push_back(Text(property.getName()));
    }
    return names;
}

std::vector<std::string> KeyNames(const CIMInstance& instance) {
    std::vector<std::string> names;
    for (const CIMProperty& key : instance.getKeyValuePairs()) {
        names.push_back(Text(key.getName()));
    }
    return names;
}

CIMObjectPath ClassPath(const char* className) {
    return CIMObjectPath(className, "root/cimv2");
}

} // namespace

class FileList : public FileListTest {};

TEST_F(FileList, TheProviderServesInstancesAndAssociationsButNoMethods) {
    CppProviderBaseIFC& base = provider;
    EXPECT_NE(base.getInstanceProvider(), nullptr);
    EXPECT_NE(base.getAssociatorProvider(), nullptr);
    EXPECT_EQ(base.getMethodProvider(), nullptr);
    EXPECT_EQ(base.getInstanceProvider(), static_cast<CppInstanceProviderIFC*>(&provider));
}

TEST_F(FileList, InitializeAndCleanupTouchNothing) {
    provider.initialize(env);
    provider.cleanup();
    EXPECT_EQ(gAvaliableList.size(), 2U);
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(FileList, EveryUpdateIsTiedToEachOfItsFiles) {
    const CIMInstanceArray instances = calls.EnumInstances(FILE_LIST);
    ASSERT_EQ(instances.size(), 4U);
    const char* const ids[] = {"0", "0", "1", "1"};
    const char* const names[] = {"one", "two", "one", "two"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(Text(instances[i].getClassName()), "ZNX_AvailableSoftwareFileList");
        EXPECT_THAT(PropertyNames(instances[i]), ElementsAre("Antecedent", "Dependent"));
        EXPECT_EQ(Target(instances[i], "Antecedent"), Update(ids[i]));
        EXPECT_EQ(Target(instances[i], "Dependent"), File(names[i]));
    }
}

TEST_F(FileList, AnEnumerationTracesUpdatesAndFiles) {
    calls.EnumInstances(FILE_LIST);
    EXPECT_THAT(log->All(),
                ElementsAre("INFO: Patch: vim-9.0",
                            "INFO: Executing: /qv/bin/patchkeeper --files vim-9.0",
                            "INFO: Filename: one", "INFO: Filename: two", "INFO: Patch: bash-5",
                            "INFO: Executing: /qv/bin/patchkeeper --files bash-5",
                            "INFO: Filename: one", "INFO: Filename: two"));
}

TEST_F(FileList, ClientsCanReturnToAnAssociationByItsPath) {
    const CIMInstanceArray instances = calls.EnumInstances(FILE_LIST);
    EXPECT_THAT(KeyNames(instances[3]), ElementsAre("Antecedent", "Dependent"));
    const CIMObjectPathArray paths = calls.EnumInstanceNames(FILE_LIST);
    ASSERT_EQ(paths.size(), 4U);
    EXPECT_EQ(paths[3], CIMObjectPath("root/cimv2", instances[3]));
    EXPECT_EQ(paths[3].getKeyValue("Antecedent"), CIMValue(Update("1")));
    EXPECT_EQ(paths[3].getKeyValue("Dependent"), CIMValue(File("two")));
    EXPECT_EQ(Text(paths[3].getNameSpace()), "root/cimv2");
}

TEST_F(FileList, BothEndsBearTheNamespaceOfTheRequest) {
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    provider.enumInstances(env, "root/other", FILE_LIST, result, E_NOT_LOCAL_ONLY, E_DEEP,
                           E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr, CIMClass(),
                           CIMClass());
    EXPECT_EQ(Text(Target(instances[0], "Antecedent").getNameSpace()), "root/other");
    EXPECT_EQ(Text(Target(instances[0], "Dependent").getNameSpace()), "root/other");
    CIMObjectPath elsewhere = Update("0");
    elsewhere.setNameSpace("root/elsewhere");
    const CIMInstance reference = References(elsewhere, FILE_LIST, "", "root/other")[0];
    EXPECT_EQ(Text(Target(reference, "Antecedent").getNameSpace()), "root/other");
    EXPECT_EQ(Text(Target(reference, "Dependent").getNameSpace()), "root/other");
    EXPECT_EQ(Text(elsewhere.getNameSpace()), "root/elsewhere");
    const CIMObjectPathArray names = AssociatorNames(Update("0"), FILE_NAMES, "root/other");
    EXPECT_EQ(Text(names[0].getNameSpace()), "root/other");
}

TEST_F(FileList, TheListedPropertiesHaveNoEffect) {
    const StringArray none;
    EXPECT_THAT(PropertyNames(calls.EnumInstances(FILE_LIST, &none)[0]),
                ElementsAre("Antecedent", "Dependent"));
    // The update's long description takes a run of the tool, which nobody asks for here.
    const StringArray wanted(1, "UpdateDescription");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    tool.ForgetCalls();
    provider.associators(env, result, "root/cimv2", Update("1"), FILE_LIST, UPDATES, "", "",
                         E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, &wanted);
    ASSERT_EQ(instances.size(), 1U);
    EXPECT_FALSE(instances[0].getProperty("UpdateDescription"));
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(FileList, TheUpdateIsTheInstanceOfItsOwnClass) {
    const CIMInstanceArray instances = Associators(Update("1"), UPDATES);
    ASSERT_EQ(instances.size(), 1U);
    EXPECT_EQ(Text(instances[0].getClassName()), "ZNX_AvailableSoftwareUpdate");
    EXPECT_EQ(instances[0].getPropertyValue("Name"), CIMValue("bash"));
    EXPECT_EQ(CIMObjectPath("root/cimv2", instances[0]), Update("1"));
}

TEST_F(FileList, FilesBearTheirNameAsKey) {
    const CIMInstanceArray instances = Associators(Update("1"), FILE_NAMES);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Text(instances[1].getClassName()), "ZNX_AvailableSoftwareFileName");
    EXPECT_TRUE(instances[1].getProperty("FileName").isKey());
    EXPECT_EQ(CIMObjectPath("root/cimv2", instances[1]), File("two"));
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --files bash-5 2>&1"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --files bash-5"));
}

TEST_F(FileList, AnUpdateWithoutFilesIsTiedToTheDefaultNames) {
    tool.Plays("--files", ToolAnswer());
    const CIMInstanceArray references = References(Update("0"));
    ASSERT_EQ(references.size(), 2U);
    EXPECT_EQ(Target(references[0], "Dependent"), File("Filename1"));
    EXPECT_EQ(Target(references[1], "Dependent"), File("Testname"));
    EXPECT_TRUE(log->Contains("INFO: no file name, use default: Filename1     Testname"));
}

TEST_F(FileList, ReferencesAreKeyedByBothEnds) {
    const CIMInstanceArray references = References(Update("1"));
    ASSERT_EQ(references.size(), 2U);
    EXPECT_THAT(PropertyNames(references[1]), ElementsAre("Antecedent", "Dependent"));
    EXPECT_THAT(KeyNames(references[1]), ElementsAre("Antecedent", "Dependent"));
    EXPECT_EQ(Target(references[1], "Antecedent"), Update("1"));
    EXPECT_EQ(Target(references[1], "Dependent"), File("two"));
    const CIMObjectPathArray names = ReferenceNames(Update("1"));
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[1], CIMObjectPath("root/cimv2", references[1]));
    EXPECT_EQ(names[1], calls.EnumInstanceNames(FILE_LIST)[3]);
}

TEST_F(FileList, DerivedProvidersDecideWhatTheNamesAreMadeOf) {
    // The name operations ask through the virtual functions.
    class Derived : public FileListMapProvider {
    public:
        void associators(const ProviderEnvironmentIFCRef&, CIMInstanceResultHandlerIFC& result,
                         const String&, const CIMObjectPath&, const String& assocClass,
                         const String& resultClass, const String& role, const String& resultRole,
                         EIncludeQualifiersFlag qualifiers, EIncludeClassOriginFlag origin,
                         const StringArray* list) override {
            EXPECT_EQ(qualifiers, E_EXCLUDE_QUALIFIERS);
            EXPECT_EQ(origin, E_EXCLUDE_CLASS_ORIGIN);
            EXPECT_EQ(list, nullptr);
            asked = assocClass + "," + resultClass + "," + role + "," + resultRole;
            CIMInstance file(FILE_NAMES);
            file.setProperty(ProvPropCreateKey("FileName", CIMValue("derived")));
            result.handle(file);
        }
        String asked;
    } derived;
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder result(paths);
    derived.associatorNames(env, result, "root/cimv2", Update("0"), "A", "B", "C", "D");
    EXPECT_EQ(Text(derived.asked), "A,B,C,D");
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_EQ(paths[0], File("derived"));
    derived.referenceNames(env, result, "root/cimv2", Update("0"), FILE_LIST, "any");
    EXPECT_EQ(Text(derived.asked), "ZNX_AvailableSoftwareFileList,ZNX_AvailableSoftwareFileName,,");
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[1].getKeyValue("Dependent"), CIMValue(File("derived")));
}

TEST_F(FileList, WithoutUpdatesThereIsNothingAndNoToolRuns) {
    Holds({});
    EXPECT_TRUE(calls.EnumInstances(FILE_LIST).empty());
    EXPECT_TRUE(calls.EnumInstanceNames(FILE_LIST).empty());
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(FileList, AFailureAmidTheUpdatesKeepsWhatWasHandedOver) {
    // The tool fails for the second update.
    class FailingLater : public CIMInstanceResultHandlerIFC {
    public:
        explicit FailingLater(test_support::ToolDouble& tool) : tool_(tool) {}
        int handled = 0;

    private:
        void doHandle(const CIMInstance&) override {
            ++handled;
            tool_.Plays("--files", ToolAnswer().ExitCode(33));
        }
        test_support::ToolDouble& tool_;
    } result(tool);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(FILE_LIST, result); }),
              Failed("It failed.\n\n#SWU_Patchkeeper_NoLocalPatchesFound#"));
    EXPECT_EQ(result.handled, 2);
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --files vim-9.0",
                                                 "/qv/bin/patchkeeper --files bash-5",
                                                 "/qv/bin/patchkeeper --errors 33"));
}

TEST_F(FileList, SeventyThousandFilesOfAnUpdateAreAFailure) {
    std::string output;
    for (int i = 0; i < 70000; ++i) {
        output += "n\n";
    }
    tool.Plays("--files", ToolAnswer().Output(output));
    EXPECT_EQ(CimErrorOf([&] { References(Update("0")); }),
              Failed("Too many records: more than 65535 names from "
                     "/qv/bin/patchkeeper --files vim-9.0"));
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(FILE_LIST); }),
              Failed("Too many records: more than 65535 names from "
                     "/qv/bin/patchkeeper --files vim-9.0"));
    tool.Plays("--files", ToolAnswer().Output("n"));
    EXPECT_EQ(References(Update("0")).size(), 1U);
}

// What role and result class follow from each other.
class FileListRoles : public FileList {
protected:
    std::string Completed(const CIMObjectPath& path, const char* role, const char* resultRole,
                          const char* resultClass) {
        String texts[] = {role, resultRole, resultClass};
        provider.CheckRolesAndResults(path, texts[0], texts[1], texts[2]);
        return Text(texts[0] + "," + texts[1] + "," + texts[2]);
    }
};

TEST_F(FileListRoles, AClassStandsAtOneEnd) {
    EXPECT_EQ(Text(provider.ObjectNameToRole(Update("0"))), "Antecedent");
    EXPECT_EQ(Text(provider.ObjectNameToRole(File("x"))), "Dependent");
    for (const char* const other :
         {"ZNX_AvailableSoftwareFileList", "znx_availablesoftwareupdate", "Other"}) {
        EXPECT_EQ(CimErrorOf([&] { provider.ObjectNameToRole(CIMObjectPath(other)); }).number, 13);
    }
}

TEST_F(FileListRoles, EveryRoleButTheAntecedentHasItAsTheOther) {
    EXPECT_EQ(Text(provider.RoleToOtherRole("Antecedent")), "Dependent");
    EXPECT_EQ(Text(provider.RoleToOtherRole("Dependent")), "Antecedent");
    EXPECT_EQ(Text(provider.RoleToOtherRole("antecedent")), "Antecedent");
    EXPECT_EQ(Text(provider.RoleToOtherRole("")), "Antecedent");
}

TEST_F(FileListRoles, WhatIsEmptyFollows) {
    EXPECT_EQ(Completed(Update("0"), "", "", ""),
              "Antecedent,Dependent,ZNX_AvailableSoftwareFileName");
    EXPECT_EQ(Completed(File("x"), "", "", ""), "Dependent,Antecedent,ZNX_AvailableSoftwareUpdate");
    EXPECT_EQ(Completed(File("x"), "Antecedent", "", ""),
              "Antecedent,Dependent,ZNX_AvailableSoftwareFileName");
    EXPECT_EQ(Completed(Update("0"), "", "", "ZNX_AvailableSoftwareUpdate"),
              "Antecedent,Antecedent,ZNX_AvailableSoftwareUpdate");
    EXPECT_EQ(Completed(File("x"), "", "", "ZNX_AvailableSoftwareFileName"),
              "Dependent,Dependent,ZNX_AvailableSoftwareFileName");
    EXPECT_EQ(Completed(Update("0"), "", "", "Other"), "Antecedent,Dependent,Other");
    EXPECT_EQ(Completed(Update("0"), "", "Antecedent", ""),
              "Antecedent,Antecedent,ZNX_AvailableSoftwareUpdate");
}

TEST_F(FileListRoles, WhatIsGivenStays) {
    EXPECT_EQ(Completed(ClassPath("Other"), "a", "b", "c"), "a,b,c");
    EXPECT_EQ(Completed(ClassPath("Other"), "a", "", ""),
              "a,Antecedent,ZNX_AvailableSoftwareUpdate");
}

TEST_F(FileListRoles, WhatDoesNotFollowIsRefused) {
    EXPECT_EQ(CimErrorOf([&] { Completed(Update("0"), "a", "b", ""); }), InvalidParameter());
    EXPECT_EQ(CimErrorOf([&] { Completed(ClassPath("Other"), "", "b", "c"); }).number, 13);
}

class FileListOddities : public FileList {};

TEST_F(FileListOddities, FL1_OneIsEnoughAndTheUpdateWins) {
    EXPECT_EQ(Associators(Update("0"), "", "Dependent").size(), 1U);
    EXPECT_EQ(Associators(Update("0"), "", "", "Antecedent").size(), 1U);
    EXPECT_EQ(Associators(Update("0"), FILE_NAMES, "", "Antecedent").size(), 1U);
    EXPECT_EQ(Associators(Update("0"), FILE_NAMES, "Dependent", "Dependent").size(), 1U);
    EXPECT_EQ(Associators(Update("0"), UPDATES, "Antecedent", "Dependent").size(), 1U);
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_EQ(Associators(Update("0"), "", "Antecedent").size(), 2U);
    EXPECT_EQ(Associators(Update("0"), "Other", "other", "Dependent", "Other").size(), 2U);
}

TEST_F(FileListOddities, FL2_TheUpdatesAreNeverListedAnew) {
    tool.Plays("--cache", ToolAnswer().Output("new\t1\td\t1\treboot\tApplied\n"));
    Holds({});
    AvaliableUpdateProvider().initialize(env);
    EXPECT_EQ(calls.EnumInstances(FILE_LIST).size(), 2U);
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --files Dummy- 2>&1"));
    EXPECT_TRUE(log->Contains("INFO: Patch: Dummy-"));
}

TEST_F(FileListOddities, FL3_FromAFileThereIsNoWayToItsUpdate) {
    for (const char* const role : {"Dependent", "Antecedent"}) {
        log->Forget();
        EXPECT_EQ(CimErrorOf([&] { Associators(File("one"), "", role); }), InvalidParameter());
        EXPECT_THAT(log->All(), ElementsAre("ERROR: Missing InstanceID property"));
    }
    EXPECT_EQ(CimErrorOf([&] { References(File("one")); }), InvalidParameter());
    const CIMObjectPath other = test_support::PathOf("ZNX_Other", "InstanceID", "1");
    EXPECT_EQ(Associators(other, UPDATES)[0].getPropertyValue("Name"), CIMValue("bash"));
}

TEST_F(FileListOddities, FL4_WithoutAnyOfTheThreeNothingIsAssumed) {
    EXPECT_EQ(CimErrorOf([&] { Associators(Update("0"), "", "", ""); }), NotSupported());
    EXPECT_EQ(CimErrorOf([&] { Associators(File("one"), "", "", ""); }), NotSupported());
    for (const char* const resultClass :
         {"znx_availablesoftwareupdate", "znx_availablesoftwarefilename"}) {
        EXPECT_EQ(CimErrorOf([&] { Associators(Update("0"), resultClass); }), NotSupported());
    }
    for (const char* const role : {"antecedent", "dependent"}) {
        EXPECT_EQ(CimErrorOf([&] { Associators(Update("0"), "", role); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] { Associators(Update("0"), "", "", role); }), NotSupported());
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(FileListOddities, FL5_ReferencesAskForFilesWhateverTheRole) {
    for (const char* const role : {"Antecedent", "Dependent", "Any", ""}) {
        const CIMInstanceArray references = References(Update("0"), FILE_LIST, role);
        ASSERT_EQ(references.size(), 2U) << role;
        EXPECT_EQ(Target(references[1], "Dependent"), File("two"));
    }
}

TEST_F(FileListOddities, FL6_ReferencesBearTheClassNameThatWasAskedWith) {
    EXPECT_EQ(Text(References(Update("0"), "")[0].getClassName()), "");
    EXPECT_EQ(Text(References(Update("0"), "Any")[0].getClassName()), "Any");
    const CIMObjectPathArray names = ReferenceNames(Update("0"), "");
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(Text(names[0].getClassName()), "");
    EXPECT_EQ(names[0].getKeys().size(), 2U);
}

TEST_F(FileListOddities, FL7_GetInstanceAnswersWithAnEmptyInstance) {
    for (const CIMObjectPath& path : {ClassPath(FILE_LIST), Update("9"), CIMObjectPath()}) {
        const CIMInstance instance = calls.GetInstance(path);
        EXPECT_TRUE(static_cast<bool>(instance));
        EXPECT_EQ(Text(instance.getClassName()), "");
        EXPECT_TRUE(instance.getProperties().empty());
        EXPECT_TRUE(instance.getKeyValuePairs().empty());
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(FileListOddities, FL8_NoOperationAppliesTheRolesThatFollow) {
    // By itself the class of the path would decide what is on the other end.
    String role;
    String resultRole;
    String resultClass;
    provider.CheckRolesAndResults(Update("0"), role, resultRole, resultClass);
    EXPECT_EQ(Text(resultClass), "ZNX_AvailableSoftwareFileName");
    EXPECT_EQ(CimErrorOf([&] { Associators(Update("0"), "", "", ""); }), NotSupported());
    // A class that stands at neither end is none of the operations' business.
    const CIMObjectPath other = test_support::PathOf("ZNX_Other", "InstanceID", "0");
    EXPECT_EQ(CimErrorOf([&] { provider.ObjectNameToRole(other); }).number, 13);
    EXPECT_EQ(References(other).size(), 2U);
}
