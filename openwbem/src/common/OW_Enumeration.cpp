#include "OW_config.h"

#include "OW_Enumeration.hpp"

#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"

namespace OpenWBEM {
namespace EnumerationSupport {

bool isNull(const CIMInstance& value) {
    return !value;
}
bool isNull(const CIMObjectPath& value) {
    return !value;
}

void throwEmpty() {
    OW_THROW(EnumerationException, "Attempt to Extract from empty Enum");
}

void throwDamaged() {
    OW_THROW(EnumerationException, "Attempt to Extract from damaged Enum");
}

} // namespace EnumerationSupport
} // namespace OpenWBEM
