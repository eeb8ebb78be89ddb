#include "bench/HttpClient.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace bench {
namespace {

class Connection {
public:
    explicit Connection(std::uint16_t port)
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            throw std::runtime_error("cannot connect");
        }
    }
    ~Connection() { close(socket_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Send(const std::string& text) const {
        if (send(socket_, text.data(), text.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("cannot send the request");
        }
    }
    std::size_t Receive(char* target, std::size_t room) const {
        const ssize_t count = recv(socket_, target, room, 0);
        if (count <= 0) {
            throw std::runtime_error("the connection broke");
        }
        return static_cast<std::size_t>(count);
    }

private:
    int socket_;
};

/// One answer as it arrives through a buffer of fixed size.
class AnswerReader {
public:
    AnswerReader(const Connection& connection, std::string* keep)
        : connection_(connection), keep_(keep) {}

    /// A line without its end; blocks are cut into lines only where the head and chunks need it.
    std::string Line() {
        std::string line;
        for (;;) {
            const std::string_view there = There();
            const std::size_t end = there.find('\n');
            line.append(there.substr(0, end));
            next_ += std::min(end, there.size() - 1) + 1;
            if (end != std::string_view::npos) {
                line.pop_back(); // the carriage return
                return line;
            }
        }
    }

    void Body(std::size_t length) {
        while (length > 0) {
            const std::string_view part = There().substr(0, length);
            if (keep_ != nullptr) {
                keep_->append(part);
            }
            next_ += part.size();
            length -= part.size();
        }
    }

private:
    std::string_view There() {
        thread_local std::array<char, 256 * 1024> buffer;
        if (next_ == end_) {
            next_ = 0;
            end_ = connection_.Receive(buffer.data(), buffer.size());
        }
        return {buffer.data() + next_, end_ - next_};
    }

    const Connection& connection_;
    std::string* keep_;
    std::size_t next_ = 0;
    std::size_t end_ = 0;
};

struct Head {
    bool isChunked = false;
    std::size_t length = 0;
};

Head ReadHead(AnswerReader& answer) {
    const std::string status = answer.Line();
    if (status.substr(0, 12) != "HTTP/1.1 200") {
        throw std::runtime_error("unexpected answer: " + status);
    }
    const std::string_view lengthName = "Content-Length: ";
    Head head;
    for (std::string line = answer.Line(); !line.empty(); line = answer.Line()) {
        head.isChunked = head.isChunked || line == "Transfer-Encoding: chunked";
        if (line.starts_with(lengthName)) {
            head.length = std::stoul(line.substr(lengthName.size()));
        }
    }
    return head;
}

std::size_t ReadChunks(AnswerReader& answer) {
    std::size_t received = 0;
    while (const std::size_t size = std::stoul(answer.Line(), nullptr, 16)) {
        answer.Body(size);
        answer.Line();
        received += size;
    }
    if (const std::string trailer = answer.Line(); !trailer.empty()) {
        throw std::runtime_error("the answer failed: " + trailer);
    }
    return received;
}

} // namespace

std::size_t Ask(std::uint16_t port, const std::string& request, std::string* keep) {
    const Connection connection(port);
    connection.Send(request);
    AnswerReader answer(connection, keep);
    const Head head = ReadHead(answer);
    if (head.isChunked) {
        return ReadChunks(answer);
    }
    answer.Body(head.length);
    return head.length;
}

std::string EnumerateInventory() {
    return Enumerate("ZNX_SoftwareIdentity");
}

std::string Enumerate(const std::string& className) {
    const std::string body =
        R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
        R"(<MESSAGE ID="1" PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="EnumerateInstances">)"
        R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)"
        R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" +
        className +
        R"("/></IPARAMVALUE>)"
        R"(</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>)";
    return "POST /cimom HTTP/1.1\r\nHost: localhost\r\n"
           "Content-Type: application/xml; charset=\"utf-8\"\r\n"
           "CIMProtocolVersion: 1.0\r\nCIMOperation: MethodCall\r\n"
           "CIMMethod: EnumerateInstances\r\nCIMObject: root%2Fcimv2\r\n"
           "TE: trailers\r\nConnection: TE\r\n"
           "Content-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

} // namespace bench
