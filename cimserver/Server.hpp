// The whole server in one object: schema, providers, operations, and the addresses it listens on.
#pragma once

#include "cimserver/Configuration.hpp"
#include "cimserver/LimitLog.hpp"
#include "cimserver/Log.hpp"
#include "cimserver/Settings.hpp"
#include "cimserver/cimxml/CimXml.hpp"
#include "cimserver/host/Host.hpp"
#include "cimserver/http/Http.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace cimserver {

/// Serves from construction on. The destructor stops listening, lets running calls end, then drops
/// the providers on its own thread.
class Server final : private http::Observer {
public:
    /// `configuration` is what providers may ask for; it and the log must outlive the server.
    /// Throws MofError, ListenError, CredentialError.
    Server(const Settings& settings, const Configuration& configuration, Log& log);

    /// The addresses really listened on: `http://127.0.0.1:5988`; those with TLS last.
    const std::vector<std::string>& Urls() const { return urls_; }

    /// Takes users, allowed users, certificate and writers anew, for the requests and connections
    /// that come from now on; what was remembered of passwords is forgotten, and no connection
    /// ends. Returns why not, a sentence each for users and certificate; these stay as they were.
    /// Where there were no users or no TLS at the start there are none after this, and where there
    /// were they stay.
    std::vector<std::string> ReloadCredentials(const AccessSettings& access);

    /// Takes no more connections and requests, and waits for the calls that run and for their
    /// answers. False when some have not ended after that time; the destructor waits for them.
    bool Finish(std::chrono::milliseconds longest);

private:
    void Listen(const std::vector<std::string>& addresses, const std::vector<int>& sockets,
                http::Settings listener, const AccessSettings& access);
    bool MayChange(const std::string& user) const;
    void Reached(http::Limit limit, const std::string& clientAddress) override;
    void Refused(int status, const std::string& clientAddress) override;
    void AnswerRequest(const http::Request& request, http::Answer& answer);
    void Record(const http::Request& request, const cimxml::Outcome& outcome,
                std::chrono::steady_clock::time_point start);

    // In the order of life: each uses only those before it.
    Log& log_;
    LimitLog limitLog_;
    const cimxml::XmlLimits xmlLimits_;
    const std::shared_ptr<http::Users> users_;             ///< null: there are none
    const std::shared_ptr<http::Certificate> certificate_; ///< null: there is no TLS
    mutable std::mutex writersMutex_;
    std::vector<std::string> writers_; ///< guarded by writersMutex_
    mof::Schema schema_;
    std::unique_ptr<host::Host> host_;
    std::unique_ptr<operations::Operations> operations_;
    std::vector<std::string> urls_;
    std::vector<std::unique_ptr<http::Server>> listeners_;
};

} // namespace cimserver
