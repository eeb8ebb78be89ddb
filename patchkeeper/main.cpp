#include <csignal>
#include <iostream>

#include "patchkeeper/CommandLine.hpp"

int main(int argumentCount, char** arguments) {
    std::ios::sync_with_stdio(false);
    // A file that reaches the size limit of the process is a failed write like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    return patchkeeper::RunCommand(patchkeeper::TakeArguments(argumentCount, arguments), std::cout,
                                   std::cerr);
}
