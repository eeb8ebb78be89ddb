#include "cimserver/HiddenInput.hpp"

#include <array>
#include <csignal>
#include <stdexcept>
#include <string_view>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace cimserver {

namespace {

/// While it lives, the terminal shows nothing that is typed, and these signals end WaitForInput
/// instead of the program.
class WithoutEcho {
public:
    WithoutEcho() {
        sigset_t held;
        sigemptyset(&held);
        struct sigaction interrupt {};
        interrupt.sa_handler = [](int) {};
        for (std::size_t i = 0; i < signals.size(); ++i) {
            sigaddset(&held, signals[i]);
            sigaction(signals[i], &interrupt, &handlers_[i]);
        }
        sigprocmask(SIG_BLOCK, &held, &mask_);
        tcgetattr(STDIN_FILENO, &terminal_);
        termios silent = terminal_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~WithoutEcho() {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &terminal_);
        sigprocmask(SIG_SETMASK, &mask_, nullptr);
        for (std::size_t i = 0; i < signals.size(); ++i) {
            sigaction(signals[i], &handlers_[i], nullptr);
        }
    }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;

    /// A signal counts also when it came before.
    void WaitForInput() const {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (ppoll(&input, 1, nullptr, &mask_) < 0) {
            throw std::runtime_error("interrupted; nothing was written");
        }
    }

private:
    static constexpr std::array signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    std::array<struct sigaction, signals.size()> handlers_{};
    sigset_t mask_{};
    termios terminal_{};
};

/// Byte by byte: what follows the line belongs to the next reader.
std::string ReadLine() {
    std::string line;
    char c = 0;
    ssize_t count = 0;
    while ((count = read(STDIN_FILENO, &c, 1)) == 1 && c != '\n') {
        line += c;
    }
    if (count < 0) {
        throw std::runtime_error("standard input cannot be read");
    }
    if (count == 0 && line.empty()) {
        throw std::runtime_error("standard input has no line; nothing was written");
    }
    return line;
}

void Say(std::string_view text) {
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
}

/// The terminal hands over whole lines, so that there is no waiting within one.
std::string Ask(const std::string& question, const WithoutEcho& hidden) {
    Say(question);
    hidden.WaitForInput();
    std::string line = ReadLine();
    Say("\n");
    return line;
}

} // namespace

std::string ReadHidden(const std::string& question, const std::string& again) {
    if (isatty(STDIN_FILENO) == 0) {
        return ReadLine();
    }
    const WithoutEcho hidden;
    std::string first = Ask(question, hidden);
    if (Ask(again, hidden) != first) {
        throw std::runtime_error("these were two different passwords; nothing was written");
    }
    return first;
}

} // namespace cimserver
