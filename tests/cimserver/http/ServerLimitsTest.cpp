// Limits of the HTTP service, and addresses that cannot be listened on.
#include "HttpTest.hpp"

#include "cimserver/http/Http.hpp"
#include "support/CimClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using cimserver::http::ListenError;
using cimserver::http::Request;
using cimserver::http::Server;
using cimserver::http::Settings;
using http_test::Answer;
using http_test::Nothing;
using test_support::CimClient;

Settings WithBodyLimit(std::size_t bytes) {
    Settings settings;
    settings.port = 0;
    settings.maxBodyBytes = bytes;
    return settings;
}

/// The number of handler calls and the size of the last body, as status and length.
struct Counting {
    std::atomic<int> calls = 0;
    std::atomic<std::size_t> lastSize = 0;

    void operator()(const Request& request, Answer& /*answer*/) {
        ++calls;
        lastSize = request.body.size();
    }
};

TEST(HttpLimits, ABodyOfTheLimitPassesAndOneByteMoreIsRefused) {
    Counting counting;
    Server server(WithBodyLimit(100'000), std::ref(counting));
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, std::string(100'000, 'x')).status, 200);
    EXPECT_EQ(counting.lastSize, 100'000U);
    EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, std::string(100'001, 'x')).status, 413);
    EXPECT_EQ(counting.calls, 1);
}

TEST(HttpLimits, AnAnnouncedExcessIsRefusedBeforeTheBodyCame) {
    Counting counting;
    Server server(WithBodyLimit(1000), std::ref(counting));
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 1001\r\n\r\n");
    EXPECT_EQ(client.Receive().status, 413);
    EXPECT_EQ(counting.calls, 0);
}

TEST(HttpLimits, AChunkedBodyIsLimitedToo) {
    Counting counting;
    Server server(WithBodyLimit(10), std::ref(counting));
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n"
                "b\r\nhello world\r\n0\r\n\r\n");
    EXPECT_EQ(client.Receive().status, 413);
    EXPECT_EQ(counting.calls, 0);
}

TEST(HttpLimits, AnEndlessBodyIsCutOff) {
    Counting counting;
    Server server(WithBodyLimit(1000), std::ref(counting));
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string chunk = "3e8\r\n" + std::string(1000, 'x') + "\r\n";
    EXPECT_THROW(
        {
            for (int i = 0; i < 100'000; ++i) {
                client.Send(chunk);
            }
        },
        std::runtime_error);
    EXPECT_EQ(counting.calls, 0);
}

TEST(HttpLimits, AnOversizedHeaderIsRefused) {
    Counting counting;
    Server server(WithBodyLimit(1000), std::ref(counting));
    CimClient client(server.Port());
    client.Send("POST / HTTP/1.1\r\nHost: h\r\nX-Big: " + std::string(100'000, 'x') + "\r\n\r\n");
    EXPECT_EQ(client.Receive().status, 431);
    EXPECT_EQ(counting.calls, 0);
}

bool IsServed(std::uint16_t port) {
    try {
        return CimClient(port).Request("POST", {}, "").status == 200;
    } catch (const std::runtime_error&) {
        return false;
    }
}

TEST(HttpLimits, AConnectionAboveTheLimitIsRefusedUntilThereIsRoom) {
    Settings settings = WithBodyLimit(1000);
    settings.maxConnections = 1;
    Server server(settings, &Nothing);
    auto first = std::make_unique<CimClient>(server.Port());
    EXPECT_EQ(first->Request("POST", {}, "").status, 200);
    CimClient second(server.Port());
    EXPECT_EQ(second.Receive().status, 503);
    EXPECT_TRUE(second.IsClosedByServer());
    EXPECT_EQ(first->Request("POST", {}, "").status, 200);
    first.reset();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    bool isServed = false;
    while (!isServed && std::chrono::steady_clock::now() < limit) {
        isServed = IsServed(server.Port());
    }
    EXPECT_TRUE(isServed);
}

TEST(HttpLimits, WhatAConnectionAboveTheLimitAsksIsNotDone) {
    Settings settings = WithBodyLimit(1000);
    settings.maxConnections = 1;
    Counting counting;
    Server server(settings, std::ref(counting));
    CimClient first(server.Port());
    EXPECT_EQ(first.Request("POST", {}, "").status, 200);
    int told = 0;
    for (int i = 0; i < 50; ++i) {
        try {
            EXPECT_EQ(CimClient(server.Port()).Request("POST", {}, "").status, 503);
            ++told;
        } catch (const std::runtime_error&) {
            // closed before it had sent its request
        }
    }
    EXPECT_EQ(counting.calls, 1);
    EXPECT_GT(told, 0);
}

TEST(HttpLimits, AnIdleConnectionIsClosed) {
    Settings settings = WithBodyLimit(1000);
    settings.idleSeconds = 1;
    Server server(settings, &Nothing);
    CimClient client(server.Port());
    EXPECT_EQ(client.Request("POST", {}, "").status, 200);
    EXPECT_TRUE(client.IsClosedByServer());
}

TEST(HttpLimits, TheTimeOfAHandlerIsNoIdleTime) {
    Settings settings = WithBodyLimit(1000);
    settings.idleSeconds = 1;
    Server server(settings, [](const Request&, Answer&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2000));
    });
    CimClient client(server.Port());
    EXPECT_EQ(client.Request("POST", {}, "").status, 200);
    EXPECT_TRUE(client.IsClosedByServer());
}

std::string TextOfListenError(const std::string& address, std::uint16_t port) {
    Settings settings;
    settings.address = address;
    settings.port = port;
    try {
        const Server server(settings, &Nothing);
    } catch (const ListenError& error) {
        return error.what();
    }
    return "no error";
}

TEST(HttpListening, APortInUseIsNamedWithTheReason) {
    Settings settings;
    settings.port = 0;
    const Server server(settings, &Nothing);
    EXPECT_EQ(
        TextOfListenError("127.0.0.1", server.Port()),
        "Cannot listen on 127.0.0.1:" + std::to_string(server.Port()) +
            ": Address already in use; --listen and --tls-listen choose another address or port");
}

TEST(HttpListening, AnAddressThatIsNoneOfThisMachineIsNamed) {
    EXPECT_EQ(TextOfListenError("192.0.2.1", 0),
              "Cannot listen on 192.0.2.1:0: Cannot assign requested address; --listen and "
              "--tls-listen choose another address or port");
}

TEST(HttpListening, AHostNameIsNoAddress) {
    EXPECT_EQ(TextOfListenError("localhost", 5988),
              "Cannot listen on localhost:5988: not a numeric IPv4 or IPv6 address; --listen and "
              "--tls-listen choose another address or port");
}

TEST(HttpListening, ThePortIsFreeAgainAfterTheServersEnd) {
    Settings settings;
    settings.port = 0;
    auto server = std::make_unique<Server>(settings, &Nothing);
    settings.port = server->Port();
    CimClient client(settings.port);
    client.Request("POST", {}, "");
    server.reset();
    server = std::make_unique<Server>(settings, &Nothing);
    EXPECT_EQ(CimClient(settings.port).Request("POST", {}, "").status, 200);
}

} // namespace
