#include "patchkeeper/network/Links.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace patchkeeper {

namespace {

constexpr std::string_view blanks = " \t\r\n\f";

// The ones that occur in URLs.
constexpr auto references = std::to_array<std::pair<std::string_view, char>>({
    {"&amp;", '&'},
    {"&#38;", '&'},
    {"&#x26;", '&'},
    {"&quot;", '"'},
    {"&#34;", '"'},
    {"&#39;", '\''},
    {"&apos;", '\''},
});

std::string WithoutReferences(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const auto found =
            std::find_if(references.begin(), references.end(),
                         [&](const auto& reference) { return text.starts_with(reference.first); });
        plain += found == references.end() ? text.front() : found->second;
        text.remove_prefix(found == references.end() ? 1 : found->first.size());
    }
    return plain;
}

void SkipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

// The value behind `href`, or nothing; takes off what it has read.
std::string_view TakeValue(std::string_view& text) {
    SkipBlanks(text);
    if (!text.starts_with('=')) {
        return {};
    }
    text.remove_prefix(1);
    SkipBlanks(text);
    const bool isQuoted = text.starts_with('"') || text.starts_with('\'');
    const std::string_view ends = isQuoted ? text.substr(0, 1) : std::string_view(" \t\r\n\f>");
    if (isQuoted) {
        text.remove_prefix(1);
    }
    const auto size = std::min(text.find_first_of(ends), text.size());
    const std::string_view value = text.substr(0, size);
    text.remove_prefix(size);
    return value;
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return lower;
}

} // namespace

std::vector<std::string> LinksOf(std::string_view page) {
    constexpr std::string_view attribute = "href";
    const std::string lower = LowerCase(page);
    std::vector<std::string> links;
    for (auto at = lower.find(attribute); at != std::string::npos;
         at = lower.find(attribute, at + attribute.size())) {
        const bool isWhole = at > 0 && blanks.find(page[at - 1]) != std::string_view::npos;
        std::string_view rest = page.substr(at + attribute.size());
        const std::string_view value = isWhole ? TakeValue(rest) : std::string_view();
        if (!value.empty()) {
            links.push_back(WithoutReferences(value));
        }
    }
    return links;
}

} // namespace patchkeeper
