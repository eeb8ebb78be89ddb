// Handlers that take longer than they may, and the end of the service.
#include "HttpTest.hpp"

#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace {

using cimserver::http::LateAnswer;
using cimserver::http::Request;
using cimserver::http::Server;
using cimserver::http::Settings;
using http_test::Answer;
using http_test::OpenFileIn;
using http_test::Pattern;
using http_test::SpoolDirectory;
using http_test::streamedRequest;
using test_support::CimClient;
using test_support::HeaderList;
using test_support::HttpAnswer;
using namespace std::chrono_literals;

constexpr std::size_t firstPortion = 64 * 1024;

Settings WithCallTime(std::chrono::milliseconds time) {
    Settings settings;
    settings.port = 0;
    settings.callTime = time;
    return settings;
}

LateAnswer Late(std::chrono::milliseconds limit) {
    return {"late after " + std::to_string(limit.count()), {{"X-Late", "yes"}}};
}

/// One waits until the other says so, at most for a while.
class Signal {
public:
    void Give() { promise_.set_value(); }
    void Await() {
        if (future_.wait_for(20s) != std::future_status::ready) {
            throw std::runtime_error("the signal never came");
        }
    }

private:
    std::promise<void> promise_;
    std::future<void> future_ = promise_.get_future();
};

TEST(LateHandler, ItsClientIsAnsweredInItsPlaceAndItIsLeftToFinish) {
    Signal mayGoOn;
    Signal hasFinished;
    std::string bodyAtTheEnd;
    Server server(WithCallTime(50ms), [&](const Request& request, Answer& answer) {
        if (request.body == "quick") {
            answer.Append("quick");
            return;
        }
        answer.SetHead({207, {{"X-A", "1"}}, {}});
        answer.Append("the beginning");
        answer.LimitTime(&Late);
        mayGoOn.Await();
        answer.SetHead({500, {}, {}});
        answer.Append(Pattern(firstPortion));
        answer.LiftLimit();
        bodyAtTheEnd = request.body;
        hasFinished.Give();
    });
    CimClient client(server.Port());
    const HttpAnswer answer = client.Request("POST", {}, "slow");
    EXPECT_EQ(answer.status, 207);
    EXPECT_EQ(answer.Header("X-A"), "1");
    EXPECT_EQ(answer.body, "late after 50");
    EXPECT_TRUE(answer.trailers.empty());
    EXPECT_EQ(client.Request("POST", {}, "quick").body, "quick") << "on the same connection";
    mayGoOn.Give();
    hasFinished.Await();
    EXPECT_EQ(bodyAtTheEnd, "slow");
    EXPECT_EQ(client.Request("POST", {}, "quick").body, "quick");
}

TEST(LateHandler, WhatHasLeftEndsWithTheTrailersOfTheLateAnswer) {
    Signal mayGoOn;
    Signal hasFinished;
    Server server(WithCallTime(50ms), [&](const Request&, Answer& answer) {
        answer.SetHead({200, {}, "X-Late"});
        answer.Append(Pattern(firstPortion));
        answer.LimitTime(&Late);
        answer.Append("the last that counts");
        mayGoOn.Await();
        answer.Append(Pattern(1'000'000));
        answer.SetTrailers({{"X-Late", "no"}});
        hasFinished.Give();
        throw std::runtime_error("nobody is told");
    });
    CimClient client(server.Port());
    client.Send(streamedRequest);
    const HttpAnswer answer = client.Receive();
    EXPECT_TRUE(answer.body == Pattern(firstPortion) + "the last that counts");
    EXPECT_EQ(answer.trailers, (HeaderList{{"X-Late", "yes"}}));
    mayGoOn.Give();
    hasFinished.Await();
}

TEST(LateHandler, WhatItStillAppendsIsKeptNowhere) {
    const SpoolDirectory directory;
    Signal mayGoOn;
    Signal hasFinished;
    bool isAnyFile = true;
    Server server(WithCallTime(50ms), [&](const Request& request, Answer& answer) {
        answer.Append(Pattern(request.body == "large" ? 3'000'000 : 10));
        answer.LimitTime(&Late);
        mayGoOn.Await();
        for (int i = 0; i < 10; ++i) {
            answer.Append(Pattern(1'000'000));
        }
        const auto file = OpenFileIn(directory.Path());
        isAnyFile = file && file->size != 0;
        hasFinished.Give();
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "large").body, "late after 50");
    mayGoOn.Give();
    hasFinished.Await();
    EXPECT_FALSE(isAnyFile);
}

