#include "cimserver/http/ConnectionWatch.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include <linux/tcp.h>
#include <netdb.h>
#include <netinet/in.h>

namespace cimserver::http {

namespace {

using namespace std::chrono_literals;

constexpr int requestTimeout = 408;

/// So many at once are told that there is no room for them.
constexpr unsigned maxTurnedAway = 8;
static_assert(maxTurnedAway < ConnectionWatch::beyondLimits);

constexpr std::string_view tooLate = "HTTP/1.1 408 Request Timeout\r\n"
                                     "Content-Length: 0\r\nConnection: close\r\n\r\n";
constexpr std::string_view noRoom = "HTTP/1.1 503 Service Unavailable\r\n"
                                    "Content-Length: 0\r\nConnection: close\r\n\r\n";

/// Acknowledged and in order, whether read or not; 0 when it is no TCP connection.
std::uint64_t BytesReceived(int socket) {
    tcp_info info{};
    socklen_t size = sizeof info;
    return getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 ? info.tcpi_bytes_received
                                                                        : 0;
}

void EndWith(std::string_view answer, int socket, bool isPlain) {
    if (isPlain) {
        send(socket, answer.data(), answer.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    }
    // The HTTP library meets the end of the request and closes.
    shutdown(socket, SHUT_RD);
}

} // namespace

std::string AddressText(const sockaddr* address) {
    if (address == nullptr || (address->sa_family != AF_INET && address->sa_family != AF_INET6)) {
        return {};
    }
    const socklen_t length =
        address->sa_family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
    std::array<char, NI_MAXHOST> text{};
    if (getnameinfo(address, length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0) {
        return {};
    }
    return text.data();
}

ConnectionWatch::ConnectionWatch(const Settings& settings)
    : maxConnections_(settings.maxConnections),
      maxConnectionsPerAddress_(settings.maxConnectionsPerAddress),
      requestTime_(settings.requestSeconds), observer_(settings.observer),
      thread_([this] { Run(); }) {
}

ConnectionWatch::~ConnectionWatch() {
    {
        const std::lock_guard lock(mutex_);
        stops_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

std::optional<Limit> ConnectionWatch::FullFor(const std::string& address) const {
    if (connections_.size() - turnedAway_ >= maxConnections_) {
        return Limit::connections;
    }
    const auto found = perAddress_.find(address);
    if (found != perAddress_.end() && found->second >= maxConnectionsPerAddress_) {
        return Limit::connectionsOfAddress;
    }
    return std::nullopt;
}

ConnectionWatch::Verdict ConnectionWatch::Judge(const sockaddr* address, bool isPlain) {
    const std::string text = AddressText(address);
    std::optional<Limit> limit;
    bool canBeTold = false;
    {
        const std::lock_guard lock(mutex_);
        limit = FullFor(text);
        canBeTold = isPlain && turnedAway_ < maxTurnedAway;
    }
    if (!limit) {
        return Verdict::welcome;
    }
    if (observer_ != nullptr) {
        observer_->Reached(*limit, text);
    }
    return canBeTold ? Verdict::turnedAway : Verdict::dropped;
}

ConnectionWatch::Connection* ConnectionWatch::Opened(int socket, const sockaddr* address,
                                                     bool isPlain) {
    const std::string text = AddressText(address);
    Connection* connection = nullptr;
    {
        const std::lock_guard lock(mutex_);
        const bool isFull =
            FullFor(text).has_value(); // the observer knows, or hears of the next one
        connection = &connections_.emplace_back();
        connection->self = std::prev(connections_.end());
        connection->socket = socket;
        connection->isPlain = isPlain;
        connection->address = text;
        connection->since = Clock::now();
        connection->isCounted = !isFull;
        if (isFull) {
            connection->phase = Connection::Phase::expired;
            ++turnedAway_;
            EndWith(noRoom, socket, isPlain);
        } else {
            ++perAddress_[text];
        }
    }
    changed_.notify_one();
    return connection;
}

void ConnectionWatch::Closed(Connection* connection) {
    const std::lock_guard lock(mutex_);
    if (connection->isCounted) {
        const auto count = perAddress_.find(connection->address);
        if (--count->second == 0) {
            perAddress_.erase(count);
        }
    } else {
        --turnedAway_;
    }
    connections_.erase(connection->self);
}

bool ConnectionWatch::RequestBegins(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Connection::Phase::idle) {
        connection.phase = Connection::Phase::arriving;
        connection.since = Clock::now();
    }
    return connection.phase != Connection::Phase::expired;
}

bool ConnectionWatch::BeginPause(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Connection::Phase::expired) {
        return false;
    }
    connection.phase = Connection::Phase::paused;
    connection.pausedSince = Clock::now();
    return true;
}

void ConnectionWatch::EndPause(Connection& connection) {
    const std::lock_guard lock(mutex_);
    connection.phase = Connection::Phase::arriving;
    connection.since += Clock::now() - connection.pausedSince;
}

bool ConnectionWatch::RequestIsWhole(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Connection::Phase::expired) {
        return false;
    }
    connection.phase = Connection::Phase::answering;
    return true;
}

std::optional<std::uint64_t> ConnectionWatch::BytesOfRequest(const Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Connection::Phase::expired) {
        return std::nullopt;
    }
    return BytesReceived(connection.socket) - connection.bytes;
}

void ConnectionWatch::RequestEnds(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Connection::Phase::answering) {
        connection.phase = Connection::Phase::idle;
        connection.bytes = BytesReceived(connection.socket);
    }
}

bool ConnectionWatch::IsOverdue(Connection& connection, Clock::time_point now) const {
    if (connection.phase == Connection::Phase::idle &&
        BytesReceived(connection.socket) > connection.bytes) {
        connection.phase = Connection::Phase::arriving;
        connection.since = now;
    }
    return connection.phase == Connection::Phase::arriving && now - connection.since > requestTime_;
}

void ConnectionWatch::ExpireOverdue(std::unique_lock<std::mutex>& lock) {
    const auto now = Clock::now();
    std::vector<std::string> addresses;
    for (Connection& connection : connections_) {
        if (IsOverdue(connection, now)) {
            connection.phase = Connection::Phase::expired;
            EndWith(tooLate, connection.socket, connection.isPlain);
            addresses.push_back(connection.address);
        }
    }
    lock.unlock();
    for (const std::string& address : addresses) {
        if (observer_ != nullptr) {
            observer_->Reached(Limit::requestTime, address);
            observer_->Refused(requestTimeout, address);
        }
    }
    lock.lock();
}

void ConnectionWatch::Run() {
    const auto pause = std::clamp<std::chrono::milliseconds>(
        std::chrono::milliseconds(requestTime_) / 8, 20ms, 1000ms);
    std::unique_lock lock(mutex_);
    while (!stops_) {
        if (connections_.empty()) {
            changed_.wait(lock, [this] { return stops_ || !connections_.empty(); });
        } else if (!changed_.wait_for(lock, pause, [this] { return stops_; })) {
            ExpireOverdue(lock);
        }
    }
}

} // namespace cimserver::http
