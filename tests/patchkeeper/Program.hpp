#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/wait.h>

#include "patchkeeper/TemporaryDirectory.hpp"

namespace patchkeeper_test {

struct Result {
    std::string output;
    std::string errors;
    int exitCode = 0;
};

// Runs a shell command; "patchkeeper" in it is the program.
inline Result Shell(const std::string& command) {
    const TemporaryDirectory directory;
    std::filesystem::create_symlink(PATCHKEEPER_PROGRAM, directory.Path() / "patchkeeper");
    const std::string errorFile = directory.Path() / "errors";
    const std::string whole = "exec 2>" + errorFile + "; patchkeeper() { \"" +
                              (directory.Path() / "patchkeeper").string() + "\" \"$@\"; }; " +
                              command;
    std::FILE* pipe = popen(whole.c_str(), "re");
    Result result;
    std::array<char, 4096> buffer{};
    std::size_t got = 0;
    while ((got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        result.output.append(buffer.data(), got);
    }
    const int status = pclose(pipe);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ifstream in(errorFile);
    result.errors.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return result;
}

} // namespace patchkeeper_test
