#include "cimserver/http/Admission.hpp"
#include "cimserver/http/ConnectionWatch.hpp"
#include "cimserver/http/Exchange.hpp"
#include "cimserver/http/Framing.hpp"
#include "cimserver/http/Http.hpp"
#include "cimserver/http/ListeningSocket.hpp"
#include "cimserver/http/Sending.hpp"
#include "cimserver/http/Tls.hpp"

#include <atomic>
#include <charconv>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include <microhttpd.h>
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
    return info == nullptr ? std::string() : AddressText(info->client_addr);
}

/// Never null while a request of the connection is read.
ConnectionWatch::Connection* Watched(MHD_Connection* connection) {
    return static_cast<ConnectionWatch::Connection*>(
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context);
}

std::size_t HeaderSize(MHD_Connection* connection) {
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_REQUEST_HEADER_SIZE);
    return info == nullptr ? 0 : info->header_size;
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

bool IsChunked(MHD_Connection* connection) {
    return MHD_lookup_connection_value(connection, MHD_HEADER_KIND,
                                       MHD_HTTP_HEADER_TRANSFER_ENCODING) != nullptr;
}

MHD_Result SendUnauthorized(MHD_Connection* connection) {
    MHD_Response* response = MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
    if (response == nullptr) {
        return MHD_NO;
    }
    MHD_add_response_header(response, MHD_HTTP_HEADER_WWW_AUTHENTICATE,
                            "Basic realm=\"cimserver\", charset=\"UTF-8\"");
    const MHD_Result result = MHD_queue_response(connection, MHD_HTTP_UNAUTHORIZED, response);
    MHD_destroy_response(response);
    return result;
}

} // namespace

struct Server::Daemon {
    Daemon(const Settings& chosen, Handler chosenHandler);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    static MHD_Result Accept(void* self, const sockaddr* address, socklen_t size);
    static void Notice(void* self, MHD_Connection* connection, void** watched,
                       MHD_ConnectionNotificationCode what);
    static void* Begin(void* self, const char* target, MHD_Connection* connection);
    static MHD_Result Receive(void* self, MHD_Connection* connection, const char* url,
                              const char* method, const char* version, const char* data,
                              std::size_t* size, void** state);
    static void End(void* self, MHD_Connection* connection, void** state,
                    MHD_RequestTerminationCode reason);

    void Start(int socket);
    MHD_Result Refuse(MHD_Connection* connection, int status, const Exchange& exchange) const;
    void TellOfLimit(Limit limit, const Exchange& exchange) const;
    void TellOfRefusedHead(const ConnectionWatch::Connection& connection) const;
    MHD_Result TakeHead(MHD_Connection* connection, const char* method, const char* version,
                        Exchange& exchange);
    MHD_Result TakeBody(Exchange& exchange, const char* data, std::size_t& size) const;
    MHD_Result AnswerRequest(MHD_Connection* connection, const char* version, Exchange& exchange);
    void StopAccepting();

    Settings settings;
    const Handler handler;
    std::shared_ptr<ConnectionWatch> watch;
    Admission admission;
    std::uint16_t port = 0;
    std::atomic<bool> isStopping = false;
    /// After StopAccepting the socket is ours again, to be closed behind the HTTP library.
    int listening = -1;
    InFlight inFlight;
    Workers workers; ///< its tasks use the handler
    MHD_Daemon* daemon = nullptr;
};

Server::Daemon::Daemon(const Settings& chosen, Handler chosenHandler)
    : settings(chosen), handler(std::move(chosenHandler)),
      watch(settings.watch != nullptr ? settings.watch : WatchTogether(settings)),
      admission(chosen.access) {
    if (settings.spoolDirectory.empty()) {
        settings.spoolDirectory = TemporaryDirectory();
    }
    ListeningSocket socket = settings.descriptor >= 0
                                 ? ListeningSocket(settings.descriptor)
                                 : ListeningSocket(settings.address, settings.port);
    port = socket.Port();
    Start(socket.Descriptor());
    // The HTTP library closes the socket, some of its failures included.
    socket.Release();
    if (daemon == nullptr) {
        throw ListenError("Cannot start the HTTP service on port " + std::to_string(port) +
                          ": the HTTP library refused");
    }
}

