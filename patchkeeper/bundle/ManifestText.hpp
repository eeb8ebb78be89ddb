#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper::bundle {

// A manifest that breaks the format; what() says how, without a full stop.
class ManifestError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class ManifestForm {
    Bundle, // as it stands in a bundle: whole
    Source, // as an author writes it: `format`, `size`, `files` and `components` may be missing,
            // and what `size` and `files` say does not count
};

// Reads manifest.json. Takes JSON (RFC 8259) without doubled or unknown names only. Throws
// ManifestError.
Manifest ParseManifest(std::string_view text, ManifestForm form);

// Writes manifest.json, in the order of README.md.
std::string ManifestText(const Manifest& manifest);

// Fills in `path` and `component` of a file from `entry`.
void SplitEntry(BundleFile& file);

// Why the texts of a file cannot stand in a manifest (white space, length, no UTF-8), or "".
std::string EntryTextFault(std::string_view text);

} // namespace patchkeeper::bundle
