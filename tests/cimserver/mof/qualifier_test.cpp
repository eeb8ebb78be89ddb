// Declarations of qualifiers, and qualifiers on elements.

#include "ReadText.hpp"

#include <gtest/gtest.h>

namespace {

using OpenWBEM::CIMFlavor;
using OpenWBEM::CIMQualifier;
using OpenWBEM::CIMQualifierType;
using OpenWBEM::CIMScope;
using OpenWBEM::CIMValue;
using test::Read;

CIMQualifier OnProperty(const std::string& qualifier, const char* name) {
    const auto schema = Read("class A { [" + qualifier + "] string X; };");
    return schema.FindClass("A")->getProperty("X").getQualifier(name);
}

TEST(MofQualifier, ADeclarationHasTypeDefaultScopesAndFlavors) {
    const auto schema = Read("Qualifier Limit : uint16[4] = {1, 2}, Scope(class, Method), "
                             "Flavor(DisableOverride, Restricted, Translatable);");
    const CIMQualifierType* type = schema.FindQualifier("LIMIT");
    ASSERT_NE(type, nullptr);
    EXPECT_STREQ(type->getName().c_str(), "Limit");
    EXPECT_EQ(type->getDataType().getType(), OpenWBEM::CIMDataType::UINT16);
    EXPECT_EQ(type->getDataType().getSize(), 4);
    EXPECT_EQ(type->getDefaultValue().toUInt16Array().size(), 2U);
    EXPECT_TRUE(type->hasScope(CIMScope::CLASS));
    EXPECT_TRUE(type->hasScope(CIMScope::METHOD));
    EXPECT_FALSE(type->hasScope(CIMScope::PROPERTY));
    EXPECT_TRUE(type->hasFlavor(CIMFlavor::DISABLEOVERRIDE));
    EXPECT_FALSE(type->hasFlavor(CIMFlavor::ENABLEOVERRIDE));
    EXPECT_TRUE(type->hasFlavor(CIMFlavor::RESTRICTED));
    EXPECT_FALSE(type->hasFlavor(CIMFlavor::TOSUBCLASS));
    EXPECT_TRUE(type->hasFlavor(CIMFlavor::TRANSLATE));
}

TEST(MofQualifier, WithoutFlavorsItMayBeOverriddenAndPassesToSubclasses) {
    const auto schema = Read("qualifier Plain : string, scope(any);");
    const CIMQualifierType* type = schema.FindQualifier("Plain");
    EXPECT_TRUE(!type->getDefaultValue());
    EXPECT_TRUE(type->hasFlavor(CIMFlavor::ENABLEOVERRIDE));
    EXPECT_TRUE(type->hasFlavor(CIMFlavor::TOSUBCLASS));
    EXPECT_FALSE(type->hasFlavor(CIMFlavor::TRANSLATE));
}

TEST(MofQualifier, DeclarationsAreListedInTheirOrder) {
    const auto schema = Read("qualifier Last : string, scope(any);");
    ASSERT_EQ(schema.Qualifiers().size(), 13U);
    EXPECT_STREQ(schema.Qualifiers().front().getName().c_str(), "Abstract");
    EXPECT_STREQ(schema.Qualifiers().back().getName().c_str(), "Last");
    EXPECT_EQ(schema.FindQualifier("Unknown"), nullptr);
}

TEST(MofQualifier, ABooleanWithoutValueIsTrueWhateverItsDefault) {
    EXPECT_EQ(OnProperty("Key", "Key").getValue(), CIMValue(true));
    EXPECT_EQ(OnProperty("KEY (FALSE)", "Key").getValue(), CIMValue(false));
    EXPECT_STREQ(OnProperty("KEY", "Key").getName().c_str(), "Key");
}

TEST(MofQualifier, AnotherOneWithoutValueHasTheDefaultOfItsType) {
    EXPECT_EQ(OnProperty("MaxLen", "MaxLen").getValue(), CIMValue(OpenWBEM::UInt32(7)));
    EXPECT_EQ(OnProperty("MaxLen(9)", "MaxLen").getValue(), CIMValue(OpenWBEM::UInt32(9)));
    EXPECT_FALSE(OnProperty("Description", "Description").hasValue());
    EXPECT_FALSE(OnProperty("MaxLen(null)", "MaxLen").hasValue());
}

TEST(MofQualifier, AnArrayStandsInBracesWithOrWithoutParentheses) {
    for (const char* text : {"Values {\"a\", \"b\"}", "Values({\"a\", \"b\"})"}) {
        const OpenWBEM::StringArray values = OnProperty(text, "Values").getValue().toStringArray();
        ASSERT_EQ(values.size(), 2U) << text;
        EXPECT_STREQ(values[0].c_str(), "a");
        EXPECT_STREQ(values[1].c_str(), "b");
    }
}

TEST(MofQualifier, FlavorsComeFromTheDeclarationAndMayBeReplaced) {
    const CIMQualifier plain = OnProperty("Description(\"d\")", "Description");
    EXPECT_TRUE(plain.hasFlavor(CIMFlavor::ENABLEOVERRIDE));
    EXPECT_TRUE(plain.hasFlavor(CIMFlavor::TOSUBCLASS));
    EXPECT_TRUE(plain.hasFlavor(CIMFlavor::TRANSLATE));
    for (const char* list : {"DisableOverride Restricted", "disableoverride, RESTRICTED"}) {
        const CIMQualifier changed =
            OnProperty(std::string("Description(\"d\") : ") + list + ", Key", "Description");
        EXPECT_TRUE(changed.hasFlavor(CIMFlavor::DISABLEOVERRIDE)) << list;
        EXPECT_FALSE(changed.hasFlavor(CIMFlavor::ENABLEOVERRIDE)) << list;
        EXPECT_TRUE(changed.hasFlavor(CIMFlavor::RESTRICTED)) << list;
        EXPECT_FALSE(changed.hasFlavor(CIMFlavor::TOSUBCLASS)) << list;
        EXPECT_TRUE(OnProperty(std::string("Description : ") + list + ", Key", "Key")) << list;
    }
}

TEST(MofQualifier, EachKindOfElementTakesTheScopesMadeForIt) {
    const auto schema = Read("[Abstract, Indication] class I { };"
                             "[Association, Abstract] class L { [Key] I REF X; };"
                             "class A { [Static] string X; [Static] string M([In] string P); };"
                             "[Abstract] class M : L { };");
    EXPECT_TRUE(schema.FindClass("I")->hasTrueQualifier("Indication"));
    EXPECT_TRUE(schema.FindClass("L")->hasTrueQualifier("Abstract"));
    EXPECT_TRUE(schema.FindClass("M")->hasTrueQualifier("Abstract"));
}

} // namespace
