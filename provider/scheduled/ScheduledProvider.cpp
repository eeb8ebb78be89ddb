#include "provider/scheduled/ScheduledProvider.hpp"

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
using OpenWBEM::DateTime;
using OpenWBEM::Exception;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using namespace OpenWBEM::WBEMFlags;

namespace {

const CIMName SCHEDULED_CLASS("ZNX_ScheduledSoftwareUpdate");
const CIMName INSTANCE_ID("InstanceID");
const CIMName NAME("Name");
const CIMName SHORT_DESCRIPTION("ShortDescription");
const CIMName UPDATE_DESCRIPTION("UpdateDescription");
const CIMName VERSION_STRING("VersionString");
const CIMName LOCATION("Location");
const CIMName DOWNLOAD_DATE("DownloadDate");
const CIMName APPLY_DATE("ApplyDate");
const CIMName REBOOT_REQUIRED("RebootRequired");
const CIMName STATUS("Status");
const CIMName SIZE("Size");

const String MODIFY_METHOD("Modify");
const String REMOVE_METHOD("Remove");

template <typename T>
void SetProperty(CIMInstance& instance, const CIMName& name, const ScheduledUpdate& record,
                 bool (ScheduledUpdate::*get)(T&) const) {
    T value{};
    if ((record.*get)(value)) {
        instance.setProperty(name, CIMValue(value));
    }
}

CIMPropertyArray KeysOf(const ScheduledUpdate& record) {
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

void FindUpdate(const String& instanceID, ScheduledUpdate& record) {
    try {
        const ScheduledUpdate_ObjectInstanceManager manager;
        manager.getOneObject(instanceID, record);
    } catch (const Exception&) {
        // ODDITY SC-6: the client does not learn that the tool failed; an update that cannot be
        // looked for is not found.
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
}

// Null, another type, an interval and fields that make no date all end as one of the provider API's
// exceptions, not all of them with a name.
String DateText(const CIMValue& value) {
    try {
        return value.toCIMDateTime().toDateTime().toString(DateTime::E_LOCAL_TIME).rtrim();
    } catch (const Exception&) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
}

String Modify(const ScheduledUpdate& record, const CIMParamValueArray& in) {
    if (in.size() != 2) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    // ODDITY SC-7: each text carries the day and the time of day; the tool takes the one from the
    // first and the other from the second.
    const String date = DateText(in[0].getValue());
    const String time = DateText(in[1].getValue());
    return record.modify(date, time);
}

} // namespace

void ScheduledUpdateProvider::initialize(const ProviderEnvironmentIFCRef&) {
    ScheduledUpdate_ObjectInstanceManager::init();
}

void ScheduledUpdateProvider::cleanup() {
}

void ScheduledUpdateProvider::ScheduledUpdateToCIMInstance(const String&,
                                                           const ScheduledUpdate& record,
                                                           const CIMClass&,
                                                           CIMInstance& instance) const {
    // ODDITY SC-8: no key by qualifier; the key list alone gives clients a path to return to.
    SetProperty(instance, INSTANCE_ID, record, &ScheduledUpdate::getInstanceID);
    SetProperty(instance, NAME, record, &ScheduledUpdate::getName);
    SetProperty(instance, SHORT_DESCRIPTION, record, &ScheduledUpdate::getShortDescription);
    // ODDITY SC-9: missing when the tool cannot tell it, rather than null or a failure.
    SetProperty(instance, UPDATE_DESCRIPTION, record, &ScheduledUpdate::getUpdateDescription);
    SetProperty(instance, VERSION_STRING, record, &ScheduledUpdate::getVersion);
    SetProperty(instance, LOCATION, record, &ScheduledUpdate::getLocation);
    SetProperty(instance, DOWNLOAD_DATE, record, &ScheduledUpdate::getDownloadDate);
    SetProperty(instance, APPLY_DATE, record, &ScheduledUpdate::getApplyDate);
    SetProperty(instance, REBOOT_REQUIRED, record, &ScheduledUpdate::getRebootRequired);
    SetProperty(instance, STATUS, record, &ScheduledUpdate::getStatus);
    SetProperty(instance, SIZE, record, &ScheduledUpdate::getSize);
    instance.setKeys(KeysOf(record));
}

void ScheduledUpdateProvider::ScheduledUpdateToCIMObjectPath(const ScheduledUpdate& record,
                                                             CIMObjectPath& path) const {
    path.setClassName(SCHEDULED_CLASS);
    path.setKeys(KeysOf(record));
}

void ScheduledUpdateProvider::getScheduledUpdateWithCIMObjectPath(const CIMObjectPath& path,
                                                                  ScheduledUpdate& record) const {
    FindUpdate(TextOf(path.getKey(INSTANCE_ID)), record);
}

// ODDITY SC-15: kept, and no operation applies it: what is given as an instance is refused unread.
void ScheduledUpdateProvider::getScheduledUpdateWithCIMInstance(const CIMInstance& instance,
                                                                ScheduledUpdate& record) const {
    FindUpdate(TextOf(instance.getProperty(INSTANCE_ID)), record);
}

void ScheduledUpdateProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                                const String&,
                                                CIMObjectPathResultHandlerIFC& result,
                                                const CIMClass&) {
    ScheduledUpdate_ObjectInstanceManager manager;
    manager.startIteration();
    while (manager.hasNext()) {
        ScheduledUpdate record;
        manager.getNext(record);
        CIMObjectPath path(SCHEDULED_CLASS, ns);
        ScheduledUpdateToCIMObjectPath(record, path);
        result.handle(path);
    }
    manager.endIteration();
}

// ODDITY SC-10: the property list is not looked at, here and in getInstance; the description costs
// a run of the tool even where nobody asked for it.
void ScheduledUpdateProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String& ns,
                                            const String&, CIMInstanceResultHandlerIFC& result,
                                            ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                            EIncludeClassOriginFlag, const StringArray*,
                                            const CIMClass&, const CIMClass& cimClass) {
    ScheduledUpdate_ObjectInstanceManager manager;
    manager.startIteration();
    while (manager.hasNext()) {
        ScheduledUpdate record;
        manager.getNext(record);
        CIMInstance instance(SCHEDULED_CLASS);
        ScheduledUpdateToCIMInstance(ns, record, cimClass, instance);
        result.handle(instance);
    }
    manager.endIteration();
}

