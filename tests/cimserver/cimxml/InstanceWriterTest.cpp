// Instances, values and names as XML, text by text.
#include "Support.hpp"

#include "OW_CIM.hpp"
#include "OW_CIMDateTime.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace OpenWBEM;
using cimxml_test::ErrorIn;
using cimxml_test::Results;
using cimxml_test::ResultSink;
using cimxml_test::ReturnValue;

std::string InstanceText(const CIMInstance& instance) {
    return ReturnValue([&](ResultSink& sink) { sink.Instance(instance); });
}

std::string InstanceError(const CIMInstance& instance) {
    return ErrorIn(Results([&](ResultSink& sink) { sink.Instance(instance); }));
}

std::string NameText(const CIMObjectPath& path) {
    return ReturnValue([&](ResultSink& sink) { sink.InstanceName(path); });
}

/// What stands within the INSTANCE of an instance with this one property.
std::string PropertyText(const CIMProperty& property) {
    CIMInstance instance("A");
    instance.setProperty(property);
    return cimxml_test::Between(InstanceText(instance), R"(<INSTANCE CLASSNAME="A">)",
                                "</INSTANCE>");
}

std::string ValueText(const CIMValue& value) {
    return PropertyText(CIMProperty("P", value));
}

TEST(InstanceWriter, AnInstanceWithoutPropertiesHasBothTags) {
    EXPECT_EQ(InstanceText(CIMInstance("ZNX_A")), R"(<INSTANCE CLASSNAME="ZNX_A"></INSTANCE>)");
}

TEST(InstanceWriter, PropertiesStandInTheirOrder) {
    CIMInstance instance("A");
    instance.setProperty("Second", CIMValue("2"));
    instance.setProperty("First", CIMValue("1"));
    EXPECT_EQ(InstanceText(instance),
              R"(<INSTANCE CLASSNAME="A"><PROPERTY NAME="Second" TYPE="string"><VALUE>2</VALUE>)"
              R"(</PROPERTY><PROPERTY NAME="First" TYPE="string"><VALUE>1</VALUE></PROPERTY>)"
              R"(</INSTANCE>)");
}

struct ScalarRow {
    CIMValue value;
    const char* type;
    const char* text;
};

TEST(InstanceWriter, ScalarsOfEveryType) {
    const ScalarRow rows[] = {
        {CIMValue("a<b"), "string", "a&lt;b"},
        {CIMValue(""), "string", ""},
        {CIMValue(true), "boolean", "TRUE"},
        {CIMValue(false), "boolean", "FALSE"},
        {CIMValue(UInt8(255)), "uint8", "255"},
        {CIMValue(Int8(-128)), "sint8", "-128"},
        {CIMValue(UInt16(65535)), "uint16", "65535"},
        {CIMValue(Int16(-32768)), "sint16", "-32768"},
        {CIMValue(UInt32(4294967295U)), "uint32", "4294967295"},
        {CIMValue(Int32(-2147483647)), "sint32", "-2147483647"},
        {CIMValue(std::numeric_limits<UInt64>::max()), "uint64", "18446744073709551615"},
        {CIMValue(std::numeric_limits<Int64>::min()), "sint64", "-9223372036854775808"},
        {CIMValue(Real32(0.1F)), "real32", "0.1"},
        {CIMValue(Real64(0.1)), "real64", "0.1"},
        {CIMValue(Real64(5)), "real64", "5.0"},
        {CIMValue(Real64(-1e300)), "real64", "-1.0e+300"},
        {CIMValue(Real64(1.25e-7)), "real64", "1.25e-07"},
        {CIMValue(std::numeric_limits<Real64>::infinity()), "real64", "INF"},
        {CIMValue(-std::numeric_limits<Real64>::infinity()), "real64", "-INF"},
        {CIMValue(std::numeric_limits<Real32>::quiet_NaN()), "real32", "NaN"},
        {CIMValue(Char16(0x20AC)), "char16", "\xE2\x82\xAC"},
        {CIMValue(Char16(1)), "char16", "\xEF\xBF\xBD"},
        {CIMValue(CIMDateTime(String("20250102030405.000000+060"))), "datetime",
         "20250102030405.000000+060"},
        {CIMValue(CIMDateTime(String("00000001000203.000004:000"))), "datetime",
         "00000001000203.000004:000"},
    };
    for (const ScalarRow& row : rows) {
        EXPECT_EQ(ValueText(row.value), "<PROPERTY NAME=\"P\" TYPE=\"" + std::string(row.type) +
                                            "\"><VALUE>" + row.text + "</VALUE></PROPERTY>");
    }
}

