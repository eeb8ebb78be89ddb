// How many requests are being answered.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace cimserver::http {

/// Any thread may call.
class InFlight {
public:
    /// One request, from construction to destruction. The count must outlive it.
    class Place {
    public:
        explicit Place(InFlight& count) : count_(count) {
            const std::lock_guard lock(count_.mutex_);
            ++count_.requests_;
        }
        ~Place() {
            const std::lock_guard lock(count_.mutex_);
            --count_.requests_;
            count_.changed_.notify_all();
        }
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

    private:
        InFlight& count_;
    };

    /// False when some are still there at that time.
    bool WaitUntilNone(std::chrono::steady_clock::time_point until) {
        std::unique_lock lock(mutex_);
        return changed_.wait_until(lock, until, [this] { return requests_ == 0; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t requests_ = 0;
};

} // namespace cimserver::http
