// The socket that the server listens on, opened by us so that it is close-on-exec and the reason of
// a failure is known.
#pragma once

#include <cstdint>
#include <string>

namespace cimserver::http {

class ListeningSocket {
public:
    /// Binds and listens; throws ListenError.
    ListeningSocket(const std::string& address, std::uint16_t port);
    /// Takes over one that listens already; throws ListenError.
    explicit ListeningSocket(int descriptor);
    ~ListeningSocket();
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    int Descriptor() const { return descriptor_; }
    std::uint16_t Port() const;
    /// Somebody else closes the descriptor from now on.
    void Release() { descriptor_ = -1; }

private:
    int descriptor_ = -1;
};

} // namespace cimserver::http
