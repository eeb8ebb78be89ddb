#include "OW_CIMScope.hpp"

namespace OpenWBEM {

String CIMScope::toString() const {
    switch (m_scope) {
    case SCHEMA:
        return String("schema");
    case CLASS:
        return String("class");
    case ASSOCIATION:
        return String("association");
    case INDICATION:
        return String("indication");
    case PROPERTY:
        return String("property");
    case REFERENCE:
        return String("reference");
    case METHOD:
        return String("method");
    case PARAMETER:
        return String("parameter");
    case ANY:
        return String("any");
    case BAD:
        break;
    }
    return String();
}

} // namespace OpenWBEM
