// Answers that leave while they are made.
#include "HttpTest.hpp"

#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <semaphore>
#include <stdexcept>
#include <thread>

// The address sanitizer keeps freed memory back, by default 256 MB of it, which would hide what the
// tests of memory look for. Without that sanitizer nobody calls this.
extern "C" const char* __asan_default_options();
const char* __asan_default_options() {
    return "quarantine_size_mb=1";
}

namespace {

using cimserver::http::Request;
using cimserver::http::Server;
using cimserver::http::Settings;
using http_test::Answer;
using http_test::AnyPort;
using http_test::OpenFileIn;
using http_test::Pattern;
using http_test::SpoolDirectory;
using http_test::streamedRequest;
using test_support::CimClient;
using test_support::HeaderList;
using test_support::HttpAnswer;
using testing::HasSubstr;

constexpr std::size_t firstPortion = 64 * 1024;

HttpAnswer AskForStream(CimClient& client) {
    client.Send(streamedRequest);
    return client.Receive();
}

/// What has come since the last call, up to and with `end`.
std::string ReceiveUpTo(CimClient& client, std::string_view end) {
    std::string received;
    while (received.find(end) == std::string::npos) {
        received += client.ReceiveBytes(1);
    }
    return received;
}

TEST(Stream, TheFirstBytesArriveWhileTheHandlerIsStillRunning) {
    std::promise<void> mayGoOn;
    std::atomic<bool> isDone = false;
    const Server server(AnyPort(), [&](const Request&, Answer& answer) {
        answer.Append(std::string(firstPortion, 'x') + "so far\n");
        mayGoOn.get_future().wait();
        answer.Append("the rest");
        isDone = true;
    });
    CimClient client(server.Port());
    client.Send(streamedRequest);
    const std::string first = ReceiveUpTo(client, "so far\n");
    EXPECT_FALSE(isDone);
    EXPECT_THAT(first, HasSubstr("Transfer-Encoding: chunked"));
    mayGoOn.set_value();
    EXPECT_THAT(ReceiveUpTo(client, "\r\n0\r\n\r\n"), HasSubstr("8\r\nthe rest\r\n"));
}

std::size_t Count(const std::string& text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        ++count;
    }
    return count;
}

TEST(Stream, LaterPortionsLeaveAtOnceHoweverSmall) {
    constexpr std::size_t count = 50;
    std::counting_semaphore<> arrived(0);
    const Server server(AnyPort(), [&](const Request&, Answer& answer) {
        answer.Append(Pattern(firstPortion));
        for (std::size_t i = 0; i < count; ++i) {
            arrived.acquire();
            answer.Append("small");
        }
    });
    CimClient client(server.Port());
    client.Send(streamedRequest);
    client.ReceiveBytes(firstPortion);
    const auto start = std::chrono::steady_clock::now();
    std::string received;
    for (std::size_t i = 1; i <= count; ++i) {
        arrived.release();
        while (Count(received, "5\r\nsmall\r\n") < i) {
            received += client.ReceiveBytes(1);
        }
    }
    // Waiting for acknowledgements would cost 40 ms each, 2 s in all.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
}

TEST(Stream, AClientThatDoesNotReadHoldsNobodyUp) {
    const std::string part = Pattern(1'000'000);
    std::promise<void> made;
    const Server server(AnyPort(), [&](const Request&, Answer& answer) {
        for (int i = 0; i < 50; ++i) {
            answer.Append(part);
        }
        made.set_value();
    });
    CimClient client(server.Port());
    client.Send(streamedRequest);
    made.get_future().wait();
    const HttpAnswer answer = client.Receive();
    ASSERT_EQ(answer.body.size(), 50 * part.size());
    for (std::size_t i = 0; i < 50; ++i) {
        ASSERT_EQ(answer.body.compare(i * part.size(), part.size(), part), 0) << i;
    }
}

