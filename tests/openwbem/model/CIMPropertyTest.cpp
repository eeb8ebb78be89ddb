#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using tests::ArrayOf;
using tests::Thrown;
using tests::ThrownIds;

CIMQualifier Described(const char* text) {
    CIMQualifier qualifier("Description");
    qualifier.setValue(CIMValue(text));
    return qualifier;
}

TEST(CIMProperty, TakesTheTypeOfItsValue) {
    const CIMProperty property("a", CIMValue(UInt8(3)));
    EXPECT_EQ(property.getName(), "a");
    EXPECT_EQ(property.getDataType().getType(), CIMDataType::UINT8);
    EXPECT_EQ(property.getValue().toUInt8(), 3);
    EXPECT_TRUE(CIMProperty("a", CIMValue(StringArray())).getDataType().isArrayType());
}

TEST(CIMProperty, ANullValueMakesNoProperty) {
    EXPECT_EQ(Thrown([] { CIMProperty("a", CIMValue(CIMNULL)); }), tests::nullUsed);
    const CIMProperty typed("a", CIMDataType(CIMDataType::STRING));
    EXPECT_TRUE(typed);
    EXPECT_FALSE(typed.getValue());
    EXPECT_EQ(typed.getDataType().getType(), CIMDataType::STRING);
}

TEST(CIMProperty, WithoutTypeItTakesAnyValueAndStaysWithoutType) {
    CIMProperty property("a");
    EXPECT_EQ(property.getDataType().getType(), CIMDataType::CIMNULL);
    property.setValue(CIMValue(UInt8(3)));
    EXPECT_EQ(property.getValue().toUInt8(), 3);
    EXPECT_EQ(property.getDataType().getType(), CIMDataType::CIMNULL);
    property.setValue(CIMValue("text"));
    EXPECT_EQ(property.getValue().toString(), "text");
}

TEST(CIMProperty, SetValueConvertsToTheType) {
    CIMProperty property("a", CIMDataType(CIMDataType::STRING));
    property.setValue(CIMValue(UInt8(3)));
    EXPECT_TRUE(property.getValue() == CIMValue("3"));
    property.setValue(CIMValue(CIMNULL));
    EXPECT_FALSE(property.getValue());
    EXPECT_EQ(property.getDataType().getType(), CIMDataType::STRING);
    CIMProperty array("b", CIMDataType(CIMDataType::UINT16, -1));
    array.setValue(CIMValue(UInt16(7)));
    EXPECT_TRUE(array.getValue() == CIMValue(ArrayOf<UInt16>({7})));
}

TEST(CIMProperty, AFailedSetValueKeepsTheOldValue) {
    CIMProperty number("a", CIMValue(UInt8(3)));
    EXPECT_EQ(Thrown([&] { number.setValue(CIMValue("300")); }),
              "CIMException: general error (Unable to convert \"300\" into UInt8)");
    EXPECT_EQ(number.getValue().toUInt8(), 3);
    CIMProperty date("d", CIMDataType(CIMDataType::DATETIME));
    EXPECT_EQ(Thrown([&] { date.setValue(CIMValue("yesterday")); }),
              "CIMDateTimeException: Invalid format for date time");
}

TEST(CIMProperty, GetValueTThrowsTheNameWhenNull) {
    const CIMProperty property("Size", CIMDataType(CIMDataType::UINT8));
    EXPECT_EQ(Thrown([&] { property.getValueT(); }), "NULLValueException: Size");
    EXPECT_EQ(ThrownIds([&] { property.getValueT(); }), "-1/29");
    EXPECT_EQ(CIMProperty("a", CIMValue("x")).getValueT().toString(), "x");
}

TEST(CIMProperty, SetDataTypeConvertsTheValueThatIsThere) {
    CIMProperty property("a", CIMValue("5"));
    property.setDataType(CIMDataType::UINT8);
    EXPECT_TRUE(property.getValue() == CIMValue(UInt8(5)));
    property.setDataType(CIMDataType(CIMDataType::UINT8, -1));
    EXPECT_TRUE(property.getValue() == CIMValue(ArrayOf<UInt8>({5})));
}

TEST(CIMProperty, QualifiersAreFoundInAnyCase) {
    CIMProperty property("a", CIMValue("x"));
    property.setQualifier(Described("first"));
    EXPECT_EQ(property.getQualifier("DESCRIPTION").getValue().toString(), "first");
    EXPECT_TRUE(!property.getQualifier("Key"));
    EXPECT_EQ(property.getQualifierT("description").getName(), "Description");
    EXPECT_EQ(Thrown([&] { property.getQualifierT("Key"); }), "NoSuchQualifierException: Key");
    EXPECT_EQ(ThrownIds([&] { property.getQualifierT("Key"); }), "-1/28");
}

TEST(CIMProperty, SetQualifierReplacesAndAddQualifierRefuses) {
    CIMProperty property("a", CIMValue("x"));
    property.addQualifier(CIMQualifier::createKeyQualifier());
    EXPECT_EQ(Thrown([&] { property.addQualifier(CIMQualifier::createKeyQualifier()); }),
              "CIMException: object already exists (Qualifier Key already exists)");
    property.setQualifier(Described("first"));
    property.setQualifier(Described("second"));
    EXPECT_EQ(property.getQualifiers().size(), 2u);
    EXPECT_EQ(property.getQualifier("Description").getValue().toString(), "second");
    EXPECT_TRUE(property.removeQualifier("KEY"));
    EXPECT_FALSE(property.removeQualifier("Key"));
    EXPECT_EQ(property.getQualifiers().size(), 1u);
}

