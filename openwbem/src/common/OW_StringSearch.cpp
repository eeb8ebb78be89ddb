#include "OW_Array.hpp"
#include "OW_String.hpp"
#include "OW_StringView.hpp"

#include <array>
#include <string_view>

namespace OpenWBEM {

namespace {

constexpr std::string_view WHITE_SPACE = " \t\n\v\f\r";

size_t indexIn(std::string_view text, std::string_view part, size_t from) {
    return text.empty() ? String::npos : text.find(part, from);
}

size_t lastIndexIn(std::string_view text, std::string_view part, size_t from) {
    if (text.empty()) {
        return String::npos;
    }
    return text.rfind(part, from < text.size() ? from : text.size() - 1);
}

class DelimiterSet {
public:
    explicit DelimiterSet(std::string_view delimiters) {
        for (const char delimiter : delimiters) {
            m_contained[static_cast<unsigned char>(delimiter)] = true;
        }
    }
    bool contains(char character) const {
        return m_contained[static_cast<unsigned char>(character)];
    }

private:
    std::array<bool, 256> m_contained{};
};

} // namespace

size_t String::indexOf(char character, size_t from) const {
    return viewOf(*this).find(character, from);
}

size_t String::indexOf(const char* text, size_t from) const {
    return indexIn(viewOf(*this), viewOf(text), from);
}

size_t String::indexOf(const String& text, size_t from) const {
    return indexIn(viewOf(*this), viewOf(text), from);
}

size_t String::lastIndexOf(char character, size_t from) const {
    return viewOf(*this).rfind(character, from);
}

size_t String::lastIndexOf(const char* text, size_t from) const {
    return lastIndexIn(viewOf(*this), viewOf(text), from);
}

size_t String::lastIndexOf(const String& text, size_t from) const {
    return lastIndexIn(viewOf(*this), viewOf(text), from);
}

String& String::ltrim() {
    if (!empty() && WHITE_SPACE.find(c_str()[0]) != npos) {
        const size_t first = viewOf(*this).find_first_not_of(WHITE_SPACE);
        first == npos ? keep(0, 0) : keep(first, length() - first);
    }
    return *this;
}

String& String::rtrim() {
    if (!empty() && WHITE_SPACE.find(c_str()[length() - 1]) != npos) {
        const size_t last = viewOf(*this).find_last_not_of(WHITE_SPACE);
        keep(0, last == npos ? 0 : last + 1);
    }
    return *this;
}

String& String::trim() {
    return rtrim().ltrim();
}

bool String::isSpaces() const {
    return viewOf(*this).find_first_not_of(WHITE_SPACE) == npos;
}

StringArray String::tokenize(const char* delims, EReturnDelimitersFlag returnDelimiters,
                             EEmptyTokenReturnFlag returnEmptyTokens) const {
    const bool keepsDelimiters =
        returnDelimiters == E_RETURN_DELIMITERS || returnDelimiters == E_RETURN_TOKENS;
    const DelimiterSet delimiters(viewOf(delims));
    const std::string_view text = viewOf(*this);
    StringArray tokens;
    size_t begin = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (!delimiters.contains(text[i])) {
            continue;
        }
        const bool followsDelimiter = i > 0 && i == begin;
        if (i > begin) {
            tokens.push_back(String(text.data() + begin, i - begin));
        } else if (followsDelimiter && returnEmptyTokens == E_RETURN_EMPTY_TOKENS) {
            tokens.push_back(String(""));
        }
        if (keepsDelimiters) {
            tokens.push_back(String(text[i]));
        }
        begin = i + 1;
    }
    if (begin < text.size()) {
        tokens.push_back(String(text.data() + begin, text.size() - begin));
    }
    return tokens;
}

} // namespace OpenWBEM
