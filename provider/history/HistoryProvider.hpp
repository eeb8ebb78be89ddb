#pragma once

// The updates that have been applied, one instance each, and their roll-back. README.md describes
// the class as a client meets it.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// One applied update, a line of the tool's listing.
struct HistoryUpdate {
    OpenWBEM::String InstanceID; ///< the line's position in decimal, from "0"
    OpenWBEM::String Date;       ///< the tool's text, read only when an instance is made
    OpenWBEM::String Category;
    OpenWBEM::String Name;
    OpenWBEM::String Version;
    OpenWBEM::String Description;
    bool Removable = false;

    /// Starts to roll the update back on a task of its own and returns true; how it ends is only
    /// logged. Throws CIM_ERR_FAILED when it cannot be started.
    bool Remove() const;
};

/// The list of the last enumeration; empty before the first and after one that failed at once.
/// Replaced and read as SharedList.hpp says.
extern OpenWBEM::Array<HistoryUpdate> gHistoryList;

/// Serves ZNX_HistorySoftwareUpdate. Enumerations run the tool and replace the list; getInstance
/// and methods answer from the list. Any thread may call, also side by side.
class HistoryUpdateProvider : public OpenWBEM::CppInstanceProviderIFC,
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

    /// The one method is Remove.
    OpenWBEM::CIMValue invokeMethod(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                                    const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& path,
                                    const OpenWBEM::String& methodName,
                                    const OpenWBEM::CIMParamValueArray& in,
                                    OpenWBEM::CIMParamValueArray& out) override;

private:
    using List = OpenWBEM::Array<HistoryUpdate>;

    /// Runs the tool, publishes its records as gHistoryList and copies them to `list`: an
    /// enumeration hands over its own records, whatever another one publishes meanwhile. Returns
    /// true; throws CIM_ERR_FAILED.
    bool UpdateHistoryList(List& list);

    void SetObjectPathKeys(OpenWBEM::CIMObjectPath& path, unsigned int index,
                           const List& list) const;

    /// The instance of a record. Each entry "UpdateDescription" of the property list asks the tool
    /// for the long description; the list has no other effect and may be null. A date text that the
    /// provider API does not read throws its DateTimeException.
    OpenWBEM::CIMInstance GetInstance(int index, const OpenWBEM::StringArray* propertyList,
                                      const List& list) const;
};
