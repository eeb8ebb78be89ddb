#include "cimserver/AccessItems.hpp"

#include "cimserver/ItemValue.hpp"
#include "cimserver/Settings.hpp"
#include "cimserver/http/Certificate.hpp"
#include "cimserver/http/PasswordFile.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>

namespace cimserver {

namespace {

bool IsNumericAddress(const std::string& address) {
    std::array<unsigned char, sizeof(in6_addr)> bytes{};
    return inet_pton(AF_INET, address.c_str(), bytes.data()) == 1 ||
           inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1;
}

std::filesystem::path File(const ItemValue& value) {
    return value.IsGiven() ? std::filesystem::absolute(value.Text()) : std::filesystem::path();
}

/// Collects what is wrong, each with the place of the item that it is about.
class AccessCheck {
public:
    AccessCheck(const Configuration& configuration, const Settings& settings,
                std::vector<Mistake>& mistakes)
        : configuration_(configuration), settings_(settings), access_(settings.access),
          mistakes_(mistakes) {}

    void CheckLogin() {
        if (!access_.allowsAnonymous && !access_.HasUsers()) {
            mistakes_.push_back(
                {Mistake::nowhere,
                 std::string("nobody could log in: make a user with `cimserver passwd USER --file "
                             "FILE` and name the file in ") +
                     items::passwordFile + ", or let everybody on this machine in with " +
                     items::allowAnonymous + " = true"});
        }
    }

    void CheckListening() {
        if (IsOff(items::port, "5988") && IsOff(items::tlsPort, "-1")) {
            Add(items::port, "-1",
                std::string("there is nothing to listen on; give a port here or in ") +
                    items::tlsPort);
        }
        if (settings_.port) {
            CheckExposure(items::addresses, settings_.addresses, false);
        }
        if (access_.tlsPort) {
            const bool hasOwn = !access_.tlsAddresses.empty();
            CheckExposure(hasOwn ? items::tlsAddresses : items::addresses,
                          hasOwn ? access_.tlsAddresses : settings_.addresses, true);
        }
    }

    void CheckCertificate() {
        if (!access_.tlsPort) {
            return;
        }
        if (access_.certificate.empty()) {
            Add(items::tlsPort, "",
                std::string("TLS needs a certificate: make one with `cimserver certificate` or "
                            "have one signed, and name its file in ") +
                    items::certificate);
            return;
        }
        try {
            const http::Certificate pair({access_.certificate, access_.KeyFile()});
        } catch (const http::CredentialError& error) {
            Add(items::certificate, "", error.what());
        }
    }

private:
    /// Not because of a mistake.
    bool IsOff(const char* port, const char* fallback) const {
        return configuration_.Get(port, fallback) == "-1";
    }

    void CheckExposure(const char* item, const std::vector<std::string>& addresses, bool isTls) {
        for (const auto& address : addresses) {
            const std::string fault = ExposureFault(address, isTls, access_);
            if (!fault.empty()) {
                Add(item, address.c_str(), fault);
                return;
            }
        }
    }

    void Add(const char* name, const char* fallback, const std::string& why) {
        const Configuration::Item* item = configuration_.Find(name);
        try {
            ItemValue(name, item, fallback).Refuse(why);
        } catch (const ConfigurationError& error) {
            mistakes_.push_back({item == nullptr ? Mistake::nowhere : item->line, error.what()});
        }
    }

