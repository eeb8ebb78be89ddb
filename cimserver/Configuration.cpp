#include "cimserver/Configuration.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace cimserver {

namespace {

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\v\f";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

void Configuration::AddFile(const std::filesystem::path& file) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "re"),
                                                                 &std::fclose);
    std::string text;
    if (stream != nullptr) {
        std::array<char, 4096> part{};
        while (const auto size = std::fread(part.data(), 1, part.size(), stream.get())) {
            text.append(part.data(), size);
        }
    }
    if (stream == nullptr || std::ferror(stream.get()) != 0) {
        throw ConfigurationError(file.string() + ": " + std::strerror(errno) +
                                 "; name a configuration file that can be read");
    }
    AddText(text, file.string());
}

void Configuration::AddText(std::string_view text, const std::string& name) {
    for (unsigned number = 1; !text.empty(); ++number) {
        const auto end = text.find('\n');
        AddLine(text.substr(0, end), number, name);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

void Configuration::AddLine(std::string_view line, unsigned number, const std::string& file) {
    if (line.starts_with('#') || line.starts_with(';') || Trimmed(line).empty()) {
        return;
    }
    const std::string origin = file + ":" + std::to_string(number);
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) {
        mistakes_.push_back({number, origin + ": expected `name = value`"});
        return;
    }
    const auto name = Trimmed(line.substr(0, equals));
    const auto value = Trimmed(line.substr(equals + 1));
    if (name.empty()) {
        mistakes_.push_back({number, origin + ": there is no name before the `=`"});
        return;
    }
    if (value.empty()) {
        return;
    }
    const auto [item, isNew] =
        items_.try_emplace(std::string(name), Item{std::string(value), origin, number});
    if (!isNew) {
        repetitions_.push_back(origin + ": " + item->first + ": does not count, it stands in " +
                               item->second.origin + " already");
    }
}

void Configuration::Override(const std::string& name, const std::string& value,
                             const std::string& origin) {
    if (value.empty()) {
        items_.erase(name);
    } else {
        items_.insert_or_assign(name, Item{value, origin, 0});
    }
}

const Configuration::Item* Configuration::Find(const std::string& name) const {
    const auto found = items_.find(name);
    return found == items_.end() ? nullptr : &found->second;
}

std::string Configuration::Get(const std::string& name, const std::string& fallback) const {
    const Item* item = Find(name);
    return item == nullptr ? fallback : item->value;
}

} // namespace cimserver
