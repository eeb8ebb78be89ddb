#include "OW_CIM.hpp"
#include "OW_CIMValueCast.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using CIMValueCast::castValueToDataType;
using tests::ArrayOf;
using tests::Thrown;

const CIMDataType uint8Array(CIMDataType::UINT8, -1);
const CIMDataType stringArray(CIMDataType::STRING, -1);

CIMValue SampleDate() {
    return CIMValue(CIMDateTime("20250102030405.000000+060"));
}

struct CastRow {
    CIMValue value;
    CIMDataType type;
    CIMValue expected;
};

TEST(CIMValueCast, ConvertsWhatTheTextAllows) {
    const CIMValue path(CIMObjectPath::parse("/root:ZNX_A.K=\"x\""));
    const CastRow rows[] = {
        {CIMValue(CIMNULL), CIMDataType::UINT8, CIMValue(CIMNULL)},
        {CIMValue(UInt8(1)), CIMDataType(), CIMValue(CIMNULL)},
        {CIMValue(UInt8(1)), CIMDataType(CIMNULL), CIMValue(CIMNULL)},
        {CIMValue(UInt8(1)), CIMDataType::UINT8, CIMValue(UInt8(1))},
        {CIMValue(UInt8(3)), CIMDataType::STRING, CIMValue("3")},
        {CIMValue(true), CIMDataType::STRING, CIMValue("true")},
        {SampleDate(), CIMDataType::STRING, CIMValue("20250102030405.000000+060")},
        {path, CIMDataType::STRING, CIMValue("/root:ZNX_A.K=\"x\"")},
        {CIMValue("5"), CIMDataType::UINT8, CIMValue(UInt8(5))},
        {CIMValue("TRUE"), CIMDataType::BOOLEAN, CIMValue(true)},
        {CIMValue("20250102030405.000000+060"), CIMDataType::DATETIME, SampleDate()},
        {CIMValue("/root:ZNX_A.K=\"x\""), CIMDataType::REFERENCE, path},
        {CIMValue("a"), CIMDataType::CHAR16, CIMValue(Char16(UInt16('a')))},
        {CIMValue(UInt32(200)), CIMDataType::UINT8, CIMValue(UInt8(200))},
        {CIMValue(Int8(-3)), CIMDataType::SINT64, CIMValue(Int64(-3))},
        {CIMValue(UInt8(3)), CIMDataType::REAL64, CIMValue(Real64(3))},
        {CIMValue(Char16(UInt16('7'))), CIMDataType::UINT8, CIMValue(UInt8(7))},
        {CIMValue(UInt8(7)), CIMDataType::CHAR16, CIMValue(Char16(UInt16('7')))},
    };
    for (const CastRow& row : rows) {
        const CIMValue result = castValueToDataType(row.value, row.type);
        EXPECT_TRUE(result == row.expected)
            << row.value.toString() << " became " << result.toString() << " instead of "
            << row.expected.toString();
    }
}

TEST(CIMValueCast, ScalarsAreWrappedAndOfArraysTheFirstElementIsTaken) {
    const CastRow rows[] = {
        {CIMValue(UInt8(3)), uint8Array, CIMValue(ArrayOf<UInt8>({3}))},
        {CIMValue("3"), uint8Array, CIMValue(ArrayOf<UInt8>({3}))},
        {CIMValue("3"), stringArray, CIMValue(ArrayOf<String>({"3"}))},
        {SampleDate(), CIMDataType(CIMDataType::DATETIME, -1),
         CIMValue(ArrayOf<CIMDateTime>({CIMDateTime("20250102030405.000000+060")}))},
        {CIMValue(ArrayOf<UInt8>({3, 4})), CIMDataType::UINT8, CIMValue(UInt8(3))},
        {CIMValue(ArrayOf<String>({"3", "x"})), CIMDataType::UINT8, CIMValue(UInt8(3))},
        {CIMValue(UInt8Array()), CIMDataType::UINT8, CIMValue(CIMNULL)},
        {CIMValue(UInt8Array()), stringArray, CIMValue(StringArray())},
        {CIMValue(ArrayOf<String>({"3", "4"})), uint8Array, CIMValue(ArrayOf<UInt8>({3, 4}))},
        {CIMValue(ArrayOf<UInt8>({3, 4})), stringArray, CIMValue(ArrayOf<String>({"3", "4"}))},
        {CIMValue(ArrayOf<UInt8>({3, 4})), CIMDataType(CIMDataType::UINT8, 5),
         CIMValue(ArrayOf<UInt8>({3, 4}))},
    };
    for (const CastRow& row : rows) {
        const CIMValue result = castValueToDataType(row.value, row.type);
        EXPECT_TRUE(result == row.expected)
            << row.value.toString() << " became " << result.toString() << " instead of "
            << row.expected.toString();
    }
}

struct FailureRow {
    CIMValue value;
    CIMDataType type;
    const char* thrown;
};

TEST(CIMValueCast, RefusesWithTheTextAndTheType) {
    const FailureRow rows[] = {
        {CIMValue(UInt16(300)), CIMDataType::UINT8,
         "CIMException: general error (Unable to convert \"300\" into UInt8)"},
        {CIMValue("300"), CIMDataType::UINT8,
         "CIMException: general error (Unable to convert \"300\" into UInt8)"},
        {CIMValue(true), CIMDataType::UINT8,
         "CIMException: general error (Unable to convert \"true\" into UInt8)"},
        {CIMValue(UInt8(1)), CIMDataType::BOOLEAN,
         "CIMException: general error (Unable to convert \"1\" into bool)"},
        {CIMValue(Real64(1.5)), CIMDataType::UINT8,
         "CIMException: general error (Unable to convert \"1.5\" into UInt8)"},
        {CIMValue(UInt8(1)), CIMDataType::DATETIME,
         "CIMException: general error (Failed to convert \"1\" to datetime)"},
        {CIMValue(UInt8(1)), CIMDataType::REFERENCE,
         "CIMException: general error (Failed to convert \"1\" to REF)"},
        {SampleDate(), CIMDataType::UINT8,
         "CIMException: general error (Failed to convert \"20250102030405.000000+060\" to uint8)"},
        {CIMValue(CIMObjectPath("A", "root")), CIMDataType::UINT64,
         "CIMException: general error (Failed to convert \"/root:A\" to uint64)"},
        {CIMValue("A"), CIMDataType::REFERENCE,
         "CIMException: general error (Failed to convert \"A\" to REF)"},
        {CIMValue("A"), CIMDataType::EMBEDDEDINSTANCE,
         "CIMException: general error (Failed to convert \"A\" to string)"},
        {CIMValue(ArrayOf<String>({"1", "x"})), uint8Array,
         "CIMException: general error (Unable to convert \"x\" into UInt8)"},
        {CIMValue("yesterday"), CIMDataType::DATETIME,
         "CIMDateTimeException: Invalid format for date time"},
    };
    for (const FailureRow& row : rows) {
        EXPECT_EQ(Thrown([&] { castValueToDataType(row.value, row.type); }), row.thrown);
    }
}

} // namespace
