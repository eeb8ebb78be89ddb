#include "cimserver/http/Exchange.hpp"
#include "cimserver/http/Framing.hpp"
#include "cimserver/http/Http.hpp"
#include "cimserver/http/ListeningSocket.hpp"
#include "cimserver/http/Sending.hpp"

#include <array>
#include <atomic>
#include <charconv>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include <microhttpd.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace cimserver::http {

namespace {

/// A body without announced length that grows too large is read on for so long, because its status
/// can be sent only after its end; then the connection is closed.
constexpr std::size_t bytesReadInVain = 64 * 1024;

/// The HTTP library's memory of a connection: the head of a request has to fit, and a chunk of an
/// answer with what the library itself needs. A little more than a block, so that one is sent at
/// once.
constexpr std::size_t connectionMemory = AnswerQueue::blockSize + 4 * 1024;

std::string ClientAddress(MHD_Connection* connection) {
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    if (info == nullptr || info->client_addr == nullptr) {
        return {};
    }
    const sockaddr* address = info->client_addr;
    const socklen_t length =
        address->sa_family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
    std::array<char, NI_MAXHOST> text{};
    if (getnameinfo(address, length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0) {
        return {};
    }
    return text.data();
}

MHD_Result AddHeader(void* list, MHD_ValueKind /*kind*/, const char* name, const char* value) {
    static_cast<std::vector<Header>*>(list)->push_back({name, value == nullptr ? "" : value});
    return MHD_YES;
}

/// 0 when the client announces none; the HTTP library has checked that it is a number.
std::uint64_t AnnouncedLength(MHD_Connection* connection) {
    const char* text =
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_CONTENT_LENGTH);
    std::uint64_t length = 0;
    if (text != nullptr) {
        std::from_chars(text, text + std::strlen(text), length);
    }
    return length;
}

} // namespace

struct Server::Daemon {
    Daemon(const Settings& chosen, Handler chosenHandler);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    static void* Begin(void* self, const char* target, MHD_Connection* connection);
    static MHD_Result Receive(void* self, MHD_Connection* connection, const char* url,
                              const char* method, const char* version, const char* data,
                              std::size_t* size, void** state);
    static void End(void* self, MHD_Connection* connection, void** state,
                    MHD_RequestTerminationCode reason);

    MHD_Result TakeHead(MHD_Connection* connection, const char* method, const char* version,
                        Exchange& exchange) const;
    MHD_Result TakeBody(Exchange& exchange, const char* data, std::size_t& size) const;
    MHD_Result AnswerRequest(MHD_Connection* connection, const char* version, Exchange& exchange);
    void StopAccepting();

    Settings settings;
    const Handler handler;
    std::uint16_t port = 0;
    std::atomic<bool> isStopping = false;
    /// After StopAccepting the socket is ours again, to be closed behind the HTTP library.
    int listening = -1;
    InFlight inFlight;
    Workers workers; ///< its tasks use the handler
    MHD_Daemon* daemon = nullptr;
};

Server::Daemon::Daemon(const Settings& chosen, Handler chosenHandler)
    : settings(chosen), handler(std::move(chosenHandler)) {
    if (settings.spoolDirectory.empty()) {
        settings.spoolDirectory = TemporaryDirectory();
    }
    ListeningSocket socket(settings.address, settings.port);
    port = socket.Port();
    constexpr unsigned flags = MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD |
                               MHD_USE_POLL | MHD_USE_ITC;
    daemon = MHD_start_daemon(
        flags, port, nullptr, nullptr, &Receive, this, MHD_OPTION_LISTEN_SOCKET,
        socket.Descriptor(), MHD_OPTION_CONNECTION_MEMORY_LIMIT, connectionMemory,
        MHD_OPTION_CONNECTION_LIMIT, settings.maxConnections, MHD_OPTION_CONNECTION_TIMEOUT,
        settings.idleSeconds, MHD_OPTION_URI_LOG_CALLBACK, &Begin, this,
        MHD_OPTION_NOTIFY_COMPLETED, &End, this, MHD_OPTION_END);
    // The HTTP library closes the socket, some of its failures included.
    socket.Release();
    if (daemon == nullptr) {
        throw ListenError("Cannot start the HTTP service on port " + std::to_string(port) +
                          ": the HTTP library refused");
    }
}

