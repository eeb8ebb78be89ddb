// The shape of every class: what a client may rely on, and what the provider library takes by name
// (properties, methods) and by position (parameters).

#include "schema/ZnxSchema.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using test::ZnxSchema;

std::string TypeOf(const OpenWBEM::CIMDataType& type) {
    std::string text = type.isReferenceType() ? std::string(type.getRefClassName().c_str()) + " REF"
                                              : std::string(type.toString().c_str());
    return type.isArrayType() ? text + "[]" : text;
}

std::string Direction(const OpenWBEM::CIMParameter& parameter) {
    const OpenWBEM::CIMQualifier in = parameter.getQualifier("In");
    const bool isIn = !in || parameter.hasTrueQualifier("In");
    const bool isOut = parameter.hasTrueQualifier("Out");
    return std::string(isIn ? "in" : "") + (isOut ? "out" : "");
}

std::string Describe(const OpenWBEM::CIMProperty& property) {
    std::string text = property.hasTrueQualifier("Key") ? "key " : "";
    text += property.hasTrueQualifier("Write") ? "writable " : "";
    return text + TypeOf(property.getDataType()) + " " + property.getName().c_str();
}

std::string Describe(const OpenWBEM::CIMMethod& method) {
    const OpenWBEM::CIMQualifier isStatic = method.getQualifier("Static");
    std::string text = isStatic && isStatic.getValue() == OpenWBEM::CIMValue(true) ? "static " : "";
    text += TypeOf(method.getReturnType()) + " " + method.getName().c_str() + "(";
    const OpenWBEM::CIMParameterArray parameters = method.getParameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        text += (i == 0 ? "" : ", ") + Direction(parameters[i]) + " " +
                TypeOf(parameters[i].getType()) + " " + parameters[i].getName().c_str();
    }
    return text + ")";
}

/// The class as text: a line per property and per method, in the order of the class.
std::string Describe(const char* name) {
    const OpenWBEM::CIMClass* cimClass = ZnxSchema().FindClass(name);
    if (cimClass == nullptr) {
        return "no such class";
    }
    std::ostringstream text;
    text << '\n';
    const OpenWBEM::CIMPropertyArray properties = cimClass->getAllProperties();
    for (std::size_t i = 0; i < properties.size(); ++i) {
        text << Describe(properties[i]) << '\n';
    }
    const OpenWBEM::CIMMethodArray methods = cimClass->getAllMethods();
    for (std::size_t i = 0; i < methods.size(); ++i) {
        text << Describe(methods[i]) << '\n';
    }
    return text.str();
}

TEST(ZnxClasses, TheNineClassesAndNoOthersAreDeclared) {
    std::vector<std::string> names;
    for (const OpenWBEM::CIMClass* cimClass : ZnxSchema().Subclasses("", true)) {
        names.emplace_back(cimClass->getName().c_str());
    }
    EXPECT_EQ(names,
              std::vector<std::string>(std::begin(test::znxClasses), std::end(test::znxClasses)));
}

TEST(ZnxClasses, NoClassHasASuperclass) {
    for (const char* name : test::znxClasses) {
        EXPECT_EQ(ZnxSchema().FindClass(name)->getSuperClass(), OpenWBEM::String()) << name;
    }
}

TEST(ZnxClasses, EveryClassNamesTheProviderLibrary) {
    for (const char* name : test::znxClasses) {
        const OpenWBEM::CIMQualifier provider =
            ZnxSchema().FindClass(name)->getQualifier("Provider");
        ASSERT_TRUE(provider) << name;
        EXPECT_STREQ(provider.getValue().toString().c_str(), "c++::SoftwareUpdateProvider") << name;
    }
}

TEST(ZnxClasses, OnlyTheFileListIsAnAssociation) {
    for (const char* name : test::znxClasses) {
        const bool isFileList = std::string(name) == "ZNX_AvailableSoftwareFileList";
        EXPECT_EQ(bool(ZnxSchema().FindClass(name)->isAssociation()), isFileList) << name;
    }
}

TEST(ZnxClasses, AvailableSoftwareUpdate) {
    EXPECT_EQ(Describe("ZNX_AvailableSoftwareUpdate"), R"(
key string InstanceID
string Name
string ShortDescription
string VersionString
string Size
boolean RebootRequired
uint8 Status
string UpdateDescription
static string GetViaFtp(in string Server, in string User, in string Password, in string Path)
static string GetViaHttp(in string Server, in string User, in string Password, in string Path, in boolean Secure)
static string GetViaSamba(in string Server, in string User, in string Password, in string Path)
static string GetViaUsb(in string Path)
static string GetViaHardDrive(in string Path)
static string GetViaElementManager()
static sint8 GetProgress(out string Status)
string Apply()
string Warnings()
boolean HasOptionalComponents()
string AddToSchedule(in datetime Date, in datetime Time)
)");
}

TEST(ZnxClasses, ScheduledSoftwareUpdate) {
    EXPECT_EQ(Describe("ZNX_ScheduledSoftwareUpdate"), R"(
key string InstanceID
string Name
string ShortDescription
string UpdateDescription
string VersionString
string Location
datetime DownloadDate
datetime ApplyDate
boolean RebootRequired
string Status
string Size
string Modify(in datetime Date, in datetime Time)
string Remove()
)");
}

TEST(ZnxClasses, ActiveSoftwareUpdate) {
    EXPECT_EQ(Describe("ZNX_ActiveSoftwareUpdate"), R"(
key string InstanceID
string Name
string ShortDescription
string UpdateDescription
string VersionString
string Location
datetime ApplyDate
boolean RebootRequired
string Status
string Size
string Cancel()
)");
}

TEST(ZnxClasses, HistorySoftwareUpdate) {
    EXPECT_EQ(Describe("ZNX_HistorySoftwareUpdate"), R"(
key string InstanceID
string Name
string VersionString
string ShortDescription
string Category
datetime Date
boolean Removeable
string UpdateDescription
boolean Remove()
)");
}

TEST(ZnxClasses, SoftwareUpdateComponent) {
    EXPECT_EQ(Describe("ZNX_SoftwareUpdateComponent"), R"(
key string InstanceID
string Name
string VersionString
string ShortDescription
writable boolean Install
)");
}

TEST(ZnxClasses, AvailableSoftwareFileName) {
    EXPECT_EQ(Describe("ZNX_AvailableSoftwareFileName"), R"(
key string FileName
)");
}

TEST(ZnxClasses, AvailableSoftwareFileList) {
    EXPECT_EQ(Describe("ZNX_AvailableSoftwareFileList"), R"(
key ZNX_AvailableSoftwareUpdate REF Antecedent
key ZNX_AvailableSoftwareFileName REF Dependent
)");
}

TEST(ZnxClasses, SoftwareIdentity) {
    EXPECT_EQ(Describe("ZNX_SoftwareIdentity"), R"(
key string InstanceID
string Name
string PackageVersion
string RevisionNumber
uint16 Classifications
datetime InstalledDate
)");
}

TEST(ZnxClasses, ElementManagerCartridgeVersionInfo) {
    EXPECT_EQ(Describe("ZNX_ElementManagerCartridgeVersionInfo"), R"(
key string Version
)");
}

} // namespace
