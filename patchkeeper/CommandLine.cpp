#include "patchkeeper/CommandLine.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "patchkeeper/ErrorTexts.hpp"
#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Inventory.hpp"
#include "patchkeeper/State.hpp"

namespace patchkeeper {

namespace {

// Operations of an appliance's tool that this version does not have, with the code that their
// callers understand as the failure of just this operation.
struct MissingOperation {
    std::string_view option;
    ExitCode code;
};

constexpr std::array<MissingOperation, 18> missingOperations = {{
    {"--cache", ExitCode::SoftwareUpdateFailed},
    {"-l", ExitCode::SoftwareUpdateFailed},
    {"--files", ExitCode::SoftwareUpdateFailed},
    {"--warnings", ExitCode::SoftwareUpdateFailed},
    {"--hascomponents", ExitCode::SoftwareUpdateFailed},
    {"--components", ExitCode::SoftwareUpdateFailed},
    {"--hist", ExitCode::SoftwareUpdateFailed},
    {"--status", ExitCode::SoftwareUpdateFailed},
    {"--sched", ExitCode::ScheduleFailed},
    {"--msched", ExitCode::ModifyFailed},
    {"--apply", ExitCode::ApplyFailed},
    {"--rback", ExitCode::RemoveFailed},
    {"--ftp", ExitCode::FtpFailed},
    {"--http", ExitCode::HttpFailed},
    {"--samba", ExitCode::SambaFailed},
    {"--usb", ExitCode::UsbFailed},
    {"--hd", ExitCode::DownloadFailed},
    {"--em", ExitCode::DownloadFailed},
}};

using Arguments = std::vector<std::string>; // without the program name

// An operation takes all that stands behind it as it is: a password may begin with a dash.
void RefuseMissingOperation(const Arguments& arguments) {
    if (arguments.empty()) {
        return;
    }
    const auto found = std::find_if(
        missingOperations.begin(), missingOperations.end(),
        [&](const MissingOperation& operation) { return operation.option == arguments[0]; });
    if (found == missingOperations.end()) {
        return;
    }
    const bool overTls =
        found->code == ExitCode::HttpFailed && arguments.size() > 5 && arguments[5] == "true";
    throw Failure(overTls ? ExitCode::HttpsFailed : found->code,
                  arguments[0] + " is not offered by this version");
}

int CodeNumber(const std::string& text) {
    int code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw Failure(ExitCode::Usage, "--errors: '" + text + "' is not an exit code");
    }
    return code;
}

std::string MissingOptions() {
    std::string list;
    for (const auto& operation : missingOperations) {
        list += (list.empty() ? "" : ", ") + std::string(operation.option);
    }
    return list;
}

ExitCode Run(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    RefuseMissingOperation(arguments);

    CLI::App app(
        "Lists the software that is installed on this machine: one line per package with name,\n"
        "version, classification and date of installation, separated by tabs.",
        "patchkeeper");
    std::string code;
    bool mark = false;
    app.set_version_flag("--version", std::string("patchkeeper ") + PATCHKEEPER_VERSION);
    auto* errors = app.add_option("--errors", code, "Say in a sentence what an exit code means")
                       ->type_name("CODE");
    app.add_flag("--setinprogress", mark,
                 "Mark that an operation is about to run, in $PATCHKEEPER_ROOT\n"
                 "(default /var/lib/patchkeeper)")
        ->excludes(errors);
    app.footer("Not offered by this version: " + MissingOptions() + ".");
    try {
        app.parse(Arguments(arguments.rbegin(), arguments.rend())); // CLI11 takes the last first
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? ExitCode::Ok : ExitCode::Usage;
    }

    if (*errors) {
        out << ErrorText(CodeNumber(code)) << '\n';
    } else if (mark) {
        State::OfEnvironment().MarkInProgress();
    } else {
        PrintInventory(PackageDatabase(), out);
    }
    if (!out.flush()) {
        throw Failure(ExitCode::General, "the answer cannot be written");
    }
    return ExitCode::Ok;
}

} // namespace

int RunCommand(int argumentCount, const char* const* arguments, std::ostream& out,
               std::ostream& err) {
    try {
        return static_cast<int>(
            Run(Arguments(arguments + std::min(argumentCount, 1), arguments + argumentCount), out,
                err));
    } catch (const Failure& failure) {
        out.flush();
        err << "patchkeeper: " << failure.what() << ".\n";
        return static_cast<int>(failure.Code());
    }
}

} // namespace patchkeeper
