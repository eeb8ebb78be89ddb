// An HTTPS client with another TLS library than the server's. It believes any certificate until
// told otherwise through Handle.
#pragma once

#include <cstdint>
#include <string>

#include <curl/curl.h>

namespace test_support {

struct TlsOutcome {
    CURLcode code = CURLE_OK;
    long status = 0;
    std::string body;
    std::string certificate; ///< of the server, as lines of text
    long connections = 0;    ///< made for this request
};

/// One client of 127.0.0.1 with one connection that it keeps; one thread at a time.
class TlsClient {
public:
    explicit TlsClient(std::uint16_t port);
    ~TlsClient();
    TlsClient(const TlsClient&) = delete;
    TlsClient& operator=(const TlsClient&) = delete;

    CURL* Handle() { return curl_; }
    TlsOutcome Post(const std::string& body);

private:
    CURL* curl_;
};

} // namespace test_support
