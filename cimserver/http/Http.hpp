// The HTTP side of the server: bytes and connections in, requests to a handler, answers out.
// Knows nothing of XML or CIM.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver::http {

struct Header {
    std::string name;
    std::string value;
};

struct Request {
    std::string method;
    std::string target;
    std::vector<Header> headers;
    std::string body;
    std::string clientAddress;
};

/// The bytes of one answer. Filled by the thread that makes the answer, then read by the thread
/// that sends it; never both at once. Grows by blocks, so that appending never moves what is there.
class AnswerBody {
public:
    AnswerBody();
    ~AnswerBody();
    AnswerBody(const AnswerBody&) = delete;
    AnswerBody& operator=(const AnswerBody&) = delete;

    void Append(std::string_view bytes);
    /// Drops everything appended so far: the answer starts again.
    void Clear();
    std::uint64_t Size() const;
    /// Copies at most `room` bytes from `position` on; 0 only at the end.
    std::size_t Read(std::uint64_t position, char* target, std::size_t room) const;
    /// All bytes as they lie in memory, in order; valid until the next Append or Clear.
    std::vector<std::string_view> Pieces() const;

private:
    struct Blocks;
    std::unique_ptr<Blocks> blocks_;
};

struct Response {
    int status = 200;
    std::vector<Header> headers;
    std::shared_ptr<AnswerBody> body; ///< null: an empty body
};

/// Called from several connection threads at once; may block. An exception that escapes becomes
/// status 500.
using Handler = std::function<Response(const Request&)>;

struct Settings {
    std::string address = "127.0.0.1"; ///< IPv4 or IPv6 in numeric form
    std::uint16_t port = 5988;         ///< 0: any free port
    unsigned maxConnections = 30;      ///< a connection above that is closed at once
    std::size_t maxBodyBytes = std::size_t{1024} * 1024;
    unsigned idleSeconds = 300;
};

/// The address cannot be listened on; the text says which and why.
class ListenError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Listens from construction on and stops with the destructor, which waits for running handlers.
class Server {
public:
    Server(const Settings& settings, Handler handler);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// The port really bound, of use when the settings asked for any.
    std::uint16_t Port() const;

private:
    struct Daemon;
    std::unique_ptr<Daemon> daemon_;
};

} // namespace cimserver::http
