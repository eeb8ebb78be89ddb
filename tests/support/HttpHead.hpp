// Reads the head of an HTTP answer, for the client and the proxy of the tests.
#pragma once

#include "support/CimClient.hpp"

#include <cstddef>
#include <optional>
#include <string_view>

namespace test_support {

struct HttpHead {
    std::size_t length = 0; ///< with the empty line that ends it
    std::size_t bodyLength = 0;
    HttpAnswer answer; ///< status and headers
};

/// Nothing while the empty line has not come; std::runtime_error when it is no HTTP answer or its
/// Content-Length is missing.
std::optional<HttpHead> ReadHead(std::string_view received);

} // namespace test_support
