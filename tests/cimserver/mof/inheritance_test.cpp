// What a class has of its superclasses.

#include "ReadText.hpp"

#include <gtest/gtest.h>

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMMethod;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using test::Read;

constexpr const char* family = R"(
[Abstract, Provider("c++::one"), Description("base")]
class Base {
    [Key, Description("key of base")] string Id;
    [Description("size"): Restricted] uint32 Size = 4;
    [Description("runs")] boolean Run([In, Description("how"): Restricted] string How);
};
[Description("middle")]
class Middle : BASE {
    string Own;
    [Override("Size"), Description("size of middle")] uint32 Size = 5;
};
[Provider("c++::two")]
class Leaf : Middle {
    [Override("Run")] boolean RUN([In] string How, [In] uint8 Speed);
};
)";

std::vector<std::string> Properties(const CIMClass& cimClass) {
    std::vector<std::string> lines;
    const CIMPropertyArray properties = cimClass.getAllProperties();
    for (std::size_t i = 0; i < properties.size(); ++i) {
        lines.push_back(std::string(properties[i].getPropagated() ? "^" : "") +
                        properties[i].getName().c_str() + " of " +
                        properties[i].getOriginClass().c_str());
    }
    return lines;
}

TEST(MofInheritance, InheritedPropertiesStandFirstMarkedWithTheirOrigin) {
    const auto schema = Read(family);
    using List = std::vector<std::string>;
    EXPECT_EQ(Properties(*schema.FindClass("Base")), (List{"Id of Base", "Size of Base"}));
    EXPECT_EQ(Properties(*schema.FindClass("Middle")),
              (List{"^Id of Base", "Size of Middle", "Own of Middle"}));
    EXPECT_EQ(Properties(*schema.FindClass("Leaf")),
              (List{"^Id of Base", "^Size of Middle", "^Own of Middle"}));
    EXPECT_STREQ(schema.FindClass("Leaf")->getSuperClass().c_str(), "Middle");
    EXPECT_STREQ(schema.FindClass("Middle")->getSuperClass().c_str(), "Base");
}

TEST(MofInheritance, KeysAreInherited) {
    const auto schema = Read(family);
    EXPECT_TRUE(schema.FindClass("Leaf")->getProperty("id").isKey());
    EXPECT_TRUE(schema.FindClass("Leaf")->isKeyed());
    EXPECT_EQ(schema.FindClass("Leaf")->getKeys().size(), 1U);
}

TEST(MofInheritance, QualifiersOfTheClassPassToSubclassesUnlessRestricted) {
    const auto schema = Read(family);
    const CIMClass& middle = *schema.FindClass("Middle");
    EXPECT_FALSE(bool(middle.getQualifier("Abstract")));
    EXPECT_STREQ(middle.getQualifier("Provider").getValue().toString().c_str(), "c++::one");
    EXPECT_TRUE(middle.getQualifier("Provider").getPropagated());
    EXPECT_STREQ(middle.getQualifier("Description").getValue().toString().c_str(), "middle");
    EXPECT_FALSE(middle.getQualifier("Description").getPropagated());
    const CIMClass& leaf = *schema.FindClass("Leaf");
    EXPECT_STREQ(leaf.getQualifier("Provider").getValue().toString().c_str(), "c++::two");
    EXPECT_FALSE(leaf.getQualifier("Provider").getPropagated());
    EXPECT_STREQ(leaf.getQualifier("Description").getValue().toString().c_str(), "middle");
    EXPECT_TRUE(leaf.getQualifier("Description").getPropagated());
}

TEST(MofInheritance, QualifiersOfAnInheritedPropertyPassUnlessRestricted) {
    const auto schema = Read("class A { [Key, Description(\"d\") : Restricted] string X; };"
                             "class B : A { };");
    const CIMProperty property = schema.FindClass("B")->getProperty("X");
    EXPECT_TRUE(property.getQualifier("Key").getPropagated());
    EXPECT_FALSE(bool(property.getQualifier("Description")));
    EXPECT_FALSE(schema.FindClass("A")->getProperty("X").getQualifier("Key").getPropagated());
}

