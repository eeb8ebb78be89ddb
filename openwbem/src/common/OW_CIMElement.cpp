#include "OW_CIMElement.hpp"

namespace OpenWBEM {

CIMElement::~CIMElement() = default;

bool CIMElement::operator==(const CIMElement& other) const {
    return getName().equalsIgnoreCase(other.getName());
}

bool CIMElement::operator!=(const CIMElement& other) const {
    return !(*this == other);
}

} // namespace OpenWBEM
