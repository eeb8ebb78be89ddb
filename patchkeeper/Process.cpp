#include "patchkeeper/Process.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "patchkeeper/Descriptor.hpp"

namespace patchkeeper {

namespace {

std::string SystemReason(int error) {
    return std::generic_category().message(error);
}

std::string LastLine(int file) {
    std::array<char, 512> end{};
    const off_t size = lseek(file, 0, SEEK_END);
    const off_t start = std::max<off_t>(0, size - static_cast<off_t>(end.size()));
    const ssize_t got = pread(file, end.data(), end.size(), start);
    std::string text(end.data(), got < 0 ? 0 : static_cast<std::size_t>(got));
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text.substr(text.rfind('\n') + 1);
}

// A started program. The destructor waits for its end, so that none is left behind; close the pipe
// first when it may still want to write.
class Child {
public:
    Child(const std::vector<std::string>& command, int output, int errors) {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const auto& argument : command) {
            arguments.push_back(const_cast<char*>(argument.c_str()));
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
        const int error =
            posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            process_ = -1;
            throw ProcessError(command[0] + " cannot be started: " + SystemReason(error));
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { Wait(); }

    // As waitpid gives it.
    int Wait() {
        if (process_ > 0) {
            while (waitpid(process_, &status_, 0) < 0 && errno == EINTR) {
            }
            process_ = -1;
        }
        return status_;
    }

private:
    pid_t process_ = -1;
    int status_ = 0;
};

void ForEachLine(int input, const std::string& program,
                 const std::function<void(std::string_view)>& consume) {
    std::string pending;
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t got = read(input, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            throw ProcessError("the output of " + program +
                               " cannot be read: " + SystemReason(errno));
        }
        if (got == 0) {
            break;
        }
        pending.append(buffer.data(), static_cast<std::size_t>(got));
        std::size_t start = 0;
        for (std::size_t end = 0; (end = pending.find('\n', start)) != std::string::npos;
             start = end + 1) {
            consume(std::string_view(pending).substr(start, end - start));
        }
        pending.erase(0, start);
    }
    if (!pending.empty()) {
        consume(pending);
    }
}

} // namespace

void ForEachOutputLine(const std::vector<std::string>& command,
                       const std::function<void(std::string_view)>& consume) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw ProcessError("no pipe for " + command[0] + ": " + SystemReason(errno));
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    const Descriptor errors(memfd_create("errors", MFD_CLOEXEC));
    if (errors.Number() < 0) {
        throw ProcessError("no room for the messages of " + command[0] + ": " +
                           SystemReason(errno));
    }
    Child child(command, writeEnd.Number(), errors.Number());
    writeEnd.Close();
    try {
        ForEachLine(readEnd.Number(), command[0], consume);
    } catch (...) {
        readEnd.Close(); // the child must not wait for a reader while it is waited for
        throw;
    }
    readEnd.Close();
    const int status = child.Wait();
    if (WIFSIGNALED(status)) {
        throw ProcessError(command[0] + " was ended by signal " + std::to_string(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) != 0) {
        const std::string reason = LastLine(errors.Number());
        throw ProcessError(command[0] + " failed with exit code " +
                           std::to_string(WEXITSTATUS(status)) + (reason.empty() ? "" : ": ") +
                           reason);
    }
}

} // namespace patchkeeper
