#include "cimserver/Server.hpp"

#include "cimserver/cimxml/CimXml.hpp"

#include <algorithm>
#include <climits>
#include <string_view>
#include <unistd.h>
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
    void LimitTime(cimxml::MakeLateAnswer late) override {
        answer_.LimitTime([late = std::move(late)](std::chrono::milliseconds limit) {
            cimxml::LateAnswer made = late(limit);
            return http::LateAnswer{std::move(made.text), AsHeaders(made.trailers)};
        });
    }
    void LiftLimit() override { answer_.LiftLimit(); }

private:
    http::Answer& answer_;
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

OpenWBEM::String HostName() {
    char name[HOST_NAME_MAX + 1] = {};
    const bool isNamed = gethostname(name, sizeof name - 1) == 0 && name[0] != '\0';
    return isNamed ? name : "localhost";
}

} // namespace

Server::Server(const Settings& settings, const Configuration& configuration,
               const OpenWBEM::LoggerRef& logger)
    : addresses_(settings.addresses) {
    for (const auto& file : settings.mofFiles) {
        schema_.AddFile(file);
    }
    host_ = std::make_unique<host::Host>(HostSettings(settings, configuration, logger));
    operations_ = std::make_unique<operations::Operations>(
        schema_, *host_, OpenWBEM::String(settings.nameSpace.c_str()), HostName());
    for (const auto& address : addresses_) {
        http::Settings listener;
        listener.address = address;
        listener.port = settings.port;
        listener.callTime = settings.callTime;
        listeners_.push_back(std::make_unique<http::Server>(
            listener, [this](const http::Request& request, http::Answer& answer) {
                AnswerRequest(request, answer);
            }));
    }
}

std::vector<std::string> Server::Urls() const {
    std::vector<std::string> urls;
    for (std::size_t i = 0; i < listeners_.size(); ++i) {
        const bool six = addresses_[i].find(':') != std::string::npos;
        urls.push_back("http://" + (six ? "[" + addresses_[i] + "]" : addresses_[i]) + ":" +
                       std::to_string(listeners_[i]->Port()));
    }
    return urls;
}

bool Server::Finish(std::chrono::milliseconds longest) {
    const auto until = std::chrono::steady_clock::now() + longest;
    for (const auto& listener : listeners_) {
        listener->StopAccepting();
    }
    return std::all_of(listeners_.begin(), listeners_.end(),
                       [until](const auto& listener) { return listener->WaitUntilIdle(until); });
}

void Server::AnswerRequest(const http::Request& request, http::Answer& answer) {
    cimxml::Message message;
    message.method = request.method;
    for (const auto& header : request.headers) {
        message.headers.emplace_back(header.name, header.value);
    }
    message.body = request.body;
    AnswerOutput output(answer);
    cimxml::Answer(message, *operations_, output);
}

} // namespace cimserver
