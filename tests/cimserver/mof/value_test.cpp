// Literals and the values that they give the properties of a class.

#include "ReadText.hpp"

#include <gtest/gtest.h>

namespace {

using OpenWBEM::CIMValue;
using OpenWBEM::String;
using test::Read;

/// The default of a property declared as `type X = literal`.
CIMValue Value(const std::string& type, const std::string& literal) {
    const cimserver::mof::Schema schema = Read("class A { " + type + " = " + literal + "; };");
    return schema.FindClass("A")->getProperty("X").getValue();
}

std::string Text(const std::string& literal) {
    String text;
    Value("string X", literal).get(text);
    return text.c_str();
}

TEST(MofValue, WholeNumbersAreDecimalOctalHexadecimalOrBinary) {
    EXPECT_EQ(Value("uint8 X", "0"), CIMValue(OpenWBEM::UInt8(0)));
    EXPECT_EQ(Value("uint8 X", "255"), CIMValue(OpenWBEM::UInt8(255)));
    EXPECT_EQ(Value("uint8 X", "+7"), CIMValue(OpenWBEM::UInt8(7)));
    EXPECT_EQ(Value("uint8 X", "017"), CIMValue(OpenWBEM::UInt8(15)));
    EXPECT_EQ(Value("uint8 X", "0x1f"), CIMValue(OpenWBEM::UInt8(31)));
    EXPECT_EQ(Value("uint8 X", "0XFF"), CIMValue(OpenWBEM::UInt8(255)));
    EXPECT_EQ(Value("uint8 X", "101b"), CIMValue(OpenWBEM::UInt8(5)));
    EXPECT_EQ(Value("uint8 X", "11B"), CIMValue(OpenWBEM::UInt8(3)));
    EXPECT_EQ(Value("sint8 X", "-0x10"), CIMValue(OpenWBEM::Int8(-16)));
}

TEST(MofValue, WholeNumbersReachBothEndsOfEveryType) {
    EXPECT_EQ(Value("sint8 X", "-128"), CIMValue(OpenWBEM::Int8(-128)));
    EXPECT_EQ(Value("sint8 X", "127"), CIMValue(OpenWBEM::Int8(127)));
    EXPECT_EQ(Value("uint16 X", "65535"), CIMValue(OpenWBEM::UInt16(65535)));
    EXPECT_EQ(Value("sint16 X", "-32768"), CIMValue(OpenWBEM::Int16(-32768)));
    EXPECT_EQ(Value("uint32 X", "4294967295"), CIMValue(OpenWBEM::UInt32(4294967295U)));
    EXPECT_EQ(Value("sint32 X", "-2147483648"), CIMValue(OpenWBEM::Int32(-2147483647 - 1)));
    EXPECT_EQ(Value("uint64 X", "18446744073709551615"),
              CIMValue(OpenWBEM::UInt64(18446744073709551615ULL)));
    EXPECT_EQ(Value("sint64 X", "-9223372036854775808"),
              CIMValue(OpenWBEM::Int64(-9223372036854775807LL - 1)));
}

TEST(MofValue, RealsHaveAPointAnExponentOrNeither) {
    EXPECT_EQ(Value("real64 X", "1.5"), CIMValue(OpenWBEM::Real64(1.5)));
    EXPECT_EQ(Value("real64 X", "-.5"), CIMValue(OpenWBEM::Real64(-0.5)));
    EXPECT_EQ(Value("real64 X", "2.5e+3"), CIMValue(OpenWBEM::Real64(2500)));
    EXPECT_EQ(Value("real32 X", "1.25E-1"), CIMValue(OpenWBEM::Real32(0.125F)));
    EXPECT_EQ(Value("real32 X", "3"), CIMValue(OpenWBEM::Real32(3)));
}

TEST(MofValue, BooleansAndNullAreWordsOfAnyCase) {
    EXPECT_EQ(Value("boolean X", "true"), CIMValue(true));
    EXPECT_EQ(Value("boolean X", "FALSE"), CIMValue(false));
    EXPECT_TRUE(!Value("boolean X", "null"));
    EXPECT_TRUE(!Value("uint8 X", "NULL"));
    EXPECT_TRUE(!Value("string X[]", "Null"));
}

TEST(MofValue, StringsResolveEscapes) {
    EXPECT_EQ(Text(R"("")"), "");
    EXPECT_EQ(Text(R"("a\b\t\n\f\r\"\'\\z")"), "a\b\t\n\f\r\"'\\z");
    EXPECT_EQ(Text(R"("\x41\X42.")"), "AB.");
    EXPECT_EQ(Text(R"("\x9|\xE9|\x20AC|\x20AC1")"), "\t|\xC3\xA9|\xE2\x82\xAC|\xE2\x82\xAC"
                                                    "1");
    EXPECT_EQ(Text(R"("\xD83D\xDE00")"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Text("\"\xC3\xA4\t'/*//\""), "\xC3\xA4\t'/*//");
}

TEST(MofValue, NeighbouringStringsAreOne) {
    EXPECT_EQ(Text("\"a\"\"b\""), "ab");
    EXPECT_EQ(Text("\"a \"  // first\n  /* second */ \"b\"\n\"\" \"c\""), "a bc");
}

TEST(MofValue, CharactersHoldSixteenBits) {
    EXPECT_EQ(Value("char16 X", "'a'"), CIMValue(OpenWBEM::Char16(OpenWBEM::UInt16('a'))));
    EXPECT_EQ(Value("char16 X", R"('\'')"), CIMValue(OpenWBEM::Char16(OpenWBEM::UInt16('\''))));
    EXPECT_EQ(Value("char16 X", "'\"'"), CIMValue(OpenWBEM::Char16(OpenWBEM::UInt16('"'))));
    EXPECT_EQ(Value("char16 X", R"('\xe4')"), CIMValue(OpenWBEM::Char16(OpenWBEM::UInt16(0xE4))));
    EXPECT_EQ(Value("char16 X", "'\xE2\x82\xAC'"),
              CIMValue(OpenWBEM::Char16(OpenWBEM::UInt16(0x20AC))));
}

TEST(MofValue, DatesAreStringsInTheFormOfCim) {
    EXPECT_STREQ(Value("datetime X", "\"20240229123456.000000+060\"").toString().c_str(),
                 "20240229123456.000000+060");
    EXPECT_EQ(Value("datetime X", "\"00000001020304.000000:000\"").getType(),
              OpenWBEM::CIMDataType::DATETIME);
}

TEST(MofValue, ArraysStandInBraces) {
    OpenWBEM::UInt16Array numbers;
    numbers.push_back(1);
    numbers.push_back(2);
    EXPECT_EQ(Value("uint16 X[]", "{1, 0x2}"), CIMValue(numbers));
    EXPECT_EQ(Value("uint16 X[]", "{}"), CIMValue(OpenWBEM::UInt16Array()));
    OpenWBEM::StringArray texts;
    texts.push_back(String("a"));
    texts.push_back(String("bc"));
    EXPECT_EQ(Value("string X[2]", "{ \"a\", \"b\" \"c\" }"), CIMValue(texts));
    OpenWBEM::BoolArray flags;
    flags.push_back(OpenWBEM::Bool(true));
    EXPECT_EQ(Value("boolean X[]", "{true}"), CIMValue(flags));
}

TEST(MofValue, AnArrayHasTheSizeThatIsStatedOrNone) {
    const cimserver::mof::Schema schema = Read("class A { uint8 X[]; uint8 Y[4]; uint8 Z; };");
    const OpenWBEM::CIMClass& cimClass = *schema.FindClass("A");
    EXPECT_EQ(cimClass.getProperty("X").getDataType().getSize(), -1);
    EXPECT_EQ(cimClass.getProperty("Y").getDataType().getSize(), 4);
    EXPECT_TRUE(cimClass.getProperty("Y").getDataType().isArrayType());
    EXPECT_FALSE(cimClass.getProperty("Z").getDataType().isArrayType());
}

} // namespace
