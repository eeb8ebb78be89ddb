#pragma once

// The optional components of one available update: which there are, as the tool tells, and which of
// them a client has chosen, which only this process knows. README.md describes the class as a
// client meets it.
//
// Which update they belong to is selected elsewhere, by SelectComponentsOf; what has been chosen is
// fetched with GetOptionalComponentList. The selected update and the list change together: both are
// guarded by the lock of SharedList.hpp.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// One optional component, a line of the tool's listing.
struct Component {
    OpenWBEM::String InstanceID; ///< the line's position in decimal, from "0"
    OpenWBEM::String Name;
    OpenWBEM::String Version;          ///< always empty
    OpenWBEM::String ShortDescription; ///< always empty
    bool Install = false;              ///< chosen by a client
};

/// The list of the last enumeration with what clients have chosen since; empty before the first,
/// after one that failed at once, and after another update was selected. Replaced, changed and read
/// as SharedList.hpp says.
extern OpenWBEM::Array<Component> gComponentList;

/// Selects the update whose components are listed from now on, and empties the list, in one step.
/// Any thread may call.
void SelectComponentsOf(const OpenWBEM::String& name, const OpenWBEM::String& version);

/// The names of the chosen components in the order of the list, with one blank between them; empty
/// when none is chosen. Any thread may call.
OpenWBEM::String GetOptionalComponentList();

/// Serves ZNX_SoftwareUpdateComponent. Enumerations run the tool and replace the list, getInstance
/// answers from the list, modifyInstance changes it. Any thread may call, also side by side.
class ComponentProvider : public OpenWBEM::CppInstanceProviderIFC,
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

    /// Chooses a component or drops it: stores the property Install of the instance in the record
    /// that its property InstanceID names. Throws CIM_ERR_INVALID_PARAMETER when InstanceID is
    /// absent or null or Install is no boolean, CIM_ERR_NOT_FOUND for an unknown InstanceID and an
    /// absent or null Install; nothing is changed then.
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
    using List = OpenWBEM::Array<Component>;

    /// Runs the tool for the selected update, publishes its records as gComponentList and returns
    /// them. When an update is selected meanwhile, also the same one again, they are only returned:
    /// the list belongs to that selection. Throws CIM_ERR_FAILED.
    List UpdateList();

    OpenWBEM::CIMInstance GetInstance(int index, const List& list) const;

    void SetObjectPathKeys(OpenWBEM::CIMObjectPath& path, unsigned int index,
                           const List& list) const;
};
