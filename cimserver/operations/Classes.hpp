// The operations on classes, answered from the schema alone.
#pragma once

#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

namespace cimserver::operations {

/// Throws CIMException INVALID_CLASS, with the path of the class as text, when there is none of
/// that name.
const OpenWBEM::CIMClass& FindClass(const mof::Schema& schema, const OpenWBEM::String& nameSpace,
                                    const OpenWBEM::String& name);

void Carry(const GetClass& call, const mof::Schema& schema, const OpenWBEM::String& nameSpace,
           ResultSink& sink);
void Carry(const EnumerateClasses& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink);
void Carry(const EnumerateClassNames& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink);

} // namespace cimserver::operations
