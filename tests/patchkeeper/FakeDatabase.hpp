#pragma once

#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

#include "patchkeeper/TemporaryDirectory.hpp"

namespace patchkeeper_test {

// A package database on disk, laid out like /var/lib/dpkg, with what a test puts into it.
class FakeDatabase {
public:
    FakeDatabase() {
        directory_.Write("info/format", "1\n");
        directory_.Write("status", "");
        std::filesystem::create_directory(directory_.Path() / "updates");
    }

    // Without a date the package has no list of files, so that nothing tells when it was installed.
    FakeDatabase& Add(const std::string& name, const std::string& version,
                      const std::string& section, std::optional<std::time_t> date,
                      const std::string& status = "install ok installed") {
        std::ofstream out(directory_.Path() / "status", std::ios::app);
        out << "Package: " << name << "\nStatus: " << status << '\n';
        if (!section.empty()) {
            out << "Section: " << section << '\n';
        }
        out << "Maintainer: Somebody <somebody@example.org>\nArchitecture: all\nVersion: "
            << version << "\nDescription: made up\n\n";
        if (date) {
            const auto list = directory_.Write("info/" + name + ".list", "/.\n");
            const timespec times[2] = {{*date, 0}, {*date, 0}};
            if (utimensat(AT_FDCWD, list.c_str(), times, 0) != 0) {
                throw std::runtime_error("no date can be set");
            }
        }
        return *this;
    }

    const std::filesystem::path& Path() const { return directory_.Path(); }

private:
    TemporaryDirectory directory_;
};

} // namespace patchkeeper_test
