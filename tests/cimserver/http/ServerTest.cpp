#include "HttpTest.hpp"

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

using cimserver::http::Request;
using cimserver::http::Server;
using http_test::Answer;
using http_test::AnyPort;
using http_test::Nothing;
using http_test::OpenFileIn;
using http_test::Pattern;
using http_test::SpoolDirectory;
using http_test::Text;
using test_support::CimClient;
using test_support::HttpAnswer;

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
    Server server(AnyPort(), [&](const Request& request, Answer& answer) {
        seen = request;
        answer.Append("ok");
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
    Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.SetHead({207, {{"X-A", "1"}, {"X-B", "two words"}}, {}});
        answer.Append("body");
    });
    CimClient client(server.Port());
    const HttpAnswer answer = client.Request("POST", {}, "");
    EXPECT_EQ(answer.status, 207);
    EXPECT_EQ(answer.Header("X-A"), "1");
    EXPECT_EQ(answer.Header("X-B"), "two words");
    EXPECT_EQ(answer.body, "body");
}

TEST(HttpServer, AnswersWithoutBodyHaveLengthZero) {
    Server server(AnyPort(), &Nothing);
    CimClient client(server.Port());
    const HttpAnswer answer = client.Request("GET", {}, "");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.Header("Content-Length"), "0");
}

TEST(HttpServer, KeepsTheConnectionForFurtherRequests) {
    std::atomic<int> calls = 0;
    Server server(AnyPort(), [&](const Request& request, Answer& answer) {
        answer.Append(request.body + std::to_string(++calls));
    });
    CimClient client(server.Port());
    EXPECT_EQ(client.Request("POST", {}, "a").body, "a1");
    EXPECT_EQ(client.Request("POST", {}, "bb").body, "bb2");
    EXPECT_EQ(client.Request("POST", {}, "").body, "3");
}

TEST(HttpServer, TakesAChunkedBody) {
    Server server(AnyPort(),
                  [](const Request& request, Answer& answer) { answer.Append(request.body); });
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n"
                "5\r\nhello\r\n6\r\n world\r\n0\r\n\r\n");
    EXPECT_EQ(client.Receive().body, "hello world");
}

TEST(HttpServer, ServesClientsAtTheSameTime) {
    std::latch both(2);
    Server server(AnyPort(), [&](const Request& request, Answer& answer) {
        both.arrive_and_wait();
        answer.Append(request.body);
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
    const std::string expected = Pattern(size);
    Server server(AnyPort(), Text(expected));
    CimClient client(server.Port());
    for (int round = 0; round < 2; ++round) {
        const HttpAnswer answer = client.Request("POST", {}, "");
        ASSERT_EQ(answer.Header("Content-Length"), std::to_string(size));
        EXPECT_TRUE(answer.body == expected);
    }
}

TEST(HttpServer, AnAnswerThatDoesNotFitIntoMemoryIsInAFileUntilItIsSent) {
    const SpoolDirectory directory;
    const std::string expected = Pattern(5'000'000);
    bool isInFile = false;
    Server server(AnyPort(), [&](const Request&, Answer& answer) {
        answer.Append(expected);
        isInFile = OpenFileIn(directory.Path()).has_value();
    });
    CimClient client(server.Port());
    EXPECT_TRUE(client.Request("POST", {}, "").body == expected);
    EXPECT_TRUE(isInFile);
    client.FinishSending();
    EXPECT_TRUE(client.IsClosedByServer());
    EXPECT_FALSE(OpenFileIn(directory.Path()).has_value());
}

TEST(HttpServer, AnAnswerThatCanBeKeptNowhereIsStatus500) {
    const SpoolDirectory directory;
    cimserver::http::Settings settings = AnyPort();
    settings.spoolDirectory = directory.Path() + "/none";
    std::string reason;
    Server server(settings, [&](const Request& request, Answer& answer) {
        try {
            answer.Append(std::string(request.body.empty() ? 100 : 3'000'000, 'x'));
        } catch (const std::runtime_error& error) {
            reason = error.what();
            throw;
        }
    });
    CimClient client(server.Port());
    const HttpAnswer answer = client.Request("POST", {}, "large");
    EXPECT_EQ(answer.status, 500);
    EXPECT_EQ(answer.body, "");
    EXPECT_EQ(reason, "The answer needs a file in " + settings.spoolDirectory +
                          ": No such file or directory");
    EXPECT_EQ(client.Request("POST", {}, "").body.size(), 100U);
}

TEST(HttpServer, AClearedAnswerStartsAgain) {
    Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.Append(Pattern(3'000'000));
        EXPECT_FALSE(answer.HasLeft());
        answer.Clear();
        answer.Append("short");
    });
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body, "short");
}

TEST(HttpServer, SmallAnswersLeaveAtOnce) {
    Server server(AnyPort(), Text("small"));
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
    Server server(AnyPort(), [&](const Request&, Answer& answer) {
        switch (++call) {
        case 1:
            throw std::runtime_error("a secret");
        case 2:
            throw 5;
        case 3:
            throw std::bad_alloc();
        default:
            answer.Append("fine");
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
    auto server = std::make_unique<Server>(AnyPort(), [&](const Request&, Answer&) {
        entered.set_value();
        mayLeave.get_future().wait();
        left = true;
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
    Server server(AnyPort(), [&](const Request&, Answer&) {
        within = InheritedDescriptors();
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        isAnySignalBlocked = sigisemptyset(&blocked) == 0;
    });
    CimClient(server.Port()).Request("POST", {}, "");
    EXPECT_THAT(within, testing::UnorderedElementsAreArray(before));
    EXPECT_FALSE(isAnySignalBlocked);
}

TEST(HttpServer, AClientThatLeavesWithinAnAnswerEndsNothingElse) {
    Server server(AnyPort(), Text(std::string(30'000'000, 'x')));
    {
        CimClient client(server.Port());
        client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n");
    }
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").body.size(), 30'000'000U);
}

} // namespace
