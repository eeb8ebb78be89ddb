// What a text may look like, and what a class holds afterwards.

#include "ReadText.hpp"

#include <gtest/gtest.h>

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMDataType;
using OpenWBEM::CIMMethod;
using OpenWBEM::CIMParameterArray;
using OpenWBEM::CIMProperty;
using test::Read;

std::vector<std::string> Names(const std::vector<const CIMClass*>& classes) {
    std::vector<std::string> names;
    for (const CIMClass* cimClass : classes) {
        names.emplace_back(cimClass->getName().c_str());
    }
    return names;
}

TEST(MofClass, AnEmptyTextAndOneOfBlanksAndCommentsDeclareNothing) {
    for (const char* text : {"", " \t\r\n", "// a", "// a\n", "/* a\n* / */", "/**/",
                             "\xEF\xBB\xBF", "\xEF\xBB\xBF /***/ // class A {"}) {
        EXPECT_TRUE(Read(text).Subclasses("", true).empty()) << text;
    }
}

TEST(MofClass, WordsOfTheLanguageMayHaveAnyCase) {
    const auto schema = Read("CLASS A { UINT8 X = NULL; }; class B { a ref Y; STRING Z(); };"
                             "[ASSOCIATION] CLASS C : b { };");
    EXPECT_EQ(schema.FindClass("A")->getProperty("X").getDataType().getType(), CIMDataType::UINT8);
    EXPECT_TRUE(schema.FindClass("C")->isAssociation());
}

TEST(MofClass, BlanksAndCommentsMayStandBetweenAllTokensOrNowhere) {
    const char* tight = "[Key(false):ToSubclass]class A{};";
    EXPECT_NE(test::ErrorOf(tight), "") << "Key cannot stand on a class";
    const auto schema = Read("[Description(\"d\")]class A{[Key]string X;uint8 Y[2]={1,2};"
                             "boolean M([In]string P,[Out]uint8 Q[]);};"
                             "[ /**/ Description /**/ ( /**/ \"d\" /**/ ) /**/ ] /**/ class /**/ B "
                             "/**/ : /**/ A /**/ { // }\n /**/ string /**/ Z /**/ ; /**/ } /**/ ;");
    EXPECT_EQ(schema.FindClass("A")->getAllProperties().size(), 2U);
    EXPECT_EQ(schema.FindClass("B")->getAllProperties().size(), 3U);
    EXPECT_EQ(schema.FindClass("B")->getAllMethods().size(), 1U);
}

TEST(MofClass, APropertyHasTypeDefaultAndOrigin) {
    const auto schema = Read("class Base_A { [Key, Description(\"d\")] string X = \"x\"; };");
    const CIMProperty property = schema.FindClass("Base_A")->getProperty("X");
    EXPECT_EQ(property.getDataType().getType(), CIMDataType::STRING);
    EXPECT_STREQ(property.getValue().toString().c_str(), "x");
    EXPECT_STREQ(property.getOriginClass().c_str(), "Base_A");
    EXPECT_FALSE(property.getPropagated());
    EXPECT_TRUE(property.isKey());
    EXPECT_TRUE(schema.FindClass("Base_A")->isKeyed());
    EXPECT_EQ(property.getQualifiers().size(), 2U);
}

TEST(MofClass, EveryTypeHasItsName) {
    const char* types[] = {"uint8",  "sint8",  "uint16", "sint16", "uint32",  "sint32",   "uint64",
                           "sint64", "real32", "real64", "string", "boolean", "datetime", "char16"};
    for (const char* type : types) {
        const auto schema = Read(std::string("class A { ") + type + " X; " + type + " M(); };");
        EXPECT_STREQ(schema.FindClass("A")->getProperty("X").getDataType().toString().c_str(),
                     type);
        EXPECT_STREQ(schema.FindClass("A")->getMethod("M").getReturnType().toString().c_str(),
                     type);
    }
}

TEST(MofClass, AReferenceNamesAClassInItsDeclaredSpelling) {
    const auto schema = Read("class Left { }; [Association] class Link { [Key] LEFT REF A; "
                             "link REF Self = null; };");
    const CIMClass& link = *schema.FindClass("Link");
    EXPECT_TRUE(link.isAssociation());
    EXPECT_TRUE(link.getProperty("A").isReference());
    EXPECT_STREQ(link.getProperty("A").getDataType().getRefClassName().c_str(), "Left");
    EXPECT_STREQ(link.getProperty("Self").getDataType().getRefClassName().c_str(), "Link");
    EXPECT_FALSE(schema.FindClass("Left")->isAssociation());
}

