#include "patchkeeper/Settings.hpp"

#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <limits>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>

#include <unistd.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view blanks = " \t\r";
constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t longestTimeout = 86'400; // seconds; a day

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::uint64_t> Number(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

// A number with an optional unit: K, M or G for 1024 to the first, second or third power.
std::optional<std::uint64_t> Bytes(std::string_view text) {
    unsigned shift = 0;
    if (!text.empty()) {
        const auto unit = std::string_view("KMG").find(text.back());
        if (unit != std::string_view::npos) {
            shift = 10 * (static_cast<unsigned>(unit) + 1);
            text.remove_suffix(1);
        }
    }
    const auto number = Number(text);
    if (!number || *number > (largest >> shift)) {
        return std::nullopt;
    }
    return *number << shift;
}

// Each of these puts a value in its place, or returns what is wrong with it.
using Fault = std::string;

Fault SetBytes(std::uint64_t& place, std::string_view value) {
    const auto bytes = Bytes(value);
    place = bytes.value_or(0);
    return bytes ? "" : "'" + std::string(value) + "' is not a number of bytes";
}

Fault SetSeconds(std::chrono::seconds& place, std::string_view value) {
    const auto seconds = Number(value);
    if (!seconds || *seconds == 0 || *seconds > longestTimeout) {
        return "'" + std::string(value) + "' is not a number of seconds from 1 to 86400";
    }
    place = std::chrono::seconds(*seconds);
    return "";
}

Fault SetFlag(bool& place, std::string_view value) {
    place = value == "true";
    return value == "true" || value == "false"
               ? ""
               : "'" + std::string(value) + "' is neither true nor false";
}

Fault SetPath(fs::path& place, std::string_view value, const fs::path& root) {
    place = root / value;
    return value.empty() ? "a path is missing" : "";
}

Fault SetPaths(std::vector<fs::path>& place, std::string_view value, const fs::path& root) {
    while (!value.empty()) {
        const auto comma = value.find(',');
        const auto path = Trim(value.substr(0, comma));
        if (path.empty()) {
            return "a path is missing";
        }
        place.push_back(root / path);
        value.remove_prefix(comma == std::string_view::npos ? value.size() : comma + 1);
    }
    return "";
}

Fault Set(Settings& settings, std::string_view item, std::string_view value, const fs::path& root) {
    if (item == "target") {
        return SetPath(settings.target, value, root);
    }
    if (item == "em_url") {
        settings.emUrl = value;
        return "";
    }
    if (item == "size_limit") {
        return SetBytes(settings.sizeLimit, value);
    }
    if (item == "lock_timeout") {
        return SetSeconds(settings.lockTimeout, value);
    }
    if (item == "connect_timeout") {
        return SetSeconds(settings.connectTimeout, value);
    }
    if (item == "transfer_timeout") {
        return SetSeconds(settings.transferTimeout, value);
    }
    if (item == "ca_file") {
        return SetPath(settings.authorities, value, root);
    }
    if (item == "apply_rate") {
        return SetBytes(settings.applyRate, value);
    }
    if (item == "trusted_keys") {
        return SetPaths(settings.trustedKeys, value, root);
    }
    if (item == "allow_unsigned") {
        return SetFlag(settings.allowUnsigned, value);
    }
    return "there is no such item";
}

std::string Contents(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    errno = 0;
    if (in && in.peek() != std::ifstream::traits_type::eof()) {
        text << in.rdbuf();
    }
    if (errno != 0) {
        throw StateProblem(file.string() +
                           " cannot be read: " + std::generic_category().message(errno));
    }
    return text.str();
}

std::string MistakeIn(Settings& settings, std::string_view line, std::set<std::string>& seen,
                      const fs::path& root) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) {
        return "'" + std::string(line) + "' is not of the form name = value";
    }
    const std::string item(Trim(line.substr(0, equals)));
    if (!seen.insert(item).second) {
        return item + ": it is set twice";
    }
    const Fault fault = Set(settings, item, Trim(line.substr(equals + 1)), root);
    return fault.empty() ? "" : item + ": " + fault;
}

} // namespace

Settings ReadSettings(const fs::path& file, const fs::path& root) {
    Settings settings;
    settings.target = root / "target";
    if (access(file.c_str(), F_OK) != 0 && errno == ENOENT) {
        return settings;
    }
    std::istringstream lines(Contents(file));
    std::set<std::string> seen;
    std::string mistakes;
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const auto text = Trim(line);
        if (text.empty() || text.front() == '#') {
            continue;
        }
        const std::string mistake = MistakeIn(settings, text, seen, root);
        if (!mistake.empty()) {
            mistakes += (mistakes.empty() ? "" : "; ") + file.string() + ':' +
                        std::to_string(number) + ": " + mistake;
        }
    }
    if (!mistakes.empty()) {
        throw StateProblem(mistakes);
    }
    return settings;
}

} // namespace patchkeeper
