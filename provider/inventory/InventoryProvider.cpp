#include "provider/inventory/InventoryProvider.hpp"

#include "provider/common/Common.hpp"
#include "provider/common/SharedList.hpp"

#include <cstring>
#include <mutex>
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
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::CIMValue;
using OpenWBEM::DateTime;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt16;
using OpenWBEM::UInt32;
using namespace OpenWBEM::WBEMFlags;

Array<InventoryObject> gInventoryList;
String gEMCartridgeName;

namespace {

const char* const COMMAND = "/qv/bin/patchkeeper ";

const CIMName IDENTITY_CLASS("ZNX_SoftwareIdentity");
const String INSTANCE_ID("InstanceID");
const CIMName NAME("Name");
const CIMName PACKAGE_VERSION("PackageVersion");
const CIMName REVISION_NUMBER("RevisionNumber");
const CIMName CLASSIFICATIONS_PROPERTY("Classifications");
const CIMName INSTALLED_DATE("InstalledDate");

const String CARTRIDGE_CLASS("ZNX_ElementManagerCartridgeVersionInfo");
const CIMName VERSION("Version");

struct ClassificationRow {
    const char* text;
    UInt16 value;
};

const ClassificationRow CLASSIFICATIONS[] = {
    {"Other", 1},
    {"Driver", 2},
    {"Configuration Software", 3},
    {"Application Software", 4},
    {"Instrumentation", 5},
    {"Firmware/BIOS", 6},
    {"Diagnostic Software", 7},
    {"Operating System", 8},
    {"Middleware", 9},
    {"Firmware", 10},
    {"BIOS/FCode", 11},
};
const UInt16 UNKNOWN_CLASSIFICATION = 0;

UInt16 ClassificationOf(const String& text) {
    for (const ClassificationRow& row : CLASSIFICATIONS) {
        if (strcmp(text.c_str(), row.text) == 0) {
            return row.value;
        }
    }
    return UNKNOWN_CLASSIFICATION;
}

InventoryObject ReadRecord(size_t position, char* line) {
    InventoryObject record;
    record.InstanceID = String(static_cast<UInt32>(position));
    record.Name = GetNextToken(line, "Name", COMMAND);
    record.Version = GetNextToken(nullptr, "Version", COMMAND);
    record.Classification = ClassificationOf(GetNextToken(nullptr, "Classification", COMMAND));
    record.Date = GetNextToken(nullptr, "Date", COMMAND);
    return record;
}

String CartridgeName() {
    const std::lock_guard<std::mutex> lock(gSharedListLock);
    return gEMCartridgeName;
}

CIMPropertyArray CartridgeKeys(const InventoryObject& record) {
    return CIMPropertyArray(1, CIMProperty(VERSION, CIMValue(record.Version)));
}

// ODDITY IN-7: Version is no key by qualifier; the key list alone gives clients a path to return
// to.
CIMInstance CartridgeInstance(const InventoryObject& record) {
    CIMInstance instance(CARTRIDGE_CLASS);
    instance.setProperty(VERSION, CIMValue(record.Version));
    instance.setKeys(CartridgeKeys(record));
    return instance;
}

} // namespace

void InventoryProvider::initialize(const ProviderEnvironmentIFCRef& env) {
    SetLogger(env);
    const String name = env->getConfigItem("qv.em_filename", "znxliteEMcartridge");
    const std::lock_guard<std::mutex> lock(gSharedListLock);
    gEMCartridgeName = name;
}

void InventoryProvider::cleanup() {
}

Array<InventoryObject> InventoryProvider::UpdateList() {
    ListRefresh<InventoryObject> refresh(gInventoryList);
    List& records = refresh.Records();
    StringArray lines;
    // ODDITY IN-2: the runner collects the tool's error output too, and each of its lines counts.
    const int code = Execute(COMMAND, lines);
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
    records.reserve(lines.size());
    std::string line;
    for (size_t i = 0; i < lines.size(); ++i) {
        line = static_cast<const StringArray&>(lines)[i].c_str();
        records.push_back(ReadRecord(i, &line[0]));
    }
    return records;
}