TEST(MofClass, APropertyMayBeCalledLikeAWordOfTheLanguage) {
    const auto schema = Read("class A { string Ref; uint8 Class = 1; boolean Qualifier; "
                             "string Ref2(); string Instance[]; };");
    EXPECT_EQ(schema.FindClass("A")->getAllProperties().size(), 4U);
    EXPECT_EQ(schema.FindClass("A")->getProperty("ref").getDataType().getType(),
              CIMDataType::STRING);
}

TEST(MofClass, NamesHoldLettersDigitsUnderscoresAndLettersOfOtherScripts) {
    const auto schema = Read("class _A1 { string B_2; string \xC3\x84rger; };");
    EXPECT_TRUE(schema.FindClass("_A1")->getProperty("\xC3\x84rger"));
}

TEST(MofClass, AMethodHasItsParametersInOrder) {
    const auto schema = Read("class A { }; class B { [Static] sint8 M([In] string P, [In(false), "
                             "Out] uint16 Q[], A REF R, A REF S[3]); };");
    const CIMMethod method = schema.FindClass("B")->getMethod("M");
    EXPECT_EQ(method.getReturnType().getType(), CIMDataType::SINT8);
    EXPECT_STREQ(method.getOriginClass().c_str(), "B");
    EXPECT_TRUE(method.hasTrueQualifier("Static"));
    const CIMParameterArray parameters = method.getParameters();
    ASSERT_EQ(parameters.size(), 4U);
    EXPECT_STREQ(parameters[0].getName().c_str(), "P");
    EXPECT_FALSE(parameters[0].getType().isArrayType());
    EXPECT_STREQ(parameters[1].getName().c_str(), "Q");
    EXPECT_TRUE(parameters[1].getType().isArrayType());
    EXPECT_STREQ(parameters[2].getType().getRefClassName().c_str(), "A");
    EXPECT_TRUE(parameters[3].getType().isArrayType());
    EXPECT_EQ(parameters[3].getType().getSize(), 3);
    EXPECT_EQ(method.getINParameters().size(), 3U);
    EXPECT_EQ(method.getOUTParameters().size(), 1U);
}

TEST(MofClass, AnAliasIsReadAndForgotten) {
    const auto schema = Read("class A as $Other { }; class B as $b : A { };");
    EXPECT_STREQ(schema.FindClass("B")->getSuperClass().c_str(), "A");
    EXPECT_EQ(schema.FindClass("Other"), nullptr);
}

TEST(MofClass, OtherPragmasAreIgnored) {
    const auto schema = Read("#pragma locale (\"en_US\")\n#PRAGMA namespace(\"root\" \"/x\") class "
                             "A { };");
    EXPECT_NE(schema.FindClass("A"), nullptr);
}

TEST(MofClass, AClassIsFoundRegardlessOfCase) {
    const auto schema = Read("class ZNX_One { };");
    ASSERT_NE(schema.FindClass("znx_ONE"), nullptr);
    EXPECT_STREQ(schema.FindClass("znx_ONE")->getName().c_str(), "ZNX_One");
    EXPECT_EQ(schema.FindClass("ZNX_Two"), nullptr);
    EXPECT_EQ(schema.FindClass(""), nullptr);
}

TEST(MofClass, SubclassesComeInTheOrderOfDeclaration) {
    const auto schema =
        Read("class Z { }; class A : z { }; class Y { }; class C : A { }; class B : "
             "Z { }; class D : Y { };");
    using List = std::vector<std::string>;
    EXPECT_EQ(Names(schema.Subclasses("", false)), (List{"Z", "Y"}));
    EXPECT_EQ(Names(schema.Subclasses("", true)), (List{"Z", "A", "Y", "C", "B", "D"}));
    EXPECT_EQ(Names(schema.Subclasses("z", false)), (List{"A", "B"}));
    EXPECT_EQ(Names(schema.Subclasses("Z", true)), (List{"A", "C", "B"}));
    EXPECT_EQ(Names(schema.Subclasses("C", true)), List{});
    EXPECT_EQ(Names(schema.Subclasses("Unknown", true)), List{});
}

TEST(MofClass, PointersStayValidWhileMoreIsRead) {
    cimserver::mof::Schema schema = Read("class First { };");
    const CIMClass* first = schema.FindClass("First");
    for (int i = 0; i < 1000; ++i) {
        schema.AddText("class C" + std::to_string(i) + " : First { };", "more.mof");
    }
    EXPECT_EQ(schema.FindClass("first"), first);
    EXPECT_STREQ(first->getName().c_str(), "First");
    EXPECT_EQ(schema.Subclasses("First", false).size(), 1000U);
}

} // namespace
