#include "cimserver/PassedListeners.hpp"

#include "cimserver/Settings.hpp"

#include <array>
#include <cstddef>
#include <functional>
#include <string>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace cimserver {

namespace {

constexpr const char* origin = "LISTEN_FDS";

[[noreturn]] void Refuse(const PassedSocket& socket, const std::string& why) {
    throw ConfigurationError(std::string(origin) + ": socket " + std::to_string(socket.descriptor) +
                             " (" + socket.name + ") " + why);
}

/// Without a name of its own a socket has that of its unit (systemd.socket(5)).
bool HasNoName(const PassedSocket& socket) {
    return socket.name.empty() || socket.name == "unknown" || socket.name.ends_with(".socket");
}

bool IsPlain(const PassedSocket& socket, std::size_t count) {
    return socket.name == "http" || (count == 1 && HasNoName(socket));
}

bool IsTls(const PassedSocket& socket) {
    return socket.name == "https";
}

std::vector<int> Descriptors(const std::vector<PassedSocket>& sockets,
                             const std::function<bool(const PassedSocket&)>& isMeant) {
    std::vector<int> descriptors;
    for (const PassedSocket& socket : sockets) {
        if (isMeant(socket)) {
            descriptors.push_back(socket.descriptor);
        }
    }
    return descriptors;
}

int Option(int descriptor, int option) {
    int value = 0;
    socklen_t size = sizeof value;
    return getsockopt(descriptor, SOL_SOCKET, option, &value, &size) == 0 ? value : -1;
}

std::string AddressOf(const PassedSocket& socket) {
    sockaddr_storage bound{};
    socklen_t size = sizeof bound;
    auto* address = reinterpret_cast<sockaddr*>(&bound);
    const bool isTcp = getsockname(socket.descriptor, address, &size) == 0 &&
                       (bound.ss_family == AF_INET || bound.ss_family == AF_INET6) &&
                       Option(socket.descriptor, SO_TYPE) == SOCK_STREAM;
    if (!isTcp || Option(socket.descriptor, SO_ACCEPTCONN) != 1) {
        Refuse(socket, "is no TCP socket that listens");
    }
    std::array<char, NI_MAXHOST> text{};
    if (getnameinfo(address, size, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0) {
        Refuse(socket, "has no address");
    }
    return text.data();
}

} // namespace

void OverrideAddresses(const std::vector<PassedSocket>& sockets, Configuration& configuration) {
    std::string plain;
    std::string tls;
    for (const PassedSocket& socket : sockets) {
        if (!IsPlain(socket, sockets.size()) && !IsTls(socket)) {
            Refuse(socket, "has a name that says nothing to this server; expected http or https");
        }
        std::string& addresses = IsTls(socket) ? tls : plain;
        addresses.append(addresses.empty() ? "" : " ").append(AddressOf(socket));
    }
    if (!sockets.empty()) {
        configuration.Override(items::addresses, plain, origin);
        configuration.Override(items::port, plain.empty() ? "-1" : "0", origin);
        configuration.Override(items::tlsAddresses, tls, origin);
        configuration.Override(items::tlsPort, tls.empty() ? "-1" : "0", origin);
    }
}

std::vector<int> PlainSockets(const std::vector<PassedSocket>& sockets) {
    return Descriptors(sockets,
                       [&](const PassedSocket& socket) { return IsPlain(socket, sockets.size()); });
}

std::vector<int> TlsSockets(const std::vector<PassedSocket>& sockets) {
    return Descriptors(sockets, &IsTls);
}

} // namespace cimserver
