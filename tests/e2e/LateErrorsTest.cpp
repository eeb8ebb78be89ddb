// A provider fails when part of its instances is on its way to the client.

#include "e2e/ShelfTest.hpp"

#include "support/CallHeaders.hpp"
#include "support/XmlNode.hpp"

namespace {

using test_support::CimClient;
using test_support::HeaderList;
using test_support::HttpAnswer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

std::string NamesOf(const std::string& className) {
    return test_support::IntrinsicCall("EnumerateInstanceNames",
                                       R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" +
                                           className + R"("/></IPARAMVALUE>)");
}

const std::string start = "Access to CIM resource unavailable to client (Not ";

class LateErrors : public e2e::ShelfTest {
protected:
    void TearDown() override {
        EXPECT_EQ(Printed("ein", "ET_Item").size(), 2U) << "the server goes on";
        e2e::ShelfTest::TearDown();
    }
    /// To a client that takes trailers.
    HttpAnswer Streamed(const std::string& className) {
        CimClient client(Server().Port());
        return client.Post(NamesOf(className), {{"TE", "trailers"}, {"Connection", "TE"}});
    }
};

void ExpectToBreakOff(const HttpAnswer& answer) {
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.Header("Transfer-Encoding"), "chunked");
    EXPECT_THAT(answer.body, HasSubstr("<KEYVALUE VALUETYPE=\"string\">0xxx"));
    EXPECT_THAT(answer.body, Not(HasSubstr("</CIM>")));
    EXPECT_FALSE(test_support::ReadXml(answer.body).has_value());
}

TEST_F(LateErrors, FollowTheTextAsTrailers) {
    const HttpAnswer answer = Streamed("ET_Breaking");
    ExpectToBreakOff(answer);
    EXPECT_EQ(answer.Header("Trailer"), "CIMStatusCode, CIMStatusCodeDescription");
    EXPECT_THAT(answer.trailers, ElementsAre(Pair("CIMStatusCode", "2"),
                                             Pair("CIMStatusCodeDescription",
                                                  start + "\"%C3%A4\", 100%25. #SWU_17,a b#)")));
}

TEST_F(LateErrors, OfAnyKindHaveAReason) {
    const HttpAnswer answer = Streamed("ET_BreakingOddly");
    ExpectToBreakOff(answer);
    EXPECT_THAT(answer.trailers,
                ElementsAre(Pair("CIMStatusCode", "1"),
                            Pair("CIMStatusCodeDescription", "Unknown Exception")));
}

TEST_F(LateErrors, HaveThePrefixOfAnMPost) {
    const std::string body = NamesOf("ET_Breaking");
    HeaderList headers = {{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=31"},
                          {"31-CIMOperation", "MethodCall"},
                          {"TE", "trailers"}};
    for (const auto& [name, value] : test_support::CallHeaders(body)) {
        headers.emplace_back("31-" + name, value);
    }
    CimClient client(Server().Port());
    const HttpAnswer answer = client.Request("M-POST", headers, body);
    ExpectToBreakOff(answer);
    EXPECT_EQ(answer.Header("Trailer"), "31-CIMStatusCode, 31-CIMStatusCodeDescription");
    EXPECT_THAT(answer.trailers,
                ElementsAre(Pair("31-CIMStatusCode", "2"),
                            Pair("31-CIMStatusCodeDescription", HasSubstr("#SWU_17,a b#"))));
}

TEST_F(LateErrors, TakeThePlaceOfTheTextForAClientWithoutTrailers) {
    const HttpAnswer answer = Post(NamesOf("ET_Breaking"));
    EXPECT_EQ(answer.Header("Content-Length"), std::to_string(answer.body.size()));
    EXPECT_THAT(answer.trailers, IsEmpty());
    const auto document = test_support::ReadXml(answer.body);
    ASSERT_TRUE(document.has_value() && document->Find("ERROR") != nullptr) << answer.body;
    EXPECT_THAT(document->FindAll("INSTANCENAME"), IsEmpty());
    EXPECT_EQ(document->Find("ERROR")->Attribute("CODE"), "2");
    EXPECT_EQ(document->Find("ERROR")->Attribute("DESCRIPTION"),
              start + "\"\xC3\xA4\", 100%.\n#SWU_17,a b#)");
}

TEST_F(LateErrors, ReachWbemcliWhichOffersNoTrailers) {
    EXPECT_EQ(Failure("ein", "ET_Breaking"),
              "CIM_ERR_ACCESS_DENIED: " + start + "\"\xC3\xA4\", 100%.&#10;#SWU_17,a b#)");
    EXPECT_EQ(Failure("ein", "ET_BreakingOddly"), "CIM_ERR_FAILED: Unknown Exception");
}

} // namespace
