#pragma once

#include <string_view>

namespace patchkeeper {

// Whether a file of a directory counts as a bundle, by its name.
inline bool IsBundleName(std::string_view name) {
    constexpr std::string_view suffix = ".tar.gz";
    return name.size() > suffix.size() && name.ends_with(suffix);
}

} // namespace patchkeeper
