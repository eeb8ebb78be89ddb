// The check of answers finds what is wrong with them.
#include "support/DtdCheck.hpp"

#include "support/ContentModel.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using test_support::ContentModel;
using test_support::DtdProblems;
using test_support::PlainClientProblems;
using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;

std::string Answer(const std::string& inside) {
    return R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
           R"(<MESSAGE ID="1" PROTOCOLVERSION="1.0"><SIMPLERSP><IMETHODRESPONSE NAME="M">)" +
           inside + "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

TEST(DtdContentModel, SequencesNeedTheirOrder) {
    const ContentModel model("(A,B?,C*,D+)");
    EXPECT_TRUE(model.Fits({"A", "D"}));
    EXPECT_TRUE(model.Fits({"A", "B", "C", "C", "D", "D"}));
    EXPECT_FALSE(model.Fits({"A"}));
    EXPECT_FALSE(model.Fits({"D"}));
    EXPECT_FALSE(model.Fits({"A", "C", "B", "D"}));
    EXPECT_FALSE(model.Fits({"A", "B", "B", "D"}));
    EXPECT_FALSE(model.Fits({"A", "D", "E"}));
}

TEST(DtdContentModel, AChoiceIsOneOfItsParts) {
    const ContentModel model("(A|B+|(C,D))");
    EXPECT_TRUE(model.Fits({"A"}));
    EXPECT_TRUE(model.Fits({"B", "B"}));
    EXPECT_TRUE(model.Fits({"C", "D"}));
    EXPECT_FALSE(model.Fits({}));
    EXPECT_FALSE(model.Fits({"A", "B"}));
    EXPECT_FALSE(model.Fits({"A", "A"}));
    EXPECT_FALSE(model.Fits({"C"}));
}

TEST(DtdContentModel, ARepeatedChoiceMixes) {
    const ContentModel model("(Q*,(A|B)*,C*)");
    EXPECT_TRUE(model.Fits({}));
    EXPECT_TRUE(model.Fits({"Q", "B", "A", "B", "C"}));
    EXPECT_FALSE(model.Fits({"A", "Q"}));
    EXPECT_FALSE(model.Fits({"C", "A"}));
}

TEST(DtdContentModel, AChoiceOfRepetitionsTakesOneKindOnly) {
    const ContentModel model("(A*|B*|C?)");
    EXPECT_TRUE(model.Fits({}));
    EXPECT_TRUE(model.Fits({"A", "A", "A"}));
    EXPECT_TRUE(model.Fits({"B", "B"}));
    EXPECT_TRUE(model.Fits({"C"}));
    EXPECT_FALSE(model.Fits({"A", "B"}));
    EXPECT_FALSE(model.Fits({"C", "C"}));
}

TEST(DtdContentModel, ManyChildrenAreNoProblem) {
    EXPECT_TRUE(ContentModel("(A*)").Fits(Names(300'000, "A")));
}

TEST(DtdContentModel, ABrokenModelIsRefused) {
    for (const char* text : {"", "(A", "(A,B|C)", "(A,)", "()", "(A)x", "A)"}) {
        EXPECT_THROW(ContentModel{text}, std::invalid_argument) << text;
    }
}

TEST(DtdCheck, AValidAnswerHasNoProblem) {
    EXPECT_THAT(DtdProblems(Answer("")), IsEmpty());
    EXPECT_THAT(DtdProblems(Answer(R"(<ERROR CODE="1"/>)")), IsEmpty());
    EXPECT_THAT(
        DtdProblems(Answer(
            R"(<IRETURNVALUE><INSTANCE CLASSNAME="A"><QUALIFIER NAME="Q" TYPE="string"/>)"
            R"(<PROPERTY.ARRAY NAME="P" TYPE="uint8"><VALUE.ARRAY><VALUE>1</VALUE></VALUE.ARRAY>)"
            R"(</PROPERTY.ARRAY></INSTANCE></IRETURNVALUE>)")),
        IsEmpty());
}

TEST(DtdCheck, MethodResponsesAreKnown) {
    const std::string start =
        R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
        R"(<MESSAGE ID="1" PROTOCOLVERSION="1.0"><SIMPLERSP><METHODRESPONSE NAME="M">)";
    const std::string end = "</METHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
    const std::string parameter = R"(<PARAMVALUE NAME="P"><VALUE>x</VALUE></PARAMVALUE>)";
    const std::string value = R"(<RETURNVALUE PARAMTYPE="uint8"><VALUE>1</VALUE></RETURNVALUE>)";
    EXPECT_THAT(DtdProblems(start + value + parameter + parameter + end), IsEmpty());
    EXPECT_THAT(DtdProblems(start + end), IsEmpty());
    EXPECT_THAT(
        DtdProblems(start + parameter + value + end),
        ElementsAre(testing::StartsWith("METHODRESPONSE holds PARAMVALUE RETURNVALUE instead")));
    EXPECT_THAT(DtdProblems(start + "<RETURNVALUE></RETURNVALUE>" + end),
                ElementsAre("RETURNVALUE holds instead of (VALUE|VALUE.REFERENCE)"));
    EXPECT_THAT(DtdProblems(start + R"(<PARAMVALUE NAME="P" PARAMTYPE="text"></PARAMVALUE>)" + end),
                ElementsAre("PARAMVALUE attribute PARAMTYPE cannot be text"));
}

TEST(DtdCheck, ObjectsStandWithTheirPaths) {
    const std::string path = R"(<CLASSPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH>)"
                             R"(<NAMESPACE NAME="n"/></LOCALNAMESPACEPATH></NAMESPACEPATH>)"
                             R"(<CLASSNAME NAME="A"/></CLASSPATH>)";
    const auto answer = [](const std::string& inside) {
        return Answer("<IRETURNVALUE>" + inside + "</IRETURNVALUE>");
    };
    EXPECT_THAT(DtdProblems(answer("<OBJECTPATH>" + path + "</OBJECTPATH>")), IsEmpty());
    EXPECT_THAT(DtdProblems(answer("<VALUE.OBJECTWITHPATH>" + path +
                                   R"(<CLASS NAME="A"/></VALUE.OBJECTWITHPATH>)")),
                IsEmpty());
    EXPECT_THAT(DtdProblems(answer("<VALUE.OBJECTWITHPATH>" + path +
                                   R"(<INSTANCE CLASSNAME="A"/></VALUE.OBJECTWITHPATH>)")),
                ElementsAre(testing::StartsWith("VALUE.OBJECTWITHPATH holds CLASSPATH INSTANCE ")));
}

TEST(DtdCheck, BrokenXmlIsNamedWithItsPlace) {
    EXPECT_THAT(DtdProblems("<CIM"), ElementsAre("not well-formed at byte 0: unclosed token"));
    EXPECT_THAT(DtdProblems(""), ElementsAre("not well-formed at byte 0: no element found"));
}

TEST(DtdCheck, WrongOrderIsFound) {
    EXPECT_THAT(DtdProblems(Answer(
                    R"(<IRETURNVALUE><INSTANCE CLASSNAME="A"><PROPERTY NAME="P" TYPE="string">)"
                    R"(<VALUE>x</VALUE><QUALIFIER NAME="Q" TYPE="string"/></PROPERTY></INSTANCE>)"
                    R"(</IRETURNVALUE>)")),
                ElementsAre("PROPERTY holds VALUE QUALIFIER instead of (QUALIFIER*,VALUE?)"));
}

TEST(DtdCheck, MixedResultsAreFound) {
    const auto problems = DtdProblems(
        Answer(R"(<IRETURNVALUE><CLASSNAME NAME="A"/><INSTANCE CLASSNAME="A"/></IRETURNVALUE>)"));
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_THAT(problems.front(), testing::StartsWith("IRETURNVALUE holds CLASSNAME INSTANCE "));
}

TEST(DtdCheck, AMissingChildIsFound) {
    EXPECT_THAT(DtdProblems(R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"/>)"),
                ElementsAre("CIM holds instead of (MESSAGE|DECLARATION)"));
}

TEST(DtdCheck, AMissingAttributeIsFound) {
    EXPECT_THAT(DtdProblems(Answer("<ERROR/>")), ElementsAre("ERROR lacks attribute CODE"));
}

TEST(DtdCheck, AnUnknownAttributeIsFound) {
    EXPECT_THAT(DtdProblems(Answer(R"(<ERROR CODE="1" Code="1"/>)")),
                ElementsAre("ERROR has no attribute Code"));
}

TEST(DtdCheck, AValueOutsideItsEnumerationIsFound) {
    EXPECT_THAT(DtdProblems(Answer(R"(<IRETURNVALUE><INSTANCENAME CLASSNAME="A">)"
                                   R"(<KEYVALUE VALUETYPE="String">x</KEYVALUE></INSTANCENAME>)"
                                   R"(</IRETURNVALUE>)")),
                ElementsAre("KEYVALUE attribute VALUETYPE cannot be String"));
}

TEST(DtdCheck, AnUnknownElementIsFound) {
    EXPECT_THAT(
        DtdProblems(Answer("<ANSWER/>")),
        ElementsAre("unknown element ANSWER", testing::StartsWith("IMETHODRESPONSE holds")));
}

TEST(DtdCheck, AnotherRootIsFound) {
    EXPECT_THAT(DtdProblems("<HOST>h</HOST>"), ElementsAre("root element HOST"));
}

TEST(DtdCheck, TextOutsideValuesIsFound) {
    EXPECT_THAT(DtdProblems(Answer("oops")), ElementsAre("text in IMETHODRESPONSE"));
    EXPECT_THAT(
        DtdProblems(Answer(R"(<IRETURNVALUE><CLASSNAME NAME="A"> </CLASSNAME></IRETURNVALUE>)")),
        ElementsAre("text in CLASSNAME"));
}

TEST(PlainClientCheck, FindsWhatAPlainClientCannotRead) {
    EXPECT_THAT(PlainClientProblems("<A></A> &lt;&amp;"), IsEmpty());
    EXPECT_THAT(PlainClientProblems("<A/>"), ElementsAre("/> at byte 2"));
    EXPECT_THAT(PlainClientProblems("<!-- x -->"), ElementsAre("<!-- at byte 0"));
    EXPECT_THAT(PlainClientProblems("<![CDATA[x]]>"), ElementsAre("<![CDATA[ at byte 0"));
    EXPECT_THAT(PlainClientProblems("x&#65;y"), ElementsAre("&# at byte 1"));
    EXPECT_THAT(PlainClientProblems("&#10;x&#100;y"), ElementsAre("&# at byte 6"));
    EXPECT_THAT(PlainClientProblems("a&#9;b&#10;c&#13;d"), IsEmpty());
}

} // namespace
