#include "cimserver/Process.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <linux/close_range.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace cimserver {

namespace {

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void MarkOthersCloseOnExec() {
    constexpr int firstOther = 3;
    if (close_range(firstOther, ~0U, CLOSE_RANGE_CLOEXEC) == 0) {
        return;
    }
    // A kernel before 5.11.
    for (int descriptor = firstOther; descriptor < sysconf(_SC_OPEN_MAX); ++descriptor) {
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
}

// What the handler writes to; -1 while nobody waits.
std::atomic<int> stopWriteEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free, "used by a signal handler");

std::atomic<bool> isStopNoted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "used by a signal handler");

void NoteStop(int /*signal*/) {
    if (isStopNoted.exchange(true)) {
        _exit(0);
    }
    const int before = errno;
    const char byte = 0;
    // When the pipe is full a stop is noted already.
    [[maybe_unused]] const auto written = write(stopWriteEnd.load(), &byte, 1);
    errno = before;
}

void Nothing(int /*signal*/) {
}

void Handle(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    if (sigaction(signal, &action, nullptr) != 0) {
        Fail("sigaction");
    }
}

} // namespace

void SettleDescriptors() {
    const int null = open("/dev/null", O_RDWR);
    if (null < 0) {
        Fail("/dev/null");
    }
    // `null` is 1 or 2 when that one was closed.
    if (fcntl(STDERR_FILENO, F_GETFD) < 0 && dup2(null, STDERR_FILENO) < 0) {
        Fail("standard error");
    }
    if (dup2(null, STDIN_FILENO) < 0) {
        Fail("standard input");
    }
    if (dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        Fail("standard output");
    }
    if (null > STDERR_FILENO) {
        close(null);
    }
    MarkOthersCloseOnExec();
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

StopSignal::StopSignal() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        Fail("pipe");
    }
    readEnd_ = ends[0];
    stopWriteEnd = ends[1];
    fcntl(readEnd_, F_SETFL, 0);
    Handle(SIGPIPE, Nothing);
    Handle(SIGXFSZ, Nothing);
    Handle(SIGCHLD, SIG_DFL);
    Handle(SIGQUIT, SIG_DFL);
    Handle(SIGTERM, NoteStop);
    Handle(SIGINT, NoteStop);
    Handle(SIGHUP, Nothing); // until somebody reads the configuration again
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

StopSignal::~StopSignal() {
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    close(stopWriteEnd.exchange(-1));
    close(readEnd_);
}

void StopSignal::Wait() const {
    pollfd stop{readEnd_, POLLIN, 0};
    while (poll(&stop, 1, -1) < 0 && errno == EINTR) {
    }
}

std::filesystem::path ProgramDirectory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::string HostName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    const bool isNamed = gethostname(name.data(), name.size() - 1) == 0 && name[0] != '\0';
    return isNamed ? name.data() : "localhost";
}

} // namespace cimserver
