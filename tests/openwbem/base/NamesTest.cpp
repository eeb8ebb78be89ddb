#include "OW_Bool.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_CIMName.hpp"
#include "OW_Char16.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

namespace OpenWBEM {
namespace {

TEST(Configuration, VersionAndChecksAreThoseOfAStandardBuild) {
    EXPECT_STREQ(OW_VERSION, "3.0.3");
    bool indexing = false;
    bool references = false;
    bool debug = false;
#ifdef OW_CHECK_ARRAY_INDEXING
    indexing = true;
#endif
#ifdef OW_CHECK_NULL_REFERENCES
    references = true;
#endif
#ifdef OW_DEBUG
    debug = true;
#endif
    EXPECT_TRUE(indexing);
    EXPECT_TRUE(references);
    EXPECT_FALSE(debug);
    EXPECT_EQ(OW_SIZEOF_LONG_INT, sizeof(long));
    EXPECT_EQ(OW_SIZEOF_INT, sizeof(int));
    EXPECT_EQ(OW_SIZEOF_SHORT_INT, sizeof(short));
    EXPECT_EQ(OW_SIZEOF_LONG_LONG_INT, sizeof(long long));
}

// The marks stand in class heads and before declarations; both are empty.
class OW_COMMON_API Marked {};
OW_DEPRECATED int deprecatedFunction() {
    return 1;
}

TEST(Configuration, MarksMayStandInDeclarations) {
    EXPECT_EQ(sizeof(Marked), 1U);
    EXPECT_EQ(deprecatedFunction(), 1);
}

TEST(Types, HaveTheirWidthsAndSpellings) {
    static_assert(std::is_same<UInt8, unsigned char>::value, "");
    static_assert(std::is_same<Int8, signed char>::value, "");
    static_assert(std::is_same<UInt16, unsigned short>::value, "");
    static_assert(std::is_same<Int16, short>::value, "");
    static_assert(std::is_same<UInt32, unsigned int>::value, "");
    static_assert(std::is_same<Int32, int>::value, "");
    static_assert(std::is_same<Real32, float>::value, "");
    static_assert(std::is_same<Real64, double>::value, "");
    EXPECT_EQ(sizeof(UInt64), 8U);
    EXPECT_EQ(sizeof(Int64), 8U);
    const bool longIsWide = sizeof(long) == 8;
    EXPECT_EQ((std::is_same<Int64, long>::value), longIsWide);
    EXPECT_EQ((std::is_same<UInt64, unsigned long>::value), longIsWide);
    EXPECT_STREQ(OW_SHAREDLIB_EXTENSION, ".so");
    EXPECT_STREQ(OW_FILENAME_SEPARATOR, "/");
}

TEST(CIMName, ComparesIgnoringCase) {
    EXPECT_TRUE(CIMName("AbC") == "abc");
    EXPECT_TRUE("abc" == CIMName("AbC"));
    EXPECT_TRUE(CIMName("AbC") == String("aBc"));
    EXPECT_TRUE(String("aBc") == CIMName("AbC"));
    EXPECT_TRUE(CIMName("AbC") == CIMName("abc"));
    EXPECT_FALSE(CIMName("AbC") != "abc");
    EXPECT_TRUE(CIMName("AbC") != "abd");
    EXPECT_TRUE(CIMName("a") < "B");
    EXPECT_FALSE(CIMName("B") < "a");
    EXPECT_TRUE(CIMName("a") <= "A");
    EXPECT_TRUE(CIMName("a") >= "A");
    EXPECT_TRUE(CIMName("B") > "a");
    EXPECT_FALSE(CIMName("a") > "A");
}

TEST(CIMName, ItsTextComparesByBytes) {
    EXPECT_FALSE(CIMName("AbC").toString() == "abc");
    EXPECT_TRUE(CIMName("AbC").toString() == "AbC");
}

TEST(CIMName, IsMadeAndAssignedFromText) {
    CIMName name = "a";
    EXPECT_EQ(name.toString(), "a");
    name = "b";
    EXPECT_EQ(name.toString(), "b");
    name = String("c");
    EXPECT_EQ(name.toString(), "c");
    const String text("d");
    const CIMName fromString = text;
    EXPECT_EQ(fromString.toString(), "d");
    std::ostringstream stream;
    stream << fromString;
    EXPECT_EQ(stream.str(), "d");
}

TEST(CIMName, EmptyIsNotValid) {
    EXPECT_TRUE(CIMName("a"));
    EXPECT_TRUE(CIMName("a").isValid());
    EXPECT_FALSE(!CIMName("a"));
    EXPECT_FALSE(CIMName());
    EXPECT_FALSE(CIMName("").isValid());
    EXPECT_TRUE(!CIMName(CIMNULL));
    CIMName name("a");
    name.setNull();
    EXPECT_FALSE(name.isValid());
}

TEST(Bool, IsABoolWithAText) {
    const Bool yes = true;
    const bool back = yes;
    EXPECT_TRUE(back);
    EXPECT_EQ(yes.toString(), "true");
    EXPECT_EQ(Bool(false).toString(), "false");
    EXPECT_FALSE(Bool());
    EXPECT_FALSE(Bool(CIMNULL));
    EXPECT_TRUE(Bool(true) == Bool(true));
    EXPECT_TRUE(Bool(true) != false);
    EXPECT_TRUE(yes.equal(true));
    std::ostringstream stream;
    stream << yes << Bool(false);
    EXPECT_EQ(stream.str(), "truefalse");
}

struct Character {
    UInt16 value;
    const char* text;
};

const Character CHARACTERS[] = {
    {0x0041, "A"},
    {0x007F, "\x7F"},
    {0x0080, "\xC2\x80"},
    {0x07FF, "\xDF\xBF"},
    {0x0800, "\xE0\xA0\x80"},
    {0x20AC, "\xE2\x82\xAC"},
    {0xFFFD, "\xEF\xBF\xBD"},
};

TEST(Char16, TextIsUtf8BothWays) {
    for (const Character& row : CHARACTERS) {
        EXPECT_EQ(Char16(row.value).toString(), row.text);
        EXPECT_EQ(Char16(String(row.text)).getValue(), row.value);
    }
}

TEST(Char16, HasNoTextForNulAndAReplacementForHalfAPair) {
    EXPECT_EQ(Char16().toString(), "");
    EXPECT_EQ(Char16(CIMNULL).getValue(), 0);
    EXPECT_EQ(Char16(0xD800).toString(), "\xEF\xBF\xBD");
    EXPECT_EQ(Char16(0xDFFF).toString(), "\xEF\xBF\xBD");
}

TEST(Char16, TakesTheFirstCharacterOfAText) {
    EXPECT_EQ(Char16(String("abc")).getValue(), 'a');
    EXPECT_EQ(Char16(String()).getValue(), 0);
    EXPECT_EQ(Char16(String("\xF0\x9F\x98\x80")).getValue(), 0xFFFD);
    EXPECT_EQ(Char16(String("\xFF")).getValue(), 0xFFFD);
}

TEST(Char16, ComparesByValue) {
    EXPECT_TRUE(Char16('a') == Char16('a'));
    EXPECT_TRUE(Char16('a') != Char16('b'));
    EXPECT_TRUE(Char16('a') < Char16('b'));
    EXPECT_TRUE(Char16('b') > Char16('a'));
    EXPECT_TRUE(Char16('a') <= Char16('a'));
    EXPECT_TRUE(Char16('a') >= Char16('a'));
    EXPECT_TRUE(Char16('a').equal('a'));
    Char16 c;
    c.setValue(0x41);
    std::ostringstream stream;
    stream << c;
    EXPECT_EQ(stream.str(), "A");
}

} // namespace
} // namespace OpenWBEM
