#pragma once

#include <string_view>

namespace patchkeeper {

// Whether one version is older than another, by the order of Debian's versions without an epoch:
// runs of digits compare as numbers, letters stand before other characters, and `~` before
// everything, the end of the text included (1.0~rc1 is older than 1.0, 1.9 older than 1.10).
bool IsOlder(std::string_view version, std::string_view other) noexcept;

} // namespace patchkeeper
