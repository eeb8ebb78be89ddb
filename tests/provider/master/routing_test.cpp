#include "MasterTest.hpp"

#include "provider/available/AvaliableProvider.hpp"

#include <utility>

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::CimError;
using test_support::CimErrorOf;
using test_support::InvalidClass;
using test_support::InvalidParameter;
using test_support::NotFound;
using test_support::NotSupported;
using test_support::PathOf;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const UNKNOWN_CLASSES[] = {
    "",
    "znx_softwareidentity",
    "ZNX_SOFTWAREIDENTITY",
    "ZNX_SoftwareIdentityX",
    "ZNX_SoftwareIdentit",
    "ZNX_elementManagerCartridgeVersionInfo",
    "CIM_SoftwareIdentity",
    "znx_HistorySoftwareUpdate",
    "znx_ScheduledSoftwareUpdate",
    "znx_AvailableSoftwareUpdate",
    "znx_ActiveSoftwareUpdate",
    "znx_AvailableSoftwareFileName",
    "znx_AvailableSoftwareFileList",
    "znx_SoftwareUpdateComponent",
};

} // namespace

class Routing : public MasterTest {
protected:
    CIMValue Invoke(const char* className) {
        CIMParamValueArray out;
        return master.invokeMethod(env, "root/cimv2", PathOf(className, "InstanceID", "0"),
                                   "Method", CIMParamValueArray(), out);
    }
};

TEST_F(Routing, BothInventoryClassesReachTheInventory) {
    EXPECT_EQ(calls.EnumInstances("ZNX_SoftwareIdentity").size(), 2U);
    EXPECT_EQ(calls.EnumInstances("ZNX_ElementManagerCartridgeVersionInfo").size(), 1U);
    EXPECT_EQ(calls.EnumInstanceNames("ZNX_SoftwareIdentity").size(), 2U);
    EXPECT_EQ(calls.EnumInstanceNames("ZNX_ElementManagerCartridgeVersionInfo").size(), 1U);
    const CIMInstance bash = calls.GetInstance(PathOf("ZNX_SoftwareIdentity", "InstanceID", "0"));
    EXPECT_EQ(bash.getPropertyValue("Name"), CIMValue("bash"));
    const CIMInstance cartridge =
        calls.GetInstance(PathOf("ZNX_ElementManagerCartridgeVersionInfo", "Version", "7.1"));
    EXPECT_EQ(cartridge.getPropertyValue("Version"), CIMValue("7.1"));
    for (const char* const served :
         {"ZNX_SoftwareIdentity", "ZNX_ElementManagerCartridgeVersionInfo"}) {
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(CIMInstance(served)); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(CIMInstance(served)); }), NotSupported());
        EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(PathOf(served, "InstanceID", "0")); }),
                  NotSupported());
        EXPECT_EQ(CimErrorOf([&] { Invoke(served); }), NotSupported());
    }
}

TEST_F(Routing, AnUnknownClassIsRefusedByEveryOperation) {
    for (const char* const unknown : UNKNOWN_CLASSES) {
        EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(unknown); }), InvalidClass()) << unknown;
        EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(unknown); }), InvalidClass()) << unknown;
        EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(PathOf(unknown, "InstanceID", "0")); }),
                  InvalidClass())
            << unknown;
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(CIMInstance(unknown)); }), InvalidClass())
            << unknown;
        EXPECT_EQ(CimErrorOf([&] { calls.DeleteInstance(PathOf(unknown, "InstanceID", "0")); }),
                  InvalidClass())
            << unknown;
        EXPECT_EQ(CimErrorOf([&] { calls.ModifyInstance(CIMInstance(unknown)); }), InvalidClass())
            << unknown;
        EXPECT_EQ(CimErrorOf([&] { Invoke(unknown); }), InvalidClass()) << unknown;
    }
    EXPECT_THAT(tool.Calls(), IsEmpty());
}

