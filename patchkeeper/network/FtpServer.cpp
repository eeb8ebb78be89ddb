#include "patchkeeper/network/FtpServer.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "patchkeeper/BundleName.hpp"
#include "patchkeeper/network/RemoteNames.hpp"

namespace patchkeeper {

namespace {

constexpr std::size_t largestList = 1U << 20U; // bytes

// The server refuses just this path.
bool IsAboutPath(CURLcode code) {
    return code == CURLE_REMOTE_FILE_NOT_FOUND || code == CURLE_REMOTE_ACCESS_DENIED ||
           code == CURLE_FTP_COULDNT_RETR_FILE;
}

[[noreturn]] void ThrowFailed(const std::string& url, const Transfer::Ended& ended) {
    if (IsAboutPath(ended.code)) {
        throw FileFailed(url + " cannot be fetched: there is nothing on the server, or it does "
                               "not allow it");
    }
    throw TransferFailed(url + " cannot be fetched: " + ended.reason);
}

// Only with the date: files of the same size are not the same.
std::string DatedVersion(const Answer& answer) {
    const std::string date = answer.Header("last-modified");
    return date.empty() ? "" : date + ", " + answer.Header("content-length");
}

std::set<std::string> NamesIn(const std::string& list) {
    std::set<std::string> names;
    for (std::size_t begin = 0; begin < list.size();) {
        const auto end = std::min(list.find('\n', begin), list.size());
        std::string name = list.substr(begin, end - begin);
        if (name.ends_with('\r')) {
            name.pop_back();
        }
        name.erase(0, name.rfind('/') + 1); // some servers list whole paths
        if (IsBundleName(name)) {
            names.insert(name);
        }
        begin = end + 1;
    }
    return names;
}

} // namespace

FtpServer::FtpServer(const Place& place, const TransferSettings& settings)
    : transfer_(place, settings), url_(place.url) {
}

RemoteFile FtpServer::Ask(const std::string& url, Transfer::Ended& ended) {
    Transfer::Request request;
    request.url = url;
    request.onlyHead = true;
    ended = transfer_.Perform(request, [](const Answer&, std::string_view) {});
    return {url, RemoteName(url), ended.answer.Length(), DatedVersion(ended.answer)};
}

Server::Found FtpServer::Find() {
    if (!url_.ends_with('/')) {
        Transfer::Ended ended;
        const RemoteFile file = Ask(url_, ended);
        if (ended.code == CURLE_OK && (file.size > 0 || !file.version.empty())) {
            return {false, {file}};
        }
        if (ended.code != CURLE_OK && !IsAboutPath(ended.code)) {
            ThrowFailed(url_, ended);
        }
    }
    return {true, FilesIn(url_.ends_with('/') ? url_ : url_ + '/')};
}

std::vector<RemoteFile> FtpServer::FilesIn(const std::string& directory) {
    std::string list;
    Transfer::Request request;
    request.url = directory;
    request.names = true;
    const auto ended = transfer_.Perform(request, [&](const Answer&, std::string_view bytes) {
        list += bytes;
        if (list.size() > largestList) {
            throw TransferFailed("the list of " + directory + " has more than " +
                                 std::to_string(largestList) + " bytes");
        }
    });
    if (ended.code != CURLE_OK) {
        ThrowFailed(url_, ended);
    }
    std::vector<RemoteFile> files;
    for (const auto& name : NamesIn(list)) {
        Transfer::Ended asked;
        RemoteFile file = Ask(directory + WithPercents(name, ""), asked);
        if (asked.code != CURLE_OK && !IsAboutPath(asked.code)) {
            ThrowFailed(file.url, asked);
        }
        files.push_back(std::move(file));
    }
    return files;
}

// The file may have changed since it was found: so its date is asked for again.
void FtpServer::Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) {
    Transfer::Ended asked;
    const RemoteFile now = Ask(file.url, asked);
    if (asked.code != CURLE_OK && !IsAboutPath(asked.code)) {
        ThrowFailed(file.url, asked);
    }
    const bool canContinue = !now.version.empty() && now.version == file.version && from < now.size;
    Transfer::Request request;
    request.url = file.url;
    request.ftpPosition = canContinue ? from : 0;
    bool hasBegun = false;
    const auto begin = [&] {
        if (!hasBegun) {
            hasBegun = true;
            receiver.Begin(request.ftpPosition, now);
        }
    };
    const auto ended = transfer_.Perform(request, [&](const Answer&, std::string_view bytes) {
        begin();
        receiver.Take(bytes);
    });
    if (ended.code != CURLE_OK) {
        ThrowFailed(file.url, ended);
    }
    begin();
}

} // namespace patchkeeper
