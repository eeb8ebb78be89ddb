// What the configuration means: every item that the server itself uses, checked and in its own
// type.
#pragma once

#include "cimserver/Configuration.hpp"

#include "OW_LogLevel.hpp"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace cimserver {

/// The names of the items. Those that OpenWBEM has for the same thing are its own.
namespace items {
inline constexpr const char* port = "http_server.http_port";
inline constexpr const char* addresses = "http_server.listen_addresses";
inline constexpr const char* providerDirectories = "cppprovifc.prov_location";
inline constexpr const char* idleMinutes = "cppprovifc.prov_TTL";
inline constexpr const char* logLevel = "log.main.level";
inline constexpr const char* mofFiles = "cimserver.mof_files";
inline constexpr const char* nameSpace = "cimserver.namespace";
} // namespace items

struct Settings {
    std::vector<std::string> addresses; ///< numeric IPv4 or IPv6, loopback all of them
    std::uint16_t port = 5988;          ///< 0: any free port
    std::vector<std::filesystem::path> providerDirectories;
    std::chrono::minutes providerIdle{5}; ///< negative: providers stay
    std::chrono::seconds callTime{300}; ///< until a client is told that its call is late; 0: never
    std::chrono::seconds busyTime{60};  ///< a call waits for a busy library; 0: for ever
    std::chrono::seconds stopTime{20};  ///< running calls have when the server stops
    OpenWBEM::ELogLevel logLevel = OpenWBEM::E_ERROR_LEVEL;
    std::vector<std::filesystem::path> mofFiles;
    std::string nameSpace = "root/cimv2"; ///< without slash at either end
};

/// `defaultProviders` is taken when no directory is configured. Throws ConfigurationError, naming
/// item and place.
Settings ReadSettings(const Configuration& configuration,
                      const std::filesystem::path& defaultProviders);

} // namespace cimserver
