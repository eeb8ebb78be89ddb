// Every mistake is told with its place and in words. The texts count lines and columns from 1.

#include "ReadText.hpp"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

struct Mistake {
    const char* text;
    const char* error; ///< behind "test.mof:"
};

template <std::size_t Count>
void ExpectAllTold(const Mistake (&mistakes)[Count]) {
    for (const Mistake& mistake : mistakes) {
        EXPECT_EQ(test::ErrorOf(mistake.text), std::string("test.mof:") + mistake.error)
            << mistake.text;
    }
}

constexpr Mistake inGrammar[] = {
    {"clas A { };", "1:1: expected a class, a qualifier or a #pragma, found 'clas'"},
    {"class A { };;", "1:13: expected a class, a qualifier or a #pragma, found ';'"},
    {"class A { };\n\n  }", "3:3: expected a class, a qualifier or a #pragma, found '}'"},
    {"#prag", "1:1: expected a class, a qualifier or a #pragma, found '#'"},
    {"[Abstract]\n qualifier", "2:2: expected the word class after the qualifiers, found "
                               "'qualifier'"},
    {"[Abstract] classy A { };", "1:12: expected the word class after the qualifiers, found "
                                 "'classy'"},
    {"class", "1:6: expected the name of the class, found the end of the text"},
    {"class 1A { };", "1:7: expected the name of the class, found '1A'"},
    {"class A : { };", "1:11: expected the name of the superclass, found '{'"},
    {"class A as B { };", "1:12: expected an alias that begins with $, found 'B'"},
    {"class A\n;", "2:1: expected '{' before the class body, found ';'"},
    {"class A { }", "1:12: expected ';' after the class, found the end of the text"},
    {"class A {\n\tstring X;\n", "3:1: expected a property, a method or '}', found the end of the "
                                 "text"},
    {"class A { [Key] };", "1:17: expected a property, a method or '}', found '}'"},
    {"class A { string; };", "1:17: expected a name after the type, found ';'"},
    {"class A { string X }; ", "1:20: expected ';' after the property, found '}'"},
    {"class A { string X[ };", "1:21: expected ']' after the array size, found '}'"},
    {"class A { string X = ; };", "1:22: expected a value, found ';'"},
    {"class A { string X = $Y; };", "1:22: expected a value, found '$'"},
    {"class A { uint8 X[] = {1, }; };", "1:27: expected a value, found '}'"},
    {"class A { uint8 X[] = {1 2}; };", "1:26: expected ',' or '}' after the value, found '2'"},
    {"class A { string M(uint8); };", "1:25: expected a name after the type, found ')'"},
    {"class A { string M(uint8 P,); };", "1:28: expected a type, found ')'"},
    {"class A { string M(uint8 P = 1); };", "1:28: expected ',' or ')' after the parameter, found "
                                            "'='"},
    {"class A { string M() };", "1:22: expected ';' after the method, found '}'"},
    {"[] class A { };", "1:2: expected a qualifier, found ']'"},
    {"[Abstract, ] class A { };", "1:12: expected a qualifier, found ']'"},
    {"[Abstract Provider] class A { };", "1:11: expected ',' or ']' after the qualifier, found "
                                         "'Provider'"},
    {"[Abstract(] class A { };", "1:11: expected a value, found ']'"},
    {"[Abstract(true] class A { };", "1:15: expected ')', found ']'"},
    {"[Abstract : ] class A { };", "1:13: expected a flavor, found ']'"},
    {"qualifier : string, scope(any);", "1:11: expected the name of the qualifier, found ':'"},
    {"qualifier X string, scope(any);", "1:13: expected ':' and the type of the qualifier, found "
                                        "'string'"},
    {"qualifier X : ;", "1:15: expected a type, found ';'"},
    {"qualifier X : string;", "1:21: expected ',' and the scope of the qualifier, found ';'"},
    {"qualifier X : string, flavor(any);", "1:23: expected the scope of the qualifier, found "
                                           "'flavor'"},
    {"qualifier X : string, scope any;", "1:29: expected '(', found 'any'"},
    {"qualifier X : string, scope();", "1:29: expected a scope, found ')'"},
    {"qualifier X : string, scope(any), Key;", "1:35: expected the flavor of the qualifier, found "
                                               "'Key'"},
    {"qualifier X : string, scope(any)", "1:33: expected ';' after the qualifier, found the end of "
                                         "the text"},
    {"#pragma 7", "1:9: expected the name of the pragma, found '7'"},
    {"#pragma include file", "1:17: expected '(', found 'file'"},
    {"#pragma include (file)", "1:18: expected a text in double quotes, found 'file'"},
    {"instance of A { };", "1:1: instances are not supported, only classes and qualifiers"},
    {"class A { };\n[Description(\"d\")] instance of A { };",
     "2:20: instances are not supported, only classes and qualifiers"},
};
TEST(MofMistakes, InTheGrammarAreToldWithTheirPlace) {
    ExpectAllTold(inGrammar);
}

