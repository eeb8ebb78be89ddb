#pragma once

// The files of an update as instances. README.md describes the class as a client meets it.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

#include "provider/filename/FileName.hpp"

/// Serves ZNX_AvailableSoftwareFileName. Every call runs the tool and keeps nothing. Any thread may
/// call, also side by side.
class FileNameProvider : public OpenWBEM::CppInstanceProviderIFC,
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

    /// Sets the property FileName, as a key, on an instance of the class: how the association shows
    /// a file.
    static void FileNameToCIMInstance(const OpenWBEM::String& name,
                                      OpenWBEM::CIMInstance& instance);

    /// Finds the file that the property FileName of an instance names; whatever of the provider
    /// API's exceptions stands in the way, the tool's failure included, becomes CIM_ERR_NOT_FOUND.
    void getFileNameWithCIMInstance(const OpenWBEM::CIMInstance& instance,
                                    FileNameRecord& record) const;

private:
    /// Sets the property FileName, a plain one, and the key list.
    void FileNameToCIMInstance(const OpenWBEM::String& ns, const FileNameRecord& record,
                               const OpenWBEM::CIMClass& cimClass,
                               OpenWBEM::CIMInstance& instance) const;

    void FileNameToCIMObjectPath(const FileNameRecord& record, OpenWBEM::CIMObjectPath& path) const;

    /// As getFileNameWithCIMInstance, for the key FileName of a path.
    void getFileNameWithCIMObjectPath(const OpenWBEM::CIMObjectPath& path,
                                      FileNameRecord& record) const;
};
