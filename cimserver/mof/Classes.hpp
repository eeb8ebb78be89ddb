// Classes as the object model holds them.
#pragma once

#include "cimserver/mof/Syntax.hpp"

#include "OW_CIM.hpp"

namespace cimserver::mof {

class Schema;

/// The class with everything it inherits: what comes from a superclass stands first, in its order,
/// marked as propagated. A property or method that overrides an inherited one takes its place.
/// Throws syntax::Error where the declaration does not fit the schema.
OpenWBEM::CIMClass ToClass(const syntax::Class& declaration, const Schema& schema);

} // namespace cimserver::mof