    const Configuration& configuration_;
    const Settings& settings_;
    const AccessSettings& access_;
    std::vector<Mistake>& mistakes_;
};

} // namespace

bool AccessSettings::IsAnonymousOn(const std::string& address) const {
    return allowsAnonymous && (IsLoopback(address) || allowsAnonymousFromAnywhere);
}

bool ListsUser(const std::vector<std::string>& names, const std::string& user) {
    return std::any_of(names.begin(), names.end(),
                       [&](const auto& name) { return name == "*" || name == user; });
}

bool IsLoopback(const std::string& numericAddress) {
    in_addr four{};
    in6_addr six{};
    if (inet_pton(AF_INET, numericAddress.c_str(), &four) == 1) {
        return (ntohl(four.s_addr) >> 24U) == IN_LOOPBACKNET;
    }
    return inet_pton(AF_INET6, numericAddress.c_str(), &six) == 1 &&
           std::equal(std::begin(six.s6_addr), std::end(six.s6_addr),
                      std::begin(in6addr_loopback.s6_addr));
}

std::string ExposureFault(const std::string& numericAddress, bool isTls,
                          const AccessSettings& access) {
    if (IsLoopback(numericAddress)) {
        return "";
    }
    const std::string reached = "`" + numericAddress + "` can be reached from other machines, and ";
    const std::string otherwise = "; listen on 127.0.0.1 or ::1 instead, or set ";
    if (!access.HasUsers() && !access.IsAnonymousOn(numericAddress)) {
        return reached +
               "nobody would have to log in: make a user with `cimserver passwd` and name "
               "the file in " +
               items::passwordFile + otherwise + items::anonymousFromAnywhere + " = true";
    }
    if (!isTls && !access.allowsPlainFromAnywhere) {
        return reached +
               "without TLS anybody on the way reads along, passwords too: use --tls-listen (" +
               items::tlsPort + ") with " + items::certificate + otherwise +
               items::plainFromAnywhere + " = true";
    }
    return "";
}

namespace access_items {

std::vector<std::string> NumericAddresses(const ItemValue& value) {
    auto addresses = value.Words();
    for (const auto& address : addresses) {
        if (!IsNumericAddress(address)) {
            value.Refuse("`" + address + "` is no numeric IPv4 or IPv6 address");
        }
    }
    return addresses;
}

void ReadTlsAddresses(const ItemValue& value, Settings& settings) {
    settings.access.tlsAddresses = NumericAddresses(value);
}

void ReadTlsPort(const ItemValue& value, Settings& settings) {
    const auto port = value.Number(-1, 65535);
    if (port >= 0) {
        settings.access.tlsPort = static_cast<std::uint16_t>(port);
    }
}

void ReadCertificate(const ItemValue& value, Settings& settings) {
    settings.access.certificate = File(value);
}

void ReadKey(const ItemValue& value, Settings& settings) {
    settings.access.key = File(value);
}

void ReadPasswordFile(const ItemValue& value, Settings& settings) {
    settings.access.passwordFile = File(value);
    if (!settings.access.HasUsers()) {
        return;
    }
    try {
        http::ReadPasswordFile(settings.access.passwordFile);
    } catch (const http::CredentialError& error) {
        value.Refuse(error.what());
    }
}

void ReadAllowedUsers(const ItemValue& value, Settings& settings) {
    settings.access.allowedUsers = value.Words();
}

void ReadWriters(const ItemValue& value, Settings& settings) {
    settings.access.writers = value.Words();
}

void ReadFailureDelay(const ItemValue& value, Settings& settings) {
    settings.access.failureDelay = std::chrono::milliseconds(value.Number(0, 60'000));
}

void ReadMaxRefusedBody(const ItemValue& value, Settings& settings) {
    settings.access.maxRefusedBodyBytes =
        static_cast<std::size_t>(value.Number(0, std::int64_t{1} << 30));
}

void ReadAllowAnonymous(const ItemValue& value, Settings& settings) {
    settings.access.allowsAnonymous = value.Flag();
}

void ReadAnonymousFromAnywhere(const ItemValue& value, Settings& settings) {
    settings.access.allowsAnonymousFromAnywhere = value.Flag();
}

void ReadPlainFromAnywhere(const ItemValue& value, Settings& settings) {
    settings.access.allowsPlainFromAnywhere = value.Flag();
}

} // namespace access_items

void CheckAccess(const Configuration& configuration, const Settings& settings,
                 std::vector<Mistake>& mistakes) {
    AccessCheck check(configuration, settings, mistakes);
    check.CheckLogin();
    check.CheckListening();
    check.CheckCertificate();
}

} // namespace cimserver
