#pragma once

// The object that the CIM server loads, and the only place where its calls enter. Every call is
// traced and handed, with its arguments unchanged, to the class provider of its class name.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// The server makes one with createProviderSoftwareUpdateProvider, owns it, and calls initialize
/// before any request; it also makes one at its start that it never initializes. All state is in
/// static objects of the library, shared by whatever objects exist. Any thread may call the
/// operations, also side by side. A class name that no class provider serves is
/// CIM_ERR_INVALID_CLASS.
class SoftwareUpdateProvider : public OpenWBEM::CppMethodProviderIFC,
                               public OpenWBEM::CppAssociatorProviderIFC {
public:
    /// The server tells nothing else of the end: calls cleanup when this object was initialized.
    ~SoftwareUpdateProvider() override;

    /// Reads the environment variable "provider_agent_debug" (a number other than 0 switches debug
    /// output on), takes the server's logger and initializes the class providers.
    void initialize(const OpenWBEM::ProviderEnvironmentIFCRef& env) override;

    /// Forwarded to the class providers. No function of the interface; the server does not know it.
    virtual void cleanup();

    /// False while a background task runs code of the library.
    bool canUnload() override;

    void enumInstanceNames(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                           const OpenWBEM::String& ns, const OpenWBEM::String& className,
                           OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                           const OpenWBEM::CIMClass& cimClass) override;

    void enumInstances(const OpenWBEM::ProviderEnvironmentIFCRef& env, const OpenWBEM::String& ns,
                       const OpenWBEM::String& className,
                       OpenWBEM::CIMInstanceResultHandlerIFC& result,
                       OpenWBEM::WBEMFlags::ELocalOnlyFlag localOnly,
                       OpenWBEM::WBEMFlags::EDeepFlag deep,
                       OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                       OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                       const OpenWBEM::StringArray* propertyList,
                       const OpenWBEM::CIMClass& requestedClass,
                       const OpenWBEM::CIMClass& cimClass) override;

    OpenWBEM::CIMInstance getInstance(
        const OpenWBEM::ProviderEnvironmentIFCRef& env, const OpenWBEM::String& ns,
        const OpenWBEM::CIMObjectPath& instanceName, OpenWBEM::WBEMFlags::ELocalOnlyFlag localOnly,
        OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
        OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
        const OpenWBEM::StringArray* propertyList, const OpenWBEM::CIMClass& cimClass) override;

    OpenWBEM::CIMObjectPath createInstance(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                                           const OpenWBEM::String& ns,
                                           const OpenWBEM::CIMInstance& cimInstance) override;

    void deleteInstance(const OpenWBEM::ProviderEnvironmentIFCRef& env, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMObjectPath& cop) override;

    void modifyInstance(const OpenWBEM::ProviderEnvironmentIFCRef& env, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMInstance& modifiedInstance,
                        const OpenWBEM::CIMInstance& previousInstance,
                        OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                        const OpenWBEM::StringArray* propertyList,
                        const OpenWBEM::CIMClass& theClass) override;

    OpenWBEM::CIMValue invokeMethod(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                                    const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& path,
                                    const OpenWBEM::String& methodName,
                                    const OpenWBEM::CIMParamValueArray& in,
                                    OpenWBEM::CIMParamValueArray& out) override;

    void associators(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                     OpenWBEM::CIMInstanceResultHandlerIFC& result, const OpenWBEM::String& ns,
                     const OpenWBEM::CIMObjectPath& objectName, const OpenWBEM::String& assocClass,
                     const OpenWBEM::String& resultClass, const OpenWBEM::String& role,
                     const OpenWBEM::String& resultRole,
                     OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                     OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                     const OpenWBEM::StringArray* propertyList) override;

    void associatorNames(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                         OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                         const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& objectName,
                         const OpenWBEM::String& assocClass, const OpenWBEM::String& resultClass,
                         const OpenWBEM::String& role, const OpenWBEM::String& resultRole) override;

    void references(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                    OpenWBEM::CIMInstanceResultHandlerIFC& result, const OpenWBEM::String& ns,
                    const OpenWBEM::CIMObjectPath& objectName, const OpenWBEM::String& resultClass,
                    const OpenWBEM::String& role,
                    OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                    OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                    const OpenWBEM::StringArray* propertyList) override;

    void referenceNames(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                        OpenWBEM::CIMObjectPathResultHandlerIFC& result, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMObjectPath& objectName,
                        const OpenWBEM::String& resultClass, const OpenWBEM::String& role) override;
};

extern "C" {

/// The entry point of a provider library: a new SoftwareUpdateProvider, owned by the caller.
OpenWBEM::CppProviderBaseIFC* createProviderSoftwareUpdateProvider();

/// The version of the provider interface that the library is made for; the server loads no other.
const char* getOWVersion();
}
