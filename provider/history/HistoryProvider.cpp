#include "provider/history/HistoryProvider.hpp"

#include "provider/common/Common.hpp"
#include "provider/common/SharedList.hpp"

#include <string>

using OpenWBEM::Array;
using OpenWBEM::CIMClass;
using OpenWBEM::CIMDateTime;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMInstanceResultHandlerIFC;
using OpenWBEM::CIMName;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMObjectPathResultHandlerIFC;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::CIMValue;
using OpenWBEM::DateTime;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt32;
using namespace OpenWBEM::WBEMFlags;

Array<HistoryUpdate> gHistoryList;

namespace {

const char* const COMMAND = "/qv/bin/patchkeeper --hist";
const char* const DESCRIPTION_COMMAND = "/qv/bin/patchkeeper -l ";
const char* const ROLL_BACK_COMMAND = "/qv/bin/patchkeeper --rback ";
const char* const TOO_MANY_RECORDS =
    "Too many records: more than 65535 lines from /qv/bin/patchkeeper --hist";

// The positions are 16-bit numbers.
const size_t MAXIMUM_RECORDS = 65535;

const CIMName HISTORY_CLASS("ZNX_HistorySoftwareUpdate");
const String INSTANCE_ID("InstanceID");
const CIMName NAME("Name");
const CIMName VERSION_STRING("VersionString");
const CIMName SHORT_DESCRIPTION("ShortDescription");
const CIMName CATEGORY("Category");
const CIMName DATE("Date");
// ODDITY HI-1: "Removeable", although the tool says "Removable".
const CIMName REMOVEABLE("Removeable");
const String UPDATE_DESCRIPTION("UpdateDescription");

const String REMOVE_METHOD("Remove");

HistoryUpdate ReadRecord(size_t position, char* line) {
    HistoryUpdate record;
    record.InstanceID = String(static_cast<UInt32>(position));
    record.Name = GetNextToken(line, "Name", COMMAND);
    record.Version = GetNextToken(nullptr, "Version", COMMAND);
    record.Description = GetNextToken(nullptr, "Description", COMMAND);
    record.Category = GetNextToken(nullptr, "Category", COMMAND);
    record.Date = GetNextToken(nullptr, "Date", COMMAND);
    record.Removable = GetNextToken(nullptr, "Removable", COMMAND) == "Removable";
    return record;
}

String LongDescription(const HistoryUpdate& record) {
    String text;
    if (Execute(DESCRIPTION_COMMAND + record.Name + "-" + record.Version, text) != 0) {
        // ODDITY HI-2: any -l failure is reported as exit code 1; clients rely on the message id.
        ThrowPatchKeeperError(1);
    }
    return text;
}

} // namespace

bool HistoryUpdate::Remove() const {
    // ODDITY HI-3: name and version stand unquoted for the shell, here and after -l.
    SpawnBackgroundThread(ROLL_BACK_COMMAND + Name + " " + Version);
    // ODDITY HI-4: true means started; how the roll-back ends is for GetProgress to tell.
    return true;
}

void HistoryUpdateProvider::initialize(const ProviderEnvironmentIFCRef&) {
}

void HistoryUpdateProvider::cleanup() {
}

bool HistoryUpdateProvider::UpdateHistoryList(List& list) {
    ListRefresh<HistoryUpdate> refresh(gHistoryList);
    List& records = refresh.Records();
    StringArray lines;
    // ODDITY HI-5: the runner collects the tool's error output too, and each of its lines counts.
    const int code = Execute(COMMAND, lines);
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
    std::string line;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i == MAXIMUM_RECORDS) {
            ThrowCimFailed(TOO_MANY_RECORDS);
        }
        line = static_cast<const StringArray&>(lines)[i].c_str();
        records.push_back(ReadRecord(i, &line[0]));
    }
    list = records;
    return true;
}