constexpr Mistake inLiterals[] = {
    {"class A { /* }; // */ string", "1:29: expected a name after the type, found the end of the "
                                     "text"},
    {"class A {\n  /* };\n", "2:3: the comment that begins here is not closed"},
    {"class A { string X = \"a\n\"; };", "1:22: the string that begins here is not closed on its "
                                         "line"},
    {"class A { string X = \"a\\", "1:22: the string that begins here is not closed on its line"},
    {"class A { char16 X = 'a", "1:22: the character that begins here is not closed on its line"},
    {"class A { string X = \"a\xFF\"; };", "1:24: expected a UTF-8 character, found '\\xFF'"},
    {"class A { string X = \"\xC3\"; };", "1:23: expected a UTF-8 character, found '\\xC3'"},
    {"class A { \xC3 X; };", "1:11: expected a property, a method or '}', found '\\xC3'"},
    {"class A { string X = \"ab\\q\"; };", "1:25: unknown escape '\\q'"},
    {"class A { string X = \"a\\xg\"; };", "1:24: expected a hexadecimal digit after '\\x'"},
    {"class A { string X = \"a\" \"\\x0\"; };", "1:27: '\\x0' stands for no character"},
    {"class A { string X = \"\\xD83D\"; };", "1:23: '\\xD83D' stands for no character"},
    {"class A { string X = \"\\xDE00\"; };", "1:23: '\\xDE00' stands for no character"},
    {"class A { string X = \"\\xD83D\\x41\"; };", "1:23: '\\xD83D\\x41' stands for no character"},
    {"class A { char16 X = 'ab'; };", "1:22: a char16 holds exactly one character of 16 bits"},
    {"class A { char16 X = ''; };", "1:22: a char16 holds exactly one character of 16 bits"},
    {"class A { char16 X = '\\xD83D\\xDE00'; };", "1:22: a char16 holds exactly one character of "
                                                  "16 bits"},
    {"class A { uint8 X = 08; };", "1:21: '08' is not a whole number"},
    {"class A { uint8 X = 12b; };", "1:21: '12b' is not a whole number"},
    {"class A { uint8 X = 0x; };", "1:21: '0x' is not a whole number"},
    {"class A { uint8 X = 1.5; };", "1:21: '1.5' is not a whole number"},
    {"class A { uint8 X = 1e3; };", "1:21: '1e3' is not a whole number"},
    {"class A { uint8 X = 256; };", "1:21: '256' does not fit in uint8"},
    {"class A { uint8 X = -1; };", "1:21: '-1' does not fit in uint8"},
    {"class A { sint8 X = -129; };", "1:21: '-129' does not fit in sint8"},
    {"class A { sint8 X = 128; };", "1:21: '128' does not fit in sint8"},
    {"class A { sint64 X = 9223372036854775808; };",
     "1:22: '9223372036854775808' does not fit in sint64"},
    {"class A { uint64 X = 18446744073709551616; };",
     "1:22: '18446744073709551616' is too big for any type"},
    {"class A { real32 X = 1e39; };", "1:22: '1e39' does not fit in real32"},
    {"class A { real64 X = 1e999; };", "1:22: '1e999' is out of range"},
    {"class A { real64 X = 1.2.3; };", "1:22: '1.2.3' is not a number"},
    {"class A { datetime X = \"today\"; };", "1:24: 'today' is not a date and time"},
};
TEST(MofMistakes, InLiteralsAreToldWithTheirPlace) {
    ExpectAllTold(inLiterals);
}

