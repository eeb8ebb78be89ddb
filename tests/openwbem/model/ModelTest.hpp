// What the tests of the model share: short arrays, keys, flags, and what a piece of code throws as
// one line of text.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_Exception.hpp"
#include "OW_String.hpp"

#include <initializer_list>
#include <string>

namespace tests {

inline std::string Text(const OpenWBEM::String& text) {
    return {text.c_str(), text.length()};
}

template <class T>
OpenWBEM::Array<T> ArrayOf(std::initializer_list<T> elements) {
    return OpenWBEM::Array<T>(elements.begin(), elements.end());
}

inline OpenWBEM::CIMProperty Key(const char* name, const char* value) {
    OpenWBEM::CIMProperty property(name, OpenWBEM::CIMValue(value));
    property.addQualifier(OpenWBEM::CIMQualifier::createKeyQualifier());
    return property;
}

inline OpenWBEM::CIMQualifier Flag(const char* name, bool value) {
    OpenWBEM::CIMQualifier qualifier(name);
    qualifier.setValue(OpenWBEM::CIMValue(value));
    return qualifier;
}

/// `type: message`, or `nothing`.
template <class Function>
std::string Thrown(Function function) {
    try {
        function();
    } catch (const OpenWBEM::Exception& exception) {
        return std::string(exception.type()) + ": " + exception.getMessage();
    }
    return "nothing";
}

/// The error code and the subclass id, or `nothing`.
template <class Function>
std::string ThrownIds(Function function) {
    try {
        function();
    } catch (const OpenWBEM::Exception& exception) {
        return std::to_string(exception.getErrorCode()) + "/" +
               std::to_string(exception.getSubClassId());
    }
    return "nothing";
}

inline const char* const nullUsed =
    "NULLCOWIntrusiveReferenceException: NULL COWReference dereferenced";

} // namespace tests
