#include "OW_Format.hpp"

#include "OW_StringBuffer.hpp"

#include <ostream>

namespace OpenWBEM {

void Format::fill(const char* text, const String* arguments, size_t count) {
    StringBuffer filled;
    for (const char* next = text ? text : ""; *next != '\0'; ++next) {
        const char sign = next[0] == '%' ? next[1] : '\0';
        if (*next != '%') {
            filled += *next;
        } else if (sign == '%') {
            filled += *next++;
        } else if (sign >= '0' && sign <= '9') {
            const auto number = static_cast<size_t>(sign - '0');
            if (number >= 1 && number <= count) {
                filled += arguments[number - 1];
            } else {
                (filled += "[Format: no value for %") += sign;
                filled += ']';
            }
            ++next;
        } else {
            filled += "[Format: lone %]";
        }
    }
    m_text = filled.toString();
}

std::ostream& operator<<(std::ostream& stream, const Format& format) {
    return stream << format.toString();
}

} // namespace OpenWBEM
