#include "patchkeeper/PackageDatabase.hpp"

#include <array>
#include <cerrno>
#include <charconv>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <unistd.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Process.hpp"

namespace patchkeeper {

namespace {

constexpr const char* format = "${db:Status-Status}\\t${Package}\\t${Version}\\t${Section}\\t"
                               "${db-fsys:Last-Modified}\\n";
constexpr std::size_t fieldCount = 5;

std::array<std::string_view, fieldCount> Cut(std::string_view line) {
    std::array<std::string_view, fieldCount> fields;
    for (std::size_t i = 0; i < fieldCount; ++i) {
        const auto tab = line.find('\t');
        if ((tab == std::string_view::npos) != (i == fieldCount - 1)) {
            throw Failure(ExitCode::General,
                          "dpkg-query printed a line that is not understood: " + std::string(line));
        }
        fields[i] = line.substr(0, tab);
        line.remove_prefix(tab == std::string_view::npos ? line.size() : tab + 1);
    }
    return fields;
}

// dpkg-query takes a missing database for an empty one.
void RefuseMissing(const std::filesystem::path& file) {
    if (access(file.c_str(), R_OK) != 0) {
        throw Failure(ExitCode::General, "the package database cannot be read: " + file.string() +
                                             ": " + std::generic_category().message(errno));
    }
}

std::optional<std::time_t> Time(std::string_view seconds) {
    std::time_t time = 0;
    const auto [end, error] =
        std::from_chars(seconds.data(), seconds.data() + seconds.size(), time);
    if (error != std::errc() || end != seconds.data() + seconds.size()) {
        return std::nullopt;
    }
    return time;
}

} // namespace

PackageDatabase::PackageDatabase(std::filesystem::path adminDirectory)
    : adminDirectory_(std::move(adminDirectory)) {
}

void PackageDatabase::ForEachInstalled(
    const std::function<void(const InstalledPackage&)>& consume) const {
    RefuseMissing(adminDirectory_ / "status");
    const std::vector<std::string> command = {"dpkg-query",
                                              "--admindir=" + adminDirectory_.string(), "--show",
                                              std::string("--showformat=") + format};
    try {
        ForEachOutputLine(command, [&](std::string_view line) {
            const auto [status, name, version, section, modified] = Cut(line);
            if (status == "installed") {
                consume({name, version, section, Time(modified)});
            }
        });
    } catch (const ProcessError& error) {
        throw Failure(ExitCode::General,
                      std::string("the package database cannot be read: ") + error.what());
    }
}

} // namespace patchkeeper
