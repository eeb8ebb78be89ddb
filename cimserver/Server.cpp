#include "cimserver/Server.hpp"

#include "cimserver/Process.hpp"
#include "cimserver/http/Certificate.hpp"
#include "cimserver/http/Users.hpp"

#include "OW_CIMException.hpp"

#include <algorithm>
#include <climits>
#include <functional>
#include <string_view>
#include <utility>

namespace cimserver {

namespace {

std::vector<http::Header> AsHeaders(const cimxml::HeaderList& list) {
    std::vector<http::Header> headers;
    for (const auto& [name, value] : list) {
        headers.push_back({name, value});
    }
    return headers;
}

class AnswerOutput final : public cimxml::Output {
public:
    /// All must be there as long as the answer is made. Whoever limits its time lifts the limit
    /// before this goes.
    AnswerOutput(http::Answer& answer, const http::Request& request, const Log& log)
        : answer_(answer), request_(request), log_(log) {}
    void Head(const cimxml::Status& status) override {
        answer_.SetHead({status.httpStatus, AsHeaders(status.headers), status.trailerNames});
    }
    void Write(std::string_view text) override { answer_.Append(text); }
    bool HasLeft() const override { return answer_.HasLeft(); }
    void Restart() override { answer_.Clear(); }
    void Trailers(const cimxml::HeaderList& trailers) override {
        answer_.SetTrailers(AsHeaders(trailers));
    }
    void LimitTime(cimxml::MakeLateAnswer late) override {
        answer_.LimitTime([late = std::move(late), this](std::chrono::milliseconds limit) {
            cimxml::LateAnswer made = late(limit);
            const std::string line = made.reason + ", client " + request_.clientAddress;
            log_.Logger()->logError(line.c_str());
            return http::LateAnswer{std::move(made.text), AsHeaders(made.trailers)};
        });
    }
    void LiftLimit() override { answer_.LiftLimit(); }

private:
    http::Answer& answer_;
    const http::Request& request_;
    const Log& log_;
};

host::Settings HostSettings(const Settings& settings, const Configuration& configuration,
                            const OpenWBEM::LoggerRef& logger) {
    host::Settings result;
    result.directories = settings.providerDirectories;
    result.idleTime = settings.providerIdle;
    result.longestWait = settings.busyTime;
    result.configItem = [&configuration](const OpenWBEM::String& name,
                                         const OpenWBEM::String& fallback) {
        const auto* item = configuration.Find(name.c_str());
        return item == nullptr ? fallback : OpenWBEM::String(item->value.c_str());
    };
    result.logger = logger;
    return result;
}

std::string Url(const char* scheme, const std::string& address, std::uint16_t port) {
    const bool isSix = address.find(':') != std::string::npos;
    return std::string(scheme) + "://" + (isSix ? "[" + address + "]" : address) + ":" +
           std::to_string(port);
}

std::shared_ptr<http::Users> MakeUsers(const AccessSettings& access) {
    return access.HasUsers() ? std::make_shared<http::Users>(
                                   http::UserSettings{access.passwordFile, access.allowedUsers})
                             : nullptr;
}

std::shared_ptr<http::Certificate> MakeCertificate(const AccessSettings& access) {
    return access.tlsPort ? std::make_shared<http::Certificate>(
                                http::CertificateFiles{access.certificate, access.KeyFile()})
                          : nullptr;
}

std::function<void(const std::string&)> RefusalLog(const OpenWBEM::LoggerRef& logger) {
    OpenWBEM::LoggerRef own = logger->clone();
    own->setDefaultComponent("cimserver.http");
    return [own](const std::string& line) { own->logError(line.c_str()); };
}

http::Settings ListenerSettings(const Settings& settings, http::Observer& observer) {
    http::Settings result;
    result.maxConnections = settings.limits.connections;
    result.maxConnectionsPerAddress = settings.limits.connectionsPerAddress;
    result.maxHeaderBytes = settings.limits.headerBytes;
    result.maxBodyBytes = settings.limits.bodyBytes;
    result.idleSeconds = settings.limits.idleSeconds;
    result.requestSeconds = settings.limits.requestSeconds;
    result.callTime = settings.callTime;
    result.observer = &observer;
    result.watch = http::WatchTogether(result);
    return result;
}

const char* ItemOf(http::Limit limit) {
    switch (limit) {
    case http::Limit::headerBytes:
        return items::maxHeaderBytes;
    case http::Limit::bodyBytes:
        return items::maxBodyBytes;
    case http::Limit::connections:
        return items::maxConnections;
    case http::Limit::connectionsOfAddress:
        return items::maxConnectionsPerAddress;
    case http::Limit::requestTime:
        break;
    }
    return items::requestSeconds;
}

const char* ItemOf(cimxml::XmlLimit limit) {
    switch (limit) {
    case cimxml::XmlLimit::depth:
        return items::maxXmlDepth;
    case cimxml::XmlLimit::attributes:
        return items::maxXmlAttributes;
    case cimxml::XmlLimit::elements:
        return items::maxXmlElements;
    case cimxml::XmlLimit::keyBindings:
        break;
    }
    return items::maxKeyBindings;
}

std::string StatusText(int status) {
    return "status-" + std::to_string(status);
}

std::string TextOf(const cimxml::Outcome& outcome) {
    if (outcome.httpStatus != 200) {
        return StatusText(outcome.httpStatus);
    }
    return outcome.cimError == 0 ? "ok" : cimxml::ErrorName(outcome.cimError);
}

} // namespace

Server::Server(const Settings& settings, const Configuration& configuration, Log& log)
    : log_(log),
      limitLog_(log.Logger()), xmlLimits_{settings.limits.xmlDepth, settings.limits.xmlAttributes,
                                          settings.limits.xmlElements, settings.limits.keyBindings},
      users_(MakeUsers(settings.access)), certificate_(MakeCertificate(settings.access)),
      writers_(settings.access.writers) {
    for (const auto& file : settings.mofFiles) {
        schema_.AddFile(file);
    }
    host_ = std::make_unique<host::Host>(HostSettings(settings, configuration, log.Logger()));
    operations_ = std::make_unique<operations::Operations>(
        schema_, *host_, OpenWBEM::String(settings.nameSpace.c_str()),
        OpenWBEM::String(HostName().c_str()));
    http::Settings listener = ListenerSettings(settings, *this);
    if (settings.port) {
        listener.port = *settings.port;
        Listen(settings.addresses, settings.sockets, listener, settings.access);
    }
    if (settings.access.tlsPort) {
        const auto& own = settings.access.tlsAddresses;
        listener.port = *settings.access.tlsPort;
        listener.certificate = certificate_;
        Listen(own.empty() ? settings.addresses : own, settings.tlsSockets, listener,
               settings.access);
    }
}

void Server::Listen(const std::vector<std::string>& addresses, const std::vector<int>& sockets,
                    http::Settings listener, const AccessSettings& access) {
    listener.access.users = users_;
    listener.access.failureDelay = access.failureDelay;
    listener.access.maxRefusedBodyBytes = access.maxRefusedBodyBytes;
    listener.access.log = RefusalLog(log_.Logger());
    const char* scheme = listener.certificate == nullptr ? "http" : "https";
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        const std::string& address = addresses[i];
        listener.address = address;
        listener.descriptor = sockets.empty() ? -1 : sockets.at(i);
        listener.access.isAnonymous = access.IsAnonymousOn(address);
        // What everybody on this machine may do, a page in a browser of theirs may not.
        listener.access.refusesNamedHosts = listener.access.isAnonymous && IsLoopback(address);
        listeners_.push_back(std::make_unique<http::Server>(
            listener, [this](const http::Request& request, http::Answer& answer) {
                AnswerRequest(request, answer);
            }));
        urls_.push_back(Url(scheme, address, listeners_.back()->Port()));
    }
}

