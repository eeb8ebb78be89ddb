#include "OW_CIM.hpp"
#include "OW_CIMValueCast.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace {

using namespace OpenWBEM;
using tests::ArrayOf;
using tests::Thrown;
using tests::ThrownIds;

// Puts a value in and reads it back; every other type must be refused.
template <class T>
void ExpectHolds(const T& x, CIMDataType::Type type, bool isArray) {
    const CIMValue value(x);
    ASSERT_TRUE(value);
    EXPECT_EQ(value.getType(), type);
    EXPECT_EQ(value.isArray(), isArray);
    EXPECT_EQ(value.getCIMDataType().getType(), type);
    EXPECT_EQ(value.getCIMDataType().isArrayType(), isArray);
    T back{};
    value.get(back);
    EXPECT_TRUE(back == x) << value.toString();
    const CIMValue copy(value);
    EXPECT_TRUE(copy == value);
    if (type != CIMDataType::STRING || isArray) {
        String text;
        EXPECT_EQ(Thrown([&] { value.get(text); }),
                  "ValueCastException: CIMValue::CIMValueImpl::get - Value is not a STRING");
    }
}

TEST(CIMValue, HoldsEveryScalarType) {
    ExpectHolds(Bool(true), CIMDataType::BOOLEAN, false);
    ExpectHolds(UInt8(200), CIMDataType::UINT8, false);
    ExpectHolds(Int8(-100), CIMDataType::SINT8, false);
    ExpectHolds(UInt16(60000), CIMDataType::UINT16, false);
    ExpectHolds(Int16(-30000), CIMDataType::SINT16, false);
    ExpectHolds(UInt32(4000000000u), CIMDataType::UINT32, false);
    ExpectHolds(Int32(-2000000000), CIMDataType::SINT32, false);
    ExpectHolds(std::numeric_limits<UInt64>::max(), CIMDataType::UINT64, false);
    ExpectHolds(std::numeric_limits<Int64>::min(), CIMDataType::SINT64, false);
    ExpectHolds(Real32(1.5f), CIMDataType::REAL32, false);
    ExpectHolds(Real64(-2.25), CIMDataType::REAL64, false);
    ExpectHolds(Char16(UInt16(0x20AC)), CIMDataType::CHAR16, false);
    ExpectHolds(String("text"), CIMDataType::STRING, false);
    ExpectHolds(CIMDateTime("20250102030405.000000+060"), CIMDataType::DATETIME, false);
    ExpectHolds(CIMObjectPath("ZNX_A", "root"), CIMDataType::REFERENCE, false);
}

TEST(CIMValue, HoldsAnArrayOfEveryType) {
    ExpectHolds(ArrayOf<Bool>({true, false}), CIMDataType::BOOLEAN, true);
    ExpectHolds(ArrayOf<UInt8>({1, 2}), CIMDataType::UINT8, true);
    ExpectHolds(ArrayOf<Int8>({-1, 2}), CIMDataType::SINT8, true);
    ExpectHolds(ArrayOf<UInt16>({1, 2}), CIMDataType::UINT16, true);
    ExpectHolds(ArrayOf<Int16>({-1, 2}), CIMDataType::SINT16, true);
    ExpectHolds(ArrayOf<UInt32>({1, 2}), CIMDataType::UINT32, true);
    ExpectHolds(ArrayOf<Int32>({-1, 2}), CIMDataType::SINT32, true);
    ExpectHolds(ArrayOf<UInt64>({1, 2}), CIMDataType::UINT64, true);
    ExpectHolds(ArrayOf<Int64>({-1, 2}), CIMDataType::SINT64, true);
    ExpectHolds(ArrayOf<Real32>({1.5f}), CIMDataType::REAL32, true);
    ExpectHolds(ArrayOf<Real64>({1.5}), CIMDataType::REAL64, true);
    ExpectHolds(ArrayOf<Char16>({Char16(UInt16('a'))}), CIMDataType::CHAR16, true);
    ExpectHolds(ArrayOf<String>({"a", "b"}), CIMDataType::STRING, true);
    ExpectHolds(ArrayOf<CIMDateTime>({CIMDateTime("20250102030405.000000+060")}),
                CIMDataType::DATETIME, true);
    ExpectHolds(ArrayOf<CIMObjectPath>({CIMObjectPath("ZNX_A", "root")}), CIMDataType::REFERENCE,
                true);
}

