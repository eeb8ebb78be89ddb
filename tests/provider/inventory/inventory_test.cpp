#include "InventoryTest.hpp"

#include <cstdlib>
#include <map>

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::CimErrorOf;
using test_support::InvalidParameter;
using test_support::NotFound;
using test_support::NotSupported;
using test_support::PathOf;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class Inventory : public InventoryTest {
protected:
    Inventory() {
        setenv("TZ", "UTC", 1);
        tool.Plays("",
                   ToolAnswer().OutputOfFile(TEST_DATA_DIRECTORY "/inventory/two_packages.tsv"));
    }
};

TEST_F(Inventory, AnInstancePerLineWithItsSixProperties) {
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(Text(instances[0].getClassName()), IDENTITY);
    EXPECT_THAT(PropertiesOf(instances[0]),
                ElementsAre("string InstanceID=0", "string Name=bash",
                            "string PackageVersion=5.2.15-2+b2",
                            "string RevisionNumber=5.2.15-2+b2", "uint16 Classifications=8",
                            "datetime InstalledDate=20250102030405.000000+000"));
    EXPECT_THAT(PropertiesOf(instances[1]),
                ElementsAre("string InstanceID=1", "string Name=zlib1g",
                            "string PackageVersion=1:1.2.13", "string RevisionNumber=1:1.2.13",
                            "uint16 Classifications=0",
                            "datetime InstalledDate=20250613220000.000000+000"));
}

TEST_F(Inventory, InstanceIDIsTheOnlyKey) {
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    ASSERT_EQ(instances.size(), 2U);
    for (const CIMProperty& property : instances[1].getProperties()) {
        EXPECT_EQ(property.isKey(), Text(property.getName()) == "InstanceID");
    }
    EXPECT_EQ(CIMObjectPath("root/cimv2", instances[1]), PathOf(IDENTITY, "InstanceID", "1"));
}

TEST_F(Inventory, NamesAreThePathsOfTheInstances) {
    const CIMObjectPathArray paths = calls.EnumInstanceNames(IDENTITY);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(Text(paths[0].toString()), "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"0\"");
    EXPECT_EQ(Text(paths[1].toString()), "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"1\"");
}

TEST_F(Inventory, EachEnumerationRunsTheToolWithoutAnArgument) {
    calls.EnumInstances(IDENTITY);
    calls.EnumInstanceNames(IDENTITY);
    calls.EnumInstances(CARTRIDGE);
    calls.EnumInstanceNames(CARTRIDGE);
    EXPECT_THAT(tool.Calls(),
                ElementsAre(ElementsAre("/qv/bin/patchkeeper"), ElementsAre("/qv/bin/patchkeeper"),
                            ElementsAre("/qv/bin/patchkeeper"),
                            ElementsAre("/qv/bin/patchkeeper")));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper ",
                                        "INFO: Executing: /qv/bin/patchkeeper ",
                                        "INFO: Executing: /qv/bin/patchkeeper ",
                                        "INFO: Executing: /qv/bin/patchkeeper "));
}

TEST_F(Inventory, GetInstanceAnswersWithTheSameInstance) {
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    EXPECT_EQ(PropertiesOf(Get("1")), PropertiesOf(instances[1]));
    EXPECT_EQ(CIMObjectPath("root/cimv2", Get("0")), PathOf(IDENTITY, "InstanceID", "0"));
}

TEST_F(Inventory, GetInstanceFindsNothingBeforeAnEnumeration) {
    EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound());
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

TEST_F(Inventory, GetInstanceRefusesPathsThatNameNoRecord) {
    calls.EnumInstances(IDENTITY);
    log->Forget();
    for (const char* const unknown : {"2", "-1", "", "00", " 0", "x"}) {
        EXPECT_EQ(CimErrorOf([&] { Get(unknown); }), NotFound()) << unknown;
    }
    EXPECT_THAT(log->All(), IsEmpty());
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(CIMObjectPath(IDENTITY)); }), InvalidParameter());
    CIMObjectPath withNull(IDENTITY);
    withNull.setKeys(CIMPropertyArray(1, CIMProperty("InstanceID", CIMDataType::STRING)));
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(withNull); }), InvalidParameter());
    EXPECT_THAT(log->All(), ElementsAre("ERROR: Missing InstanceID property",
                                        "ERROR: Missing InstanceID value"));
}

