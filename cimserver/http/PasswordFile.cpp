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

[[noreturn]] void FailWithError(const std::filesystem::path& file, int error) {
    Fail(file, std::generic_category().message(error));
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

struct Content {
    std::string text;
    struct stat status = {};
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
std::optional<Content> ReadAll(const std::filesystem::path& file) {
    const Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.IsOpen()) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        FailWithError(file, errno);
    }
    Content content;
    if (fstat(descriptor.Number(), &content.status) != 0) {
        FailWithError(file, errno);
    }
    CheckStatus(file, content.status);
    std::array<char, 4096> part{};
    ssize_t count = 0;
    while ((count = read(descriptor.Number(), part.data(), part.size())) > 0) {
        content.text.append(part.data(), static_cast<std::size_t>(count));
    }
    if (count < 0) {
        FailWithError(file, errno);
    }
    return content;
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
        throw CredentialError(place + ": expected `user:hash`");
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
        result += (isMine ? mine : line) + "\n";
    }
    return isThere ? result : result + mine + "\n";
}

bool WriteWhole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return fsync(descriptor) == 0;
}

/// Who runs this may be the administrator while the file belongs to the server's user.
bool GiveTo(int descriptor, const std::optional<Content>& before) {
    return !before || before->status.st_uid == geteuid() ||
           fchown(descriptor, before->status.st_uid, before->status.st_gid) == 0;
}

void Replace(const std::filesystem::path& file, const std::optional<Content>& before,
             const std::string& text) {
    std::string draft = file.string() + ".XXXXXX";
    const Descriptor descriptor(mkostemp(draft.data(), O_CLOEXEC));
    if (!descriptor.IsOpen()) {
        FailWithError(file, errno);
    }
    if (!GiveTo(descriptor.Number(), before) || !WriteWhole(descriptor.Number(), text) ||
        rename(draft.c_str(), file.c_str()) != 0) {
        const int error = errno;
        unlink(draft.c_str());
        FailWithError(file, error);
    }
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
    for (const std::string& line : LinesOf(content->text)) {
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
    // A link to the file stays one.
    std::error_code failed;
    const auto target = std::filesystem::weakly_canonical(std::filesystem::absolute(file), failed);
    if (failed) {
        Fail(file, failed.message());
    }
    const Descriptor directory(
        open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory.IsOpen() || flock(directory.Number(), LOCK_EX) != 0) {
        FailWithError(target.parent_path(), errno);
    }
    const auto before = ReadAll(target);
    Replace(target, before, Replaced(before ? before->text : "", user, hash));
    fsync(directory.Number());
}

} // namespace cimserver::http