CIMInstance ScheduledUpdateProvider::getInstance(const ProviderEnvironmentIFCRef&, const String& ns,
                                                 const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                                 EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                                 const StringArray*, const CIMClass& cimClass) {
    ScheduledUpdate record;
    getScheduledUpdateWithCIMObjectPath(instanceName, record);
    CIMInstance instance(SCHEDULED_CLASS);
    ScheduledUpdateToCIMInstance(ns, record, cimClass, instance);
    return instance;
}

CIMObjectPath ScheduledUpdateProvider::createInstance(const ProviderEnvironmentIFCRef&,
                                                      const String&, const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void ScheduledUpdateProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                             const CIMObjectPath& cop) {
    ScheduledUpdate record;
    getScheduledUpdateWithCIMObjectPath(cop, record);
    // ODDITY SC-11: the update itself stays on the appliance; its schedule alone goes.
    record.remove();
}

void ScheduledUpdateProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                             const CIMInstance&, const CIMInstance&,
                                             EIncludeQualifiersFlag, const StringArray*,
                                             const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

CIMValue ScheduledUpdateProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                               const CIMObjectPath& path, const String& methodName,
                                               const CIMParamValueArray& in, CIMParamValueArray&) {
    // ODDITY SC-12: the update comes first, so neither the method nor its parameters are looked at
    // where it is not found.
    ScheduledUpdate record;
    getScheduledUpdateWithCIMObjectPath(path, record);
    // ODDITY SC-13: compared with its case, although names of methods have none.
    if (methodName == MODIFY_METHOD) {
        return CIMValue(Modify(record, in));
    }
    if (methodName == REMOVE_METHOD) {
        // ODDITY SC-14: parameters are neither counted nor read.
        return CIMValue(record.remove());
    }
    OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
}
