// The text of one configuration item, and the forms that items have. Whatever does not fit is
// refused with the place of the item, its name, its text and what was expected.
#pragma once

#include "cimserver/Configuration.hpp"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver {

class ItemValue {
public:
    /// `item` is null when the item is absent; then `fallback` is the text. All must outlive this.
    ItemValue(const char* name, const Configuration::Item* item, const char* fallback)
        : name_(name), item_(item), text_(item == nullptr ? fallback : item->value) {}

    bool IsGiven() const { return item_ != nullptr; }
    const std::string& Text() const { return text_; }

    // All of these throw ConfigurationError.

    std::int64_t Number(std::int64_t least, std::int64_t most) const;
    /// true or false, in any case.
    bool Flag() const;
    /// The position of the text among these words, in any case.
    std::size_t Choice(const std::vector<std::string_view>& words) const;
    /// Separated by blanks.
    std::vector<std::string> Words() const;
    /// Separated by colons or semicolons, made absolute.
    std::vector<std::filesystem::path> Paths() const;
    std::vector<std::filesystem::path> Directories() const;
    std::vector<std::filesystem::path> Files() const;

    [[noreturn]] void Refuse(const std::string& why) const;

private:
    const char* name_;
    const Configuration::Item* item_;
    std::string text_;
};

} // namespace cimserver
