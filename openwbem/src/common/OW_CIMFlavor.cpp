#include "OW_CIMFlavor.hpp"

namespace OpenWBEM {

String CIMFlavor::toString() const {
    switch (m_flavor) {
    case ENABLEOVERRIDE:
        return String("EnableOverride");
    case DISABLEOVERRIDE:
        return String("DisableOverride");
    case RESTRICTED:
        return String("Restricted");
    case TOSUBCLASS:
        return String("ToSubclass");
    case TRANSLATE:
        return String("Translatable");
    case INVALID:
        break;
    }
    return String();
}

} // namespace OpenWBEM
