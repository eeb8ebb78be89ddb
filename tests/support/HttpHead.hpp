// Reads HTTP answers, for the client and the proxy of the tests.
#pragma once

#include "support/CimClient.hpp"

#include <cstddef>
#include <optional>
#include <string_view>

namespace test_support {

struct HttpHead {
    std::size_t length = 0; ///< with the empty line that ends it
    bool isChunked = false;
    std::size_t bodyLength = 0; ///< of a body that is not chunked
    HttpAnswer answer;          ///< status and headers
};

/// Nothing while the empty line has not come; std::runtime_error when it is no HTTP answer or tells
/// neither its length nor chunks.
std::optional<HttpHead> ReadHead(std::string_view received);

struct ReceivedAnswer {
    std::size_t length = 0; ///< what it takes of the bytes received
    HttpAnswer answer;
};

/// Nothing while the answer is not complete; otherwise as ReadHead.
std::optional<ReceivedAnswer> ReadAnswer(std::string_view received);

} // namespace test_support
