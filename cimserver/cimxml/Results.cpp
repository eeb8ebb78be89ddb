#include "cimserver/cimxml/Results.hpp"

#include "cimserver/cimxml/Elements.hpp"
#include "cimserver/cimxml/Values.hpp"

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

void WriteFullInstancePath(XmlBuffer& xml, const CIMObjectPath& path) {
    xml.Markup("<INSTANCEPATH>");
    WriteNameSpacePath(xml, path);
    WriteInstanceName(xml, path);
    xml.Markup("</INSTANCEPATH>");
}

void WriteFullClassPath(XmlBuffer& xml, const CIMObjectPath& path) {
    xml.Markup("<CLASSPATH>");
    WriteNameSpacePath(xml, path);
    WriteClassName(xml, path.getClassName());
    xml.Markup("</CLASSPATH>");
}

/// ` PARAMTYPE="..."`. A value without a simple type is refused when it is written.
void WriteType(XmlBuffer& xml, CIMDataType::Type type) {
    const bool isReference = type == CIMDataType::REFERENCE;
    const std::string_view attribute = isReference ? " TYPE=\"reference\"" : TypeAttribute(type);
    if (!attribute.empty()) {
        xml.Markup(" PARAM");
        xml.Markup(attribute.substr(1));
    }
}

void WriteReferences(XmlBuffer& xml, const CIMValue& value) {
    CIMObjectPathArray read;
    value.get(read);
    const CIMObjectPathArray& paths = read;
    xml.Markup("<VALUE.REFARRAY>");
    for (const CIMObjectPath& path : paths) {
        WriteValue(xml, CIMValue(path), {CIMDataType::REFERENCE, false});
    }
    xml.Markup("</VALUE.REFARRAY>");
}

void WriteReturnValue(XmlBuffer& xml, const CIMValue& value) {
    const Shape shape = ShapeOf(value);
    if (shape.isArray) {
        OW_THROWCIMMSG(CIMException::FAILED, "The return value is an array");
    }
    xml.Markup("<RETURNVALUE");
    WriteType(xml, shape.type);
    xml.Markup(">");
    WriteValue(xml, value, shape);
    xml.Markup("</RETURNVALUE>");
}

void WriteOutParameter(XmlBuffer& xml, const String& name, const CIMValue& value) {
    const Shape shape = ShapeOf(value);
    WriteAttribute(xml, "<PARAMVALUE NAME=\"", name);
    WriteType(xml, shape.type);
    xml.Markup(">");
    if (shape.type == CIMDataType::REFERENCE && shape.isArray) {
        WriteReferences(xml, value);
    } else {
        WriteValue(xml, value, shape);
    }
    xml.Markup("</PARAMVALUE>");
}

} // namespace

void WriteInstancePath(XmlBuffer& xml, const CIMObjectPath& path) {
    xml.Markup("<OBJECTPATH>");
    WriteFullInstancePath(xml, path);
    xml.Markup("</OBJECTPATH>");
}

void WriteClassPath(XmlBuffer& xml, const CIMObjectPath& path) {
    xml.Markup("<OBJECTPATH>");
    WriteFullClassPath(xml, path);
    xml.Markup("</OBJECTPATH>");
}

void WriteInstanceWithPath(XmlBuffer& xml, InstanceWriter& instances, const CIMObjectPath& path,
                           const CIMInstance& instance) {
    xml.Markup("<VALUE.OBJECTWITHPATH>");
    WriteFullInstancePath(xml, path);
    instances.Write(instance);
    xml.Markup("</VALUE.OBJECTWITHPATH>");
}

void WriteClassWithPath(XmlBuffer& xml, const CIMObjectPath& path, const CIMClass& cimClass) {
    xml.Markup("<VALUE.OBJECTWITHPATH>");
    WriteFullClassPath(xml, path);
    WriteClass(xml, cimClass);
    xml.Markup("</VALUE.OBJECTWITHPATH>");
}

void WritePropertyValue(XmlBuffer& xml, const CIMValue& value) {
    if (value) {
        WriteValue(xml, value, ShapeOf(value));
    }
}

void WriteMethodResult(XmlBuffer& xml, const CIMValue& returnValue, const CIMParamValueArray& out) {
    if (returnValue) {
        WriteReturnValue(xml, returnValue);
    }
    for (const CIMParamValue& parameter : out) {
        const CIMValue value = parameter.getValue();
        if (value) {
            WriteOutParameter(xml, parameter.getName(), value);
        }
    }
}

} // namespace cimserver::cimxml