TEST_F(Inventory, AllPropertiesAreSetWhateverThePropertyListNames) {
    const StringArray nothing;
    const StringArray name(1, "Name");
    EXPECT_EQ(PropertiesOf(calls.EnumInstances(IDENTITY, &nothing)[0]).size(), 6U);
    EXPECT_EQ(PropertiesOf(calls.EnumInstances(IDENTITY, &name)[0]).size(), 6U);
    EXPECT_EQ(calls.GetInstance(PathOf(IDENTITY, "InstanceID", "0"), &name).getProperties().size(),
              6U);
}

TEST_F(Inventory, TheListIsThatOfTheLastEnumeration) {
    calls.EnumInstances(IDENTITY);
    Prints(Line("vim", "9"));
    calls.EnumInstanceNames(CARTRIDGE);
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "vim");
    EXPECT_EQ(CimErrorOf([&] { Get("1"); }), NotFound());
}

TEST_F(Inventory, ClassificationsFollowTheTable) {
    const std::map<std::string, std::string> table = {
        {"Other", "1"},
        {"Driver", "2"},
        {"Configuration Software", "3"},
        {"Application Software", "4"},
        {"Instrumentation", "5"},
        {"Firmware/BIOS", "6"},
        {"Diagnostic Software", "7"},
        {"Operating System", "8"},
        {"Middleware", "9"},
        {"Firmware", "10"},
        {"BIOS/FCode", "11"},
        {"Unknown", "0"},
        {"other", "0"},
        {"Other ", "0"},
        {"Firmware/", "0"},
        {"8", "0"},
    };
    std::string output;
    for (const auto& [text, value] : table) {
        output += Line("p", "1", text);
    }
    Prints(output);
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    ASSERT_EQ(instances.size(), table.size());
    std::size_t i = 0;
    for (const auto& [text, value] : table) {
        EXPECT_EQ(ValueOf(instances[i++], "Classifications"), value) << text;
    }
}

TEST_F(Inventory, WithoutOutputThereIsNothing) {
    calls.EnumInstances(IDENTITY);
    Prints("");
    EXPECT_TRUE(calls.EnumInstances(IDENTITY).empty());
    EXPECT_TRUE(calls.EnumInstanceNames(IDENTITY).empty());
    EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound());
}

TEST_F(Inventory, ModificationsAndMethodsAreNotSupported) {
    CIMParamValueArray out;
    for (const char* const served : {IDENTITY, CARTRIDGE}) {
        const CIMObjectPath path = PathOf(served, "InstanceID", "0");
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(CIMInstance(served)); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(CIMInstance(served)); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(path); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] {
                      provider.invokeMethod(env, "root/cimv2", path, "Apply", CIMParamValueArray(),
                                            out);
                  }),
                  NotSupported());
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_THAT(log->All(), IsEmpty());
}

class Cartridge : public InventoryTest {};

TEST_F(Cartridge, IsThePackageWithTheConfiguredName) {
    environment->SetConfigItem("qv.em_filename", "em");
    provider.initialize(env);
    Prints(Line("emX", "1") + Line("EM", "2") + Line("em", "3.1"));
    const CIMInstanceArray instances = calls.EnumInstances(CARTRIDGE);
    ASSERT_EQ(instances.size(), 1U);
    EXPECT_EQ(Text(instances[0].getClassName()), CARTRIDGE);
    EXPECT_THAT(PropertiesOf(instances[0]), ElementsAre("string Version=3.1"));
}

TEST_F(Cartridge, IsNamedByDefault) {
    Prints(Line("znxliteEMcartridge", "7"));
    EXPECT_EQ(calls.EnumInstances(CARTRIDGE).size(), 1U);
}

TEST_F(Cartridge, WithoutThePackageThereIsNothing) {
    Prints(Line("bash", "5"));
    EXPECT_TRUE(calls.EnumInstances(CARTRIDGE).empty());
    EXPECT_TRUE(calls.EnumInstanceNames(CARTRIDGE).empty());
}

