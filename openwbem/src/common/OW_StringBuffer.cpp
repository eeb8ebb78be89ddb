#include "OW_StringBuffer.hpp"

#include "OW_Bool.hpp"
#include "OW_Char16.hpp"

#include <ostream>

namespace OpenWBEM {

StringBuffer::StringBuffer(size_t size) {
    m_text.reserve(size);
}

StringBuffer::StringBuffer(const char* text) {
    append(text);
}

StringBuffer::StringBuffer(const String& text) {
    append(text);
}

StringBuffer& StringBuffer::append(const char* text) {
    if (text) {
        m_text.append(text);
    }
    return *this;
}

StringBuffer& StringBuffer::append(const char* text, size_t length) {
    m_text.append(text, length);
    return *this;
}

StringBuffer& StringBuffer::append(const String& text) {
    return append(text.c_str(), text.length());
}

StringBuffer& StringBuffer::append(char character) {
    m_text.push_back(character);
    return *this;
}

StringBuffer& StringBuffer::operator+=(bool value) {
    return append(value ? "true" : "false");
}

StringBuffer& StringBuffer::operator+=(const Bool& value) {
    return append(value.toString());
}

StringBuffer& StringBuffer::operator+=(const Char16& character) {
    return append(character.toString());
}

StringBuffer& StringBuffer::operator+=(UInt8 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(Int8 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(UInt16 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(Int16 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(UInt32 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(Int32 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(UInt64 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(Int64 value) {
    return append(String(value));
}

StringBuffer& StringBuffer::operator+=(Real32 value) {
    return append(String(static_cast<Real64>(value)));
}

StringBuffer& StringBuffer::operator+=(Real64 value) {
    return append(String(value));
}

String StringBuffer::toString() const {
    return String(m_text.data(), m_text.size());
}

String StringBuffer::releaseString() {
    String text = toString();
    reset();
    return text;
}

std::ostream& operator<<(std::ostream& stream, const StringBuffer& buffer) {
    return stream << buffer.c_str();
}

} // namespace OpenWBEM
