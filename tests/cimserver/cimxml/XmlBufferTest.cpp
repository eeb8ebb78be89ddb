// Any bytes become text that stands in a UTF-8 XML 1.0 document.
#include "cimserver/cimxml/XmlBuffer.hpp"

#include "Support.hpp"
#include "support/DtdCheck.hpp"
#include "support/XmlNode.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using cimserver::cimxml::XmlBuffer;
using cimxml_test::TextOutput;

std::string AsText(std::string_view bytes) {
    TextOutput output;
    XmlBuffer xml(output);
    xml.Text(bytes);
    xml.Flush();
    return output.text;
}

// U+FFFD in UTF-8.
#define R "\xEF\xBF\xBD"

struct Row {
    const char* what;
    std::string bytes;
    std::string text;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.what;
}

class XmlText : public testing::TestWithParam<Row> {};

TEST_P(XmlText, Is) {
    EXPECT_EQ(AsText(GetParam().bytes), GetParam().text);
    // The fast way through plain text looks at eight bytes at once: every position must do.
    for (std::size_t before = 1; before < 10; ++before) {
        const std::string plain(before, 'x');
        EXPECT_EQ(AsText(plain + GetParam().bytes + "yyyyyyyyyyyyyyyy"),
                  plain + GetParam().text + "yyyyyyyyyyyyyyyy")
            << before;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, XmlText,
    testing::Values(
        Row{"nothing", "", ""}, Row{"plain", "abc XYZ 019 ~", "abc XYZ 019 ~"},
        Row{"less than", "<", "&lt;"}, Row{"greater than", ">", "&gt;"},
        Row{"ampersand", "&", "&amp;"}, Row{"quote", "\"", "&quot;"}, Row{"apostrophe", "'", "'"},
        Row{"an entity", "&lt;", "&amp;lt;"},
        Row{"neighbours of the specials", "!#$%'(;=?", "!#$%'(;=?"},
        Row{"tab, line feed", "\t\n", "\t\n"}, Row{"carriage return", "a\rb", "a&#13;b"},
        Row{"NUL", std::string(1, '\0'), R},
        Row{"control characters", "\x01\x08\x0B\x0C\x0E\x1F", R R R R R R},
        Row{"DEL is allowed", "\x7F", "\x7F"},
        Row{"two bytes", "\xC2\x80\xC3\xA4\xDF\xBF", "\xC2\x80\xC3\xA4\xDF\xBF"},
        Row{"three bytes", "\xE0\xA0\x80\xE2\x82\xAC\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD",
            "\xE0\xA0\x80\xE2\x82\xAC\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD"},
        Row{"four bytes", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        Row{"U+FFFE", "\xEF\xBF\xBE", R}, Row{"U+FFFF", "\xEF\xBF\xBF", R},
        Row{"U+1FFFE is allowed", "\xF0\x9F\xBF\xBE", "\xF0\x9F\xBF\xBE"},
        Row{"a continuation alone", "\x80", R}, Row{"two of them", "\xBF\x80", R R},
        Row{"Latin-1", "f\xFCr", "f" R "r"}, Row{"a lead alone", "\xC3", R},
        Row{"a lead before ASCII", "\xC3z", R "z"}, Row{"a lead before markup", "\xC3<", R "&lt;"},
        Row{"two of three bytes", "\xE2\x82", R},
        Row{"two of three, then ASCII", "\xE2\x82z", R "z"},
        Row{"one of three, then a lead", "\xE2\xC3\xA4", R "\xC3\xA4"},
        Row{"three of four", "\xF0\x9F\x98", R},
        Row{"three of four, then ASCII", "\xF0\x9F\x98z", R "z"},
        Row{"overlong slash in two bytes", "\xC0\xAF", R R},
        Row{"overlong less-than", "\xC1\xBC", R R},
        Row{"overlong in three bytes", "\xE0\x80\xAF", R R R},
        Row{"overlong in four bytes", "\xF0\x80\x80\xAF", R R R R},
        Row{"the last overlong of three", "\xE0\x9F\xBF", R R R},
        Row{"the last overlong of four", "\xF0\x8F\xBF\xBF", R R R R},
        Row{"high surrogate", "\xED\xA0\x80", R R R}, Row{"low surrogate", "\xED\xBF\xBF", R R R},
        Row{"a surrogate pair", "\xED\xA0\xBD\xED\xB8\x80", R R R R R R},
        Row{"above U+10FFFF", "\xF4\x90\x80\x80", R R R R},
        Row{"five-byte lead", "\xF8\x88\x80\x80\x80", R R R R R},
        Row{"FE and FF", "\xFE\xFF", R R}));

#undef R

TEST(XmlBufferText, WhatStandsBehindTheTextIsNotRead) {
    const std::string_view euro = "\xE2\x82\xAC";
    EXPECT_EQ(AsText(euro.substr(0, 2)), "\xEF\xBF\xBD");
    EXPECT_EQ(AsText(euro.substr(0, 1)), "\xEF\xBF\xBD");
}

TEST(XmlBufferText, AllPairsOfBytesMakeAWellFormedDocument) {
    std::string all;
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            all += static_cast<char>(first);
            all += static_cast<char>(second);
            all += '.';
        }
    }
    const std::string document =
        "<CIM CIMVERSION=\"" + AsText(all) + "\" DTDVERSION=\"2.0\"></CIM>";
    EXPECT_THAT(test_support::DtdProblems(document),
                testing::ElementsAre("CIM holds instead of (MESSAGE|DECLARATION)"));
}

