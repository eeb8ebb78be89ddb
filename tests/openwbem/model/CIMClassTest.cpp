#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using tests::ArrayOf;
using tests::Flag;
using tests::Thrown;

CIMClass Sample() {
    CIMClass cimClass("ZNX_A");
    cimClass.setSuperClass("ZNX_Base");
    CIMQualifier provider("Provider");
    provider.setValue(CIMValue("c++::P")).setPropagated();
    cimClass.addQualifier(provider).addQualifier(Flag("Read", true));
    CIMProperty id("InstanceID", CIMDataType(CIMDataType::STRING));
    id.addQualifier(CIMQualifier::createKeyQualifier());
    cimClass.addProperty(id.setOriginClass("ZNX_Base").setPropagated(true));
    CIMProperty count("Count", CIMDataType(CIMDataType::UINT8));
    cimClass.addProperty(count.setValue(CIMValue(UInt8(7))).setOriginClass("ZNX_A"));
    cimClass.addProperty(CIMProperty("Tags", CIMDataType(CIMDataType::UINT16, -1)));
    CIMMethod inherited("Run");
    cimClass.addMethod(inherited.setReturnType(CIMDataType::UINT32).setPropagated(true));
    CIMMethod own("Stop");
    own.setReturnType(CIMDataType::UINT32)
        .setQualifiers(ArrayOf<CIMQualifier>({Flag("Static", true)}));
    cimClass.addMethod(own);
    return cimClass;
}

template <class Element>
std::string Names(const Array<Element>& elements) {
    std::string names;
    for (const Element& element : elements) {
        names += names.empty() ? "" : " ";
        names += element.getName().c_str();
    }
    return names;
}

TEST(CIMClass, FindsItsPartsInAnyCase) {
    const CIMClass cimClass = Sample();
    EXPECT_EQ(cimClass.getName(), "ZNX_A");
    EXPECT_EQ(cimClass.getSuperClass(), "ZNX_Base");
    EXPECT_EQ(CIMClass("ZNX_B").getSuperClass(), "");
    EXPECT_EQ(cimClass.getProperty("instanceid").getName(), "InstanceID");
    EXPECT_EQ(cimClass.getMethod("STOP").getName(), "Stop");
    EXPECT_EQ(cimClass.getQualifier("provider").getValue().toString(), "c++::P");
    EXPECT_TRUE(cimClass.hasTrueQualifier("READ"));
    EXPECT_TRUE(!cimClass.getProperty("x"));
    EXPECT_TRUE(!cimClass.getMethod("x"));
    EXPECT_TRUE(!cimClass.getQualifier("x"));
}

TEST(CIMClass, ListsPropertiesAndMethods) {
    const CIMClass cimClass = Sample();
    EXPECT_EQ(Names(cimClass.getAllProperties()), "InstanceID Count Tags");
    EXPECT_EQ(Names(cimClass.getProperties()), "InstanceID Count Tags");
    EXPECT_EQ(Names(cimClass.getKeys()), "InstanceID");
    EXPECT_TRUE(cimClass.isKeyed());
    EXPECT_FALSE(CIMClass("ZNX_B").isKeyed());
    EXPECT_EQ(Names(cimClass.getAllMethods()), "Run Stop");
}

TEST(CIMClass, GetMethodsListsOverridingMethodsOnly) {
    CIMClass cimClass = Sample();
    EXPECT_TRUE(cimClass.getMethods().empty());
    CIMMethod overriding("Start");
    CIMQualifier qualifier("override");
    qualifier.setValue(CIMValue("Start"));
    cimClass.addMethod(overriding.setQualifiers(ArrayOf<CIMQualifier>({qualifier})));
    EXPECT_EQ(Names(cimClass.getMethods()), "Start");
}

TEST(CIMClass, ATrueAssociationQualifierMakesAnAssociation) {
    CIMClass cimClass("ZNX_R");
    EXPECT_FALSE(cimClass.isAssociation());
    EXPECT_FALSE(CIMClass("ZNX_S").addQualifier(Flag("Association", false)).isAssociation());
    cimClass.addQualifier(Flag("ASSOCIATION", true));
    EXPECT_TRUE(cimClass.isAssociation());
    EXPECT_FALSE(cimClass.setIsAssociation(false).isAssociation());
    cimClass.addProperty(CIMProperty("Antecedent", CIMDataType(CIMName("ZNX_A"))));
    EXPECT_EQ(Names(cimClass.getKeys()), "Antecedent");
}

TEST(CIMClass, AddRefusesWhatIsThereAndSetReplacesIt) {
    CIMClass cimClass = Sample();
    EXPECT_EQ(Thrown([&] { cimClass.addProperty(CIMProperty("COUNT")); }),
              "CIMException: object already exists (Property COUNT already exists)");
    EXPECT_EQ(Thrown([&] { cimClass.addMethod(CIMMethod("Run")); }),
              "CIMException: object already exists (Method Run already exists)");
    EXPECT_EQ(Thrown([&] { cimClass.addQualifier(CIMQualifier("Read")); }),
              "CIMException: object already exists (Qualifier Read already exists)");
    cimClass.setProperty(CIMProperty("COUNT", CIMDataType(CIMDataType::STRING)));
    EXPECT_EQ(Names(cimClass.getProperties()), "InstanceID COUNT Tags");
    cimClass.setQualifier(Flag("Read", false));
    EXPECT_FALSE(cimClass.hasTrueQualifier("Read"));
    EXPECT_EQ(cimClass.getQualifiers().size(), 2u);
    EXPECT_TRUE(cimClass.removeProperty("count"));
    EXPECT_FALSE(cimClass.removeProperty("count"));
    EXPECT_EQ(Names(cimClass.getProperties()), "InstanceID Tags");
    EXPECT_TRUE(cimClass.setProperties(CIMPropertyArray()).getProperties().empty());
    EXPECT_TRUE(cimClass.setMethods(CIMMethodArray()).getAllMethods().empty());
}

