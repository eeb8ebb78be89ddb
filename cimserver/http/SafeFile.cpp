#include "cimserver/http/SafeFile.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cimserver::http {

namespace {

/// A new file beside another, gone again unless it takes its place.
class Draft {
public:
    explicit Draft(const std::filesystem::path& target)
        : target_(target), name_(target.string() + ".XXXXXX"),
          descriptor_(mkostemp(name_.data(), O_CLOEXEC)) {
        if (descriptor_ < 0) {
            FailWithError(target_, errno);
        }
    }
    ~Draft() {
        close(descriptor_);
        if (!isInPlace_) {
            unlink(name_.c_str());
        }
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    void Write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t count = write(descriptor_, text.data(), text.size());
            if (count < 0 && errno != EINTR) {
                FailWithError(target_, errno);
            }
            text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    }
    /// Who runs this may be the administrator while the file belongs to the server's user.
    void TakeOwnerAndMode(mode_t mode) const {
        struct stat before = {};
        const bool isOthers = stat(target_.c_str(), &before) == 0 &&
                              (before.st_uid != geteuid() || before.st_gid != getegid());
        if ((isOthers && fchown(descriptor_, before.st_uid, before.st_gid) != 0) ||
            fchmod(descriptor_, mode) != 0) {
            FailWithError(target_, errno);
        }
    }
    void TakePlace() {
        if (fsync(descriptor_) != 0 || rename(name_.c_str(), target_.c_str()) != 0) {
            FailWithError(target_, errno);
        }
        isInPlace_ = true;
    }

private:
    const std::filesystem::path target_;
    std::string name_;
    const int descriptor_;
    bool isInPlace_ = false;
};

} // namespace

void FailWithError(const std::filesystem::path& file, int error) {
    const char* advice =
        error == EACCES ? "; look at the owner and the mode of it and of its folder" : "";
    throw CredentialError(file.string() + ": " + std::generic_category().message(error) + advice);
}

void ReplaceFile(const std::filesystem::path& file, const std::string& text, mode_t mode) {
    std::error_code failed;
    const auto target = std::filesystem::weakly_canonical(std::filesystem::absolute(file), failed);
    if (failed) {
        FailWithError(file, failed.value());
    }
    Draft draft(target);
    draft.TakeOwnerAndMode(mode);
    draft.Write(text);
    draft.TakePlace();
}

} // namespace cimserver::http
