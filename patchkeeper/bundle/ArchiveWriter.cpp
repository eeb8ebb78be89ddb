#include "patchkeeper/bundle/ArchiveWriter.hpp"

#include <algorithm>
#include <array>

#include <archive.h>
#include <archive_entry.h>

#include "patchkeeper/bundle/Files.hpp"
#include "patchkeeper/bundle/Utf8Locale.hpp"

namespace patchkeeper::bundle {

void ArchiveWriter::Free::operator()(archive* writer) const {
    archive_write_free(writer);
}

ArchiveWriter::ArchiveWriter(int descriptor) : writer_(archive_write_new()) {
    if (!writer_) {
        throw std::bad_alloc();
    }
    const Utf8Locale locale;
    Require(archive_write_set_format_pax_restricted(writer_.get()));
    Require(archive_write_add_filter_gzip(writer_.get()));
    Require(archive_write_set_filter_option(writer_.get(), "gzip", "timestamp", nullptr));
    Require(archive_write_set_bytes_in_last_block(writer_.get(), 1));
    Require(archive_write_open_fd(writer_.get(), descriptor));
}

void ArchiveWriter::Require(int result) {
    if (result != ARCHIVE_OK) {
        const int error = archive_errno(writer_.get());
        const char* text = archive_error_string(writer_.get());
        throw ArchiveError(error > 0 ? SystemReason(error)
                                     : std::string(text != nullptr ? text : "unknown reason"));
    }
}

void ArchiveWriter::AddHeader(const std::string& name, EntryKind kind, std::uint64_t size,
                              unsigned mode, const std::string& link) {
    const Utf8Locale locale;
    const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                              archive_entry_free);
    if (!entry) {
        throw std::bad_alloc();
    }
    archive_entry_copy_pathname(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), kind == EntryKind::Link ? AE_IFLNK : AE_IFREG);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(size));
    archive_entry_set_perm(entry.get(), mode);
    archive_entry_set_mtime(entry.get(), 0, 0);
    if (kind == EntryKind::Link) {
        archive_entry_copy_symlink(entry.get(), link.c_str());
    }
    Require(archive_write_header(writer_.get(), entry.get()));
}

void ArchiveWriter::AddData(std::string_view data) {
    while (!data.empty()) {
        const la_ssize_t written = archive_write_data(writer_.get(), data.data(), data.size());
        if (written < 0) {
            Require(static_cast<int>(written));
        }
        if (written <= 0) {
            throw ArchiveError("the archive takes no more data");
        }
        data.remove_prefix(static_cast<std::size_t>(written));
    }
}

void ArchiveWriter::AddText(const std::string& name, std::string_view text) {
    AddHeader(name, EntryKind::File, text.size(), 0644, "");
    AddData(text);
}

void ArchiveWriter::AddLink(const std::string& name, const std::string& link) {
    AddHeader(name, EntryKind::Link, 0, 0777, link);
}

void ArchiveWriter::AddFile(const std::string& name, const std::filesystem::path& source,
                            std::uint64_t size, unsigned mode) {
    const Descriptor descriptor = OpenRegularFile(source);
    AddHeader(name, EntryKind::File, size, mode, "");
    std::array<char, 65536> buffer{};
    while (size > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, buffer.size()));
        const long got = ReadSome(descriptor.Number(), buffer.data(), wanted);
        if (got < 0) {
            throw CannotBe("read", source, static_cast<int>(-got));
        }
        if (got == 0) {
            throw ArchiveError(source.string() + " became shorter");
        }
        AddData({buffer.data(), static_cast<std::size_t>(got)});
        size -= static_cast<std::uint64_t>(got);
    }
}

void ArchiveWriter::Finish() {
    Require(archive_write_close(writer_.get()));
}

} // namespace patchkeeper::bundle
