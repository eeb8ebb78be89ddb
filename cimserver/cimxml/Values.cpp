#include "cimserver/cimxml/Values.hpp"

#include "OW_CIMModelView.hpp"

#include <cmath>

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

void WriteText(XmlBuffer& xml, const Bool& value) {
    xml.Markup(value ? "TRUE" : "FALSE");
}

void WriteText(XmlBuffer& xml, const String& value) {
    xml.Text(View(value));
}

void WriteText(XmlBuffer& xml, const Char16& value) {
    xml.Text(View(value.toString()));
}

void WriteText(XmlBuffer& xml, const CIMDateTime& value) {
    char text[CIMModelView::longestDateTime];
    xml.Markup({text, CIMModelView::writeText(value, text)});
}

/// The shortest text that reads as the same number; DSP0201 wants a point in it.
template <class Real>
void WriteReal(XmlBuffer& xml, Real value) {
    if (!std::isfinite(value)) {
        xml.Markup(std::isnan(value) ? "NaN" : value > 0 ? "INF" : "-INF");
        return;
    }
    char text[32];
    const auto* const end = std::to_chars(text, text + sizeof text, value).ptr;
    const std::string_view number(text, static_cast<std::size_t>(end - text));
    const std::size_t exponent = std::min(number.find('e'), number.size());
    xml.Markup(number.substr(0, exponent));
    if (number.find('.') == std::string_view::npos) {
        xml.Markup(".0");
    }
    xml.Markup(number.substr(exponent));
}

void WriteText(XmlBuffer& xml, Real32 value) {
    WriteReal(xml, value);
}

void WriteText(XmlBuffer& xml, Real64 value) {
    WriteReal(xml, value);
}

void WriteText(XmlBuffer& xml, UInt8 value) {
    xml.Number(unsigned{value});
}

void WriteText(XmlBuffer& xml, Int8 value) {
    xml.Number(int{value});
}

template <class Integer>
void WriteText(XmlBuffer& xml, Integer value) {
    xml.Number(value);
}

void WriteLocalNameSpacePath(XmlBuffer& xml, const CIMObjectPath& path) {
    const String nameSpace = path.getNameSpace();
    if (nameSpace.empty()) {
        OW_THROWCIMMSG(CIMException::FAILED, "Namespace not set");
    }
    xml.Markup("<LOCALNAMESPACEPATH>");
    std::string_view rest = View(nameSpace);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        xml.Markup("<NAMESPACE NAME=\"");
        xml.Attribute(rest.substr(0, end));
        xml.Markup("\"></NAMESPACE>");
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    xml.Markup("</LOCALNAMESPACEPATH>");
}

void WriteObjectName(XmlBuffer& xml, const CIMObjectPath& path) {
    if (path.isClassPath()) {
        WriteClassName(xml, path.getClassName());
    } else {
        WriteInstanceName(xml, path);
    }
}

void WriteText(XmlBuffer& xml, const CIMObjectPath& path) {
    const bool isClass = path.isClassPath();
    const bool isLocal = path.getHost().empty();
    if (isLocal) {
        xml.Markup(isClass ? "<LOCALCLASSPATH>" : "<LOCALINSTANCEPATH>");
        WriteLocalNameSpacePath(xml, path);
        WriteObjectName(xml, path);
        xml.Markup(isClass ? "</LOCALCLASSPATH>" : "</LOCALINSTANCEPATH>");
        return;
    }
    xml.Markup(isClass ? "<CLASSPATH>" : "<INSTANCEPATH>");
    WriteNameSpacePath(xml, path);
    WriteObjectName(xml, path);
    xml.Markup(isClass ? "</CLASSPATH>" : "</INSTANCEPATH>");
}

template <class T>
void WriteScalarOf(XmlBuffer& xml, const CIMValue& value) {
    T scalar;
    value.get(scalar);
    WriteText(xml, scalar);
}

template <>
void WriteScalarOf<String>(XmlBuffer& xml, const CIMValue& value) {
    xml.Text(View(*CIMModelView::text(value)));
}

