#include "cimserver/CommandLine.hpp"

#include "cimserver/ConfigurationCheck.hpp"
#include "cimserver/Items.hpp"
#include "cimserver/Settings.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <string>
#include <vector>

namespace cimserver {

namespace {

struct Options {
    std::string config;
    std::string listen;
    std::string tlsListen;
    std::vector<std::string> providerDirectories;
    std::vector<std::string> mofFiles;
    std::string nameSpace;
    std::string logLevel;
    bool checksConfiguration = false;
};

/// Name, unit and default of every item, and what it means.
std::string ItemList() {
    std::string list;
    for (const ItemRow& row : Items()) {
        list.append("  ").append(row.name);
        const bool hasFallback = *row.fallback != '\0';
        const bool hasUnit = *row.unit != '\0';
        list.append(hasFallback ? " = " : "").append(row.fallback);
        list.append(hasUnit ? " " : "").append(row.unit);
        list.append("\n      ").append(row.meaning).append("\n");
    }
    return list;
}

void Declare(CLI::App& app, Options& options) {
    app.set_version_flag("--version", "cimserver " CIMSERVER_VERSION);
    app.add_option("--config", options.config, "file of `name = value` lines")->type_name("FILE");
    app.add_option(
           "--listen", options.listen,
           "where to serve CIM-XML over HTTP; port 0: any free one (default 127.0.0.1:5988)")
        ->type_name("ADDR:PORT");
    app.add_option("--tls-listen", options.tlsListen,
                   "where to serve it over HTTPS, with http_server.SSL_cert (default: nowhere)")
        ->type_name("ADDR:PORT");
    app.add_option("--provider-dir", options.providerDirectories,
                   "directory of provider libraries (default ../lib/providers beside the program)")
        ->type_name("DIR")
        ->expected(1)
        ->take_all();
    app.add_option("--mof", options.mofFiles, "files that declare qualifiers and classes, in order")
        ->type_name("FILE");
    app.add_option("--namespace", options.nameSpace,
                   "CIM namespace of the classes (default root/cimv2)")
        ->type_name("NAME");
    app.add_option("--log-level", options.logLevel, "fatal, error, info or debug (default error)")
        ->type_name("LEVEL");
    app.add_flag("--check-config", options.checksConfiguration,
                 "tell every mistake and every unknown item of the configuration, and end");
    app.footer(
        "Stays in the foreground, logs to standard error or a file, stops on SIGTERM or SIGINT,\n"
        "reads its configuration again on SIGHUP.\n"
        "Every option has a configuration item; the command line wins.\n"
        "cimserver passwd and cimserver certificate make what logging in and TLS need; each has "
        "--help.\n\n"
        "Configuration items, with their defaults:\n" +
        ItemList());
}

std::string Joined(const std::vector<std::string>& parts, const char* option) {
    std::string text;
    for (const auto& part : parts) {
        if (part.find_first_of(":;") != std::string::npos) {
            throw ConfigurationError(std::string(option) + ": `" + part +
                                     "`: a path must not hold `:` or `;`");
        }
        text += text.empty() ? part : ":" + part;
    }
    return text;
}

struct ListenOption {
    const char* name;
    const char* addresses; ///< the item
    const char* port;      ///< the item
};
constexpr ListenOption plainOption{"--listen", items::addresses, items::port};
constexpr ListenOption tlsOption{"--tls-listen", items::tlsAddresses, items::tlsPort};

void ApplyListen(Configuration& configuration, const std::string& listen,
                 const ListenOption& option) {
    if (listen.empty()) {
        return;
    }
    const auto colon = listen.rfind(':');
    std::string address = listen.substr(0, colon);
    const bool bracketed = address.size() >= 2 && address.front() == '[' && address.back() == ']';
    if (bracketed) {
        address = address.substr(1, address.size() - 2);
    }
    const bool hasTwoParts = colon != std::string::npos && colon + 1 < listen.size();
    if (!hasTwoParts || address.empty() || (!bracketed && address.find(':') != std::string::npos)) {
        throw ConfigurationError(std::string(option.name) + ": `" + listen +
                                 "`: expected ADDR:PORT, such as 127.0.0.1:5988 or [::1]:5988");
    }
    configuration.Override(option.addresses, address, option.name);
    configuration.Override(option.port, listen.substr(colon + 1), option.name);
}

void Apply(const Options& options, Configuration& configuration) {
    const auto override = [&](const char* item, const std::string& value, const char* option) {
        if (!value.empty()) {
            configuration.Override(item, value, option);
        }
    };
    ApplyListen(configuration, options.listen, plainOption);
    ApplyListen(configuration, options.tlsListen, tlsOption);
    override(items::providerDirectories, Joined(options.providerDirectories, "--provider-dir"),
             "--provider-dir");
    override(items::mofFiles, Joined(options.mofFiles, "--mof"), "--mof");
    override(items::nameSpace, options.nameSpace, "--namespace");
    override(items::logLevel, options.logLevel, "--log-level");
}

} // namespace

std::optional<ExitCode> ReadCommandLine(int argc, const char* const* argv,
                                        Configuration& configuration, std::ostream& out,
                                        std::ostream& err) {
    CLI::App app("CIM server: serves the classes of MOF files over CIM-XML with OpenWBEM C++ "
                 "provider libraries",
                 "cimserver");
    Options options;
    Declare(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? exitDone : exitUsage;
    }
    if (!options.config.empty()) {
        configuration.AddFile(options.config);
    }
    Apply(options, configuration);
    if (options.checksConfiguration) {
        return IsConfigurationWell(configuration, DefaultProviderDirectory(), out, err)
                   ? exitDone
                   : exitCannotStart;
    }
    return std::nullopt;
}

} // namespace cimserver
