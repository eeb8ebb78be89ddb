// What ends a connection from outside: heads too large, requests too slow, too many at once.
#include "HttpTest.hpp"

#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::chrono_literals;
using cimserver::http::Limit;
using cimserver::http::Request;
using cimserver::http::Server;
using cimserver::http::Settings;
using http_test::Answer;
using http_test::Nothing;
using test_support::CimClient;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class Recorder final : public cimserver::http::Observer {
public:
    void Reached(Limit limit, const std::string& clientAddress) override {
        const std::lock_guard lock(mutex_);
        limits_.push_back(limit);
        addresses_.push_back(clientAddress);
    }
    void Refused(int status, const std::string& clientAddress) override {
        const std::lock_guard lock(mutex_);
        statuses_.push_back(status);
        addresses_.push_back(clientAddress);
        told_.notify_all();
    }
    std::vector<Limit> Limits() {
        const std::lock_guard lock(mutex_);
        return limits_;
    }
    std::vector<int> Statuses() {
        const std::lock_guard lock(mutex_);
        return statuses_;
    }
    /// Once there is one; what belongs to it is told before.
    std::vector<int> WaitForStatuses() {
        std::unique_lock lock(mutex_);
        told_.wait_for(lock, 30s, [this] { return !statuses_.empty(); });
        return statuses_;
    }
    std::vector<std::string> Addresses() {
        const std::lock_guard lock(mutex_);
        return addresses_;
    }

private:
    std::mutex mutex_;
    std::condition_variable told_;
    std::vector<Limit> limits_;
    std::vector<int> statuses_;
    std::vector<std::string> addresses_;
};

class RequestLimits : public testing::Test {
protected:
    RequestLimits() {
        settings.port = 0;
        settings.observer = &recorder;
    }
    Recorder recorder;
    Settings settings;
};

std::string HeadOf(std::size_t size) {
    const std::string start = "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\nX-Fill: ";
    return start + std::string(size - start.size() - 4, 'x') + "\r\n\r\n";
}

TEST_F(RequestLimits, AHeadOfTheLimitPassesAndOneByteMoreIsRefused) {
    const Server server(settings, &Nothing);
    CimClient client(server.Port());
    client.Send(HeadOf(8192));
    EXPECT_EQ(client.Receive().status, 200);
    EXPECT_THAT(recorder.Limits(), IsEmpty());
    client.Send(HeadOf(8193));
    EXPECT_EQ(client.Receive().status, 431);
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::headerBytes));
    EXPECT_THAT(recorder.Statuses(), ElementsAre(431));
    EXPECT_THAT(recorder.Addresses(), Each("127.0.0.1"));
}

TEST_F(RequestLimits, AHeadThatTheHttpLibraryRefusesIsToldWithoutAStatus) {
    const Server server(settings, &Nothing);
    CimClient client(server.Port());
    client.Send(HeadOf(200'000));
    EXPECT_EQ(client.Receive().status, 431);
    EXPECT_THAT(recorder.WaitForStatuses(), ElementsAre(0));
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::headerBytes));
}

TEST_F(RequestLimits, AHeadThatIsNoneIsToldWithoutAStatusAndIsNoLimit) {
    const Server server(settings, &Nothing);
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nno header\r\n\r\n");
    EXPECT_EQ(client.Receive().status, 400);
    EXPECT_TRUE(client.IsClosedByServer());
    EXPECT_THAT(recorder.WaitForStatuses(), ElementsAre(0));
    EXPECT_THAT(recorder.Limits(), IsEmpty());
}

TEST_F(RequestLimits, TheLargestHeadThatCanBeAllowedPasses) {
    settings.maxHeaderBytes = 32'768;
    const Server server(settings, &Nothing);
    CimClient client(server.Port());
    client.Send(HeadOf(32'768));
    EXPECT_EQ(client.Receive().status, 200);
    client.Send(HeadOf(32'769));
    EXPECT_EQ(client.Receive().status, 431);
}

TEST_F(RequestLimits, ABodyAboveTheLimitIsTold) {
    settings.maxBodyBytes = 10;
    const Server server(settings, &Nothing);
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "hello, world").status, 413);
    CimClient chunked(server.Port());
    chunked.Send("POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n"
                 "6\r\nhello \r\n6\r\nworld \r\n6\r\nagain \r\n0\r\n\r\n");
    EXPECT_EQ(chunked.Receive().status, 413);
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::bodyBytes, Limit::bodyBytes));
    EXPECT_THAT(recorder.Statuses(), ElementsAre(413, 413));
}