TEST(CIMProperty, QualifiersAreClearedWithOrWithoutTheKey) {
    CIMProperty property("a", CIMValue("x"));
    property.setQualifiers(ArrayOf<CIMQualifier>(
        {Described("first"), CIMQualifier::createKeyQualifier(), CIMQualifier("Read")}));
    CIMProperty copy(property);
    copy.clearNonKeyQualifiers();
    ASSERT_EQ(copy.getQualifiers().size(), 1u);
    EXPECT_EQ(copy.getQualifiers()[0].getName(), "Key");
    EXPECT_TRUE(copy.clearQualifiers().getQualifiers().empty());
    EXPECT_EQ(property.getQualifiers().size(), 3u);
}

TEST(CIMProperty, KeysAreTrueKeyQualifiersAndReferences) {
    CIMProperty property("a", CIMValue("x"));
    EXPECT_FALSE(property.isKey());
    CIMQualifier key("key");
    property.setQualifier(key);
    EXPECT_FALSE(property.isKey()) << "without value";
    property.setQualifier(key.setValue(CIMValue(false)));
    EXPECT_FALSE(property.isKey());
    EXPECT_FALSE(property.hasTrueQualifier("Key"));
    property.setQualifier(key.setValue(CIMValue(true)));
    EXPECT_TRUE(property.isKey());
    EXPECT_TRUE(property.hasTrueQualifier("KEY"));
    EXPECT_FALSE(property.isReference());
    const CIMProperty reference("r", CIMDataType(CIMName("ZNX_A")));
    EXPECT_TRUE(reference.isReference());
    EXPECT_TRUE(reference.isKey());
    EXPECT_TRUE(CIMProperty("r", CIMValue(CIMObjectPath("ZNX_A"))).isKey());
}

TEST(CIMProperty, CloneLeavesOutWhatIsNotWanted) {
    CIMProperty property("a", CIMValue("x"));
    property.addQualifier(CIMQualifier::createKeyQualifier());
    property.setOriginClass("ZNX_Base").setPropagated(true);
    const CIMProperty all =
        property.clone(WBEMFlags::E_INCLUDE_QUALIFIERS, WBEMFlags::E_INCLUDE_CLASS_ORIGIN);
    EXPECT_EQ(all.getQualifiers().size(), 1u);
    EXPECT_EQ(all.getOriginClass(), "ZNX_Base");
    const CIMProperty bare =
        property.clone(WBEMFlags::E_EXCLUDE_QUALIFIERS, WBEMFlags::E_EXCLUDE_CLASS_ORIGIN);
    EXPECT_TRUE(bare.getQualifiers().empty());
    EXPECT_EQ(bare.getOriginClass(), "");
    EXPECT_EQ(bare.getValue().toString(), "x");
    EXPECT_TRUE(bare.getPropagated());
    EXPECT_EQ(property.getQualifiers().size(), 1u);
    EXPECT_EQ(property.getOriginClass(), "ZNX_Base");
}

TEST(CIMProperty, TextForms) {
    CIMProperty property("a", CIMValue(UInt8(3)));
    EXPECT_EQ(property.toString(), "uint8:a=3");
    EXPECT_EQ(property.toMOF(), "  uint8 a=3;\n");
    property = CIMProperty("s", CIMValue("s"));
    property.addQualifier(CIMQualifier::createKeyQualifier()).addQualifier(Described("d"));
    EXPECT_EQ(property.toMOF(), "  [Key(true), Description(\"d\")]\n  string s=\"s\";\n");
    EXPECT_EQ(CIMProperty("s", CIMDataType(CIMDataType::STRING, -1)).toMOF(), "  string s[];\n");
    EXPECT_EQ(CIMProperty("s", CIMDataType(CIMDataType::STRING, 3)).toMOF(), "  string s[3];\n");
    EXPECT_EQ(CIMProperty("r", CIMDataType(CIMName("ZNX_A"))).toMOF(), "  ZNX_A REF r;\n");
}

TEST(CIMElement, EqualityLooksAtNamesOnly) {
    EXPECT_TRUE(CIMProperty("a", CIMValue("x")) == CIMProperty("A", CIMValue(UInt8(3))));
    EXPECT_TRUE(CIMProperty("a", CIMValue("x")) != CIMProperty("b", CIMValue("x")));
    CIMInstance one("ZNX_A");
    one.setProperty("p", CIMValue("x"));
    EXPECT_TRUE(one == CIMInstance("znx_a"));
    EXPECT_TRUE(one != CIMInstance("ZNX_B"));
    EXPECT_TRUE(CIMQualifier("Key") == CIMQualifier::createKeyQualifier());
    CIMMethod method("m");
    method.setReturnType(CIMDataType::UINT8);
    EXPECT_TRUE(method == CIMMethod("M"));
    EXPECT_TRUE(CIMParameter("p") == CIMParameter("P"));
}

TEST(CIMProperty, CopiesAreIndependent) {
    CIMProperty first("a", CIMValue("x"));
    CIMProperty second(first);
    second.setValue(CIMValue("y"));
    second.setName("b");
    EXPECT_EQ(first.getValue().toString(), "x");
    EXPECT_EQ(first.getName(), "a");
}

} // namespace