void HistoryUpdateProvider::SetObjectPathKeys(CIMObjectPath& path, unsigned int index,
                                              const List& list) const {
    path.setKeys(
        CIMPropertyArray(1, ProvPropCreateKey(INSTANCE_ID, CIMValue(list[index].InstanceID))));
}

CIMInstance HistoryUpdateProvider::GetInstance(int index, const StringArray* propertyList,
                                               const List& list) const {
    const HistoryUpdate& record = list[static_cast<size_t>(index)];
    CIMInstance instance(HISTORY_CLASS);
    instance.setProperty(ProvPropCreateKey(INSTANCE_ID, CIMValue(record.InstanceID)));
    instance.setProperty(NAME, CIMValue(record.Name));
    instance.setProperty(VERSION_STRING, CIMValue(record.Version));
    instance.setProperty(SHORT_DESCRIPTION, CIMValue(record.Description));
    instance.setProperty(CATEGORY, CIMValue(record.Category));
    instance.setProperty(DATE, CIMValue(CIMDateTime(DateTime(record.Date))));
    instance.setProperty(REMOVEABLE, CIMValue(record.Removable));
    // ODDITY HI-6: the description takes a run of the tool, so a request without a property list,
    // which stands for all properties, does not get it.
    if (propertyList != nullptr) {
        for (const String& wanted : *propertyList) {
            if (wanted == UPDATE_DESCRIPTION) {
                // ODDITY HI-7: named twice, it is fetched and set twice.
                instance.setProperty(UPDATE_DESCRIPTION, CIMValue(LongDescription(record)));
            }
        }
    }
    return instance;
}

void HistoryUpdateProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                              const String& className,
                                              CIMObjectPathResultHandlerIFC& result,
                                              const CIMClass&) {
    List list;
    UpdateHistoryList(list);
    for (size_t i = 0; i < list.size(); ++i) {
        CIMObjectPath path(className, ns);
        SetObjectPathKeys(path, static_cast<unsigned int>(i), list);
        result.handle(path);
    }
}

void HistoryUpdateProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String&,
                                          const String&, CIMInstanceResultHandlerIFC& result,
                                          ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                          EIncludeClassOriginFlag, const StringArray* propertyList,
                                          const CIMClass&, const CIMClass&) {
    List list;
    UpdateHistoryList(list);
    for (size_t i = 0; i < list.size(); ++i) {
        result.handle(GetInstance(static_cast<int>(i), propertyList, list));
    }
}

CIMInstance HistoryUpdateProvider::getInstance(const ProviderEnvironmentIFCRef&, const String&,
                                               const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                               EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                               const StringArray* propertyList, const CIMClass&) {
    // ODDITY HI-8: answers from the last enumeration and never lists anew; a client enumerates
    // first.
    const List list = ListSnapshot(gHistoryList);
    return GetInstance(GetIndexFromObjectPath(instanceName, list), propertyList, list);
}

CIMObjectPath HistoryUpdateProvider::createInstance(const ProviderEnvironmentIFCRef&, const String&,
                                                    const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void HistoryUpdateProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                           const CIMObjectPath&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void HistoryUpdateProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                           const CIMInstance&, const CIMInstance&,
                                           EIncludeQualifiersFlag, const StringArray*,
                                           const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

CIMValue HistoryUpdateProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                             const CIMObjectPath& path, const String& methodName,
                                             const CIMParamValueArray&, CIMParamValueArray&) {
    // ODDITY HI-9: the record comes first, so an unknown method of an unknown record is not found.
    const List list = ListSnapshot(gHistoryList);
    const HistoryUpdate& record = list[static_cast<size_t>(GetIndexFromObjectPath(path, list))];
    // ODDITY HI-10: compared with its case, although names of methods have none.
    if (methodName != REMOVE_METHOD) {
        OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
    }
    // ODDITY HI-11: parameters are neither counted nor read.
    const bool started = record.Remove();
    if (!started) {
        OW_THROWCIM(CIMException::FAILED);
    }
    return CIMValue(started);
}
