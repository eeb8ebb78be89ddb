#pragma once

// The updates that the appliance holds and can apply, and how new ones are fetched. README.md
// describes the class as a client meets it.
//
// ODDITY AV-1: "Avaliable" in the names of this unit; other code refers to them.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// One available update, a line of the tool's listing, and what can be done with it. The actions
/// run the tool for Name and Version, which go on the command line as they are; they throw
/// CIM_ERR_FAILED when the tool fails. Any thread may call them on a record of its own.
struct AvaliableUpdate {
    OpenWBEM::String InstanceID; ///< the line's position in decimal, from "0"
    OpenWBEM::String Name;
    OpenWBEM::String Version;
    OpenWBEM::String ShortDescription;
    bool RebootRequired = false;
    OpenWBEM::String Size; ///< the tool's text; the unit is its own
    OpenWBEM::UInt8 Status = 0;

    /// Starts to apply the update with the chosen optional components and returns at once, always
    /// an empty text.
    OpenWBEM::String Apply() const;

    /// What the tool warns of. Exit codes above 1 are failures.
    OpenWBEM::String Warnings() const;

    /// Whether the tool knows optional components of the update. Selects it as the one whose
    /// components are listed, also when it has none. Exit codes above 1 are failures.
    bool HasOptionalComponents() const;

    /// Schedules the update and returns what the tool prints. Both texts are put into double
    /// quotes.
    OpenWBEM::String Schedule(const OpenWBEM::String& date, const OpenWBEM::String& time) const;
};

/// The list of the last enumeration; a placeholder record after initialize, empty after an
/// enumeration that failed at once. Replaced and read as SharedList.hpp says.
extern OpenWBEM::Array<AvaliableUpdate> gAvaliableList;

/// Serves ZNX_AvailableSoftwareUpdate. Enumerations run the tool and replace the list; getInstance
/// and the methods of an update refer to the list as it stands. Any thread may call, also side by
/// side.
class AvaliableUpdateProvider : public OpenWBEM::CppInstanceProviderIFC,
                                public OpenWBEM::CppMethodProviderIFC {
public:
    using List = OpenWBEM::Array<AvaliableUpdate>;

    /// Appends the placeholder record to gAvaliableList.
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

    /// Parameters are taken by position. README.md has the methods, their parameters and the code
    /// of each refusal.
    OpenWBEM::CIMValue invokeMethod(const OpenWBEM::ProviderEnvironmentIFCRef& env,
                                    const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& path,
                                    const OpenWBEM::String& methodName,
                                    const OpenWBEM::CIMParamValueArray& in,
                                    OpenWBEM::CIMParamValueArray& out) override;

    /// Runs the tool, publishes its records as gAvaliableList and returns them: an enumeration
    /// hands over its own records, whatever another one publishes meanwhile. Throws CIM_ERR_FAILED.
    List GetCachedList();

    /// The instance of record `index` of the list, which is the caller's own records or a snapshot
    /// of gAvaliableList. Runs the tool for each "UpdateDescription" in `properties`, which may be
    /// null; throws CIM_ERR_FAILED when that fails.
    OpenWBEM::CIMInstance GetInstance(int index, const OpenWBEM::StringArray* properties,
                                      const List& list) const;

    /// Gives the path the key of record `index` of the list and no other.
    void SetObjectPathKeys(OpenWBEM::CIMObjectPath& path, unsigned int index,
                           const List& list) const;

private:
    // The methods of the class: each starts the tool in the background and returns an empty text,
    // or returns why the arguments are refused.
    OpenWBEM::String GetViaFtp(const OpenWBEM::String& server, const OpenWBEM::String& first,
                               const OpenWBEM::String& second, const OpenWBEM::String& third) const;
    OpenWBEM::String GetViaHttp(const OpenWBEM::String& server, const OpenWBEM::String& first,
                                const OpenWBEM::String& second, const OpenWBEM::String& third,
                                bool flag) const;
    OpenWBEM::String GetViaSamba(const OpenWBEM::String& server, const OpenWBEM::String& first,
                                 const OpenWBEM::String& second,
                                 const OpenWBEM::String& third) const;
    OpenWBEM::String GetViaUsb(const OpenWBEM::String& path) const;
    OpenWBEM::String GetViaHardDrive(const OpenWBEM::String& path) const;
    OpenWBEM::String GetViaElementManager() const;

    /// Asks the tool how the operation in progress goes: its code, -1 to 2, and its words in
    /// `text`. Output that makes no sense gives -1 and says so in `text`.
    OpenWBEM::Int8 GetProgress(OpenWBEM::String& text) const;

    /// A method of one update: the record is looked for before the name is.
    OpenWBEM::CIMValue InvokeOnUpdate(const OpenWBEM::CIMObjectPath& path,
                                      const OpenWBEM::String& methodName,
                                      const OpenWBEM::CIMParamValueArray& in) const;
};
