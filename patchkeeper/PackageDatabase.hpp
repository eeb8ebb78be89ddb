#pragma once

#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

namespace patchkeeper {

// One package that is really installed: unpacked and configured, neither half-way nor removed with
// its configuration left. Texts as the database has them; valid during the call that hands them
// over.
struct InstalledPackage {
    std::string_view name;
    std::string_view version;
    std::string_view section;                 // "" when the package names none
    std::optional<std::time_t> lastInstalled; // the last installation or upgrade
};

// The Debian package database of a machine, read through dpkg-query.
class PackageDatabase {
public:
    // The database of this machine, or one in another directory of the same layout.
    explicit PackageDatabase(std::filesystem::path adminDirectory = "/var/lib/dpkg");

    // Hands over the installed packages one by one in the database's order; a package that is there
    // for two architectures is there twice. Throws Failure (General) when the database cannot be
    // read; some packages may have been handed over before.
    void ForEachInstalled(const std::function<void(const InstalledPackage&)>& consume) const;

private:
    std::filesystem::path adminDirectory_;
};

} // namespace patchkeeper
