#include "cimserver/Settings.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cctype>
#include <charconv>
#include <netinet/in.h>
#include <string_view>
#include <system_error>

namespace cimserver {

namespace {

using Item = Configuration::Item;

[[noreturn]] void Refuse(const char* name, const Item& item, const std::string& why) {
    throw ConfigurationError(item.origin + ": " + name + " = " + item.value + ": " + why);
}

std::vector<std::string> Split(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    while (true) {
        const auto begin = text.find_first_not_of(separators);
        if (begin == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(begin);
        const auto end = std::min(text.find_first_of(separators), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

int Number(const char* name, const Item& item, int least, int most) {
    int number = 0;
    const char* end = item.value.data() + item.value.size();
    const auto [stop, error] = std::from_chars(item.value.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) {
        Refuse(name, item,
               "expected a whole number from " + std::to_string(least) + " to " +
                   std::to_string(most));
    }
    return number;
}

bool IsNumericAddress(const std::string& address) {
    std::array<unsigned char, sizeof(in6_addr)> bytes{};
    return inet_pton(AF_INET, address.c_str(), bytes.data()) == 1 ||
           inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1;
}

bool IsLoopback(const std::string& address) {
    in_addr four{};
    in6_addr six{};
    if (inet_pton(AF_INET, address.c_str(), &four) == 1) {
        return (ntohl(four.s_addr) >> 24U) == IN_LOOPBACKNET;
    }
    return inet_pton(AF_INET6, address.c_str(), &six) == 1 &&
           std::equal(std::begin(six.s6_addr), std::end(six.s6_addr),
                      std::begin(in6addr_loopback.s6_addr));
}

// Nobody proves here who he is, so only users of this machine may come in.
std::vector<std::string> Addresses(const Configuration& configuration) {
    const Item* item = configuration.Find(items::addresses);
    if (item == nullptr) {
        return {"127.0.0.1"};
    }
    auto addresses = Split(item->value, " \t");
    for (const auto& address : addresses) {
        if (!IsNumericAddress(address)) {
            Refuse(items::addresses, *item, "`" + address + "` is no numeric IPv4 or IPv6 address");
        }
        if (!IsLoopback(address)) {
            Refuse(items::addresses, *item,
                   "`" + address +
                       "` can be reached from other machines, and this server has no "
                       "authentication; use 127.0.0.1 or ::1");
        }
    }
    return addresses;
}

std::uint16_t Port(const Configuration& configuration, std::uint16_t fallback) {
    const Item* item = configuration.Find(items::port);
    if (item == nullptr) {
        return fallback;
    }
    if (item->value == "-1") {
        Refuse(items::port, *item, "without HTTP this server has nothing to listen on");
    }
    return static_cast<std::uint16_t>(Number(items::port, *item, 0, 65535));
}

OpenWBEM::ELogLevel LogLevel(const Configuration& configuration, OpenWBEM::ELogLevel fallback) {
    const Item* item = configuration.Find(items::logLevel);
    if (item == nullptr) {
        return fallback;
    }
    std::string level = item->value;
    std::transform(level.begin(), level.end(), level.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (level == "fatal") {
        return OpenWBEM::E_FATAL_ERROR_LEVEL;
    }
    if (level == "error") {
        return OpenWBEM::E_ERROR_LEVEL;
    }
    if (level == "info") {
        return OpenWBEM::E_INFO_LEVEL;
    }
    if (level == "debug") {
        return OpenWBEM::E_DEBUG_LEVEL;
    }
    Refuse(items::logLevel, *item, "expected fatal, error, info or debug");
}

std::vector<std::filesystem::path> Paths(const Item& item) {
    std::vector<std::filesystem::path> paths;
    for (const auto& part : Split(item.value, ":;")) {
        paths.emplace_back(std::filesystem::absolute(part));
    }
    return paths;
}

std::vector<std::filesystem::path> Directories(const Configuration& configuration,
                                               const std::filesystem::path& fallback) {
    const Item* item = configuration.Find(items::providerDirectories);
    if (item == nullptr) {
        return {fallback};
    }
    auto directories = Paths(*item);
    for (const auto& directory : directories) {
        std::error_code ignored;
        if (!std::filesystem::is_directory(directory, ignored)) {
            Refuse(items::providerDirectories, *item,
                   "there is no directory " + directory.string());
        }
    }
    return directories;
}

std::vector<std::filesystem::path> MofFiles(const Configuration& configuration) {
    const Item* item = configuration.Find(items::mofFiles);
    auto files = item == nullptr ? std::vector<std::filesystem::path>{} : Paths(*item);
    if (files.empty()) {
        throw ConfigurationError(std::string("no MOF file: name the files that declare the classes "
                                             "with --mof FILE or with the item ") +
                                 items::mofFiles);
    }
    return files;
}

std::string NameSpace(const Configuration& configuration, const std::string& fallback) {
    const auto parts = Split(configuration.Get(items::nameSpace, fallback), "/");
    std::string name;
    for (const auto& part : parts) {
        name += name.empty() ? part : "/" + part;
    }
    if (name.empty()) {
        Refuse(items::nameSpace, *configuration.Find(items::nameSpace),
               "expected a name such as root/cimv2");
    }
    return name;
}

} // namespace

Settings ReadSettings(const Configuration& configuration,
                      const std::filesystem::path& defaultProviders) {
    Settings settings;
    settings.addresses = Addresses(configuration);
    settings.port = Port(configuration, settings.port);
    settings.providerDirectories = Directories(configuration, defaultProviders);
    if (const Item* item = configuration.Find(items::idleMinutes)) {
        settings.providerIdle =
            std::chrono::minutes(Number(items::idleMinutes, *item, -1, 1'000'000));
    }
    settings.logLevel = LogLevel(configuration, settings.logLevel);
    settings.mofFiles = MofFiles(configuration);
    settings.nameSpace = NameSpace(configuration, settings.nameSpace);
    return settings;
}

} // namespace cimserver
