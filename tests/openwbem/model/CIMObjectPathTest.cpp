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

TEST(CIMObjectPath, TwoTextsAreClassNameAndNamespace) {
    const CIMObjectPath path("ZNX_A", "root/cimv2");
    EXPECT_EQ(path.getClassName(), "ZNX_A");
    EXPECT_EQ(path.getObjectName(), "ZNX_A");
    EXPECT_EQ(path.getNameSpace(), "root/cimv2");
    EXPECT_EQ(path.getFullNameSpace().getNameSpace(), "root/cimv2");
    EXPECT_EQ(CIMObjectPath("ZNX_A").getNameSpace(), "");
    EXPECT_EQ(CIMObjectPath().getClassName(), "");
    EXPECT_EQ(CIMObjectPath().getHost(), "");
}

TEST(CIMObjectPath, TheNamespaceLosesSlashesAndBlanksAround) {
    CIMObjectPath path("ZNX_A");
    EXPECT_EQ(path.setNameSpace("/root/cimv2").getNameSpace(), "root/cimv2");
    EXPECT_EQ(path.setNameSpace("  //root ").getNameSpace(), "root");
    EXPECT_EQ(path.setNameSpace("/").getNameSpace(), "");
    EXPECT_EQ(CIMObjectPath("ZNX_A", "/root").getNameSpace(), "root");
}

TEST(CIMObjectPath, TakesTheKeyArrayOfAnInstance) {
    CIMInstance instance("ZNX_A");
    instance.setProperty("Name", CIMValue("n"));
    EXPECT_TRUE(CIMObjectPath("root", instance).isClassPath());
    instance.setProperty(Key("InstanceID", "1"));
    const CIMObjectPath path("root", instance);
    EXPECT_EQ(path.toString(), "/root:ZNX_A.InstanceID=\"1\"");
    EXPECT_TRUE(path.isInstancePath());
    EXPECT_TRUE(path.getKey("InstanceID").getQualifiers().empty());
    instance.setKeys(ArrayOf<CIMProperty>({CIMProperty("Name", CIMValue("n"))}));
    EXPECT_EQ(CIMObjectPath("root", instance).modelPath(), "ZNX_A.Name=\"n\"");
}

TEST(CIMObjectPath, SetKeysDropsTheQualifiers) {
    const CIMPropertyArray keys = ArrayOf<CIMProperty>({Key("a", "1"), Key("b", "2")});
    const CIMObjectPath path("ZNX_A", keys);
    ASSERT_EQ(path.getKeys().size(), 2u);
    EXPECT_TRUE(path.getKeys()[0].getQualifiers().empty());
    EXPECT_FALSE(path.getKeys()[1].isKey());
    EXPECT_TRUE(keys[0].isKey());
    CIMObjectPath other("ZNX_A");
    other.setKeyValue("x", CIMValue("0"));
    EXPECT_EQ(other.setKeys(keys).modelPath(), "ZNX_A.a=\"1\",b=\"2\"");
}

TEST(CIMObjectPath, SetKeyValueReplacesAndConverts) {
    CIMObjectPath path("ZNX_A");
    path.setKeyValue("Number", CIMValue(UInt8(1)));
    path.setKeyValue("NUMBER", CIMValue("7"));
    ASSERT_EQ(path.getKeys().size(), 1u);
    EXPECT_EQ(path.getKeys()[0].getName(), "Number");
    EXPECT_TRUE(path.getKeyValue("number") == CIMValue(UInt8(7)));
    path.setKeyValue("Number", CIMValue(CIMNULL));
    EXPECT_FALSE(path.getKeyValue("Number"));
    EXPECT_EQ(Thrown([&] { path.setKeyValue("New", CIMValue(CIMNULL)); }), tests::nullUsed);
    EXPECT_EQ(path.getKeys().size(), 1u);
}

TEST(CIMObjectPath, AddKeyAlwaysAppendsAndIgnoresNull) {
    CIMObjectPath path("ZNX_A");
    path.addKey("a", CIMValue("1"));
    path.addKey("A", CIMValue("2"));
    path.addKey("b", CIMValue(CIMNULL));
    path.addKey(CIMProperty(CIMNULL));
    path.addKey(CIMProperty("c", CIMValue("3")));
    EXPECT_EQ(path.modelPath(), "ZNX_A.a=\"1\",A=\"2\",c=\"3\"");
    EXPECT_EQ(path.getKeyValue("A").toString(), "1");
}

TEST(CIMObjectPath, LooksUpKeysInAnyCase) {
    CIMObjectPath path("ZNX_A");
    path.setKeyValue("InstanceID", CIMValue("1"));
    path.addKey(CIMProperty("Null", CIMDataType(CIMDataType::STRING)));
    EXPECT_EQ(path.getKey("instanceid").getName(), "InstanceID");
    EXPECT_TRUE(path.keyHasValue("INSTANCEID"));
    EXPECT_TRUE(!path.getKey("Name"));
    EXPECT_FALSE(path.getKeyValue("Name"));
    EXPECT_FALSE(path.keyHasValue("Name"));
    EXPECT_TRUE(path.getKey("Null"));
    EXPECT_FALSE(path.keyHasValue("Null"));
    EXPECT_EQ(path.getKeyT("instanceid").getValue().toString(), "1");
    EXPECT_EQ(Thrown([&] { path.getKeyT("Name"); }), "NoSuchPropertyException: Name");
    EXPECT_EQ(ThrownIds([&] { path.getKeyT("Name"); }), "-1/26");
}

