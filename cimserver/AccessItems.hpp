// The configuration items that say where the server listens, with or without TLS, who is let in and
// who may change something: how they are read, and what they must be together so that the server
// is safe to expose.
#pragma once

#include "cimserver/Configuration.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace cimserver {

class ItemValue;
struct Settings;

struct AccessSettings {
    std::vector<std::string> tlsAddresses; ///< empty: those without TLS
    std::optional<std::uint16_t> tlsPort;  ///< absent: no TLS; 0: any free port
    std::filesystem::path certificate;     ///< PEM
    std::filesystem::path key;             ///< PEM; empty: in the certificate's file
    std::filesystem::path passwordFile;    ///< empty: there are no users
    std::vector<std::string> allowedUsers; ///< `*`: everybody who has a password
    std::vector<std::string> writers;      ///< `*`: everybody, anonymous clients among them
    std::chrono::milliseconds failureDelay{};
    std::size_t maxRefusedBodyBytes = 0;
    bool allowsAnonymous = false;
    bool allowsAnonymousFromAnywhere = false;
    bool allowsPlainFromAnywhere = false;

    const std::filesystem::path& KeyFile() const { return key.empty() ? certificate : key; }
    bool HasUsers() const { return !passwordFile.empty(); }
    /// Whether clients of a listener on that address need no credentials.
    bool IsAnonymousOn(const std::string& address) const;
};

/// The names hold the user's, or `*`. An empty user is an anonymous client, whom only `*` means.
bool ListsUser(const std::vector<std::string>& names, const std::string& user);

/// Only programs of this machine reach it; true for 127.0.0.0/8 and ::1.
bool IsLoopback(const std::string& numericAddress);

/// Why nobody may listen there with these settings, and what to do; empty when all is well.
/// Whatever opens a listening socket asks for its address first.
std::string ExposureFault(const std::string& numericAddress, bool isTls,
                          const AccessSettings& access);

namespace access_items {

// Readers for the table of items. All throw ConfigurationError.
std::vector<std::string> NumericAddresses(const ItemValue& value);
void ReadTlsAddresses(const ItemValue& value, Settings& settings);
void ReadTlsPort(const ItemValue& value, Settings& settings);
void ReadCertificate(const ItemValue& value, Settings& settings);
void ReadKey(const ItemValue& value, Settings& settings);
void ReadPasswordFile(const ItemValue& value, Settings& settings);
void ReadAllowedUsers(const ItemValue& value, Settings& settings);
void ReadWriters(const ItemValue& value, Settings& settings);
void ReadFailureDelay(const ItemValue& value, Settings& settings);
void ReadMaxRefusedBody(const ItemValue& value, Settings& settings);
void ReadAllowAnonymous(const ItemValue& value, Settings& settings);
void ReadAnonymousFromAnywhere(const ItemValue& value, Settings& settings);
void ReadPlainFromAnywhere(const ItemValue& value, Settings& settings);

} // namespace access_items

/// Adds what none of these items says alone: nothing to listen on, nobody who could log in, an
/// exposed address, TLS without a certificate that can be used.
void CheckAccess(const Configuration& configuration, const Settings& settings,
                 std::vector<Mistake>& mistakes);

} // namespace cimserver
