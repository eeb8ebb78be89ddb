#include "patchkeeper/network/HttpServer.hpp"

#include <charconv>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "patchkeeper/network/Links.hpp"
#include "patchkeeper/network/RemoteNames.hpp"

namespace patchkeeper {

namespace {

constexpr std::size_t largestPage = 1U << 20U; // bytes

enum Status : long {
    ok = 200,
    partialContent = 206,
    unauthorized = 401,
    forbidden = 403,
    notFound = 404,
    notAllowed = 405,
    rangeNotSatisfiable = 416,
    notImplemented = 501
};

std::string MeaningOf(long status) {
    switch (status) {
    case unauthorized:
        return "the user name or the password is not accepted";
    case forbidden:
        return "the server does not allow it";
    case notFound:
        return "there is nothing on the server";
    default:
        return "the server answers with status " + std::to_string(status);
    }
}

FileFailed CannotFetch(const std::string& url, const std::string& reason) {
    return FileFailed(url + " cannot be fetched: " + reason);
}

// What did not reach the end says nothing of other files; a status does.
void RefuseFailed(const std::string& url, const Transfer::Ended& ended) {
    if (ended.code != CURLE_OK) {
        throw TransferFailed(url + " cannot be fetched: " + ended.reason);
    }
}

bool IsPage(const Answer& answer) {
    return answer.Header("content-type").starts_with("text/html");
}

// What may be given back to the server to get the rest of the same content (RFC 9110, 13.1.5).
std::string TaggedVersion(const Answer& answer) {
    const std::string tag = answer.Header("etag");
    if (tag.empty()) {
        return answer.Header("last-modified");
    }
    return tag.starts_with('"') ? tag : ""; // a weak one (W/) is not about every byte
}

RemoteFile FileOf(const std::string& url, const Answer& answer) {
    return {url, RemoteName(url), answer.Length(), TaggedVersion(answer)};
}

// The first byte of an answer that holds a part: "bytes 100-199/200".
std::optional<std::uint64_t> PositionOf(const Answer& answer) {
    constexpr std::string_view unit = "bytes ";
    const std::string range = answer.Header("content-range");
    std::uint64_t position = 0;
    if (!range.starts_with(unit) ||
        std::from_chars(range.data() + unit.size(), range.data() + range.size(), position).ec !=
            std::errc()) {
        return std::nullopt;
    }
    return position;
}

std::string OriginOf(const std::string& url) {
    const auto host = url.find("://") + 3;
    return url.substr(0, url.find_first_of("/?#", host));
}

// Hands the body of one answer to a receiver.
class Delivery {
public:
    Delivery(RemoteFile file, Receiver& receiver) : file_(std::move(file)), receiver_(receiver) {}

    void Take(const Answer& answer, std::string_view bytes) {
        if (answer.status != ok && answer.status != partialContent) {
            return; // a page that tells of the failure
        }
        if (!hasBegun_) {
            Begin(answer);
        }
        receiver_.Take(bytes);
    }
    // An answer without a body begins too.
    void End(const Answer& answer) {
        if (!hasBegun_) {
            Begin(answer);
        }
    }

private:
    void Begin(const Answer& answer) {
        hasBegun_ = true;
        if (answer.status == ok) {
            receiver_.Begin(0, FileOf(file_.url, answer));
            return;
        }
        const auto position = PositionOf(answer);
        if (!position) {
            throw CannotFetch(file_.url, "the server does not say which part it sends");
        }
        receiver_.Begin(*position, file_);
    }

    RemoteFile file_;
    Receiver& receiver_;
    bool hasBegun_ = false;
};

} // namespace

HttpServer::HttpServer(const Place& place, const TransferSettings& settings)
    : transfer_(place, settings), url_(place.url) {
}

RemoteFile HttpServer::Ask(const std::string& url, Answer& answer) {
    Transfer::Request request;
    request.url = url;
    request.onlyHead = true;
    Transfer::Ended ended = transfer_.Perform(request, [](const Answer&, std::string_view) {});
    RefuseFailed(url, ended);
    answer = std::move(ended.answer);
    if (answer.status == notAllowed || answer.status == notImplemented) {
        return {url, RemoteName(url), 0, ""}; // the server answers no such questions
    }
    if (answer.status != ok) {
        throw CannotFetch(url, MeaningOf(answer.status));
    }
    return FileOf(url, answer);
}

Server::Found HttpServer::Find() {
    Answer answer;
    const RemoteFile file = Ask(url_, answer);
    const bool isPage = answer.status == ok ? IsPage(answer) : url_.ends_with('/');
    return isPage ? Found{true, FilesOnPage(answer.url)} : Found{false, {file}};
}

std::vector<RemoteFile> HttpServer::FilesOnPage(const std::string& url) {
    std::string page;
    Transfer::Request request;
    request.url = url;
    const auto ended = transfer_.Perform(request, [&](const Answer&, std::string_view bytes) {
        page += bytes;
        if (page.size() > largestPage) {
            throw TransferFailed(url + " is a page of more than " + std::to_string(largestPage) +
                                 " bytes");
        }
    });
    RefuseFailed(url, ended);
    if (ended.answer.status != ok) {
        throw CannotFetch(url, MeaningOf(ended.answer.status));
    }
    std::set<std::string> urls;
    for (const auto& link : LinksOf(page)) {
        const std::string whole = Transfer::Resolve(ended.answer.url, link);
        if (IsBundleUrl(whole) && OriginOf(whole) == OriginOf(ended.answer.url)) {
            urls.insert(whole);
        }
    }
    std::vector<RemoteFile> files;
    for (const auto& one : urls) {
        try {
            Answer ignored;
            files.push_back(Ask(one, ignored));
        } catch (const FileFailed&) {
            files.push_back({one, RemoteName(one), 0, ""}); // refused when it is its turn
        }
    }
    return files;
}

void HttpServer::Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) {
    Transfer::Request request;
    request.url = file.url;
    if (from > 0) {
        request.headers = {"Range: bytes=" + std::to_string(from) + '-',
                           "If-Range: " + file.version};
    }
    Delivery delivery(file, receiver);
    const auto ended =
        transfer_.Perform(request, [&](const Answer& answer, std::string_view bytes) {
            delivery.Take(answer, bytes);
        });
    RefuseFailed(file.url, ended);
    if (ended.answer.status == rangeNotSatisfiable && from > 0) {
        Read(file, 0, receiver); // shorter than it was
        return;
    }
    if (ended.answer.status != ok && ended.answer.status != partialContent) {
        throw CannotFetch(file.url, MeaningOf(ended.answer.status));
    }
    delivery.End(ended.answer);
}

} // namespace patchkeeper
