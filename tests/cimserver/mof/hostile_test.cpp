// Texts made to break a reader: each is refused in a sentence, quickly and on a small stack.

#include "ReadText.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <pthread.h>

namespace {

using test::ErrorOf;

std::string Repeat(const std::string& text, int times) {
    std::string repeated;
    for (int i = 0; i < times; ++i) {
        repeated += text;
    }
    return repeated;
}

void* Run(void* work) {
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
}

/// Runs the work on a thread with that much stack; one that needs more ends the program.
void OnStackOf(std::size_t bytes, std::function<void()> work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, &Run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(MofHostile, DeepNestingTakesNoMoreStack) {
    constexpr int deep = 100000;
    OnStackOf(512UL * 1024, [] {
        EXPECT_EQ(ErrorOf(Repeat("/* ", deep)),
                  "test.mof:1:1: the comment that begins here is not closed");
        EXPECT_EQ(ErrorOf("class A { };" + Repeat("/**/", deep)), "");
        EXPECT_EQ(ErrorOf(Repeat("[", deep)), "test.mof:1:2: expected a qualifier, found '['");
        EXPECT_EQ(ErrorOf("class A { uint8 X[] = " + Repeat("{", deep)),
                  "test.mof:1:24: expected a value, found '{'");
        EXPECT_EQ(ErrorOf("class A { string M" + Repeat("(", deep)),
                  "test.mof:1:20: expected a type, found '('");
        EXPECT_EQ(ErrorOf(Repeat("class A { ", deep)),
                  "test.mof:1:19: expected ';' after the property, found '{'");
    });
}

TEST(MofHostile, ALongTextIsReadOnTheSameStack) {
    OnStackOf(512UL * 1024, [] {
        std::string text = "class A { string X = \"a\"";
        text += Repeat("\n\"b\"", 100000) + "; uint8 Y[] = {1" + Repeat(",1", 100000) + "}; };";
        const cimserver::mof::Schema schema = test::Read(text);
        const OpenWBEM::CIMClass& cimClass = *schema.FindClass("A");
        EXPECT_EQ(cimClass.getProperty("X").getValue().toString().length(), 100001U);
        EXPECT_EQ(cimClass.getProperty("Y").getValue().getArraySize(), 100001U);
    });
}

TEST(MofHostile, AMillionOpenCommentsAndStringsAreRefused) {
    EXPECT_EQ(ErrorOf(Repeat("\"", 1000001)),
              "test.mof:1:1: expected a class, a qualifier or a #pragma, found '\"'");
    EXPECT_EQ(ErrorOf("[Description(" + Repeat("\"", 1000001)),
              "test.mof:1:1000014: the string that begins here is not closed on its line");
    EXPECT_EQ(ErrorOf("class A { string X = \"" + std::string(1000000, 'x')),
              "test.mof:1:22: the string that begins here is not closed on its line");
}

TEST(MofHostile, HugeNumbersAreRefusedAndCutShortInTheMessage) {
    const std::string digits(1000000, '9');
    const std::string shown = "'" + digits.substr(0, 40) + "...'";
    EXPECT_EQ(ErrorOf("class A { uint64 X = " + digits + "; };"),
              "test.mof:1:22: " + shown + " is too big for any type");
    EXPECT_EQ(ErrorOf("class A { uint64 X = -" + digits + "; };"),
              "test.mof:1:22: '-" + digits.substr(0, 39) + "...' is too big for any type");
    EXPECT_EQ(ErrorOf("class A { real64 X = " + digits + "; };"),
              "test.mof:1:22: " + shown + " is out of range");
    EXPECT_EQ(ErrorOf("class A { uint8 X[" + digits + "]; };"),
              "test.mof:1:19: " + shown + " is too big for any type");
}

TEST(MofHostile, NulIsRefusedWhereverItStands) {
    using namespace std::string_literals;
    EXPECT_EQ(ErrorOf("\0"s), "test.mof:1:1: expected a class, a qualifier or a #pragma, found "
                              "'\\x00'");
    EXPECT_EQ(ErrorOf("class A\0 { };"s), "test.mof:1:8: expected '{' before the class body, found "
                                          "'\\x00'");
    EXPECT_EQ(ErrorOf("[Description(\"a\0b\")] class A { };"s),
              "test.mof:1:16: expected a UTF-8 character, found '\\x00'");
    EXPECT_EQ(ErrorOf("[Description(\"a\\\0b\")] class A { };"s),
              "test.mof:1:14: the string that begins here is not closed on its line");
}

TEST(MofHostile, EveryByteAloneAndEveryCutOfAGoodTextIsToldOrRead) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string error = ErrorOf(std::string(1, static_cast<char>(byte)));
        const bool isBlank = byte == ' ' || (byte >= '\t' && byte <= '\r');
        EXPECT_EQ(error.empty(), isBlank) << byte;
    }
    const std::string good =
        "#pragma locale(\"en\")\nqualifier Q : uint8[] = {1, 0x2}, scope(any), flavor(Restricted);"
        "[Abstract, Q {1}] class A as $A { [Key : ToSubclass] string X = \"a\\x41\" 'b'; A REF Y; "
        "uint8 M([In] string P[4]); };";
    for (std::size_t length = 0; length <= good.size(); ++length) {
        const std::string error = ErrorOf(good.substr(0, length));
        EXPECT_TRUE(error.empty() || error.rfind("test.mof:", 0) == 0) << length << ": " << error;
    }
}

TEST(MofHostile, ManyQualifiersAndParametersAreRead) {
    std::string text = "class A { string M(uint8 P0";
    for (int i = 1; i < 2000; ++i) {
        text += ", uint8 P" + std::to_string(i);
    }
    const cimserver::mof::Schema schema = test::Read(text + "); };");
    EXPECT_EQ(schema.FindClass("A")->getMethod("M").getParameters().size(), 2000U);
}

} // namespace