template <class T>
void WriteArray(XmlBuffer& xml, const CIMValue& value) {
    Array<T> read;
    value.get(read);
    const Array<T>& elements = read;
    for (const T& element : elements) {
        xml.Markup("<VALUE>");
        WriteText(xml, element);
        xml.Markup("</VALUE>");
    }
}

template <class T>
void WriteContent(XmlBuffer& xml, const CIMValue& value, bool isArray) {
    if (isArray) {
        WriteArray<T>(xml, value);
    } else {
        WriteScalarOf<T>(xml, value);
    }
}

/// What stands within VALUE, VALUE.ARRAY or KEYVALUE.
void WriteContent(XmlBuffer& xml, const CIMValue& value, Shape shape) {
    switch (shape.type) {
    case CIMDataType::STRING:
        return WriteContent<String>(xml, value, shape.isArray);
    case CIMDataType::BOOLEAN:
        return WriteContent<Bool>(xml, value, shape.isArray);
    case CIMDataType::CHAR16:
        return WriteContent<Char16>(xml, value, shape.isArray);
    case CIMDataType::UINT8:
        return WriteContent<UInt8>(xml, value, shape.isArray);
    case CIMDataType::SINT8:
        return WriteContent<Int8>(xml, value, shape.isArray);
    case CIMDataType::UINT16:
        return WriteContent<UInt16>(xml, value, shape.isArray);
    case CIMDataType::SINT16:
        return WriteContent<Int16>(xml, value, shape.isArray);
    case CIMDataType::UINT32:
        return WriteContent<UInt32>(xml, value, shape.isArray);
    case CIMDataType::SINT32:
        return WriteContent<Int32>(xml, value, shape.isArray);
    case CIMDataType::UINT64:
        return WriteContent<UInt64>(xml, value, shape.isArray);
    case CIMDataType::SINT64:
        return WriteContent<Int64>(xml, value, shape.isArray);
    case CIMDataType::REAL32:
        return WriteContent<Real32>(xml, value, shape.isArray);
    case CIMDataType::REAL64:
        return WriteContent<Real64>(xml, value, shape.isArray);
    case CIMDataType::DATETIME:
        return WriteContent<CIMDateTime>(xml, value, shape.isArray);
    default:
        OW_THROWCIMMSG(CIMException::FAILED, "A value of this type cannot be written");
    }
}

void WriteReference(XmlBuffer& xml, const CIMValue& value, bool isArray) {
    if (isArray) {
        OW_THROWCIMMSG(CIMException::FAILED, "An array of references cannot be written");
    }
    xml.Markup("<VALUE.REFERENCE>");
    WriteScalarOf<CIMObjectPath>(xml, value);
    xml.Markup("</VALUE.REFERENCE>");
}

std::string_view KeyValueStart(CIMDataType::Type type) {
    switch (type) {
    case CIMDataType::BOOLEAN:
        return "<KEYVALUE VALUETYPE=\"boolean\">";
    case CIMDataType::STRING:
    case CIMDataType::DATETIME:
    case CIMDataType::CHAR16:
        return "<KEYVALUE VALUETYPE=\"string\">";
    default:
        return "<KEYVALUE VALUETYPE=\"numeric\">";
    }
}

constexpr std::string_view keyBindingStart = "<KEYBINDING NAME=\"";

void WriteKeyBinding(XmlBuffer& xml, const CIMProperty& key) {
    const CIMValue& value = CIMModelView::value(key);
    if (!value) {
        OW_THROWCIMMSG(CIMException::FAILED, ("Key " + key.getName() + " has no value").c_str());
    }
    const Shape shape = ShapeOf(value);
    WriteAttribute(xml, keyBindingStart, CIMModelView::name(key));
    if (shape.type == CIMDataType::REFERENCE) {
        xml.Markup(">");
        WriteReference(xml, value, shape.isArray);
    } else if (shape.isArray) {
        OW_THROWCIMMSG(CIMException::FAILED, ("Key " + key.getName() + " is an array").c_str());
    } else {
        xml.Markup(">");
        xml.Markup(KeyValueStart(shape.type));
        WriteContent(xml, value, shape);
        xml.Markup("</KEYVALUE>");
    }
    xml.Markup("</KEYBINDING>");
}

