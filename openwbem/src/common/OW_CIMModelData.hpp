// The shared data behind the handles of the object model, and what several of them do alike.
// Private to the library.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMMethod.hpp"
#include "OW_CIMParameter.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMQualifierType.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"

#include <string>
#include <utility>

namespace OpenWBEM {

struct CIMQualifierTypeData : COWIntrusiveCountableBase {
    CIMName name;
    CIMDataType type;
    CIMValue defaultValue{CIMNULL};
    CIMScopeArray scopes;
    CIMFlavorArray flavors;
};

struct CIMQualifierData : COWIntrusiveCountableBase {
    CIMName name;
    CIMDataType declaredType; ///< type CIMNULL when no declaration is known
    CIMValue value{CIMNULL};
    CIMFlavorArray flavors;
    bool isPropagated = false;
};

struct CIMPropertyData : COWIntrusiveCountableBase {
    CIMPropertyData() = default;
    CIMPropertyData(const CIMName& itsName, CIMDataType itsType, const CIMValue& itsValue)
        : name(itsName), type(std::move(itsType)), value(itsValue) {}

    CIMName name;
    CIMDataType type;
    CIMValue value{CIMNULL}; ///< null or of that type, unless there is no type
    CIMQualifierArray qualifiers;
    CIMName originClass;
    bool isPropagated = false;
};

struct CIMParameterData : COWIntrusiveCountableBase {
    CIMName name;
    CIMDataType type;
    CIMQualifierArray qualifiers;
};

struct CIMMethodData : COWIntrusiveCountableBase {
    CIMName name;
    CIMDataType returnType;
    CIMParameterArray parameters;
    CIMQualifierArray qualifiers;
    CIMName originClass;
    bool isPropagated = false;
};

/// The name of an element without a copy of it.
struct CIMModelAccess {
    template <class Element>
    static const CIMName& name(const Element& element) {
        return element.m_pdata->name;
    }
};

/// The first element of that name; null when there is none. Valid until the array changes.
template <class Element>
const Element* findByName(const Array<Element>& elements, const CIMName& name) {
    for (const Element& element : elements) {
        if (CIMModelAccess::name(element) == name) {
            return &element;
        }
    }
    return nullptr;
}

template <class Element>
Element findOrNull(const Array<Element>& elements, const CIMName& name) {
    const Element* const found = findByName(elements, name);
    return found ? *found : Element(CIMNULL);
}

/// The place of an element that findByName found.
template <class Element>
typename Array<Element>::size_type indexOf(const Array<Element>& elements, const Element* found) {
    return static_cast<typename Array<Element>::size_type>(found - &*elements.begin());
}

template <class Element>
void replaceOrAppend(Array<Element>& elements, const Element& element) {
    const Element* const found = findByName(elements, CIMModelAccess::name(element));
    if (found) {
        elements[indexOf(elements, found)] = element;
    } else {
        elements.push_back(element);
    }
}

/// CIMException ALREADY_EXISTS, `<kind> <name> already exists`, when there is one of that name.
template <class Element>
void appendNew(Array<Element>& elements, const Element& element, const char* kind) {
    if (findByName(elements, CIMModelAccess::name(element))) {
        const String text = String(kind) + " " + element.getName() + " already exists";
        OW_THROWCIMMSG(CIMException::ALREADY_EXISTS, text.c_str());
    }
    elements.push_back(element);
}

template <class Element>
bool removeByName(Array<Element>& elements, const CIMName& name) {
    const Element* const found = findByName(elements, name);
    if (!found) {
        return false;
    }
    elements.remove(indexOf(elements, found));
    return true;
}

template <class Element, class Condition>
Array<Element> elementsThat(const Array<Element>& elements, Condition condition) {
    Array<Element> result;
    for (const Element& element : elements) {
        if (condition(element)) {
            result.push_back(element);
        }
    }
    return result;
}

/// The elements without what is not to be included; those that lose nothing stay shared.
template <class Element>
Array<Element> cloned(const Array<Element>& elements,
                      WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                      WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) {
    Array<Element> result;
    result.reserve(elements.size());
    for (const Element& element : elements) {
        result.push_back(element.clone(includeQualifiers, includeClassOrigin));
    }
    return result;
}

template <class T>
bool contains(const Array<T>& values, const T& wanted) {
    return std::find(values.begin(), values.end(), wanted) != values.end();
}

/// `Key` as a name that is made once.
const CIMName& keyName();

/// There is a qualifier of that name with the boolean value true.
bool hasTrueValue(const CIMQualifierArray& qualifiers, const CIMName& name);

/// The property list of a request names this property.
bool isListed(const StringArray& names, const CIMProperty& property);

/// `[Key(true), Description("x")]` or nothing.
std::string qualifiersToMOF(const CIMQualifierArray& qualifiers);

/// The declaration of a typed name: `string a[]`, `ZNX_A REF a`.
std::string declarationToMOF(const CIMDataType& type, const CIMName& name);

/// A text with its length, so that nothing is counted twice.
String toOwString(const std::string& text);

} // namespace OpenWBEM
