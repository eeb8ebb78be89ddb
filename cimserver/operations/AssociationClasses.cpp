#include "cimserver/operations/AssociationClasses.hpp"

#include "cimserver/operations/Classes.hpp"

#include "OW_CIMException.hpp"

#include <algorithm>
#include <iterator>

namespace cimserver::operations {

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::String;

bool IsOrIsBelow(const CIMClass& cimClass, const String& ancestor, const mof::Schema& schema) {
    for (const CIMClass* at = &cimClass; at != nullptr;
         at = schema.FindClass(at->getSuperClass())) {
        if (at->getName().equalsIgnoreCase(ancestor)) {
            return true;
        }
    }
    return false;
}

bool HasRole(const CIMProperty& end, const String& role) {
    return role.empty() || end.getName().equalsIgnoreCase(role);
}

std::vector<CIMProperty> EndsOf(const CIMClass& association) {
    const CIMPropertyArray properties = association.getAllProperties();
    std::vector<CIMProperty> ends;
    std::copy_if(properties.begin(), properties.end(), std::back_inserter(ends),
                 [](const CIMProperty& property) { return property.isReference(); });
    return ends;
}

// Whether this end can hold an instance of the class.
bool Refers(const CIMProperty& end, const CIMClass& source, const String& role,
            const mof::Schema& schema) {
    return HasRole(end, role) && IsOrIsBelow(source, end.getDataType().getRefClassName(), schema);
}

bool RefersTo(const CIMClass& association, const CIMClass& source, const String& role,
              const mof::Schema& schema) {
    const auto ends = EndsOf(association);
    return std::any_of(ends.begin(), ends.end(),
                       [&](const CIMProperty& end) { return Refers(end, source, role, schema); });
}

Classes Associations(const mof::Schema& schema) {
    Classes all = schema.Subclasses("", true);
    std::erase_if(all, [](const CIMClass* cimClass) { return !cimClass->isAssociation(); });
    return all;
}

void AddOnce(Classes& classes, const CIMClass* cimClass) {
    if (std::find(classes.begin(), classes.end(), cimClass) == classes.end()) {
        classes.push_back(cimClass);
    }
}

} // namespace

const CIMClass& SourceClass(const OpenWBEM::CIMObjectPath& objectName, const Surroundings& around) {
    return FindClass(around.schema, around.nameSpace, objectName.getClassName(),
                     CIMException::NOT_FOUND);
}

Classes Candidates(const CIMClass& source, const String& assocClass, const String& role,
                   const Surroundings& around) {
    if (assocClass.empty()) {
        return ReferringClasses(source, Associations(around.schema), role, around);
    }
    const auto& top =
        FindClass(around.schema, around.nameSpace, assocClass, CIMException::NOT_FOUND);
    if (!top.isAssociation()) {
        const String text = "class " + assocClass + " is not an association";
        OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, text.c_str());
    }
    Classes classes = around.schema.Subclasses(top.getName(), true);
    classes.insert(classes.begin(), &top);
    return classes;
}

Classes ReferringClasses(const CIMClass& source, const Classes& candidates, const String& role,
                         const Surroundings& around) {
    Classes referring;
    std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(referring),
                 [&](const CIMClass* candidate) {
                     return RefersTo(*candidate, source, role, around.schema);
                 });
    return referring;
}

Classes ClassesAtOtherEnds(const CIMClass& source, const Classes& candidates,
                           const String& resultClass, const String& role, const String& resultRole,
                           const Surroundings& around) {
    Classes found;
    for (const CIMClass* candidate : candidates) {
        const auto ends = EndsOf(*candidate);
        for (const CIMProperty& near : ends) {
            if (!Refers(near, source, role, around.schema)) {
                continue;
            }
            for (const CIMProperty& far : ends) {
                const CIMClass* other =
                    around.schema.FindClass(far.getDataType().getRefClassName());
                const bool isOther = far.getName() != near.getName() && HasRole(far, resultRole);
                if (isOther && other != nullptr &&
                    (resultClass.empty() || IsOrIsBelow(*other, resultClass, around.schema))) {
                    AddOnce(found, other);
                }
            }
        }
    }
    return found;
}

} // namespace cimserver::operations
