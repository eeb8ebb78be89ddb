#include "patchkeeper/State.hpp"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include <sys/stat.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

constexpr const char* rootVariable = "PATCHKEEPER_ROOT";
constexpr const char* defaultRoot = "/var/lib/patchkeeper";

fs::path WithoutTrailingSlash(const fs::path& path) {
    return path.has_filename() ? path : path.parent_path();
}

// 0 or the error number; ENOTDIR for what is no directory.
int DirectoryError(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return errno;
    }
    return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
}

void MakeDirectory(const fs::path& path) {
    if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
        throw StateProblem("the directory " + path.string() +
                           " cannot be made: " + std::generic_category().message(errno));
    }
}

} // namespace

State::State(const fs::path& root) : root_(WithoutTrailingSlash(fs::absolute(root))) {
}

State State::OfEnvironment() {
    const char* root = std::getenv(rootVariable);
    return State(root != nullptr && *root != '\0' ? root : defaultRoot);
}

void State::RefuseUnusableRoot() const {
    int error = DirectoryError(root_);
    std::error_code ignored; // what cannot be looked at is no link
    if (error == ENOENT && !fs::is_symlink(root_, ignored)) {
        error = DirectoryError(root_.parent_path());
    }
    if (error != 0) {
        throw StateProblem("the root directory " + root_.string() +
                           " cannot be used: " + std::generic_category().message(error));
    }
}

Settings State::Settings() const {
    RefuseUnusableRoot();
    return ReadSettings(SettingsFile(), root_);
}

std::optional<Store> State::OpenExisting(const patchkeeper::Settings& settings) const {
    struct stat status {};
    if (stat(DatabaseFile().c_str(), &status) != 0) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        throw StateProblem("the database " + DatabaseFile().string() +
                           " cannot be opened: " + std::generic_category().message(errno));
    }
    if (status.st_size == 0) {
        return std::nullopt; // its first command was ended before it could write
    }
    return std::optional<Store>(std::in_place, DatabaseFile(), Database::Access::Existing,
                                settings.lockTimeout);
}

Store State::OpenOrMake(const patchkeeper::Settings& settings) const {
    MakeDirectory(root_);
    MakeDirectory(BundleDirectory());
    return {DatabaseFile(), Database::Access::CreateIfMissing, settings.lockTimeout};
}

} // namespace patchkeeper
