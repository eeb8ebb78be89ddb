#include "OW_Array.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace OpenWBEM {
namespace {

typedef std::vector<std::string> Tokens;

Tokens plain(const StringArray& tokens) {
    Tokens texts;
    for (const String& token : tokens) {
        texts.emplace_back(token.c_str());
    }
    return texts;
}

struct Row {
    const char* input;
    const char* delimiters;
    String::EReturnDelimitersFlag delimitersFlag;
    String::EEmptyTokenReturnFlag emptyFlag;
    Tokens expected;
};

const String::EReturnDelimitersFlag DISCARD = String::E_DISCARD_DELIMITERS;
const String::EReturnDelimitersFlag RETURN = String::E_RETURN_DELIMITERS;
const String::EEmptyTokenReturnFlag SKIP = String::E_SKIP_EMPTY_TOKENS;
const String::EEmptyTokenReturnFlag KEEP = String::E_RETURN_EMPTY_TOKENS;
const char* const WHITE_SPACE = " \n\r\t\v";

const Row ROWS[] = {
    {" a  b ", WHITE_SPACE, DISCARD, SKIP, {"a", "b"}},
    {"a\t\tb\n", WHITE_SPACE, DISCARD, SKIP, {"a", "b"}},
    {"a\t\tb\n", "\n\t", DISCARD, SKIP, {"a", "b"}},
    {"1\tstatus text\n", WHITE_SPACE, DISCARD, SKIP, {"1", "status", "text"}},
    {"1\tstatus text\n", "\n\t", DISCARD, SKIP, {"1", "status text"}},
    {"", WHITE_SPACE, DISCARD, SKIP, {}},
    {"", ",", DISCARD, KEEP, {}},
    {"", ",", RETURN, KEEP, {}},
    {"", nullptr, DISCARD, SKIP, {}},
    {"   ", WHITE_SPACE, DISCARD, SKIP, {}},
    {"x", nullptr, DISCARD, SKIP, {"x"}},
    {"x", "", DISCARD, SKIP, {"x"}},
    {"a,b,,c,", ",", RETURN, SKIP, {"a", ",", "b", ",", ",", "c", ","}},
    {"a,b,,c,", ",", DISCARD, KEEP, {"a", "b", "", "c"}},
    {",a", ",", DISCARD, KEEP, {"a"}},
    {",,a", ",", DISCARD, KEEP, {"", "a"}},
    {"a,", ",", DISCARD, KEEP, {"a"}},
    {",", ",", DISCARD, KEEP, {}},
    {"a,,b,,", ",", DISCARD, KEEP, {"a", "", "b", ""}},
    {",,a", ",", RETURN, KEEP, {",", "", ",", "a"}},
    {"a,;b", ",;", RETURN, KEEP, {"a", ",", "", ";", "b"}},
    {"a,b,,c,", ",", String::E_RETURN_TOKENS, SKIP, {"a", ",", "b", ",", ",", "c", ","}},
    {"a,b,,c,", ",", String::E_DISCARD_TOKENS, SKIP, {"a", "b", "c"}},
    {"\xC3\xA9,\xC3\xA8", ",", DISCARD, SKIP, {"\xC3\xA9", "\xC3\xA8"}},
};

TEST(StringTokenize, EveryRowOfTheTable) {
    for (const Row& row : ROWS) {
        const StringArray tokens =
            String(row.input).tokenize(row.delimiters, row.delimitersFlag, row.emptyFlag);
        EXPECT_EQ(plain(tokens), row.expected)
            << "\"" << row.input << "\", flags " << row.delimitersFlag << " " << row.emptyFlag;
    }
}

TEST(StringTokenize, DefaultsAreWhiteSpaceWithoutDelimitersAndEmptyTokens) {
    EXPECT_EQ(plain(String(" a \n\r\t\v b\fc ").tokenize()), (Tokens{"a", "b\fc"}));
    EXPECT_EQ(plain(String("a,,b").tokenize(",")), (Tokens{"a", "b"}));
}

TEST(StringTokenize, NeverFilledGivesNothing) {
    EXPECT_TRUE(String().tokenize().empty());
}

TEST(StringTokenize, FlagsHaveFixedNumbers) {
    EXPECT_EQ(String::E_DISCARD_TOKENS, 0);
    EXPECT_EQ(String::E_RETURN_TOKENS, 1);
    EXPECT_EQ(String::E_DISCARD_DELIMITERS, 2);
    EXPECT_EQ(String::E_RETURN_DELIMITERS, 3);
}

} // namespace
} // namespace OpenWBEM
