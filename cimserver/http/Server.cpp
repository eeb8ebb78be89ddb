#include "cimserver/http/Http.hpp"
#include "cimserver/http/ListeningSocket.hpp"

#include <array>
#include <charconv>
#include <csignal>
#include <cstring>
#include <new>
#include <utility>

#include <microhttpd.h>
#include <netdb.h>
#include <sys/socket.h>

namespace cimserver::http {

namespace {

/// A body without announced length that grows too large is read on for so long, because its status
/// can be sent only after its end; then the connection is closed.
constexpr std::size_t bytesReadInVain = 64 * 1024;

/// One request while it arrives. Made when its first line was read, deleted when its answer is
/// sent.
struct Exchange {
    Request request;
    bool begun = false;
    bool tooLarge = false;
    std::size_t discarded = 0;
};

/// The library's threads block SIGPIPE, and a handler's child processes would inherit that.
class SignalsAsForPrograms {
public:
    SignalsAsForPrograms() {
        sigset_t none;
        sigemptyset(&none);
        sigaddset(&none, SIGPIPE);
        pthread_sigmask(SIG_UNBLOCK, &none, &before_);
    }
    ~SignalsAsForPrograms() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsAsForPrograms(const SignalsAsForPrograms&) = delete;
    SignalsAsForPrograms& operator=(const SignalsAsForPrograms&) = delete;

private:
    sigset_t before_{};
};

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

void ReleaseBody(void* body) {
    delete static_cast<std::shared_ptr<AnswerBody>*>(body);
}

/// The response reads the body's own memory and keeps the body alive.
MHD_Response* MakeResponse(const Response& answer) {
    std::vector<MHD_IoVec> pieces;
    if (answer.body != nullptr) {
        for (const std::string_view piece : answer.body->Pieces()) {
            pieces.push_back({piece.data(), piece.size()});
        }
    }
    if (pieces.empty()) {
        return MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
    }
    auto owner = std::make_unique<std::shared_ptr<AnswerBody>>(answer.body);
    MHD_Response* response = MHD_create_response_from_iovec(
        pieces.data(), static_cast<unsigned>(pieces.size()), &ReleaseBody, owner.get());
    if (response != nullptr) {
        static_cast<void>(owner.release());
    }
    return response;
}

MHD_Result Send(MHD_Connection* connection, const Response& answer) {
    MHD_Response* response = MakeResponse(answer);
    if (response == nullptr) {
        return MHD_NO;
    }
    for (const Header& header : answer.headers) {
        MHD_add_response_header(response, header.name.c_str(), header.value.c_str());
    }
    const MHD_Result result =
        MHD_queue_response(connection, static_cast<unsigned>(answer.status), response);
    MHD_destroy_response(response);
    return result;
}

Response BareStatus(int status) {
    Response answer;
    answer.status = status;
    return answer;
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

    MHD_Result TakeHead(MHD_Connection* connection, const char* method, Exchange& exchange) const;
    MHD_Result TakeBody(Exchange& exchange, const char* data, std::size_t& size) const;
    MHD_Result AnswerRequest(MHD_Connection* connection, const Exchange& exchange) const;
    Response CallHandler(const Request& request) const;

    Settings settings;
    Handler handler;
    std::uint16_t port = 0;
    MHD_Daemon* daemon = nullptr;
};

Server::Daemon::Daemon(const Settings& chosen, Handler chosenHandler)
    : settings(chosen), handler(std::move(chosenHandler)) {
    ListeningSocket socket(settings.address, settings.port);
    port = socket.Port();
    constexpr unsigned flags =
        MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL;
    daemon = MHD_start_daemon(
        flags, port, nullptr, nullptr, &Receive, this, MHD_OPTION_LISTEN_SOCKET,
        socket.Descriptor(), MHD_OPTION_CONNECTION_LIMIT, settings.maxConnections,
        MHD_OPTION_CONNECTION_TIMEOUT, settings.idleSeconds, MHD_OPTION_URI_LOG_CALLBACK, &Begin,
        this, MHD_OPTION_NOTIFY_COMPLETED, &End, this, MHD_OPTION_END);
    // The HTTP library closes the socket, some of its failures included.
    socket.Release();
    if (daemon == nullptr) {
        throw ListenError("Cannot start the HTTP service on port " + std::to_string(port) +
                          ": the HTTP library refused");
    }
}

Server::Daemon::~Daemon() {
    MHD_stop_daemon(daemon);
}

void* Server::Daemon::Begin(void* /*self*/, const char* target, MHD_Connection* /*connection*/) {
    try {
        auto exchange = std::make_unique<Exchange>();
        exchange->request.target = target;
        return exchange.release();
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
                                   const char* method, const char* /*version*/, const char* data,
                                   std::size_t* size, void** state) {
    const Daemon& daemon = *static_cast<const Daemon*>(self);
    auto* exchange = static_cast<Exchange*>(*state);
    if (exchange == nullptr) {
        return MHD_NO;
    }
    try {
        if (!exchange->begun) {
            exchange->begun = true;
            return daemon.TakeHead(connection, method, *exchange);
        }
        if (*size != 0) {
            return daemon.TakeBody(*exchange, data, *size);
        }
        return daemon.AnswerRequest(connection, *exchange);
    } catch (const std::exception&) {
        return MHD_NO;
    }
}

MHD_Result Server::Daemon::TakeHead(MHD_Connection* connection, const char* method,
                                    Exchange& exchange) const {
    exchange.request.method = method;
    exchange.request.clientAddress = ClientAddress(connection);
    MHD_get_connection_values(connection, MHD_HEADER_KIND, &AddHeader, &exchange.request.headers);
    if (AnnouncedLength(connection) > settings.maxBodyBytes) {
        return Send(connection, BareStatus(MHD_HTTP_CONTENT_TOO_LARGE));
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

MHD_Result Server::Daemon::AnswerRequest(MHD_Connection* connection,
                                         const Exchange& exchange) const {
    if (exchange.tooLarge) {
        return Send(connection, BareStatus(MHD_HTTP_CONTENT_TOO_LARGE));
    }
    return Send(connection, CallHandler(exchange.request));
}

Response Server::Daemon::CallHandler(const Request& request) const {
    const SignalsAsForPrograms signals;
    try {
        return handler(request);
    } catch (...) {
        return BareStatus(MHD_HTTP_INTERNAL_SERVER_ERROR);
    }
}

Server::Server(const Settings& settings, Handler handler)
    : daemon_(std::make_unique<Daemon>(settings, std::move(handler))) {
}

Server::~Server() = default;

std::uint16_t Server::Port() const {
    return daemon_->port;
}

} // namespace cimserver::http