void Server::Daemon::Start(int socket) {
    const bool hasTls = settings.certificate != nullptr;
    constexpr unsigned usual = MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD |
                               MHD_USE_POLL | MHD_USE_ITC;
    auto options = TlsOptions(hasTls);
    daemon = MHD_start_daemon(
        hasTls ? usual | MHD_USE_TLS : usual, port, &Accept, this, &Receive, this,
        MHD_OPTION_LISTEN_SOCKET, socket, MHD_OPTION_CONNECTION_MEMORY_LIMIT, connectionMemory,
        MHD_OPTION_CONNECTION_LIMIT, settings.maxConnections + ConnectionWatch::beyondLimits,
        MHD_OPTION_CONNECTION_TIMEOUT, settings.idleSeconds, MHD_OPTION_NOTIFY_CONNECTION, &Notice,
        this, MHD_OPTION_URI_LOG_CALLBACK, &Begin, this, MHD_OPTION_NOTIFY_COMPLETED, &End, this,
        MHD_OPTION_ARRAY, options.data(), MHD_OPTION_END);
}

Server::Daemon::~Daemon() {
    admission.EndDelays();
    MHD_stop_daemon(daemon);
    if (listening >= 0) {
        close(listening);
    }
}

void Server::Daemon::StopAccepting() {
    isStopping = true;
    if (listening < 0) {
        listening = MHD_quiesce_daemon(daemon);
        // Whoever connects now is refused; at a socket that was handed to us the next server
        // answers.
        if (settings.descriptor < 0) {
            shutdown(listening, SHUT_RDWR);
        }
    }
}

MHD_Result Server::Daemon::Accept(void* self, const sockaddr* address, socklen_t /*size*/) {
    const Daemon& daemon = *static_cast<const Daemon*>(self);
    try {
        const auto verdict = daemon.watch->Judge(address, daemon.settings.certificate == nullptr);
        return verdict == ConnectionWatch::Verdict::dropped ? MHD_NO : MHD_YES;
    } catch (const std::bad_alloc&) {
        return MHD_NO;
    }
}

void Server::Daemon::Notice(void* self, MHD_Connection* connection, void** watched,
                            MHD_ConnectionNotificationCode what) {
    const Daemon& daemon = *static_cast<const Daemon*>(self);
    ConnectionWatch& watch = *daemon.watch;
    if (what == MHD_CONNECTION_NOTIFY_CLOSED) {
        if (*watched != nullptr) {
            watch.Closed(static_cast<ConnectionWatch::Connection*>(*watched));
        }
        return;
    }
    const auto* address = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    const auto* socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    try {
        const Certificate* certificate = daemon.settings.certificate.get();
        auto* opened =
            watch.Opened(socket->connect_fd, address->client_addr, certificate == nullptr);
        opened->certificate = UseCertificate(connection, certificate);
        *watched = opened;
    } catch (const std::bad_alloc&) {
        *watched = nullptr;
    }
}