TEST(Stream, TrailersFollowTheTextAndAreAnnounced) {
    const Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.SetHead({200, {{"X-A", "1"}}, "X-Code, X-Text"});
        answer.Append(Pattern(200'000));
        EXPECT_TRUE(answer.HasLeft());
        answer.SetTrailers({{"X-Code", "7"}, {"X-Text", "a b%0A"}});
    });
    CimClient client(server.Port());
    const HttpAnswer answer = AskForStream(client);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.Header("X-A"), "1");
    EXPECT_EQ(answer.Header("Trailer"), "X-Code, X-Text");
    EXPECT_EQ(answer.Header("Content-Length"), "");
    EXPECT_TRUE(answer.body == Pattern(200'000));
    EXPECT_EQ(answer.trailers, (HeaderList{{"X-Code", "7"}, {"X-Text", "a b%0A"}}));
}

TEST(Stream, TheConnectionServesFurtherRequests) {
    const Server server(AnyPort(), [](const Request& request, Answer& answer) {
        answer.Append(request.body.empty() ? Pattern(300'000) : request.body);
    });
    CimClient client(server.Port());
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(AskForStream(client).body == Pattern(300'000));
        EXPECT_EQ(client.Request("POST", {}, "whole").body, "whole");
    }
}

TEST(Stream, AnAnswerBelowTheFirstPortionIsSentWhole) {
    const Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.SetHead({200, {}, "X-Code"});
        answer.Append(Pattern(firstPortion - 1));
        EXPECT_FALSE(answer.HasLeft());
    });
    CimClient client(server.Port());
    const HttpAnswer answer = AskForStream(client);
    EXPECT_EQ(answer.Header("Content-Length"), std::to_string(firstPortion - 1));
    EXPECT_EQ(answer.Header("Trailer"), "");
    EXPECT_TRUE(answer.body == Pattern(firstPortion - 1));
}

/// Whether a request with these header lines gets its answer in chunks.
bool IsStreamed(const std::string& version, const std::string& headerLines) {
    const Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.Append(Pattern(100'000));
        answer.Append(answer.HasLeft() ? "left" : "kept");
    });
    CimClient client(server.Port());
    client.Send("POST / " + version + "\r\nHost: h\r\n" + headerLines +
                "Content-Length: 0\r\n\r\n");
    const std::string received = client.ReceiveBytes(100'004);
    const bool isChunked = received.find("Transfer-Encoding: chunked") != std::string::npos;
    EXPECT_NE(isChunked, received.find("Content-Length: 100004\r\n") != std::string::npos);
    EXPECT_EQ(isChunked, received.find("kept") == std::string::npos);
    return isChunked;
}

TEST(Stream, IsForClientsThatTakeTrailersOnly) {
    for (const char* offer :
         {"TE: trailers\r\n", "te:Trailers\r\n", "TE: deflate;q=0.5 , trailers\r\n",
          "TE: deflate\r\nTE: gzip, trailers\r\n", "TE: trailers,gzip\r\n"}) {
        EXPECT_TRUE(IsStreamed("HTTP/1.1", offer)) << offer;
    }
    for (const char* noOffer :
         {"", "Connection: TE\r\n", "TE:\r\n", "TE: chunked\r\n", "TE: trailersx\r\n",
          "TE: trailers;q=0\r\n", "X-TE: trailers\r\n", "TE: ,,\r\n", "Trailer: trailers\r\n"}) {
        EXPECT_FALSE(IsStreamed("HTTP/1.1", noOffer)) << noOffer;
    }
    EXPECT_FALSE(IsStreamed("HTTP/1.0", "TE: trailers\r\n"));
}

TEST(Stream, WhatHasLeftIsNotTakenBack) {
    const Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.SetHead({207, {}, {}});
        answer.Append(Pattern(firstPortion));
        EXPECT_TRUE(answer.HasLeft());
        answer.SetHead({500, {}, {}});
        answer.Clear();
        answer.Append("end");
    });
    CimClient client(server.Port());
    const HttpAnswer answer = AskForStream(client);
    EXPECT_EQ(answer.status, 207);
    EXPECT_TRUE(answer.body == Pattern(firstPortion) + "end");
}

TEST(Stream, BeforeAnythingLeftTheAnswerCanStartAgain) {
    const Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.Append(Pattern(firstPortion - 1));
        answer.Clear();
        answer.Append(Pattern(firstPortion - 1));
        EXPECT_FALSE(answer.HasLeft());
    });
    CimClient client(server.Port());
    EXPECT_TRUE(AskForStream(client).body == Pattern(firstPortion - 1));
}

TEST(Stream, AnExceptionBreaksTheConnectionWithinTheAnswerAndTheServerGoesOn) {
    const Server server(AnyPort(), [](const Request& request, Answer& answer) {
        answer.Append(Pattern(firstPortion));
        if (request.body.empty()) {
            throw std::runtime_error("a secret");
        }
    });
    CimClient client(server.Port());
    client.Send(streamedRequest);
    EXPECT_THROW(client.Receive(), std::runtime_error);
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {{"TE", "trailers"}}, "x").body.size(),
              firstPortion);
}

TEST(Stream, AnExceptionBeforeAnythingLeftIsStatus500) {
    const Server server(AnyPort(), [](const Request&, Answer& answer) {
        answer.Append("a beginning");
        throw std::runtime_error("a secret");
    });
    CimClient client(server.Port());
    for (int i = 0; i < 2; ++i) {
        const HttpAnswer answer = AskForStream(client);
        EXPECT_EQ(answer.status, 500);
        EXPECT_EQ(answer.body, "");
    }
}

/// Appends until nothing of it is kept any more; false when that does not happen.
bool AppendUntilDropped(Answer& answer, const SpoolDirectory& directory) {
    const std::string part = Pattern(300'000);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (int i = 0; std::chrono::steady_clock::now() < limit; ++i) {
        answer.Append(part);
        const auto file = OpenFileIn(directory.Path());
        // What fits into memory makes no file.
        if (i >= 10 && (!file || file->size == 0)) {
            return true;
        }
    }
    return false;
}

