#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace patchkeeper {

// Slows work down to a number of bytes per second, for machines whose disks serve others. While it
// waits it asks again and again whether the work is still wanted.
class Pace {
public:
    // 0 bytes per second: no limit. `check` throws to end the work; it is asked for every piece and
    // while the pace waits.
    Pace(std::uint64_t bytesPerSecond, std::function<void()> check);

    // To be told of every piece, once it is done.
    void Spend(std::uint64_t bytes);

private:
    std::uint64_t rate_;
    std::function<void()> check_;
    std::chrono::steady_clock::time_point due_; // when what has been spent should have been done
};

} // namespace patchkeeper
