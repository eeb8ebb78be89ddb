// Qualifier types, and qualifiers as elements state and inherit them (DMTF DSP0004, 5.5).
#pragma once

#include "cimserver/mof/Syntax.hpp"

#include "OW_CIM.hpp"

#include <vector>

namespace cimserver::mof {

class Schema;

/// Scope, type, default and flavors; where a flavor is not given, EnableOverride and ToSubclass
/// hold. Throws syntax::Error.
OpenWBEM::CIMQualifierType ToQualifierType(const syntax::QualifierDeclaration& declaration);

/// What an element is, in a message and for the scopes of its qualifiers: it may have a qualifier
/// that has one of these, or Any. (An association is a class as well.)
struct ElementKind {
    const char* name;
    std::vector<OpenWBEM::CIMScope::Scope> scopes;
};

/// The qualifiers that an element states. One without a value is true when it is boolean and has
/// its type's default otherwise. Throws syntax::Error for a qualifier that the schema does not
/// know, that this kind of element cannot have, that stands there twice, or whose value has another
/// type.
OpenWBEM::CIMQualifierArray ToQualifiers(const std::vector<syntax::Qualifier>& qualifiers,
                                         const ElementKind& kind, const Schema& schema);

/// What a subclass has of its superclass's qualifiers: those that are not restricted to it, marked
/// as propagated.
OpenWBEM::CIMQualifierArray Propagate(const OpenWBEM::CIMQualifierArray& qualifiers);

/// Adds to `own` what the overridden element hands down. Throws syntax::Error at the qualifier that
/// changes the value of one that cannot be overridden.
void Inherit(OpenWBEM::CIMQualifierArray& own, const OpenWBEM::CIMQualifierArray& inherited,
             const std::vector<syntax::Qualifier>& stated);

/// The qualifier of that name, regardless of case; null when it is not stated.
const syntax::Qualifier* Find(const std::vector<syntax::Qualifier>& qualifiers,
                              const OpenWBEM::CIMName& name);

} // namespace cimserver::mof
