// The results of associations, of GetProperty and of method calls as XML (DMTF DSP0201). All
// functions throw CIMException FAILED for what has no XML form.
#pragma once

#include "cimserver/cimxml/InstanceWriter.hpp"
#include "cimserver/cimxml/XmlBuffer.hpp"

#include "OW_CIM.hpp"

namespace cimserver::cimxml {

// OBJECTPATH with an INSTANCEPATH, also when there are no keys, or with a CLASSPATH.
void WriteInstancePath(XmlBuffer& xml, const OpenWBEM::CIMObjectPath& path);
void WriteClassPath(XmlBuffer& xml, const OpenWBEM::CIMObjectPath& path);

// VALUE.OBJECTWITHPATH; `instances` writes to the same buffer.
void WriteInstanceWithPath(XmlBuffer& xml, InstanceWriter& instances,
                           const OpenWBEM::CIMObjectPath& path,
                           const OpenWBEM::CIMInstance& instance);
void WriteClassWithPath(XmlBuffer& xml, const OpenWBEM::CIMObjectPath& path,
                        const OpenWBEM::CIMClass& cimClass);

/// VALUE or one of its relatives; nothing for null.
void WritePropertyValue(XmlBuffer& xml, const OpenWBEM::CIMValue& value);

/// RETURNVALUE and PARAMVALUE elements with the types that the values have. What is null is left
/// out: the standard allows it, and wbemcli does not survive a PARAMVALUE without value.
void WriteMethodResult(XmlBuffer& xml, const OpenWBEM::CIMValue& returnValue,
                       const OpenWBEM::CIMParamValueArray& out);

} // namespace cimserver::cimxml
