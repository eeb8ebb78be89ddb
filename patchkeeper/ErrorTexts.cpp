#include "patchkeeper/ErrorTexts.hpp"

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

std::string_view ErrorText(int code) noexcept {
    switch (static_cast<ExitCode>(code)) {
    case ExitCode::FtpFailed:
        return "The update could not be fetched from the FTP server.";
    case ExitCode::SoftwareUpdateFailed:
        return "The software update failed.";
    case ExitCode::PackageInstallFailed:
        return "A package of the update could not be installed.";
    case ExitCode::DownloadFailed:
        return "The update could not be downloaded.";
    case ExitCode::ApplyFailed:
        return "The update could not be applied.";
    case ExitCode::RemoveFailed:
        return "The update could not be removed.";
    case ExitCode::ScheduleFailed:
        return "The update could not be scheduled.";
    case ExitCode::ModifyFailed:
        return "The schedule of the update could not be changed.";
    case ExitCode::HttpFailed:
        return "The update could not be fetched from the HTTP server.";
    case ExitCode::HttpsFailed:
        return "The update could not be fetched from the HTTPS server.";
    case ExitCode::SambaFailed:
        return "The update could not be fetched from the file share.";
    case ExitCode::UsbFailed:
        return "The update could not be fetched from the USB device.";
    case ExitCode::NoUpdatesFound:
        return "No updates were found.";
    case ExitCode::NoLocalUpdatesFound:
        return "No updates were found on this machine.";
    case ExitCode::TimeZoneNotSet:
        return "The time zone of this machine is not set.";
    case ExitCode::Ok:
    case ExitCode::General:
    case ExitCode::Usage:
        break;
    }
    return "The update tool failed for a reason that it cannot name.";
}

} // namespace patchkeeper
