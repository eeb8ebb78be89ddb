#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <curl/curl.h>

#include "patchkeeper/network/Server.hpp"

namespace patchkeeper {

// What a server answered. Of several answers, after a redirect, it is the last one.
struct Answer {
    long status = 0;                            // of HTTP; 0 for FTP
    std::string url;                            // where it came from
    std::map<std::string, std::string> headers; // names in lower case; FTP's size and date too

    // "" when it is not there.
    std::string Header(const std::string& name) const;
    // The Content-Length; 0 when it is not there.
    std::uint64_t Length() const;
};

// Talks FTP, HTTP or HTTPS with one server, through libcurl: a connection that stays open from one
// request to the next, credentials for that server only, redirects only within the protocol and not
// many, certificates checked, both time-outs; no proxy, no file of the user's with passwords.
class Transfer {
public:
    Transfer(const Place& place, const TransferSettings& settings);

    struct Request {
        std::string url;
        bool onlyHead = false;            // HEAD, or size and date of an FTP file
        bool names = false;               // of an FTP directory
        std::vector<std::string> headers; // whole lines
        std::uint64_t ftpPosition = 0;    // where to begin in an FTP file
    };
    // Is given every piece of the body, with what is known of the answer by then.
    using Body = std::function<void(const Answer& answer, std::string_view bytes)>;

    // What the transfer ended with; `answer` tells how far it came.
    struct Ended {
        CURLcode code = CURLE_OK;
        std::string reason; // "" after CURLE_OK
        Answer answer;
    };
    // What `body` throws passes through. HTTP statuses are no failures here.
    Ended Perform(const Request& request, const Body& body);

    // The absolute URL to which a link on the page of that URL leads; "" when it leads nowhere.
    static std::string Resolve(const std::string& page, const std::string& link);

private:
    struct Close {
        void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    };

    void SetUp(const Place& place, const TransferSettings& settings);

    std::unique_ptr<CURL, Close> handle_;
    std::string protocol_; // as libcurl calls it
};

} // namespace patchkeeper