TEST(LateHandler, IsNoneOnceTheLimitIsLifted) {
    Server server(WithCallTime(50ms), [&](const Request&, Answer& answer) {
        answer.LimitTime(&Late);
        answer.LiftLimit();
        std::this_thread::sleep_for(150ms);
        answer.Append("in time");
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body, "in time");
}

TEST(LateHandler, ALimitThatBeginsAnewCountsFromThen) {
    Server server(WithCallTime(300ms), [&](const Request&, Answer& answer) {
        for (int i = 0; i < 5; ++i) {
            answer.LimitTime(&Late);
            std::this_thread::sleep_for(100ms);
        }
        answer.Append("in time");
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body, "in time");
}

TEST(LateHandler, ALimitThatIsSetLateCountsToo) {
    Signal mayEnd;
    Server server(WithCallTime(100ms), [&](const Request&, Answer& answer) {
        std::this_thread::sleep_for(250ms);
        answer.LimitTime(&Late);
        mayEnd.Await();
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body, "late after 100");
    mayEnd.Give();
}

TEST(LateHandler, WithoutACallTimeIsNever) {
    Server server(WithCallTime(0ms), [&](const Request&, Answer& answer) {
        answer.LimitTime(&Late);
        std::this_thread::sleep_for(50ms);
        answer.Append("in time");
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body, "in time");
}

TEST(LateHandler, OneWhoseLateAnswerCannotBeMadeClosesTheConnection) {
    std::promise<void> mayEnd;
    const std::shared_future<void> end = mayEnd.get_future().share();
    Server server(WithCallTime(50ms), [end](const Request&, Answer& answer) {
        answer.Append(Pattern(firstPortion));
        answer.LimitTime([](auto) -> LateAnswer { throw std::runtime_error("no memory"); });
        end.wait();
    });
    for (const char* offer : {"trailers", "nothing"}) {
        CimClient client(server.Port());
        EXPECT_THROW(client.Request("POST", {{"TE", offer}}, ""), std::runtime_error) << offer;
    }
    mayEnd.set_value();
}

TEST(HandlerWithoutClient, KeepsItsRequest) {
    Signal hasBegun;
    Signal clientHasGone;
    Signal hasFinished;
    std::string body;
    Server server(WithCallTime(0ms), [&](const Request& request, Answer& answer) {
        answer.Append(Pattern(firstPortion));
        hasBegun.Give();
        clientHasGone.Await();
        answer.Append(Pattern(firstPortion));
        body = request.body;
        hasFinished.Give();
    });
    const std::string sent = Pattern(100'000);
    {
        CimClient client(server.Port());
        client.Send("POST / HTTP/1.1\r\nHost: h\r\nTE: trailers\r\nContent-Length: 100000\r\n\r\n" +
                    sent);
        hasBegun.Await();
    }
    clientHasGone.Give();
    hasFinished.Await();
    EXPECT_TRUE(body == sent);
}

bool IsRefused(std::uint16_t port) {
    try {
        const CimClient client(port);
        return false;
    } catch (const std::system_error& error) {
        return error.code() == std::errc::connection_refused;
    }
}

TEST(Stopping, RefusesConnectionsAndRequestsAndFinishesWhatRuns) {
    Signal hasBegun;
    Signal mayEnd;
    Server server(WithCallTime(0ms), [&](const Request& request, Answer& answer) {
        if (request.body == "running") {
            hasBegun.Give();
            mayEnd.Await();
        }
        answer.Append("done");
    });
    CimClient idle(server.Port());
    EXPECT_EQ(idle.Request("POST", {}, "x").body, "done");
    auto running = std::async(std::launch::async, [&] {
        return CimClient(server.Port()).Request("POST", {}, "running").body;
    });
    hasBegun.Await();
    server.StopAccepting();
    EXPECT_TRUE(IsRefused(server.Port()));
    EXPECT_EQ(idle.Request("POST", {}, "x").status, 503);
    EXPECT_FALSE(server.WaitUntilIdle(std::chrono::steady_clock::now() + 20ms));
    mayEnd.Give();
    EXPECT_TRUE(server.WaitUntilIdle(std::chrono::steady_clock::now() + 20s));
    EXPECT_EQ(running.get(), "done");
}

TEST(Stopping, BeginsNothingForABodyThatComesAfterIt) {
    std::atomic<int> calls = 0;
    Server server(WithCallTime(0ms), [&](const Request&, Answer&) { ++calls; });
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 1\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_THAT(client.ReceiveBytes(25), testing::StartsWith("HTTP/1.1 100 "));
    server.StopAccepting();
    EXPECT_TRUE(server.WaitUntilIdle(std::chrono::steady_clock::now()));
    client.Send("x");
    EXPECT_EQ(client.Receive().status, 503);
    EXPECT_EQ(calls, 0);
}

TEST(Stopping, WaitsForAHandlerWhoseClientHasGone) {
    Signal hasBegun;
    Signal mayEnd;
    Server server(WithCallTime(20ms), [&](const Request&, Answer& answer) {
        answer.LimitTime(&Late);
        hasBegun.Give();
        mayEnd.Await();
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body, "late after 20");
    hasBegun.Await();
    server.StopAccepting();
    EXPECT_FALSE(server.WaitUntilIdle(std::chrono::steady_clock::now() + 20ms));
    mayEnd.Give();
    EXPECT_TRUE(server.WaitUntilIdle(std::chrono::steady_clock::now() + 20s));
}

TEST(Stopping, WaitsUntilTheAnswerIsSent) {
    Signal hasBegun;
    Server server(WithCallTime(0ms), [&](const Request&, Answer& answer) {
        answer.Append(std::string(30'000'000, 'x'));
        hasBegun.Give();
    });
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n");
    hasBegun.Await();
    server.StopAccepting();
    EXPECT_FALSE(server.WaitUntilIdle(std::chrono::steady_clock::now() + 50ms));
    EXPECT_EQ(client.Receive().body.size(), 30'000'000U);
    EXPECT_TRUE(server.WaitUntilIdle(std::chrono::steady_clock::now() + 20s));
}

} // namespace
