#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <string>

namespace OpenWBEM {
namespace {

int sign(int value) {
    return (value > 0) - (value < 0);
}

struct Order {
    const char* a;
    const char* b;
    int bytes;
    int ignoringCase;
};

const Order ORDERS[] = {
    {"abc", "abc", 0, 0},    {"abc", "abd", -1, -1},
    {"abd", "abc", 1, 1},    {"ab", "abc", -1, -1},
    {"abc", "ab", 1, 1},     {"", "", 0, 0},
    {"", "a", -1, -1},       {"ABC", "abc", -1, 0},
    {"abc", "ABC", 1, 0},    {"a", "B", 1, -1},
    {"B", "a", -1, 1},       {"[", "a", -1, -1},
    {"_", "A", 1, -1},       {"\xC3\xA9", "\xC3\x89", 1, 0},
    {"\xC3\xA9", "e", 1, 1}, {"\x80", "\x81", -1, -1},
};

TEST(StringComparison, OrdersByBytesOrIgnoringCase) {
    for (const Order& row : ORDERS) {
        const String a(row.a);
        const String b(row.b);
        SCOPED_TRACE(std::string(row.a) + " with " + row.b);
        EXPECT_EQ(sign(a.compareTo(b)), row.bytes);
        EXPECT_EQ(sign(a.compareTo(row.b)), row.bytes);
        EXPECT_EQ(sign(a.compareToIgnoreCase(b)), row.ignoringCase);
        EXPECT_EQ(sign(a.compareToIgnoreCase(row.b)), row.ignoringCase);
        EXPECT_EQ(a.equals(b), row.bytes == 0);
        EXPECT_EQ(a.equals(row.b), row.bytes == 0);
        EXPECT_EQ(a.equalsIgnoreCase(b), row.ignoringCase == 0);
        EXPECT_EQ(a.equalsIgnoreCase(row.b), row.ignoringCase == 0);
    }
}

TEST(StringComparison, OperatorsTakeStringsAndTextsOnEitherSide) {
    for (const Order& row : ORDERS) {
        const String a(row.a);
        const String b(row.b);
        SCOPED_TRACE(std::string(row.a) + " with " + row.b);
        const bool equal = row.bytes == 0;
        const bool less = row.bytes < 0;
        EXPECT_TRUE((a == b) == equal && (a == row.b) == equal && (row.a == b) == equal);
        EXPECT_TRUE((a != b) == !equal && (a != row.b) == !equal && (row.a != b) == !equal);
        EXPECT_TRUE((a < b) == less && (a < row.b) == less && (row.a < b) == less);
        EXPECT_TRUE((a >= b) == !less && (a >= row.b) == !less && (row.a >= b) == !less);
        const bool greater = row.bytes > 0;
        EXPECT_TRUE((a > b) == greater && (a > row.b) == greater && (row.a > b) == greater);
        EXPECT_TRUE((a <= b) == !greater && (a <= row.b) == !greater && (row.a <= b) == !greater);
    }
}

TEST(StringComparison, NeverFilledEqualsEmpty) {
    EXPECT_TRUE(String() == String(""));
    EXPECT_TRUE(String() == "");
    EXPECT_EQ(String().compareTo(String("")), 0);
    const char* const null = nullptr;
    EXPECT_TRUE(String("").equals(null));
    EXPECT_FALSE(String("a").equalsIgnoreCase(null));
}

struct Letters {
    const char* what;
    const char* upper;
    const char* lower;
};

// First and last of each range, and what stands at their edges.
const Letters LETTERS[] = {
    {"ASCII", "AMZ", "amz"},
    {"Latin-1 up to U+00D6", "\xC3\x80\xC3\x96", "\xC3\xA0\xC3\xB6"},
    {"Latin-1 from U+00D8", "\xC3\x98\xC3\x9E", "\xC3\xB8\xC3\xBE"},
    {"Y with diaeresis", "\xC5\xB8", "\xC3\xBF"},
    {"Latin Extended-A from U+0100", "\xC4\x80\xC4\xAE", "\xC4\x81\xC4\xAF"},
    {"Latin Extended-A from U+0132", "\xC4\xB2\xC4\xB6", "\xC4\xB3\xC4\xB7"},
    {"Latin Extended-A from U+0139", "\xC4\xB9\xC5\x87", "\xC4\xBA\xC5\x88"},
    {"Latin Extended-A from U+014A", "\xC5\x8A\xC5\xB6", "\xC5\x8B\xC5\xB7"},
    {"Latin Extended-A from U+0179", "\xC5\xB9\xC5\xBD", "\xC5\xBA\xC5\xBE"},
    {"Greek with tonos", "\xCE\x86\xCE\x88\xCE\x8A\xCE\x8C\xCE\x8E\xCE\x8F",
     "\xCE\xAC\xCE\xAD\xCE\xAF\xCF\x8C\xCF\x8D\xCF\x8E"},
    {"Greek", "\xCE\x91\xCE\xA1\xCE\xA3\xCE\xA9\xCE\xAB",
     "\xCE\xB1\xCF\x81\xCF\x83\xCF\x89\xCF\x8B"},
    {"Coptic", "\xCF\xA2\xCF\xAE", "\xCF\xA3\xCF\xAF"},
    {"Cyrillic from U+0400", "\xD0\x80\xD0\x8F", "\xD1\x90\xD1\x9F"},
    {"Cyrillic from U+0410", "\xD0\x90\xD0\x9F\xD0\xA0\xD0\xAF",
     "\xD0\xB0\xD0\xBF\xD1\x80\xD1\x8F"},
    {"Cyrillic from U+0460", "\xD1\xA0\xD2\x80", "\xD1\xA1\xD2\x81"},
    {"Cyrillic from U+048A", "\xD2\x8A\xD2\xBE", "\xD2\x8B\xD2\xBF"},
    {"Cyrillic palochka", "\xD3\x80", "\xD3\x8F"},
    {"Cyrillic from U+04C1", "\xD3\x81\xD3\x8D", "\xD3\x82\xD3\x8E"},
    {"Cyrillic from U+04D0", "\xD3\x90\xD4\xAE", "\xD3\x91\xD4\xAF"},
};

TEST(StringCase, EveryRangeHasBothCases) {
    for (const Letters& row : LETTERS) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(String(row.upper).toLowerCase(), row.lower);
        EXPECT_EQ(String(row.lower).toUpperCase(), row.upper);
        EXPECT_EQ(String(row.upper).toUpperCase(), row.upper);
        EXPECT_EQ(String(row.lower).toLowerCase(), row.lower);
        EXPECT_TRUE(String(row.upper).equalsIgnoreCase(row.lower));
        EXPECT_EQ(String(row.upper).compareToIgnoreCase(row.lower), 0);
    }
}

// Times sign, sharp s, division sign, dotted and dotless i, kra, n preceded by apostrophe, long s,
// punctuation beside the ASCII letters, the thousands sign and its neighbours, CJK, an emoji.
const char* const WITHOUT_CASE[] = {
    "\xC3\x97", "\xC3\x9F", "\xC3\xB7", "\xC4\xB0",     "\xC4\xB1",         "\xC4\xB8", "\xC5\x89",
    "\xC5\xBF", "@[`{",     "\xD2\x82", "\xD2\x83",     "\xD2\x89",         "\xCE\x87", "\xCE\x90",
    "\xCE\xB0", "\xD4\xB0", "0123",     "\xE4\xB8\xAD", "\xF0\x9F\x98\x80",
};

TEST(StringCase, WhatHasNoOtherCaseStays) {
    for (const char* const letter : WITHOUT_CASE) {
        SCOPED_TRACE(letter);
        EXPECT_EQ(String(letter).toLowerCase(), letter);
        EXPECT_EQ(String(letter).toUpperCase(), letter);
    }
}

TEST(StringCase, FinalSigmaIsASigma) {
    const char* const finalSigma = "\xCF\x82";
    EXPECT_TRUE(String(finalSigma).equalsIgnoreCase("\xCF\x83"));
    EXPECT_TRUE(String(finalSigma).equalsIgnoreCase("\xCE\xA3"));
    EXPECT_EQ(String(finalSigma).toUpperCase(), "\xCE\xA3");
    EXPECT_EQ(String(finalSigma).toLowerCase(), finalSigma);
}

// A lone continuation byte, a cut sequence, an overlong form, a surrogate, a value above U+10FFFF,
// bytes that never occur.
const char* const NO_UTF8[] = {
    "\x80",         "a\xC3",        "\xC3\x41",         "\xC1\x81",
    "\xE0\x81\x81", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFE\xFF",
    "\xE2\x82",     "\xF0\x9F\x98",
};

TEST(StringCase, BytesThatAreNoUtf8StandForThemselves) {
    for (const char* const bytes : NO_UTF8) {
        const String upper = String(bytes).toUpperCase();
        EXPECT_EQ(upper.length(), String(bytes).length());
        EXPECT_TRUE(upper.equalsIgnoreCase(bytes));
        EXPECT_EQ(upper.compareToIgnoreCase(bytes), 0);
    }
    EXPECT_FALSE(String("\xC3\x41").equalsIgnoreCase("\xC3\x42"));
    EXPECT_TRUE(String("\xC3\x41").equalsIgnoreCase("\xC3\x61"));
    EXPECT_FALSE(String("\xC1\x81").equalsIgnoreCase("\xC1\xA1"));
    EXPECT_FALSE(String("\xE0\x81\x81").equalsIgnoreCase("\xE0\x81\xA1"));
    EXPECT_EQ(String("\xE0\x81\x81").toLowerCase(), "\xE0\x81\x81");
    EXPECT_EQ(String("\xC3\x61").toUpperCase(), "\xC3\x41");
}

TEST(StringCase, DifferenceAfterALetterOfTwoBytesIsSeen) {
    EXPECT_FALSE(String("\xC3\xA9\x61").equalsIgnoreCase("\xC3\x89\x62"));
    EXPECT_TRUE(String("x\xC3\xA9\x61").equalsIgnoreCase("X\xC3\x89\x41"));
    EXPECT_FALSE(String("\xC3\xA9").equalsIgnoreCase("\xC4\xA9"));
}

const String::EIgnoreCaseFlag SENSITIVE = String::E_CASE_SENSITIVE;
const String::EIgnoreCaseFlag INSENSITIVE = String::E_CASE_INSENSITIVE;

struct Edge {
    const char* whole;
    const char* part;
    String::EIgnoreCaseFlag flag;
    bool starts;
    bool ends;
};

const Edge EDGES[] = {
    {"abc", "ab", SENSITIVE, true, false},
    {"abc", "bc", SENSITIVE, false, true},
    {"abc", "abc", SENSITIVE, true, true},
    {"abc", "abcd", SENSITIVE, false, false},
    {"abc", "AB", SENSITIVE, false, false},
    {"abc", "AB", INSENSITIVE, true, false},
    {"abc", "BC", INSENSITIVE, false, true},
    {"abc", "", SENSITIVE, false, false},
    {"abc", "", INSENSITIVE, false, false},
    {"", "", SENSITIVE, true, true},
    {"", "a", SENSITIVE, false, false},
    {"\xC3\xA9x", "\xC3\x89", INSENSITIVE, true, false},
    {"x\xC3\xA9", "\xC3\x89", INSENSITIVE, false, true},
};

TEST(StringEdges, StartsWithAndEndsWith) {
    for (const Edge& row : EDGES) {
        SCOPED_TRACE(std::string(row.whole) + " with " + row.part);
        const String whole(row.whole);
        EXPECT_EQ(whole.startsWith(row.part, row.flag), row.starts);
        EXPECT_EQ(whole.startsWith(String(row.part), row.flag), row.starts);
        EXPECT_EQ(whole.endsWith(row.part, row.flag), row.ends);
        EXPECT_EQ(whole.endsWith(String(row.part), row.flag), row.ends);
    }
}

TEST(StringEdges, CaseMattersByDefault) {
    EXPECT_FALSE(String("abc").startsWith("A"));
    EXPECT_FALSE(String("abc").endsWith("C"));
}

TEST(StringEdges, SingleCharacters) {
    EXPECT_TRUE(String("abc").startsWith('a'));
    EXPECT_FALSE(String("abc").startsWith('b'));
    EXPECT_TRUE(String("abc").endsWith('c'));
    EXPECT_FALSE(String("abc").endsWith('b'));
    EXPECT_FALSE(String().startsWith('a'));
    EXPECT_FALSE(String().endsWith('a'));
}

TEST(StringEdges, NeverFilledStartsAndEndsWithNothing) {
    EXPECT_TRUE(String().startsWith(""));
    EXPECT_TRUE(String().endsWith(String()));
}

} // namespace
} // namespace OpenWBEM