void WriteInstanceNameTag(XmlBuffer& xml, const String& className) {
    WriteAttribute(xml, "<INSTANCENAME CLASSNAME=\"", className);
    xml.Markup(">");
}

} // namespace

void WriteAttribute(XmlBuffer& xml, std::string_view start, const String& value) {
    xml.Markup(start);
    xml.Attribute(View(value));
    xml.Markup("\"");
}

std::string_view TypeAttribute(CIMDataType::Type type) {
    switch (type) {
    case CIMDataType::UINT8:
        return " TYPE=\"uint8\"";
    case CIMDataType::SINT8:
        return " TYPE=\"sint8\"";
    case CIMDataType::UINT16:
        return " TYPE=\"uint16\"";
    case CIMDataType::SINT16:
        return " TYPE=\"sint16\"";
    case CIMDataType::UINT32:
        return " TYPE=\"uint32\"";
    case CIMDataType::SINT32:
        return " TYPE=\"sint32\"";
    case CIMDataType::UINT64:
        return " TYPE=\"uint64\"";
    case CIMDataType::SINT64:
        return " TYPE=\"sint64\"";
    case CIMDataType::STRING:
        return " TYPE=\"string\"";
    case CIMDataType::BOOLEAN:
        return " TYPE=\"boolean\"";
    case CIMDataType::REAL32:
        return " TYPE=\"real32\"";
    case CIMDataType::REAL64:
        return " TYPE=\"real64\"";
    case CIMDataType::DATETIME:
        return " TYPE=\"datetime\"";
    case CIMDataType::CHAR16:
        return " TYPE=\"char16\"";
    default:
        return {};
    }
}

void WriteValue(XmlBuffer& xml, const CIMValue& value, Shape shape) {
    if (shape.type == CIMDataType::REFERENCE) {
        WriteReference(xml, value, shape.isArray);
        return;
    }
    xml.Markup(shape.isArray ? "<VALUE.ARRAY>" : "<VALUE>");
    WriteContent(xml, value, shape);
    xml.Markup(shape.isArray ? "</VALUE.ARRAY>" : "</VALUE>");
}

void WriteScalar(XmlBuffer& xml, const CIMValue& value, CIMDataType::Type type) {
    WriteContent(xml, value, {type, false});
}

void WriteClassName(XmlBuffer& xml, const String& name) {
    WriteAttribute(xml, "<CLASSNAME NAME=\"", name);
    xml.Markup("></CLASSNAME>");
}

void WriteInstanceName(XmlBuffer& xml, const String& className, const CIMPropertyArray& keys) {
    WriteInstanceNameTag(xml, className);
    for (const CIMProperty& key : keys) {
        WriteKeyBinding(xml, key);
    }
    xml.Markup("</INSTANCENAME>");
}

void WriteInstanceNameStart(XmlBuffer& xml, const String& className, const String& key,
                            CIMDataType::Type type) {
    WriteInstanceNameTag(xml, className);
    WriteAttribute(xml, keyBindingStart, key);
    xml.Markup(">");
    xml.Markup(KeyValueStart(type));
}

void WriteInstanceNameEnd(XmlBuffer& xml) {
    xml.Markup("</KEYVALUE></KEYBINDING></INSTANCENAME>");
}

void WriteNameSpacePath(XmlBuffer& xml, const CIMObjectPath& path) {
    xml.Markup("<NAMESPACEPATH><HOST>");
    xml.Text(View(path.getHost()));
    xml.Markup("</HOST>");
    WriteLocalNameSpacePath(xml, path);
    xml.Markup("</NAMESPACEPATH>");
}

void WriteInstanceName(XmlBuffer& xml, const CIMObjectPath& path) {
    WriteInstanceName(xml, path.getClassName(), path.getKeys());
}

} // namespace cimserver::cimxml