TEST(CIMValue, TheTypeOfALiteralDecides) {
    EXPECT_EQ(CIMValue(5).getType(), CIMDataType::SINT32);
    EXPECT_EQ(CIMValue('a').getType(), CIMDataType::SINT32);
    EXPECT_EQ(CIMValue('a').toInt32(), 97);
    EXPECT_EQ(CIMValue(5u).getType(), CIMDataType::UINT32);
    EXPECT_EQ(CIMValue(5L).getType(), CIMDataType::SINT64);
    EXPECT_EQ(CIMValue(std::size_t(5)).getType(), CIMDataType::UINT64);
    EXPECT_EQ(CIMValue(true).getType(), CIMDataType::BOOLEAN);
    EXPECT_EQ(CIMValue("x").getType(), CIMDataType::STRING);
    EXPECT_EQ(CIMValue(static_cast<const char*>(nullptr)).toString(), "");
}

TEST(CIMValue, IsMadeExplicitlyAndFromNothingUnclear) {
    static_assert(!std::is_default_constructible<CIMValue>::value, "");
    static_assert(!std::is_constructible<CIMValue, long long>::value, "ambiguous");
    static_assert(!std::is_constructible<CIMValue, int*>::value, "not a boolean");
    static_assert(!std::is_constructible<CIMValue, const void*>::value, "not a boolean");
    static_assert(!std::is_convertible<UInt8, CIMValue>::value, "explicit");
    static_assert(!std::is_convertible<String, CIMValue>::value, "explicit");
    EXPECT_TRUE((std::is_constructible<CIMValue, String>::value));
}

TEST(CIMValue, ReadingNamesTheTypeThatWasAskedFor) {
    const String prefix = "ValueCastException: CIMValue::CIMValueImpl::get - Value is not a ";
    const CIMValue text("5");
    const CIMValue number(UInt8(5));
    const auto expected = [&](const char* type) { return tests::Text(prefix + type); };
    EXPECT_EQ(Thrown([&] { text.toBool(); }), expected("BOOLEAN"));
    EXPECT_EQ(Thrown([&] { text.toUInt8(); }), expected("UINT8"));
    EXPECT_EQ(Thrown([&] { text.toInt8(); }), expected("SINT8"));
    EXPECT_EQ(Thrown([&] { number.toUInt16(); }), expected("UINT16"));
    EXPECT_EQ(Thrown([&] { number.toInt16(); }), expected("SINT16"));
    EXPECT_EQ(Thrown([&] { number.toUInt32(); }), expected("UINT32"));
    EXPECT_EQ(Thrown([&] { number.toInt32(); }), expected("SINT32"));
    EXPECT_EQ(Thrown([&] { number.toUInt64(); }), expected("UINT64"));
    EXPECT_EQ(Thrown([&] { number.toInt64(); }), expected("SINT64"));
    EXPECT_EQ(Thrown([&] { number.toReal32(); }), expected("REAL32"));
    EXPECT_EQ(Thrown([&] { number.toReal64(); }), expected("REAL64"));
    EXPECT_EQ(Thrown([&] { number.toChar16(); }), expected("CHAR16"));
    EXPECT_EQ(Thrown([&] { number.toCIMDateTime(); }), expected("DATETIME"));
    EXPECT_EQ(Thrown([&] { number.toCIMObjectPath(); }), expected("REFERENCE"));
    EXPECT_EQ(Thrown([&] { number.toUInt8Array(); }), expected("UINT8 ARRAY"));
    EXPECT_EQ(Thrown([&] { text.toStringArray(); }), expected("STRING ARRAY"));
    EXPECT_EQ(ThrownIds([&] { text.toUInt8(); }), "-1/6");
}

TEST(CIMValue, AFailedReadLeavesTheTargetAlone) {
    UInt8 target = 7;
    EXPECT_THROW(CIMValue("x").get(target), ValueCastException);
    EXPECT_EQ(target, 7);
}

TEST(CIMValue, ASint64ReadsAsEveryNumberCutToItsSize) {
    const CIMValue value(Int64(300));
    EXPECT_EQ(value.toUInt8(), 44);
    EXPECT_EQ(value.toInt8(), 44);
    EXPECT_EQ(value.toUInt16(), 300);
    EXPECT_EQ(value.toInt16(), 300);
    EXPECT_EQ(value.toUInt32(), 300u);
    EXPECT_EQ(value.toInt32(), 300);
    EXPECT_EQ(value.toUInt64(), 300u);
    EXPECT_EQ(value.toReal32(), 300.0f);
    EXPECT_EQ(value.toReal64(), 300.0);
    EXPECT_THROW(value.toBool(), ValueCastException);
    EXPECT_THROW(CIMValue(ArrayOf<Int64>({300})).toUInt8(), ValueCastException);
    EXPECT_THROW(CIMValue(UInt64(300)).toUInt8(), ValueCastException);
}

