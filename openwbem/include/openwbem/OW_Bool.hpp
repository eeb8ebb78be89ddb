// The boolean of CIM: a bool with a text form, which overloads tell from the numbers.
#pragma once

#include "OW_CIMNULL.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_config.h"

#include <iosfwd>

namespace OpenWBEM {

class OW_COMMON_API Bool {
public:
    Bool() : m_value(false) {}
    explicit Bool(CIMNULL_t) : m_value(false) {}
    Bool(bool value) : m_value(value) {}
    operator bool() const { return m_value; }
    bool equal(const Bool& other) const { return m_value == other.m_value; }
    // "true" or "false".
    String toString() const;

private:
    bool m_value;
};

// Prints toString(), where a plain bool prints a number.
OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const Bool& value);

} // namespace OpenWBEM
