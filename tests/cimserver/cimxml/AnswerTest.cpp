// The answer as a whole: envelope, headers, errors, many results.
#include "Support.hpp"

#include "support/DtdCheck.hpp"
#include "support/XmlNode.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

#include <new>

namespace {

using namespace OpenWBEM;
using cimxml_test::Ask;
using cimxml_test::Between;
using cimxml_test::ErrorIn;
using cimxml_test::FakeExecutor;
using cimxml_test::Reply;
using cimxml_test::Request;
using cimxml_test::Results;
using cimxml_test::ResultSink;
using test_support::IntrinsicCall;

TEST(Answer, IsAMessageWithTheRequestsIdAndMethod) {
    FakeExecutor executor;
    const Reply reply = Ask(IntrinsicCall("enumerateclassnames", ""), executor);
    EXPECT_EQ(reply.text,
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
              R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="4711" PROTOCOLVERSION="1.0">)"
              R"(<SIMPLERSP><IMETHODRESPONSE NAME="enumerateclassnames"><IRETURNVALUE>)"
              R"(</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>)"
              "\n");
}

TEST(Answer, HasTheHeadersOfAMethodResponse) {
    FakeExecutor executor;
    const Reply reply = Ask(IntrinsicCall("EnumerateClassNames", ""), executor);
    EXPECT_EQ(reply.status.httpStatus, 200);
    EXPECT_EQ(reply.Header("Content-Type"), "application/xml; charset=\"utf-8\"");
    EXPECT_EQ(reply.Header("CIMOperation"), "MethodResponse");
    EXPECT_EQ(reply.Header("CIMError"), "(absent)");
}

TEST(Answer, RepeatsAnyIdAndMethodSafely) {
    FakeExecutor executor([](const Request&, ResultSink&) { OW_THROWCIM(CIMException::FAILED); });
    std::string body = IntrinsicCall("&lt;X&gt; &quot;&amp;&#xE4;", "");
    body.replace(body.find("4711"), 4, "&lt;&quot;&gt;");
    const Reply reply = Ask(body, executor);
    EXPECT_EQ(Between(reply.text, "<MESSAGE ID=\"", "\" PROT"), "&lt;&quot;&gt;");
    EXPECT_EQ(Between(reply.text, "<IMETHODRESPONSE NAME=\"", "\">"),
              "&lt;X&gt; &quot;&amp;\xC3\xA4");
}

TEST(AnswerErrors, HaveCodeAndDescription) {
    EXPECT_EQ(Between(Results([](ResultSink&) {
                          OW_THROWCIMMSG(CIMException::INVALID_CLASS, "/root/cimv2:A");
                      }),
                      "<SIMPLERSP>", "</SIMPLERSP>"),
              R"(<IMETHODRESPONSE NAME="EnumerateInstances"><ERROR CODE="5" DESCRIPTION="class )"
              "does not exist (/root/cimv2:A)\"></ERROR></IMETHODRESPONSE>");
}

TEST(AnswerErrors, ReachAnXmlParserByteForByte) {
    const std::string text = "a \"b\" <c> & 'd'\t\xC3\xA4\r\n#12,x#";
    const std::string answer =
        Results([&](ResultSink&) { OW_THROWCIMMSG(CIMException::FAILED, text.c_str()); });
    const auto document = test_support::ReadXml(answer);
    ASSERT_TRUE(document.has_value());
    EXPECT_EQ(document->Find("ERROR")->Attribute("DESCRIPTION"), "general error (" + text + ")");
}

TEST(AnswerErrors, KeepLineBreaksAndEscapeTheRest) {
    EXPECT_EQ(ErrorIn(Results([](ResultSink&) {
                  OW_THROWCIMMSG(CIMException::FAILED, "a \"b\" <c> & \x01\xFF\n#12,x#");
              })),
              "1: general error (a &quot;b&quot; &lt;c&gt; &amp; "
              "\xEF\xBF\xBD\xEF\xBF\xBD&#10;#12,x#)");
}

TEST(AnswerErrors, TakeThePlaceOfResultsThatWereWritten) {
    const std::string answer = Results([](ResultSink& sink) {
        for (int i = 0; i < 10'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
        }
        OW_THROWCIMMSG(CIMException::FAILED, "late");
    });
    EXPECT_EQ(ErrorIn(answer), "1: general error (late)");
    EXPECT_EQ(answer.find("ZNX_SomeClass"), std::string::npos);
}

TEST(AnswerErrors, AResultThatCannotBeWrittenFailsTheAnswerEvenWhenItIsCaught) {
    int refusedLater = 0;
    const std::string answer = Results([&](ResultSink& sink) {
        CIMInstance bad("A");
        bad.setProperty("Free", CIMValue(CIMNULL));
        for (const CIMInstance& instance : {bad, CIMInstance("B")}) {
            try {
                sink.Instance(instance);
            } catch (...) {
                ++refusedLater;
            }
        }
    });
    EXPECT_EQ(refusedLater, 2);
    EXPECT_EQ(ErrorIn(answer), "1: general error (Property Free has no type defined)");
}

TEST(AnswerErrors, OutOfMemoryIsNotTheClientsError) {
    FakeExecutor executor([](const Request&, ResultSink&) { throw std::bad_alloc(); });
    EXPECT_THROW(Ask(IntrinsicCall("EnumerateClassNames", ""), executor), std::bad_alloc);
}

TEST(AnswerOfManyResults, IsWholeAndInOrder) {
    constexpr int count = 20'000;
    const std::string answer = Results([](ResultSink& sink) {
        for (int i = 0; i < count; ++i) {
            CIMInstance instance("ZNX_A");
            instance.setProperty("N", CIMValue(UInt32(static_cast<unsigned>(i))));
            instance.setProperty("S", CIMValue(String("text & ") + String(Int32(i))));
            CIMObjectPath path(CIMName("ZNX_A"), String("root/cimv2"));
            path.setKeyValue("N", CIMValue(UInt32(static_cast<unsigned>(i))));
            instance.setKeys(path.getKeys());
            sink.NamedInstance(instance);
        }
    });
    std::size_t at = 0;
    for (int i = 0; i < count; ++i) {
        const std::string next = "<VALUE>text &amp; " + std::to_string(i) + "</VALUE>";
        at = answer.find(next, at);
        ASSERT_NE(at, std::string::npos) << i;
    }
}

} // namespace
