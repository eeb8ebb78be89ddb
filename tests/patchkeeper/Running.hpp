#pragma once

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

namespace patchkeeper_test {

// The program, started and running beside the test. What it prints is thrown away. The destructor
// kills it.
class Running {
public:
    Running(const std::filesystem::path& root, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), PATCHKEEPER_PROGRAM);
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (auto& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        std::string variable = "PATCHKEEPER_ROOT=" + root.string();
        char* environment[] = {variable.data(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        for (const int output : {1, 2}) {
            posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
        }
        const int error =
            posix_spawn(&process_, pointers[0], &actions, nullptr, pointers.data(), environment);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw std::runtime_error("the program cannot be started");
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        if (IsRunning()) {
            kill(process_, SIGKILL);
            Wait();
        }
    }

    bool IsRunning() {
        if (!ended_ && waitpid(process_, &status_, WNOHANG) == process_) {
            ended_ = true;
        }
        return !ended_;
    }
    void Kill() { Signal(SIGKILL); }
    void Signal(int signal) { kill(process_, signal); }
    // The exit code, or -1 when a signal ended it.
    int Wait() {
        if (!ended_) {
            waitpid(process_, &status_, 0);
            ended_ = true;
        }
        return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
    }

private:
    pid_t process_ = -1;
    bool ended_ = false;
    int status_ = 0;
};

} // namespace patchkeeper_test
