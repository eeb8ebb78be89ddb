#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct archive;

namespace patchkeeper::bundle {

// The archive cannot be read on; what() says why, without a full stop.
class ArchiveError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class EntryKind { File, Directory, Link, HardLink, CharacterDevice, BlockDevice, Pipe, Other };

// "a directory", "a hard link" and so on.
std::string KindText(EntryKind kind);

struct Entry {
    std::string name; // as it stands in the archive, trusted in nothing
    EntryKind kind = EntryKind::Other;
    std::uint64_t size = 0;
    unsigned mode = 0;
    std::string link; // of a symbolic link
};

// Reads a tar.gz from its beginning to its end. The file is read through `descriptor`, which stays
// the caller's, from its first byte on wherever it stands. One thread at a time.
class ArchiveReader {
public:
    // Throws ArchiveError when this is not gzip around tar. `allowedBytes`: see Allow.
    ArchiveReader(int descriptor, std::uint64_t allowedBytes);
    ArchiveReader(const ArchiveReader&) = delete;
    ArchiveReader& operator=(const ArchiveReader&) = delete;
    ~ArchiveReader();

    // How many unpacked bytes, headers included, may be read in all. More is an ArchiveError, so
    // that a small file which unpacks to a huge one costs no more than this.
    void Allow(std::uint64_t bytes) { allowed_ = bytes; }

    // The next entry; what is left of the data of the one before is passed over.
    std::optional<Entry> Next();

    // The next piece of the entry's data, valid until the next call; empty at its end.
    std::string_view Read();

    // After the last entry: reads on to the end of the file. Only zeros may stand there in the tar
    // archive, and nothing behind the gzip data.
    void Finish();

private:
    struct Free {
        void operator()(archive* reader) const;
    };
    using Handle = std::unique_ptr<archive, Free>;

    static long ReadPacked(archive* reader, void* self, const void** buffer);
    static long ReadUnpacked(archive* reader, void* self, const void** buffer);
    std::string_view NextUnpacked();
    void OpenPacked();
    [[noreturn]] void Fail(archive* reader);

    int descriptor_;
    std::int64_t packedOffset_ = 0;
    std::uint64_t packedSinceData_ = 0;
    std::array<char, 65536> packed_{};
    std::uint64_t allowed_;
    std::uint64_t unpackedBytes_ = 0;
    std::uint64_t endOfLastNonZero_ = 0; // in the unpacked bytes
    std::int64_t dataOffset_ = 0;        // in the entry
    std::string reason_;                 // why a callback failed
    Handle gzip_;
    Handle tar_;
};

} // namespace patchkeeper::bundle
