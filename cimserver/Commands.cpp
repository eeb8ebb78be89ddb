#include "cimserver/Commands.hpp"

#include "cimserver/HiddenInput.hpp"
#include "cimserver/Process.hpp"
#include "cimserver/Settings.hpp"
#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"
#include "cimserver/http/SelfSigned.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver {

namespace {

struct Streams {
    std::ostream& out;
    std::ostream& err;
};

/// Nothing when all is well.
std::optional<ExitCode> Parse(CLI::App& app, int argc, const char* const* argv, Streams streams) {
    try {
        app.parse(argc - 1, argv + 1);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        return app.exit(error, streams.out, streams.err) == 0 ? exitDone : exitUsage;
    }
}

ExitCode MisuseOf(const char* command, const std::string& why, Streams streams) {
    streams.err << "cimserver " << command << ": " << why << "\n";
    return exitUsage;
}

std::string PasswordFileOf(const std::string& configFile) {
    Configuration configuration;
    configuration.AddFile(configFile);
    return configuration.Get(items::passwordFile, "");
}

void CheckPassword(const std::string& password) {
    if (password.empty()) {
        throw std::runtime_error("an empty password lets everybody in; nothing was written");
    }
    const bool hasControls = std::any_of(password.begin(), password.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
    });
    if (hasControls) {
        throw std::runtime_error(
            "a password with control characters cannot be sent; nothing was written");
    }
}

ExitCode RunPasswd(int argc, const char* const* argv, Streams streams) {
    CLI::App app("Gives a user a password: writes the hash into the file of users, which is made "
                 "when there is none",
                 "cimserver passwd");
    std::string user;
    std::string file;
    std::string config;
    app.add_option("USER", user, "name, without colon and control characters")->required();
    app.add_option("--file", file, "file of users")->type_name("FILE");
    app.add_option("--config", config, "the server's configuration, whose file of users is meant")
        ->type_name("FILE");
    app.footer("Asks twice for the password at a terminal; otherwise one line of standard input is "
               "the password.\nA running server takes the file again on SIGHUP.");
    if (const auto done = Parse(app, argc, argv, streams)) {
        return *done;
    }
    if (file.empty() && !config.empty()) {
        file = PasswordFileOf(config);
    }
    if (file.empty()) {
        return MisuseOf("passwd",
                        std::string("which file? Name it with --file, or with --config a "
                                    "configuration that has ") +
                            items::passwordFile,
                        streams);
    }
    if (!http::IsUserName(user)) {
        return MisuseOf("passwd", "a user name holds no colon and no control character", streams);
    }
    const std::string password = ReadHidden("Password of " + user + ": ", "Once more: ");
    CheckPassword(password);
    http::SetPassword(file, user, http::HashOf(password));
    streams.out << "Wrote the password of " << user << " to " << file << "\n";
    return exitDone;
}

struct CertificateOptions {
    std::string certificate;
    std::string key;
    std::vector<std::string> names;
    int days = 825;
    bool replaces = false;
};

void Declare(CLI::App& app, CertificateOptions& options) {
    app.add_option("--cert", options.certificate, "file for the certificate")
        ->type_name("FILE")
        ->required();
    app.add_option("--key", options.key, "file for the key (default: the certificate's)")
        ->type_name("FILE");
    app.add_option("--name", options.names,
                   "host names and addresses that clients use (default: this machine's name, "
                   "localhost, 127.0.0.1 and ::1)")
        ->type_name("NAME");
    app.add_option("--days", options.days, "how long it is valid")
        ->type_name("N")
        ->check(CLI::Range(1, 36500))
        ->capture_default_str();
    app.add_flag("--replace", options.replaces, "take the place of files that are there");
}

void CheckPlace(const std::string& file, bool mayBeThere) {
    if (!mayBeThere && std::filesystem::exists(file)) {
        throw http::CredentialError(file + ": is there already; --replace writes it anew");
    }
}

/// The key first: who has the certificate without it cannot serve.
void WritePair(const CertificateOptions& options, const http::PemPair& pair) {
    constexpr mode_t secret = 0600;
    constexpr mode_t open = 0644;
    if (options.key.empty()) {
        http::ReplaceFile(options.certificate, pair.certificate + pair.key, secret);
        return;
    }
    http::ReplaceFile(options.key, pair.key, secret);
    http::ReplaceFile(options.certificate, pair.certificate, open);
}

ExitCode RunCertificate(int argc, const char* const* argv, Streams streams) {
    CLI::App app("Makes a key and a certificate for TLS that is signed by itself: clients have to "
                 "be given it, or told not to verify",
                 "cimserver certificate");
    CertificateOptions options;
    Declare(app, options);
    if (const auto done = Parse(app, argc, argv, streams)) {
        return *done;
    }
    if (options.key == options.certificate) {
        options.key.clear(); // both in one file
    }
    if (options.names.empty()) {
        options.names = {HostName(), "localhost", "127.0.0.1", "::1"};
    }
    CheckPlace(options.certificate, options.replaces);
    CheckPlace(options.key, options.replaces);
    WritePair(options, http::MakeSelfSigned(options.names, options.days));
    streams.out << "Wrote a certificate for";
    for (const auto& name : options.names) {
        streams.out << " " << name;
    }
    streams.out << ", valid for " << options.days << " days, to " << options.certificate
                << " and its key to "
                << (options.key.empty() ? "the same file" : options.key.c_str()) << "\n";
    return exitDone;
}

} // namespace

std::optional<ExitCode> RunCommand(int argc, const char* const* argv, std::ostream& out,
                                   std::ostream& err) {
    const std::string_view command = argc > 1 ? argv[1] : "";
    if (command == "passwd") {
        return RunPasswd(argc, argv, {out, err});
    }
    if (command == "certificate") {
        return RunCertificate(argc, argv, {out, err});
    }
    return std::nullopt;
}

} // namespace cimserver
