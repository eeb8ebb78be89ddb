#pragma once

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace patchkeeper_test {

// Takes this process, and those that it starts, into a network of its own with nothing but a
// loopback interface: every port is free there, and nobody outside is reached. No root is needed.
// For a process with one thread.
class OwnNetwork {
public:
    // Once for all tests of the process.
    OwnNetwork() { [[maybe_unused]] static const bool isThere = Enter(); }

private:
    static bool Enter() {
        const auto user = std::to_string(geteuid());
        if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
            Fail("there is no network of its own for this test");
        }
        // Not root in there either: servers started by root want to become somebody else.
        Write("/proc/self/uid_map", "1000 " + user + " 1");
        BringUpLoopback();
        return true;
    }
    [[noreturn]] static void Fail(const char* what) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    static void Write(const char* file, const std::string& text) {
        std::ofstream out(file);
        if (!(out << text << std::flush)) {
            Fail(file);
        }
    }
    static void BringUpLoopback() {
        const int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        ifreq request{};
        std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
        request.ifr_flags = IFF_UP | IFF_RUNNING;
        const int result = ioctl(file, SIOCSIFFLAGS, &request);
        close(file);
        if (result != 0) {
            Fail("the loopback interface cannot be brought up");
        }
    }
};

} // namespace patchkeeper_test