constexpr Mistake inTypes[] = {
    {"class A { text X; };", "1:11: unknown type 'text'"},
    {"class A { ref X; };", "1:11: unknown type 'ref'"},
    {"class A { text M(); };", "1:11: unknown type 'text'"},
    {"class A { string M(text P); };", "1:20: unknown type 'text'"},
    {"qualifier X : text, scope(any);", "1:15: unknown type 'text'"},
    {"class A { uint8 X[0]; };", "1:19: '0' is not the size of an array"},
    {"class A { uint8 X[-1]; };", "1:19: '-1' is not the size of an array"},
    {"class A { uint8 X[4294967296]; };", "1:19: '4294967296' is not the size of an array"},
    {"class A { uint8 X[4k]; };", "1:19: '4k' is not a whole number"},
    {"class A { uint8 X = \"1\"; };", "1:21: expected a value of type uint8, found a string"},
    {"class A { string X = 1; };", "1:22: expected a value of type string, found a number"},
    {"class A { boolean X = 1; };", "1:23: expected a value of type boolean, found a number"},
    {"class A { string X = true; };", "1:22: expected a value of type string, found a boolean"},
    {"class A { string X = 'a'; };", "1:22: expected a value of type string, found a character"},
    {"class A { real32 X = null; datetime Y = 1; };",
     "1:41: expected a value of type datetime, found a number"},
    {"class A { uint8 X[] = {1, null}; };", "1:27: expected a value of type uint8, found null"},
    {"class A { uint8 X = {1}; };", "1:21: expected a single value, found an array"},
    {"class A { uint8 X[] = 1; };", "1:23: expected an array in braces"},
    {"class A { A REF X = \"a\"; };", "1:21: a reference can have no value but null"},
    {"class A { A REF X[]; };", "1:11: a property cannot be an array of references"},
    {"class A { A REF M(); };", "1:11: a method cannot return a reference"},
};
TEST(MofMistakes, InTypesAreToldWithTheirPlace) {
    ExpectAllTold(inTypes);
}

constexpr Mistake inQualifiers[] = {
    {"class A { [Kee] string X; };",
     "1:12: unknown qualifier 'Kee'; name the file that declares it before this one"},
    {"[Key] class A { };", "1:2: qualifier Key cannot stand on a class"},
    {"[Abstract, Key, Association] class A { };", "1:12: qualifier Key cannot stand on an "
                                                  "association"},
    {"[Indication, Association(false)] class A { };",
     "1:14: qualifier Association cannot stand on an indication"},
    {"class A { [Abstract] string X; };", "1:12: qualifier Abstract cannot stand on a property"},
    {"class A { [MaxLen] A REF X; };", "1:12: qualifier MaxLen cannot stand on a reference"},
    {"class A { [key] string M(); };", "1:12: qualifier key cannot stand on a method"},
    {"class A { string M([In, Key] string P); };", "1:25: qualifier Key cannot stand on a "
                                                   "parameter"},
    {"class A { [Key, MaxLen, KEY] string X; };", "1:25: qualifier KEY stands here twice"},
    {"class A { [Key(\"yes\")] string X; };", "1:16: expected a value of type boolean, found a "
                                              "string"},
    {"class A { [Values(\"a\")] string X; };", "1:19: expected an array in braces"},
    {"class A { [Description {\"a\"}] string X; };", "1:24: expected a single value, found an "
                                                     "array"},
    {"class A { [Key : Sticky] string X; };", "1:18: unknown flavor 'Sticky'"},
    {"qualifier KEY : string, scope(any);", "1:11: qualifier KEY is declared already"},
    {"qualifier X : string, scope(everything);", "1:29: unknown scope 'everything'"},
    {"qualifier X : string, scope(any), flavor(Amended);", "1:42: unknown flavor 'Amended'"},
    {"qualifier X : string, scope(any), flavor(Restricted, ToSubclass);",
     "1:54: flavor ToSubclass contradicts Restricted"},
    {"qualifier X : boolean = 1, scope(any);", "1:25: expected a value of type boolean, found a "
                                               "number"},
};
TEST(MofMistakes, InQualifiersAreToldWithTheirPlace) {
    ExpectAllTold(inQualifiers);
}

