#include "cimserver/ServiceManager.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <stdexcept>
#include <string_view>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace cimserver {

namespace {

/// Nothing when it is not set.
std::optional<std::string> Taken(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    std::string text = value;
    unsetenv(name);
    return text;
}

int Number(const char* name, const std::string& text) {
    int number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stop != text.data() + text.size() || number < 0) {
        throw std::runtime_error(std::string(name) + "=" + text + " is no number");
    }
    return number;
}

/// The part before the next colon, which is removed with it.
std::string TakeName(std::string_view& names) {
    const auto end = std::min(names.find(':'), names.size());
    std::string name(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
    return name;
}

std::vector<PassedSocket> TakeSockets() {
    const auto process = Taken("LISTEN_PID");
    const auto count = Taken("LISTEN_FDS");
    const auto names = Taken("LISTEN_FDNAMES").value_or("");
    std::vector<PassedSocket> sockets;
    if (!process || !count || Number("LISTEN_PID", *process) != getpid()) {
        return sockets;
    }
    constexpr int first = 3;
    std::string_view rest = names;
    for (int i = 0; i < Number("LISTEN_FDS", *count); ++i) {
        sockets.push_back({first + i, TakeName(rest)});
        if (fcntl(first + i, F_SETFD, FD_CLOEXEC) != 0) {
            throw std::runtime_error("LISTEN_FDS=" + *count + ": descriptor " +
                                     std::to_string(first + i) + " is not open");
        }
    }
    return sockets;
}

std::string MonotonicMicroseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::to_string(now.tv_sec * 1'000'000LL + now.tv_nsec / 1000);
}

} // namespace

ServiceManager::ServiceManager()
    : sockets_(TakeSockets()), noticeSocket_(Taken("NOTIFY_SOCKET").value_or("")) {
}

void ServiceManager::Ready() const {
    Notify("READY=1");
}

void ServiceManager::Reloading() const {
    Notify("RELOADING=1\nMONOTONIC_USEC=" + MonotonicMicroseconds());
}

void ServiceManager::Stopping() const {
    Notify("STOPPING=1");
}

void ServiceManager::Notify(const std::string& state) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (noticeSocket_.empty() || noticeSocket_.size() >= sizeof address.sun_path) {
        return;
    }
    std::memcpy(address.sun_path, noticeSocket_.data(), noticeSocket_.size());
    // A name of the abstract space, which the variable writes with an @.
    if (address.sun_path[0] == '@') {
        address.sun_path[0] = '\0';
    }
    const int notices = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto size =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + noticeSocket_.size());
    sendto(notices, state.data(), state.size(), MSG_NOSIGNAL,
           reinterpret_cast<const sockaddr*>(&address), size);
    close(notices);
}

} // namespace cimserver
