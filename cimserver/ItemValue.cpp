#include "cimserver/ItemValue.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <strings.h>
#include <system_error>

namespace cimserver {

namespace {

std::vector<std::string> Split(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    while (true) {
        const auto begin = text.find_first_not_of(separators);
        if (begin == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(begin);
        const auto end = std::min(text.find_first_of(separators), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

/// `fatal, error, info or debug`
std::string Listed(const std::vector<std::string_view>& words) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i != 0) {
            list += i + 1 == words.size() ? " or " : ", ";
        }
        list += words[i];
    }
    return list;
}

} // namespace

void ItemValue::Refuse(const std::string& why) const {
    const std::string place = item_ == nullptr ? std::string() : item_->origin + ": ";
    throw ConfigurationError(place + name_ + " = " + text_ + ": " + why);
}

std::int64_t ItemValue::Number(std::int64_t least, std::int64_t most) const {
    std::int64_t number = 0;
    const char* end = text_.data() + text_.size();
    const auto [stop, error] = std::from_chars(text_.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) {
        Refuse("expected a whole number from " + std::to_string(least) + " to " +
               std::to_string(most));
    }
    return number;
}

bool ItemValue::Flag() const {
    return Choice({"true", "false"}) == 0;
}

std::size_t ItemValue::Choice(const std::vector<std::string_view>& words) const {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (EqualsIgnoringCase(text_, words[i])) {
            return i;
        }
    }
    Refuse("expected " + Listed(words));
}

std::vector<std::string> ItemValue::Words() const {
    return Split(text_, " \t");
}

std::vector<std::filesystem::path> ItemValue::Paths() const {
    std::vector<std::filesystem::path> paths;
    for (const auto& part : Split(text_, ":;")) {
        paths.emplace_back(std::filesystem::absolute(part));
    }
    return paths;
}

std::vector<std::filesystem::path> ItemValue::Directories() const {
    auto directories = Paths();
    for (const auto& directory : directories) {
        std::error_code ignored;
        if (!std::filesystem::is_directory(directory, ignored)) {
            Refuse("there is no directory " + directory.string() + "; name one that is there");
        }
    }
    return directories;
}

std::vector<std::filesystem::path> ItemValue::Files() const {
    auto files = Paths();
    for (const auto& file : files) {
        std::error_code error;
        if (!std::filesystem::exists(file, error)) {
            Refuse("there is no file " + file.string() + "; name one that is there");
        }
    }
    return files;
}

} // namespace cimserver
