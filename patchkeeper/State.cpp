#include "patchkeeper/State.hpp"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

constexpr const char* rootVariable = "PATCHKEEPER_ROOT";
constexpr const char* defaultRoot = "/var/lib/patchkeeper";

// 0 or the error number.
int WriteNewFile(const fs::path& file, const std::string& text) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (descriptor < 0) {
        return errno;
    }
    int error = 0;
    if (write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        fsync(descriptor) != 0) {
        error = errno != 0 ? errno : EIO;
    }
    close(descriptor);
    return error;
}

} // namespace

State::State(fs::path root) : root_(std::move(root)) {
}

State State::OfEnvironment() {
    const char* root = std::getenv(rootVariable);
    return State(root != nullptr && *root != '\0' ? root : defaultRoot);
}

void State::MarkInProgress() const {
    std::error_code error;
    fs::create_directories(root_, error);
    const fs::path draft = root_ / ("in-progress." + std::to_string(getpid()));
    if (!error) {
        const int number = WriteNewFile(draft, std::to_string(std::time(nullptr)) + "\n");
        error.assign(number, std::generic_category());
    }
    if (!error) {
        fs::rename(draft, root_ / "in-progress", error);
    }
    if (error) {
        std::error_code ignored; // the first reason is the one that counts
        fs::remove(draft, ignored);
        throw Failure(ExitCode::SoftwareUpdateFailed,
                      "an operation cannot be marked as in progress in " + root_.string() + ": " +
                          error.message());
    }
}

} // namespace patchkeeper
