#pragma once

#include <stdexcept>
#include <string>

namespace patchkeeper {

// The exit codes. Callers read 11 to 23, 33 and 34 as "what failed"; every other code means to them
// that the tool failed for a reason they do not know.
enum class ExitCode : int {
    Ok = 0,
    General = 1, // what has no code of its own, such as a package database that cannot be read
    Usage = 2,
    FtpFailed = 11,
    SoftwareUpdateFailed = 12,
    PackageInstallFailed = 13,
    DownloadFailed = 14,
    ApplyFailed = 15,
    RemoveFailed = 16,
    ScheduleFailed = 17,
    ModifyFailed = 18,
    HttpFailed = 19,
    HttpsFailed = 20,
    SambaFailed = 21,
    UsbFailed = 22,
    NoUpdatesFound = 23,
    NoLocalUpdatesFound = 33,
    TimeZoneNotSet = 34,
};

// Ends a command: what() is one sentence for standard error, Code() the exit code.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& sentence)
        : std::runtime_error(sentence), code_(code) {}
    ExitCode Code() const noexcept { return code_; }

private:
    ExitCode code_;
};

// The state or the settings cannot be read or changed: damaged, kept busy, no room, no permission.
// what() is one sentence without a full stop. It carries no exit code, because that depends on the
// command that met it; the command line turns it into a Failure with the command's own code.
class StateProblem : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace patchkeeper
