#include "cimserver/cimxml/Elements.hpp"

#include "cimserver/cimxml/Values.hpp"

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

[[noreturn]] void Fail(const String& text) {
    OW_THROWCIMMSG(CIMException::FAILED, text.c_str());
}

/// NAME of any element; `start` as for WriteAttribute.
void WriteName(XmlBuffer& xml, std::string_view start, const char* kind, const String& name) {
    if (name.empty()) {
        Fail(String(kind) + " has no name");
    }
    WriteAttribute(xml, start, name);
}

void WriteOptional(XmlBuffer& xml, std::string_view start, const String& value) {
    if (!value.empty()) {
        WriteAttribute(xml, start, value);
    }
}

void WritePropagated(XmlBuffer& xml, bool isPropagated) {
    if (isPropagated) {
        xml.Markup(" PROPAGATED=\"true\"");
    }
}

void WriteArraySize(XmlBuffer& xml, const CIMDataType& type) {
    if (type.isArrayType() && type.getSize() > 0) {
        xml.Markup(" ARRAYSIZE=\"");
        xml.Number(type.getSize());
        xml.Markup("\"");
    }
}

void WriteType(XmlBuffer& xml, std::string_view name) {
    xml.Markup(" TYPE=\"");
    xml.Markup(name);
    xml.Markup("\"");
}

/// Flavors that nobody stated have the defaults of the DTD and are left out.
void WriteFlavors(XmlBuffer& xml, const CIMQualifier& qualifier) {
    if (qualifier.hasFlavor(CIMFlavor::DISABLEOVERRIDE)) {
        xml.Markup(" OVERRIDABLE=\"false\"");
    } else if (qualifier.hasFlavor(CIMFlavor::ENABLEOVERRIDE)) {
        xml.Markup(" OVERRIDABLE=\"true\"");
    }
    if (qualifier.hasFlavor(CIMFlavor::RESTRICTED)) {
        xml.Markup(" TOSUBCLASS=\"false\"");
    } else if (qualifier.hasFlavor(CIMFlavor::TOSUBCLASS)) {
        xml.Markup(" TOSUBCLASS=\"true\"");
    }
    if (qualifier.hasFlavor(CIMFlavor::TRANSLATE)) {
        xml.Markup(" TRANSLATABLE=\"true\"");
    }
}

void WriteQualifiers(XmlBuffer& xml, const CIMQualifierArray& qualifiers) {
    for (const CIMQualifier& qualifier : qualifiers) {
        const std::string_view type = TypeName(qualifier.getDataType().getType());
        if (type.empty()) {
            Fail("Qualifier " + qualifier.getName() + " has no type defined");
        }
        WriteName(xml, "<QUALIFIER NAME=\"", "A qualifier", qualifier.getName());
        WriteType(xml, type);
        WritePropagated(xml, qualifier.getPropagated());
        WriteFlavors(xml, qualifier);
        xml.Markup(">");
        WriteValue(xml, qualifier.getValue());
        xml.Markup("</QUALIFIER>");
    }
}

/// The attributes and the content that all kinds of properties have in common.
void WriteRestOfProperty(XmlBuffer& xml, const CIMProperty& property, const CIMValue& value) {
    WriteOptional(xml, " CLASSORIGIN=\"", property.getOriginClass());
    WritePropagated(xml, property.getPropagated());
    xml.Markup(">");
    WriteQualifiers(xml, property.getQualifiers());
    WriteValue(xml, value);
}

void WriteReferenceProperty(XmlBuffer& xml, const CIMProperty& property, const CIMDataType& type,
                            const CIMValue& value) {
    if (type.isArrayType()) {
        Fail("Property " + property.getName() + " is an array of references");
    }
    WriteName(xml, "<PROPERTY.REFERENCE NAME=\"", "A property", property.getName());
    WriteOptional(xml, " REFERENCECLASS=\"", type.getRefClassName());
    WriteRestOfProperty(xml, property, value);
    xml.Markup("</PROPERTY.REFERENCE>");
}

