// The flags and lists of a call in the form that the provider API takes.
#pragma once

#include "cimserver/operations/Operations.hpp"

#include "OW_WBEMFlags.hpp"

namespace cimserver::operations {

inline OpenWBEM::WBEMFlags::ELocalOnlyFlag LocalOnly(bool flag) {
    return flag ? OpenWBEM::WBEMFlags::E_LOCAL_ONLY : OpenWBEM::WBEMFlags::E_NOT_LOCAL_ONLY;
}

inline OpenWBEM::WBEMFlags::EDeepFlag Deep(bool flag) {
    return flag ? OpenWBEM::WBEMFlags::E_DEEP : OpenWBEM::WBEMFlags::E_SHALLOW;
}

inline OpenWBEM::WBEMFlags::EIncludeQualifiersFlag IncludeQualifiers(bool flag) {
    return flag ? OpenWBEM::WBEMFlags::E_INCLUDE_QUALIFIERS
                : OpenWBEM::WBEMFlags::E_EXCLUDE_QUALIFIERS;
}

inline OpenWBEM::WBEMFlags::EIncludeClassOriginFlag IncludeClassOrigin(bool flag) {
    return flag ? OpenWBEM::WBEMFlags::E_INCLUDE_CLASS_ORIGIN
                : OpenWBEM::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN;
}

/// Null when the client gave no list.
inline const OpenWBEM::StringArray* Pointer(const PropertyList& list) {
    return list ? &*list : nullptr;
}

} // namespace cimserver::operations