TEST_F(Cartridge, EveryPackageOfTheNameIsEnumerated) {
    Prints(Line("znxliteEMcartridge", "7") + Line("bash", "5") + Line("znxliteEMcartridge", "8"));
    const CIMInstanceArray instances = calls.EnumInstances(CARTRIDGE);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[0], "Version"), "7");
    EXPECT_EQ(ValueOf(instances[1], "Version"), "8");
    const CIMObjectPathArray paths = calls.EnumInstanceNames(CARTRIDGE);
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[1], PathOf(CARTRIDGE, "Version", "8"));
    EXPECT_EQ(calls.EnumInstances(IDENTITY).size(), 3U);
}

class InventoryOddities : public InventoryTest {};

TEST_F(InventoryOddities, IN1_TwoPropertiesCarryTheVersion) {
    Prints(Line("bash", "5.2"));
    const CIMInstance instance = calls.EnumInstances(IDENTITY)[0];
    EXPECT_EQ(ValueOf(instance, "PackageVersion"), "5.2");
    EXPECT_EQ(ValueOf(instance, "RevisionNumber"), "5.2");
}

TEST_F(InventoryOddities, IN2_LinesOfErrorOutputAreRecords) {
    tool.Plays("", ToolAnswer().Output(Line("bash", "5")).ErrorText(Line("warning", "1")));
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[1], "Name"), "warning");
}

TEST_F(InventoryOddities, IN3_ClassificationsIsASingleValue) {
    Prints(Line("bash", "5", "Driver"));
    const CIMValue value = calls.EnumInstances(IDENTITY)[0].getPropertyValue("Classifications");
    EXPECT_FALSE(value.isArray());
    EXPECT_EQ(value, CIMValue(UInt16(2)));
}

TEST_F(InventoryOddities, IN4_GetInstanceNeverAsksTheTool) {
    Prints(Line("bash", "5"));
    calls.EnumInstances(IDENTITY);
    Prints(Line("vim", "9"));
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "bash");
    EXPECT_EQ(tool.Calls().size(), 1U);
}

TEST_F(InventoryOddities, IN5_TheFirstCartridgeAnswersForAnyVersion) {
    Prints(Line("znxliteEMcartridge", "7") + Line("znxliteEMcartridge", "8"));
    calls.EnumInstances(CARTRIDGE);
    for (const char* const version : {"7", "8", "9"}) {
        EXPECT_EQ(ValueOf(calls.GetInstance(PathOf(CARTRIDGE, "Version", version)), "Version"),
                  "7");
    }
}

TEST_F(InventoryOddities, IN6_AMissingCartridgeIsAnInvalidParameter) {
    Prints(Line("bash", "5"));
    calls.EnumInstances(CARTRIDGE);
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(PathOf(CARTRIDGE, "Version", "7")); }),
              InvalidParameter());
    EXPECT_TRUE(log->Contains("ERROR: Missing InstanceID property"));
    const CIMInstance other = calls.GetInstance(PathOf(CARTRIDGE, "InstanceID", "0"));
    EXPECT_EQ(Text(other.getClassName()), "ZNX_SoftwareIdentity");
}

TEST_F(InventoryOddities, IN7_VersionIsNoKeyPropertyButTheKeyOfThePath) {
    Prints(Line("znxliteEMcartridge", "7"));
    const CIMInstance instance = calls.EnumInstances(CARTRIDGE)[0];
    EXPECT_FALSE(instance.getProperty("Version").isKey());
    const CIMObjectPath path("root/cimv2", instance);
    EXPECT_EQ(path, PathOf(CARTRIDGE, "Version", "7"));
    EXPECT_EQ(calls.EnumInstanceNames(CARTRIDGE)[0], path);
    EXPECT_EQ(CIMObjectPath("root/cimv2", calls.GetInstance(path)), path);
}

TEST_F(InventoryOddities, IN8_MethodsAreNotSupportedRatherThanNotFound) {
    CIMParamValueArray out;
    for (const char* const method : {"Remove", "Any", ""}) {
        EXPECT_EQ(CimErrorOf([&] {
                      provider.invokeMethod(env, "root/cimv2", PathOf(IDENTITY, "InstanceID", "0"),
                                            method, CIMParamValueArray(), out);
                  }).number,
                  7);
    }
}
