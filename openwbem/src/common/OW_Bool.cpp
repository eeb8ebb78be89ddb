#include "OW_Bool.hpp"

#include "OW_String.hpp"

#include <ostream>

namespace OpenWBEM {

String Bool::toString() const {
    return m_value ? "true" : "false";
}

std::ostream& operator<<(std::ostream& stream, const Bool& value) {
    return stream << value.toString();
}

} // namespace OpenWBEM