struct EqualityRow {
    const char* a;
    const char* b;
    bool areEqual;
};

TEST(CIMObjectPath, EqualityComparesNamespaceClassAndKeys) {
    const EqualityRow rows[] = {
        {"root:A.k=\"v\"", "root:A.k=\"v\"", true},
        {"root:A.k=\"v\"", "ROOT:a.K=\"v\"", true},
        {"root:A.k=\"v\"", "root:A.k=\"V\"", false},
        {"root:A.k=\"v\"", "root/cimv2:A.k=\"v\"", false},
        {"root:A.k=\"v\"", "root:B.k=\"v\"", false},
        {"root:A.k=\"v\"", "root:A.j=\"v\"", false},
        {"root:A.k=\"v\",j=\"w\"", "root:A.j=\"w\",k=\"v\"", true},
        {"root:A.k=\"v\",j=\"w\"", "root:A.k=\"v\"", false},
        {"root:A.k=\"v\"", "root:A.k=\"v\",j=\"w\"", false},
        {"http://srv/root:A.k=\"v\"", "root:A.k=\"v\"", true},
    };
    for (const EqualityRow& row : rows) {
        const CIMObjectPath a = CIMObjectPath::parse(row.a);
        const CIMObjectPath b = CIMObjectPath::parse(row.b);
        EXPECT_EQ(a == b, row.areEqual) << row.a << " and " << row.b;
        EXPECT_EQ(a != b, !row.areEqual) << row.a << " and " << row.b;
    }
    CIMObjectPath number("A", "root");
    number.setKeyValue("k", CIMValue(UInt8(1)));
    EXPECT_FALSE(number.equals(CIMObjectPath::parse("root:A.k=1"))) << "types differ";
}

CIMClass KeyedClass() {
    CIMClass cimClass("ZNX_A");
    CIMProperty id("InstanceID", CIMDataType(CIMDataType::STRING));
    cimClass.addProperty(id.addQualifier(CIMQualifier::createKeyQualifier()));
    CIMProperty number("Number", CIMDataType(CIMDataType::UINT8));
    cimClass.addProperty(number.addQualifier(CIMQualifier::createKeyQualifier()));
    cimClass.addProperty(CIMProperty("Name", CIMDataType(CIMDataType::STRING)));
    return cimClass;
}

TEST(CIMObjectPath, SyncTypesKnownKeysAndAddsMissingOnes) {
    CIMObjectPath path = CIMObjectPath::parse("root:znx_a.NUMBER=5,Foreign=\"x\",name=\"n\"");
    path.syncWithClass(KeyedClass());
    EXPECT_EQ(path.toString(), "/root:znx_a.Number=\"5\",Name=\"n\",InstanceID=\"null\"");
    EXPECT_TRUE(path.getKeyValue("Number") == CIMValue(UInt8(5)));
    EXPECT_EQ(path.getKey("InstanceID").getDataType().getType(), CIMDataType::STRING);
    EXPECT_FALSE(path.keyHasValue("InstanceID"));
    EXPECT_TRUE(path.getKey("Number").getQualifiers().empty());
}

TEST(CIMObjectPath, SyncOfWrongKeysOnlyLeavesNullKeys) {
    CIMObjectPath path = CIMObjectPath::parse("root:ZNX_A.Foreign=\"x\"");
    path.syncWithClass(KeyedClass());
    EXPECT_EQ(path.modelPath(), "ZNX_A.InstanceID=\"null\",Number=\"null\"");
}

TEST(CIMObjectPath, SyncOfAClassPathDoesNothing) {
    CIMObjectPath path("ZNX_A", "root");
    path.syncWithClass(KeyedClass());
    EXPECT_TRUE(path.isClassPath());
}

TEST(CIMObjectPath, SyncRefusesAValueThatDoesNotFit) {
    CIMObjectPath path = CIMObjectPath::parse("root:ZNX_A.Number=\"x\"");
    EXPECT_EQ(Thrown([&] { path.syncWithClass(KeyedClass()); }),
              "CIMException: general error (Unable to convert \"x\" into UInt8)");
    EXPECT_EQ(path.modelPath(), "ZNX_A.Number=\"x\"");
}

TEST(CIMObjectPath, CopiesAreIndependent) {
    CIMObjectPath first("ZNX_A", "root");
    CIMObjectPath second(first);
    second.setKeyValue("k", CIMValue("1")).setNameSpace("other").setClassName("ZNX_B");
    second.setHost("srv");
    EXPECT_EQ(first.toString(), "/root:ZNX_A");
    EXPECT_EQ(second.toString(), "http://srv/other:ZNX_B.k=\"1\"");
}

} // namespace
