#include "support/CimClient.hpp"

#include "support/CallHeaders.hpp"
#include "support/HttpHead.hpp"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace test_support {

namespace {

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

CimClient::CimClient(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (socket_ < 0) {
        Fail("socket");
    }
    const timeval limit{.tv_sec = 30, .tv_usec = 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        close(socket_);
        errno = error;
        Fail("connect");
    }
}

CimClient::~CimClient() {
    close(socket_);
}

void CimClient::Send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0) {
            Fail("send");
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

void CimClient::FinishSending() {
    if (shutdown(socket_, SHUT_WR) != 0) {
        Fail("shutdown");
    }
}

bool CimClient::Fill() {
    std::array<char, 64 * 1024> part;
    const ssize_t count = recv(socket_, part.data(), part.size(), 0);
    if (count < 0 && errno != ECONNRESET) {
        Fail("nothing received");
    }
    if (count <= 0) {
        return false;
    }
    received_.append(part.data(), static_cast<std::size_t>(count));
    return true;
}

HttpAnswer CimClient::Receive() {
    std::optional<ReceivedAnswer> next;
    while (!(next = ReadAnswer(received_))) {
        if (!Fill()) {
            throw std::runtime_error("the connection was closed within an answer: " +
                                     received_.substr(0, 1000));
        }
    }
    received_.erase(0, next->length);
    return std::move(next->answer);
}

std::string CimClient::ReceiveBytes(std::size_t atLeast) {
    while (received_.size() < atLeast) {
        if (!Fill()) {
            throw std::runtime_error("the connection was closed after " +
                                     std::to_string(received_.size()) + " bytes");
        }
    }
    return std::exchange(received_, {});
}

bool CimClient::IsClosedByServer() {
    while (Fill()) {
    }
    return received_.empty();
}

HttpAnswer CimClient::Request(std::string_view method, const HeaderList& headers,
                              std::string_view body) {
    std::string text = std::string(method) + " /cimom HTTP/1.1\r\nHost: localhost\r\n";
    for (const auto& [name, value] : headers) {
        text += name + ": " + value + "\r\n";
    }
    text += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    Send(text.append(body));
    return Receive();
}

HttpAnswer CimClient::Post(std::string_view body, const HeaderList& moreHeaders) {
    HeaderList headers = {{"Content-Type", "application/xml; charset=\"utf-8\""},
                          {"CIMOperation", "MethodCall"}};
    const HeaderList call = CallHeaders(body);
    headers.insert(headers.end(), call.begin(), call.end());
    headers.insert(headers.end(), moreHeaders.begin(), moreHeaders.end());
    return Request("POST", headers, body);
}

namespace {

constexpr std::string_view nameSpacePath =
    R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)";

std::string Message(std::string_view call) {
    std::string text = R"(<?xml version="1.0" encoding="utf-8"?>
<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="4711" PROTOCOLVERSION="1.0"><SIMPLEREQ>)";
    return text.append(call).append("</SIMPLEREQ></MESSAGE></CIM>");
}

} // namespace

std::string IntrinsicCall(std::string_view operation, std::string_view parameters) {
    std::string text = "<IMETHODCALL NAME=\"";
    text.append(operation).append("\">").append(nameSpacePath).append(parameters);
    return Message(text.append("</IMETHODCALL>"));
}

std::string ExtrinsicCall(std::string_view method, std::string_view object,
                          std::string_view parameters) {
    const bool isClass = object.substr(0, 10) == "<CLASSNAME";
    const std::string path = isClass ? "LOCALCLASSPATH>" : "LOCALINSTANCEPATH>";
    std::string text = "<METHODCALL NAME=\"";
    text.append(method).append("\"><").append(path).append(nameSpacePath).append(object);
    text.append("</").append(path).append(parameters);
    return Message(text.append("</METHODCALL>"));
}

} // namespace test_support
