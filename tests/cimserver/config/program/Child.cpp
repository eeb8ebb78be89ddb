// Prints what it inherited: a line per open descriptor and per variable, the blocked and the
// ignored signals.
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <string>
#include <unistd.h>

int main() {
    DIR* directory = opendir("/proc/self/fd");
    if (directory == nullptr) {
        return 1;
    }
    while (const dirent* entry = readdir(directory)) {
        const std::string name = entry->d_name;
        if (name[0] == '.' || name == std::to_string(dirfd(directory))) {
            continue;
        }
        char target[256] = {};
        const auto size = readlink(("/proc/self/fd/" + name).c_str(), target, sizeof target - 1);
        std::printf("descriptor %s %s\n", name.c_str(), size < 0 ? "?" : target);
    }
    closedir(directory);
    for (char** variable = environ; *variable != nullptr; ++variable) {
        std::printf("variable %s\n", *variable);
    }
    std::FILE* status = std::fopen("/proc/self/status", "re");
    char line[256];
    while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, "SigBlk:", 7) == 0 || std::strncmp(line, "SigIgn:", 7) == 0) {
            std::printf("signals %s", line);
        }
    }
    return std::fclose(status);
}
