// SIGHUP: the configuration is read again while the server runs.
#pragma once

#include "cimserver/Configuration.hpp"
#include "cimserver/Log.hpp"
#include "cimserver/Settings.hpp"

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace cimserver {

/// Calls an action on a thread of its own after each SIGHUP; several that come during one count as
/// one more. Only one at a time. A SIGHUP that comes before is passed over (StopSignal sees to it).
class ReloadSignal {
public:
    /// Throws std::system_error.
    explicit ReloadSignal(std::function<void()> action);
    /// Waits for an action that runs.
    ~ReloadSignal();
    ReloadSignal(const ReloadSignal&) = delete;
    ReloadSignal& operator=(const ReloadSignal&) = delete;

private:
    void Run() const;

    const std::function<void()> action_;
    int readEnd_ = -1;
    int writeEnd_ = -1;
    std::thread thread_;
};

/// Takes a configuration that was read again. One with a mistake leaves everything as it is.
class Reload {
public:
    /// Makes the configuration as at the start. Throws ConfigurationError.
    using Read = std::function<Configuration()>;
    /// Takes what it has use for out of the new settings. Returns why not, a sentence each.
    using Take = std::function<std::vector<std::string>(const Settings&)>;

    /// `running` is the configuration of the start, which the log and this one outlive.
    Reload(const Configuration& running, Read read, Log& log, std::vector<Take> takers);

    /// Mistakes, what could not be taken, and items whose change waits for a restart, become lines
    /// of the log at level error; success one at level info.
    void operator()() const;

private:
    void Apply(const Settings& settings) const;
    void TellWhatWaits(const Configuration& now) const;
    void Say(const std::string& line) const;

    const Configuration& running_;
    const Read read_;
    Log& log_;
    const OpenWBEM::LoggerRef logger_;
    const std::vector<Take> takers_;
};

} // namespace cimserver
