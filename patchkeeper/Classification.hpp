#pragma once

#include <string_view>

namespace patchkeeper {

// What kind of software a package is, from its section in the package database ("libs",
// "contrib/net", "non-free-firmware/kernel"). The result is one of the texts that clients of the
// inventory know; README.md has the table. A section that the table lacks, or none, gives "Other".
std::string_view Classification(std::string_view section) noexcept;

} // namespace patchkeeper
