// The server's log: lines `TIME CATEGORY COMPONENT: MESSAGE` on standard error or in a file. The
// server's own lines and those of providers go through the same logger. Beside them stands a line
// for each request, whatever the level:
//
//   TIME REQUEST CLIENT USER OPERATION CLASS OUTCOME DURATION ms
//
// which holds nothing that is secret: no key, no value, no text of an error.
#pragma once

#include "OW_Logger.hpp"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace cimserver {

/// What stands in the line of a request. Any bytes: each field is escaped, and cut when it is long.
struct RequestRecord {
    std::string_view client;
    std::string_view user;      ///< empty: anonymous
    std::string_view operation; ///< empty when it was not read
    std::string_view className; ///< empty: none
    std::string_view method;    ///< stands behind the class; empty: none
    std::string_view outcome;   ///< `ok`, the name of a CIM error, or `status-` and that of HTTP
    std::chrono::microseconds duration{};
};

/// Any thread may call any function.
class Log {
public:
    /// Where it goes: an empty name means standard error. A file is created with mode 0640 and
    /// added to. Throws std::runtime_error with the name and the reason.
    Log(OpenWBEM::ELogLevel level, const std::filesystem::path& file);
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    /// A logger that writes the categories FATAL, ERROR, INFO and DEBUG up to the level, and any
    /// other category at DEBUG only; a message sent past the level test of `Logger` is held to the
    /// same rule. Control characters of a message are written as escapes, so that a message stays
    /// one line. It and its clones may outlive this.
    OpenWBEM::LoggerRef Logger() const;

    /// Also of every logger that is there already, clones included.
    void SetLevel(OpenWBEM::ELogLevel level);
    /// Opens the file anew, or another one; throws as the constructor does and goes on as before.
    void Reopen(const std::filesystem::path& file);

    /// Whether there are lines of requests; there are from the start.
    void SetRequests(bool areLogged) { logsRequests_ = areLogged; }
    bool LogsRequests() const { return logsRequests_; }
    /// Nothing when there are no such lines.
    void Request(const RequestRecord& record);

private:
    class Output;
    const std::shared_ptr<Output> output_;
    std::atomic<bool> logsRequests_ = true;
};

/// A line for whoever waits for the server to be ready: written to standard error whatever the
/// level, without time and category.
void WriteReadinessLine(const std::string& line);

} // namespace cimserver
