#include "MasterTest.hpp"

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::CimErrorOf;
using test_support::InvalidClass;
using test_support::InvalidParameter;
using test_support::NotSupported;
using test_support::PathOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The classes that have no class provider yet stand among the unknown ones.
const char* const UNKNOWN_CLASSES[] = {
    "",
    "znx_softwareidentity",
    "ZNX_SOFTWAREIDENTITY",
    "ZNX_SoftwareIdentityX",
    "ZNX_SoftwareIdentit",
    "ZNX_elementManagerCartridgeVersionInfo",
    "CIM_SoftwareIdentity",
    "ZNX_HistorySoftwareUpdate",
    "ZNX_ScheduledSoftwareUpdate",
    "ZNX_AvailableSoftwareUpdate",
    "ZNX_ActiveSoftwareUpdate",
    "ZNX_AvailableSoftwareFileName",
    "ZNX_AvailableSoftwareFileList",
    "ZNX_SoftwareUpdateComponent",
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

TEST_F(Routing, NoAssociationIsServed) {
    const CIMObjectPath source = PathOf("ZNX_SoftwareIdentity", "InstanceID", "0");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder instanceResult(instances);
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder pathResult(paths);
    for (const char* const association :
         {"", "ZNX_SoftwareIdentity", "znx_availablesoftwarefilelist",
          "ZNX_AvailableSoftwareFileList"}) {
        EXPECT_EQ(CimErrorOf([&] {
                      master.associators(env, instanceResult, "root/cimv2", source, association, "",
                                         "", "", E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN,
                                         nullptr);
                  }),
                  InvalidClass());
        EXPECT_EQ(CimErrorOf([&] {
                      master.associatorNames(env, pathResult, "root/cimv2", source, association, "",
                                             "", "");
                  }),
                  InvalidClass());
        EXPECT_EQ(CimErrorOf([&] {
                      master.references(env, instanceResult, "root/cimv2", source, association, "",
                                        E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
                  }),
                  InvalidClass());
        EXPECT_EQ(CimErrorOf([&] {
                      master.referenceNames(env, pathResult, "root/cimv2", source, association, "");
                  }),
                  InvalidClass());
    }
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
