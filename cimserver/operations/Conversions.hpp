// Values brought into the types of a class, with errors that say whose value it was.
#pragma once

#include "OW_CIM.hpp"

namespace cimserver::operations {

/// Throws CIMException with the number of `error`, FAILED when it has none, and the text
/// `WHAT: TEXT`, for example `Property Count: Unable to convert "many" into UInt8`.
[[noreturn]] void RethrowNaming(const OpenWBEM::String& what, const OpenWBEM::Exception& error);
/// The same with another number.
[[noreturn]] void RethrowNaming(const OpenWBEM::String& what, const OpenWBEM::Exception& error,
                                OpenWBEM::CIMException::ErrNoType number);

/// As syncWithClass, which throws an error that names property or key.
void SyncWithClass(OpenWBEM::CIMInstance& instance, const OpenWBEM::CIMClass& cimClass);
void SyncWithClass(OpenWBEM::CIMObjectPath& path, const OpenWBEM::CIMClass& cimClass);

} // namespace cimserver::operations
