// Servers that do not answer.

#include <cstring>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <gmock/gmock.h>

#include "patchkeeper/Descriptor.hpp"
#include "patchkeeper/network/OnNetwork.hpp"

namespace {

using patchkeeper::Descriptor;

constexpr std::uint16_t port = 7777;

// Listens, but takes no connection. The system connects by itself as many as the queue has room
// for.
class MuteServer {
public:
    explicit MuteServer(int queue) : listening_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const sockaddr address = Address();
        if (bind(listening_.Number(), &address, sizeof address) != 0 ||
            listen(listening_.Number(), queue) != 0) {
            throw std::runtime_error("the port cannot be listened on");
        }
    }
    // After this the system connects nobody any longer, and does not tell them: of a queue for 0.
    void FillQueue() {
        for (int i = 0; i < 8; ++i) {
            waiting_.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            const sockaddr address = Address();
            connect(waiting_.back().Number(), &address, sizeof address);
        }
    }

private:
    static sockaddr Address() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        sockaddr general{};
        std::memcpy(&general, &address, sizeof general);
        return general;
    }

    Descriptor listening_;
    std::vector<Descriptor> waiting_;
};

struct Row {
    const char* command;
    int code;
};
constexpr Row ftp = {"--ftp 127.0.0.1 '' '' :7777/share/a.tar.gz", 11};
constexpr Row http = {"--http 127.0.0.1 '' '' :7777/share/a.tar.gz", 19};
constexpr Row https = {"--http 127.0.0.1 '' '' :7777/share/a.tar.gz true", 20};
constexpr Row smb = {"--samba 127.0.0.1 '' '' :7777/share/a.tar.gz", 21};

class Timeout : public patchkeeper_test::OnNetwork {
protected:
    // Ends each fetch after about a second: longer than that, but not as long as the other setting
    // would have it.
    void ExpectFailuresWithin(const std::vector<Row>& rows, const std::string& setting,
                              const std::string& other) const {
        directory_.Write("root/patchkeeper.conf", setting + " = 1\n" + other + " = 60\n");
        for (const Row& row : rows) {
            const auto begin = std::chrono::steady_clock::now();
            ExpectFailureLike(row.command, row.code,
                              testing::HasSubstr("127.0.0.1:7777/share/a.tar.gz cannot be "
                                                 "fetched: "));
            const auto taken = std::chrono::steady_clock::now() - begin;
            EXPECT_GE(taken, std::chrono::milliseconds(900)) << row.command;
            EXPECT_LE(taken, std::chrono::seconds(20)) << row.command;
        }
    }
};

TEST_F(Timeout, ServerThatSaysNothingIsGivenUp) {
    const MuteServer server(100);
    ExpectFailuresWithin({ftp, http, smb}, "transfer_timeout", "connect_timeout");
}

TEST_F(Timeout, AgreeingOnEncryptionIsPartOfConnecting) {
    const MuteServer server(100);
    ExpectFailuresWithin({https}, "connect_timeout", "transfer_timeout");
}

TEST_F(Timeout, ServerThatTakesNoConnectionIsGivenUp) {
    MuteServer server(0);
    server.FillQueue();
    ExpectFailuresWithin({ftp, http, https, smb}, "connect_timeout", "transfer_timeout");
}

} // namespace