CIMInstance InventoryProvider::GetInstance(int index, const StringArray*, const List& list) const {
    const InventoryObject& record = list[static_cast<size_t>(index)];
    CIMInstance instance(IDENTITY_CLASS);
    instance.setProperty(ProvPropCreateKey(INSTANCE_ID, CIMValue(record.InstanceID)));
    instance.setProperty(NAME, CIMValue(record.Name));
    // ODDITY IN-1: both properties carry the version; consoles read one or the other.
    instance.setProperty(PACKAGE_VERSION, CIMValue(record.Version));
    instance.setProperty(REVISION_NUMBER, CIMValue(record.Version));
    // ODDITY IN-3: one value, although the CIM schema's property of this name is an array.
    instance.setProperty(CLASSIFICATIONS_PROPERTY, CIMValue(record.Classification));
    instance.setProperty(INSTALLED_DATE, CIMValue(CIMDateTime(DateTime(record.Date))));
    return instance;
}

void InventoryProvider::SetObjectPathKeys(CIMObjectPath& path, unsigned int index,
                                          const List& list) const {
    path.setKeys(
        CIMPropertyArray(1, ProvPropCreateKey(INSTANCE_ID, CIMValue(list[index].InstanceID))));
}

void InventoryProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                          const String& className,
                                          CIMObjectPathResultHandlerIFC& result, const CIMClass&) {
    const List list = UpdateList();
    if (className == CARTRIDGE_CLASS) {
        const String cartridge = CartridgeName();
        for (const InventoryObject& record : list) {
            if (record.Name == cartridge) {
                CIMObjectPath path(className, ns);
                path.setKeys(CartridgeKeys(record));
                result.handle(path);
            }
        }
        return;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        CIMObjectPath path(className, ns);
        SetObjectPathKeys(path, static_cast<unsigned int>(i), list);
        result.handle(path);
    }
}

void InventoryProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String&,
                                      const String& className, CIMInstanceResultHandlerIFC& result,
                                      ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                      EIncludeClassOriginFlag, const StringArray* propertyList,
                                      const CIMClass&, const CIMClass&) {
    const List list = UpdateList();
    if (className == CARTRIDGE_CLASS) {
        const String cartridge = CartridgeName();
        for (const InventoryObject& record : list) {
            if (record.Name == cartridge) {
                result.handle(CartridgeInstance(record));
            }
        }
        return;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        result.handle(GetInstance(static_cast<int>(i), propertyList, list));
    }
}

CIMInstance InventoryProvider::getInstance(const ProviderEnvironmentIFCRef&, const String&,
                                           const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                           EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                           const StringArray* propertyList, const CIMClass&) {
    // ODDITY IN-4: answers from the last enumeration and never asks the tool.
    const List list = ListSnapshot(gInventoryList);
    if (instanceName.getClassName() == CARTRIDGE_CLASS) {
        const String cartridge = CartridgeName();
        for (const InventoryObject& record : list) {
            if (record.Name == cartridge) {
                // ODDITY IN-5: always the first, whatever Version the path names.
                return CartridgeInstance(record);
            }
        }
        // ODDITY IN-6: a missing cartridge is then looked for by InstanceID, which its path lacks.
    }
    return GetInstance(GetIndexFromObjectPath(instanceName, list), propertyList, list);
}

CIMObjectPath InventoryProvider::createInstance(const ProviderEnvironmentIFCRef&, const String&,
                                                const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void InventoryProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                       const CIMObjectPath&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void InventoryProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                       const CIMInstance&, const CIMInstance&,
                                       EIncludeQualifiersFlag, const StringArray*,
                                       const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

CIMValue InventoryProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                         const CIMObjectPath&, const String&,
                                         const CIMParamValueArray&, CIMParamValueArray&) {
    // ODDITY IN-8: methods are not supported, rather than not found.
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}
