// Providers of methods and of associations.
#include "cimserver/host/HostTest.hpp"

#include "OW_CIMObjectPath.hpp"
#include "OW_CIMParamValue.hpp"
#include "OW_ResultHandlers.hpp"

namespace hosttest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Interfaces : public HostTest {
protected:
    bool Invoke(const std::string& qualifier, const std::string& className = "HT_Class",
                const std::string& method = "Run", const std::string& nameSpace = "root/cimv2") {
        return TheHost().WithMethodProvider(
            {nameSpace.c_str(), className.c_str(), qualifier.c_str()}, method.c_str(),
            {"InvokeMethod", "anna"}, [&](auto& provider, const auto& env) {
                OpenWBEM::CIMParamValueArray out;
                provider.invokeMethod(env, nameSpace.c_str(),
                                      OpenWBEM::CIMObjectPath(className.c_str()), method.c_str(),
                                      {}, out);
            });
    }
    bool Refer(const std::string& qualifier, const std::string& className = "HT_Class",
               const std::string& nameSpace = "root/cimv2") {
        return TheHost().WithAssociatorProvider(
            {nameSpace.c_str(), className.c_str(), qualifier.c_str()}, {"ReferenceNames", "anna"},
            [&](auto& provider, const auto& env) {
                OpenWBEM::CIMObjectPathArray paths;
                OpenWBEM::CIMObjectPathArrayBuilder handler(paths);
                provider.referenceNames(env, handler, nameSpace.c_str(),
                                        OpenWBEM::CIMObjectPath("HT_Source"), className.c_str(),
                                        "");
            });
    }
    template <class Call>
    static std::string FailureOf(const Call& call) {
        try {
            return call() ? "no failure" : "no provider";
        } catch (const OpenWBEM::CIMException& error) {
            return std::to_string(error.getErrNo()) + " " + error.getMessage();
        }
    }
    /// Who was called last, or "none".
    template <class Call>
    static std::string ServedBy(const Call& call) {
        TakeLines();
        if (!call()) {
            return "none";
        }
        const auto lines = TakeLines();
        return lines.empty() ? "nobody" : lines.back().substr(0, lines.back().find(':'));
    }
};

TEST_F(Interfaces, OneObjectServesAllAndIsInitializedOnce) {
    Install("Serving");
    Start();
    EXPECT_TRUE(Invoke("c++::Serving"));
    EXPECT_TRUE(Refer("c++::Serving"));
    EXPECT_TRUE(Enumerate("c++::Serving"));
    EXPECT_THAT(TakeLines(),
                ElementsAre("Serving: initialize for anna", "Serving: invokeMethod Run",
                            "Serving: referenceNames HT_Class", "Serving: enumInstanceNames"));
    EXPECT_THAT(LogTaken(), IsEmpty());
}

TEST_F(Interfaces, NoQualifierIsNoProvider) {
    Install("Serving");
    Start();
    EXPECT_FALSE(Invoke(""));
    EXPECT_FALSE(Refer(""));
    EXPECT_THAT(LogTaken(), IsEmpty());
    EXPECT_FALSE(Invoke("perl::Serving"));
    EXPECT_FALSE(Refer("perl::Serving"));
    EXPECT_EQ(LogTaken().size(), 2U);
}

TEST_F(Interfaces, MissingOrRefusedLibraryFailsMethods) {
    Install("OldVersion");
    Start();
    LogTaken();
    const std::string start = "6 requested object could not be found (No provider for method Run: ";
    EXPECT_EQ(FailureOf([&] { return Invoke("c++::Missing"); }),
              start + "Invalid provider: Missing: there is no provider library libMissing.so in " +
                  Directory().string() + ")");
    EXPECT_EQ(FailureOf([&] { return Invoke("c++::OldVersion"); }),
              start +
                  "Invalid provider: OldVersion: " + (Directory() / "libOldVersion.so").string() +
                  ": made for OpenWBEM 3.0.2, this server is 3.0.3)");
    EXPECT_EQ(LogTaken().size(), 2U);
}

TEST_F(Interfaces, MissingOrRefusedLibraryFailsAssociations) {
    Install("OldVersion");
    Start();
    LogTaken();
    EXPECT_EQ(FailureOf([&] { return Refer("c++::Missing"); }),
              "1 general error (Invalid provider: Missing: there is no provider library "
              "libMissing.so in " +
                  Directory().string() + ")");
    EXPECT_EQ(FailureOf([&] { return Refer("c++::OldVersion"); }),
              "1 general error (Invalid provider: OldVersion: " +
                  (Directory() / "libOldVersion.so").string() +
                  ": made for OpenWBEM 3.0.2, this server is 3.0.3)");
    EXPECT_EQ(LogTaken().size(), 2U);
}

TEST_F(Interfaces, ProviderWithoutMethodsServesNone) {
    Install("Good");
    Start();
    EXPECT_FALSE(Invoke("c++::Good"));
    EXPECT_THAT(LogTaken(),
                ElementsAre("ow.provider.cpp.ifc ERROR provider Good serves no methods"));
}

TEST_F(Interfaces, ProviderWithoutAssociationsServesNoneSilently) {
    Install("Good");
    Install("MethodsOnly");
    Start();
    EXPECT_FALSE(Refer("c++::Good"));
    EXPECT_FALSE(Refer("c++::MethodsOnly"));
    EXPECT_THAT(LogTaken(), IsEmpty());
}

