// Puts values into a text: Format("%1 of %2", done, all).
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_String.hpp"
#include "OW_StringStream.hpp"
#include "OW_config.h"

#include <iosfwd>

namespace OpenWBEM {

// %1 to %9 stand for the arguments, in any order and any number of times; %% for a percent sign.
// Each argument is shown as an output stream shows it: a bool as 1 or 0, a UInt8 as a character. A
// placeholder without argument and a lone % never throw: a remark stands in the text in their
// place.
class OW_COMMON_API Format {
public:
    template <class... Arguments>
    Format(const char* text, const Arguments&... arguments) {
        static_assert(sizeof...(Arguments) >= 1 && sizeof...(Arguments) <= 9,
                      "Format takes one to nine values");
        const String shown[] = {show(arguments)...};
        fill(text, shown, sizeof...(Arguments));
    }

    operator String() const { return m_text; }
    String toString() const { return m_text; }
    const char* c_str() const { return m_text.c_str(); }

private:
    template <class T>
    static String show(const T& value) {
        OStringStream stream(0);
        stream << value;
        return stream.toString();
    }
    static String show(const String& value) { return value; }

    void fill(const char* text, const String* arguments, size_t count);

    String m_text;
};

OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const Format& format);

} // namespace OpenWBEM
