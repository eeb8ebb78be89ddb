#pragma once

// The updates that are being applied now, as instances. README.md describes the class as a client
// meets it.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

#include "provider/active/Active.hpp"

/// Serves ZNX_ActiveSoftwareUpdate. Every call asks the tool and keeps nothing. Any thread
/// may call, also side by side.
class ActiveUpdateProvider : public OpenWBEM::CppInstanceProviderIFC,
                             public OpenWBEM::CppMethodProviderIFC {
public:
    void initialize(const OpenWBEM::ProviderEnvironmentIFCRef& env) override;

    virtual void cleanup();

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

    /// Looks the update up, and refuses.
    void deleteInstance(const OpenWBEM::ProviderEnvironmentIFCRef& env, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMObjectPath& cop) override;

    void modifyInstance(const OpenWBEM::ProviderEnvironmentIFCRef& env, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMInstance& modifiedInstance,
                        const OpenWBEM::CIMInstance& previousInstance,
                        OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                        const OpenWBEM::StringArray* propertyList,
                        const OpenWBEM::CIMClass& theClass) override;

    /// The one method is Cancel.
    OpenWBEM::CIMValue invokeMethod(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                                    const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& path,
                                    const OpenWBEM::String& methodName,
                                    const OpenWBEM::CIMParamValueArray& in,
                                    OpenWBEM::CIMParamValueArray& out) override;

    /// Sets the properties on an instance, all of them but a description that the tool cannot tell,
    /// and then the key list. Throws DateTimeException.
    void ActiveUpdateToCIMInstance(const OpenWBEM::String& ns, const ActiveUpdate& record,
                                   const OpenWBEM::CIMClass& cimClass,
                                   OpenWBEM::CIMInstance& instance) const;

    /// Makes a path that of the record; its namespace stays.
    void ActiveUpdateToCIMObjectPath(const ActiveUpdate& record,
                                     OpenWBEM::CIMObjectPath& path) const;

    /// Finds the update that the key InstanceID of a path names. CIM_ERR_INVALID_PARAMETER without
    /// that key, or where its value is null or no text; CIM_ERR_NOT_FOUND when the lookup ends in
    /// any of the provider API's exceptions, the tool's failure included.
    void getActiveUpdateWithCIMObjectPath(const OpenWBEM::CIMObjectPath& path,
                                          ActiveUpdate& record) const;

    /// The same for the property InstanceID of an instance.
    void getActiveUpdateWithCIMInstance(const OpenWBEM::CIMInstance& instance,
                                        ActiveUpdate& record) const;
};