TEST(CIMClass, NewInstanceHasAllPropertiesAndNullKeys) {
    CIMInstance instance = Sample().newInstance();
    EXPECT_EQ(instance.getClassName(), "ZNX_A");
    EXPECT_EQ(Names(instance.getProperties()), "InstanceID Count Tags");
    EXPECT_FALSE(instance.getPropertyValue("InstanceID"));
    EXPECT_TRUE(instance.getPropertyValue("Count") == CIMValue(UInt8(7)));
    EXPECT_EQ(instance.getProperty("InstanceID").getOriginClass(), "ZNX_Base");
    EXPECT_TRUE(instance.getProperty("InstanceID").isKey());
    ASSERT_EQ(Names(instance.getKeyValuePairs()), "InstanceID");
    EXPECT_FALSE(instance.getKeyValuePairs()[0].getValue());
    instance.setProperty("Tags", CIMValue(UInt16(3)));
    EXPECT_TRUE(instance.getPropertyValue("Tags") == CIMValue(ArrayOf<UInt16>({3})));
    instance.setProperty("Count", CIMValue("5"));
    EXPECT_TRUE(instance.getPropertyValue("Count") == CIMValue(UInt8(5)));
}

TEST(CIMClass, CloneFilters) {
    const CIMClass cimClass = Sample();
    const CIMClass local =
        cimClass.clone(E_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN);
    EXPECT_EQ(Names(local.getAllProperties()), "Count Tags");
    EXPECT_EQ(Names(local.getAllMethods()), "Stop");
    EXPECT_EQ(Names(local.getQualifiers()), "Read");
    const CIMClass bare =
        cimClass.clone(E_NOT_LOCAL_ONLY, E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN);
    EXPECT_TRUE(bare.getQualifiers().empty());
    EXPECT_TRUE(bare.getProperty("InstanceID").getQualifiers().empty());
    EXPECT_TRUE(bare.getMethod("Stop").getQualifiers().empty());
    EXPECT_EQ(bare.getProperty("InstanceID").getOriginClass(), "");
    const StringArray list = ArrayOf<String>({"TAGS", "unknown"});
    const StringArray none;
    const auto listed = [&](const StringArray* names) {
        return Names(
            cimClass.clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, names)
                .getAllProperties());
    };
    EXPECT_EQ(listed(&list), "Tags");
    EXPECT_EQ(listed(&none), "");
    EXPECT_EQ(listed(nullptr), "InstanceID Count Tags");
    EXPECT_EQ(
        Names(cimClass
                  .clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, list, true)
                  .getAllProperties()),
        "");
}

TEST(CIMClass, EqualityComparesEverything) {
    EXPECT_TRUE(Sample() == Sample());
    const std::function<void(CIMClass&)> changes[] = {
        [](CIMClass& c) { c.setName("ZNX_B"); },
        [](CIMClass& c) { c.setSuperClass("ZNX_Other"); },
        [](CIMClass& c) { c.setIsAssociation(true); },
        [](CIMClass& c) { c.setQualifier(Flag("Read", false)); },
        [](CIMClass& c) { c.removeProperty("Tags"); },
        [](CIMClass& c) { c.setProperty(c.getProperty("Count").setValue(CIMValue(UInt8(8)))); },
        [](CIMClass& c) { c.setProperty(c.getProperty("Count").setOriginClass("ZNX_B")); },
        [](CIMClass& c) { c.setProperty(c.getProperty("Count").setPropagated(true)); },
        [](CIMClass& c) { c.setProperty(c.getProperty("Count").addQualifier("Read")); },
        [](CIMClass& c) { c.setProperty(CIMProperty("Tags", CIMDataType(CIMDataType::UINT16))); },
        [](CIMClass& c) { c.setMethods(CIMMethodArray()); },
        [](CIMClass& c) {
            CIMMethodArray methods = c.getAllMethods();
            methods[1].addParameter(CIMParameter("p"));
            c.setMethods(methods);
        },
    };
    int number = 0;
    for (const auto& change : changes) {
        CIMClass changed = Sample();
        change(changed);
        EXPECT_TRUE(changed != Sample()) << "change " << number;
        ++number;
    }
    EXPECT_TRUE(CIMClass("znx_b") == CIMClass("ZNX_B"));
}

TEST(CIMClass, TextForm) {
    EXPECT_EQ(Sample().toMOF(), "[Provider(\"c++::P\"), Read(true)]\nclass ZNX_A : ZNX_Base\n{\n"
                                "  [Key(true)]\n  string InstanceID;\n  uint8 Count=7;\n"
                                "  uint16 Tags[];\n  uint32 Run();\n  [Static(true)]\n"
                                "  uint32 Stop();\n};\n");
    EXPECT_EQ(CIMClass("ZNX_B").toMOF(), "class ZNX_B\n{\n};\n");
    EXPECT_TRUE(Sample().toString() == Sample().toMOF());
}

TEST(CIMClass, CopiesAreIndependent) {
    const CIMClass first = Sample();
    CIMClass second(first);
    second.removeProperty("Count");
    second.setName("ZNX_B");
    EXPECT_TRUE(first == Sample());
}

} // namespace
