// Lines for limits that clients reach. A client that does so often must not fill the log: for each
// limit there is at most a line in a second, which tells how many were left out before it.
#pragma once

#include "OW_Logger.hpp"

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace cimserver {

/// Any thread may call any function.
class LimitLog {
public:
    using Clock = std::chrono::steady_clock;

    explicit LimitLog(OpenWBEM::LoggerRef logger);

    /// `item` is the name of the item that sets the limit; it must be a literal, or live as long.
    void Reached(std::string_view item, const std::string& client) {
        Reached(item, client, Clock::now());
    }
    void Reached(std::string_view item, const std::string& client, Clock::time_point now);

private:
    struct State {
        Clock::time_point last;
        unsigned long leftOut = 0;
    };

    const OpenWBEM::LoggerRef logger_;
    std::mutex mutex_;
    std::map<std::string_view, State> states_;
};

} // namespace cimserver
