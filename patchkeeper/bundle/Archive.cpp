#include "patchkeeper/bundle/Archive.hpp"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <exception>

#include <archive.h>
#include <archive_entry.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/bundle/Files.hpp"
#include "patchkeeper/bundle/Utf8Locale.hpp"

namespace patchkeeper::bundle {

namespace {

// A gzip header may be as long as it likes; this bounds what is buffered in search of its end.
constexpr std::uint64_t longestWithoutData = 4U << 20U;

EntryKind KindOf(archive_entry* entry) {
    if (archive_entry_hardlink(entry) != nullptr) {
        return EntryKind::HardLink;
    }
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return EntryKind::File;
    case AE_IFDIR:
        return EntryKind::Directory;
    case AE_IFLNK:
        return EntryKind::Link;
    case AE_IFCHR:
        return EntryKind::CharacterDevice;
    case AE_IFBLK:
        return EntryKind::BlockDevice;
    case AE_IFIFO:
        return EntryKind::Pipe;
    default:
        return EntryKind::Other;
    }
}

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

std::string KindText(EntryKind kind) {
    switch (kind) {
    case EntryKind::File:
        return "a file";
    case EntryKind::Directory:
        return "a directory";
    case EntryKind::Link:
        return "a symbolic link";
    case EntryKind::HardLink:
        return "a hard link";
    case EntryKind::CharacterDevice:
    case EntryKind::BlockDevice:
        return "a device node";
    case EntryKind::Pipe:
        return "a named pipe";
    case EntryKind::Other:
        break;
    }
    return "neither a file nor a link";
}

void ArchiveReader::Free::operator()(archive* reader) const {
    archive_read_free(reader);
}

ArchiveReader::ArchiveReader(int descriptor, std::uint64_t allowedBytes)
    : descriptor_(descriptor), allowed_(allowedBytes), gzip_(archive_read_new()),
      tar_(archive_read_new()) {
    if (!gzip_ || !tar_) {
        throw std::bad_alloc();
    }
    const Utf8Locale locale;
    OpenPacked();
    archive_read_support_format_tar(tar_.get());
    if (archive_read_open(tar_.get(), this, nullptr, ReadUnpacked, nullptr) != ARCHIVE_OK) {
        if (!reason_.empty()) {
            throw ArchiveError(reason_);
        }
        throw ArchiveError("it is not a tar archive");
    }
}

ArchiveReader::~ArchiveReader() = default;

void ArchiveReader::OpenPacked() {
    archive_read_support_filter_gzip(gzip_.get());
    archive_read_support_format_raw(gzip_.get());
    archive_entry* entry = nullptr;
    const bool opened =
        archive_read_open(gzip_.get(), this, nullptr, ReadPacked, nullptr) == ARCHIVE_OK &&
        archive_read_next_header(gzip_.get(), &entry) == ARCHIVE_OK;
    const bool isGzip = archive_filter_count(gzip_.get()) == 2 &&
                        archive_filter_code(gzip_.get(), 0) == ARCHIVE_FILTER_GZIP;
    if (!opened && !reason_.empty()) {
        throw ArchiveError(reason_);
    }
    if (!opened || !isGzip) {
        throw ArchiveError("it is not packed with gzip");
    }
}

long ArchiveReader::ReadPacked(archive* /*reader*/, void* self, const void** buffer) {
    auto& my = *static_cast<ArchiveReader*>(self);
    ssize_t got = 0;
    do {
        got = pread(my.descriptor_, my.packed_.data(), my.packed_.size(), my.packedOffset_);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        my.reason_ = "it cannot be read: " + SystemReason(errno);
        return -1;
    }
    my.packedOffset_ += got;
    my.packedSinceData_ += static_cast<std::uint64_t>(got);
    if (my.packedSinceData_ > longestWithoutData) {
        my.reason_ = "its gzip data unpacks to nothing";
        return -1;
    }
    *buffer = my.packed_.data();
    return got;
}

std::string_view ArchiveReader::NextUnpacked() {
    const void* block = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    const int result = archive_read_data_block(gzip_.get(), &block, &size, &offset);
    packedSinceData_ = 0;
    if (result == ARCHIVE_EOF && reason_.empty()) {
        return {};
    }
    if (result != ARCHIVE_OK) {
        Fail(gzip_.get());
    }
    const std::string_view data(static_cast<const char*>(block), size);
    const auto lastNonZero = data.find_last_not_of('\0');
    if (lastNonZero != std::string_view::npos) {
        endOfLastNonZero_ = unpackedBytes_ + lastNonZero + 1;
    }
    unpackedBytes_ += size;
    if (unpackedBytes_ > allowed_) {
        throw ArchiveError("it holds more data than its manifest declares");
    }
    return data;
}

// No exception may pass through the library, which is written in C.
long ArchiveReader::ReadUnpacked(archive* /*reader*/, void* self, const void** buffer) {
    auto& my = *static_cast<ArchiveReader*>(self);
    try {
        const std::string_view data = my.NextUnpacked();
        *buffer = data.data();
        return static_cast<long>(data.size());
    } catch (const std::exception& error) {
        my.reason_ = error.what();
        return -1;
    }
}

void ArchiveReader::Fail(archive* reader) {
    if (!reason_.empty()) {
        throw ArchiveError(reason_);
    }
    const std::string text = TextOf(archive_error_string(reader));
    throw ArchiveError("its archive is damaged" + (text.empty() ? "" : ": " + text));
}

std::optional<Entry> ArchiveReader::Next() {
    const Utf8Locale locale;
    archive_entry* entry = nullptr;
    const int result = archive_read_next_header(tar_.get(), &entry);
    if (result == ARCHIVE_EOF) {
        return std::nullopt;
    }
    if (result != ARCHIVE_OK) {
        Fail(tar_.get());
    }
    dataOffset_ = 0;
    Entry found;
    found.name = TextOf(archive_entry_pathname(entry));
    found.kind = KindOf(entry);
    found.size = static_cast<std::uint64_t>(std::max<la_int64_t>(0, archive_entry_size(entry)));
    found.mode = archive_entry_mode(entry) & 07777U;
    found.link = TextOf(archive_entry_symlink(entry));
    return found;
}

std::string_view ArchiveReader::Read() {
    const void* block = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    int result = ARCHIVE_OK;
    do {
        result = archive_read_data_block(tar_.get(), &block, &size, &offset);
    } while (result == ARCHIVE_OK && size == 0);
    if (result == ARCHIVE_EOF) {
        return {};
    }
    if (result != ARCHIVE_OK) {
        Fail(tar_.get());
    }
    if (offset != dataOffset_) {
        throw ArchiveError("an entry of it has holes");
    }
    dataOffset_ += static_cast<std::int64_t>(size);
    return {static_cast<const char*>(block), size};
}

void ArchiveReader::Finish() {
    const auto end = static_cast<std::uint64_t>(archive_read_header_position(tar_.get()));
    while (!NextUnpacked().empty()) {
    }
    struct stat status {};
    const bool isWholeFile =
        fstat(descriptor_, &status) == 0 && archive_filter_bytes(gzip_.get(), -1) == status.st_size;
    if (endOfLastNonZero_ > end || !isWholeFile) {
        throw ArchiveError("data stands behind the end of its archive");
    }
}

} // namespace patchkeeper::bundle
