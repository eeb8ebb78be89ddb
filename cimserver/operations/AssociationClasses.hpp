// Which association classes tie a class to which others, answered from the schema.
#pragma once

#include "cimserver/operations/Surroundings.hpp"

#include "OW_CIM.hpp"

#include <vector>

namespace cimserver::operations {

using Classes = std::vector<const OpenWBEM::CIMClass*>;

/// The class of an object that associations are asked of. Throws CIMException NOT_FOUND.
const OpenWBEM::CIMClass& SourceClass(const OpenWBEM::CIMObjectPath& objectName,
                                      const Surroundings& around);

/// The association classes to ask for an instance of `source`: the one named and its subclasses,
/// whatever they refer to; or when none is named, all with an end that refers to the class, and
/// that is called `role` unless that is empty. Throws CIMException NOT_FOUND for a class that is
/// unknown and INVALID_PARAMETER for one that is no association.
Classes Candidates(const OpenWBEM::CIMClass& source, const OpenWBEM::String& assocClass,
                   const OpenWBEM::String& role, const Surroundings& around);

// For `source` as a class. Empty texts mean any.
/// The association classes of `candidates` with an end of that role that refers to the class.
Classes ReferringClasses(const OpenWBEM::CIMClass& source, const Classes& candidates,
                         const OpenWBEM::String& role, const Surroundings& around);
/// The classes at their other ends of that role that are `resultClass` or below it, each once.
Classes ClassesAtOtherEnds(const OpenWBEM::CIMClass& source, const Classes& candidates,
                           const OpenWBEM::String& resultClass, const OpenWBEM::String& role,
                           const OpenWBEM::String& resultRole, const Surroundings& around);

} // namespace cimserver::operations
