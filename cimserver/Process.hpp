// What the server asks of its process: descriptors that no child inherits, and signals that stop
// it.
//
// Providers start programs, and a program inherits its parent's open descriptors, ignored signals
// and the signal mask of the thread that starts it. So nothing here ignores or blocks a signal for
// good: handlers are put back to the default when a program is started, ignored and blocked signals
// are not.
#pragma once

#include <filesystem>
#include <string>

namespace cimserver {

/// Standard input becomes /dev/null, standard output the same as standard error (what a provider
/// prints belongs to the log, line by line), and every other descriptor that is open already is
/// marked close-on-exec. Call it before the first thread starts. Throws std::system_error.
void SettleDescriptors();

/// Waits for the signal to stop; a second one ends the process at once with exit code 0. Make one
/// before the first thread starts, and only one: it unblocks all signals, takes SIGTERM and SIGINT,
/// survives SIGPIPE and SIGXFSZ, and puts SIGCHLD and SIGQUIT back to the default, whatever the
/// parent had set.
class StopSignal {
public:
    /// Throws std::system_error.
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    /// Returns when SIGTERM or SIGINT has arrived, also when that was before the call.
    void Wait() const;

private:
    int readEnd_ = -1;
};

/// The directory in which the running program stands. Throws std::system_error.
std::filesystem::path ProgramDirectory();

/// The name of this machine; `localhost` when it has none.
std::string HostName();

} // namespace cimserver