TEST(InstanceWriter, Arrays) {
    StringArray strings;
    strings.push_back("a");
    strings.push_back("b&c");
    EXPECT_EQ(ValueText(CIMValue(strings)),
              R"(<PROPERTY.ARRAY NAME="P" TYPE="string"><VALUE.ARRAY><VALUE>a</VALUE>)"
              R"(<VALUE>b&amp;c</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>)");
    UInt8Array numbers;
    numbers.push_back(7);
    numbers.push_back(200);
    EXPECT_EQ(ValueText(CIMValue(numbers)),
              R"(<PROPERTY.ARRAY NAME="P" TYPE="uint8"><VALUE.ARRAY><VALUE>7</VALUE>)"
              R"(<VALUE>200</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>)");
    EXPECT_EQ(ValueText(CIMValue(StringArray())),
              R"(<PROPERTY.ARRAY NAME="P" TYPE="string"><VALUE.ARRAY></VALUE.ARRAY>)"
              R"(</PROPERTY.ARRAY>)");
}

TEST(InstanceWriter, NullValuesHaveNoValueElement) {
    EXPECT_EQ(PropertyText(CIMProperty("P", CIMDataType(CIMDataType::UINT16))),
              R"(<PROPERTY NAME="P" TYPE="uint16"></PROPERTY>)");
    EXPECT_EQ(PropertyText(CIMProperty("P", CIMDataType(CIMDataType::STRING, -1))),
              R"(<PROPERTY.ARRAY NAME="P" TYPE="string"></PROPERTY.ARRAY>)");
    EXPECT_EQ(PropertyText(CIMProperty("P", CIMDataType(CIMDataType::STRING, 8))),
              R"(<PROPERTY.ARRAY NAME="P" TYPE="string" ARRAYSIZE="8"></PROPERTY.ARRAY>)");
    EXPECT_EQ(PropertyText(CIMProperty("P", CIMDataType(CIMName("B")))),
              R"(<PROPERTY.REFERENCE NAME="P" REFERENCECLASS="B"></PROPERTY.REFERENCE>)");
}

TEST(InstanceWriter, OriginPropagationAndQualifiersGoOutAsTheyAre) {
    CIMProperty property("P", CIMValue("x"));
    property.setOriginClass("Base");
    property.setPropagated(true);
    property.addQualifier(CIMQualifier::createKeyQualifier());
    EXPECT_EQ(PropertyText(property),
              R"(<PROPERTY NAME="P" TYPE="string" CLASSORIGIN="Base" PROPAGATED="true">)"
              R"(<QUALIFIER NAME="Key" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER>)"
              R"(<VALUE>x</VALUE></PROPERTY>)");
}

CIMObjectPath KeyedPath(const char* nameSpace) {
    CIMObjectPath path(CIMName("B"), String(nameSpace));
    path.setKeyValue("K", CIMValue("a\"b"));
    return path;
}

TEST(InstanceWriter, ReferencesAreLocalPathsWithoutAHost) {
    EXPECT_EQ(ValueText(CIMValue(KeyedPath("root/cimv2"))),
              R"(<PROPERTY.REFERENCE NAME="P"><VALUE.REFERENCE><LOCALINSTANCEPATH>)"
              R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"></NAMESPACE>)"
              R"(<NAMESPACE NAME="cimv2"></NAMESPACE></LOCALNAMESPACEPATH>)"
              R"(<INSTANCENAME CLASSNAME="B"><KEYBINDING NAME="K"><KEYVALUE VALUETYPE="string">)"
              R"(a&quot;b</KEYVALUE></KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH>)"
              R"(</VALUE.REFERENCE></PROPERTY.REFERENCE>)");
}

TEST(InstanceWriter, ReferencesToAHostAreFullPaths) {
    CIMObjectPath path = KeyedPath("root");
    path.setHost("srv");
    EXPECT_EQ(ValueText(CIMValue(path)),
              R"(<PROPERTY.REFERENCE NAME="P"><VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH>)"
              R"(<HOST>srv</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME="root"></NAMESPACE>)"
              R"(</LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME="B">)"
              R"(<KEYBINDING NAME="K"><KEYVALUE VALUETYPE="string">a&quot;b</KEYVALUE>)"
              R"(</KEYBINDING></INSTANCENAME></INSTANCEPATH></VALUE.REFERENCE>)"
              R"(</PROPERTY.REFERENCE>)");
}

TEST(InstanceWriter, ReferencesToClassesAreClassPaths) {
    CIMObjectPath path(CIMName("B"), String("root"));
    EXPECT_EQ(ValueText(CIMValue(path)),
              R"(<PROPERTY.REFERENCE NAME="P"><VALUE.REFERENCE><LOCALCLASSPATH>)"
              R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"></NAMESPACE></LOCALNAMESPACEPATH>)"
              R"(<CLASSNAME NAME="B"></CLASSNAME></LOCALCLASSPATH></VALUE.REFERENCE>)"
              R"(</PROPERTY.REFERENCE>)");
    path.setHost("srv");
    EXPECT_EQ(ValueText(CIMValue(path)),
              R"(<PROPERTY.REFERENCE NAME="P"><VALUE.REFERENCE><CLASSPATH><NAMESPACEPATH>)"
              R"(<HOST>srv</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME="root"></NAMESPACE>)"
              R"(</LOCALNAMESPACEPATH></NAMESPACEPATH><CLASSNAME NAME="B"></CLASSNAME>)"
              R"(</CLASSPATH></VALUE.REFERENCE></PROPERTY.REFERENCE>)");
}

