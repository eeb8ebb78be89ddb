#include "provider/active/ActiveProvider.hpp"

#include "provider/common/Common.hpp"

using OpenWBEM::CIMClass;
using OpenWBEM::CIMDataType;
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
using OpenWBEM::Exception;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using namespace OpenWBEM::WBEMFlags;

namespace {

const CIMName ACTIVE_CLASS("ZNX_ActiveSoftwareUpdate");
const CIMName INSTANCE_ID("InstanceID");
const CIMName NAME("Name");
const CIMName SHORT_DESCRIPTION("ShortDescription");
const CIMName UPDATE_DESCRIPTION("UpdateDescription");
const CIMName VERSION_STRING("VersionString");
const CIMName LOCATION("Location");
const CIMName APPLY_DATE("ApplyDate");
const CIMName REBOOT_REQUIRED("RebootRequired");
const CIMName STATUS("Status");
const CIMName SIZE("Size");

const String CANCEL_METHOD("Cancel");

template <typename T>
void SetProperty(CIMInstance& instance, const CIMName& name, const ActiveUpdate& record,
                 bool (ActiveUpdate::*get)(T&) const) {
    T value{};
    if ((record.*get)(value)) {
        instance.setProperty(name, CIMValue(value));
    }
}

CIMPropertyArray KeysOf(const ActiveUpdate& record) {
    String instanceID;
    if (!record.getInstanceID(instanceID)) {
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
    return CIMPropertyArray(1, CIMProperty(INSTANCE_ID, CIMValue(instanceID)));
}

String TextOf(const CIMProperty& instanceID) {
    const CIMValue value = instanceID ? instanceID.getValue() : CIMValue(OpenWBEM::CIMNULL);
    if (!value || value.isArray() || value.getType() != CIMDataType::STRING) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    return value.toString();
}

void FindUpdate(const String& instanceID, ActiveUpdate& record) {
    try {
        const ActiveUpdate_ObjectInstanceManager manager;
        manager.getOneObject(instanceID, record);
    } catch (const Exception&) {
        // ODDITY AC-7: the client does not learn that the tool failed; an update that cannot be
        // looked for is not found.
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
}

} // namespace

void ActiveUpdateProvider::initialize(const ProviderEnvironmentIFCRef&) {
    ActiveUpdate_ObjectInstanceManager::init();
}

void ActiveUpdateProvider::cleanup() {
}

void ActiveUpdateProvider::ActiveUpdateToCIMInstance(const String&, const ActiveUpdate& record,
                                                     const CIMClass&, CIMInstance& instance) const {
    // ODDITY AC-8: no key by qualifier; the key list alone gives clients a path to return to.
    SetProperty(instance, INSTANCE_ID, record, &ActiveUpdate::getInstanceID);
    SetProperty(instance, NAME, record, &ActiveUpdate::getName);
    SetProperty(instance, SHORT_DESCRIPTION, record, &ActiveUpdate::getShortDescription);
    // ODDITY AC-9: missing when the tool cannot tell it, rather than null or a failure.
    SetProperty(instance, UPDATE_DESCRIPTION, record, &ActiveUpdate::getUpdateDescription);
    SetProperty(instance, VERSION_STRING, record, &ActiveUpdate::getVersion);
    SetProperty(instance, LOCATION, record, &ActiveUpdate::getLocation);
    SetProperty(instance, APPLY_DATE, record, &ActiveUpdate::getApplyDate);
    SetProperty(instance, REBOOT_REQUIRED, record, &ActiveUpdate::getRebootRequired);
    SetProperty(instance, STATUS, record, &ActiveUpdate::getStatus);
    SetProperty(instance, SIZE, record, &ActiveUpdate::getSize);
    instance.setKeys(KeysOf(record));
}

void ActiveUpdateProvider::ActiveUpdateToCIMObjectPath(const ActiveUpdate& record,
                                                       CIMObjectPath& path) const {
    path.setClassName(ACTIVE_CLASS);
    path.setKeys(KeysOf(record));
}

void ActiveUpdateProvider::getActiveUpdateWithCIMObjectPath(const CIMObjectPath& path,
                                                            ActiveUpdate& record) const {
    FindUpdate(TextOf(path.getKey(INSTANCE_ID)), record);
}

// ODDITY AC-15: kept, and no operation applies it: what is given as an instance is refused unread.
void ActiveUpdateProvider::getActiveUpdateWithCIMInstance(const CIMInstance& instance,
                                                          ActiveUpdate& record) const {
    FindUpdate(TextOf(instance.getProperty(INSTANCE_ID)), record);
}

void ActiveUpdateProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                             const String&, CIMObjectPathResultHandlerIFC& result,
                                             const CIMClass&) {
    ActiveUpdate_ObjectInstanceManager manager;
    manager.startIteration();
    while (manager.hasNext()) {
        ActiveUpdate record;
        manager.getNext(record);
        CIMObjectPath path(ACTIVE_CLASS, ns);
        ActiveUpdateToCIMObjectPath(record, path);
        result.handle(path);
    }
    manager.endIteration();
}

// ODDITY AC-10: the property list is not looked at, here and in getInstance; the description costs
// a run of the tool even where nobody asked for it.
void ActiveUpdateProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String& ns,
                                         const String&, CIMInstanceResultHandlerIFC& result,
                                         ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                         EIncludeClassOriginFlag, const StringArray*,
                                         const CIMClass&, const CIMClass& cimClass) {
    ActiveUpdate_ObjectInstanceManager manager;
    manager.startIteration();
    while (manager.hasNext()) {
        ActiveUpdate record;
        manager.getNext(record);
        CIMInstance instance(ACTIVE_CLASS);
        ActiveUpdateToCIMInstance(ns, record, cimClass, instance);
        result.handle(instance);
    }
    manager.endIteration();
}

CIMInstance ActiveUpdateProvider::getInstance(const ProviderEnvironmentIFCRef&, const String& ns,
                                              const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                              EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                              const StringArray*, const CIMClass& cimClass) {
    ActiveUpdate record;
    getActiveUpdateWithCIMObjectPath(instanceName, record);
    CIMInstance instance(ACTIVE_CLASS);
    ActiveUpdateToCIMInstance(ns, record, cimClass, instance);
    return instance;
}

CIMObjectPath ActiveUpdateProvider::createInstance(const ProviderEnvironmentIFCRef&, const String&,
                                                   const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void ActiveUpdateProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                          const CIMObjectPath& cop) {
    // ODDITY AC-11: looked up only to be refused, so that an unknown update is not found.
    ActiveUpdate record;
    getActiveUpdateWithCIMObjectPath(cop, record);
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void ActiveUpdateProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                          const CIMInstance&, const CIMInstance&,
                                          EIncludeQualifiersFlag, const StringArray*,
                                          const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

CIMValue ActiveUpdateProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                            const CIMObjectPath& path, const String& methodName,
                                            const CIMParamValueArray&, CIMParamValueArray&) {
    // ODDITY AC-12: the update comes first, so an unknown method of an unknown update is not found.
    ActiveUpdate record;
    getActiveUpdateWithCIMObjectPath(path, record);
    // ODDITY AC-13: compared with its case, although names of methods have none.
    if (methodName != CANCEL_METHOD) {
        OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
    }
    // ODDITY AC-14: parameters are neither counted nor read.
    return CIMValue(record.Cancel());
}
