#include "cimserver/http/PasswordFile.hpp"

#include "cimserver/http/PasswordHash.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cimserver::http {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& why) {
    throw CredentialError(file.string() + ": " + why);
}

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }

private:
    int number_;
};

void CheckStatus(const std::filesystem::path& file, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        Fail(file, "is no regular file");
    }
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        Fail(file, "group or others have access to these passwords; chmod 600 " + file.string());
    }
}

/// Nothing when there is no such file.
std::optional<std::string> ReadAll(const std::filesystem::path& file) {
    const Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.IsOpen()) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        FailWithError(file, errno);
    }
    struct stat status = {};
    if (fstat(descriptor.Number(), &status) != 0) {
        FailWithError(file, errno);
    }
    CheckStatus(file, status);
    std::string text;
    std::array<char, 4096> part{};
    ssize_t count = 0;
    while ((count = read(descriptor.Number(), part.data(), part.size())) > 0) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    if (count < 0) {
        FailWithError(file, errno);
    }
    return text;
}

std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

void AddLine(PasswordTable& table, const std::string& line, const std::string& place) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos || !IsUserName(line.substr(0, colon))) {
        throw CredentialError(place + ": expected `user:hash`, as `cimserver passwd` writes it");
    }
    const std::string user = line.substr(0, colon);
    const std::string hash = line.substr(colon + 1);
    if (!IsHash(hash)) {
        throw CredentialError(place + ": no yescrypt hash stands behind `" + user +
                              "`; write it with `cimserver passwd`");
    }
    if (!table.emplace(user, hash).second) {
        throw CredentialError(place + ": `" + user + "` stands here twice");
    }
}

/// The text with the line of that user replaced or added.
std::string Replaced(const std::string& text, const std::string& user, const std::string& hash) {
    const std::string mine = user + ":" + hash;
    std::string result;
    bool isThere = false;
    for (const std::string& line : LinesOf(text)) {
        const bool isMine = line.starts_with(user + ":");
        isThere = isThere || isMine;
        result.append(isMine ? mine : line).append("\n");
    }
    return isThere ? result : result + mine + "\n";
}

} // namespace

PasswordTable ReadPasswordFile(const std::filesystem::path& file) {
    const auto content = ReadAll(file);
    if (!content) {
        Fail(file, "there is no such file; make it with `cimserver passwd USER --file " +
                       file.string() + "`");
    }
    PasswordTable table;
    unsigned number = 0;
    for (const std::string& line : LinesOf(*content)) {
        ++number;
        if (!line.empty()) {
            AddLine(table, line, file.string() + ":" + std::to_string(number));
        }
    }
    return table;
}

bool IsUserName(const std::string& name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), [](char c) {
        return c == ':' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
    });
}

void SetPassword(const std::filesystem::path& file, const std::string& user,
                 const std::string& hash) {
    const auto folder = std::filesystem::absolute(file).parent_path();
    const Descriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory.IsOpen() || flock(directory.Number(), LOCK_EX) != 0) {
        FailWithError(folder, errno);
    }
    const std::string before = ReadAll(file).value_or("");
    ReplaceFile(file, Replaced(before, user, hash), S_IRUSR | S_IWUSR);
    fsync(directory.Number());
}

} // namespace cimserver::http