constexpr Mistake inClasses[] = {
    {"class A { };\nclass a { };", "2:7: class a is declared already"},
    {"class A : B { };",
     "1:11: unknown superclass 'B'; name the file that declares it before this one"},
    {"class A : A { };",
     "1:11: unknown superclass 'A'; name the file that declares it before this one"},
    {"class A { string X; uint8 x; };", "1:27: property x is declared already"},
    {"class A { string M(); string M(uint8 P); };", "1:30: method M is declared already"},
    {"class A { string M(uint8 P, uint8 p); };", "1:35: parameter p is declared already"},
    {"class A { B REF X; };", "1:11: unknown class 'B'"},
    {"class A { string M(B REF P); };", "1:20: unknown class 'B'"},
    {"class A { string X; }; class B : A { string X; };",
     "1:45: property X is inherited from A, the qualifier Override is missing"},
    {"class A { string M(); }; class B : A { }; class C : B { string M(); };",
     "1:64: method M is inherited from A, the qualifier Override is missing"},
    {"class A { [Override(\"X\")] string X; };", "1:12: there is no property X to override"},
    {"class A { [Override(\"M\")] string M(); };", "1:12: there is no method M to override"},
    {"class A { string X; }; class B : A { [Override] uint8 X; };",
     "1:49: what is overridden has the type string"},
    {"class A { string X[]; }; class B : A { [Override] string X; };",
     "1:51: what is overridden has the type string[]"},
    {"class A { boolean M(); }; class B : A { [Override] uint8 M(); };",
     "1:52: what is overridden has the type boolean"},
    {"class A { [Key] string X; }; class B : A { [Override, Key(false)] string X; };",
     "1:55: qualifier Key is inherited and cannot be overridden"},
    {"[Association] class A { }; [Association(false)] class B : A { };",
     "1:29: qualifier Association is inherited and cannot be overridden"},
};
TEST(MofMistakes, InClassesAreToldWithTheirPlace) {
    ExpectAllTold(inClasses);
}

TEST(MofMistakes, WhatWasDeclaredBeforeStays) {
    cimserver::mof::Schema schema = test::Read("class A { };");
    EXPECT_THROW(schema.AddText("qualifier Q : string, scope(any); class B { }; class C {", "x"),
                 cimserver::mof::MofError);
    EXPECT_THROW(schema.AddText("class D { }; class D { };", "x"), cimserver::mof::MofError);
    EXPECT_NE(schema.FindClass("A"), nullptr);
    EXPECT_NE(schema.FindClass("B"), nullptr);
    EXPECT_EQ(schema.FindClass("C"), nullptr);
    EXPECT_NE(schema.FindClass("D"), nullptr);
    EXPECT_NE(schema.FindQualifier("Q"), nullptr);
    schema.AddText("class C : D { };", "x");
    EXPECT_EQ(schema.Subclasses("", true).size(), 4U);
}

TEST(MofMistakes, LinesEndWithLineFeedsAndColumnsAreBytes) {
    EXPECT_EQ(test::ErrorOf("\r\n\n\t x"),
              "test.mof:3:3: expected a class, a qualifier or a #pragma, found 'x'");
    EXPECT_EQ(test::ErrorOf("/* \xC3\xA4\n */ // \xC3\xA4\n/*\xC3\xA4*/x"),
              "test.mof:3:7: expected a class, a qualifier or a #pragma, found 'x'");
}

} // namespace
