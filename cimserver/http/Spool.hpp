// A file without a name that keeps what does not fit into memory; gone with the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cimserver::http {

/// $TMPDIR, or /tmp where that is not set.
std::string TemporaryDirectory();

/// Opened by the first write, close-on-exec. One thread may write while another reads elsewhere.
class Spool {
public:
    explicit Spool(std::string directory);
    ~Spool();
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    /// Throws std::runtime_error that names the directory and the reason.
    void WriteAt(std::uint64_t position, std::string_view bytes);
    /// At most `room` bytes that were written; throws std::runtime_error when the file is
    /// unreadable or shorter.
    std::size_t ReadAt(std::uint64_t position, char* target, std::size_t room) const;
    /// Gives the room on the disk back.
    void Empty() noexcept;

private:
    [[noreturn]] void Fail(const char* what, int error) const;
    void Open();

    std::string directory_;
    int descriptor_ = -1;
};

} // namespace cimserver::http