Server::Daemon::~Daemon() {
    MHD_stop_daemon(daemon);
    if (listening >= 0) {
        close(listening);
    }
}

void Server::Daemon::StopAccepting() {
    isStopping = true;
    if (listening < 0) {
        listening = MHD_quiesce_daemon(daemon);
        // Whoever connects now is refused rather than left waiting.
        shutdown(listening, SHUT_RDWR);
    }
}

void* Server::Daemon::Begin(void* /*self*/, const char* target, MHD_Connection* /*connection*/) {
    try {
        return std::make_unique<Exchange>(target).release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void Server::Daemon::End(void* /*self*/, MHD_Connection* /*connection*/, void** state,
                         MHD_RequestTerminationCode /*reason*/) {
    delete static_cast<Exchange*>(*state);
    *state = nullptr;
}

MHD_Result Server::Daemon::Receive(void* self, MHD_Connection* connection, const char* /*url*/,
                                   const char* method, const char* version, const char* data,
                                   std::size_t* size, void** state) {
    Daemon& daemon = *static_cast<Daemon*>(self);
    auto* exchange = static_cast<Exchange*>(*state);
    if (exchange == nullptr) {
        return MHD_NO;
    }
    try {
        if (!exchange->begun) {
            exchange->begun = true;
            if (daemon.isStopping) {
                return SendBareStatus(connection, MHD_HTTP_SERVICE_UNAVAILABLE);
            }
            return daemon.TakeHead(connection, method, version, *exchange);
        }
        if (*size != 0) {
            return daemon.TakeBody(*exchange, data, *size);
        }
        return daemon.AnswerRequest(connection, version, *exchange);
    } catch (const std::exception&) {
        return MHD_NO;
    }
}

MHD_Result Server::Daemon::TakeHead(MHD_Connection* connection, const char* method,
                                    const char* version, Exchange& exchange) const {
    exchange.request.method = method;
    exchange.request.clientAddress = ClientAddress(connection);
    MHD_get_connection_values(connection, MHD_HEADER_KIND, &AddHeader, &exchange.request.headers);
    if (const auto fault = FramingFault(exchange.request, version)) {
        return SendBareStatus(connection, static_cast<unsigned>(*fault));
    }
    if (AnnouncedLength(connection) > settings.maxBodyBytes) {
        return SendBareStatus(connection, MHD_HTTP_CONTENT_TOO_LARGE);
    }
    return MHD_YES;
}

MHD_Result Server::Daemon::TakeBody(Exchange& exchange, const char* data, std::size_t& size) const {
    const std::size_t count = std::exchange(size, 0);
    if (!exchange.tooLarge && count <= settings.maxBodyBytes - exchange.request.body.size()) {
        exchange.request.body.append(data, count);
        return MHD_YES;
    }
    exchange.tooLarge = true;
    exchange.discarded += count;
    exchange.request.body = {};
    return exchange.discarded <= bytesReadInVain ? MHD_YES : MHD_NO;
}

MHD_Result Server::Daemon::AnswerRequest(MHD_Connection* connection, const char* version,
                                         Exchange& exchange) {
    exchange.running.emplace(inFlight);
    if (exchange.tooLarge) {
        return SendBareStatus(connection, MHD_HTTP_CONTENT_TOO_LARGE);
    }
    try {
        const bool canStream = TakesTrailers(exchange.request, version);
        return Send(connection, exchange.Make(handler, canStream, settings, workers));
    } catch (const std::system_error&) {
        return SendBareStatus(connection, MHD_HTTP_SERVICE_UNAVAILABLE);
    }
}

Server::Server(const Settings& settings, Handler handler)
    : daemon_(std::make_unique<Daemon>(settings, std::move(handler))) {
}

Server::~Server() = default;

std::uint16_t Server::Port() const {
    return daemon_->port;
}

void Server::StopAccepting() {
    daemon_->StopAccepting();
}

bool Server::WaitUntilIdle(std::chrono::steady_clock::time_point until) {
    return daemon_->inFlight.WaitUntilNone(until) && daemon_->workers.WaitUntilIdle(until);
}

} // namespace cimserver::http
