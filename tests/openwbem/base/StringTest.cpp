#include "OW_String.hpp"

#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_CIMDateTime.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_Char16.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>

namespace OpenWBEM {
namespace {

std::string text(const String& s) {
    return {s.c_str(), s.length()};
}

TEST(StringConstruction, FromText) {
    EXPECT_EQ(text(String("abc")), "abc");
    const String implicit = "abc";
    EXPECT_EQ(text(implicit), "abc");
    EXPECT_EQ(text(String("abcdef", 3)), "abc");
    EXPECT_EQ(text(String("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(text(String('A')), "A");
}

TEST(StringConstruction, NothingGivesTheEmptyText) {
    const char* const null = nullptr;
    for (const String& s : {String(), String(null), String('\0'), String(""), String(null, 5)}) {
        EXPECT_STREQ(s.c_str(), "");
        EXPECT_EQ(s.length(), 0U);
        EXPECT_TRUE(s.empty());
    }
}

TEST(StringConstruction, FromNumbers) {
    EXPECT_EQ(text(String(true)), "1");
    EXPECT_EQ(text(String(UInt8(65))), "65");
    EXPECT_EQ(text(String(Int8(-65))), "-65");
    EXPECT_EQ(text(String(5L)), "5");
    EXPECT_EQ(text(String(Int32(-2147483647 - 1))), "-2147483648");
    EXPECT_EQ(text(String(UInt32(4294967295U))), "4294967295");
    EXPECT_EQ(text(String(Int64(-9223372036854775807L - 1))), "-9223372036854775808");
    EXPECT_EQ(text(String(UInt64(18446744073709551615UL))), "18446744073709551615");
}

TEST(StringConstruction, RealsHaveSixSignificantDigits) {
    EXPECT_EQ(text(String(1.5)), "1.5");
    EXPECT_EQ(text(String(0.1)), "0.1");
    EXPECT_EQ(text(String(1e20)), "1e+20");
    EXPECT_EQ(text(String(1234567.0)), "1.23457e+06");
    EXPECT_EQ(text(String(-0.00001)), "-1e-05");
    EXPECT_EQ(text(String(100000.0)), "100000");
    EXPECT_EQ(text(String(1.5F)), "1.5");
}

TEST(StringConstruction, TakesOverMemoryMadeWithNew) {
    char* const memory = new char[4];
    std::memcpy(memory, "abc", 4);
    EXPECT_EQ(text(String(String::E_TAKE_OWNERSHIP, memory, 3)), "abc");
}

TEST(StringConstruction, OlderSpellingsEqualToString) {
    EXPECT_EQ(text(String(Bool(true))), "true");
    EXPECT_EQ(text(String(Char16(0x20AC))), "\xE2\x82\xAC");
    Char16Array characters;
    characters.append(Char16('a'));
    characters.append(Char16(0xE9));
    EXPECT_EQ(text(String(characters)), "a\xC3\xA9");
    const CIMDateTime interval(UInt64(1000000));
    EXPECT_EQ(text(String(interval)), text(interval.toString()));
    const CIMObjectPath path(CIMName("C"), String("root"));
    EXPECT_EQ(text(String(path)), text(path.toString()));
    EXPECT_EQ(text(String(path)), "/root:C");
}

TEST(StringCopies, AreIndependentAfterAChange) {
    const String original("abc");
    String copy(original);
    EXPECT_EQ(copy.c_str(), original.c_str());
    copy += "d";
    EXPECT_EQ(text(original), "abc");
    EXPECT_EQ(text(copy), "abcd");
    String indexed(original);
    indexed[0] = 'X';
    EXPECT_EQ(text(original), "abc");
    EXPECT_EQ(text(indexed), "Xbc");
    String lowered(original);
    lowered.toUpperCase();
    EXPECT_EQ(text(original), "abc");
    String cut(original);
    cut.erase(0, 1);
    EXPECT_EQ(text(original), "abc");
    EXPECT_EQ(text(cut), "bc");
}

TEST(StringCopies, OfTheCopyTooWhenTheOriginalChanges) {
    String original("abc");
    const String copy(original);
    original[1] = 'X';
    original.concat('!');
    EXPECT_EQ(text(copy), "abc");
    EXPECT_EQ(text(original), "aXc!");
}

TEST(StringCopies, AssignmentToItselfKeepsTheText) {
    String s("abc");
    const String& same = s;
    s = same;
    EXPECT_EQ(text(s), "abc");
    s.concat(same);
    EXPECT_EQ(text(s), "abcabc");
    s.concat(s.c_str());
    EXPECT_EQ(text(s), "abcabcabcabc");
}

TEST(StringCopies, MovingTakesTheTextAlong) {
    String a("abc");
    const char* const place = a.c_str();
    String b(std::move(a));
    EXPECT_EQ(b.c_str(), place);
    String c;
    c = std::move(b);
    EXPECT_EQ(c.c_str(), place);
    String d("d");
    c.swap(d);
    EXPECT_EQ(text(c), "d");
    swap(c, d);
    EXPECT_EQ(text(c), "abc");
}

TEST(StringIndex, BeyondTheEndIsNul) {
    String s("ab");
    const String& fixed = s;
    EXPECT_EQ(fixed[1], 'b');
    EXPECT_EQ(fixed[2], '\0');
    EXPECT_EQ(fixed[100], '\0');
    EXPECT_EQ(s[100], '\0');
    s[100] = 'X';
    EXPECT_EQ(s[100], '\0');
    EXPECT_EQ(text(s), "ab");
    EXPECT_EQ(String("")[0], '\0');
}

template <class F>
std::string typeThrownBy(F f) {
    try {
        f();
    } catch (const Exception& e) {
        return e.type();
    }
    return "nothing";
}

TEST(StringIndex, StringThatHoldsNoTextThrows) {
    String never;
    const String& fixed = never;
    String erased("a");
    erased.erase();
    String trimmed(" ");
    trimmed.trim();
    const std::string expected = "NULLCOWIntrusiveReferenceException";
    EXPECT_EQ(typeThrownBy([&] { (void)never[0]; }), expected);
    EXPECT_EQ(typeThrownBy([&] { (void)fixed[0]; }), expected);
    EXPECT_EQ(typeThrownBy([&] { (void)erased[0]; }), expected);
    EXPECT_EQ(typeThrownBy([&] { (void)trimmed[0]; }), expected);
}

TEST(StringIndex, CharAtNeverThrows) {
    EXPECT_EQ(String("ab").charAt(1), 'b');
    EXPECT_EQ(String("ab").charAt(2), '\0');
    EXPECT_EQ(String().charAt(0), '\0');
    EXPECT_EQ(String("").charAt(0), '\0');
}

TEST(StringConcat, AppendsEveryKind) {
    String s;
    s.concat("a").concat(String("b")).concat('c');
    s += "d";
    s += String("e");
    s += 'f';
    EXPECT_EQ(text(s), "abcdef");
}

TEST(StringConcat, NothingAppendedChangesNothing) {
    const char* const null = nullptr;
    String s("a");
    s.concat("").concat(String()).concat('\0').concat(null);
    EXPECT_EQ(text(s), "a");
}

TEST(StringConcat, GrowsOverManySteps) {
    String s;
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        s += "ab";
        s += 'c';
        expected += "abc";
    }
    EXPECT_EQ(text(s), expected);
}

TEST(StringConcat, RoomToGrowIsNotSharedWithCopies) {
    String original("abc");
    original += "d";
    String copy(original);
    copy += "e";
    EXPECT_EQ(text(original), "abcd");
    original += "f";
    EXPECT_EQ(text(copy), "abcde");
    EXPECT_EQ(text(original), "abcdf");
}

TEST(StringConcat, PlusJoinsEveryPair) {
    EXPECT_EQ(text(String("a") + String("b")), "ab");
    EXPECT_EQ(text("a" + String("b")), "ab");
    EXPECT_EQ(text(String("a") + "b"), "ab");
    EXPECT_EQ(text('a' + String("b")), "ab");
    EXPECT_EQ(text(String("a") + 'b'), "ab");
}

TEST(StringConcat, ANumberIsTakenAsACharacter) {
    EXPECT_EQ(text(String("s") + 5), "s\x05");
    String s("s");
    s += 65;
    EXPECT_EQ(text(s), "sA");
}

struct SearchRow {
    const char* in;
    const char* what;
    size_t from;
    size_t expected;
};

const size_t NONE = String::npos;

const SearchRow FORWARD[] = {
    {"abcabc", "bc", 0, 1}, {"abcabc", "bc", 2, 4}, {"abcabc", "bc", 5, NONE},
    {"abc", "x", 0, NONE},  {"abc", "", 0, 0},      {"abc", "", 2, 2},
    {"", "", 0, NONE},      {"", "a", 0, NONE},     {"abc", "abcd", 0, NONE},
    {"abc", "a", 9, NONE},
};

TEST(StringSearch, IndexOfFindsTheFirstPlace) {
    for (const SearchRow& row : FORWARD) {
        EXPECT_EQ(String(row.in).indexOf(row.what, row.from), row.expected)
            << row.in << " " << row.what;
        EXPECT_EQ(String(row.in).indexOf(String(row.what), row.from), row.expected)
            << row.in << " " << row.what;
    }
    EXPECT_EQ(String("abcabc").indexOf('b'), 1U);
    EXPECT_EQ(String("abcabc").indexOf('b', 2), 4U);
    EXPECT_EQ(String("abcabc").indexOf('x'), NONE);
    EXPECT_EQ(String().indexOf(""), NONE);
}

const SearchRow BACKWARD[] = {
    {"abcabc", "bc", NONE, 4}, {"abcabc", "bc", 4, 4},   {"abcabc", "bc", 3, 1},
    {"abcabc", "bc", 0, NONE}, {"abc", "x", NONE, NONE}, {"", "a", NONE, NONE},
};

TEST(StringSearch, LastIndexOfFindsTheLastPlace) {
    for (const SearchRow& row : BACKWARD) {
        EXPECT_EQ(String(row.in).lastIndexOf(row.what, row.from), row.expected)
            << row.in << " " << row.what;
        EXPECT_EQ(String(row.in).lastIndexOf(String(row.what), row.from), row.expected)
            << row.in << " " << row.what;
    }
    EXPECT_EQ(String("abcabc").lastIndexOf('b'), 4U);
    EXPECT_EQ(String("abcabc").lastIndexOf('b', 3), 1U);
    EXPECT_EQ(String("abcabc").lastIndexOf('x'), NONE);
}

TEST(StringSearch, SubstringNeverThrows) {
    const String s("abcdef");
    EXPECT_EQ(text(s.substring(2)), "cdef");
    EXPECT_EQ(text(s.substring(2, 3)), "cde");
    EXPECT_EQ(text(s.substring(0, 6)), "abcdef");
    EXPECT_EQ(text(s.substring(4, 100)), "ef");
    EXPECT_EQ(text(s.substring(6)), "");
    EXPECT_EQ(text(s.substring(100, 2)), "");
    EXPECT_EQ(text(s.substring(1, 0)), "");
    EXPECT_EQ(text(String().substring(0)), "");
}

TEST(StringEdit, TrimTakesWhiteSpaceAway) {
    EXPECT_EQ(text(String(" \t\n\v\f\ra b \t\n\v\f\r").ltrim()), "a b \t\n\v\f\r");
    EXPECT_EQ(text(String(" \t\n\v\f\ra b \t\n\v\f\r").rtrim()), " \t\n\v\f\ra b");
    EXPECT_EQ(text(String(" \t\n\v\f\ra b \t\n\v\f\r").trim()), "a b");
    EXPECT_EQ(text(String("  ").ltrim()), "");
    EXPECT_EQ(text(String("  ").rtrim()), "");
    EXPECT_EQ(text(String().trim()), "");
    EXPECT_EQ(text(String("ab").trim()), "ab");
    const String shared(" a ");
    String copy(shared);
    copy.trim();
    EXPECT_EQ(text(copy), "a");
    EXPECT_EQ(text(shared), " a ");
}

TEST(StringEdit, EraseTakesAPartAway) {
    EXPECT_EQ(text(String("abcdef").erase(1, 2)), "adef");
    EXPECT_EQ(text(String("abcdef").erase(2)), "ab");
    EXPECT_EQ(text(String("abcdef").erase(4, 100)), "abcd");
    EXPECT_EQ(text(String("abcdef").erase(6)), "abcdef");
    EXPECT_EQ(text(String("abcdef").erase(0)), "");
    EXPECT_EQ(text(String("abcdef").erase()), "");
}

TEST(StringEdit, GrowsAgainAfterACut) {
    String s("abcdef");
    s.erase(1, 4);
    s += "ghijkl";
    EXPECT_EQ(text(s), "afghijkl");
}

TEST(StringEdit, FormatReplacesTheText) {
    String s("old");
    EXPECT_EQ(s.format("%d-%s", 5, "x"), 3);
    EXPECT_EQ(text(s), "5-x");
    EXPECT_EQ(s.format("[%s]", s.c_str()), 5);
    EXPECT_EQ(text(s), "[5-x]");
    const std::string longText(5000, 'y');
    EXPECT_EQ(s.format("%s", longText.c_str()), 5000);
    EXPECT_EQ(text(s), longText);
}

TEST(StringFacts, IsSpacesLooksAtEveryCharacter) {
    EXPECT_TRUE(String(" \t\n\v\f\r").isSpaces());
    EXPECT_FALSE(String("  a").isSpaces());
}

TEST(StringFacts, UTF8LengthCountsCharacters) {
    EXPECT_EQ(String("abc").UTF8Length(), 3U);
    EXPECT_EQ(String("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80").UTF8Length(), 4U);
    EXPECT_EQ(String().UTF8Length(), 0U);
}

TEST(StringFacts, HashCodeIsFixed) {
    EXPECT_EQ(String("abc").hashCode(), 344487U);
    EXPECT_EQ(String("").hashCode(), 0U);
    EXPECT_EQ(String().hashCode(), 0U);
    EXPECT_NE(String("abcdefghijkl").hashCode(), String("abcdefghijkm").hashCode());
    EXPECT_EQ(String("abcdefghijklmnop").hashCode() & 0xF0000000U, 0U);
}

TEST(StringFacts, AllocateCStringGivesACopyToFree) {
    const String s("abc");
    char* const copy = s.allocateCString();
    EXPECT_STREQ(copy, "abc");
    EXPECT_NE(copy, s.c_str());
    std::free(copy);
    char* const empty = String().allocateCString();
    EXPECT_STREQ(empty, "");
    std::free(empty);
}

TEST(StringFacts, ToStringIsTheTextItself) {
    EXPECT_EQ(text(String("abc").toString()), "abc");
}

TEST(StringStreaming, PrintsTheText) {
    std::ostringstream stream;
    stream << String("abc") << String() << String("d");
    EXPECT_EQ(stream.str(), "abcd");
}

TEST(StringStreaming, GetLineLeavesTheNewlineOut) {
    std::istringstream stream("first\n\nlast");
    EXPECT_EQ(text(String::getLine(stream)), "first");
    EXPECT_EQ(text(String::getLine(stream)), "");
    EXPECT_EQ(text(String::getLine(stream)), "last");
    EXPECT_TRUE(stream.eof());
}

} // namespace
} // namespace OpenWBEM
