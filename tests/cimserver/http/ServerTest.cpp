#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <latch>
#include <new>
#include <thread>

#include <fcntl.h>

namespace {

using cimserver::http::AnswerBody;
using cimserver::http::Request;
using cimserver::http::Response;
using cimserver::http::Server;
using cimserver::http::Settings;
using test_support::CimClient;
using test_support::HttpAnswer;

Settings AnyPort() {
    Settings settings;
    settings.port = 0;
    return settings;
}

Response TextAnswer(std::string_view text) {
    Response response;
    response.body = std::make_shared<AnswerBody>();
    response.body->Append(text);
    return response;
}

std::string ValueOf(const Request& request, const std::string& name) {
    for (const auto& header : request.headers) {
        if (header.name == name) {
            return header.value;
        }
    }
    return "(absent)";
}

TEST(HttpServer, HandsTheWholeRequestToTheHandler) {
    Request seen;
    Server server(AnyPort(), [&](const Request& request) {
        seen = request;
        return TextAnswer("ok");
    });
    CimClient client(server.Port());
    client.Send("M-POST /cimom%20x?a=1 HTTP/1.1\r\nHost: h\r\nX-One: 1\r\nX-One: 2\r\n"
                "CIMOperation: MethodCall\r\nContent-Length: 5\r\n\r\nhello");
    EXPECT_EQ(client.Receive().body, "ok");
    EXPECT_EQ(seen.method, "M-POST");
    EXPECT_EQ(seen.target, "/cimom%20x?a=1");
    EXPECT_EQ(seen.body, "hello");
    EXPECT_EQ(seen.clientAddress, "127.0.0.1");
    EXPECT_EQ(ValueOf(seen, "CIMOperation"), "MethodCall");
    EXPECT_EQ(std::count_if(seen.headers.begin(), seen.headers.end(),
                            [](const auto& header) { return header.name == "X-One"; }),
              2);
}

TEST(HttpServer, SendsStatusHeadersAndBodyOfTheHandler) {
    Server server(AnyPort(), [](const Request&) {
        Response response = TextAnswer("body");
        response.status = 207;
        response.headers = {{"X-A", "1"}, {"X-B", "two words"}};
        return response;
    });
    CimClient client(server.Port());
    const HttpAnswer answer = client.Request("POST", {}, "");
    EXPECT_EQ(answer.status, 207);
    EXPECT_EQ(answer.Header("X-A"), "1");
    EXPECT_EQ(answer.Header("X-B"), "two words");
    EXPECT_EQ(answer.body, "body");
}

TEST(HttpServer, AnswersWithoutBodyHaveLengthZero) {
    Server server(AnyPort(), [](const Request&) { return Response{}; });
    CimClient client(server.Port());
    const HttpAnswer answer = client.Request("GET", {}, "");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.Header("Content-Length"), "0");
}

TEST(HttpServer, KeepsTheConnectionForFurtherRequests) {
    std::atomic<int> calls = 0;
    Server server(AnyPort(), [&](const Request& request) {
        return TextAnswer(request.body + std::to_string(++calls));
    });
    CimClient client(server.Port());
    EXPECT_EQ(client.Request("POST", {}, "a").body, "a1");
    EXPECT_EQ(client.Request("POST", {}, "bb").body, "bb2");
    EXPECT_EQ(client.Request("POST", {}, "").body, "3");
}

TEST(HttpServer, TakesAChunkedBody) {
    Server server(AnyPort(), [](const Request& request) { return TextAnswer(request.body); });
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n"
                "5\r\nhello\r\n6\r\n world\r\n0\r\n\r\n");
    EXPECT_EQ(client.Receive().body, "hello world");
}

TEST(HttpServer, ServesClientsAtTheSameTime) {
    std::latch both(2);
    Server server(AnyPort(), [&](const Request& request) {
        both.arrive_and_wait();
        return TextAnswer(request.body);
    });
    auto ask = [&](const char* text) {
        return CimClient(server.Port()).Request("POST", {}, text).body;
    };
    auto other = std::async(std::launch::async, ask, "one");
    EXPECT_EQ(ask("two"), "two");
    EXPECT_EQ(other.get(), "one");
}