void* Server::Daemon::Begin(void* self, const char* target, MHD_Connection* connection) {
    auto* watched = Watched(connection);
    if (watched == nullptr) {
        return nullptr;
    }
    if (!static_cast<const Daemon*>(self)->watch->RequestBegins(*watched)) {
        return nullptr;
    }
    try {
        return std::make_unique<Exchange>(target).release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void Server::Daemon::End(void* self, MHD_Connection* connection, void** state,
                         MHD_RequestTerminationCode reason) {
    const Daemon& daemon = *static_cast<const Daemon*>(self);
    const std::unique_ptr<Exchange> exchange(static_cast<Exchange*>(*state));
    *state = nullptr;
    auto* watched = Watched(connection);
    if (watched == nullptr) {
        return;
    }
    const bool hasAnswer = reason == MHD_REQUEST_TERMINATED_COMPLETED_OK ||
                           reason == MHD_REQUEST_TERMINATED_WITH_ERROR;
    if (exchange != nullptr && !exchange->begun && hasAnswer) {
        daemon.TellOfRefusedHead(*watched);
    }
    daemon.watch->RequestEnds(*watched);
}

void Server::Daemon::TellOfRefusedHead(const ConnectionWatch::Connection& connection) const {
    const auto bytes = watch->BytesOfRequest(connection);
    if (settings.observer == nullptr || !bytes) {
        return;
    }
    if (*bytes > settings.maxHeaderBytes) {
        settings.observer->Reached(Limit::headerBytes, connection.address);
    }
    settings.observer->Refused(0, connection.address);
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

void Server::Daemon::TellOfLimit(Limit limit, const Exchange& exchange) const {
    if (settings.observer != nullptr) {
        settings.observer->Reached(limit, exchange.request.clientAddress);
    }
}

MHD_Result Server::Daemon::Refuse(MHD_Connection* connection, int status,
                                  const Exchange& exchange) const {
    if (!watch->RequestIsWhole(*Watched(connection))) {
        return MHD_NO;
    }
    if (settings.observer != nullptr) {
        settings.observer->Refused(status, exchange.request.clientAddress);
    }
    return status == MHD_HTTP_UNAUTHORIZED
               ? SendUnauthorized(connection)
               : SendBareStatus(connection, static_cast<unsigned>(status));
}

MHD_Result Server::Daemon::TakeHead(MHD_Connection* connection, const char* method,
                                    const char* version, Exchange& exchange) {
    exchange.request.method = method;
    exchange.request.clientAddress = ClientAddress(connection);
    if (isStopping) {
        return Refuse(connection, MHD_HTTP_SERVICE_UNAVAILABLE, exchange);
    }
    if (HeaderSize(connection) > settings.maxHeaderBytes) {
        TellOfLimit(Limit::headerBytes, exchange);
        return Refuse(connection, MHD_HTTP_REQUEST_HEADER_FIELDS_TOO_LARGE, exchange);
    }
    MHD_get_connection_values(connection, MHD_HEADER_KIND, &AddHeader, &exchange.request.headers);
    if (const auto fault = FramingFault(exchange.request, version)) {
        return Refuse(connection, *fault, exchange);
    }
    if (settings.access.refusesNamedHosts && !HasNoNamedHost(exchange.request)) {
        return Refuse(connection, MHD_HTTP_MISDIRECTED_REQUEST, exchange);
    }
    const std::uint64_t length = AnnouncedLength(connection);
    // A password may have to wait for others to be checked.
    if (!watch->BeginPause(*Watched(connection))) {
        return MHD_NO;
    }
    const bool isAdmitted = admission.Admits(exchange.request);
    watch->EndPause(*Watched(connection));
    if (!isAdmitted) {
        exchange.refused = true;
        const bool isRead = length <= settings.access.maxRefusedBodyBytes && !IsChunked(connection);
        return isRead ? MHD_YES : Refuse(connection, MHD_HTTP_UNAUTHORIZED, exchange);
    }
    if (length > settings.maxBodyBytes) {
        TellOfLimit(Limit::bodyBytes, exchange);
        return Refuse(connection, MHD_HTTP_CONTENT_TOO_LARGE, exchange);
    }
    return MHD_YES;
}

MHD_Result Server::Daemon::TakeBody(Exchange& exchange, const char* data, std::size_t& size) const {
    const std::size_t count = std::exchange(size, 0);
    if (exchange.refused) {
        return MHD_YES;
    }
    if (!exchange.tooLarge && count <= settings.maxBodyBytes - exchange.request.body.size()) {
        exchange.request.body.append(data, count);
        return MHD_YES;
    }
    if (!std::exchange(exchange.tooLarge, true)) {
        TellOfLimit(Limit::bodyBytes, exchange);
    }
    exchange.discarded += count;
    exchange.request.body = {};
    return exchange.discarded <= bytesReadInVain ? MHD_YES : MHD_NO;
}

MHD_Result Server::Daemon::AnswerRequest(MHD_Connection* connection, const char* version,
                                         Exchange& exchange) {
    if (exchange.refused) {
        return Refuse(connection, MHD_HTTP_UNAUTHORIZED, exchange);
    }
    exchange.running.emplace(inFlight);
    // Whoever waits for the end of what is in flight has to be sure that nothing begins any more.
    if (isStopping) {
        return Refuse(connection, MHD_HTTP_SERVICE_UNAVAILABLE, exchange);
    }
    if (exchange.tooLarge) {
        return Refuse(connection, MHD_HTTP_CONTENT_TOO_LARGE, exchange);
    }
    if (!watch->RequestIsWhole(*Watched(connection))) {
        return MHD_NO;
    }
    try {
        const bool canStream = TakesTrailers(exchange.request, version);
        return Send(connection, exchange.Make(handler, canStream, settings, workers));
    } catch (const std::system_error&) {
        return Refuse(connection, MHD_HTTP_SERVICE_UNAVAILABLE, exchange);
    }
}

Server::Server(const Settings& settings, Handler handler)
    : daemon_(std::make_unique<Daemon>(settings, std::move(handler))) {
}

Server::~Server() = default;

std::shared_ptr<ConnectionWatch> WatchTogether(const Settings& settings) {
    return std::make_shared<ConnectionWatch>(settings);
}

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
