// Counts the connections of all listeners, and ends those whose request does not arrive in time:
// the HTTP library knows only how long nothing came at all, so that a client with a byte now and
// then could hold a connection for ever.
#pragma once

#include "cimserver/http/Certificate.hpp"
#include "cimserver/http/Http.hpp"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <sys/socket.h>

namespace cimserver::http {

/// A numeric address; empty for a socket that has none.
std::string AddressText(const sockaddr* address);

/// Any thread may call any function. A connection is reported by Opened, then for each of its
/// requests by RequestBegins, RequestIsWhole and RequestEnds, at last by Closed.
class ConnectionWatch {
public:
    using Clock = std::chrono::steady_clock;

    /// A listener has fewer connections than so many above the limits.
    static constexpr unsigned beyondLimits = 16;

    struct Connection {
        enum class Phase { idle, arriving, paused, answering, expired };

        int socket = -1;
        bool isPlain = true; ///< a status may be written to the socket as it is
        std::string address;
        Phase phase = Phase::arriving;
        bool isCounted = true;   ///< false: above a limit, told so and about to be closed
        Clock::time_point since; ///< of a request that arrives
        Clock::time_point pausedSince;
        std::uint64_t bytes = 0; ///< received before the connection became idle
        std::list<Connection>::iterator self;
        /// What TLS of this connection uses, kept as long as it.
        std::shared_ptr<const Certificate::Loaded> certificate;
    };

    /// Takes the limits from the settings of a listener; the observer must outlive this.
    explicit ConnectionWatch(const Settings& settings);
    ~ConnectionWatch();
    ConnectionWatch(const ConnectionWatch&) = delete;
    ConnectionWatch& operator=(const ConnectionWatch&) = delete;

    /// What becomes of a new connection. The observer is told when a limit is reached. A connection
    /// that is turned away is to be opened, and then gets status 503; when it has TLS, whose start
    /// would cost more than it is worth, or many are just being turned away, it is to be dropped.
    enum class Verdict { welcome, turnedAway, dropped };
    Verdict Judge(const sockaddr* address, bool isPlain);
    /// The result is good until Closed, and so must be the socket. Ends a connection for which
    /// there is no room.
    Connection* Opened(int socket, const sockaddr* address, bool isPlain);
    void Closed(Connection* connection);

    /// The first line is there. Without such a call a request begins with its first bytes, the
    /// first one of a connection with the connection. False when the connection is being ended.
    bool RequestBegins(Connection& connection);
    /// What follows until EndPause is the server's time, not the client's. False when the request's
    /// time was over before.
    bool BeginPause(Connection& connection);
    void EndPause(Connection& connection);
    /// The request is there, or an answer is being sent without the rest. False when its time was
    /// over before: then it gets no answer any more.
    bool RequestIsWhole(Connection& connection);
    /// What has come since the last answer was sent, read or not; nothing when the time was over,
    /// which the observer knows already.
    std::optional<std::uint64_t> BytesOfRequest(const Connection& connection);
    /// The answer is sent.
    void RequestEnds(Connection& connection);

private:
    std::optional<Limit> FullFor(const std::string& address) const;
    void Run();
    void ExpireOverdue(std::unique_lock<std::mutex>& lock);
    bool IsOverdue(Connection& connection, Clock::time_point now) const;

    const unsigned maxConnections_;
    const unsigned maxConnectionsPerAddress_;
    const std::chrono::seconds requestTime_;
    Observer* const observer_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::list<Connection> connections_;
    std::map<std::string, unsigned> perAddress_;
    unsigned turnedAway_ = 0; ///< of connections_
    bool stops_ = false;
    std::thread thread_;
};

} // namespace cimserver::http