TEST(CIMValue, NullOnlyTestsPrintsComparesAndAssigns) {
    CIMValue value(CIMNULL);
    EXPECT_FALSE(value);
    EXPECT_TRUE(!value);
    EXPECT_EQ(value.toString(), "(null)");
    String text;
    EXPECT_EQ(Thrown([&] { value.get(text); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.toUInt8(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.getType(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.getCIMDataType(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.isArray(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.isNumericType(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.toMOF(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.getArraySize(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { value.sameType(CIMValue(1)); }), tests::nullUsed);
    EXPECT_EQ(ThrownIds([&] { value.getType(); }), "-1/47");
    value = CIMValue(UInt8(1));
    EXPECT_TRUE(value);
    value.setNull();
    EXPECT_FALSE(value);
}

TEST(CIMValue, FalseAndEmptyValuesAreNotNull) {
    EXPECT_TRUE(CIMValue(false));
    EXPECT_TRUE(CIMValue(""));
    EXPECT_TRUE(CIMValue(String()));
    EXPECT_TRUE(CIMValue(UInt8(0)));
    EXPECT_TRUE(CIMValue(StringArray()));
}

TEST(CIMValue, EqualityNeedsTypeAndValue) {
    EXPECT_TRUE(CIMValue(CIMNULL) == CIMValue(CIMNULL));
    EXPECT_TRUE(CIMValue(CIMNULL) != CIMValue(UInt8(0)));
    EXPECT_TRUE(CIMValue(UInt8(1)) != CIMValue(UInt16(1)));
    EXPECT_TRUE(CIMValue(UInt8(1)) == CIMValue(UInt8(1)));
    EXPECT_TRUE(CIMValue("a") != CIMValue("A"));
    EXPECT_TRUE(CIMValue(UInt8(1)) != CIMValue(ArrayOf<UInt8>({1})));
    EXPECT_TRUE(CIMValue(UInt64(0)) != CIMValue(UInt64Array()));
    EXPECT_TRUE(CIMValue(ArrayOf<String>({"a"})) != CIMValue(ArrayOf<String>({"a", "b"})));
    EXPECT_TRUE(CIMValue(CIMObjectPath("A", "root")).equal(CIMValue(CIMObjectPath("a", "ROOT"))));
}

TEST(CIMValue, OrderIsNullThenTypeThenValue) {
    EXPECT_TRUE(CIMValue(CIMNULL) < CIMValue(UInt8(0)));
    EXPECT_FALSE(CIMValue(CIMNULL) < CIMValue(CIMNULL));
    EXPECT_TRUE(CIMValue(UInt8(9)) < CIMValue(UInt16(1)));
    EXPECT_TRUE(CIMValue(UInt8(1)) < CIMValue(UInt8(2)));
    EXPECT_TRUE(CIMValue("b") > CIMValue("a"));
    EXPECT_TRUE(CIMValue("a") <= CIMValue("a"));
    EXPECT_TRUE(CIMValue("a") >= CIMValue("a"));
    EXPECT_TRUE(CIMValue(UInt8(9)) < CIMValue(ArrayOf<UInt8>({1})));
    EXPECT_TRUE(CIMValue(ArrayOf<UInt8>({1, 2})) < CIMValue(ArrayOf<UInt8>({1, 3})));
}

TEST(CIMValue, TellsKindAndSize) {
    EXPECT_EQ(CIMValue(ArrayOf<String>({"a", "b"})).getArraySize(), 2u);
    EXPECT_EQ(CIMValue(StringArray()).getArraySize(), 0u);
    EXPECT_EQ(CIMValue("x").getArraySize(), 0u);
    EXPECT_TRUE(CIMValue(Real32(1)).isNumericType());
    EXPECT_FALSE(CIMValue("1").isNumericType());
    EXPECT_TRUE(CIMValue("a").sameType(CIMValue("b")));
    EXPECT_FALSE(CIMValue("a").sameType(CIMValue(StringArray())));
    EXPECT_EQ(CIMValue(StringArray()).getCIMDataType().getSize(), -1);
}

TEST(CIMValue, AssignmentChangesTheTypeAndKeepsCopiesApart) {
    CIMValue a("text");
    CIMValue b(a);
    b = CIMValue(ArrayOf<UInt8>({1, 2}));
    EXPECT_EQ(a.toString(), "text");
    EXPECT_EQ(b.toString(), "1,2");
    a.set(b);
    EXPECT_TRUE(a == b);
    CIMValue& same = a;
    a = same;
    EXPECT_EQ(a.toString(), "1,2");
    CIMValue moved(std::move(b));
    EXPECT_EQ(moved.toString(), "1,2");
    UInt8Array elements = moved.toUInt8Array();
    elements.push_back(3);
    EXPECT_EQ(moved.getArraySize(), 2u);
}

} // namespace
