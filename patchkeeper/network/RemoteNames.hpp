#pragma once

#include <string>

namespace patchkeeper {

// The last part of a URL's path as a person writes it; of a URL that ends in a slash, the URL.
std::string RemoteName(const std::string& url);

// Whether the path of a URL ends as bundles are called.
bool IsBundleUrl(const std::string& url);

} // namespace patchkeeper
