#include "cimserver/Server.hpp"

#include "cimserver/Process.hpp"
#include "cimserver/cimxml/CimXml.hpp"
#include "cimserver/http/Certificate.hpp"
#include "cimserver/http/Users.hpp"

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
    explicit AnswerOutput(http::Answer& answer) : answer_(answer) {}
    void Head(const cimxml::Status& status) override {
        answer_.SetHead({status.httpStatus, AsHeaders(status.headers), status.trailerNames});
    }
    void Write(std::string_view text) override { answer_.Append(text); }
    bool HasLeft() const override { return answer_.HasLeft(); }
    void Restart() override { answer_.Clear(); }
    void Trailers(const cimxml::HeaderList& trailers) override {
        answer_.SetTrailers(AsHeaders(trailers));
    }

private:
    http::Answer& answer_;
};

host::Settings HostSettings(const Settings& settings, const Configuration& configuration,
                            const OpenWBEM::LoggerRef& logger) {
    host::Settings result;
    result.directories = settings.providerDirectories;
    result.idleTime = settings.providerIdle;
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

} // namespace

Server::Server(const Settings& settings, const Configuration& configuration,
               const OpenWBEM::LoggerRef& logger)
    : logger_(logger), users_(MakeUsers(settings.access)),
      certificate_(MakeCertificate(settings.access)), writers_(settings.access.writers) {
    for (const auto& file : settings.mofFiles) {
        schema_.AddFile(file);
    }
    host_ = std::make_unique<host::Host>(HostSettings(settings, configuration, logger));
    operations_ = std::make_unique<operations::Operations>(
        schema_, *host_, OpenWBEM::String(settings.nameSpace.c_str()),
        OpenWBEM::String(HostName().c_str()));
    if (settings.port) {
        Listen(settings.addresses, *settings.port, nullptr, settings.access);
    }
    if (settings.access.tlsPort) {
        const auto& own = settings.access.tlsAddresses;
        Listen(own.empty() ? settings.addresses : own, *settings.access.tlsPort, certificate_,
               settings.access);
    }
}

void Server::Listen(const std::vector<std::string>& addresses, std::uint16_t port,
                    const std::shared_ptr<http::Certificate>& certificate,
                    const AccessSettings& access) {
    for (const auto& address : addresses) {
        http::Settings listener;
        listener.address = address;
        listener.port = port;
        listener.certificate = certificate;
        listener.access = {access.IsAnonymousOn(address), users_, access.failureDelay,
                           access.maxRefusedBodyBytes, RefusalLog(logger_)};
        listeners_.push_back(std::make_unique<http::Server>(
            listener, [this](const http::Request& request, http::Answer& answer) {
                AnswerRequest(request, answer);
            }));
        urls_.push_back(
            Url(certificate == nullptr ? "http" : "https", address, listeners_.back()->Port()));
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
    if (users_ != nullptr) {
        attempt([&] { users_->Reload({access.passwordFile, access.allowedUsers}); });
    }
    if (certificate_ != nullptr) {
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

void Server::AnswerRequest(const http::Request& request, http::Answer& answer) {
    cimxml::Message message;
    message.method = request.method;
    for (const auto& header : request.headers) {
        message.headers.emplace_back(header.name, header.value);
    }
    message.body = request.body;
    message.user = request.user;
    message.mayChange = MayChange(request.user);
    AnswerOutput output(answer);
    cimxml::Answer(message, *operations_, output);
}

} // namespace cimserver
