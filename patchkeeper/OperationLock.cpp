#include "patchkeeper/OperationLock.hpp"

#include <cerrno>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace {

constexpr std::chrono::milliseconds pause{20}; // between two attempts

struct flock WholeFile(short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return lock;
}

[[noreturn]] void ThrowSystemError(const std::filesystem::path& file) {
    throw StateProblem("the lock " + file.string() +
                       " cannot be used: " + std::generic_category().message(errno));
}

} // namespace

OperationLock::OperationLock(const std::filesystem::path& file, std::chrono::milliseconds timeout)
    : file_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    if (file_.Number() < 0) {
        ThrowSystemError(file);
    }
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    struct flock lock = WholeFile(F_WRLCK);
    while (fcntl(file_.Number(), F_OFD_SETLK, &lock) != 0) {
        if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
            ThrowSystemError(file);
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            throw StateProblem("another operation is running, and has been for " +
                               std::to_string(timeout.count()) + " ms");
        }
        std::this_thread::sleep_for(pause);
    }
}

bool OperationLock::IsHeld(const std::filesystem::path& file) {
    const Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.Number() < 0) {
        if (errno == ENOENT) {
            return false;
        }
        ThrowSystemError(file);
    }
    struct flock lock = WholeFile(F_RDLCK);
    if (fcntl(descriptor.Number(), F_OFD_GETLK, &lock) != 0) {
        ThrowSystemError(file);
    }
    return lock.l_type != F_UNLCK;
}

} // namespace patchkeeper
