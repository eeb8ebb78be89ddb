// Instances and classes as XML (DMTF DSP0201), with everything that they hold: what a client did
// not ask for has been removed before. All functions throw CIMException FAILED for what has no XML
// form.
#pragma once

#include "cimserver/cimxml/XmlBuffer.hpp"

#include "OW_CIM.hpp"

namespace cimserver::cimxml {

/// INSTANCE.
void WriteInstance(XmlBuffer& xml, const OpenWBEM::CIMInstance& instance);

/// VALUE.NAMEDINSTANCE: the instance behind the name that its keys give it.
void WriteNamedInstance(XmlBuffer& xml, const OpenWBEM::CIMInstance& instance);

/// CLASS.
void WriteClass(XmlBuffer& xml, const OpenWBEM::CIMClass& cimClass);

/// QUALIFIER.DECLARATION.
void WriteQualifierType(XmlBuffer& xml, const OpenWBEM::CIMQualifierType& qualifier);

} // namespace cimserver::cimxml
