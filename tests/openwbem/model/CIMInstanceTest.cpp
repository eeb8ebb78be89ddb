#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using namespace OpenWBEM;
using tests::ArrayOf;
using tests::Key;
using tests::Thrown;
using tests::ThrownIds;

CIMProperty Reference(const char* name) {
    return CIMProperty(name, CIMValue(CIMObjectPath("ZNX_A", "root")));
}

std::string Names(const CIMPropertyArray& properties) {
    std::string names;
    for (const CIMProperty& property : properties) {
        names += names.empty() ? "" : " ";
        names += property.getName().c_str();
    }
    return names;
}

std::string KeyNames(const CIMInstance& instance) {
    return Names(instance.getKeyValuePairs());
}

TEST(CIMInstance, TheDefaultIsEmptyButNotNull) {
    CIMInstance instance;
    EXPECT_FALSE(!instance);
    EXPECT_TRUE(instance);
    EXPECT_EQ(instance.getClassName(), "");
    EXPECT_TRUE(instance.getProperties().empty());
    EXPECT_TRUE(instance.getKeyValuePairs().empty());
    EXPECT_TRUE(instance.getQualifiers().empty());
    instance.setProperty("a", CIMValue("x"));
    EXPECT_EQ(instance.getPropertyValue("a").toString(), "x");
    EXPECT_TRUE(!CIMInstance(CIMNULL));
}

TEST(CIMInstance, NameAndClassNameAreTheSame) {
    CIMInstance instance("ZNX_A");
    EXPECT_EQ(instance.getName(), "ZNX_A");
    instance.setName("ZNX_B");
    EXPECT_EQ(instance.getClassName(), "ZNX_B");
    EXPECT_EQ(instance.setClassName("ZNX_C").getName(), "ZNX_C");
    EXPECT_EQ(CIMInstance(CIMName("ZNX_D")).getClassName(), "ZNX_D");
}

TEST(CIMInstance, SetPropertyReplacesTheValueInAnyCase) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("First", CIMValue("a"));
    instance.setProperty("Second", CIMValue("b"));
    instance.setProperty("FIRST", CIMValue("c"));
    EXPECT_EQ(Names(instance.getProperties()), "First Second");
    EXPECT_EQ(instance.getPropertyValue("first").toString(), "c");
}

TEST(CIMInstance, SetPropertyConvertsToTheTypeThatIsThere) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("text", CIMValue("a"));
    instance.setProperty("text", CIMValue(UInt8(3)));
    EXPECT_TRUE(instance.getPropertyValue("text") == CIMValue("3"));
    instance.setProperty("number", CIMValue(UInt8(3)));
    EXPECT_EQ(Thrown([&] { instance.setProperty("number", CIMValue("x")); }),
              "CIMException: general error (Unable to convert \"x\" into UInt8)");
    EXPECT_TRUE(instance.getPropertyValue("number") == CIMValue(UInt8(3)));
    instance.setProperty("number", CIMValue(CIMNULL));
    EXPECT_FALSE(instance.getPropertyValue("number"));
    EXPECT_EQ(instance.getProperty("number").getDataType().getType(), CIMDataType::UINT8);
}

TEST(CIMInstance, NullOnANewNameMakesAPropertyWithoutType) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("a", CIMValue(CIMNULL));
    const CIMProperty property = instance.getProperty("a");
    ASSERT_TRUE(property);
    EXPECT_FALSE(property.getValue());
    EXPECT_EQ(property.getDataType().getType(), CIMDataType::CIMNULL);
    instance.setProperty("a", CIMValue("x"));
    EXPECT_EQ(instance.getPropertyValue("a").toString(), "x");
    EXPECT_EQ(instance.getProperty("a").getDataType().getType(), CIMDataType::CIMNULL);
}

TEST(CIMInstance, SetPropertyOfAPropertyReplacesItWhole) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("first", CIMValue("a"));
    instance.setProperty("second", CIMValue("b"));
    CIMProperty replacement("FIRST", CIMValue(UInt8(3)));
    replacement.addQualifier(CIMQualifier("Read"));
    instance.setProperty(replacement);
    EXPECT_EQ(Names(instance.getProperties()), "FIRST second");
    EXPECT_TRUE(instance.getPropertyValue("first") == CIMValue(UInt8(3)));
    EXPECT_EQ(instance.getProperty("first").getQualifiers().size(), 1u);
    instance.setProperty(CIMProperty(CIMNULL));
    EXPECT_EQ(Names(instance.getProperties()), "FIRST second");
    instance.setProperty(CIMProperty("third", CIMValue("c")));
    EXPECT_EQ(Names(instance.getProperties()), "FIRST second third");
}