// Every class asks the tool in its own way, which shows whom a call has reached.
TEST_F(Routing, EveryClassReachesItsProvider) {
    tool.PlaysOtherwise(ToolAnswer());
    gAvaliableList = Array<AvaliableUpdate>();
    gPatchName = "N";
    gPatchVersion = "V";
    const std::pair<const char*, const char*> commands[] = {
        {"ZNX_HistorySoftwareUpdate", "/qv/bin/patchkeeper --hist"},
        {"ZNX_ScheduledSoftwareUpdate", "/qv/bin/patchkeeper --sched"},
        {"ZNX_AvailableSoftwareUpdate", "/qv/bin/patchkeeper --cache"},
        {"ZNX_ActiveSoftwareUpdate", "/qv/bin/patchkeeper --apply"},
        {"ZNX_SoftwareIdentity", "/qv/bin/patchkeeper"},
        {"ZNX_ElementManagerCartridgeVersionInfo", "/qv/bin/patchkeeper"},
        {"ZNX_AvailableSoftwareFileName", "/qv/bin/patchkeeper --files"},
        {"ZNX_SoftwareUpdateComponent", "/qv/bin/patchkeeper --components N V"},
    };
    for (const auto& [className, command] : commands) {
        tool.ForgetCalls();
        calls.EnumInstances(className);
        calls.EnumInstanceNames(className);
        EXPECT_THAT(tool.CommandLines(), ElementsAre(command, command)) << className;
    }
}

// The refusals of the other operations tell the classes apart from an unknown one.
TEST_F(Routing, EveryOperationReachesEveryClass) {
    tool.PlaysOtherwise(ToolAnswer());
    for (const char* const className :
         {"ZNX_HistorySoftwareUpdate", "ZNX_ScheduledSoftwareUpdate", "ZNX_AvailableSoftwareUpdate",
          "ZNX_ActiveSoftwareUpdate", "ZNX_SoftwareIdentity",
          "ZNX_ElementManagerCartridgeVersionInfo", "ZNX_AvailableSoftwareFileName",
          "ZNX_AvailableSoftwareFileList", "ZNX_SoftwareUpdateComponent"}) {
        SCOPED_TRACE(className);
        const CIMObjectPath path = PathOf(className, "InstanceID", "none");
        EXPECT_NE(CimErrorOf([&] { calls.GetInstance(path); }), InvalidClass());
        EXPECT_EQ(CimErrorOf([&] { calls.CreateInstance(CIMInstance(className)); }),
                  NotSupported());
        EXPECT_NE(CimErrorOf([&] { calls.DeleteInstance(path); }), InvalidClass());
        EXPECT_NE(CimErrorOf([&] { calls.ModifyInstance(CIMInstance(className)); }),
                  InvalidClass());
    }
}

TEST_F(Routing, MethodsReachSixProviders) {
    for (const char* const className :
         {"ZNX_HistorySoftwareUpdate", "ZNX_ScheduledSoftwareUpdate", "ZNX_AvailableSoftwareUpdate",
          "ZNX_ActiveSoftwareUpdate", "ZNX_SoftwareIdentity",
          "ZNX_ElementManagerCartridgeVersionInfo", "ZNX_SoftwareUpdateComponent"}) {
        EXPECT_NE(CimErrorOf([&] { Invoke(className); }), InvalidClass()) << className;
    }
    EXPECT_EQ(CimErrorOf([&] { Invoke("ZNX_AvailableSoftwareFileName"); }), InvalidClass());
    EXPECT_EQ(CimErrorOf([&] { Invoke("ZNX_AvailableSoftwareFileList"); }), InvalidClass());
}

