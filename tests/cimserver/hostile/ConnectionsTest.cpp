// Clients that take their time, say nothing, or are gone in the middle.
#include "Attack.hpp"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using hostile::LargeQuestion;
using hostile::Posted;
using hostile::SmallQuestion;
using test_support::CimClient;

using Connections = std::vector<std::unique_ptr<CimClient>>;

/// As many as the kernel takes, not all of which the server serves.
Connections Connect(std::uint16_t port, int count) {
    Connections connections;
    for (int i = 0; i < count; ++i) {
        connections.push_back(std::make_unique<CimClient>(port));
    }
    return connections;
}

/// Sends the text to all, byte after byte, each byte to all before the next. Who has been closed is
/// left out.
void SendSlowly(Connections& connections, std::string_view text) {
    for (const char byte : text) {
        for (auto& connection : connections) {
            try {
                if (connection) {
                    connection->Send({&byte, 1});
                }
            } catch (const std::runtime_error&) {
                connection.reset();
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

class HostileConnections : public hostile::Attack {};

TEST_F(HostileConnections, ThatSendTheirHeadersSlowly) {
    Suffer([this] {
        auto connections = Connect(Port(), 20);
        SendSlowly(connections, Posted(SmallQuestion()).substr(0, 200));
    });
}

TEST_F(HostileConnections, ThatSendTheirBodySlowly) {
    Suffer([this] {
        auto connections = Connect(Port(), 20);
        SendSlowly(connections,
                   "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 100000\r\n\r\n" +
                       SmallQuestion().substr(0, 200));
    });
}

TEST_F(HostileConnections, ThatSendASlowButWholeRequestAreAnswered) {
    Suffer([this] {
        auto connections = Connect(Port(), 5);
        SendSlowly(connections, Posted(SmallQuestion()));
        for (auto& connection : connections) {
            ASSERT_TRUE(connection);
            EXPECT_EQ(connection->Receive().status, 200);
        }
    });
}

TEST_F(HostileConnections, ThatAreOpenedByTheHundredAndSayNothing) {
    Suffer([this] { const auto connections = Connect(Port(), 400); });
}

TEST_F(HostileConnections, ThatAreOpenedAndClosedByTheThousand) {
    Suffer([this] {
        for (int i = 0; i < 2000; ++i) {
            const CimClient client(Port());
        }
    });
}

TEST_F(HostileConnections, ThatAskAndGo) {
    Suffer([this] {
        for (int i = 0; i < 80; ++i) {
            try {
                CimClient client(Port());
                client.Send(Posted(LargeQuestion(), i % 2 == 0 ? "TE: trailers\r\n" : ""));
            } catch (const std::runtime_error&) {
                continue; // there was no room for one more
            }
        }
    });
}

// What is unread when they close makes it a reset.
TEST_F(HostileConnections, ThatGoInTheMiddleOfTheAnswer) {
    Suffer([this] {
        for (int i = 0; i < 40; ++i) {
            try {
                CimClient client(Port());
                client.Send(Posted(LargeQuestion(), "TE: trailers\r\n"));
                client.ReceiveBytes(1);
            } catch (const std::runtime_error&) {
                continue; // there was no room for one more
            }
        }
    });
}

TEST_F(HostileConnections, ThatDoNotReadTheirAnswers) {
    Suffer([this] {
        auto connections = Connect(Port(), 10);
        for (auto& connection : connections) {
            connection->Send(Posted(LargeQuestion(), "TE: trailers\r\n"));
        }
        connections.back()->ReceiveBytes(1);
    });
}

} // namespace
