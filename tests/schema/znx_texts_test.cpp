// What a console shows of the classes: descriptions and the meaning of codes. And the qualifiers
// that a server without a schema of its own is given for them.

#include "schema/ZnxSchema.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <string>

namespace {

using OpenWBEM::CIMQualifierArray;
using test::ZnxSchema;

using Visit = std::function<void(const std::string& what, const CIMQualifierArray& qualifiers)>;

void VisitMembers(const OpenWBEM::CIMClass& cimClass, const Visit& visit) {
    const std::string prefix = std::string(cimClass.getName().c_str()) + ".";
    const OpenWBEM::CIMPropertyArray properties = cimClass.getAllProperties();
    for (std::size_t i = 0; i < properties.size(); ++i) {
        visit(prefix + properties[i].getName().c_str(), properties[i].getQualifiers());
    }
    const OpenWBEM::CIMMethodArray methods = cimClass.getAllMethods();
    for (std::size_t i = 0; i < methods.size(); ++i) {
        const std::string method = prefix + methods[i].getName().c_str();
        visit(method, methods[i].getQualifiers());
        const OpenWBEM::CIMParameterArray parameters = methods[i].getParameters();
        for (std::size_t j = 0; j < parameters.size(); ++j) {
            visit(method + "." + parameters[j].getName().c_str(), parameters[j].getQualifiers());
        }
    }
}

/// Every class, property, method and parameter.
void VisitAll(const Visit& visit) {
    for (const char* name : test::znxClasses) {
        const OpenWBEM::CIMClass* cimClass = ZnxSchema().FindClass(name);
        visit(name, cimClass->getQualifiers());
        VisitMembers(*cimClass, visit);
    }
}

OpenWBEM::CIMQualifier Find(const CIMQualifierArray& qualifiers, const char* name) {
    for (std::size_t i = 0; i < qualifiers.size(); ++i) {
        if (OpenWBEM::CIMName(qualifiers[i].getName()) == name) {
            return qualifiers[i];
        }
    }
    return OpenWBEM::CIMQualifier(OpenWBEM::CIMNULL);
}

/// "code=meaning, code=meaning" of an element; "" when it has no table.
std::string CodeTable(const CIMQualifierArray& qualifiers) {
    const OpenWBEM::CIMQualifier codes = Find(qualifiers, "ValueMap");
    const OpenWBEM::CIMQualifier meanings = Find(qualifiers, "Values");
    if (!codes && !meanings) {
        return {};
    }
    if (!codes || !meanings) {
        return "one of ValueMap and Values is missing";
    }
    const OpenWBEM::StringArray code = codes.getValue().toStringArray();
    const OpenWBEM::StringArray meaning = meanings.getValue().toStringArray();
    if (code.size() != meaning.size()) {
        return "ValueMap and Values differ in length";
    }
    std::string text;
    for (std::size_t i = 0; i < code.size(); ++i) {
        text += std::string(i == 0 ? "" : ", ") + code[i].c_str() + "=" + meaning[i].c_str();
    }
    return text;
}

TEST(ZnxTexts, EveryElementIsDescribedInWholeSentences) {
    int elements = 0;
    VisitAll([&](const std::string& what, const CIMQualifierArray& qualifiers) {
        ++elements;
        const OpenWBEM::CIMQualifier description = Find(qualifiers, "Description");
        ASSERT_TRUE(description) << what;
        const std::string text = description.getValue().toString().c_str();
        ASSERT_GT(text.size(), 10U) << what;
        EXPECT_EQ(text.back(), '.') << what;
        EXPECT_EQ(text.find("  "), std::string::npos) << what << ": " << text;
    });
    // 9 classes, 52 properties and references, 15 methods, 20 parameters.
    EXPECT_EQ(elements, 96);
}

TEST(ZnxTexts, CodeTablesGiveEveryCodeItsMeaning) {
    std::string tables;
    VisitAll([&](const std::string& what, const CIMQualifierArray& qualifiers) {
        const std::string table = CodeTable(qualifiers);
        if (!table.empty()) {
            tables += what + ": " + table + "\n";
        }
    });
    EXPECT_EQ(tables,
              "ZNX_AvailableSoftwareUpdate.Status: 0=Obsolete, 1=Applied, 2=Schedule, 3=Available, "
              "4=Invalid, 154=Unknown\n"
              "ZNX_AvailableSoftwareUpdate.GetProgress: -1=Failed, 0=Idle, 1=Running, 2=Done\n"
              "ZNX_SoftwareIdentity.Classifications: 0=Unknown, 1=Other, 2=Driver, "
              "3=Configuration Software, 4=Application Software, 5=Instrumentation, "
              "6=Firmware/BIOS, 7=Diagnostic Software, 8=Operating System, 9=Middleware, "
              "10=Firmware, 11=BIOS/FCode\n");
}

TEST(ZnxTexts, QualifiersMofDeclaresExactlyTheQualifiersInUse) {
    std::set<std::string> used;
    VisitAll([&](const std::string&, const CIMQualifierArray& qualifiers) {
        for (std::size_t i = 0; i < qualifiers.size(); ++i) {
            used.insert(qualifiers[i].getName().c_str());
        }
    });
    std::set<std::string> declared;
    for (const OpenWBEM::CIMQualifierType& type : ZnxSchema().Qualifiers()) {
        declared.insert(type.getName().c_str());
    }
    EXPECT_EQ(declared, used);
}

// A classic compiler takes ZNX.mof by itself into a namespace that has the standard qualifiers.
TEST(ZnxTexts, ZnxMofIsOneFileWithoutPragmasAndQualifierDeclarations) {
    std::ifstream file(SCHEMA_DIRECTORY "/ZNX.mof");
    ASSERT_TRUE(file);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(text.find('#'), text.find("# |")) << "the first # is that of the listed characters";
    EXPECT_EQ(text.find("#pragma"), std::string::npos);
    EXPECT_EQ(text.find("Qualifier "), std::string::npos);
    for (const char c : text) {
        ASSERT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << "byte " << static_cast<int>(c);
    }
}

} // namespace
