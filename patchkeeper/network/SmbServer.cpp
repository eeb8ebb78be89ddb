#include "patchkeeper/network/SmbServer.hpp"

#include <cerrno>
#include <cstdio>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "patchkeeper/BundleName.hpp"
#include "patchkeeper/network/RemoteNames.hpp"

namespace patchkeeper {

namespace {

constexpr std::size_t pieceSize = 256U << 10U;

std::string MeaningOf(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
        return "the user name or the password is not accepted, or the server does not allow it";
    case ENOENT:
    case ENOTDIR:
    case ENODEV: // no such share
        return "there is nothing on the server";
    default:
        return std::generic_category().message(error);
    }
}

template <typename Failure>
[[noreturn]] void ThrowFailed(const std::string& url, int error) {
    throw Failure(url + " cannot be fetched: " + MeaningOf(error));
}

// An open file or directory of the server.
class Handle {
public:
    Handle(SMBCCTX* context, SMBCFILE* file, smbc_close_fn close)
        : context_(context), file_(file), close_(close) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (file_ != nullptr) {
            close_(context_, file_);
        }
    }

    SMBCFILE* File() const { return file_; }

private:
    SMBCCTX* context_;
    SMBCFILE* file_;
    smbc_close_fn close_;
};

void Put(const std::string& text, char* place, int size) {
    std::snprintf(place, static_cast<std::size_t>(size), "%s", text.c_str());
}

} // namespace

SmbServer::SmbServer(const Place& place, const TransferSettings& settings)
    : place_(place), context_(smbc_new_context()) {
    SMBCCTX* context = context_.get();
    if (context == nullptr) {
        throw TransferFailed("libsmbclient cannot be used");
    }
    // What it would print itself comes between the records of the program.
    smbc_setLogCallback(context, nullptr, [](void*, int, const char*) {});
    smbc_setDebug(context, 0);
    smbc_setOptionUserData(context, &place_);
    smbc_setFunctionAuthDataWithContext(context, Answer);
    smbc_setOptionUseKerberos(context, 0);
    smbc_setOptionNoAutoAnonymousLogin(context, 1);
    smbc_setTimeout(context,
                    static_cast<int>(std::chrono::milliseconds(settings.stallTimeout).count()));
    if (smbc_init_context(context) == nullptr) {
        throw TransferFailed("libsmbclient cannot be used: " +
                             std::generic_category().message(errno));
    }
}

// A user may stand behind a domain: DOMAIN\USER.
void SmbServer::Answer(SMBCCTX* context, const char*, const char*, char* workgroup,
                       int workgroupSize, char* user, int userSize, char* password,
                       int passwordSize) {
    const auto& credentials =
        static_cast<const Place*>(smbc_getOptionUserData(context))->credentials;
    const auto backslash = credentials.user.find('\\');
    if (backslash != std::string::npos) {
        Put(credentials.user.substr(0, backslash), workgroup, workgroupSize);
    }
    Put(credentials.user.substr(backslash == std::string::npos ? 0 : backslash + 1), user,
        userSize);
    Put(credentials.password, password, passwordSize);
}

RemoteFile SmbServer::FileAt(const std::string& url, bool& isDirectory) {
    struct stat status {};
    if (smbc_getFunctionStat(context_.get())(context_.get(), url.c_str(), &status) != 0) {
        ThrowFailed<TransferFailed>(url, errno);
    }
    isDirectory = S_ISDIR(status.st_mode);
    const auto size = static_cast<std::uint64_t>(status.st_size);
    return {url, RemoteName(url), size,
            std::to_string(status.st_mtim.tv_sec) + '.' + std::to_string(status.st_mtim.tv_nsec) +
                ", " + std::to_string(size)};
}

Server::Found SmbServer::Find() {
    bool isDirectory = false;
    RemoteFile file = FileAt(place_.url, isDirectory);
    return isDirectory ? Found{true, FilesIn(place_.url)} : Found{false, {std::move(file)}};
}

std::vector<RemoteFile> SmbServer::FilesIn(const std::string& directory) {
    SMBCCTX* context = context_.get();
    std::set<std::string> names;
    {
        const Handle handle(context, smbc_getFunctionOpendir(context)(context, directory.c_str()),
                            smbc_getFunctionClosedir(context));
        if (handle.File() == nullptr) {
            ThrowFailed<TransferFailed>(directory, errno);
        }
        const auto next = smbc_getFunctionReaddir(context);
        while (const smbc_dirent* entry = next(context, handle.File())) {
            if (entry->smbc_type == SMBC_FILE && IsBundleName(entry->name)) {
                names.insert(entry->name);
            }
        }
    }
    std::vector<RemoteFile> files;
    for (const auto& name : names) {
        bool ignored = false;
        files.push_back(FileAt(
            directory + (directory.ends_with('/') ? "" : "/") + WithPercents(name, ""), ignored));
    }
    return files;
}

void SmbServer::Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) {
    SMBCCTX* context = context_.get();
    bool ignored = false;
    const RemoteFile now = FileAt(file.url, ignored);
    const Handle handle(context,
                        smbc_getFunctionOpen(context)(context, file.url.c_str(), O_RDONLY, 0),
                        smbc_getFunctionClose(context));
    if (handle.File() == nullptr) {
        ThrowFailed<FileFailed>(file.url, errno);
    }
    std::uint64_t done = now.version == file.version && from < now.size ? from : 0;
    if (done > 0 && smbc_getFunctionLseek(context)(context, handle.File(), static_cast<off_t>(done),
                                                   SEEK_SET) < 0) {
        ThrowFailed<FileFailed>(file.url, errno);
    }
    receiver.Begin(done, now);
    const auto read = smbc_getFunctionRead(context);
    std::vector<char> piece(pieceSize);
    for (;;) {
        const ssize_t got = read(context, handle.File(), piece.data(), piece.size());
        if (got < 0) {
            ThrowFailed<TransferFailed>(file.url, errno);
        }
        if (got == 0) {
            break;
        }
        receiver.Take({piece.data(), static_cast<std::size_t>(got)});
        done += static_cast<std::uint64_t>(got);
    }
    if (done != now.size) {
        throw TransferFailed(file.url + " cannot be fetched: it ends after " +
                             std::to_string(done) + " of " + std::to_string(now.size) + " bytes");
    }
}

} // namespace patchkeeper
