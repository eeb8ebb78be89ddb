// Bodies made to hurt: they are refused, quickly and without an operation.
#include "Support.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using cimxml_test::Ask;
using cimxml_test::FakeExecutor;

std::string Outcome(const std::string& body) {
    FakeExecutor executor;
    const auto reply = Ask(body, executor);
    EXPECT_FALSE(executor.last.has_value());
    return std::to_string(reply.status.httpStatus) + " " + reply.Header("CIMError");
}

std::string Repeated(std::string_view part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

std::string Nested(std::size_t depth) {
    return Repeated("<a>", depth) + Repeated("</a>", depth);
}

std::string WithAttributes(int count) {
    std::string text = "<a";
    for (int i = 0; i < count; ++i) {
        text += " a" + std::to_string(i) + "=''";
    }
    return text + "/>";
}

const std::string refused = "400 request-not-valid";
const std::string otherwise = "400 request-not-loosely-valid";

TEST(HostileBody, DocumentTypesAreRefused) {
    EXPECT_EQ(Outcome("<!DOCTYPE CIM><CIM/>"), refused);
    EXPECT_EQ(Outcome("<!DOCTYPE CIM SYSTEM \"http://127.0.0.1:9/x.dtd\"><CIM/>"), refused);
    EXPECT_EQ(Outcome("<!DOCTYPE a [<!ENTITY x \"y\">]><a>&x;</a>"), refused);
}

TEST(HostileBody, EntitiesThatMultiplyAreNeverExpanded) {
    std::string body = "<!DOCTYPE a [<!ENTITY e0 \"0123456789\">";
    for (int i = 1; i < 12; ++i) {
        const std::string before = "&e" + std::to_string(i - 1) + ";";
        body += "<!ENTITY e" + std::to_string(i) + " \"" + Repeated(before, 10) + "\">";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Outcome(body + "]><a>&e11;</a>"), refused);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(HostileBody, ExternalEntitiesAreNeverRead) {
    EXPECT_EQ(Outcome("<!DOCTYPE a [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><a>&x;</a>"),
              refused);
}

TEST(HostileBody, DepthIsBounded) {
    EXPECT_EQ(Outcome(Nested(64)), otherwise);
    EXPECT_EQ(Outcome(Nested(65)), refused);
    EXPECT_EQ(Outcome(Nested(100'000)), refused);
    EXPECT_EQ(Outcome(Repeated("<a>", 100'000)), refused);
}

TEST(HostileBody, AttributesAreBounded) {
    EXPECT_EQ(Outcome(WithAttributes(32)), otherwise);
    EXPECT_EQ(Outcome(WithAttributes(33)), refused);
    EXPECT_EQ(Outcome(WithAttributes(50'000)), refused);
}

TEST(HostileBody, ElementsAreBounded) {
    EXPECT_EQ(Outcome("<a>" + Repeated("<b/>", 19'999) + "</a>"), otherwise);
    EXPECT_EQ(Outcome("<a>" + Repeated("<b/>", 20'000) + "</a>"), refused);
    EXPECT_EQ(Outcome("<a>" + Repeated("<b/>", 200'000) + "</a>"), refused);
}

TEST(HostileBody, LongTextIsJustText) {
    EXPECT_EQ(Outcome("<a>" + Repeated("&amp;x", 150'000) + "</a>"), otherwise);
    EXPECT_EQ(Outcome("<a b='" + std::string(1'000'000, 'x') + "'/>"), otherwise);
}

TEST(HostileBody, EveryPrefixOfARequestIsRefused) {
    const std::string whole = test_support::IntrinsicCall(
        "GetInstance", R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="A">)"
                       R"(<KEYBINDING NAME="K"><KEYVALUE VALUETYPE="numeric">1</KEYVALUE>)"
                       R"(</KEYBINDING></INSTANCENAME></IPARAMVALUE>)");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ASSERT_EQ(Outcome(whole.substr(0, length)), "400 request-not-well-formed") << length;
    }
}

void ExpectNoHarmByAnyChange(const std::string& whole) {
    int answered = 0;
    int refusedCount = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\0', '<', '>', '&', '"', '/', '\x80', 'x', ' '}) {
            std::string changed = whole;
            changed[at] = byte;
            FakeExecutor executor;
            const int status = Ask(changed, executor).status.httpStatus;
            ASSERT_TRUE(status == 200 || status == 400 || status == 501) << changed;
            ++(status == 200 ? answered : refusedCount);
        }
    }
    EXPECT_GT(answered, 0);
    EXPECT_GT(refusedCount, 0);
}

TEST(HostileBody, NoChangeOfOneByteDoesHarm) {
    ExpectNoHarmByAnyChange(test_support::IntrinsicCall(
        "GetInstance", R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="A"/>)"
                       R"(</IPARAMVALUE>)"));
}

TEST(HostileBody, NoChangeOfOneByteOfAnInstanceDoesHarm) {
    ExpectNoHarmByAnyChange(test_support::IntrinsicCall(
        "CreateInstance", R"(<IPARAMVALUE NAME="NewInstance"><INSTANCE CLASSNAME="A">)"
                          R"(<PROPERTY NAME="P" TYPE="uint8"><VALUE>1</VALUE></PROPERTY>)"
                          R"(<PROPERTY.ARRAY NAME="L" TYPE="datetime"><VALUE.ARRAY>)"
                          R"(<VALUE>20250102030405.000000+000</VALUE></VALUE.ARRAY>)"
                          R"(</PROPERTY.ARRAY></INSTANCE></IPARAMVALUE>)"));
}

TEST(HostileBody, NoChangeOfOneByteOfAMethodCallDoesHarm) {
    ExpectNoHarmByAnyChange(test_support::ExtrinsicCall(
        "Run", R"(<INSTANCENAME CLASSNAME="A"/>)",
        R"(<PARAMVALUE NAME="P" PARAMTYPE="real32"><VALUE>1.5</VALUE></PARAMVALUE>)"
        R"(<PARAMVALUE NAME="R"><VALUE.REFERENCE><CLASSNAME NAME="A"/></VALUE.REFERENCE>)"
        R"(</PARAMVALUE>)"));
}

} // namespace
