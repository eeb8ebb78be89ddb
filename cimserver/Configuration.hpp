// The server's configuration items: read from a file of `name = value` lines, overridden by the
// command line, asked for by the server and by providers. Filled at start, then read by any thread.
//
// The rules of the file are OpenWBEM's, so that one file serves either server: one item per line; a
// line that begins with # or ; is a comment; names are case-sensitive; blanks around name and value
// do not count; an item without value counts as absent; the first occurrence of a name wins.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cimserver {

/// A mistake in the configuration; the text says where it stands and what to do.
class ConfigurationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Configuration {
public:
    struct Item {
        std::string value;
        std::string origin; ///< `FILE:LINE`, or what put it there: `--listen`
    };

    /// Adds the items of a file. Throws ConfigurationError: `FILE: why it cannot be read` or
    /// `FILE:LINE: what is wrong`.
    void AddFile(const std::filesystem::path& file);
    /// The same for a text; `name` stands for the file in errors and origins.
    void AddText(std::string_view text, const std::string& name);
    /// Sets an item whatever a file says. An empty value makes it absent.
    void Override(const std::string& name, const std::string& value, const std::string& origin);

    /// Null when absent.
    const Item* Find(const std::string& name) const;
    std::string Get(const std::string& name, const std::string& fallback) const;

private:
    void AddLine(std::string_view line, const std::string& origin);

    std::map<std::string, Item, std::less<>> items_;
};

} // namespace cimserver