TEST_F(Interfaces, ProviderOfMethodsAloneServesThem) {
    Install("MethodsOnly");
    Start();
    EXPECT_TRUE(Invoke("c++::MethodsOnly"));
}

TEST_F(Interfaces, WhatAMethodThrowsArrivesAsCimException) {
    Install("Serving");
    Start();
    Switch("invokeMethod throws", true);
    EXPECT_EQ(FailureOf([&] { return Invoke("c++::Serving"); }), "1 Unknown Exception");
    Switch("invokeMethod throws", false);
    EXPECT_TRUE(Invoke("c++::Serving"));
}

TEST_F(Interfaces, MethodsAreFoundByRegistrationInThisOrder) {
    Install("Good");
    Install("Serving");
    Install("Helping");
    SetRegistrations("Serving methods", {{"HT_All", {}},
                                         {"HT_One", {}, {"Run", "Stop"}},
                                         {"HT_There", {"root/there"}},
                                         {"HT_OneThere", {"root/there"}, {"Run"}}});
    SetRegistrations("Helping methods",
                     {{"HT_All", {}, {"Run"}}, {"HT_One", {"root/cimv2"}}, {"HT_Two", {}}});
    Start();
    EXPECT_THAT(LogTaken(), IsEmpty());
    struct Row {
        const char* className;
        const char* method;
        const char* nameSpace;
        const char* servedBy;
    };
    const Row rows[] = {
        {"ht_ALL", "RUN", "root/cimv2", "Serving"},   // the class before the method
        {"HT_One", "stop", "root/cimv2", "Serving"},  // all namespaces before one
        {"HT_One", "Walk", "ROOT/cimv2", "Helping"},  // registered for this namespace
        {"HT_One", "Walk", "root/there", "none"},     // but not for that one
        {"HT_There", "Run", "root/there", "Serving"}, //
        {"HT_There", "Run", "root/cimv2", "none"},    //
        {"HT_OneThere", "run", "root/there", "Serving"},
        {"HT_OneThere", "Stop", "root/there", "none"},
        {"HT_Two", "Any", "root/any", "Helping"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.className) + " " + row.method + " " + row.nameSpace);
        EXPECT_EQ(ServedBy([&] { return Invoke("", row.className, row.method, row.nameSpace); }),
                  row.servedBy);
    }
    EXPECT_EQ(ServedBy([&] { return Invoke("c++::Helping", "HT_One", "Run"); }), "Serving");
    EXPECT_EQ(ServedBy([&] { return Invoke("c++::Helping", "HT_There", "Run"); }), "Helping");
}

TEST_F(Interfaces, AssociationsAreFoundByRegistration) {
    Install("Serving");
    Install("Helping");
    SetRegistrations("Serving associations", {{"HT_A", {}}, {"HT_B", {"root/there"}}});
    SetRegistrations("Helping associations", {{"HT_A", {"root/cimv2"}}});
    Start();
    EXPECT_EQ(ServedBy([&] { return Refer("c++::Helping", "ht_a"); }), "Serving");
    EXPECT_EQ(ServedBy([&] { return Refer("", "HT_B", "root/There"); }), "Serving");
    EXPECT_EQ(ServedBy([&] { return Refer("c++::Helping", "HT_B"); }), "Helping");
    EXPECT_EQ(ServedBy([&] { return Refer("", "HT_B"); }), "none");
}

TEST_F(Interfaces, ARegistrationForOneInterfaceSaysNothingOfTheOthers) {
    Install("Serving");
    Install("Helping");
    SetRegistrations("Serving methods", {{"HT_M", {}}});
    SetRegistrations("Serving associations", {{"HT_A", {}}});
    SetRegistrations("Helping instances", {{"HT_M", {}}, {"HT_A", {}}});
    Start();
    EXPECT_THAT(LogTaken(), IsEmpty());
    EXPECT_FALSE(Invoke("", "HT_A"));
    EXPECT_FALSE(Refer("", "HT_M"));
    EXPECT_TRUE(Enumerate("", "HT_M"));
    EXPECT_EQ(ServedBy([&] { return Invoke("", "HT_M"); }), "Serving");
    EXPECT_EQ(ServedBy([&] { return Refer("", "HT_A"); }), "Serving");
}

TEST_F(Interfaces, SecondRegistrationIsAnErrorLineAndIgnored) {
    Install("Serving");
    Install("Helping");
    SetRegistrations("Helping methods", {{"HT_M", {}, {"Run"}}});
    SetRegistrations("Serving methods", {{"HT_M", {}, {"RUN"}}});
    SetRegistrations("Helping associations", {{"HT_A", {}}});
    SetRegistrations("Serving associations", {{"HT_A", {}}});
    Start();
    EXPECT_THAT(LogTaken(),
                ElementsAre("ow.provider.cpp.ifc ERROR provider Serving registers ht_a, which "
                            "provider Helping serves already",
                            "ow.provider.cpp.ifc ERROR provider Serving registers ht_m/run, which "
                            "provider Helping serves already"));
    EXPECT_EQ(ServedBy([&] { return Invoke("", "HT_M"); }), "Helping");
    EXPECT_EQ(ServedBy([&] { return Refer("", "HT_A"); }), "Helping");
}

} // namespace
} // namespace hosttest
