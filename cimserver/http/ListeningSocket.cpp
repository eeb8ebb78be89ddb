#include "cimserver/http/ListeningSocket.hpp"

#include "cimserver/http/Http.hpp"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace cimserver::http {

namespace {

struct AddressList {
    addrinfo* first = nullptr;
    ~AddressList() {
        if (first != nullptr) {
            freeaddrinfo(first);
        }
    }
};

[[noreturn]] void Fail(const std::string& address, std::uint16_t port, const std::string& reason) {
    const bool isIpv6 = address.find(':') != std::string::npos;
    const std::string shown = isIpv6 ? "[" + address + "]" : address;
    throw ListenError("Cannot listen on " + shown + ":" + std::to_string(port) + ": " + reason +
                      "; --listen and --tls-listen choose another address or port");
}

std::string TextOf(int error) {
    return std::generic_category().message(error);
}

int Open(const addrinfo& found) {
    const int descriptor =
        socket(found.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, found.ai_protocol);
    if (descriptor < 0) {
        return -1;
    }
    const int on = 1;
    if (setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
        bind(descriptor, found.ai_addr, found.ai_addrlen) == 0 &&
        listen(descriptor, SOMAXCONN) == 0) {
        return descriptor;
    }
    const int error = errno;
    close(descriptor);
    errno = error;
    return -1;
}

} // namespace

ListeningSocket::ListeningSocket(const std::string& address, std::uint16_t port) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    AddressList found;
    const int result =
        getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found.first);
    if (result != 0) {
        Fail(address, port, "not a numeric IPv4 or IPv6 address");
    }
    descriptor_ = Open(*found.first);
    if (descriptor_ < 0) {
        Fail(address, port, TextOf(errno));
    }
}

ListeningSocket::ListeningSocket(int descriptor) : descriptor_(descriptor) {
    const int flags = fcntl(descriptor, F_GETFL);
    if (flags < 0 || fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) != 0) {
        throw ListenError("Cannot listen on socket " + std::to_string(descriptor) + ": " +
                          TextOf(errno));
    }
}

ListeningSocket::~ListeningSocket() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

std::uint16_t ListeningSocket::Port() const {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    if (getsockname(descriptor_, reinterpret_cast<sockaddr*>(&bound), &length) != 0) {
        throw ListenError("Cannot read the port that was bound: " + TextOf(errno));
    }
    if (bound.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<const sockaddr_in6*>(&bound)->sin6_port);
    }
    return ntohs(reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
}

} // namespace cimserver::http
