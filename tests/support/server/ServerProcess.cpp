#include "tests/support/server/ServerProcess.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace test_support {
namespace {

const std::string listening = "Listening on http://127.0.0.1:";
const std::string listeningWithTls = "Listening on https://127.0.0.1:";

std::vector<std::string> CommandLine(const std::string& configFile,
                                     const std::vector<std::string>& more) {
    std::vector<std::string> words = {CIMSERVER_PROGRAM,
                                      "--listen",
                                      "127.0.0.1:0",
                                      "--provider-dir",
                                      PROVIDER_DIRECTORY,
                                      "--mof",
                                      SCHEMA_DIRECTORY "/qualifiers.mof",
                                      SCHEMA_DIRECTORY "/ZNX.mof"};
    words.insert(words.end(), more.begin(), more.end());
    if (std::find(more.begin(), more.end(), "--config") == more.end()) {
        words.insert(words.end(), {"--config", configFile});
    }
    return words;
}

[[noreturn]] void Become(std::vector<std::string> words, const std::string& logFile) {
    const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    close(log);
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
}

std::string TemporaryFile(const char* pattern) {
    std::string name = (std::filesystem::temp_directory_path() / pattern).string();
    const int file = mkstemp(name.data());
    if (file < 0) {
        throw std::runtime_error("no temporary file");
    }
    close(file);
    return name;
}

/// 0 when the line is not there yet.
std::uint16_t PortAfter(const std::string& beginning, const std::string& log) {
    const std::size_t at = log.find(beginning);
    if (at == std::string::npos || log.find('\n', at) == std::string::npos) {
        return 0;
    }
    return static_cast<std::uint16_t>(std::stoul(log.substr(at + beginning.size())));
}

double MemoryOf(pid_t process, const std::string& item) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string word;
    while (status >> word) {
        if (word == item) {
            double kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024 / 1e6;
        }
    }
    throw std::runtime_error("the server is gone");
}

std::size_t EntriesOf(const std::string& directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(entries, std::filesystem::directory_iterator()));
}

} // namespace

ServerProcess::ServerProcess(const std::vector<std::string>& moreArguments,
                             const std::string& moreItems)
    : logFile_(TemporaryFile("cimserver-log-XXXXXX")),
      configFile_(TemporaryFile("cimserver-conf-XXXXXX")) {
    std::ofstream(configFile_) << "owcimomd.allow_anonymous = true\ncimserver.writers = *\n"
                               << moreItems;
    const std::vector<std::string> words = CommandLine(configFile_, moreArguments);
    process_ = fork();
    if (process_ == 0) {
        Become(words, logFile_);
    }
    WaitUntilItListens();
}

ServerProcess::~ServerProcess() {
    Stop();
    RemoveFiles();
}

void ServerProcess::RemoveFiles() const {
    std::filesystem::remove(logFile_);
    std::filesystem::remove(configFile_);
}

void ServerProcess::WaitUntilItListens() {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < limit) {
        port_ = PortAfter(listening, Log());
        if (port_ != 0) {
            return;
        }
        int status = 0;
        if (waitpid(process_, &status, WNOHANG) == process_) {
            status_ = status;
            const std::string said = Log();
            RemoveFiles();
            throw std::runtime_error("the server did not start: " + said);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    Stop();
    const std::string said = Log();
    RemoveFiles();
    throw std::runtime_error("the server did not tell its port: " + said);
}

std::uint16_t ServerProcess::TlsPort() const {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < limit) {
        if (const std::uint16_t port = PortAfter(listeningWithTls, Log())) {
            return port;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw std::runtime_error("the server did not tell its TLS port: " + Log());
}

int ServerProcess::Stop() {
    if (status_ == -1) {
        Signal(SIGTERM);
    }
    return Wait();
}

void ServerProcess::Signal(int signal) const {
    kill(process_, signal);
}

int ServerProcess::Wait() {
    if (status_ == -1) {
        waitpid(process_, &status_, 0);
    }
    return WIFSIGNALED(status_) ? 128 + WTERMSIG(status_) : WEXITSTATUS(status_);
}

std::string ServerProcess::Log() const {
    std::ifstream file(logFile_);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

double ServerProcess::ResidentMegabytes() const {
    return MemoryOf(process_, "VmRSS:");
}

double ServerProcess::PeakMegabytes() const {
    return MemoryOf(process_, "VmHWM:");
}

std::size_t ServerProcess::OpenDescriptors() const {
    return EntriesOf("/proc/" + std::to_string(process_) + "/fd");
}

std::size_t ServerProcess::Threads() const {
    return EntriesOf("/proc/" + std::to_string(process_) + "/task");
}

std::size_t ServerProcess::Zombies() const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "stat");
        std::string text;
        if (!std::getline(file, text)) {
            continue;
        }
        char state = 0;
        pid_t parent = 0;
        std::istringstream(text.substr(text.rfind(')') + 2)) >> state >> parent;
        count += state == 'Z' && parent == process_ ? 1 : 0;
    }
    return count;
}

} // namespace test_support