std::vector<std::string> Server::ReloadCredentials(const AccessSettings& access) {
    std::vector<std::string> faults;
    const auto attempt = [&](const std::function<void()>& reload) {
        try {
            reload();
        } catch (const std::exception& error) {
            faults.emplace_back(error.what());
        }
    };
    if ((users_ != nullptr) != access.HasUsers()) {
        faults.push_back(std::string(items::passwordFile) +
                         " has come or gone, which counts from the next start on");
    } else if (users_ != nullptr) {
        attempt([&] { users_->Reload({access.passwordFile, access.allowedUsers}); });
    }
    if (certificate_ != nullptr && access.tlsPort) {
        attempt([&] { certificate_->Reload({access.certificate, access.KeyFile()}); });
    }
    const std::lock_guard lock(writersMutex_);
    writers_ = access.writers;
    return faults;
}

bool Server::MayChange(const std::string& user) const {
    const std::lock_guard lock(writersMutex_);
    return ListsUser(writers_, user);
}

bool Server::Finish(std::chrono::milliseconds longest) {
    const auto until = std::chrono::steady_clock::now() + longest;
    for (const auto& listener : listeners_) {
        listener->StopAccepting();
    }
    return std::all_of(listeners_.begin(), listeners_.end(),
                       [until](const auto& listener) { return listener->WaitUntilIdle(until); });
}

void Server::Reached(http::Limit limit, const std::string& clientAddress) {
    limitLog_.Reached(ItemOf(limit), clientAddress);
}

void Server::Refused(int status, const std::string& clientAddress) {
    const std::string outcome = status == 0 ? "refused" : StatusText(status);
    RequestRecord record;
    record.client = clientAddress;
    record.outcome = outcome;
    log_.Request(record);
}

void Server::AnswerRequest(const http::Request& request, http::Answer& answer) {
    const auto start = std::chrono::steady_clock::now();
    cimxml::Message message;
    message.method = request.method;
    for (const auto& header : request.headers) {
        message.headers.emplace_back(header.name, header.value);
    }
    message.body = request.body;
    message.user = request.user;
    message.mayChange = MayChange(request.user);
    AnswerOutput output(answer, request, log_);
    cimxml::Outcome outcome;
    try {
        outcome = cimxml::Answer(message, *operations_, output, xmlLimits_);
        if (answer.IsGivenUp()) {
            outcome.cimError = OpenWBEM::CIMException::FAILED;
        }
    } catch (...) {
        constexpr int internalServerError = 500;
        outcome.httpStatus = internalServerError;
        Record(request, outcome, start);
        throw;
    }
    Record(request, outcome, start);
}

void Server::Record(const http::Request& request, const cimxml::Outcome& outcome,
                    std::chrono::steady_clock::time_point start) {
    if (outcome.reached) {
        limitLog_.Reached(ItemOf(*outcome.reached), request.clientAddress);
    }
    if (!log_.LogsRequests()) {
        return;
    }
    const std::string text = TextOf(outcome);
    RequestRecord record;
    record.client = request.clientAddress;
    record.user = request.user;
    record.operation = outcome.operation;
    record.className = outcome.className;
    record.method = outcome.method;
    record.outcome = text;
    record.duration = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - start);
    log_.Request(record);
}

} // namespace cimserver