TEST_F(RequestLimits, FaultsOfTheFramingAreToldWithTheirStatus) {
    const Server server(settings, &Nothing);
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(client.Receive().status, 400);
    EXPECT_THAT(recorder.Statuses(), ElementsAre(400));
    EXPECT_THAT(recorder.Limits(), IsEmpty());
}

/// Sends the text byte by byte, the last one again and again, until the server has had enough.
void Drip(CimClient& client, std::string_view text) {
    try {
        for (std::size_t i = 0; i < 1000; ++i) {
            client.Send(text.substr(std::min(i, text.size() - 1), 1));
            std::this_thread::sleep_for(20ms);
        }
        ADD_FAILURE() << "it could go on for ever";
    } catch (const std::runtime_error&) {
        // The server closed the connection.
    }
}

/// The status that ends a request that drips; the time that passes is a second, not the 20 of the
/// drops.
class SlowRequest : public RequestLimits, public testing::WithParamInterface<const char*> {};

TEST_P(SlowRequest, GetsStatus408AndIsClosed) {
    settings.requestSeconds = 1;
    std::atomic<int> calls = 0;
    auto server = std::make_unique<Server>(settings, [&](const Request&, Answer&) { ++calls; });
    CimClient client(server->Port());
    std::thread drops([&] { Drip(client, GetParam()); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.Receive().status, 408);
    EXPECT_GT(std::chrono::steady_clock::now() - start, 900ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    drops.join();
    server.reset(); // all is told then
    EXPECT_EQ(calls, 0);
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::requestTime));
    EXPECT_THAT(recorder.Statuses(), ElementsAre(408));
}

INSTANTIATE_TEST_SUITE_P(
    All, SlowRequest,
    testing::Values("POST /xxxxxxxx", "POST / HTTP/1.1\r\nHost: h\r\nX-Fill: xxxx",
                    "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 1000\r\n\r\nxxxx",
                    "POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx"));

TEST_F(RequestLimits, AConnectionThatSendsNothingEndsAfterTheTimeOfARequest) {
    settings.requestSeconds = 1;
    auto server = std::make_unique<Server>(settings, &Nothing);
    CimClient client(server->Port());
    EXPECT_EQ(client.Receive().status, 408);
    EXPECT_TRUE(client.IsClosedByServer());
    server.reset(); // all is told then
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::requestTime));
}

TEST_F(RequestLimits, BetweenRequestsTheIdleTimeCounts) {
    settings.requestSeconds = 1;
    const Server server(settings, &Nothing);
    CimClient client(server.Port());
    EXPECT_EQ(client.Request("POST", {}, "").status, 200);
    std::this_thread::sleep_for(1500ms);
    EXPECT_EQ(client.Request("POST", {}, "").status, 200);
    EXPECT_THAT(recorder.Limits(), IsEmpty());
}

TEST_F(RequestLimits, TheSecondRequestOfAConnectionIsTimedToo) {
    settings.requestSeconds = 1;
    auto server = std::make_unique<Server>(settings, &Nothing);
    CimClient client(server->Port());
    EXPECT_EQ(client.Request("POST", {}, "").status, 200);
    std::thread drops([&] { Drip(client, "POST /xxx"); });
    EXPECT_EQ(client.Receive().status, 408);
    drops.join();
    server.reset(); // all is told then
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::requestTime));
}

TEST_F(RequestLimits, TheTimeOfAHandlerDoesNotCount) {
    settings.requestSeconds = 1;
    const Server server(settings,
                        [](const Request&, Answer&) { std::this_thread::sleep_for(1500ms); });
    CimClient client(server.Port());
    EXPECT_EQ(client.Request("POST", {}, "body").status, 200);
    EXPECT_EQ(client.Request("POST", {}, "body").status, 200);
    EXPECT_THAT(recorder.Limits(), IsEmpty());
}

