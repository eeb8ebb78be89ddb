#include "cimserver/http/Spool.hpp"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

namespace cimserver::http {

std::string TemporaryDirectory() {
    const char* chosen = std::getenv("TMPDIR");
    return chosen == nullptr || *chosen == '\0' ? "/tmp" : chosen;
}

Spool::Spool(std::string directory) : directory_(std::move(directory)) {
}

Spool::~Spool() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

void Spool::Fail(const char* what, int error) const {
    throw std::runtime_error(std::string(what) + directory_ + ": " +
                             std::generic_category().message(error));
}

void Spool::Open() {
    std::string name = directory_ + "/cimserver-answer-XXXXXX";
    descriptor_ = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0) {
        Fail("The answer needs a file in ", errno);
    }
    unlink(name.c_str());
}

void Spool::WriteAt(std::uint64_t position, std::string_view bytes) {
    if (descriptor_ < 0) {
        Open();
    }
    while (!bytes.empty()) {
        const ssize_t count =
            pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno != EINTR) {
            Fail("The answer cannot be kept in ", errno);
        }
        const std::size_t written = count < 0 ? 0 : static_cast<std::size_t>(count);
        bytes.remove_prefix(written);
        position += written;
    }
}

std::size_t Spool::ReadAt(std::uint64_t position, char* target, std::size_t room) const {
    ssize_t count = -1;
    do {
        count = pread(descriptor_, target, room, static_cast<off_t>(position));
    } while (count < 0 && errno == EINTR);
    if (count <= 0) {
        Fail("The answer cannot be read back from ", count < 0 ? errno : EIO);
    }
    return static_cast<std::size_t>(count);
}

void Spool::Empty() noexcept {
    if (descriptor_ >= 0) {
        // When that fails the file is as long as before, and is written over.
        [[maybe_unused]] const int result = ftruncate(descriptor_, 0);
    }
}

} // namespace cimserver::http
