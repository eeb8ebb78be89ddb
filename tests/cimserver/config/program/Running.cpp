#include "cimserver/config/program/Running.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace programtest {

namespace {

constexpr int longest = 30000; // milliseconds

// A test that starts no second program at the same time need not care who inherits the ends.
std::array<int, 2> Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe");
    }
    return ends;
}

bool Append(int descriptor, std::string& text) {
    std::array<char, 4096> part{};
    const auto size = read(descriptor, part.data(), part.size());
    if (size > 0) {
        text.append(part.data(), static_cast<std::size_t>(size));
    }
    return size > 0;
}

} // namespace

Running::Running(const std::vector<std::string>& arguments, const std::function<void()>& prepare) {
    std::vector<std::string> words{CIMSERVER_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const auto output = Pipe();
    const auto error = Pipe();
    process_ = fork();
    if (process_ == 0) {
        dup2(output[1], STDOUT_FILENO);
        dup2(error[1], STDERR_FILENO);
        prepare();
        execv(argv[0], argv.data());
        _exit(127);
    }
    close(output[1]);
    close(error[1]);
    outputEnd_ = output[0];
    errorEnd_ = error[0];
}

Running::~Running() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    close(outputEnd_);
    close(errorEnd_);
}

// Of standard error; false at its end.
bool Running::ReadMore() {
    pollfd wait{errorEnd_, POLLIN, 0};
    if (poll(&wait, 1, longest) <= 0) {
        throw std::runtime_error("nothing more comes after: " + error_);
    }
    return Append(errorEnd_, error_);
}

std::string Running::WaitFor(const std::string& text, bool atBegin) {
    while (true) {
        std::size_t begin = 0;
        for (auto end = error_.find('\n'); end != std::string::npos;
             begin = end + 1, end = error_.find('\n', begin)) {
            auto line = error_.substr(begin, end - begin);
            const auto at = line.find(text);
            if (at == 0 || (at != std::string::npos && !atBegin)) {
                return line;
            }
        }
        if (!ReadMore()) {
            throw std::runtime_error("`" + text + "` never came: " + error_);
        }
    }
}

std::string Running::WaitForLine(const std::string& beginning) {
    return WaitFor(beginning, true);
}

std::string Running::WaitForText(const std::string& text) {
    return WaitFor(text, false);
}

std::uint16_t Running::WaitForPort() {
    const auto line = WaitForLine("Listening on http://");
    return static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1)));
}

void Running::Signal(int signal) const {
    kill(process_, signal);
}

int Running::Wait() {
    while (ReadMore()) {
    }
    while (Append(outputEnd_, output_)) {
    }
    int status = 0;
    if (waitpid(process_, &status, 0) != process_) {
        throw std::runtime_error("waitpid");
    }
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace programtest
