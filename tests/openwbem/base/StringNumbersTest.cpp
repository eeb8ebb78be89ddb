#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace OpenWBEM {
namespace {

// What `convert` gives: the number, or the class and text of what it throws.
template <class F>
std::string result(F convert) {
    try {
        return std::to_string(convert());
    } catch (const StringConversionException& e) {
        EXPECT_EQ(e.getErrorCode(), -1);
        EXPECT_EQ(e.getSubClassId(), 37);
        return e.getMessage();
    }
}

struct Row {
    const char* text;
    const char* number;
};

// An empty `number` stands for a refusal.
template <size_t N, class F>
void checkRows(const Row (&rows)[N], const char* type, F convert) {
    for (const Row& row : rows) {
        const std::string refusal =
            std::string("Unable to convert \"") + row.text + "\" into " + type;
        const std::string expected = *row.number ? row.number : refusal;
        EXPECT_EQ(result([&] { return convert(String(row.text)); }), expected);
    }
}

const Row UINT8_ROWS[] = {{"0", "0"},  {"255", "255"}, {"256", ""},  {"-1", ""}, {"12x", ""},
                          {"12 ", ""}, {" 12", "12"},  {"+5", "5"},  {"", "0"},  {" ", ""},
                          {"x", ""},   {"0x1F", ""},   {"010", "10"}};
const Row INT8_ROWS[] = {{"127", "127"}, {"128", ""}, {"-128", "-128"}, {"-129", ""}, {"", "0"}};
const Row UINT16_ROWS[] = {{"65535", "65535"}, {"65536", ""}, {"-1", ""}, {"", "0"}};
const Row INT16_ROWS[] = {
    {"32767", "32767"}, {"32768", ""}, {"-32768", "-32768"}, {"-32769", ""}, {"", "0"}};
const Row UINT32_ROWS[] = {{"4294967295", "4294967295"}, {"4294967296", ""}, {"-1", ""}, {"", "0"}};
const Row INT32_ROWS[] = {{"2147483647", "2147483647"},
                          {"2147483648", ""},
                          {"-2147483648", "-2147483648"},
                          {"-2147483649", ""},
                          {"99999999999999999999", ""},
                          {"12x", ""},
                          {"12 ", ""},
                          {" 12", "12"},
                          {"+5", "5"},
                          {"", "0"}};
const Row UINT64_ROWS[] = {{"18446744073709551615", "18446744073709551615"},
                           {"18446744073709551616", ""},
                           {"-1", "18446744073709551615"},
                           {"", "0"}};
const Row INT64_ROWS[] = {{"9223372036854775807", "9223372036854775807"},
                          {"9223372036854775808", ""},
                          {"-9223372036854775808", "-9223372036854775808"},
                          {"-9223372036854775809", ""},
                          {"", "0"}};

TEST(StringToInteger, UInt8) {
    checkRows(UINT8_ROWS, "UInt8", [](const String& s) { return s.toUInt8(); });
}
TEST(StringToInteger, Int8) {
    checkRows(INT8_ROWS, "Int8", [](const String& s) { return s.toInt8(); });
}
TEST(StringToInteger, UInt16) {
    checkRows(UINT16_ROWS, "UInt16", [](const String& s) { return s.toUInt16(); });
}
TEST(StringToInteger, Int16) {
    checkRows(INT16_ROWS, "Int16", [](const String& s) { return s.toInt16(); });
}
TEST(StringToInteger, UInt32) {
    checkRows(UINT32_ROWS, "UInt32", [](const String& s) { return s.toUInt32(); });
}
TEST(StringToInteger, Int32) {
    checkRows(INT32_ROWS, "Int32", [](const String& s) { return s.toInt32(); });
}
TEST(StringToInteger, UInt64) {
    checkRows(UINT64_ROWS, "UInt64", [](const String& s) { return s.toUInt64(); });
}
TEST(StringToInteger, Int64) {
    checkRows(INT64_ROWS, "Int64", [](const String& s) { return s.toInt64(); });
}
TEST(StringToInteger, UnsignedInt) {
    checkRows(UINT32_ROWS, "unsigned int", [](const String& s) { return s.toUnsignedInt(); });
}
TEST(StringToInteger, Int) {
    checkRows(INT32_ROWS, "int", [](const String& s) { return s.toInt(); });
}

TEST(StringToInteger, BaseIsTheCallers) {
    EXPECT_EQ(String("ff").toUInt8(16), 255);
    EXPECT_EQ(String("-ff").toInt16(16), -255);
    EXPECT_EQ(String("777").toUInt16(8), 511);
    EXPECT_EQ(String("101").toUInt32(2), 5U);
    EXPECT_EQ(String("0x10").toInt32(0), 16);
    EXPECT_EQ(String("7f").toInt8(16), 127);
    EXPECT_EQ(String("ff").toUInt64(16), 255U);
    EXPECT_EQ(String("ff").toInt64(16), 255);
    EXPECT_EQ(String("ff").toUnsignedInt(16), 255U);
    EXPECT_EQ(String("ff").toInt(16), 255);
    EXPECT_THROW((void)String("ff").toInt32(), StringConversionException);
}

TEST(StringToInteger, TextBehindANulIsText) {
    EXPECT_THROW((void)String("1\0x", 3).toInt32(), StringConversionException);
}

TEST(StringToReal, TakesWhatStrtodTakes) {
    EXPECT_EQ(String("1.5").toReal64(), 1.5);
    EXPECT_EQ(String("-2e3").toReal64(), -2000.0);
    EXPECT_EQ(String(" .25").toReal64(), 0.25);
    EXPECT_EQ(String("").toReal64(), 0.0);
    EXPECT_EQ(String("1.5").toReal32(), 1.5F);
    EXPECT_EQ(String("").toReal32(), 0.0F);
    EXPECT_EQ(String("inf").toReal64(), std::numeric_limits<double>::infinity());
}

const Row REAL64_REFUSED[] = {{"1.5x", ""}, {"1.5 ", ""}, {"x", ""}, {"1,5", ""}, {"1e400", ""}};
const Row REAL32_REFUSED[] = {{"1.5x", ""}, {"1e39", ""}, {"-1e39", ""}};

TEST(StringToReal, RefusesTheRest) {
    checkRows(REAL64_REFUSED, "Real64", [](const String& s) { return s.toReal64(); });
    checkRows(REAL32_REFUSED, "Real32", [](const String& s) { return s.toReal32(); });
}

TEST(StringToBool, TakesTrueAndFalseInAnyCase) {
    EXPECT_TRUE(String("true").toBool());
    EXPECT_TRUE(String("TRUE").toBool());
    EXPECT_TRUE(String("tRuE").toBool());
    EXPECT_FALSE(String("false").toBool());
    EXPECT_FALSE(String("FALSE").toBool());
}

const Row BOOL_REFUSED[] = {{"", ""},    {"1", ""},     {"0", ""},
                            {"yes", ""}, {" true", ""}, {"tru", ""}};

TEST(StringToBool, RefusesTheRest) {
    checkRows(BOOL_REFUSED, "bool", [](const String& s) { return s.toBool(); });
}

TEST(StringNeverFilled, EveryConversionThrows) {
    const String never;
    EXPECT_EQ(result([&] { return never.toUInt8(); }), "Unable to convert \"\" into UInt8");
    EXPECT_EQ(result([&] { return never.toInt8(); }), "Unable to convert \"\" into Int8");
    EXPECT_EQ(result([&] { return never.toUInt16(); }), "Unable to convert \"\" into UInt16");
    EXPECT_EQ(result([&] { return never.toInt16(); }), "Unable to convert \"\" into Int16");
    EXPECT_EQ(result([&] { return never.toUInt32(); }), "Unable to convert \"\" into UInt32");
    EXPECT_EQ(result([&] { return never.toInt32(); }), "Unable to convert \"\" into Int32");
    EXPECT_EQ(result([&] { return never.toUInt64(); }), "Unable to convert \"\" into UInt64");
    EXPECT_EQ(result([&] { return never.toInt64(); }), "Unable to convert \"\" into Int64");
    EXPECT_EQ(result([&] { return never.toReal32(); }), "Unable to convert \"\" into Real32");
    EXPECT_EQ(result([&] { return never.toReal64(); }), "Unable to convert \"\" into Real64");
    EXPECT_EQ(result([&] { return never.toBool(); }), "Unable to convert \"\" into bool");
}

} // namespace
} // namespace OpenWBEM
