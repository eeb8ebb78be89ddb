// Values and object paths as XML (DMTF DSP0201: VALUE and its relatives, INSTANCENAME and paths).
// All functions throw CIMException FAILED for what has no XML form.
#pragma once

#include "cimserver/cimxml/XmlBuffer.hpp"

#include "OW_CIM.hpp"

#include <string_view>

namespace cimserver::cimxml {

inline std::string_view View(const OpenWBEM::String& text) {
    return {text.c_str(), text.length()};
}

/// ` NAME="..."` and the like: `start` holds everything up to the value's opening quote.
void WriteAttribute(XmlBuffer& xml, std::string_view start, const OpenWBEM::String& value);

/// The TYPE attribute of a simple type with the blank before it; empty for a type that has none
/// (null, references, embedded objects).
std::string_view TypeAttribute(OpenWBEM::CIMDataType::Type type);

/// Type and kind of a value, asked for once.
struct Shape {
    OpenWBEM::CIMDataType::Type type;
    bool isArray;
};

/// `value` must not be null.
inline Shape ShapeOf(const OpenWBEM::CIMValue& value) {
    return {value.getType(), value.isArray()};
}

/// VALUE, VALUE.ARRAY or VALUE.REFERENCE; `shape` is that of the value.
void WriteValue(XmlBuffer& xml, const OpenWBEM::CIMValue& value, Shape shape);

/// What stands within VALUE or KEYVALUE; `value` is a scalar and no reference.
void WriteScalar(XmlBuffer& xml, const OpenWBEM::CIMValue& value, OpenWBEM::CIMDataType::Type type);

/// CLASSNAME.
void WriteClassName(XmlBuffer& xml, const OpenWBEM::String& name);

/// INSTANCENAME.
void WriteInstanceName(XmlBuffer& xml, const OpenWBEM::String& className,
                       const OpenWBEM::CIMPropertyArray& keys);

/// The tags of INSTANCENAME and its KEYBINDING up to the text of the one key, which is a scalar and
/// no reference, and those behind it.
void WriteInstanceNameStart(XmlBuffer& xml, const OpenWBEM::String& className,
                            const OpenWBEM::String& key, OpenWBEM::CIMDataType::Type type);
void WriteInstanceNameEnd(XmlBuffer& xml);

/// INSTANCENAME with the path's class name and keys.
void WriteInstanceName(XmlBuffer& xml, const OpenWBEM::CIMObjectPath& path);

/// NAMESPACEPATH with the path's host and namespace.
void WriteNameSpacePath(XmlBuffer& xml, const OpenWBEM::CIMObjectPath& path);

} // namespace cimserver::cimxml
