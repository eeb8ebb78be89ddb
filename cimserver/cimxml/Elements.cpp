#include "cimserver/cimxml/Elements.hpp"

#include "OW_CIMModelView.hpp"
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

/// Flavors that nobody stated have the defaults of the DTD and are left out.
template <class Qualifier>
void WriteFlavors(XmlBuffer& xml, const Qualifier& qualifier) {
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
        const CIMValue& value = CIMModelView::value(qualifier);
        const std::string_view type =
            TypeAttribute(value ? value.getType() : qualifier.getDataType().getType());
        if (type.empty()) {
            Fail("Qualifier " + qualifier.getName() + " has no type defined");
        }
        WriteName(xml, "<QUALIFIER NAME=\"", "A qualifier", CIMModelView::name(qualifier));
        xml.Markup(type);
        WritePropagated(xml, qualifier.getPropagated());
        WriteFlavors(xml, qualifier);
        xml.Markup(">");
        if (value) {
            WriteValue(xml, value, ShapeOf(value));
        }
        xml.Markup("</QUALIFIER>");
    }
}

/// The attributes and the content that all kinds of properties have in common, up to the value.
void WriteRestOfStart(XmlBuffer& xml, const CIMProperty& property) {
    WriteOptional(xml, " CLASSORIGIN=\"", CIMModelView::originClass(property));
    WritePropagated(xml, property.getPropagated());
    xml.Markup(">");
    WriteQualifiers(xml, CIMModelView::qualifiers(property));
}

void WriteReferenceProperty(XmlBuffer& xml, const CIMProperty& property, const CIMDataType& type,
                            const CIMValue& value, Shape shape) {
    if (shape.isArray) {
        Fail("Property " + property.getName() + " is an array of references");
    }
    WriteName(xml, "<PROPERTY.REFERENCE NAME=\"", "A property", CIMModelView::name(property));
    WriteOptional(xml, " REFERENCECLASS=\"", type.getRefClassName());
    WriteRestOfStart(xml, property);
    if (value) {
        WriteValue(xml, value, shape);
    }
    xml.Markup("</PROPERTY.REFERENCE>");
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
    } else if (TypeAttribute(type.getType()).empty()) {
        Fail("Parameter " + parameter.getName() + " has no type defined");
    } else {
        xml.Markup(TypeAttribute(type.getType()));
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
    xml.Markup(TypeAttribute(method.getReturnType().getType()));
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

void WriteScope(XmlBuffer& xml, const CIMQualifierType& qualifier) {
    constexpr std::pair<CIMScope::Scope, std::string_view> attributes[] = {
        {CIMScope::CLASS, " CLASS=\"true\""},
        {CIMScope::ASSOCIATION, " ASSOCIATION=\"true\""},
        {CIMScope::REFERENCE, " REFERENCE=\"true\""},
        {CIMScope::PROPERTY, " PROPERTY=\"true\""},
        {CIMScope::METHOD, " METHOD=\"true\""},
        {CIMScope::PARAMETER, " PARAMETER=\"true\""},
        {CIMScope::INDICATION, " INDICATION=\"true\""},
    };
    xml.Markup("<SCOPE");
    for (const auto& [scope, attribute] : attributes) {
        if (qualifier.hasScope(scope) || qualifier.hasScope(CIMScope::ANY)) {
            xml.Markup(attribute);
        }
    }
    xml.Markup("></SCOPE>");
}

} // namespace

void WritePropertyStart(XmlBuffer& xml, const CIMProperty& property, Shape shape) {
    WriteName(xml, shape.isArray ? "<PROPERTY.ARRAY NAME=\"" : "<PROPERTY NAME=\"", "A property",
              CIMModelView::name(property));
    xml.Markup(TypeAttribute(shape.type));
    if (shape.isArray) {
        WriteArraySize(xml, CIMModelView::type(property));
    }
    WriteRestOfStart(xml, property);
}

void WriteProperty(XmlBuffer& xml, const CIMProperty& property) {
    const CIMDataType& declared = CIMModelView::type(property);
    if (!declared) {
        Fail("Property " + property.getName() + " has no type defined");
    }
    const CIMValue& value = CIMModelView::value(property);
    const Shape shape = value ? ShapeOf(value) : Shape{declared.getType(), declared.isArrayType()};
    if (shape.type == CIMDataType::REFERENCE) {
        WriteReferenceProperty(xml, property, declared, value, shape);
        return;
    }
    if (TypeAttribute(shape.type).empty()) {
        Fail("Property " + property.getName() + " holds an embedded object");
    }
    WritePropertyStart(xml, property, shape);
    if (value) {
        WriteValue(xml, value, shape);
    }
    xml.Markup(shape.isArray ? "</PROPERTY.ARRAY>" : "</PROPERTY>");
}

void WriteInstanceStart(XmlBuffer& xml, const String& className,
                        const CIMQualifierArray& qualifiers) {
    WriteName(xml, "<INSTANCE CLASSNAME=\"", "An instance's class", className);
    xml.Markup(">");
    WriteQualifiers(xml, qualifiers);
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

void WriteQualifierType(XmlBuffer& xml, const CIMQualifierType& qualifier) {
    const CIMDataType type = qualifier.getDataType();
    WriteName(xml, "<QUALIFIER.DECLARATION NAME=\"", "A qualifier", qualifier.getName());
    xml.Markup(TypeAttribute(type.getType()));
    xml.Markup(type.isArrayType() ? " ISARRAY=\"true\"" : " ISARRAY=\"false\"");
    WriteArraySize(xml, type);
    WriteFlavors(xml, qualifier);
    xml.Markup(">");
    WriteScope(xml, qualifier);
    if (const CIMValue value = qualifier.getDefaultValue()) {
        WriteValue(xml, value, ShapeOf(value));
    }
    xml.Markup("</QUALIFIER.DECLARATION>");
}

} // namespace cimserver::cimxml
