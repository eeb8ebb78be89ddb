#pragma once

// The association between the available updates and their files. README.md describes it as a client
// meets it.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// Serves ZNX_AvailableSoftwareFileList: its instances, and the way from one end to the other. The
/// updates are those of the last enumeration of the available updates, each call working on the
/// list as it found it; their files come from the tool, one run per update. Any thread may call,
/// also side by side.
class FileListMapProvider : public virtual OpenWBEM::CppInstanceProviderIFC,
                            public OpenWBEM::CppAssociatorProviderIFC {
public:
    void initialize(const OpenWBEM::ProviderEnvironmentIFCRef& env) override;

    virtual void cleanup();

    /// The update itself, or its files, as result class, role or result role say; with none of
    /// them CIM_ERR_NOT_SUPPORTED.
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

    /// The association's instances of an update; `resultClass` is the class name that they bear.
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

    /// Always an empty instance, without a class name.
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

    // What role and result class follow from each other. No operation applies these.

    /// Fills in what is empty of the three texts.
    void CheckRolesAndResults(const OpenWBEM::CIMObjectPath& objectName, OpenWBEM::String& role,
                              OpenWBEM::String& resultRole, OpenWBEM::String& resultClass) const;
    /// CIM_ERR_TYPE_MISMATCH for a path of any other class than the two ends'.
    OpenWBEM::String ObjectNameToRole(const OpenWBEM::CIMObjectPath& objectName) const;
    OpenWBEM::String RoleToOtherRole(const OpenWBEM::String& role) const;
};
