// M-POST: the headers of request and answer.
#include "Support.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using cimserver::cimxml::HeaderList;
using cimxml_test::Ask;
using cimxml_test::FakeExecutor;
using cimxml_test::Reply;
using cimxml_test::TextOutput;
using testing::ElementsAre;
using testing::Pair;

const std::string good = test_support::IntrinsicCall("EnumerateClassNames", "");
const std::string uri = "http://www.dmtf.org/cim/mapping/http/v1.0";

HeaderList Headers(const std::string& man, const std::string& prefix) {
    HeaderList headers = cimxml_test::OperationHeaders(good);
    for (auto& header : headers) {
        header.first.insert(0, prefix);
    }
    headers.emplace_back("Man", man);
    return headers;
}

Reply MPost(const HeaderList& headers) {
    FakeExecutor executor;
    return Ask(good, executor, headers, "M-POST");
}

TEST(MPost, TheAnswerConfirmsTheExtensionAndHasItsPrefix) {
    EXPECT_THAT(MPost(Headers(uri + " ; ns=23", "23-")).status.headers,
                ElementsAre(Pair("Content-Type", "application/xml; charset=\"utf-8\""),
                            Pair("23-CIMOperation", "MethodResponse"),
                            Pair("Man", uri + " ; ns=23"), Pair("Ext", ""),
                            Pair("Cache-Control", "no-cache")));
}

TEST(MPost, ARefusalHasThePrefixToo) {
    const Reply reply = MPost(Headers(uri + "; ns=7", ""));
    EXPECT_EQ(reply.status.httpStatus, 400);
    EXPECT_THAT(reply.status.headers, ElementsAre(Pair("7-CIMError", "unsupported-operation"),
                                                  Pair("Man", uri + " ; ns=7"), Pair("Ext", ""),
                                                  Pair("Cache-Control", "no-cache")));
}

TEST(MPost, TrailersHaveThePrefixAndAreAnnouncedWithIt) {
    FakeExecutor executor([](const auto&, auto& sink) {
        for (int i = 0; i < 10'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
        }
        OW_THROWCIMMSG(OpenWBEM::CIMException::FAILED, "late");
    });
    TextOutput output(1);
    cimserver::cimxml::Answer({"M-POST", Headers(uri + ";ns=42", "42-"), good, ""}, executor,
                              output);
    EXPECT_EQ(output.head.trailerNames, "42-CIMStatusCode, 42-CIMStatusCodeDescription");
    EXPECT_THAT(output.trailers,
                ElementsAre(Pair("42-CIMStatusCode", "1"),
                            Pair("42-CIMStatusCodeDescription", "general error (late)")));
}

TEST(MPost, AnswersToPostHaveNothingOfIt) {
    FakeExecutor executor;
    EXPECT_THAT(Ask(good, executor).status.headers,
                ElementsAre(Pair("Content-Type", "application/xml; charset=\"utf-8\""),
                            Pair("CIMOperation", "MethodResponse")));
}

TEST(MPost, TheDeclarationMayBeWrittenInSeveralWays) {
    for (const std::string& man : {uri + ";ns=23", uri + "; ns=23", "\"" + uri + "\"; ns=23",
                                   "  " + uri + " ;ns=23  ", uri + "; note=x; ns=23"}) {
        EXPECT_EQ(MPost(Headers(man, "23-")).status.httpStatus, 200) << man;
    }
    EXPECT_EQ(MPost(Headers(uri, "")).status.httpStatus, 200);
}

TEST(MPost, HeadersOfAnotherPrefixAreNotThoseOfTheRequest) {
    for (const char* prefix : {"", "24-", "2-"}) {
        const Reply reply = MPost(Headers(uri + "; ns=23", prefix));
        EXPECT_EQ(reply.status.httpStatus, 400) << prefix;
        EXPECT_EQ(reply.Header("23-CIMError"), "unsupported-operation");
    }
}

TEST(MPost, WithoutAnExtensionThatIsKnownIsNotExtended) {
    HeaderList none = cimxml_test::OperationHeaders(good);
    EXPECT_EQ(MPost(none).status.httpStatus, 510);
    for (const std::string& man :
         {std::string(), std::string("http://other/; ns=23"), uri + "1; ns=23", uri + "; ns=",
          uri + "; ns=x", uri + "; ns=23, http://other/; ns=24", std::string(" ; ns=23")}) {
        const Reply reply = MPost(Headers(man, "23-"));
        EXPECT_EQ(reply.status.httpStatus, 510) << man;
        EXPECT_TRUE(reply.status.headers.empty());
    }
}

} // namespace
