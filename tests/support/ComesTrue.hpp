#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace test_support {

/// Asks until it is so; false when it is not for 20 seconds. For what another process does and no
/// event tells.
inline bool ComesTrue(const std::function<bool()>& isSo) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace test_support
