#include "patchkeeper/LocalSource.hpp"

#include <algorithm>
#include <system_error>

#include "patchkeeper/BundleName.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

Unavailable CannotRead(const fs::path& path, const std::error_code& error) {
    return Unavailable(path.string() + " cannot be read: " + error.message());
}

std::uint64_t DeclaredSize(const fs::path& file) {
    std::error_code ignored; // what cannot be read is refused when it is its turn
    const std::uintmax_t size = fs::file_size(file, ignored);
    return ignored ? 0 : size;
}

} // namespace

LocalSource::LocalSource(const fs::path& path) : path_(fs::absolute(path)) {
}

std::vector<fs::path> LocalSource::FilesInDirectory() const {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator i(path_, error), end; !error && i != end; i.increment(error)) {
        std::error_code ignored;
        if (IsBundleName(i->path().filename().string()) && !i->is_directory(ignored)) {
            found.push_back(i->path());
        }
    }
    if (error) {
        throw CannotRead(path_, error);
    }
    std::sort(found.begin(), found.end());
    return found;
}

BundleSource::Found LocalSource::Find() {
    std::error_code error;
    const fs::file_status status = fs::status(path_, error);
    if (!fs::exists(status)) {
        throw CannotRead(path_, error ? error
                                      : std::make_error_code(std::errc::no_such_file_or_directory));
    }
    Found found;
    found.isDirectory = fs::is_directory(status);
    files_ = found.isDirectory ? FilesInDirectory() : std::vector<fs::path>{path_};
    for (const auto& file : files_) {
        found.candidates.push_back({file.filename().string(), DeclaredSize(file)});
    }
    return found;
}

Taken LocalSource::Take(std::size_t position, Intake& intake, const Operation& operation,
                        const CopyProgress& progress) {
    return intake.TakeIn(files_.at(position), operation, progress);
}

} // namespace patchkeeper
