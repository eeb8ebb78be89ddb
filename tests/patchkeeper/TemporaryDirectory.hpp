#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace patchkeeper_test {

// A fresh directory, removed with everything in it at the end.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "patchkeeper-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary directory can be made");
        }
        path_ = name;
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    std::filesystem::path Write(const std::string& name, const std::string& text) const {
        const auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

    std::filesystem::path WriteProgram(const std::string& name, const std::string& text) const {
        const auto file = Write(name, text);
        std::filesystem::permissions(file, std::filesystem::perms(0755));
        return file;
    }

private:
    std::filesystem::path path_;
};

} // namespace patchkeeper_test
