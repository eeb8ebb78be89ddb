// The proxy of the end-to-end tests forwards everything and keeps every answer.
#include "support/RecordingProxy.hpp"

#include "HttpTest.hpp"

#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace {

using cimserver::http::Server;
using http_test::Answer;
using http_test::AnyPort;
using http_test::Request;
using test_support::CimClient;
using test_support::RecordingProxy;
using testing::IsEmpty;

void Echo(const Request& request, Answer& answer) {
    answer.SetHead({request.body.empty() ? 404 : 200, {{"X-Method", request.method}}, "X-End"});
    answer.Append(request.body);
    if (answer.HasLeft()) {
        answer.SetTrailers({{"X-End", "yes"}});
    }
}

TEST(RecordingProxy, ForwardsBothWaysAndKeepsTheAnswers) {
    const Server server(AnyPort(), &Echo);
    RecordingProxy proxy(server.Port());
    CimClient client(proxy.Port());
    EXPECT_EQ(client.Request("POST", {}, "one").body, "one");
    EXPECT_EQ(client.Request("M-POST", {}, "two").Header("X-Method"), "M-POST");
    EXPECT_EQ(CimClient(proxy.Port()).Request("POST", {}, "").status, 404);
    const auto answers = proxy.Answers();
    ASSERT_EQ(answers.size(), 3U);
    EXPECT_EQ(answers[0].body, "one");
    EXPECT_EQ(answers[1].body, "two");
    EXPECT_EQ(answers[1].Header("x-method"), "M-POST");
    EXPECT_EQ(answers[2].status, 404);
    EXPECT_THAT(proxy.Problems(), IsEmpty());
}

TEST(RecordingProxy, KeepsLargeAnswersOfSeveralClientsAtOnce) {
    const std::string large(900'000, 'x');
    const Server server(AnyPort(), &Echo);
    RecordingProxy proxy(server.Port());
    const auto ask = [&] { return CimClient(proxy.Port()).Request("POST", {}, large).body; };
    auto other = std::async(std::launch::async, ask);
    EXPECT_TRUE(ask() == large);
    EXPECT_TRUE(other.get() == large);
    const auto answers = proxy.Answers();
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_TRUE(answers[0].body == large);
    EXPECT_TRUE(answers[1].body == large);
}

TEST(RecordingProxy, KeepsAnswersInChunksWithTheirTrailers) {
    const std::string large(900'000, 'x');
    const Server server(AnyPort(), &Echo);
    RecordingProxy proxy(server.Port());
    CimClient client(proxy.Port());
    EXPECT_TRUE(client.Request("POST", {{"TE", "trailers"}}, large).body == large);
    EXPECT_EQ(client.Request("POST", {}, "next").body, "next");
    const auto answers = proxy.Answers();
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0].Header("Transfer-Encoding"), "chunked");
    EXPECT_TRUE(answers[0].body == large);
    EXPECT_EQ(answers[0].trailers, (test_support::HeaderList{{"X-End", "yes"}}));
    EXPECT_EQ(answers[1].body, "next");
    EXPECT_THAT(proxy.Problems(), IsEmpty());
}

TEST(RecordingProxy, SaysWhenThereIsNoServer) {
    std::uint16_t port = 0;
    {
        const Server server(AnyPort(), &Echo);
        port = server.Port();
    }
    RecordingProxy proxy(port);
    EXPECT_THROW(CimClient(proxy.Port()).Request("POST", {}, "x"), std::runtime_error);
    while (proxy.Problems().empty()) {
        std::this_thread::yield();
    }
    EXPECT_THAT(proxy.Problems(), testing::ElementsAre(testing::HasSubstr("Connection refused")));
    EXPECT_THAT(proxy.Answers(), IsEmpty());
}

TEST(RecordingProxy, EndsWithConnectionsStillOpen) {
    const Server server(AnyPort(), &Echo);
    auto proxy = std::make_unique<RecordingProxy>(server.Port());
    CimClient client(proxy->Port());
    EXPECT_EQ(client.Request("POST", {}, "x").body, "x");
    proxy.reset();
    EXPECT_TRUE(client.IsClosedByServer());
}

} // namespace
