// Requests that are too large, too deep, too many at once, or none.
#include "Attack.hpp"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using hostile::Posted;
using hostile::SmallQuestion;
using hostile::StatusAfter;
using test_support::CimClient;

class HostileBytes : public hostile::Attack {
protected:
    /// The status of the answer to these bytes on a connection of its own, 0 when it is closed.
    int StatusOf(std::string_view bytes) const {
        CimClient client(Port());
        return StatusAfter(client, bytes);
    }
};

std::string Times(int count, const std::string& text) {
    std::string all;
    all.reserve(static_cast<std::size_t>(count) * text.size());
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST_F(HostileBytes, LongTargetsAndHeaders) {
    Suffer([this] {
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(StatusOf("POST /" + std::string(100'000, 'x') + " HTTP/1.1\r\n\r\n"), 414);
            EXPECT_EQ(StatusOf("POST / HTTP/1.1\r\nHost: localhost\r\nX: " +
                               std::string(100'000, 'x') + "\r\n\r\n"),
                      431);
            EXPECT_EQ(StatusOf("POST / HTTP/1.1\r\nHost: localhost\r\n" +
                               Times(20'000, "X: y\r\n") + "\r\n"),
                      431);
        }
    });
}

TEST_F(HostileBytes, LargeBodies) {
    Suffer([this] {
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(
                StatusOf("POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2000000\r\n\r\n"),
                413);
            EXPECT_EQ(
                StatusOf(
                    "POST / HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n" +
                    Times(2000, "3e8\r\n" + std::string(1000, 'x') + "\r\n")),
                0);
            EXPECT_EQ(StatusOf(Posted(SmallQuestion() + std::string(1'000'000, ' '))), 200);
        }
    });
}

TEST_F(HostileBytes, XmlThatIsDeepOrWide) {
    Suffer([this] {
        const std::string start = SmallQuestion().substr(0, 200);
        for (const std::string& middle :
             {Times(100'000, "<CIM>"), Times(60'000, "<a/>"),
              "<CIM " + Times(50'000, "a=\"\" ") + ">", "<CIM a=\"" + std::string(900'000, 'x')}) {
            EXPECT_EQ(StatusOf(Posted(SmallQuestion().insert(200, middle))), 400);
        }
    });
}

TEST_F(HostileBytes, Garbage) {
    std::uint32_t state = 4711;
    Suffer([this, &state] {
        for (int i = 0; i < 300; ++i) {
            std::string bytes(200, '\0');
            for (char& byte : bytes) {
                state = state * 1664525U + 1013904223U;
                byte = static_cast<char>(state >> 24U);
            }
            CimClient client(Port());
            try {
                client.Send(bytes);
                client.FinishSending();
                client.IsClosedByServer();
            } catch (const std::runtime_error&) {
                continue; // closed already
            }
        }
    });
}

TEST_F(HostileBytes, RequestsThatDoNotWaitForAnswersAreAnsweredInTheirOrder) {
    Suffer([this] {
        CimClient client(Port());
        std::string requests;
        for (int i = 0; i < 100; ++i) {
            std::string body = SmallQuestion();
            body.replace(body.find("4711"), 4, std::to_string(1000 + i));
            requests += Posted(body);
        }
        client.Send(requests);
        for (int i = 0; i < 100; ++i) {
            const std::string body = client.Receive().body;
            ASSERT_NE(body.find("<MESSAGE ID=\"" + std::to_string(1000 + i)), std::string::npos)
                << body;
        }
    });
}

} // namespace
