#include "OW_CIMDataType.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using tests::Text;
using tests::Thrown;

struct NamedType {
    CIMDataType::Type type;
    int number;
    const char* name;
    bool isNumeric;
};

const NamedType namedTypes[] = {
    {CIMDataType::UINT8, 1, "uint8", true},         {CIMDataType::SINT8, 2, "sint8", true},
    {CIMDataType::UINT16, 3, "uint16", true},       {CIMDataType::SINT16, 4, "sint16", true},
    {CIMDataType::UINT32, 5, "uint32", true},       {CIMDataType::SINT32, 6, "sint32", true},
    {CIMDataType::UINT64, 7, "uint64", true},       {CIMDataType::SINT64, 8, "sint64", true},
    {CIMDataType::STRING, 9, "string", false},      {CIMDataType::BOOLEAN, 10, "boolean", false},
    {CIMDataType::REAL32, 11, "real32", true},      {CIMDataType::REAL64, 12, "real64", true},
    {CIMDataType::DATETIME, 13, "datetime", false}, {CIMDataType::CHAR16, 14, "char16", false},
    {CIMDataType::REFERENCE, 15, "REF", false},
};

TEST(CIMDataType, NumbersNamesAndNumericTypesAreThoseOfTheInterface) {
    for (const NamedType& row : namedTypes) {
        const CIMDataType type(row.type);
        EXPECT_EQ(type.getType(), row.number);
        EXPECT_EQ(type.toString(), row.name);
        EXPECT_EQ(type.isNumericType(), row.isNumeric) << row.name;
        EXPECT_EQ(type.isReferenceType(), row.number == 15) << row.name;
        EXPECT_FALSE(type.isArrayType());
        EXPECT_EQ(type.getSize(), 1);
        EXPECT_EQ(CIMDataType::getDataType(row.name).getType(), row.type) << row.name;
        EXPECT_TRUE(type) << row.name;
    }
    EXPECT_EQ(CIMDataType::CIMNULL, 0);
    EXPECT_EQ(CIMDataType::EMBEDDEDCLASS, 16);
    EXPECT_EQ(CIMDataType::EMBEDDEDINSTANCE, 17);
    EXPECT_EQ(CIMDataType::MAXDATATYPE, 18);
    EXPECT_EQ(CIMDataType::INVALID, 99);
}

TEST(CIMDataType, EmbeddedObjectsAreCalledString) {
    EXPECT_EQ(CIMDataType(CIMDataType::EMBEDDEDCLASS).toString(), "string");
    EXPECT_EQ(CIMDataType(CIMDataType::EMBEDDEDINSTANCE).toString(), "string");
}

TEST(CIMDataType, NamesAreReadInAnyCase) {
    EXPECT_EQ(CIMDataType::strToSimpleType("UInt8"), CIMDataType::UINT8);
    EXPECT_EQ(CIMDataType::strToSimpleType("BOOLEAN"), CIMDataType::BOOLEAN);
    EXPECT_EQ(CIMDataType::strToSimpleType("ref"), CIMDataType::REFERENCE);
    EXPECT_EQ(CIMDataType::strToSimpleType("Reference"), CIMDataType::REFERENCE);
    EXPECT_EQ(CIMDataType::strToSimpleType("int"), CIMDataType::INVALID);
    EXPECT_EQ(CIMDataType::strToSimpleType(""), CIMDataType::INVALID);
    EXPECT_FALSE(CIMDataType::getDataType("int"));
}

TEST(CIMDataType, ArraysHaveABoundOrNone) {
    const CIMDataType unbound(CIMDataType::STRING, 0);
    EXPECT_TRUE(unbound.isArrayType());
    EXPECT_EQ(unbound.getSize(), -1);
    EXPECT_EQ(CIMDataType(CIMDataType::STRING, -7).getSize(), -1);
    const CIMDataType bound(CIMDataType::STRING, 4);
    EXPECT_TRUE(bound.isArrayType());
    EXPECT_EQ(bound.getSize(), 4);
    CIMDataType changed(CIMDataType::STRING);
    changed.setToArrayType(-1);
    EXPECT_TRUE(changed.equals(unbound));
    EXPECT_FALSE(changed.equals(bound));
    EXPECT_EQ(changed.toString(), "string");
}

TEST(CIMDataType, AReferenceNamesItsClass) {
    const CIMDataType type(CIMName("ZNX_A"));
    EXPECT_EQ(type.getType(), CIMDataType::REFERENCE);
    EXPECT_EQ(type.getRefClassName(), "ZNX_A");
    EXPECT_TRUE(type == CIMDataType(CIMName("znx_a")));
    EXPECT_TRUE(type != CIMDataType(CIMName("ZNX_B")));
    EXPECT_TRUE(type != CIMDataType(CIMDataType::REFERENCE));
}

TEST(CIMDataType, TheDefaultTestsFalseButAnswers) {
    const CIMDataType type;
    EXPECT_FALSE(type);
    EXPECT_TRUE(!type);
    EXPECT_EQ(type.getType(), CIMDataType::CIMNULL);
    EXPECT_TRUE(type.toString().startsWith("** INVALID"));
}

TEST(CIMDataType, OneMadeFromNullThrowsWhenUsed) {
    const CIMDataType type(CIMNULL);
    EXPECT_FALSE(type);
    EXPECT_EQ(Thrown([&] { type.getType(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { type.isArrayType(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { type.toString(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { type.equals(type); }), tests::nullUsed);
    CIMDataType other(CIMDataType::UINT8);
    other.setNull();
    EXPECT_EQ(Thrown([&] { other.getType(); }), tests::nullUsed);
    other = CIMDataType::UINT16;
    EXPECT_EQ(other.toString(), "uint16");
}

} // namespace
