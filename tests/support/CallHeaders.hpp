// The headers by which a client repeats what its request's body calls (DMTF DSP0200, 6.3).
#pragma once

#include "support/CimClient.hpp"

#include <string>
#include <string_view>

namespace test_support {

/// CIMMethod and CIMObject of an operation request; none of them when the body is no XML or calls
/// nothing.
HeaderList CallHeaders(std::string_view body);

/// With all but letters, digits, `-`, `.`, `_` and `~` as `%` and two hexadecimal digits.
std::string PercentEncoded(std::string_view text);

} // namespace test_support
