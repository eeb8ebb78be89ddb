#include "patchkeeper/Classification.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace patchkeeper {

namespace {

constexpr std::string_view operatingSystem = "Operating System";
constexpr std::string_view configuration = "Configuration Software";
constexpr std::string_view application = "Application Software";
constexpr std::string_view diagnostic = "Diagnostic Software";
constexpr std::string_view middleware = "Middleware";
constexpr std::string_view firmware = "Firmware";

using Row = std::pair<std::string_view, std::string_view>;

constexpr auto sections = std::to_array<Row>({
    {"admin", configuration},    {"cli-mono", middleware},     {"comm", application},
    {"database", middleware},    {"debug", diagnostic},        {"devel", application},
    {"editors", application},    {"education", application},   {"electronics", application},
    {"embedded", application},   {"games", application},       {"gnome", application},
    {"gnu-r", middleware},       {"gnustep", application},     {"golang", middleware},
    {"graphics", application},   {"hamradio", application},    {"haskell", middleware},
    {"httpd", middleware},       {"interpreters", middleware}, {"introspection", middleware},
    {"java", middleware},        {"javascript", middleware},   {"kde", application},
    {"kernel", operatingSystem}, {"libdevel", middleware},     {"libs", middleware},
    {"lisp", middleware},        {"mail", application},        {"math", application},
    {"net", application},        {"news", application},        {"ocaml", middleware},
    {"oldlibs", middleware},     {"otherosfs", application},   {"perl", middleware},
    {"php", middleware},         {"python", middleware},       {"raku", middleware},
    {"ruby", middleware},        {"rust", middleware},         {"science", application},
    {"shells", operatingSystem}, {"sound", application},       {"tex", application},
    {"text", application},       {"utils", application},       {"vcs", application},
    {"video", application},      {"web", application},         {"x11", application},
    {"xfce", application},       {"zope", middleware},
});
static_assert(std::is_sorted(sections.begin(), sections.end()), "the rows are searched by halving");

} // namespace

std::string_view Classification(std::string_view section) noexcept {
    const auto slash = section.find('/');
    if (slash != std::string_view::npos) {
        if (section.substr(0, slash) == "non-free-firmware") {
            return firmware;
        }
        section.remove_prefix(slash + 1);
    }
    const auto row = std::lower_bound(
        sections.begin(), sections.end(), section,
        [](const auto& entry, std::string_view wanted) { return entry.first < wanted; });
    return row != sections.end() && row->first == section ? row->second : "Other";
}

} // namespace patchkeeper
