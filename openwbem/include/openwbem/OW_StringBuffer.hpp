// Text that grows at its end.
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_String.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

#include <iosfwd>
#include <string>

namespace OpenWBEM {

// Numbers are appended in decimal, reals with six significant digits, booleans as "true" and
// "false".
class OW_COMMON_API StringBuffer {
public:
    // `size`: bytes to set aside for the start.
    explicit StringBuffer(size_t size = 128);
    StringBuffer(const char* text);
    StringBuffer(const String& text);

    StringBuffer& append(const char* text);
    StringBuffer& append(const char* text, size_t length);
    StringBuffer& append(const String& text);
    StringBuffer& append(char character);
    StringBuffer& operator+=(const char* text) { return append(text); }
    StringBuffer& operator+=(const String& text) { return append(text); }
    StringBuffer& operator+=(char character) { return append(character); }
    StringBuffer& operator+=(bool value);
    StringBuffer& operator+=(const Bool& value);
    StringBuffer& operator+=(const Char16& character);
    StringBuffer& operator+=(UInt8 value);
    StringBuffer& operator+=(Int8 value);
    StringBuffer& operator+=(UInt16 value);
    StringBuffer& operator+=(Int16 value);
    StringBuffer& operator+=(UInt32 value);
    StringBuffer& operator+=(Int32 value);
    StringBuffer& operator+=(UInt64 value);
    StringBuffer& operator+=(Int64 value);
    StringBuffer& operator+=(Real32 value);
    StringBuffer& operator+=(Real64 value);

    String toString() const;
    // The same, and the buffer begins anew.
    String releaseString();
    // Valid until something is appended.
    const char* c_str() const { return m_text.c_str(); }
    size_t length() const { return m_text.length(); }
    // Unchecked.
    char operator[](size_t index) const { return m_text[index]; }
    void reset() { m_text.clear(); }

private:
    std::string m_text;
};

OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const StringBuffer& buffer);

} // namespace OpenWBEM