TEST(CIMInstance, KeysFollowPropertiesThatAreKeys) {
    CIMInstance instance("ZNX_A");
    instance.setProperty(Key("InstanceID", "1"));
    EXPECT_EQ(KeyNames(instance), "InstanceID");
    instance.setProperty(Reference("Ref"));
    EXPECT_EQ(KeyNames(instance), "InstanceID Ref");
    instance.setProperty("instanceid", CIMValue("2"));
    EXPECT_EQ(instance.getKeyValuePairs()[0].getValue().toString(), "2");
    instance.updatePropertyValue("InstanceID", CIMValue("3"));
    EXPECT_EQ(instance.getKeyValuePairs()[0].getValue().toString(), "3");
    instance.setProperty(CIMProperty("InstanceID", CIMValue("4")));
    EXPECT_EQ(KeyNames(instance), "Ref") << "replaced by a property that is no key";
    instance.removeProperty("ref");
    EXPECT_EQ(KeyNames(instance), "");
}

TEST(CIMInstance, AppendingByNameAndValueNeverMakesKeys) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("Ref", CIMValue(CIMObjectPath("ZNX_A", "root")));
    EXPECT_EQ(KeyNames(instance), "");
    instance.setProperty("Plain", CIMValue("x"));
    EXPECT_EQ(KeyNames(instance), "");
    EXPECT_TRUE(CIMObjectPath("root", instance).isClassPath());
    instance.setProperty(Key("InstanceID", "1"));
    EXPECT_EQ(KeyNames(instance), "Ref InstanceID") << "rebuilt from all properties";
}

TEST(CIMInstance, TheLaterOfSetKeysAndSetPropertiesDecides) {
    const CIMPropertyArray plain =
        ArrayOf<CIMProperty>({CIMProperty("a", CIMValue("x")), CIMProperty("b", CIMValue("y"))});
    const CIMPropertyArray references =
        ArrayOf<CIMProperty>({Reference("Antecedent"), Reference("Dependent")});
    CIMInstance instance("ZNX_A");
    instance.setKeys(plain);
    EXPECT_EQ(KeyNames(instance), "a b");
    EXPECT_TRUE(instance.getProperties().empty());
    instance.setProperties(plain);
    EXPECT_EQ(KeyNames(instance), "");
    instance.setKeys(plain);
    EXPECT_EQ(KeyNames(instance), "a b");
    instance.setKeys(references).setProperties(references);
    EXPECT_EQ(KeyNames(instance), "Antecedent Dependent");
}

TEST(CIMInstance, SetKeysIsUndoneByTheNextRebuildOnly) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("Version", CIMValue("1"));
    instance.setKeys(ArrayOf<CIMProperty>({CIMProperty("Version", CIMValue("1"))}));
    instance.setProperty("Version", CIMValue("2"));
    instance.setProperty("Other", CIMValue("x"));
    EXPECT_EQ(KeyNames(instance), "Version");
    EXPECT_EQ(instance.getKeyValuePairs()[0].getValue().toString(), "1");
    instance.setProperty(Key("InstanceID", "1"));
    EXPECT_EQ(KeyNames(instance), "InstanceID");
}

TEST(CIMInstance, LooksUpPropertiesOnly) {
    CIMInstance instance("ZNX_A");
    instance.setKeys(ArrayOf<CIMProperty>({CIMProperty("k", CIMValue("x"))}));
    EXPECT_TRUE(!instance.getProperty("k"));
    EXPECT_FALSE(instance.getPropertyValue("k"));
    EXPECT_FALSE(instance.propertyHasValue("k"));
    EXPECT_EQ(Thrown([&] { instance.getPropertyT("k"); }), "NoSuchPropertyException: k");
    EXPECT_EQ(ThrownIds([&] { instance.getPropertyT("k"); }), "0/26");
    instance.setProperty("p", CIMValue("x"));
    instance.setProperty("n", CIMValue(CIMNULL));
    EXPECT_EQ(instance.getPropertyT("P").getName(), "p");
    EXPECT_TRUE(instance.propertyHasValue("P"));
    EXPECT_FALSE(instance.propertyHasValue("n"));
}

