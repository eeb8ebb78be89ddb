// What the tests of the HTTP service share.
#pragma once

#include "cimserver/http/Http.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace http_test {

using cimserver::http::Answer;
using cimserver::http::Request;

cimserver::http::Settings AnyPort();

/// A handler that answers with this text.
cimserver::http::Handler Text(std::string text);

/// A handler that answers with nothing.
void Nothing(const Request& request, Answer& answer);

/// Bytes that do not repeat soon, so that a mistaken order shows.
std::string Pattern(std::size_t size, std::uint32_t start = 0);

/// The head of a POST that offers to take trailers, without a body.
constexpr std::string_view streamedRequest =
    "POST / HTTP/1.1\r\nHost: h\r\nTE: trailers\r\nConnection: TE\r\nContent-Length: 0\r\n\r\n";

/// A directory of the test's own for the files of large answers, which TMPDIR names meanwhile.
class SpoolDirectory {
public:
    SpoolDirectory();
    ~SpoolDirectory();
    SpoolDirectory(const SpoolDirectory&) = delete;
    SpoolDirectory& operator=(const SpoolDirectory&) = delete;

    const std::string& Path() const { return path_; }
    bool IsEmpty() const;

private:
    std::string path_;
};

struct OpenFile {
    std::uint64_t size = 0;
    bool isCloseOnExec = false;
};

/// The one file below `directory` that this process has open; none, or the test fails for several.
std::optional<OpenFile> OpenFileIn(const std::string& directory);

} // namespace http_test
