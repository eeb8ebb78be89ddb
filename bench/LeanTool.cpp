// A tool that costs as little as a program can: prints the file that BENCH_LISTING names.

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

int main() {
    const char* name = std::getenv("BENCH_LISTING");
    const int file = name == nullptr ? -1 : open(name, O_RDONLY | O_CLOEXEC);
    std::array<char, 64 * 1024> block;
    ssize_t got = 0;
    while ((got = read(file, block.data(), block.size())) > 0) {
        if (write(STDOUT_FILENO, block.data(), static_cast<std::size_t>(got)) != got) {
            return 1;
        }
    }
    return got < 0 ? 1 : 0;
}
