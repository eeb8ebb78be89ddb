#pragma once

#include "OW_config.h"

namespace OpenWBEM {

// The switches of a CIM operation (DMTF DSP0200) as types of their own, so that two of them cannot
// be exchanged by accident. In each the plain case is 0 and the extended one 1.
namespace WBEMFlags {

enum EDeepFlag { E_SHALLOW, E_DEEP };

enum ELocalOnlyFlag { E_NOT_LOCAL_ONLY, E_LOCAL_ONLY };

enum EIncludeQualifiersFlag { E_EXCLUDE_QUALIFIERS, E_INCLUDE_QUALIFIERS };

enum EIncludeClassOriginFlag { E_EXCLUDE_CLASS_ORIGIN, E_INCLUDE_CLASS_ORIGIN };

enum EEnumSubclassesFlag { E_DONT_ENUM_SUBCLASSES, E_ENUM_SUBCLASSES };

enum EOperationResultFlag { E_FAILED, E_SUCCESS };

} // namespace WBEMFlags
} // namespace OpenWBEM
