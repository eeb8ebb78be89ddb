#pragma once

#include <string>
#include <vector>

#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper::bundle {

// Whether the manifest declares more than is accepted; the sentence that says so, or "".
std::string LimitFault(const Manifest& manifest, const BundleLimits& limits);

// Why a name in an archive leads out of its folder or is no plain path, or "".
std::string PathFault(const std::string& path);

// What is wrong with a manifest by itself, without a look at the files: paths and links that leave
// their root, files that would be written through a link or over each other, odd modes, components
// that are not declared or empty, a size that is not the sum. When there is none, writing the files
// below an empty directory stays below it, and each link leads to a place below it.
std::vector<std::string> ManifestFaults(const Manifest& manifest);

} // namespace patchkeeper::bundle
