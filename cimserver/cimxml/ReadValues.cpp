#include "cimserver/cimxml/ReadValues.hpp"

#include "cimserver/cimxml/ObjectNames.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"
#include "cimserver/cimxml/Texts.hpp"

#include "OW_CIMValueCast.hpp"

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

/// Blanks count only where a text is the value.
String TextFor(CIMDataType::Type type, const Element& value, const String& what) {
    String text = ToString(value.text);
    if (type == CIMDataType::STRING || type == CIMDataType::CHAR16) {
        return text;
    }
    String trimmed = String(text).trim();
    if (trimmed.empty()) {
        Refuse(what + ": \"" + text + "\" is no " + CIMDataType(type).toString());
    }
    return trimmed;
}

CIMValue Converted(const CIMValue& text, const CIMDataType& type, const String& what) {
    try {
        return CIMValueCast::castValueToDataType(text, type);
    } catch (const Exception&) {
        Refuse(what + ": \"" + text.toString() + "\" is no " + type.toString());
    }
}

CIMValue ReadArray(const Element& value, CIMDataType::Type type, const String& what) {
    StringArray texts;
    for (const Element& element : value.children) {
        if (element.name == "VALUE.NULL") {
            Refuse(what + " holds an element without value");
        }
        if (element.name != "VALUE") {
            throw NotLooselyValid();
        }
        texts.push_back(TextFor(type, element, what));
    }
    return Converted(CIMValue(texts), CIMDataType(type, -1), what);
}

CIMValue ReadReferences(const Element& value, const String& what) {
    CIMObjectPathArray paths;
    for (const Element& element : value.children) {
        if (element.name == "VALUE.NULL") {
            Refuse(what + " holds an element without value");
        }
        if (element.name != "VALUE.REFERENCE") {
            throw NotLooselyValid();
        }
        paths.push_back(ReadReference(element));
    }
    return CIMValue(paths);
}

/// The attribute's type; `fallback` when there is no such attribute.
CIMDataType::Type TypeIn(const Element& element, const char* attribute,
                         CIMDataType::Type fallback) {
    const std::string* name = element.Attribute(attribute);
    const auto type = name == nullptr ? fallback : CIMDataType::strToSimpleType(ToString(*name));
    if (type == CIMDataType::INVALID) {
        throw NotLooselyValid();
    }
    return type;
}

/// The value behind the qualifiers; null when there is none.
const Element* ValueOf(const Element& property) {
    const Element* value = nullptr;
    for (const Element& child : property.children) {
        if (value != nullptr) {
            throw NotLooselyValid();
        }
        value = child.name == "QUALIFIER" ? nullptr : &child;
    }
    return value;
}

CIMProperty ReadProperty(const Element& property, const CIMDataType& type,
                         const char* valueElement) {
    const String name = ToString(property.RequiredAttribute("NAME"));
    CIMProperty result(CIMName(name), type);
    if (const Element* value = ValueOf(property)) {
        if (value->name != valueElement) {
            throw NotLooselyValid();
        }
        result.setValue(ReadValue(*value, type.getType(), "Property " + name));
    }
    return result;
}

CIMDataType::Type SimpleTypeOf(const Element& property) {
    property.RequiredAttribute("TYPE");
    const auto type = TypeIn(property, "TYPE", CIMDataType::INVALID);
    if (type == CIMDataType::REFERENCE) {
        throw NotLooselyValid();
    }
    return type;
}

CIMProperty ReadProperty(const Element& property) {
    if (property.name == "PROPERTY") {
        return ReadProperty(property, CIMDataType(SimpleTypeOf(property)), "VALUE");
    }
    if (property.name == "PROPERTY.ARRAY") {
        return ReadProperty(property, CIMDataType(SimpleTypeOf(property), -1), "VALUE.ARRAY");
    }
    if (property.name == "PROPERTY.REFERENCE") {
        const std::string* refClass = property.Attribute("REFERENCECLASS");
        const CIMName className(refClass == nullptr ? String() : ToString(*refClass));
        return ReadProperty(property, CIMDataType(className), "VALUE.REFERENCE");
    }
    throw NotLooselyValid();
}

} // namespace

CIMValue ReadValue(const Element& value, CIMDataType::Type type, const String& what) {
    if (value.name == "VALUE.REFERENCE") {
        return CIMValue(ReadReference(value));
    }
    if (value.name == "VALUE.REFARRAY") {
        return ReadReferences(value, what);
    }
    const bool isArray = value.name == "VALUE.ARRAY";
    if (!isArray && value.name != "VALUE") {
        Refuse(what + " is neither a simple value nor a reference");
    }
    if (isArray) {
        return ReadArray(value, type, what);
    }
    return Converted(CIMValue(TextFor(type, value, what)), CIMDataType(type), what);
}

CIMInstance ReadInstance(const Element& instance) {
    CIMInstance result(CIMName(ToString(instance.RequiredAttribute("CLASSNAME"))));
    for (const Element& child : instance.children) {
        if (child.name == "QUALIFIER") {
            continue;
        }
        const CIMProperty property = ReadProperty(child);
        if (result.getProperty(property.getName())) {
            Refuse("Property " + property.getName() + " is given twice");
        }
        result.setProperty(property);
    }
    return result;
}

CIMParamValue ReadParameter(const Element& paramValue) {
    if (paramValue.name != "PARAMVALUE") {
        throw NotLooselyValid();
    }
    const String name = ToString(paramValue.RequiredAttribute("NAME"));
    const auto type = TypeIn(paramValue, "PARAMTYPE", CIMDataType::STRING);
    if (paramValue.children.empty()) {
        return CIMParamValue(CIMName(name));
    }
    return {CIMName(name), ReadValue(paramValue.OnlyChild(), type, "Parameter " + name)};
}

} // namespace cimserver::cimxml
