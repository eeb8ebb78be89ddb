// The char16 of CIM: one UTF-16 code unit.
#pragma once

#include "OW_CIMNULL.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

#include <iosfwd>

namespace OpenWBEM {

class OW_COMMON_API Char16 {
public:
    Char16() : m_value(0) {}
    explicit Char16(CIMNULL_t) : m_value(0) {}
    Char16(UInt16 value) : m_value(value) {}
    // The first character of UTF-8 text: 0 when there is none, U+FFFD when it needs two code units
    // or is no UTF-8.
    explicit Char16(const String& text);

    UInt16 getValue() const { return m_value; }
    void setValue(UInt16 value) { m_value = value; }
    bool equal(const Char16& other) const { return m_value == other.m_value; }
    // UTF-8; "" for 0, U+FFFD for half of a surrogate pair.
    String toString() const;

private:
    UInt16 m_value;
};

inline bool operator==(const Char16& a, const Char16& b) {
    return a.equal(b);
}
inline bool operator!=(const Char16& a, const Char16& b) {
    return !a.equal(b);
}
inline bool operator<(const Char16& a, const Char16& b) {
    return a.getValue() < b.getValue();
}
inline bool operator>(const Char16& a, const Char16& b) {
    return b < a;
}
inline bool operator<=(const Char16& a, const Char16& b) {
    return !(b < a);
}
inline bool operator>=(const Char16& a, const Char16& b) {
    return !(a < b);
}

OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const Char16& character);

} // namespace OpenWBEM
