#include "OW_Bool.hpp"
#include "OW_Char16.hpp"
#include "OW_StringBuffer.hpp"
#include "OW_StringStream.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace OpenWBEM {
namespace {

TEST(OStringStream, CollectsWhatIsWritten) {
    OStringStream stream;
    stream << "a" << 1 << 'b' << String("c");
    stream.put('d');
    EXPECT_EQ(stream.toString(), "a1bcd");
    EXPECT_STREQ(stream.c_str(), "a1bcd");
    EXPECT_EQ(stream.length(), 5U);
}

TEST(OStringStream, GrowsBeyondItsFirstSize) {
    OStringStream stream(1);
    stream << std::string(10000, 'x');
    EXPECT_EQ(stream.length(), 10000U);
}

TEST(OStringStream, ResetAndReleaseBeginAnew) {
    OStringStream stream;
    stream << "first";
    stream.reset();
    EXPECT_EQ(stream.length(), 0U);
    stream << "second";
    EXPECT_EQ(stream.releaseString(), "second");
    EXPECT_EQ(stream.toString(), "");
    stream << "third";
    EXPECT_EQ(stream.toString(), "third");
}

TEST(OStringStream, IsAnOrdinaryStream) {
    OStringStream stream;
    std::ostream& plain = stream;
    plain << std::hex << 255 << std::flush;
    EXPECT_TRUE(plain.good());
    EXPECT_EQ(stream.toString(), "ff");
}

TEST(IStringStream, ReadsTheText) {
    IStringStream stream(String("12 word\nline two"));
    int number = 0;
    std::string word;
    stream >> number >> word;
    EXPECT_EQ(number, 12);
    EXPECT_EQ(word, "word");
    EXPECT_EQ(String::getLine(stream), "");
    EXPECT_EQ(String::getLine(stream), "line two");
    EXPECT_TRUE(stream.eof());
}

TEST(IStringStream, KeepsATextOfItsOwn) {
    String text("abc");
    IStringStream stream(text);
    text[0] = 'X';
    EXPECT_EQ(String::getLine(stream), "abc");
}

TEST(IStringStream, EmptyTextIsAtItsEnd) {
    IStringStream stream((String()));
    EXPECT_EQ(stream.get(), std::istream::traits_type::eof());
}

TEST(StringBuffer, AppendsTextOfEveryKind) {
    StringBuffer buffer;
    buffer.append("a").append(String("b")).append('c').append("defg", 2);
    buffer += "f";
    buffer += String("g");
    buffer += 'h';
    EXPECT_EQ(buffer.toString(), "abcdefgh");
    EXPECT_STREQ(buffer.c_str(), "abcdefgh");
    EXPECT_EQ(buffer.length(), 8U);
    EXPECT_EQ(buffer[2], 'c');
}

template <class T>
String shown(T value) {
    StringBuffer buffer;
    buffer += value;
    return buffer.toString();
}

TEST(StringBuffer, AppendsNumbersInDecimal) {
    EXPECT_EQ(shown(UInt8(200)), "200");
    EXPECT_EQ(shown(Int8(-100)), "-100");
    EXPECT_EQ(shown(UInt16(65535)), "65535");
    EXPECT_EQ(shown(Int16(-32768)), "-32768");
    EXPECT_EQ(shown(UInt32(4294967295U)), "4294967295");
    EXPECT_EQ(shown(Int32(-5)), "-5");
    EXPECT_EQ(shown(UInt64(18446744073709551615UL)), "18446744073709551615");
    EXPECT_EQ(shown(Int64(-6)), "-6");
    EXPECT_EQ(shown(Real32(1.5F)), "1.5");
    EXPECT_EQ(shown(Real64(1234567.0)), "1.23457e+06");
    EXPECT_EQ(shown(true), "true");
    EXPECT_EQ(shown(Bool(false)), "false");
    EXPECT_EQ(shown(Char16(0xE9)), "\xC3\xA9");
}

TEST(StringBuffer, StartsWithATextAndBeginsAnew) {
    StringBuffer buffer("start");
    buffer += '!';
    EXPECT_EQ(buffer.releaseString(), "start!");
    EXPECT_EQ(buffer.length(), 0U);
    buffer += 'x';
    buffer.reset();
    EXPECT_EQ(buffer.toString(), "");
    const char* const null = nullptr;
    buffer += null;
    EXPECT_EQ(buffer.length(), 0U);
    EXPECT_EQ(StringBuffer(String("s")).toString(), "s");
}

TEST(StringBuffer, Streams) {
    std::ostringstream stream;
    stream << StringBuffer("text");
    EXPECT_EQ(stream.str(), "text");
}

} // namespace
} // namespace OpenWBEM
