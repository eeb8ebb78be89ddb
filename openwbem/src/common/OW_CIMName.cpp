#include "OW_CIMName.hpp"

#include <ostream>

namespace OpenWBEM {

std::ostream& operator<<(std::ostream& stream, const CIMName& name) {
    return stream << name.toString();
}

} // namespace OpenWBEM
