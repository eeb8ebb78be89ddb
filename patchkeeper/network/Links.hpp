#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace patchkeeper {

// What the links of an HTML page lead to, as it stands there but with character references
// replaced: the values of all href attributes, in their order.
std::vector<std::string> LinksOf(std::string_view page);

} // namespace patchkeeper
