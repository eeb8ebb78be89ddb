#include "cimserver/LimitLog.hpp"

#include "OW_String.hpp"

#include <utility>

namespace cimserver {

LimitLog::LimitLog(OpenWBEM::LoggerRef logger) : logger_(std::move(logger)) {
}

void LimitLog::Reached(std::string_view item, const std::string& client, Clock::time_point now) {
    unsigned long leftOut = 0;
    {
        const std::lock_guard lock(mutex_);
        const auto [state, isFirst] = states_.try_emplace(item, State{now, 0});
        if (!isFirst && now - state->second.last < std::chrono::seconds(1)) {
            ++state->second.leftOut;
            return;
        }
        state->second.last = now;
        leftOut = std::exchange(state->second.leftOut, 0);
    }
    std::string text = "Limit reached: ";
    text.append(item).append(", client ").append(client.empty() ? "-" : client);
    if (leftOut != 0) {
        text += " (" + std::to_string(leftOut) + " more since the last such line)";
    }
    logger_->logError(text.c_str());
}

} // namespace cimserver
