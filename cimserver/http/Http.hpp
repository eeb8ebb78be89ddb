// The HTTP side of the server: bytes and connections in, requests to a handler, answers out.
// Knows nothing of XML or CIM.
#pragma once

#include <chrono>
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

/// No Authorization header is among the headers: what it says is `user`.
struct Request {
    std::string method;
    std::string target;
    std::vector<Header> headers;
    std::string body;
    std::string clientAddress;
    std::string user; ///< who proved to be that; empty: anonymous
};

/// What comes before an answer's text.
struct Head {
    int status = 200;
    std::vector<Header> headers;
    std::string trailerNames; ///< those that may follow the text, as a Trailer header lists them
};

/// What a client gets in place of an answer that takes too long: the text when nothing of the
/// answer has left, otherwise the trailers behind what has left.
struct LateAnswer {
    std::string text;
    std::vector<Header> trailers;
};
using MakeLateAnswer = std::function<LateAnswer(std::chrono::milliseconds limit)>;

/// The answer to one request while its handler makes it. Used by the thread that runs the handler;
/// none of its functions waits for the client. What the client has not taken yet is kept in memory
/// up to a bound and beyond that in a file. To a client that takes trailers (RFC 9110, 6.5) the
/// text leaves while it is made, once a first portion of it is there; to any other client it leaves
/// when the handler has returned.
class Answer {
public:
    virtual ~Answer() = default;

    /// Has no effect once text has left. Without it the status is 200.
    virtual void SetHead(Head head) = 0;
    /// Throws std::runtime_error with the reason when there is no room to keep the bytes; then the
    /// answer can be cleared, or has to end as it is.
    virtual void Append(std::string_view bytes) = 0;
    /// True: head and text are on their way, an error can be told by trailers only.
    virtual bool HasLeft() const = 0;
    /// Drops everything appended so far: the answer starts again. Not once text has left.
    virtual void Clear() = 0;
    /// What follows the text. Only once text has left.
    virtual void SetTrailers(std::vector<Header> trailers) = 0;
    /// From now on the handler has Settings::callTime. When that is over, the client gets the head
    /// as it is with what `late` makes, on another thread; the handler goes on, and nothing of what
    /// it does to the answer counts any more. A further call begins anew. `late` is not
    /// called any more once LiftLimit has returned.
    virtual void LimitTime(MakeLateAnswer late) = 0;
    /// The handler may take any time again.
    virtual void LiftLimit() = 0;
    /// True: the client has got something else.
    virtual bool IsGivenUp() const = 0;
};

/// Called from several threads at once; may block. An exception that escapes becomes status 500, or
/// closes the connection within the answer when text has left. Request and answer stay there until
/// it returns, also when the client has gone.
using Handler = std::function<void(const Request&, Answer&)>;

class Certificate;
class Users;

/// Who is let in. Everybody else gets 401 before anything of the body is looked at.
struct Access {
    /// Without credentials. Credentials that are brought all the same have to be right where there
    /// are users, and do not count where there are none.
    bool isAnonymous = true;
    /// Where the Host is a name other than `localhost` (HasNoNamedHost), the answer is 421.
    bool refusesNamedHosts = false;
    std::shared_ptr<Users> users; ///< null: nobody has a password
    /// How long the answer to wrong credentials takes at least.
    std::chrono::milliseconds failureDelay{1000};
    /// A longer body of a request that is refused is not read: the connection ends with the answer.
    std::size_t maxRefusedBodyBytes = std::size_t{4} * 1024;
    /// Takes a line for each refusal of credentials, from several threads at once. May be empty.
    std::function<void(const std::string&)> log;
};

enum class Limit { headerBytes, bodyBytes, connections, connectionsOfAddress, requestTime };

/// Is told what the service does by itself, without a handler. Called from several threads at once;
/// must not throw.
class Observer {
public:
    virtual ~Observer() = default;
    virtual void Reached(Limit limit, const std::string& clientAddress) = 0;
    /// A request got this status. 0: the HTTP library chose one, because the head was larger than
    /// its memory or was none.
    virtual void Refused(int status, const std::string& clientAddress) = 0;
};

class ConnectionWatch;

struct Settings {
    std::string address = "127.0.0.1"; ///< IPv4 or IPv6 in numeric form
    std::uint16_t port = 5988;         ///< 0: any free port
    /// A TCP socket that listens already, instead of address and port; it is the server's from then
    /// on. -1: none.
    int descriptor = -1;
    unsigned maxConnections = 200; ///< one more gets status 503, or nothing, and is closed
    unsigned maxConnectionsPerAddress = 100;
    std::size_t maxHeaderBytes = std::size_t{8} * 1024; ///< with the first line; at most 60 KiB
    std::size_t maxBodyBytes = std::size_t{1024} * 1024;
    unsigned idleSeconds = 300;
    unsigned requestSeconds = 30;          ///< for a whole request to arrive
    std::chrono::milliseconds callTime{0}; ///< of a handler that limits its time; 0: any
    std::string spoolDirectory;            ///< for large answers; empty: $TMPDIR, or /tmp
    Observer* observer = nullptr;          ///< outlives the server; null: nobody is told
    /// The one whose limits this listener shares with others; null: one of its own.
    std::shared_ptr<ConnectionWatch> watch;
    Access access;
    std::shared_ptr<Certificate> certificate; ///< null: no TLS
};

/// For listeners that share the limits of connections and requests of these settings.
std::shared_ptr<ConnectionWatch> WatchTogether(const Settings& settings);

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

    /// Takes no more connections, and no more requests on those there are (503).
    void StopAccepting();
    /// Waits for the running handlers to return and for their answers to be sent. False when some
    /// have not at that time.
    bool WaitUntilIdle(std::chrono::steady_clock::time_point until);

private:
    struct Daemon;
    std::unique_ptr<Daemon> daemon_;
};

} // namespace cimserver::http
