#pragma once

#include <filesystem>
#include <vector>

#include "patchkeeper/BundleSource.hpp"

namespace patchkeeper {

// A file or directory of this machine.
class LocalSource : public BundleSource {
public:
    explicit LocalSource(const std::filesystem::path& path);

    std::string Name() const override { return path_.string(); }
    Found Find() override;
    Taken Take(std::size_t position, Intake& intake, const Operation& operation,
               const CopyProgress& progress) override;

private:
    std::vector<std::filesystem::path> FilesInDirectory() const;

    std::filesystem::path path_; // absolute
    std::vector<std::filesystem::path> files_;
};

} // namespace patchkeeper
