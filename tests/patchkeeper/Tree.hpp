#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include <sys/stat.h>

namespace patchkeeper_test {

// What stands below a directory: by path, the kind, mode and content of each file, link and
// directory.
using Tree = std::map<std::string, std::string>;

inline std::string Contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline Tree TreeOf(const std::filesystem::path& directory) {
    namespace fs = std::filesystem;
    Tree tree;
    if (!fs::exists(directory)) {
        return tree;
    }
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        struct stat status {};
        lstat(entry.path().c_str(), &status);
        std::ostringstream text;
        text << std::oct << status.st_mode << ' ';
        if (entry.is_symlink()) {
            text << fs::read_symlink(entry.path()).string();
        } else if (entry.is_regular_file()) {
            text << Contents(entry.path());
        }
        tree[entry.path().lexically_relative(directory).string()] = text.str();
    }
    return tree;
}

} // namespace patchkeeper_test
