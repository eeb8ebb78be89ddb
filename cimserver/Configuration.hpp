// The server's configuration items: read from a file of `name = value` lines, overridden by the
// command line, asked for by the server and by providers. Filled at start, then read by any thread.
//
// The rules of the file are OpenWBEM's, so that one file serves either server: one item per line; a
// line that begins with # or ; is a comment; names are case-sensitive; blanks around name and value
// do not count; an item without value counts as absent; the first occurrence of a name wins.
#pragma once

#include <filesystem>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver {

/// A mistake in the configuration; the text says where it stands and what to do.
class ConfigurationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Mistake {
    /// Of what is missing.
    static constexpr unsigned nowhere = std::numeric_limits<unsigned>::max();

    unsigned line = 0; ///< of the file; 0: on the command line
    std::string text;  ///< with the place
};

class Configuration {
public:
    struct Item {
        std::string value;
        std::string origin; ///< `FILE:LINE`, or what put it there: `--listen`
        unsigned line = 0;  ///< of the file; 0: on the command line
    };

    /// Adds the items of a file; lines that cannot be read become mistakes. Throws
    /// ConfigurationError: `FILE: why it cannot be read`.
    void AddFile(const std::filesystem::path& file);
    /// The same for a text; `name` stands for the file in mistakes and origins.
    void AddText(std::string_view text, const std::string& name);
    /// Sets an item whatever a file says. An empty value makes it absent.
    void Override(const std::string& name, const std::string& value, const std::string& origin);

    /// Null when absent.
    const Item* Find(const std::string& name) const;
    std::string Get(const std::string& name, const std::string& fallback) const;
    const std::map<std::string, Item, std::less<>>& All() const { return items_; }
    /// Of the lines: `FILE:LINE: what is wrong`.
    const std::vector<Mistake>& Mistakes() const { return mistakes_; }
    /// A line of text for each item that does not count because the file has it before.
    const std::vector<std::string>& Repetitions() const { return repetitions_; }

private:
    void AddLine(std::string_view line, unsigned number, const std::string& file);

    std::map<std::string, Item, std::less<>> items_;
    std::vector<Mistake> mistakes_;
    std::vector<std::string> repetitions_;
};

} // namespace cimserver