/// A connection that comes from an address of one's own choice and is held.
class ConnectionFrom {
public:
    ConnectionFrom(const char* address, std::uint16_t port)
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in own{};
        own.sin_family = AF_INET;
        inet_pton(AF_INET, address, &own.sin_addr);
        sockaddr_in other{};
        other.sin_family = AF_INET;
        other.sin_port = htons(port);
        inet_pton(AF_INET, "127.0.0.1", &other.sin_addr);
        if (bind(socket_, reinterpret_cast<sockaddr*>(&own), sizeof own) != 0 ||
            connect(socket_, reinterpret_cast<sockaddr*>(&other), sizeof other) != 0) {
            throw std::runtime_error("cannot connect");
        }
        const timeval patience{30, 0};
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~ConnectionFrom() { close(socket_); }
    ConnectionFrom(const ConnectionFrom&) = delete;
    ConnectionFrom& operator=(const ConnectionFrom&) = delete;

    bool IsServed() const {
        constexpr std::string_view request =
            "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n";
        if (send(socket_, request.data(), request.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(request.size())) {
            return false;
        }
        std::string head;
        for (char byte = 0; !head.ends_with("\r\n\r\n") && recv(socket_, &byte, 1, 0) == 1;) {
            head += byte;
        }
        return head.starts_with("HTTP/1.1 200");
    }

private:
    int socket_;
};

TEST_F(RequestLimits, ConnectionsOfOneAddressAreCounted) {
    settings.maxConnectionsPerAddress = 2;
    const Server server(settings, &Nothing);
    const ConnectionFrom first("127.0.0.1", server.Port());
    const ConnectionFrom second("127.0.0.1", server.Port());
    EXPECT_TRUE(first.IsServed());
    EXPECT_TRUE(second.IsServed());
    EXPECT_FALSE(ConnectionFrom("127.0.0.1", server.Port()).IsServed());
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::connectionsOfAddress));
    EXPECT_TRUE(ConnectionFrom("127.0.0.2", server.Port()).IsServed());
    EXPECT_TRUE(first.IsServed());
}

TEST_F(RequestLimits, ListenersCanShareTheNumberOfConnections) {
    settings.maxConnections = 2;
    settings.watch = cimserver::http::WatchTogether(settings);
    const Server one(settings, &Nothing);
    const Server other(settings, &Nothing);
    const ConnectionFrom first("127.0.0.1", one.Port());
    const ConnectionFrom second("127.0.0.2", other.Port());
    EXPECT_TRUE(first.IsServed());
    EXPECT_TRUE(second.IsServed());
    EXPECT_FALSE(ConnectionFrom("127.0.0.3", one.Port()).IsServed());
    EXPECT_FALSE(ConnectionFrom("127.0.0.3", other.Port()).IsServed());
    EXPECT_THAT(recorder.Limits(), ElementsAre(Limit::connections, Limit::connections));
    EXPECT_THAT(recorder.Addresses(), Each("127.0.0.3"));
}

TEST_F(RequestLimits, AHundredHalfOpenConnectionsGoAwayAndLeaveRoom) {
    settings.maxConnections = 100;
    settings.requestSeconds = 1;
    const Server server(settings, &Nothing);
    std::vector<std::unique_ptr<CimClient>> held;
    for (int i = 0; i < 100; ++i) {
        held.push_back(std::make_unique<CimClient>(server.Port()));
        held.back()->Send("POST / HT");
    }
    for (const auto& client : held) {
        EXPECT_EQ(client->Receive().status, 408);
    }
    const auto end = std::chrono::steady_clock::now() + 20s;
    bool isServed = false;
    while (!isServed && std::chrono::steady_clock::now() < end) {
        isServed = ConnectionFrom("127.0.0.1", server.Port()).IsServed();
    }
    EXPECT_TRUE(isServed);
}

} // namespace
