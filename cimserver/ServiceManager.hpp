// What a service manager such as systemd tells a service that it starts, and is told by it
// (sd_listen_fds(3), sd_notify(3)): sockets that listen already, and notices of the service's
// state. Everything of it is optional; without a service manager nothing happens.
#pragma once

#include <string>
#include <vector>

namespace cimserver {

struct PassedSocket {
    int descriptor = -1;
    std::string name; ///< FileDescriptorName= of the socket unit; empty or `unknown`: it has none
};

class ServiceManager {
public:
    /// Reads its variables and removes them from the environment, so that no program which a
    /// provider starts takes them for its own. Call it before the first thread starts. What it says
    /// about another process is passed over. Throws std::runtime_error for what it cannot mean.
    ServiceManager();

    const std::vector<PassedSocket>& Sockets() const { return sockets_; }

    // Notices. Any thread; one that cannot be sent is lost.

    void Ready() const;
    void Reloading() const; ///< Ready follows when it is done
    void Stopping() const;

private:
    void Notify(const std::string& state) const;

    std::vector<PassedSocket> sockets_;
    std::string noticeSocket_; ///< empty: nobody wants to know
};

} // namespace cimserver
