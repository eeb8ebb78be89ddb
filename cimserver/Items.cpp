#include "cimserver/Items.hpp"

#include "cimserver/AccessItems.hpp"
#include "cimserver/ItemValue.hpp"

#include <algorithm>
#include <array>
#include <type_traits>

namespace cimserver {

namespace {

void ReadAddresses(const ItemValue& value, Settings& settings) {
    settings.addresses = access_items::NumericAddresses(value);
}

void ReadPort(const ItemValue& value, Settings& settings) {
    const auto port = value.Number(-1, 65535);
    if (port >= 0) {
        settings.port = static_cast<std::uint16_t>(port);
    }
}

void ReadProviderDirectories(const ItemValue& value, Settings& settings) {
    // The fallback is a place beside the program, which whoever reads the settings has put in.
    if (value.IsGiven()) {
        settings.providerDirectories = value.Directories();
    }
}

void ReadIdleMinutes(const ItemValue& value, Settings& settings) {
    settings.providerIdle = std::chrono::minutes(value.Number(-1, 1'000'000));
}

constexpr std::int64_t mostSeconds = 1'000'000;

void ReadCallSeconds(const ItemValue& value, Settings& settings) {
    settings.callTime = std::chrono::seconds(value.Number(0, mostSeconds));
}

void ReadBusySeconds(const ItemValue& value, Settings& settings) {
    settings.busyTime = std::chrono::seconds(value.Number(0, mostSeconds));
}

void ReadStopSeconds(const ItemValue& value, Settings& settings) {
    settings.stopTime = std::chrono::seconds(value.Number(0, mostSeconds));
}

void ReadLogLevel(const ItemValue& value, Settings& settings) {
    constexpr std::array levels{OpenWBEM::E_FATAL_ERROR_LEVEL, OpenWBEM::E_ERROR_LEVEL,
                                OpenWBEM::E_INFO_LEVEL, OpenWBEM::E_DEBUG_LEVEL};
    settings.logLevel = levels.at(value.Choice({"fatal", "error", "info", "debug"}));
}

void ReadMofFiles(const ItemValue& value, Settings& settings) {
    settings.mofFiles = value.Files();
    if (value.IsGiven() && settings.mofFiles.empty()) {
        value.Refuse("expected names of files");
    }
}

void ReadNameSpace(const ItemValue& value, Settings& settings) {
    std::string name;
    for (const auto& part : std::filesystem::path(value.Text())) {
        if (!part.empty() && part != "/") {
            name.append(name.empty() ? "" : "/").append(part.string());
        }
    }
    if (name.empty()) {
        value.Refuse("expected a name such as root/cimv2");
    }
    settings.nameSpace = name;
}

void ReadLibraryItems(const ItemValue& value, Settings& settings) {
    settings.libraryItems = value.Words();
}

/// A limit in the settings; what does not fit into it is refused by the bounds.
template <auto limit, std::int64_t least, std::int64_t most>
void ReadLimit(const ItemValue& value, Settings& settings) {
    auto& target = settings.limits.*limit;
    target = static_cast<std::remove_reference_t<decltype(target)>>(value.Number(least, most));
}

void ReadLogType(const ItemValue& value, Settings& settings) {
    settings.logsToFile = value.Choice({"stderr", "file"}) == 1;
}

void ReadLogLocation(const ItemValue& value, Settings& settings) {
    if (value.IsGiven()) {
        settings.logLocation = std::filesystem::absolute(value.Text());
    }
}

void ReadRequestLog(const ItemValue& value, Settings& settings) {
    settings.requestLog = value.Flag();
}

constexpr ItemRow rows[] = {
    {items::addresses, "127.0.0.1", "", "numeric addresses to listen on, separated by blanks",
     Effect::atRestart, &ReadAddresses},
    {items::port, "5988", "", "port for CIM-XML over HTTP; 0: any free one, -1: none",
     Effect::atRestart, &ReadPort},
    {items::tlsAddresses, "", "",
     "numeric addresses to listen on with TLS; none: those of http_server.listen_addresses",
     Effect::atRestart, &access_items::ReadTlsAddresses},
    {items::tlsPort, "-1", "", "port for CIM-XML over HTTPS; 0: any free one, -1: none",
     Effect::atRestart, &access_items::ReadTlsPort},
    {items::certificate, "", "", "PEM file with the certificate for TLS", Effect::atReload,
     &access_items::ReadCertificate},
    {items::key, "", "", "PEM file with its key; none: in the file of the certificate",
     Effect::atReload, &access_items::ReadKey},
    {items::passwordFile, "", "", "file of users and their hashes, written by cimserver passwd",
     Effect::atReload, &access_items::ReadPasswordFile},
    {items::allowedUsers, "*", "", "the users of that file who may log in; *: all of them",
     Effect::atReload, &access_items::ReadAllowedUsers},
    {items::writers, "", "",
     "the users who may call methods, create, modify, delete and set; *: everybody",
     Effect::atReload, &access_items::ReadWriters},
    {items::failureDelay, "1000", "milliseconds",
     "that the answer to wrong credentials takes at least", Effect::atRestart,
     &access_items::ReadFailureDelay},
    {items::maxRefusedBody, "4096", "bytes",
     "a longer body of a request without right credentials is not read", Effect::atRestart,
     &access_items::ReadMaxRefusedBody},
    {items::allowAnonymous, "false", "", "true: on 127.0.0.0/8 and ::1 nobody needs credentials",
     Effect::atRestart, &access_items::ReadAllowAnonymous},
    {items::anonymousFromAnywhere, "false", "",
     "true: with owcimomd.allow_anonymous, on every other address too", Effect::atRestart,
     &access_items::ReadAnonymousFromAnywhere},
    {items::plainFromAnywhere, "false", "",
     "true: addresses that other machines reach may be listened on without TLS", Effect::atRestart,
     &access_items::ReadPlainFromAnywhere},
    {items::providerDirectories, "../lib/providers beside the program", "",
     "directories of provider libraries, separated by : or ;", Effect::atRestart,
     &ReadProviderDirectories},
    {items::idleMinutes, "5", "minutes", "until an idle library is closed; -1: never",
     Effect::atRestart, &ReadIdleMinutes},
    {items::callSeconds, "300", "seconds",
     "a call runs in a library before its client is told that it is late; 0: any time",
     Effect::atRestart, &ReadCallSeconds},
    {items::busySeconds, "60", "seconds", "a call waits for a library that is busy; 0: any time",
     Effect::atRestart, &ReadBusySeconds},
    {items::stopSeconds, "20", "seconds", "running calls have to end when the server stops",
     Effect::atRestart, &ReadStopSeconds},
    {items::mofFiles, "", "",
     "files that declare qualifiers and classes, in order, separated by : or ;", Effect::atRestart,
     &ReadMofFiles},
    {items::nameSpace, "root/cimv2", "", "CIM namespace of the classes", Effect::atRestart,
     &ReadNameSpace},
    {items::libraryItems, "", "",
     "items that only provider libraries read, separated by blanks: --check-config lets them pass",
     Effect::atRestart, &ReadLibraryItems},
    {items::maxConnections, "200", "",
     "connections at once; one more gets status 503 and is closed", Effect::atRestart,
     &ReadLimit<&Limits::connections, 1, 10'000>},
    {items::maxConnectionsPerAddress, "100", "", "the same for one client address",
     Effect::atRestart, &ReadLimit<&Limits::connectionsPerAddress, 1, 10'000>},
    {items::idleSeconds, "300", "seconds", "until a connection on which nothing happens is closed",
     Effect::atRestart, &ReadLimit<&Limits::idleSeconds, 1, 86'400>},
    {items::requestSeconds, "30", "seconds", "for a whole request to arrive; then status 408",
     Effect::atRestart, &ReadLimit<&Limits::requestSeconds, 1, 86'400>},
    {items::maxHeaderBytes, "8192", "bytes", "head of a request; above it status 431",
     Effect::atRestart, &ReadLimit<&Limits::headerBytes, 256, 61'440>},
    {items::maxBodyBytes, "1048576", "bytes", "body of a request; above it status 413",
     Effect::atRestart, &ReadLimit<&Limits::bodyBytes, 1024, 1'073'741'824>},
    {items::maxXmlDepth, "64", "", "elements of a request within each other; above it status 400",
     Effect::atRestart, &ReadLimit<&Limits::xmlDepth, 16, 1000>},
    {items::maxXmlAttributes, "32", "", "attributes of an element; above it status 400",
     Effect::atRestart, &ReadLimit<&Limits::xmlAttributes, 8, 10'000>},
    {items::maxXmlElements, "20000", "", "elements of a request; above it status 400",
     Effect::atRestart, &ReadLimit<&Limits::xmlElements, 100, 10'000'000>},
    {items::maxKeyBindings, "32", "", "keys of an instance name; above it status 400",
     Effect::atRestart, &ReadLimit<&Limits::keyBindings, 1, 10'000>},
    {items::logType, "stderr", "", "stderr or file", Effect::atReload, &ReadLogType},
    {items::logLocation, "", "", "name of the log file, for log.main.type = file", Effect::atReload,
     &ReadLogLocation},
    {items::logLevel, "error", "", "fatal, error, info or debug", Effect::atReload, &ReadLogLevel},
    {items::requestLog, "true", "", "a line for each request, whatever the level: true or false",
     Effect::atReload, &ReadRequestLog},
};

/// A name that is also in the table above counts there.
constexpr std::string_view othersOfOpenWbem[] = {
    "http_server.ssl_client_verification",
    "http_server.ssl_trust_store",
    "http_server.single_thread",
    "http_server.enable_deflate",
    "http_server.reuse_addr",
    "http_server.use_UDS",
    "http_server.uds_filename",
    "http_server.use_digest",
    "http_server.digest_password_file",
    "http_server.allow_local_authentication",
    "http_server.default_content_language",
    "owcimomd.authentication_module",
    "owcimomd.debugflag",
    "log.main.categories",
    "log.main.components",
    "log.main.format",
    "log.main.max_file_size",
    "log.main.max_backup_index",
    "owcimomd.additional_logs",
    "owcimomd.log_location",
    "owcimomd.log_level",
    "owcimomd.dump_socket_io",
    "owcimomd.datadir",
    "owcimomd.interop_schema_namespace",
    "owcimomd.disable_indications",
    "owcimomd.restart_on_error",
    "owcimomd.request_handler_TTL",
};

} // namespace

std::span<const ItemRow> Items() {
    return rows;
}

bool IsUnusedItemOfOpenWbem(std::string_view name) {
    const bool isUsed = std::any_of(std::begin(rows), std::end(rows),
                                    [&](const ItemRow& row) { return row.name == name; });
    // Further logs have the items of the main one, each log under a name of its own.
    const bool isOfAnotherLog = name.starts_with("log.") && !name.starts_with("log.main.");
    return !isUsed &&
           (isOfAnotherLog || std::find(std::begin(othersOfOpenWbem), std::end(othersOfOpenWbem),
                                        name) != std::end(othersOfOpenWbem));
}

} // namespace cimserver
