// Reads names of classes, instances and namespaces from a request (DMTF DSP0201, naming and
// location elements). All functions throw ProtocolError when the elements do not fit the DTD, and
// CIMException INVALID_PARAMETER when a key's text is no value of its type.
#pragma once

#include "cimserver/cimxml/XmlTree.hpp"

#include "OW_CIM.hpp"

namespace cimserver::cimxml {

/// `root/cimv2` of a LOCALNAMESPACEPATH.
OpenWBEM::String ReadNameSpace(const Element& localNameSpacePath);

/// An INSTANCENAME. A key without TYPE gets the type of its text: string, boolean, or for a number
/// the first of sint64, uint64 and real64 that holds it. The one key of the form without key
/// bindings has an empty name.
OpenWBEM::CIMObjectPath ReadInstanceName(const Element& instanceName);

/// An INSTANCENAME or a CLASSNAME.
OpenWBEM::CIMObjectPath ReadObjectName(const Element& element);

/// A LOCALINSTANCEPATH or a LOCALCLASSPATH.
OpenWBEM::CIMObjectPath ReadLocalPath(const Element& path);

/// The path within a VALUE.REFERENCE, which may be of any form.
OpenWBEM::CIMObjectPath ReadReference(const Element& valueReference);

} // namespace cimserver::cimxml
