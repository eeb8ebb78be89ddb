#include "OW_String.hpp"
#include "OW_StringView.hpp"
#include "OW_Utf8.hpp"

#include <cstring>
#include <string_view>

namespace OpenWBEM {

namespace {

bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

char lowerAscii(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

int compareFolded(std::string_view a, std::string_view b) {
    const char* left = a.data();
    const char* right = b.data();
    const char* const leftEnd = left + a.size();
    const char* const rightEnd = right + b.size();
    while (left != leftEnd && right != rightEnd) {
        const UInt32 one = Utf8::fold(Utf8::take(left, leftEnd));
        const UInt32 other = Utf8::fold(Utf8::take(right, rightEnd));
        if (one != other) {
            return one < other ? -1 : 1;
        }
    }
    return static_cast<int>(left != leftEnd) - static_cast<int>(right != rightEnd);
}

// Letters have as many bytes in one case as in the other, so texts of different length differ.
bool equalFolded(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i] && lowerAscii(a[i]) != lowerAscii(b[i])) {
            const bool bothAscii = isAscii(a[i]) && isAscii(b[i]);
            return !bothAscii && compareFolded(a, b) == 0;
        }
    }
    return true;
}

bool equal(std::string_view a, std::string_view b, String::EIgnoreCaseFlag ignoreCase) {
    return ignoreCase == String::E_CASE_INSENSITIVE ? equalFolded(a, b) : a == b;
}

bool startsWithText(std::string_view text, std::string_view start,
                    String::EIgnoreCaseFlag ignoreCase) {
    if (start.empty()) {
        return text.empty();
    }
    return start.size() <= text.size() && equal(text.substr(0, start.size()), start, ignoreCase);
}

bool endsWithText(std::string_view text, std::string_view end, String::EIgnoreCaseFlag ignoreCase) {
    if (end.empty()) {
        return text.empty();
    }
    return end.size() <= text.size() &&
           equal(text.substr(text.size() - end.size()), end, ignoreCase);
}

void mapCase(char* text, size_t length, UInt32 (*map)(UInt32)) {
    const char* next = text;
    const char* const end = text + length;
    while (next != end) {
        char* const place = text + (next - text);
        const UInt32 character = Utf8::take(next, end);
        const UInt32 mapped = map(character);
        if (mapped != character) {
            Utf8::put(mapped, place);
        }
    }
}

} // namespace

int String::compareTo(const String& other) const {
    return viewOf(*this).compare(viewOf(other));
}

int String::compareTo(const char* other) const {
    return viewOf(*this).compare(viewOf(other));
}

int String::compareToIgnoreCase(const String& other) const {
    return compareFolded(viewOf(*this), viewOf(other));
}

int String::compareToIgnoreCase(const char* other) const {
    return compareFolded(viewOf(*this), viewOf(other));
}

bool String::equals(const char* other) const {
    return viewOf(*this) == viewOf(other);
}

bool String::equalsIgnoreCase(const String& other) const {
    return m_block == other.m_block || equalFolded(viewOf(*this), viewOf(other));
}

bool String::equalsIgnoreCase(const char* other) const {
    return equalFolded(viewOf(*this), viewOf(other));
}

bool String::startsWith(const char* text, EIgnoreCaseFlag ignoreCase) const {
    return startsWithText(viewOf(*this), viewOf(text), ignoreCase);
}

bool String::startsWith(const String& text, EIgnoreCaseFlag ignoreCase) const {
    return startsWithText(viewOf(*this), viewOf(text), ignoreCase);
}

bool String::startsWith(char character) const {
    return !empty() && c_str()[0] == character;
}

bool String::endsWith(const char* text, EIgnoreCaseFlag ignoreCase) const {
    return endsWithText(viewOf(*this), viewOf(text), ignoreCase);
}

bool String::endsWith(const String& text, EIgnoreCaseFlag ignoreCase) const {
    return endsWithText(viewOf(*this), viewOf(text), ignoreCase);
}

bool String::endsWith(char character) const {
    return !empty() && c_str()[length() - 1] == character;
}

String& String::toLowerCase() {
    if (m_block) {
        detach();
        mapCase(m_block->text(), m_block->length, Utf8::toLower);
    }
    return *this;
}

String& String::toUpperCase() {
    if (m_block) {
        detach();
        mapCase(m_block->text(), m_block->length, Utf8::toUpper);
    }
    return *this;
}

} // namespace OpenWBEM
