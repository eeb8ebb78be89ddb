#include "cimserver/host/Gate.hpp"

#include "OW_CIMException.hpp"

namespace cimserver::host {

Gate::Pass::Pass(Gate& gate, const std::string& what, std::chrono::milliseconds longest)
    : gate_(gate), isInside_(gate.WaitAndTake(what, longest)) {
}

Gate::Pass::Pass(Gate& gate, const std::string& what, std::try_to_lock_t /*once*/)
    : gate_(gate), isInside_(gate.TakeIfFree(what)) {
}

Gate::Pass::~Pass() {
    if (isInside_) {
        gate_.Leave();
    }
}

void Gate::Take(const std::string& what) {
    holder_ = what; // may fail, and then nobody is inside
    since_ = Clock::now();
    isTaken_ = true;
}

bool Gate::WaitAndTake(const std::string& what, std::chrono::milliseconds longest) {
    std::unique_lock lock(mutex_);
    const auto until = longest.count() > 0 ? Clock::now() + longest : Clock::time_point::max();
    if (isTaken_ && !opened_.wait_until(lock, until, [this] { return !isTaken_; })) {
        const auto time = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - since_);
        const std::string text =
            "busy with " + holder_ + " since " + std::to_string(time.count()) + " s";
        OW_THROWCIMMSG(OpenWBEM::CIMException::FAILED, text.c_str());
    }
    Take(what);
    return true;
}

bool Gate::TakeIfFree(const std::string& what) {
    const std::lock_guard lock(mutex_);
    if (isTaken_) {
        return false;
    }
    Take(what);
    return true;
}

void Gate::Leave() {
    {
        const std::lock_guard lock(mutex_);
        isTaken_ = false;
    }
    opened_.notify_one();
}

} // namespace cimserver::host
