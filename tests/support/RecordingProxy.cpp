#include "support/RecordingProxy.hpp"

#include "support/HttpHead.hpp"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test_support {

namespace {

/// A descriptor that is closed at the end of the scope.
class Descriptor {
public:
    explicit Descriptor(int value) : value_(value) {
        if (value < 0) {
            throw std::system_error(errno, std::generic_category(), "no descriptor");
        }
    }
    ~Descriptor() { close(value_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return value_; }

private:
    int value_;
};

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int Connect(std::uint16_t port) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(port);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

/// What was read now; empty at the end of the stream.
std::string ReadSome(int descriptor) {
    std::array<char, 64 * 1024> part;
    const ssize_t count = recv(descriptor, part.data(), part.size(), 0);
    return count > 0 ? std::string(part.data(), static_cast<std::size_t>(count)) : std::string();
}

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

} // namespace

RecordingProxy::RecordingProxy(std::uint16_t target)
    : target_(target), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)),
      stop_(eventfd(0, EFD_CLOEXEC)) {
    sockaddr_in address = Loopback(0);
    socklen_t length = sizeof address;
    if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        listen(listener_, SOMAXCONN) != 0 ||
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::system_error(errno, std::generic_category(), "the proxy cannot listen");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { Accept(); });
}

RecordingProxy::~RecordingProxy() {
    eventfd_write(stop_, 1);
    acceptor_.join();
    for (std::thread& connection : connections_) {
        connection.join();
    }
    close(listener_);
    close(stop_);
}

std::vector<HttpAnswer> RecordingProxy::Answers() const {
    const std::lock_guard lock(mutex_);
    return answers_;
}

std::vector<std::string> RecordingProxy::Problems() const {
    const std::lock_guard lock(mutex_);
    return problems_;
}

void RecordingProxy::AddProblem(std::string text) {
    const std::lock_guard lock(mutex_);
    problems_.push_back(std::move(text));
}

void RecordingProxy::Accept() {
    for (;;) {
        std::array<pollfd, 2> waiting{{{listener_, POLLIN, 0}, {stop_, POLLIN, 0}}};
        poll(waiting.data(), waiting.size(), -1);
        if (waiting[1].revents != 0) {
            return;
        }
        const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            connections_.emplace_back([this, client] { Forward(client); });
        }
    }
}

void RecordingProxy::Forward(int clientDescriptor) {
    try {
        const Descriptor client(clientDescriptor);
        const Descriptor server(Connect(target_));
        std::string received;
        Pump(client.Get(), server.Get(), received);
        if (!received.empty()) {
            AddProblem("an answer ended early: " + received.substr(0, 200));
        }
    } catch (const std::exception& error) {
        AddProblem(error.what());
    }
}

void RecordingProxy::Pump(int client, int server, std::string& received) {
    std::array<pollfd, 3> waiting{{{client, POLLIN, 0}, {server, POLLIN, 0}, {stop_, POLLIN, 0}}};
    for (;;) {
        poll(waiting.data(), waiting.size(), -1);
        if (waiting[2].revents != 0) {
            return;
        }
        if (waiting[0].revents != 0) {
            const std::string bytes = ReadSome(client);
            if (bytes.empty()) {
                shutdown(server, SHUT_WR);
                waiting[0].fd = -1;
            }
            WriteAll(server, bytes);
        }
        if (waiting[1].revents != 0) {
            const std::string bytes = ReadSome(server);
            received += bytes;
            Record(received);
            if (bytes.empty() || !WriteAll(client, bytes)) {
                return;
            }
        }
    }
}

void RecordingProxy::Record(std::string& received) {
    while (auto next = ReadAnswer(received)) {
        received.erase(0, next->length);
        const std::lock_guard lock(mutex_);
        answers_.push_back(std::move(next->answer));
    }
}

} // namespace test_support
