// A name of CIM: of a class, property, method, qualifier. Case is kept and does not matter.
#pragma once

#include "OW_CIMNULL.hpp"
#include "OW_SafeBool.hpp"
#include "OW_String.hpp"
#include "OW_config.h"

#include <iosfwd>
#include <utility>

namespace OpenWBEM {

// Made implicitly from text, so that names compare with texts and literals, always ignoring case.
// The way back is toString(): texts compare by their bytes. An empty name is not valid and tests
// false.
class OW_COMMON_API CIMName {
public:
    CIMName() = default;
    explicit CIMName(CIMNULL_t) {}
    CIMName(const String& name) : m_name(name) {}
    CIMName(String&& name) noexcept : m_name(std::move(name)) {}
    CIMName(const char* name) : m_name(name) {}
    CIMName& operator=(const String& name) {
        m_name = name;
        return *this;
    }
    CIMName& operator=(const char* name) {
        m_name = name;
        return *this;
    }

    bool isValid() const { return !m_name.empty(); }
    OW_SAFE_BOOL(isValid())
    void setNull() { m_name = String(); }
    String toString() const { return m_name; }

    bool equals(const CIMName& other) const { return m_name.equalsIgnoreCase(other.m_name); }
    // Below, at or above 0, ignoring case.
    int compareTo(const CIMName& other) const { return m_name.compareToIgnoreCase(other.m_name); }

private:
    friend struct CIMModelView;
    String m_name;
};

inline bool operator==(const CIMName& a, const CIMName& b) {
    return a.equals(b);
}
inline bool operator!=(const CIMName& a, const CIMName& b) {
    return !a.equals(b);
}
inline bool operator<(const CIMName& a, const CIMName& b) {
    return a.compareTo(b) < 0;
}
inline bool operator<=(const CIMName& a, const CIMName& b) {
    return a.compareTo(b) <= 0;
}
inline bool operator>(const CIMName& a, const CIMName& b) {
    return a.compareTo(b) > 0;
}
inline bool operator>=(const CIMName& a, const CIMName& b) {
    return a.compareTo(b) >= 0;
}

OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const CIMName& name);

} // namespace OpenWBEM
