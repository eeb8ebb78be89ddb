#include "patchkeeper/Version.hpp"

#include <algorithm>

namespace patchkeeper {

namespace {

bool IsDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

bool IsLetter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

// Of the first character of a text, a digit counting as its end.
int Rank(std::string_view text) {
    if (text.empty() || IsDigit(text.front())) {
        return 0;
    }
    const char letter = text.front();
    if (letter == '~') {
        return -1;
    }
    const int code = static_cast<unsigned char>(letter);
    return IsLetter(letter) ? code : code + 256;
}

// Takes the digits in front, without leading zeros, off a text.
std::string_view TakeNumber(std::string_view& text) {
    const auto first = std::find_if(text.begin(), text.end(), [](char c) { return c != '0'; });
    const auto end = std::find_if_not(first, text.end(), IsDigit);
    const std::string_view number = text.substr(static_cast<std::size_t>(first - text.begin()),
                                                static_cast<std::size_t>(end - first));
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    return number;
}

} // namespace

bool IsOlder(std::string_view version, std::string_view other) noexcept {
    while (!version.empty() || !other.empty()) {
        while (Rank(version) != 0 || Rank(other) != 0) {
            if (Rank(version) != Rank(other)) {
                return Rank(version) < Rank(other);
            }
            version.remove_prefix(1);
            other.remove_prefix(1);
        }
        const std::string_view number = TakeNumber(version);
        const std::string_view otherNumber = TakeNumber(other);
        if (number.size() != otherNumber.size()) {
            return number.size() < otherNumber.size();
        }
        if (number != otherNumber) {
            return number < otherNumber;
        }
    }
    return false;
}

} // namespace patchkeeper
