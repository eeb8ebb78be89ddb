#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "patchkeeper/bundle/Archive.hpp"

namespace patchkeeper::bundle {

// Writes a tar.gz in which owners and times are 0, so that it depends on names, modes and data
// only. Every function throws ArchiveError when writing fails.
class ArchiveWriter {
public:
    explicit ArchiveWriter(int descriptor); // stays the caller's

    void AddText(const std::string& name, std::string_view text);
    void AddLink(const std::string& name, const std::string& link);
    // Takes `size` bytes from a file; throws when it has become shorter. Throws Failure when it
    // cannot be read.
    void AddFile(const std::string& name, const std::filesystem::path& source, std::uint64_t size,
                 unsigned mode);
    void Finish();

private:
    struct Free {
        void operator()(archive* writer) const;
    };

    void Require(int result);
    void AddHeader(const std::string& name, EntryKind kind, std::uint64_t size, unsigned mode,
                   const std::string& link);
    void AddData(std::string_view data);

    std::unique_ptr<archive, Free> writer_;
};

} // namespace patchkeeper::bundle
