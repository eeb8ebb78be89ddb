// What the operations on instances have in common: finding the provider, the paths it is given, and
// checks of what it returns.
#pragma once

#include "cimserver/operations/Surroundings.hpp"

#include "OW_CIM.hpp"

namespace cimserver::operations {

host::Target TargetOf(const OpenWBEM::CIMClass& cimClass, const OpenWBEM::String& nameSpace);
/// The text of the Provider qualifier of a class or method; empty when it has none.
OpenWBEM::String ProviderOf(const OpenWBEM::CIMQualifier& qualifier);

/// False when the class has no provider.
bool AskProvider(const OpenWBEM::CIMClass& cimClass, const Surroundings& around,
                 const char* operation, const host::InstanceCall& call);
/// The same for an instance: a class without provider has none, so CIMException NOT_FOUND with the
/// path as text.
void AskProviderOf(const OpenWBEM::CIMObjectPath& path, const OpenWBEM::CIMClass& cimClass,
                   const Surroundings& around, const char* operation,
                   const host::InstanceCall& call);

// An instance name with the keys of its class (a single one need not have been named), and the
// class name as the client wrote it. In the reading operations a provider sees no namespace, in all
// others that of the request.
OpenWBEM::CIMObjectPath PathFromClient(OpenWBEM::CIMObjectPath instanceName,
                                       const OpenWBEM::CIMClass& cimClass);
OpenWBEM::CIMObjectPath PathFromClient(OpenWBEM::CIMObjectPath instanceName,
                                       const OpenWBEM::CIMClass& cimClass,
                                       const OpenWBEM::String& nameSpace);

/// What the provider holds before a change or a method call, with everything. Throws what it
/// throws, and CIMException FAILED when it returns a null instance.
OpenWBEM::CIMInstance CurrentInstance(OpenWBEM::CppInstanceProviderIFC& provider,
                                      const OpenWBEM::ProviderEnvironmentIFCRef& env,
                                      const OpenWBEM::CIMObjectPath& path,
                                      const OpenWBEM::CIMClass& cimClass,
                                      const Surroundings& around);

/// Throws CIMException FAILED for a null instance and for one without class name.
void CheckNamed(const OpenWBEM::CIMInstance& instance);

/// Throws CIMException NO_SUCH_PROPERTY.
OpenWBEM::CIMProperty FindProperty(const OpenWBEM::CIMClass& cimClass,
                                   const OpenWBEM::String& name);

} // namespace cimserver::operations