TEST(HttpServer, SendsAFiftyMegabyteAnswerIntact) {
    constexpr std::size_t size = 50'000'003;
    auto body = std::make_shared<AnswerBody>();
    std::string expected(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        expected[i] = static_cast<char>(i * 2654435761U >> 13U);
    }
    body->Append(expected);
    Server server(AnyPort(), [&](const Request&) {
        Response response;
        response.body = body;
        return response;
    });
    CimClient client(server.Port());
    for (int round = 0; round < 2; ++round) {
        const HttpAnswer answer = client.Request("POST", {}, "");
        ASSERT_EQ(answer.Header("Content-Length"), std::to_string(size));
        EXPECT_TRUE(answer.body == expected);
    }
}

TEST(HttpServer, ReleasesTheBodyWhenItIsSent) {
    std::weak_ptr<AnswerBody> sent;
    Server server(AnyPort(), [&](const Request&) {
        const Response response = TextAnswer(std::string(1'000'000, 'x'));
        sent = response.body;
        return response;
    });
    CimClient client(server.Port());
    client.Request("POST", {}, "");
    client.FinishSending();
    EXPECT_TRUE(client.IsClosedByServer());
    EXPECT_TRUE(sent.expired());
}

TEST(HttpServer, SmallAnswersLeaveAtOnce) {
    Server server(AnyPort(), [](const Request&) { return TextAnswer("small"); });
    CimClient client(server.Port());
    client.Request("POST", {}, "warm up");
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(client.Request("POST", {}, "x").body, "small");
    }
    // Waiting for acknowledgements would cost 40 ms each, 2 s in all.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
}

TEST(HttpServer, AnExceptionOfTheHandlerBecomesStatus500AndTheServerGoesOn) {
    int call = 0;
    Server server(AnyPort(), [&](const Request&) -> Response {
        switch (++call) {
        case 1:
            throw std::runtime_error("a secret");
        case 2:
            throw 5;
        case 3:
            throw std::bad_alloc();
        default:
            return TextAnswer("fine");
        }
    });
    CimClient client(server.Port());
    for (int i = 0; i < 3; ++i) {
        const HttpAnswer answer = client.Request("POST", {}, "x");
        EXPECT_EQ(answer.status, 500);
        EXPECT_EQ(answer.body, "");
    }
    EXPECT_EQ(client.Request("POST", {}, "x").body, "fine");
}

TEST(HttpServer, TheDestructorWaitsForARunningHandler) {
    std::promise<void> entered;
    std::promise<void> mayLeave;
    std::atomic<bool> left = false;
    auto server = std::make_unique<Server>(AnyPort(), [&](const Request&) {
        entered.set_value();
        mayLeave.get_future().wait();
        left = true;
        return Response{};
    });
    CimClient client(server->Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n");
    entered.get_future().wait();
    auto stopped = std::async(std::launch::async, [&] {
        server.reset();
        return left.load();
    });
    EXPECT_EQ(stopped.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    mayLeave.set_value();
    EXPECT_TRUE(stopped.get());
}

std::vector<std::string> InheritedDescriptors() {
    std::vector<std::string> inherited;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int flags = fcntl(std::stoi(entry.path().filename()), F_GETFD);
        if (flags >= 0 && (flags & FD_CLOEXEC) == 0) {
            inherited.push_back(entry.path());
        }
    }
    return inherited;
}

TEST(HttpServer, ChildrenOfAHandlerInheritNeitherDescriptorsNorBlockedSignals) {
    const std::vector<std::string> before = InheritedDescriptors();
    std::vector<std::string> within;
    bool isAnySignalBlocked = true;
    Server server(AnyPort(), [&](const Request&) {
        within = InheritedDescriptors();
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        isAnySignalBlocked = sigisemptyset(&blocked) == 0;
        return Response{};
    });
    CimClient(server.Port()).Request("POST", {}, "");
    EXPECT_THAT(within, testing::UnorderedElementsAreArray(before));
    EXPECT_FALSE(isAnySignalBlocked);
}

TEST(HttpServer, AClientThatLeavesWithinAnAnswerEndsNothingElse) {
    Server server(AnyPort(),
                  [](const Request&) { return TextAnswer(std::string(30'000'000, 'x')); });
    {
        CimClient client(server.Port());
        client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n");
    }
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body.size(), 30'000'000U);
}

} // namespace
