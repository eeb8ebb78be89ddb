#include "MasterTest.hpp"

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::CimErrorOf;
using test_support::PathOf;
using testing::ElementsAre;
using testing::IsEmpty;

// Every call below names a class that nobody serves: what is logged is the master's alone.
class Trace : public MasterTest {
protected:
    template <typename Action>
    std::vector<std::string> LinesOf(const Action& action) {
        log->Forget();
        EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(CimErrorOf(action).number, 5); }), "");
        return log->All();
    }

    const CIMObjectPath path = PathOf("ZNX_X", "InstanceID", "3");
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder instanceResult{instances};
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder pathResult{paths};
};

TEST_F(Trace, EnumInstanceNamesLogsItsClass) {
    EXPECT_THAT(LinesOf([&] { calls.EnumInstanceNames("ZNX_X"); }),
                ElementsAre("INFO: ZNX_X.enumInstanceNames()"));
}

TEST_F(Trace, EnumInstancesLogsItsClassAndThePropertyList) {
    EXPECT_THAT(LinesOf([&] { calls.EnumInstances("ZNX_X"); }),
                ElementsAre("INFO: ZNX_X.enumInstanes()", "INFO: Property list not specified"));
}

TEST_F(Trace, GetInstanceLogsItsClassThePathAndThePropertyList) {
    EXPECT_THAT(LinesOf([&] { calls.GetInstance(path); }),
                ElementsAre("INFO: ZNX_X.getInstance()",
                            "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\"",
                            "INFO: Property list not specified"));
}

TEST_F(Trace, DeleteInstanceLogsItsClassAndTheInstance) {
    EXPECT_THAT(LinesOf([&] { calls.DeleteInstance(path); }),
                ElementsAre("INFO: ZNX_X.deleteInstance()",
                            "INFO: Instance=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}

TEST_F(Trace, ModifyInstanceNamesTheClassOfTheModifiedInstance) {
    const StringArray list(1, "Install");
    EXPECT_THAT(LinesOf([&] {
                    master.modifyInstance(env, "root/cimv2", CIMInstance("ZNX_X"),
                                          CIMInstance("ZNX_SoftwareIdentity"), E_EXCLUDE_QUALIFIERS,
                                          &list, CIMClass());
                }),
                ElementsAre("INFO: ZNX_X.modifyInstance()", "INFO: Property list: Install"));
}

TEST_F(Trace, InvokeMethodLogsItsClassTheMethodAndThePath) {
    CIMParamValueArray out;
    EXPECT_THAT(LinesOf([&] {
                    master.invokeMethod(env, "root/cimv2", path, "Apply", CIMParamValueArray(),
                                        out);
                }),
                ElementsAre("INFO: ZNX_X.invokeMethod()", "INFO: ZNX_X.Apply()",
                            "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}

TEST_F(Trace, AssociatorsLogsTheAssociationAndThePath) {
    EXPECT_THAT(
        LinesOf([&] {
            master.associators(env, instanceResult, "root/cimv2", path, "A", "R", "Role",
                               "ResultRole", E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
        }),
        ElementsAre("INFO: A.associator()", "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}

TEST_F(Trace, AssociatorNamesLogsTheAssociationAndThePath) {
    EXPECT_THAT(LinesOf([&] {
                    master.associatorNames(env, pathResult, "root/cimv2", path, "A", "R", "Role",
                                           "ResultRole");
                }),
                ElementsAre("INFO: A.associatorNames()",
                            "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}

TEST_F(Trace, ReferencesLogsTheResultClassAndThePath) {
    EXPECT_THAT(
        LinesOf([&] {
            master.references(env, instanceResult, "root/cimv2", path, "R", "Role",
                              E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
        }),
        ElementsAre("INFO: R.references()", "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}

TEST_F(Trace, ReferenceNamesLogsTheResultClassAndThePath) {
    EXPECT_THAT(
        LinesOf([&] { master.referenceNames(env, pathResult, "root/cimv2", path, "R", "Role"); }),
        ElementsAre("INFO: R.referenceNames()",
                    "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}

TEST_F(Trace, ThePropertyListIsJoinedByCommas) {
    StringArray list;
    EXPECT_THAT(LinesOf([&] { calls.EnumInstances("ZNX_X", &list); }),
                ElementsAre("INFO: ZNX_X.enumInstanes()", "INFO: Property list: "));
    list.push_back("Name");
    EXPECT_THAT(LinesOf([&] { calls.EnumInstances("ZNX_X", &list); }),
                ElementsAre("INFO: ZNX_X.enumInstanes()", "INFO: Property list: Name"));
    list.push_back("100%s");
    list.push_back("Version");
    EXPECT_THAT(LinesOf([&] { calls.GetInstance(path, &list); }),
                ElementsAre("INFO: ZNX_X.getInstance()",
                            "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\"",
                            "INFO: Property list: Name,100%s,Version"));
}

TEST_F(Trace, TheLinesOfAServedCallStandBeforeThoseOfTheClassProvider) {
    calls.EnumInstances("ZNX_SoftwareIdentity");
    EXPECT_THAT(log->All(), ElementsAre("INFO: ZNX_SoftwareIdentity.enumInstanes()",
                                        "INFO: Property list not specified",
                                        "INFO: Executing: /qv/bin/patchkeeper "));
}

TEST_F(Trace, TheSwitchPrintsTheSameLines) {
    setenv("provider_agent_debug", "1", 1);
    master.initialize(env);
    EXPECT_EQ(PrintedBy([&] { CimErrorOf([&] { calls.GetInstance(path); }); }),
              "ZNX_X.getInstance()\n"
              "ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\"\n"
              "Property list not specified\n");
    EXPECT_EQ(log->All().size(), 3U);
    unsetenv("provider_agent_debug");
    master.initialize(env);
}

class MasterOddities : public Trace {};

TEST_F(MasterOddities, MP1_EnumInstancesIsTracedAsEnumInstanes) {
    calls.EnumInstances("ZNX_SoftwareIdentity");
    EXPECT_TRUE(log->Contains("INFO: ZNX_SoftwareIdentity.enumInstanes()"));
}

TEST_F(MasterOddities, MP2_CreateInstanceIsPrintedAlwaysAndLoggedNever) {
    EXPECT_EQ(PrintedBy([&] { CimErrorOf([&] { calls.CreateInstance(CIMInstance("ZNX_X")); }); }),
              "ZNX_X.createInstance()\n");
    EXPECT_EQ(PrintedBy([&] {
                  CimErrorOf([&] { calls.CreateInstance(CIMInstance("ZNX_SoftwareIdentity")); });
              }),
              "ZNX_SoftwareIdentity.createInstance()\n");
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(MasterOddities, MP3_AssociatorsIsTracedInTheSingular) {
    EXPECT_THAT(
        LinesOf([&] {
            master.associators(env, instanceResult, "root/cimv2", path, "", "", "", "",
                               E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
        }),
        ElementsAre("INFO: .associator()", "INFO: ObjectPath=/root/cimv2:ZNX_X.InstanceID=\"3\""));
}