std::string AsAttribute(std::string_view bytes) {
    TextOutput output;
    XmlBuffer xml(output);
    xml.Attribute(bytes);
    xml.Flush();
    return output.text;
}

TEST(XmlBufferAttribute, TabsAndLineEndsAreCharacterReferences) {
    EXPECT_EQ(AsAttribute("\t"), "&#9;");
    EXPECT_EQ(AsAttribute("a\nb\r\n"), "a&#10;b&#13;&#10;");
    EXPECT_EQ(AsAttribute("12345678\n12345678\"<"), "12345678&#10;12345678&quot;&lt;");
    EXPECT_EQ(AsAttribute("plain \xC3\xA4"), "plain \xC3\xA4");
    EXPECT_EQ(AsAttribute(""), "");
}

TEST(XmlBufferAttribute, AndTextReachAParserByteForByte) {
    std::string all;
    for (int before = 0; before < 10; ++before) {
        for (const char* part : {"\t", "\n", "\r", "\r\n", "\n\r", " ", "  ", "\"", "'", "<", ">",
                                 "&", "]]>", "&#10;", "\xC3\xA4", "\xF0\x9F\x98\x80"}) {
            all += std::string(static_cast<std::size_t>(before), 'x') + part;
        }
    }
    const auto document =
        test_support::ReadXml("<A B=\"" + AsAttribute(all) + "\">" + AsText(all) + "</A>");
    ASSERT_TRUE(document.has_value());
    EXPECT_EQ(document->Find("A")->Attribute("B"), all);
    EXPECT_EQ(document->Find("A")->text, all);
}

TEST(XmlBufferText, ASequenceMayStandAtTheEndOfAPortion) {
    for (std::size_t before = 65'530; before <= 65'537; ++before) {
        const std::string plain(before, 'x');
        EXPECT_TRUE(AsText(plain + "\xF0\x9F\x98\x80<\xE2\x82\xAC") ==
                    plain + "\xF0\x9F\x98\x80&lt;\xE2\x82\xAC")
            << before;
    }
}

TEST(XmlBufferMarkup, PortionsOfAnySizeArriveInOrder) {
    TextOutput output;
    XmlBuffer xml(output);
    std::string expected;
    for (std::size_t size : {1UL, 65'535UL, 65'536UL, 1UL, 200'000UL, 7UL, 65'528UL}) {
        const std::string part(size, static_cast<char>('a' + expected.size() % 23));
        xml.Markup(part);
        expected += part;
        xml.Number(size);
        expected += std::to_string(size);
    }
    xml.Flush();
    EXPECT_TRUE(output.text == expected);
}

TEST(XmlBufferMarkup, WhatWasJustWrittenCanBeReadUntilItIsFlushed) {
    TextOutput output;
    XmlBuffer xml(output);
    xml.Markup("before");
    const std::uint64_t position = xml.Position();
    xml.Markup("<a>");
    xml.Text("&");
    EXPECT_EQ(xml.Since(position), "<a>&amp;");
    xml.Flush();
    EXPECT_EQ(xml.Since(position), "");
    const std::uint64_t afterFlush = xml.Position();
    xml.Markup("next");
    EXPECT_EQ(xml.Since(afterFlush), "next");
    EXPECT_EQ(xml.Since(position), "");
}

TEST(XmlBufferMarkup, NumbersAreDecimal) {
    TextOutput output;
    XmlBuffer xml(output);
    xml.Number(std::numeric_limits<std::int64_t>::min());
    xml.Markup(" ");
    xml.Number(std::numeric_limits<std::uint64_t>::max());
    xml.Flush();
    EXPECT_EQ(output.text, "-9223372036854775808 18446744073709551615");
}

TEST(XmlBufferMarkup, RestartForgetsWhatIsHereAndWhatTheOutputHas) {
    TextOutput output;
    XmlBuffer xml(output);
    xml.Markup(std::string(100'000, 'x'));
    xml.Restart();
    xml.Markup("new");
    xml.Flush();
    EXPECT_EQ(output.text, "new");
}

} // namespace