TEST(NameWriter, KeysHaveTheValueTypeOfTheirCimType) {
    CIMObjectPath path(CIMName("A"), String("root/cimv2"));
    path.setKeyValue("S", CIMValue("x\\y"));
    path.setKeyValue("N", CIMValue(UInt32(5)));
    path.setKeyValue("B", CIMValue(true));
    path.setKeyValue("D", CIMValue(CIMDateTime(String("20250102030405.000000+000"))));
    EXPECT_EQ(NameText(path),
              R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="S"><KEYVALUE VALUETYPE="string">)"
              R"(x\y</KEYVALUE></KEYBINDING><KEYBINDING NAME="N"><KEYVALUE VALUETYPE="numeric">)"
              R"(5</KEYVALUE></KEYBINDING><KEYBINDING NAME="B"><KEYVALUE VALUETYPE="boolean">)"
              R"(TRUE</KEYVALUE></KEYBINDING><KEYBINDING NAME="D"><KEYVALUE VALUETYPE="string">)"
              R"(20250102030405.000000+000</KEYVALUE></KEYBINDING></INSTANCENAME>)");
}

TEST(NameWriter, ReferencesMayBeKeys) {
    CIMObjectPath path(CIMName("A"), String("root"));
    path.setKeyValue("R", CIMValue(CIMObjectPath(CIMName("B"), String("root"))));
    EXPECT_EQ(NameText(path),
              R"(<INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="R"><VALUE.REFERENCE>)"
              R"(<LOCALCLASSPATH><LOCALNAMESPACEPATH><NAMESPACE NAME="root"></NAMESPACE>)"
              R"(</LOCALNAMESPACEPATH><CLASSNAME NAME="B"></CLASSNAME></LOCALCLASSPATH>)"
              R"(</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>)");
}

TEST(NameWriter, ANameWithoutKeysHasNoBindings) {
    EXPECT_EQ(NameText(CIMObjectPath(CIMName("A"), String("root"))),
              R"(<INSTANCENAME CLASSNAME="A"></INSTANCENAME>)");
}

TEST(NameWriter, NamedInstancesHaveNameThenInstance) {
    EXPECT_EQ(ReturnValue([](ResultSink& sink) {
                  CIMInstance keyed("A");
                  keyed.setKeys(KeyedPath("root").getKeys());
                  sink.NamedInstance(keyed);
                  sink.NamedInstance(CIMInstance("C"));
              }),
              R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="A"><KEYBINDING NAME="K">)"
              R"(<KEYVALUE VALUETYPE="string">a&quot;b</KEYVALUE></KEYBINDING></INSTANCENAME>)"
              R"(<INSTANCE CLASSNAME="A"></INSTANCE></VALUE.NAMEDINSTANCE><VALUE.NAMEDINSTANCE>)"
              R"(<INSTANCENAME CLASSNAME="C"></INSTANCENAME><INSTANCE CLASSNAME="C"></INSTANCE>)"
              R"(</VALUE.NAMEDINSTANCE>)");
}

TEST(InstanceWriterFailure, APropertyWithoutType) {
    CIMInstance instance("A");
    instance.setProperty("Free", CIMValue(CIMNULL));
    EXPECT_EQ(InstanceError(instance), "1: general error (Property Free has no type defined)");
}

TEST(InstanceWriterFailure, NamesThatAreMissing) {
    EXPECT_EQ(InstanceError(CIMInstance()), "1: general error (An instance's class has no name)");
    CIMInstance instance("A");
    instance.setProperty("", CIMValue("x"));
    EXPECT_EQ(InstanceError(instance), "1: general error (A property has no name)");
}

TEST(InstanceWriterFailure, ANullInstance) {
    EXPECT_EQ(InstanceError(CIMInstance(CIMNULL)),
              "1: general error (NULL COWReference dereferenced)");
}

TEST(InstanceWriterFailure, AReferenceWithoutNamespace) {
    CIMInstance instance("A");
    instance.setProperty("R", CIMValue(KeyedPath("")));
    EXPECT_EQ(InstanceError(instance), "1: general error (Namespace not set)");
}

TEST(InstanceWriterFailure, ReferencesInAnArray) {
    CIMObjectPathArray paths;
    paths.push_back(KeyedPath("root"));
    CIMInstance instance("A");
    instance.setProperty("R", CIMValue(paths));
    EXPECT_EQ(InstanceError(instance), "1: general error (Property R is an array of references)");
}

std::string NameError(const CIMProperty& key) {
    CIMPropertyArray keys;
    keys.push_back(key);
    const CIMObjectPath path(CIMName("A"), keys);
    return ErrorIn(Results([&](ResultSink& sink) { sink.InstanceName(path); }));
}

TEST(NameWriterFailure, AKeyWithoutValue) {
    EXPECT_EQ(NameError(CIMProperty("K", CIMDataType(CIMDataType::STRING))),
              "1: general error (Key K has no value)");
}

TEST(NameWriterFailure, AKeyThatIsAnArray) {
    EXPECT_EQ(NameError(CIMProperty("K", CIMValue(StringArray()))),
              "1: general error (Key K is an array)");
}

} // namespace
