#include "provider/component/ComponentProvider.hpp"

#include "provider/common/Common.hpp"
#include "provider/common/SharedList.hpp"

#include <mutex>
#include <string>

using OpenWBEM::Array;
using OpenWBEM::Bool;
using OpenWBEM::CIMClass;
using OpenWBEM::CIMDataType;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMInstanceResultHandlerIFC;
using OpenWBEM::CIMName;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMObjectPathResultHandlerIFC;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::CIMValue;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt32;
using namespace OpenWBEM::WBEMFlags;

Array<Component> gComponentList;

namespace {

// ODDITY CO-1: two blanks behind the option; scripts that watch the process list know it so.
const char* const COMMAND = "/qv/bin/patchkeeper --components  ";
// ODDITY CO-2: a parse failure names a command that was not run; clients show the text they know.
const char* const PARSE_FAILURE_SOURCE = "/qv/bin/patchkeeper --hist";

const CIMName COMPONENT_CLASS("ZNX_SoftwareUpdateComponent");
const String INSTANCE_ID("InstanceID");
const CIMName NAME("Name");
const CIMName VERSION_STRING("VersionString");
const CIMName SHORT_DESCRIPTION("ShortDescription");
const CIMName INSTALL("Install");

// How often an update was selected. Guarded by gSharedListLock.
unsigned long selections = 0;

// What ListRefresh is to other lists. This list belongs to the selection that stood when the
// refresh began: once an update is selected, also the same one again, it is not touched any more.
class ComponentRefresh {
public:
    ComponentRefresh() {
        const std::lock_guard<std::mutex> lock(gSharedListLock);
        selection_ = selections;
        name_ = gPatchName;
        version_ = gPatchVersion;
    }
    ~ComponentRefresh() {
        const std::lock_guard<std::mutex> lock(gSharedListLock);
        if (selections == selection_) {
            gComponentList.swap(records_);
        }
    }
    ComponentRefresh(const ComponentRefresh&) = delete;
    ComponentRefresh& operator=(const ComponentRefresh&) = delete;

    String Command() const {
        if (name_.empty() || version_.empty()) {
            ThrowCimFailed("Missing Name and/or Version");
        }
        // ODDITY CO-9: name and version stand unquoted for the shell, and so do the names of the
        // chosen components when the update is applied.
        return COMMAND + name_ + " " + version_;
    }
    // A copy stays the caller's own.
    Array<Component> Records() const { return records_; }
    void Append(const Component& record) { records_.push_back(record); }

private:
    unsigned long selection_ = 0;
    String name_;
    String version_;
    Array<Component> records_;
};

Component ReadRecord(size_t position, char* line) {
    // ODDITY CO-3: only the name is read; Version and ShortDescription stay empty.
    Component record;
    record.InstanceID = String(static_cast<UInt32>(position));
    record.Name = GetNextToken(line, "Name", PARSE_FAILURE_SOURCE);
    return record;
}

String InstanceIDIn(const CIMInstance& instance) {
    const CIMValue value = instance.getPropertyValue(INSTANCE_ID);
    if (!value) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    return value.toString();
}

bool InstallIn(const CIMInstance& instance) {
    const CIMValue value = instance.getPropertyValue(INSTALL);
    if (!value) {
        // ODDITY CO-4: what is missing is a property, but the code is that of a missing object.
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
    if (value.getType() != CIMDataType::BOOLEAN || value.isArray()) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    Bool install;
    value.get(install);
    return install;
}

} // namespace

void SelectComponentsOf(const String& name, const String& version) {
    const std::lock_guard<std::mutex> lock(gSharedListLock);
    ++selections;
    gComponentList = Array<Component>();
    gPatchName = name;
    gPatchVersion = version;
}

String GetOptionalComponentList() {
    const Array<Component> list = ListSnapshot(gComponentList);
    String names;
    for (const Component& record : list) {
        if (record.Install) {
            names += (names.empty() ? "" : " ") + record.Name;
        }
    }
    return names;
}

void ComponentProvider::initialize(const ProviderEnvironmentIFCRef&) {
}

void ComponentProvider::cleanup() {
}

Array<Component> ComponentProvider::UpdateList() {
    ComponentRefresh refresh;
    StringArray lines;
    const int code = Execute(refresh.Command(), lines);
    // ODDITY CO-5: straight to standard output, whatever the debug switch says, and never logged.
    printf("Exit code: %d\n", code);
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
    // ODDITY CO-6: new records, none chosen: every enumeration forgets what clients have chosen.
    // ODDITY CO-7: a line of the tool's error output is a component too.
    std::string line;
    for (size_t i = 0; i < lines.size(); ++i) {
        line = static_cast<const StringArray&>(lines)[i].c_str();
        refresh.Append(ReadRecord(i, &line[0]));
    }
    return refresh.Records();
}

CIMInstance ComponentProvider::GetInstance(int index, const List& list) const {
    const Component& record = list[static_cast<size_t>(index)];
    CIMInstance instance(COMPONENT_CLASS);
    instance.setProperty(ProvPropCreateKey(INSTANCE_ID, CIMValue(record.InstanceID)));
    instance.setProperty(NAME, CIMValue(record.Name));
    instance.setProperty(VERSION_STRING, CIMValue(record.Version));
    instance.setProperty(SHORT_DESCRIPTION, CIMValue(record.ShortDescription));
    instance.setProperty(INSTALL, CIMValue(record.Install));
    return instance;
}

void ComponentProvider::SetObjectPathKeys(CIMObjectPath& path, unsigned int index,
                                          const List& list) const {
    path.setKeys(
        CIMPropertyArray(1, ProvPropCreateKey(INSTANCE_ID, CIMValue(list[index].InstanceID))));
}

void ComponentProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                          const String& className,
                                          CIMObjectPathResultHandlerIFC& result, const CIMClass&) {
    const List list = UpdateList();
    for (size_t i = 0; i < list.size(); ++i) {
        CIMObjectPath path(className, ns);
        SetObjectPathKeys(path, static_cast<unsigned int>(i), list);
        result.handle(path);
    }
}

void ComponentProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String&,
                                      const String&, CIMInstanceResultHandlerIFC& result,
                                      ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                      EIncludeClassOriginFlag, const StringArray*, const CIMClass&,
                                      const CIMClass&) {
    const List list = UpdateList();
    for (size_t i = 0; i < list.size(); ++i) {
        result.handle(GetInstance(static_cast<int>(i), list));
    }
}

CIMInstance ComponentProvider::getInstance(const ProviderEnvironmentIFCRef&, const String&,
                                           const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                           EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                           const StringArray*, const CIMClass&) {
    // ODDITY CO-8: answers from the last enumeration and never lists anew.
    const List list = ListSnapshot(gComponentList);
    return GetInstance(GetIndexFromObjectPath(instanceName, list), list);
}

CIMObjectPath ComponentProvider::createInstance(const ProviderEnvironmentIFCRef&, const String&,
                                                const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void ComponentProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                       const CIMObjectPath&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void ComponentProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                       const CIMInstance& modifiedInstance, const CIMInstance&,
                                       EIncludeQualifiersFlag, const StringArray*,
                                       const CIMClass&) {
    const String instanceID = InstanceIDIn(modifiedInstance);
    ChangeList(gComponentList, [&](List& list) {
        const auto index = static_cast<size_t>(GetIndexFromInstanceID(instanceID, list));
        const bool install = InstallIn(modifiedInstance);
        list[index].Install = install;
    });
}

CIMValue ComponentProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                         const CIMObjectPath&, const String&,
                                         const CIMParamValueArray&, CIMParamValueArray&) {
    OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
}
