// Answers too large for the server's memory, from the tool to the client.
#include "e2e/OverHttp.hpp"

#include "support/ToolDouble.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

#include <sys/resource.h>

namespace {

using test_support::CimClient;
using test_support::HttpAnswer;
using test_support::ToolAnswer;
using test_support::ToolDouble;
using testing::HasSubstr;

std::string Listing(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text +=
            "package-" + std::to_string(i) + "\t1.0\tMiddleware\tThu Jan  2 03:04:05 UTC 2025\n";
    }
    return text;
}

const std::string enumeration = test_support::IntrinsicCall(
    "EnumerateInstances",
    R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/></IPARAMVALUE>)");

class LargeAnswers : public e2e::OverHttp {
protected:
    void SetUp() override { setenv("TZ", "UTC", 1); }

    ToolDouble tool_;
};

TEST_F(LargeAnswers, HaveTheSameTextInChunksAndWhole) {
    tool_.Plays("", ToolAnswer().Output(Listing(3000)));
    StartServer();
    const HttpAnswer whole = Post(enumeration);
    const HttpAnswer streamed = Post(enumeration, {{"TE", "trailers"}, {"Connection", "TE"}});
    EXPECT_EQ(whole.Header("Content-Length"), std::to_string(whole.body.size()));
    EXPECT_EQ(streamed.Header("Transfer-Encoding"), "chunked");
    EXPECT_EQ(streamed.Header("Trailer"), "CIMStatusCode, CIMStatusCodeDescription");
    EXPECT_EQ(streamed.Header("CIMOperation"), "MethodResponse");
    EXPECT_TRUE(streamed.trailers.empty());
    EXPECT_GT(whole.body.size(), 2'000'000U);
    EXPECT_TRUE(whole.body == streamed.body);
}

TEST_F(LargeAnswers, AreAnErrorWithTheReasonWhereTheyCannotBeKept) {
    tool_.Plays("", ToolAnswer().Output(Listing(4000)));
    const rlimit limit{.rlim_cur = 1'000'000, .rlim_max = RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    StartServer();
    EXPECT_THAT(Post(enumeration).body,
                testing::AllOf(HasSubstr("<ERROR CODE=\"1\" DESCRIPTION=\"general error (The "
                                         "answer cannot be kept in "),
                               HasSubstr(": File too large)\"></ERROR>")));
    tool_.Plays("", ToolAnswer().Output(Listing(2)));
    EXPECT_THAT(Post(enumeration).body, HasSubstr("package-1"));
}

} // namespace
