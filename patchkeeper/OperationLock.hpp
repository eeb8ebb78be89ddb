#pragma once

#include <chrono>
#include <filesystem>

#include "patchkeeper/Descriptor.hpp"

namespace patchkeeper {

// Held by the one process that may change bundles and installed files. The system takes it back
// when the process ends, however it ends: so a lock that nobody holds proves that no operation
// runs. Programs that the holder starts do not inherit it.
class OperationLock {
public:
    // Waits as long as the time-out says; throws StateProblem after it.
    OperationLock(const std::filesystem::path& file, std::chrono::milliseconds timeout);

    // Whether any process, or this one by another object, holds the lock. A file that is not there
    // is held by nobody. Throws StateProblem when that cannot be found out.
    static bool IsHeld(const std::filesystem::path& file);

private:
    Descriptor file_;
};

} // namespace patchkeeper
