#include "bench/HttpClient.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

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

std::size_t BodyLength(std::string_view head) {
    const std::string_view name = "Content-Length: ";
    const std::size_t at = head.find(name);
    if (head.substr(0, 12) != "HTTP/1.1 200" || at == std::string_view::npos) {
        throw std::runtime_error("unexpected answer: " + std::string(head));
    }
    return std::stoul(std::string(head.substr(at + name.size(), 20)));
}

} // namespace

std::size_t Ask(std::uint16_t port, const std::string& request, std::string* keep) {
    const Connection connection(port);
    connection.Send(request);

    static std::array<char, 256 * 1024> buffer;
    std::string head;
    std::size_t end = std::string::npos;
    while (end == std::string::npos) {
        head.append(buffer.data(), connection.Receive(buffer.data(), buffer.size()));
        end = head.find("\r\n\r\n");
    }
    const std::size_t length = BodyLength(std::string_view(head).substr(0, end));
    std::size_t received = head.size() - end - 4;
    if (keep != nullptr) {
        *keep = head.substr(end + 4);
    }
    while (received < length) {
        const std::size_t count = connection.Receive(buffer.data(), buffer.size());
        received += count;
        if (keep != nullptr) {
            keep->append(buffer.data(), count);
        }
    }
    return received;
}

std::string EnumerateInventory() {
    const std::string body =
        R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
        R"(<MESSAGE ID="1" PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="EnumerateInstances">)"
        R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)"
        R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/></IPARAMVALUE>)"
        R"(</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>)";
    return "POST /cimom HTTP/1.1\r\nHost: localhost\r\n"
           "Content-Type: application/xml; charset=\"utf-8\"\r\n"
           "CIMProtocolVersion: 1.0\r\nCIMOperation: MethodCall\r\n"
           "CIMMethod: EnumerateInstances\r\nCIMObject: root%2Fcimv2\r\n"
           "Content-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

} // namespace bench