void WriteProperty(XmlBuffer& xml, const CIMProperty& property) {
    const CIMDataType declared = property.getDataType();
    if (!declared) {
        Fail("Property " + property.getName() + " has no type defined");
    }
    const CIMValue value = property.getValue();
    const CIMDataType::Type type = value ? value.getType() : declared.getType();
    if (type == CIMDataType::REFERENCE) {
        WriteReferenceProperty(xml, property, declared, value);
        return;
    }
    const std::string_view typeName = TypeName(type);
    if (typeName.empty()) {
        Fail("Property " + property.getName() + " holds an embedded object");
    }
    const bool isArray = value ? value.isArray() : declared.isArrayType();
    WriteName(xml, isArray ? "<PROPERTY.ARRAY NAME=\"" : "<PROPERTY NAME=\"", "A property",
              property.getName());
    WriteType(xml, typeName);
    if (isArray) {
        WriteArraySize(xml, declared);
    }
    WriteRestOfProperty(xml, property, value);
    xml.Markup(isArray ? "</PROPERTY.ARRAY>" : "</PROPERTY>");
}

void WriteProperties(XmlBuffer& xml, const CIMPropertyArray& properties) {
    for (const CIMProperty& property : properties) {
        WriteProperty(xml, property);
    }
}

std::string_view ParameterElement(const CIMDataType& type) {
    if (type.isReferenceType()) {
        return type.isArrayType() ? "PARAMETER.REFARRAY" : "PARAMETER.REFERENCE";
    }
    return type.isArrayType() ? "PARAMETER.ARRAY" : "PARAMETER";
}

void WriteParameter(XmlBuffer& xml, const CIMParameter& parameter) {
    const CIMDataType type = parameter.getType();
    const std::string_view element = ParameterElement(type);
    xml.Markup("<");
    xml.Markup(element);
    WriteName(xml, " NAME=\"", "A parameter", parameter.getName());
    if (type.isReferenceType()) {
        WriteOptional(xml, " REFERENCECLASS=\"", type.getRefClassName());
    } else if (TypeName(type.getType()).empty()) {
        Fail("Parameter " + parameter.getName() + " has no type defined");
    } else {
        WriteType(xml, TypeName(type.getType()));
    }
    WriteArraySize(xml, type);
    xml.Markup(">");
    WriteQualifiers(xml, parameter.getQualifiers());
    xml.Markup("</");
    xml.Markup(element);
    xml.Markup(">");
}

void WriteMethod(XmlBuffer& xml, const CIMMethod& method) {
    WriteName(xml, "<METHOD NAME=\"", "A method", method.getName());
    const std::string_view type = TypeName(method.getReturnType().getType());
    if (!type.empty()) {
        WriteType(xml, type);
    }
    WriteOptional(xml, " CLASSORIGIN=\"", method.getOriginClass());
    WritePropagated(xml, method.getPropagated());
    xml.Markup(">");
    WriteQualifiers(xml, method.getQualifiers());
    const CIMParameterArray parameters = method.getParameters();
    for (const CIMParameter& parameter : parameters) {
        WriteParameter(xml, parameter);
    }
    xml.Markup("</METHOD>");
}

} // namespace

void WriteInstance(XmlBuffer& xml, const CIMInstance& instance) {
    WriteName(xml, "<INSTANCE CLASSNAME=\"", "An instance's class", instance.getClassName());
    xml.Markup(">");
    WriteQualifiers(xml, instance.getQualifiers());
    WriteProperties(xml, instance.getProperties());
    xml.Markup("</INSTANCE>");
}

void WriteClass(XmlBuffer& xml, const CIMClass& cimClass) {
    WriteName(xml, "<CLASS NAME=\"", "A class", cimClass.getName());
    WriteOptional(xml, " SUPERCLASS=\"", cimClass.getSuperClass());
    xml.Markup(">");
    WriteQualifiers(xml, cimClass.getQualifiers());
    WriteProperties(xml, cimClass.getAllProperties());
    const CIMMethodArray methods = cimClass.getAllMethods();
    for (const CIMMethod& method : methods) {
        WriteMethod(xml, method);
    }
    xml.Markup("</CLASS>");
}

} // namespace cimserver::cimxml
