// Classes and the parts of instances as XML (DMTF DSP0201), with everything that they hold: what a
// client did not ask for has been removed before. All functions throw CIMException FAILED for what
// has no XML form.
#pragma once

#include "cimserver/cimxml/Values.hpp"
#include "cimserver/cimxml/XmlBuffer.hpp"

#include "OW_CIM.hpp"

namespace cimserver::cimxml {

/// PROPERTY or one of its relatives.
void WriteProperty(XmlBuffer& xml, const OpenWBEM::CIMProperty& property);

/// PROPERTY or PROPERTY.ARRAY up to its value, the qualifiers included; `shape` is that of the
/// value, of a simple type.
void WritePropertyStart(XmlBuffer& xml, const OpenWBEM::CIMProperty& property, Shape shape);

/// INSTANCE up to its properties.
void WriteInstanceStart(XmlBuffer& xml, const OpenWBEM::String& className,
                        const OpenWBEM::CIMQualifierArray& qualifiers);

/// CLASS.
void WriteClass(XmlBuffer& xml, const OpenWBEM::CIMClass& cimClass);

/// QUALIFIER.DECLARATION.
void WriteQualifierType(XmlBuffer& xml, const OpenWBEM::CIMQualifierType& qualifier);

} // namespace cimserver::cimxml
