#include "patchkeeper/Pace.hpp"

#include <algorithm>
#include <thread>
#include <utility>

namespace patchkeeper {

namespace {

constexpr std::chrono::milliseconds longestSleep{50};

} // namespace

Pace::Pace(std::uint64_t bytesPerSecond, std::function<void()> check)
    : rate_(bytesPerSecond), check_(std::move(check)), due_(std::chrono::steady_clock::now()) {
}

void Pace::Spend(std::uint64_t bytes) {
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;
    check_();
    if (rate_ == 0) {
        return;
    }
    due_ += std::chrono::duration_cast<Clock::duration>(
        Seconds(static_cast<double>(bytes) / static_cast<double>(rate_)));
    for (auto now = Clock::now(); now < due_; now = Clock::now()) {
        std::this_thread::sleep_for(std::min<Clock::duration>(longestSleep, due_ - now));
        check_();
    }
}

} // namespace patchkeeper
