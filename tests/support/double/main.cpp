#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <unistd.h>

// The scripted tool of the tests. README.md beside this file has the files of a script; ToolDouble
// writes them. Plain system calls only: it is started thousands of times.

namespace {

constexpr int scriptFault = 99;
constexpr int longestHoldMilliseconds = 60'000;

[[noreturn]] void Fault(const std::string& what) {
    const std::string text = "patchkeeper_double: " + what + "\n";
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
    _exit(scriptFault);
}

void WriteAll(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            Fault(std::string("cannot write: ") + std::strerror(errno));
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

bool Exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

// Copies a file to a descriptor; without such a file nothing happens.
void Play(const std::string& path, int descriptor) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        if (errno == ENOENT) {
            return;
        }
        Fault("cannot read " + path);
    }
    char buffer[65536];
    ssize_t got = 0;
    while ((got = read(file, buffer, sizeof buffer)) > 0) {
        WriteAll(descriptor, buffer, static_cast<std::size_t>(got));
    }
    close(file);
}

// The number in a file, or `otherwise` without such a file.
long Number(const std::string& path, long otherwise) {
    std::FILE* file = std::fopen(path.c_str(), "re");
    if (file == nullptr) {
        return otherwise;
    }
    long number = 0;
    const bool read = std::fscanf(file, "%ld", &number) == 1;
    std::fclose(file);
    if (!read) {
        Fault("no number in " + path);
    }
    return number;
}

void AppendEscaped(std::string& line, const char* text) {
    for (; *text != '\0'; ++text) {
        switch (*text) {
        case '\\':
            line += "\\\\";
            break;
        case '\t':
            line += "\\t";
            break;
        case '\n':
            line += "\\n";
            break;
        default:
            line += *text;
        }
    }
}

// The command line that the shell was given which waits for us; empty when none does.
std::string ShellCommand() {
    const std::string path = "/proc/" + std::to_string(getppid()) + "/cmdline";
    std::string text;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    char buffer[65536];
    ssize_t got = 0;
    while (file >= 0 && (got = read(file, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    close(file);
    const std::string shell("sh\0-c\0", 6);
    if (text.compare(0, shell.size(), shell) != 0) {
        return "";
    }
    text.pop_back();
    return text.substr(text.rfind('\0') + 1);
}

// One write per call, so that calls beside each other do not mix.
void Record(const std::string& directory, int count, char** arguments) {
    std::string line;
    AppendEscaped(line, ShellCommand().c_str());
    for (int i = 0; i < count; ++i) {
        line += '\t';
        AppendEscaped(line, arguments[i]);
    }
    line += '\n';
    const int file =
        open((directory + "/calls").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (file < 0) {
        Fault("cannot record the call in " + directory);
    }
    WriteAll(file, line.data(), line.size());
    close(file);
}

void HoldUntilReleased(const std::string& directory, const std::string& release) {
    const int watch = inotify_init1(IN_CLOEXEC);
    if (watch < 0 || inotify_add_watch(watch, directory.c_str(), IN_CREATE | IN_MOVED_TO) < 0) {
        Fault("cannot watch " + directory);
    }
    char events[4096];
    while (!Exists(release)) {
        pollfd changed{watch, POLLIN, 0};
        if (poll(&changed, 1, longestHoldMilliseconds) <= 0) {
            Fault("nobody released " + release);
        }
        static_cast<void>(!read(watch, events, sizeof events));
    }
    close(watch);
}

void Sleep(long milliseconds) {
    timespec left{milliseconds / 1000, (milliseconds % 1000) * 1'000'000};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

std::string SignalMasks() {
    std::string masks;
    std::FILE* status = std::fopen("/proc/self/status", "re");
    if (status == nullptr) {
        Fault("cannot read /proc/self/status");
    }
    char line[256];
    while (std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, "SigBlk:", 7) == 0 || std::strncmp(line, "SigIgn:", 7) == 0) {
            masks += line;
        }
    }
    std::fclose(status);
    return masks;
}

std::string OpenDescriptors() {
    DIR* folder = opendir("/proc/self/fd");
    if (folder == nullptr) {
        Fault("cannot list /proc/self/fd");
    }
    std::string list;
    while (const dirent* entry = readdir(folder)) {
        if (entry->d_name[0] == '.' || std::atoi(entry->d_name) == dirfd(folder)) {
            continue;
        }
        char target[PATH_MAX];
        const ssize_t length = readlinkat(dirfd(folder), entry->d_name, target, sizeof target);
        list += std::string("fd ") + entry->d_name + ' ';
        AppendEscaped(
            list, std::string(target, length < 0 ? 0 : static_cast<std::size_t>(length)).c_str());
        list += '\n';
    }
    closedir(folder);
    return list;
}

// Appears whole or not at all.
void ReportOnSelf(const std::string& directory) {
    const std::string text = OpenDescriptors() + SignalMasks();
    const std::string draft = directory + "/report." + std::to_string(getpid());
    const int file = open(draft.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) {
        Fault("cannot write " + draft);
    }
    WriteAll(file, text.data(), text.size());
    close(file);
    if (rename(draft.c_str(), (directory + "/report").c_str()) != 0) {
        Fault("cannot rename " + draft);
    }
}

[[noreturn]] void DieBySignal(int number) {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    signal(number, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, number);
    sigprocmask(SIG_UNBLOCK, &only, nullptr);
    raise(number);
    Fault("signal " + std::to_string(number) + " did not end it");
}

// "inventory" without an argument, otherwise the first argument without its leading dashes.
std::string Key(int count, char** arguments) {
    if (count < 2) {
        return "inventory";
    }
    const char* key = arguments[1];
    while (*key == '-') {
        ++key;
    }
    return key;
}

} // namespace

int main(int count, char** arguments) {
    const char* directory = std::getenv("PATCHKEEPER_DOUBLE");
    if (directory == nullptr || !Exists(directory)) {
        Fault("PATCHKEEPER_DOUBLE names no script directory");
    }
    const std::string folder = directory;
    Record(folder, count, arguments);
    const std::string key = Key(count, arguments);
    std::string answer = folder + "/" + key;
    if (key.find('/') != std::string::npos || !Exists(answer + ".answer")) {
        answer = folder + "/default";
    }
    if (!Exists(answer + ".answer")) {
        Fault("no answer is scripted for '" + key + "'");
    }

    if (Exists(answer + ".held")) {
        HoldUntilReleased(folder, answer + ".release");
    }
    Sleep(Number(answer + ".delay", 0));
    if (Exists(answer + ".report")) {
        ReportOnSelf(folder);
    }
    Play(answer + ".out", STDOUT_FILENO);
    Play(answer + ".err", STDERR_FILENO);
    if (const long number = Number(answer + ".signal", 0); number != 0) {
        DieBySignal(static_cast<int>(number));
    }
    return static_cast<int>(Number(answer + ".exit", 0));
}
