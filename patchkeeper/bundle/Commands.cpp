#include "patchkeeper/bundle/Commands.hpp"

#include <optional>

#include <CLI/CLI.hpp>

namespace patchkeeper {

namespace {

using Arguments = std::vector<std::string>;

// Whether the command is to run; the exit code when it is not (--help, a mistake).
std::optional<ExitCode> Parse(CLI::App& app, const Arguments& arguments, std::ostream& out,
                              std::ostream& err) {
    try {
        app.parse(Arguments(arguments.rbegin(), arguments.rend() - 1)); // CLI11: the last first
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? ExitCode::Ok : ExitCode::Usage;
    }
    return std::nullopt;
}

ExitCode RunBundle(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    CLI::App app("Makes an update bundle of a directory with manifest.json, files/ and\n"
                 "components/NAME/, checks it and prints its path.",
                 "patchkeeper bundle");
    std::string directory;
    std::string output;
    std::string key;
    app.add_option("DIR", directory, "The directory")->required();
    app.add_option("-o,--output", output, "The bundle; otherwise NAME-VERSION.tar.gz here")
        ->type_name("FILE");
    const auto* keyOption =
        app.add_option("--key", key, "Sign with this Ed25519 private key (PEM)")->type_name("FILE");
    if (const auto code = Parse(app, arguments, out, err)) {
        return *code;
    }
    const auto made = MakeBundle(
        directory, output, *keyOption ? std::optional<std::filesystem::path>(key) : std::nullopt);
    out << made.string() << '\n';
    return ExitCode::Ok;
}

void ReportFaults(const std::string& file, const std::vector<std::string>& faults,
                  std::ostream& out) {
    for (const auto& fault : faults) {
        out << fault << ".\n";
    }
    throw Failure(ExitCode::SoftwareUpdateFailed,
                  file + " has " +
                      (faults.size() == 1 ? std::string("a fault")
                                          : std::to_string(faults.size()) + " faults"));
}

ExitCode RunCheck(const Arguments& arguments, const std::function<Trust()>& settings,
                  std::ostream& out, std::ostream& err) {
    CLI::App app("Checks an update bundle and names every fault of it.", "patchkeeper check");
    std::string file;
    std::vector<std::string> keys;
    bool allowUnsigned = false;
    app.add_option("FILE", file, "The bundle")->required();
    app.add_option("--trust", keys,
                   "Trust this Ed25519 public key (PEM) in place of those in the settings")
        ->type_name("FILE")
        ->allow_extra_args(false);
    app.add_flag("--allow-unsigned", allowUnsigned, "Take no signature for no fault");
    if (const auto code = Parse(app, arguments, out, err)) {
        return *code;
    }
    Trust trust;
    if (keys.empty() && !allowUnsigned) {
        trust = settings();
    }
    for (const auto& key : keys) {
        trust.keys.push_back(ReadPublicKey(key));
    }
    trust.allowUnsigned = trust.allowUnsigned || allowUnsigned;
    const auto faults = FaultsOf(file, trust);
    if (!faults.empty()) {
        ReportFaults(file, faults, out);
    }
    const Manifest manifest = ReadManifest(file);
    out << "No faults: " << manifest.name << ' ' << manifest.version << ", "
        << manifest.files.size() << (manifest.files.size() == 1 ? " file, " : " files, ")
        << manifest.size << " bytes.\n";
    return ExitCode::Ok;
}

} // namespace

bool IsBundleCommand(const std::vector<std::string>& arguments) {
    return !arguments.empty() && (arguments[0] == "bundle" || arguments[0] == "check");
}

ExitCode RunBundleCommand(const std::vector<std::string>& arguments,
                          const std::function<Trust()>& trust, std::ostream& out,
                          std::ostream& err) {
    return arguments.at(0) == "bundle" ? RunBundle(arguments, out, err)
                                       : RunCheck(arguments, trust, out, err);
}

} // namespace patchkeeper