TEST(CIMInstance, OfDuplicatesTheFirstIsFound) {
    CIMInstance instance("ZNX_A");
    CIMProperty second("A", CIMValue("2"));
    second.setOriginClass("ZNX_Base");
    instance.setProperties(ArrayOf<CIMProperty>({CIMProperty("a", CIMValue("1")), second}));
    EXPECT_EQ(instance.getProperties().size(), 2u);
    EXPECT_EQ(instance.getPropertyValue("A").toString(), "1");
    EXPECT_EQ(instance.getProperty("a", "znx_base").getValue().toString(), "2");
    EXPECT_TRUE(!instance.getProperty("a", "ZNX_Other"));
}

TEST(CIMInstance, UpdatesChangeExistingPropertiesOnly) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("a", CIMValue("1"));
    instance.updatePropertyValue("A", CIMValue("2"));
    instance.updatePropertyValue("b", CIMValue("3"));
    EXPECT_EQ(instance.toString(), "instance of ZNX_A {\na = 2;\n}");
    instance.updatePropertyValues(
        ArrayOf<CIMProperty>({CIMProperty("c", CIMValue("4")), CIMProperty("a", CIMValue("5"))}));
    EXPECT_EQ(instance.toString(), "instance of ZNX_A {\na = 5;\n}");
}

TEST(CIMInstance, PropertiesAreSelectedByType) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("s", CIMValue("1"));
    instance.setProperty("n", CIMValue(UInt8(1)));
    instance.setProperty("t", CIMValue("2"));
    EXPECT_EQ(Names(instance.getProperties(CIMDataType::STRING)), "s t");
    EXPECT_EQ(Names(instance.getProperties(CIMDataType::UINT8)), "n");
    EXPECT_EQ(Names(instance.getProperties()), "s n t");
}

TEST(CIMInstance, HasQualifiers) {
    CIMInstance instance("ZNX_A");
    instance.setQualifier(CIMQualifier("Read"));
    instance.setQualifier(CIMQualifier::createKeyQualifier());
    EXPECT_TRUE(instance.getQualifier("READ"));
    EXPECT_TRUE(!instance.getQualifier("Write"));
    instance.removeQualifier("read");
    EXPECT_EQ(instance.getQualifiers().size(), 1u);
    instance.setQualifiers(CIMQualifierArray());
    EXPECT_TRUE(instance.getQualifiers().empty());
}

TEST(CIMInstance, ComparesPropertiesInAnyOrder) {
    CIMInstance a("ZNX_A");
    a.setProperty("x", CIMValue("1")).setProperty("y", CIMValue("2"));
    CIMInstance b("ZNX_B");
    b.setProperty("Y", CIMValue("2")).setProperty("X", CIMValue("1"));
    EXPECT_TRUE(a.propertiesAreEqualTo(b));
    b.setProperty("x", CIMValue("3"));
    EXPECT_FALSE(a.propertiesAreEqualTo(b));
    b.setProperty("x", CIMValue("1")).setProperty("z", CIMValue("1"));
    EXPECT_FALSE(a.propertiesAreEqualTo(b));
}

TEST(CIMInstance, TextForms) {
    CIMInstance instance("ZNX_A");
    instance.setProperty(Key("Name", "n"));
    instance.setProperty("Count", CIMValue(UInt8(3)));
    instance.setProperty("Nothing", CIMValue(CIMNULL));
    EXPECT_EQ(instance.toString(),
              "instance of ZNX_A {\nName = n;\nCount = 3;\nNothing = null;\n}");
    EXPECT_EQ(instance.toMOF(), "INSTANCE OF ZNX_A\n{\n  [Key(true)]\n  Name=\"n\";\n  Count=3;\n"
                                "  Nothing=NULL;\n};");
}

TEST(CIMInstance, CopiesAreIndependent) {
    CIMInstance first("ZNX_A");
    first.setProperty("a", CIMValue("1"));
    const CIMPropertyArray before = first.getProperties();
    CIMInstance second(first);
    second.setProperty("a", CIMValue("2"));
    second.setProperty("b", CIMValue("3"));
    second.setClassName("ZNX_B");
    EXPECT_EQ(first.toString(), "instance of ZNX_A {\na = 1;\n}");
    EXPECT_EQ(second.toString(), "instance of ZNX_B {\na = 2;\nb = 3;\n}");
    EXPECT_EQ(before.size(), 1u);
    EXPECT_EQ(before[0].getValue().toString(), "1");
    CIMPropertyArray properties = first.getProperties();
    properties[0].setValue(CIMValue("9"));
    EXPECT_EQ(first.getPropertyValue("a").toString(), "1");
}

} // namespace
