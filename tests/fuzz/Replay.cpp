// Runs a fuzz target over every file of a folder; when none of them is understood, the run proves
// nothing and fails.
#include "fuzz/Target.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        std::printf("%s\n", entry.path().filename().c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }
    return fuzz::understood == 0 ? 1 : 0;
}
