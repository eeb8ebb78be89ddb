// Lets one call at a time into a provider library.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

namespace cimserver::host {

/// A lock that knows who holds it and since when. Any thread may call.
class Gate {
public:
    /// Inside, from construction to destruction. `what` is what others are told meanwhile.
    class Pass {
    public:
        /// Waits at most so long, 0: for ever. Throws CIMException FAILED,
        /// `busy with WHAT since N s`, when the gate has not opened.
        Pass(Gate& gate, const std::string& what, std::chrono::milliseconds longest);
        /// Does not wait.
        Pass(Gate& gate, const std::string& what, std::try_to_lock_t);
        ~Pass();
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

        bool IsInside() const { return isInside_; }

    private:
        Gate& gate_;
        const bool isInside_;
    };

private:
    using Clock = std::chrono::steady_clock;

    void Take(const std::string& what);
    bool WaitAndTake(const std::string& what, std::chrono::milliseconds longest);
    bool TakeIfFree(const std::string& what);
    void Leave();

    std::mutex mutex_;
    std::condition_variable opened_;
    bool isTaken_ = false;
    std::string holder_;
    Clock::time_point since_;
};

} // namespace cimserver::host
