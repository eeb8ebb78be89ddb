#include "patchkeeper/bundle/Files.hpp"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace patchkeeper::bundle {

namespace {

constexpr std::size_t longestQuote = 200;

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::string_view CutForQuote(std::string_view text) {
    if (text.size() <= longestQuote) {
        return text;
    }
    std::size_t length = longestQuote;
    while (length > 0 && IsContinuationByte(text[length])) {
        --length;
    }
    return text.substr(0, length);
}

} // namespace

std::string SystemReason(int error) {
    return std::generic_category().message(error);
}

std::string Quoted(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::string_view shown = CutForQuote(text);
    std::string quoted = "'";
    for (const char letter : shown) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F) {
            quoted += "\\x";
            quoted += digits[code >> 4U];
            quoted += digits[code & 0xFU];
        } else {
            quoted += letter;
        }
    }
    return quoted + (shown.size() < text.size() ? "...'" : "'");
}

Failure CannotBe(const std::string& done, const std::filesystem::path& file, int error,
                 ExitCode code) {
    return {code, file.string() + " cannot be " + done + ": " + SystemReason(error)};
}

Descriptor OpenRegularFile(const std::filesystem::path& file, ExitCode code) {
    Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (descriptor.Number() < 0) {
        throw CannotBe("read", file, errno, code);
    }
    struct stat status {};
    if (fstat(descriptor.Number(), &status) != 0) {
        throw CannotBe("read", file, errno, code);
    }
    if (!S_ISREG(status.st_mode)) {
        throw Failure(code, file.string() + " cannot be read: it is not a file");
    }
    return descriptor;
}

long ReadSome(int descriptor, char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t got = read(descriptor, buffer, size);
        if (got >= 0) {
            return got;
        }
        if (errno != EINTR) {
            return -errno;
        }
    }
}

std::string ReadSmallFile(const std::filesystem::path& file, std::uint64_t limit) {
    const Descriptor descriptor = OpenRegularFile(file);
    std::string text;
    std::array<char, 65536> buffer{};
    for (;;) {
        const long got = ReadSome(descriptor.Number(), buffer.data(), buffer.size());
        if (got < 0) {
            throw CannotBe("read", file, static_cast<int>(-got));
        }
        if (got == 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(got));
        if (text.size() > limit) {
            throw Failure(ExitCode::SoftwareUpdateFailed,
                          file.string() + " has more than " + std::to_string(limit) + " bytes");
        }
    }
}

int WriteAll(int descriptor, std::string_view data) {
    while (!data.empty()) {
        const ssize_t written = write(descriptor, data.data(), data.size());
        if (written >= 0) {
            data.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace patchkeeper::bundle