TEST(MofInheritance, AnOverridingPropertyTakesThePlaceOfTheInheritedOne) {
    const auto schema = Read(family);
    const CIMProperty size = schema.FindClass("Middle")->getProperty("Size");
    EXPECT_EQ(size.getValue(), OpenWBEM::CIMValue(OpenWBEM::UInt32(5)));
    EXPECT_STREQ(size.getQualifier("Description").getValue().toString().c_str(), "size of middle");
    EXPECT_TRUE(size.getQualifier("Override"));
    const CIMProperty inherited = schema.FindClass("Leaf")->getProperty("Size");
    EXPECT_EQ(inherited.getValue(), OpenWBEM::CIMValue(OpenWBEM::UInt32(5)));
    EXPECT_FALSE(bool(inherited.getQualifier("Override"))) << "Override is restricted";
    EXPECT_EQ(schema.FindClass("Base")->getProperty("Size").getValue(),
              OpenWBEM::CIMValue(OpenWBEM::UInt32(4)));
}

TEST(MofInheritance, AnOverridingPropertyKeepsTheQualifiersThatItDoesNotState) {
    const auto schema = Read("class A { [Key, Description(\"d\")] string X; };"
                             "class B : A { [Override] string X; };");
    const CIMProperty property = schema.FindClass("B")->getProperty("X");
    EXPECT_TRUE(property.isKey());
    EXPECT_TRUE(property.getQualifier("Key").getPropagated());
    EXPECT_STREQ(property.getQualifier("Description").getValue().toString().c_str(), "d");
}

TEST(MofInheritance, MethodsAreInheritedAndOverriddenAlike) {
    const auto schema = Read(family);
    const CIMMethod inherited = schema.FindClass("Middle")->getMethod("Run");
    EXPECT_TRUE(inherited.getPropagated());
    EXPECT_STREQ(inherited.getOriginClass().c_str(), "Base");
    EXPECT_TRUE(inherited.getQualifier("Description").getPropagated());
    ASSERT_EQ(inherited.getParameters().size(), 1U);
    EXPECT_TRUE(inherited.getParameters()[0].getQualifier("In").getPropagated());
    EXPECT_FALSE(bool(inherited.getParameters()[0].getQualifier("Description")));
    const CIMMethod own = schema.FindClass("Leaf")->getMethod("Run");
    EXPECT_FALSE(own.getPropagated());
    EXPECT_STREQ(own.getName().c_str(), "RUN");
    EXPECT_STREQ(own.getOriginClass().c_str(), "Leaf");
    EXPECT_EQ(own.getParameters().size(), 2U);
    EXPECT_STREQ(own.getQualifier("Description").getValue().toString().c_str(), "runs");
    EXPECT_EQ(schema.FindClass("Leaf")->getAllMethods().size(), 1U);
}

TEST(MofInheritance, ASubclassOfAnAssociationIsOne) {
    const auto schema = Read("class A { }; [Association] class Link { [Key] A REF X; };"
                             "class Special : Link { [Override(\"X\")] A REF X; };");
    EXPECT_TRUE(schema.FindClass("Special")->isAssociation());
    EXPECT_TRUE(schema.FindClass("Special")->getQualifier("Association").getPropagated());
    EXPECT_TRUE(schema.FindClass("Special")->getProperty("X").hasTrueQualifier("Key"));
}

TEST(MofInheritance, AQualifierThatCannotBeOverriddenMayBeStatedAgainUnchanged) {
    const auto schema = Read("class A { [Key] string X; };"
                             "class B : A { [Key, Override(\"X\")] string X; };");
    EXPECT_FALSE(schema.FindClass("B")->getProperty("X").getQualifier("Key").getPropagated());
}

} // namespace
