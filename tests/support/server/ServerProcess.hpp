#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace test_support {

/// A cimserver of this build with the library and the ZNX classes, on a free loopback port; it
/// answers when the constructor returns and is ended by the destructor. Its tool is what stands at
/// /qv/bin/patchkeeper, with the environment as it is now. Unless the arguments name a
/// configuration file of the test's own, its items are `moreItems`, and everybody on this machine
/// is let in and may change everything.
class ServerProcess {
public:
    /// Throws std::runtime_error with the server's own words when it does not start.
    explicit ServerProcess(const std::vector<std::string>& moreArguments = {},
                           const std::string& moreItems = {});
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    std::uint16_t Port() const { return port_; }
    /// That of 127.0.0.1 with TLS, when there is one. Throws std::runtime_error.
    std::uint16_t TlsPort() const;
    pid_t Pid() const { return process_; }
    /// Sends SIGTERM and waits; the exit code, or 128 + signal. Later calls return the same.
    int Stop();
    void Signal(int signal) const;
    /// Waits for the end that a signal of the test brings, and returns the same.
    int Wait();
    /// What the server wrote to standard error; complete after Stop.
    std::string Log() const;

    /// Resident memory in MB (10^6 bytes), as the kernel counts it.
    double ResidentMegabytes() const;
    /// The most that it has ever been.
    double PeakMegabytes() const;
    std::size_t OpenDescriptors() const;
    std::size_t Threads() const;
    /// Children that have ended and were not waited for.
    std::size_t Zombies() const;

private:
    void WaitUntilItListens();
    void RemoveFiles() const;

    pid_t process_ = -1;
    std::uint16_t port_ = 0;
    int status_ = -1;
    std::string logFile_;
    std::string configFile_;
};

} // namespace test_support
