// A library to be preloaded: it counts the calls by which a program changes files and, when
// KILL_POINT is set, ends the process by SIGKILL in place of the call of that number. With
// KILL_COUNT set to a file, the number of calls is written to it when the program ends by itself.
//
// What counts is every call that changes a file or directory or makes a change lasting, made by the
// program or by a library that it uses, the database's among them. Calls on standard output,
// standard error and pipes do not count.
//
// It is compiled without sanitizers, whatever the program is compiled with: the sanitizers' own
// versions of these functions call on to these, or are called by them.

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

std::atomic<long> calls{0};

long WantedPoint() {
    static const long point = [] {
        const char* text = std::getenv("KILL_POINT");
        return text == nullptr ? 0 : std::atol(text);
    }();
    return point;
}

void Count() {
    if (++calls == WantedPoint()) {
        kill(getpid(), SIGKILL);
    }
}

bool IsFile(int descriptor) {
    struct stat status {};
    return descriptor > STDERR_FILENO && fstat(descriptor, &status) == 0 &&
           !S_ISFIFO(status.st_mode);
}

void CountOnFile(int descriptor) {
    if (IsFile(descriptor)) {
        Count();
    }
}

// The next definition of the function: the C library's, or a sanitizer's which calls that.
template <typename Function>
Function* Next(const char* name) {
    void* address = dlsym(RTLD_NEXT, name);
    Function* function = nullptr;
    std::memcpy(&function, &address, sizeof function);
    return function;
}

mode_t ModeOf(int flags, va_list list) {
    const bool makesFile = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return makesFile ? va_arg(list, mode_t) : 0;
}

void CountOpen(int flags) {
    if ((flags & (O_CREAT | O_TRUNC)) != 0) {
        Count();
    }
}

struct Report {
    ~Report() {
        const char* file = std::getenv("KILL_COUNT");
        if (file != nullptr) {
            const long counted = calls;
            std::FILE* out = std::fopen(file, "we");
            std::fprintf(out, "%ld", counted);
            std::fclose(out);
        }
    }
};
const Report report;

} // namespace

// A forwarded function: its name, its parameters with and without types, and when it counts.
#define FORWARD(result, name, parameters, arguments, count)                                        \
    extern "C" result name parameters {                                                            \
        static const auto next = Next<result parameters>(#name);                                   \
        count;                                                                                     \
        return next arguments;                                                                     \
    }

FORWARD(ssize_t, write, (int file, const void* data, size_t size), (file, data, size),
        CountOnFile(file))
FORWARD(ssize_t, writev, (int file, const iovec* pieces, int count), (file, pieces, count),
        CountOnFile(file))
FORWARD(ssize_t, pwrite, (int file, const void* data, size_t size, off_t offset),
        (file, data, size, offset), CountOnFile(file))
FORWARD(ssize_t, pwrite64, (int file, const void* data, size_t size, off64_t offset),
        (file, data, size, offset), CountOnFile(file))
FORWARD(int, ftruncate, (int file, off_t size), (file, size), Count())
FORWARD(int, ftruncate64, (int file, off64_t size), (file, size), Count())
FORWARD(int, fsync, (int file), (file), Count())
FORWARD(int, fdatasync, (int file), (file), Count())
FORWARD(int, syncfs, (int file), (file), Count())
FORWARD(int, fchmod, (int file, mode_t mode), (file, mode), Count())
FORWARD(int, rename, (const char* from, const char* to), (from, to), Count())
FORWARD(int, renameat, (int from, const char* name, int to, const char* other),
        (from, name, to, other), Count())
FORWARD(int, unlink, (const char* path), (path), Count())
FORWARD(int, unlinkat, (int directory, const char* path, int flags), (directory, path, flags),
        Count())
FORWARD(int, remove, (const char* path), (path), Count())
FORWARD(int, rmdir, (const char* path), (path), Count())
FORWARD(int, link, (const char* from, const char* to), (from, to), Count())
FORWARD(int, symlink, (const char* text, const char* path), (text, path), Count())
FORWARD(int, symlinkat, (const char* text, int directory, const char* path),
        (text, directory, path), Count())
FORWARD(int, mkdir, (const char* path, mode_t mode), (path, mode), Count())
FORWARD(int, mkdirat, (int directory, const char* path, mode_t mode), (directory, path, mode),
        Count())
FORWARD(std::FILE*, fopen, (const char* path, const char* mode), (path, mode),
        mode[0] == 'r' ? void() : Count())
FORWARD(std::FILE*, fopen64, (const char* path, const char* mode), (path, mode),
        mode[0] == 'r' ? void() : Count())

// The mode is there only when a file may be made.
#define FORWARD_OPEN(name)                                                                         \
    extern "C" int name(const char* path, int flags, ...) {                                        \
        static const auto next = Next<int(const char*, int, mode_t)>(#name);                       \
        va_list list;                                                                              \
        va_start(list, flags);                                                                     \
        const mode_t mode = ModeOf(flags, list);                                                   \
        va_end(list);                                                                              \
        CountOpen(flags);                                                                          \
        return next(path, flags, mode);                                                            \
    }
#define FORWARD_OPENAT(name)                                                                       \
    extern "C" int name(int directory, const char* path, int flags, ...) {                         \
        static const auto next = Next<int(int, const char*, int, mode_t)>(#name);                  \
        va_list list;                                                                              \
        va_start(list, flags);                                                                     \
        const mode_t mode = ModeOf(flags, list);                                                   \
        va_end(list);                                                                              \
        CountOpen(flags);                                                                          \
        return next(directory, path, flags, mode);                                                 \
    }

FORWARD_OPEN(open)
FORWARD_OPEN(open64)
FORWARD_OPENAT(openat)
FORWARD_OPENAT(openat64)