TEST_F(Routing, OnlyTheFileListIsAnAssociation) {
    const CIMObjectPath source = PathOf("ZNX_AvailableSoftwareUpdate", "InstanceID", "none");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder instanceResult(instances);
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder pathResult(paths);
    const std::pair<const char*, CimError> outcomes[] = {
        {"", InvalidClass()},
        {"ZNX_SoftwareIdentity", InvalidClass()},
        {"ZNX_AvailableSoftwareUpdate", InvalidClass()},
        {"znx_availablesoftwarefilelist", InvalidClass()},
        {"ZNX_AvailableSoftwareFileList", NotFound()},
    };
    for (const auto& [association, outcome] : outcomes) {
        SCOPED_TRACE(association);
        EXPECT_EQ(CimErrorOf([&, name = association] {
                      master.associators(env, instanceResult, "root/cimv2", source, name, "",
                                         "Antecedent", "", E_EXCLUDE_QUALIFIERS,
                                         E_EXCLUDE_CLASS_ORIGIN, nullptr);
                  }),
                  outcome);
        EXPECT_EQ(CimErrorOf([&, name = association] {
                      master.associatorNames(env, pathResult, "root/cimv2", source, name, "",
                                             "Antecedent", "");
                  }),
                  outcome);
        EXPECT_EQ(CimErrorOf([&, name = association] {
                      master.references(env, instanceResult, "root/cimv2", source, name, "",
                                        E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
                  }),
                  outcome);
        EXPECT_EQ(CimErrorOf([&, name = association] {
                      master.referenceNames(env, pathResult, "root/cimv2", source, name, "");
                  }),
                  outcome);
    }
}

// A log that shows an exception leads to the unit that threw it.
TEST_F(Routing, RefusalsCarryTheSourceFileOfTheirUnit) {
    const std::pair<const char*, const char*> files[] = {
        {"ZNX_HistorySoftwareUpdate", "provider/history/HistoryProvider.cpp"},
        {"ZNX_ScheduledSoftwareUpdate", "provider/scheduled/ScheduledProvider.cpp"},
        {"ZNX_AvailableSoftwareUpdate", "provider/available/AvaliableProvider.cpp"},
        {"ZNX_ActiveSoftwareUpdate", "provider/active/ActiveProvider.cpp"},
        {"ZNX_SoftwareIdentity", "provider/inventory/InventoryProvider.cpp"},
        {"ZNX_AvailableSoftwareFileName", "provider/filename/FileNameProvider.cpp"},
        {"ZNX_AvailableSoftwareFileList", "provider/filelist/FileListProvider.cpp"},
        {"ZNX_SoftwareUpdateComponent", "provider/component/ComponentProvider.cpp"},
        {"ZNX_Unknown", "provider/master/MasterProvider.cpp"},
    };
    for (const auto& [className, file] : files) {
        try {
            calls.CreateInstance(CIMInstance(className));
            ADD_FAILURE() << className << " was created";
        } catch (const CIMException& refusal) {
            EXPECT_STREQ(refusal.getFile(), file);
            EXPECT_GT(refusal.getLine(), 0);
        }
    }
}

TEST_F(Routing, InitializeReachesTheClassProviders) {
    const CIMInstance placeholder =
        calls.GetInstance(PathOf("ZNX_AvailableSoftwareUpdate", "InstanceID", "1"));
    EXPECT_EQ(placeholder.getPropertyValue("Name"), CIMValue("Dummy"));
}

TEST_F(Routing, TheMasterServesInstancesMethodsAndAssociations) {
    EXPECT_EQ(master.getInstanceProvider(), static_cast<CppInstanceProviderIFC*>(&master));
    EXPECT_EQ(master.getMethodProvider(), static_cast<CppMethodProviderIFC*>(&master));
    EXPECT_EQ(master.getAssociatorProvider(), static_cast<CppAssociatorProviderIFC*>(&master));
}

TEST_F(Routing, TheFailureOfAClassProviderPassesThrough) {
    EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(PathOf("ZNX_SoftwareIdentity", "Name", "x")); }),
              InvalidParameter());
}

class MasterOddities : public Routing {};

TEST_F(MasterOddities, MP4_ClassNamesAreComparedWithTheirCase) {
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances("znx_softwareidentity"); }), InvalidClass());
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances("ZNX_SoftwareIdentity"); }).number, 0);
}

TEST_F(MasterOddities, MP5_MethodsOfTheFileNamesAreRefusedAsOfAnUnknownClass) {
    EXPECT_EQ(CimErrorOf([&] { Invoke("ZNX_AvailableSoftwareFileName"); }).number, 5);
}
