// The operations on classes and qualifier types, answered from the schema alone.
#pragma once

#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

#include "OW_CIMException.hpp"

namespace cimserver::operations {

/// Throws CIMException with that number, and with the path of the class as text, when there is none
/// of that name.
const OpenWBEM::CIMClass&
FindClass(const mof::Schema& schema, const OpenWBEM::String& nameSpace,
          const OpenWBEM::String& name,
          OpenWBEM::CIMException::ErrNoType whenUnknown = OpenWBEM::CIMException::INVALID_CLASS);

/// A class that is unknown is NOT_FOUND here, INVALID_CLASS in the enumerations.
void Carry(const GetClass& call, const mof::Schema& schema, const OpenWBEM::String& nameSpace,
           ResultSink& sink);
void Carry(const EnumerateClasses& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink);
void Carry(const EnumerateClassNames& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink);
void Carry(const GetQualifier& call, const mof::Schema& schema, const OpenWBEM::String& nameSpace,
           ResultSink& sink);
void Carry(const EnumerateQualifiers& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink);

} // namespace cimserver::operations
