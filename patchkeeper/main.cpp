#include <iostream>

#include "patchkeeper/CommandLine.hpp"

int main(int argumentCount, char** arguments) {
    std::ios::sync_with_stdio(false);
    return patchkeeper::RunCommand(argumentCount, arguments, std::cout, std::cerr);
}
