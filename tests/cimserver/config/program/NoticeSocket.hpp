// A socket for the notices of a service, as a service manager has one.
#pragma once

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace programtest {

class NoticeSocket {
public:
    /// A name that begins with @ is one of the abstract space.
    explicit NoticeSocket(const std::string& name)
        : name_(name), socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.data(), name.size());
        if (name.front() == '@') {
            address.sun_path[0] = '\0';
        }
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        if (bind(socket_, reinterpret_cast<sockaddr*>(&address), size) != 0) {
            throw std::runtime_error("cannot bind " + name);
        }
        const timeval patience{30, 0};
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~NoticeSocket() { close(socket_); }
    NoticeSocket(const NoticeSocket&) = delete;
    NoticeSocket& operator=(const NoticeSocket&) = delete;

    const std::string& Name() const { return name_; }
    /// The next notice; throws std::runtime_error when none comes for 30 seconds.
    std::string Next() const {
        char text[1024];
        const ssize_t size = recv(socket_, text, sizeof text, 0);
        if (size < 0) {
            throw std::runtime_error("no notice comes");
        }
        return {text, static_cast<std::size_t>(size)};
    }

private:
    std::string name_;
    int socket_;
};

} // namespace programtest
