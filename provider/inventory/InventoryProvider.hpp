#pragma once

// The installed software, one instance per package, and the version of the Element Manager
// cartridge, which is one of the packages. README.md describes the two classes as a client meets
// them.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// One installed package, a line of the tool's listing.
struct InventoryObject {
    OpenWBEM::String InstanceID; ///< the line's position in decimal, from "0"
    OpenWBEM::String Name;
    OpenWBEM::UInt16 Classification = 0;
    OpenWBEM::String Version;
    OpenWBEM::String Date; ///< the tool's text, read only when an instance is made
};

/// The list of the last enumeration; empty before the first and after one that failed at once.
/// Replaced and read as SharedList.hpp says.
extern OpenWBEM::Array<InventoryObject> gInventoryList;

/// The name of the package that is the cartridge. Written by initialize only, and guarded as the
/// lists are: an enumeration of an earlier master may read it meanwhile.
extern OpenWBEM::String gEMCartridgeName;

/// Serves ZNX_SoftwareIdentity and ZNX_ElementManagerCartridgeVersionInfo. Enumerations run the
/// tool and replace the list, getInstance answers from the list. Any thread may call, also side by
/// side.
class InventoryProvider : public OpenWBEM::CppInstanceProviderIFC,
                          public OpenWBEM::CppMethodProviderIFC {
public:
    /// Takes the server's logger, and the cartridge's name from configuration item
    /// "qv.em_filename".
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

private:
    using List = OpenWBEM::Array<InventoryObject>;

    /// Runs the tool, publishes its records as gInventoryList and returns them: an enumeration
    /// hands over its own records, whatever another one publishes meanwhile. Throws CIM_ERR_FAILED.
    List UpdateList();

    /// The instance of a record, complete whatever the property list asks for. A date text that the
    /// provider API does not read throws its DateTimeException.
    OpenWBEM::CIMInstance GetInstance(int index, const OpenWBEM::StringArray* propertyList,
                                      const List& list) const;

    void SetObjectPathKeys(OpenWBEM::CIMObjectPath& path, unsigned int index,
                           const List& list) const;
};
