#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using tests::ArrayOf;
using tests::Thrown;

CIMObjectPath SamplePath() {
    CIMObjectPath path("ZNX_A", "root/cimv2");
    path.setKeyValue("InstanceID", CIMValue("0"));
    return path;
}

struct TextRow {
    CIMValue value;
    const char* text;
    const char* mof;
};

TEST(CIMValueText, EveryTypeHasItsPlainAndItsMofText) {
    const TextRow rows[] = {
        {CIMValue(true), "true", "true"},
        {CIMValue(Bool(false)), "false", "false"},
        {CIMValue(UInt8(154)), "154", "154"},
        {CIMValue(Int8(-1)), "-1", "-1"},
        {CIMValue(UInt16(65535)), "65535", "65535"},
        {CIMValue(Int16(-32768)), "-32768", "-32768"},
        {CIMValue(UInt32(4294967295u)), "4294967295", "4294967295"},
        {CIMValue(Int32(-2147483647)), "-2147483647", "-2147483647"},
        {CIMValue(UInt64(18446744073709551615ul)), "18446744073709551615", "18446744073709551615"},
        {CIMValue(Int64(-9)), "-9", "-9"},
        {CIMValue(Real32(1.5f)), "1.5", "1.5"},
        {CIMValue(Real64(1234567.0)), "1.23457e+06", "1.23457e+06"},
        {CIMValue(Char16(UInt16('A'))), "A", "'A'"},
        {CIMValue(Char16(UInt16('\''))), "'", "'\\''"},
        {CIMValue("x\"y\\z\n"), "x\"y\\z\n", "\"x\\\"y\\\\z\\n\""},
        {CIMValue(CIMDateTime("20250102030405.000000+060")), "20250102030405.000000+060",
         "\"20250102030405.000000+060\""},
        {CIMValue(SamplePath()), "/root/cimv2:ZNX_A.InstanceID=\"0\"",
         "/root/cimv2:ZNX_A.InstanceID=\\\"0\\\""},
        {CIMValue(ArrayOf<String>({"a", "b\"c", "d", "e"})), "a,b\"c,d,e",
         "{\"a\",\"b\\\"c\",\"d\",\"e\"}"},
        {CIMValue(ArrayOf<UInt8>({1, 2})), "1,2", "{1,2}"},
        {CIMValue(ArrayOf<Bool>({true, false})), "true,false", "{true,false}"},
        {CIMValue(StringArray()), "", "{}"},
    };
    for (const TextRow& row : rows) {
        EXPECT_EQ(row.value.toString(), row.text);
        EXPECT_EQ(row.value.toMOF(), row.mof);
    }
}

struct SimpleRow {
    const char* type;
    const char* text;
    CIMValue value;
};

TEST(CIMValueText, CreateSimpleValueReadsEveryType) {
    const SimpleRow rows[] = {
        {"uint8", "255", CIMValue(UInt8(255))},
        {"UINT8", "7", CIMValue(UInt8(7))},
        {"sint8", "-128", CIMValue(Int8(-128))},
        {"uint16", "65535", CIMValue(UInt16(65535))},
        {"sint16", "-5", CIMValue(Int16(-5))},
        {"uint32", "5", CIMValue(UInt32(5))},
        {"sint32", "-5", CIMValue(Int32(-5))},
        {"uint64", "5", CIMValue(UInt64(5))},
        {"sint64", "-5", CIMValue(Int64(-5))},
        {"real32", "1.5", CIMValue(Real32(1.5f))},
        {"real64", "1.5", CIMValue(Real64(1.5))},
        {"string", "text", CIMValue("text")},
        {"string", "", CIMValue("")},
        {"boolean", "TRUE", CIMValue(true)},
        {"boolean", "false", CIMValue(false)},
        {"char16", "a", CIMValue(Char16(UInt16('a')))},
        {"datetime", "20250102030405.000000+060",
         CIMValue(CIMDateTime("20250102030405.000000+060"))},
        {"ref", "/root/cimv2:ZNX_A.InstanceID=\"0\"", CIMValue(SamplePath())},
        {"uint8", "", CIMValue(UInt8(0))},
        {"sint64", "", CIMValue(Int64(0))},
        {"real64", "", CIMValue(Real64(0))},
        {"int", "5", CIMValue(CIMNULL)},
        {"", "5", CIMValue(CIMNULL)},
    };
    for (const SimpleRow& row : rows) {
        const CIMValue value = CIMValue::createSimpleValue(row.type, row.text);
        EXPECT_TRUE(value == row.value)
            << row.type << " " << row.text << " is " << value.toString();
    }
    EXPECT_TRUE(CIMValue::createSimpleValue("uint8", String()) == CIMValue(UInt8(0)));
}

TEST(CIMValueText, CreateSimpleValueRefusesBadText) {
    const auto create = [](const char* type, const char* text) {
        return Thrown([=] { CIMValue::createSimpleValue(type, text); });
    };
    EXPECT_EQ(create("uint8", "300"),
              "StringConversionException: Unable to convert \"300\" into UInt8");
    EXPECT_EQ(create("sint32", "x"),
              "StringConversionException: Unable to convert \"x\" into Int32");
    EXPECT_EQ(create("boolean", "yes"),
              "StringConversionException: Unable to convert \"yes\" into bool");
    EXPECT_EQ(create("real64", "x"),
              "StringConversionException: Unable to convert \"x\" into Real64");
    EXPECT_EQ(create("datetime", "yesterday"),
              "CIMDateTimeException: Invalid format for date time");
    EXPECT_EQ(create("ref", "no path").substr(0, 49),
              "CIMException: invalid parameter passed to method ");
    EXPECT_EQ(create("ref", "").substr(0, 49), "CIMException: invalid parameter passed to method ");
}

} // namespace
