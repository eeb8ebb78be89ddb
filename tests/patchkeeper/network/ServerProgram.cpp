#include "patchkeeper/network/ServerProgram.hpp"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "patchkeeper/Tree.hpp"

namespace patchkeeper_test {

namespace {

constexpr unsigned longestLife = 120; // seconds
constexpr std::chrono::seconds longestStart{30};

bool CanConnect(int port) {
    const int file = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    sockaddr general{};
    static_assert(sizeof general == sizeof address);
    std::memcpy(&general, &address, sizeof address);
    const bool connected = connect(file, &general, sizeof general) == 0;
    close(file);
    return connected;
}

[[noreturn]] void Become(const std::vector<char*>& pointers, const std::string& log) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    alarm(longestLife);
    const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    execv(pointers[0], pointers.data());
    _exit(127);
}

} // namespace

ServerProgram::ServerProgram(std::vector<std::string> command, int port, const std::string& log) {
    std::vector<char*> pointers;
    pointers.reserve(command.size() + 1);
    for (auto& word : command) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) {
        Become(pointers, log);
    }
    WaitUntilItListens(port, log);
}

void ServerProgram::WaitUntilItListens(int port, const std::string& log) {
    const auto end = std::chrono::steady_clock::now() + longestStart;
    while (!CanConnect(port)) {
        if (waitpid(process_, nullptr, WNOHANG) == process_) {
            process_ = -1;
            throw std::runtime_error("the server has ended: " + Contents(log));
        }
        if (std::chrono::steady_clock::now() > end) {
            Kill();
            throw std::runtime_error("the server does not listen: " + Contents(log));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10)); // nothing tells of it
    }
}

ServerProgram::~ServerProgram() {
    Kill();
}

void ServerProgram::Kill() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }
}

} // namespace patchkeeper_test
