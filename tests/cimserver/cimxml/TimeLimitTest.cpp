// What a client is told of a call that runs too long in a provider library.
#include "Support.hpp"

#include "support/CallHeaders.hpp"
#include "support/DtdCheck.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace {

using cimserver::cimxml::HeaderList;
using cimserver::cimxml::LateAnswer;
using cimxml_test::ErrorIn;
using cimxml_test::FakeExecutor;
using cimxml_test::Request;
using cimxml_test::ResultSink;
using cimxml_test::TextOutput;
using test_support::IntrinsicCall;
using namespace std::chrono_literals;

/// Answers a request; its late answer as it would be while the call is inside a library.
LateAnswer LateOf(const std::string& body, const HeaderList& headers,
                  const std::string& method = "POST") {
    TextOutput output;
    LateAnswer late;
    FakeExecutor executor([&](const Request& request, ResultSink&) {
        EXPECT_FALSE(output.limit);
        request.watch->Entered("EnumerateClassNames of ZNX_A");
        late = output.limit(300s);
        request.watch->Left();
        EXPECT_FALSE(output.limit);
    });
    cimserver::cimxml::Answer({method, headers, body, ""}, executor, output);
    EXPECT_EQ(output.limits, 1);
    return late;
}

const std::string reason =
    "general error (EnumerateClassNames of ZNX_A has been running for 300 s; it is left to finish)";

TEST(TimeLimit, TheLateAnswerIsAnErrorToTheSameRequest) {
    const std::string body = IntrinsicCall("EnumerateClassNames", "");
    const LateAnswer late = LateOf(body, cimxml_test::OperationHeaders(body));
    EXPECT_EQ(ErrorIn(late.text), "1: " + reason);
    EXPECT_THAT(late.text, testing::HasSubstr("<MESSAGE ID=\"4711\" "));
    EXPECT_THAT(late.text, testing::HasSubstr("<IMETHODRESPONSE NAME=\"EnumerateClassNames\">"));
    EXPECT_THAT(test_support::DtdProblems(late.text), testing::IsEmpty());
    EXPECT_EQ(late.trailers,
              (HeaderList{{"CIMStatusCode", "1"}, {"CIMStatusCodeDescription", reason}}));
    EXPECT_EQ(late.reason,
              "EnumerateClassNames of ZNX_A has been running for 300 s; it is left to finish");
}

TEST(TimeLimit, AMethodCallsToo) {
    const std::string body = test_support::ExtrinsicCall("Run", R"(<CLASSNAME NAME="ZNX_A"/>)", "");
    const LateAnswer late = LateOf(body, cimxml_test::OperationHeaders(body));
    EXPECT_THAT(late.text, testing::HasSubstr("<METHODRESPONSE NAME=\"Run\"><ERROR CODE=\"1\""));
    EXPECT_THAT(test_support::DtdProblems(late.text), testing::IsEmpty());
}

TEST(TimeLimit, TheTrailersHaveThePrefixOfAnMPost) {
    const std::string body = IntrinsicCall("EnumerateClassNames", "");
    HeaderList headers = {{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=31"},
                          {"31-CIMOperation", "MethodCall"}};
    for (const auto& [name, value] : test_support::CallHeaders(body)) {
        headers.emplace_back("31-" + name, value);
    }
    const LateAnswer late = LateOf(body, headers, "M-POST");
    EXPECT_EQ(late.trailers,
              (HeaderList{{"31-CIMStatusCode", "1"}, {"31-CIMStatusCodeDescription", reason}}));
}

TEST(TimeLimit, ACallOutsideLibrariesHasNone) {
    TextOutput output;
    FakeExecutor executor;
    const std::string body = IntrinsicCall("EnumerateClassNames", "");
    cimserver::cimxml::Answer({"POST", cimxml_test::OperationHeaders(body), body, ""}, executor,
                              output);
    EXPECT_EQ(output.limits, 0);
}

} // namespace
