// What the configuration means: every item that the server itself uses, checked and in its own
// type. What each item means and its default stand in the table of Items.hpp.
#pragma once

#include "cimserver/AccessItems.hpp"
#include "cimserver/Configuration.hpp"

#include "OW_LogLevel.hpp"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace cimserver {

/// The names of the items. Those that OpenWBEM has for the same thing are its own.
namespace items {
inline constexpr const char* addresses = "http_server.listen_addresses";
inline constexpr const char* port = "http_server.http_port";
inline constexpr const char* tlsAddresses = "cimserver.tls_addresses";
inline constexpr const char* tlsPort = "http_server.https_port";
inline constexpr const char* certificate = "http_server.SSL_cert";
inline constexpr const char* key = "cimserver.tls_key";
inline constexpr const char* passwordFile = "simple_auth.password_file";
inline constexpr const char* allowedUsers = "owcimomd.allowed_users";
inline constexpr const char* writers = "cimserver.writers";
inline constexpr const char* failureDelay = "cimserver.failure_milliseconds";
inline constexpr const char* maxRefusedBody = "cimserver.max_refused_body_bytes";
inline constexpr const char* allowAnonymous = "owcimomd.allow_anonymous";
inline constexpr const char* anonymousFromAnywhere = "cimserver.anonymous_from_anywhere";
inline constexpr const char* plainFromAnywhere = "cimserver.plain_from_anywhere";
inline constexpr const char* providerDirectories = "cppprovifc.prov_location";
inline constexpr const char* idleMinutes = "cppprovifc.prov_TTL";
inline constexpr const char* callSeconds = "cimserver.call_seconds";
inline constexpr const char* busySeconds = "cimserver.busy_seconds";
inline constexpr const char* stopSeconds = "cimserver.stop_seconds";
inline constexpr const char* mofFiles = "cimserver.mof_files";
inline constexpr const char* nameSpace = "cimserver.namespace";
inline constexpr const char* libraryItems = "cimserver.library_items";
inline constexpr const char* maxConnections = "http_server.max_connections";
inline constexpr const char* maxConnectionsPerAddress = "cimserver.max_connections_per_address";
inline constexpr const char* idleSeconds = "http_server.timeout";
inline constexpr const char* requestSeconds = "cimserver.request_seconds";
inline constexpr const char* maxHeaderBytes = "cimserver.max_header_bytes";
inline constexpr const char* maxBodyBytes = "cimserver.max_body_bytes";
inline constexpr const char* maxXmlDepth = "cimserver.max_xml_depth";
inline constexpr const char* maxXmlAttributes = "cimserver.max_xml_attributes";
inline constexpr const char* maxXmlElements = "cimserver.max_xml_elements";
inline constexpr const char* maxKeyBindings = "cimserver.max_key_bindings";
inline constexpr const char* logType = "log.main.type";
inline constexpr const char* logLocation = "log.main.location";
inline constexpr const char* logLevel = "log.main.level";
inline constexpr const char* requestLog = "cimserver.request_log";
} // namespace items

/// Of what clients may ask for; what happens at each is told in docs/running.md.
struct Limits {
    unsigned connections = 0;
    unsigned connectionsPerAddress = 0;
    unsigned idleSeconds = 0;
    unsigned requestSeconds = 0;
    std::size_t headerBytes = 0;
    std::size_t bodyBytes = 0;
    std::size_t xmlDepth = 0;
    std::size_t xmlAttributes = 0;
    std::size_t xmlElements = 0;
    std::size_t keyBindings = 0;
};

struct Settings {
    std::vector<std::string> addresses; ///< numeric IPv4 or IPv6, of listeners without TLS
    std::optional<std::uint16_t> port;  ///< absent: none without TLS; 0: any free port
    AccessSettings access;
    /// Those that listen on the addresses already, without and with TLS, in the same order; none:
    /// the server opens its own. No item says so.
    std::vector<int> sockets;
    std::vector<int> tlsSockets;
    std::vector<std::filesystem::path> providerDirectories;
    std::chrono::minutes providerIdle{}; ///< negative: providers stay
    std::chrono::seconds callTime{};     ///< until a client is told that its call is late; 0: never
    std::chrono::seconds busyTime{};     ///< that a call waits for a busy library; 0: for ever
    std::chrono::seconds stopTime{};     ///< that running calls have when the server stops
    std::vector<std::filesystem::path> mofFiles;
    std::string nameSpace; ///< without slash at either end
    std::vector<std::string> libraryItems;
    Limits limits;
    bool logsToFile = false;
    std::filesystem::path logLocation;
    OpenWBEM::ELogLevel logLevel = OpenWBEM::E_ERROR_LEVEL;
    bool requestLog = false;

    /// Empty: standard error.
    std::filesystem::path LogFile() const { return logsToFile ? logLocation : ""; }
};

/// Beside the running program. Throws std::system_error.
std::filesystem::path DefaultProviderDirectory();

/// `defaultProviders` is taken when no directory is configured. Every mistake goes to `mistakes`,
/// those of the file first and in its order; with one, the settings are of no use.
Settings ReadSettings(const Configuration& configuration,
                      const std::filesystem::path& defaultProviders,
                      std::vector<Mistake>& mistakes);

/// The same for whoever cannot go on after a mistake: throws ConfigurationError with the first.
Settings ReadSettings(const Configuration& configuration,
                      const std::filesystem::path& defaultProviders);

} // namespace cimserver