TEST(Stream, AClientThatLeavesEndsNothingElseAndLeavesNothingBehind) {
    const SpoolDirectory directory;
    std::promise<void> clientHasLeft;
    std::promise<bool> isDropped;
    const Server server(AnyPort(), [&](const Request& request, Answer& answer) {
        answer.Append(Pattern(firstPortion));
        if (request.body.empty()) {
            clientHasLeft.get_future().wait();
            isDropped.set_value(AppendUntilDropped(answer, directory));
        }
    });
    {
        CimClient client(server.Port());
        client.Send(streamedRequest);
        client.ReceiveBytes(1000);
    }
    clientHasLeft.set_value();
    EXPECT_TRUE(isDropped.get_future().get());
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {{"TE", "trailers"}}, "x").body.size(),
              firstPortion);
}

TEST(Stream, TheDestructorWaitsForARunningHandler) {
    std::promise<void> entered;
    std::promise<void> mayLeave;
    std::atomic<bool> left = false;
    auto server = std::make_unique<Server>(AnyPort(), [&](const Request&, Answer& answer) {
        answer.Append(Pattern(firstPortion));
        entered.set_value();
        mayLeave.get_future().wait();
        answer.Append(Pattern(firstPortion));
        left = true;
    });
    CimClient client(server->Port());
    client.Send(streamedRequest);
    entered.get_future().wait();
    auto stopped = std::async(std::launch::async, [&] {
        server.reset();
        return left.load();
    });
    EXPECT_EQ(stopped.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    mayLeave.set_value();
    EXPECT_TRUE(stopped.get());
}

TEST(Stream, ChildrenOfAHandlerInheritNoBlockedSignals) {
    bool isAnySignalBlocked = true;
    const Server server(AnyPort(), [&](const Request&, Answer&) {
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        isAnySignalBlocked = sigisemptyset(&blocked) == 0;
    });
    CimClient client(server.Port());
    AskForStream(client);
    EXPECT_FALSE(isAnySignalBlocked);
}

TEST(Stream, ManyClientsAtOnceGetTheirOwnAnswers) {
    const Server server(AnyPort(), [](const Request& request, Answer& answer) {
        const auto start = static_cast<std::uint32_t>(std::stoul(request.body));
        for (int i = 0; i < 20; ++i) {
            answer.Append(Pattern(100'000, start));
        }
        answer.SetTrailers({{"X-Start", request.body}});
    });
    const auto ask = [&](std::uint32_t start) {
        const std::string name = std::to_string(start);
        CimClient client(server.Port());
        for (int round = 0; round < 3; ++round) {
            const HttpAnswer answer = client.Request("POST", {{"TE", "trailers"}}, name);
            if (answer.trailers != HeaderList{{"X-Start", name}} ||
                answer.body.substr(1'900'000) != Pattern(100'000, start)) {
                return false;
            }
        }
        return true;
    };
    std::vector<std::future<bool>> clients;
    for (const std::uint32_t start : {1U, 1000U, 77'777U, 123'456'789U}) {
        clients.push_back(std::async(std::launch::async, ask, start));
    }
    for (auto& client : clients) {
        EXPECT_TRUE(client.get());
    }
}

/// Memory of this process that no file stands behind, in bytes.
std::size_t Memory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "RssAnon:") {
            std::size_t kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    }
    throw std::runtime_error("the kernel does not tell");
}

/// By how much memory grows while an answer of 200 MB is made and a client takes it a little at a
/// time.
std::size_t GrowthFor200Megabytes(const std::string& offer) {
    const std::string part = Pattern(1'000'000);
    std::atomic<std::size_t> most = 0;
    const Server server(AnyPort(), [&](const Request&, Answer& answer) {
        for (int i = 0; i < 200; ++i) {
            answer.Append(part);
            most = std::max(most.load(), Memory());
        }
    });
    CimClient client(server.Port());
    const std::size_t before = Memory();
    client.Send("POST / HTTP/1.1\r\nHost: h\r\n" + offer + "Content-Length: 0\r\n\r\n");
    std::size_t received = 0;
    while (received < 200 * part.size()) {
        received += client.ReceiveBytes(1).size();
        if (received % 7 == 0) {
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    }
    most = std::max(most.load(), Memory());
    return most - before;
}

TEST(StreamMemory, DoesNotGrowWithAnAnswerThatStreams) {
    EXPECT_LT(GrowthFor200Megabytes("TE: trailers\r\n"), std::size_t{24} * 1024 * 1024);
}

TEST(StreamMemory, DoesNotGrowWithAnAnswerThatIsSentWhole) {
    EXPECT_LT(GrowthFor200Megabytes(""), std::size_t{24} * 1024 * 1024);
}

} // namespace
