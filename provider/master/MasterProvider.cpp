#include "provider/master/MasterProvider.hpp"

#include "provider/active/ActiveProvider.hpp"
#include "provider/available/AvaliableProvider.hpp"
#include "provider/common/Common.hpp"
#include "provider/component/ComponentProvider.hpp"
#include "provider/filelist/FileListProvider.hpp"
#include "provider/filename/FileNameProvider.hpp"
#include "provider/history/HistoryProvider.hpp"
#include "provider/inventory/InventoryProvider.hpp"
#include "provider/scheduled/ScheduledProvider.hpp"

#include <atomic>
#include <cstdlib>

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMInstanceResultHandlerIFC;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMObjectPathResultHandlerIFC;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMValue;
using OpenWBEM::CppAssociatorProviderIFC;
using OpenWBEM::CppInstanceProviderIFC;
using OpenWBEM::CppMethodProviderIFC;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using namespace OpenWBEM::WBEMFlags;

// The order here is the order of construction; the library's end destroys in reverse.
OpenWBEM::LoggerRef gLogger;

namespace {

struct EndOfLogging {
    ~EndOfLogging() { StopLogging(); }
};

// Stands behind gLogger, so that it goes before it.
EndOfLogging endOfLogging;

} // namespace

String gAppliedUpdatesClass("ZNX_HistorySoftwareUpdate");
String gPendingUpdatesClass("ZNX_ScheduledSoftwareUpdate");
String gAvaliableUpdatesClass("ZNX_AvailableSoftwareUpdate");
String gActiveUpdatesClass("ZNX_ActiveSoftwareUpdate");
String gInventoryClass("ZNX_SoftwareIdentity");
String gComponentClass("ZNX_SoftwareUpdateComponent");
String gFileNameClass("ZNX_AvailableSoftwareFileName");
String gFileListClass("ZNX_AvailableSoftwareFileList");
String gEMVersionClass("ZNX_ElementManagerCartridgeVersionInfo");
HistoryUpdateProvider gAppliedUpdateProvider;
ScheduledUpdateProvider gPendingUpdateProvider;
AvaliableUpdateProvider gAvaliableUpdateProvider;
ActiveUpdateProvider gActiveUpdateProvider;
InventoryProvider gInventoryProvider;
FileNameProvider gFileNameProvider;
FileListMapProvider gFileList;
ComponentProvider gComponentProvider;

namespace {

// For whoever looks into the library's file; nothing reads it.
__attribute__((used)) const char buildIdentification[] =
    "@(#)SoftwareUpdateProvider " PROVIDER_VERSION;

// The object that has initialized the class providers.
std::atomic<const SoftwareUpdateProvider*> initializedBy{nullptr};

// The three tables of who serves a class name: the first row that fits wins.
// ODDITY MP-4: class names are compared with their case, although CIM knows none.

CppInstanceProviderIFC& InstanceProviderOf(const String& className) {
    if (className == gAppliedUpdatesClass) {
        return gAppliedUpdateProvider;
    }
    if (className == gPendingUpdatesClass) {
        return gPendingUpdateProvider;
    }
    if (className == gAvaliableUpdatesClass) {
        return gAvaliableUpdateProvider;
    }
    if (className == gActiveUpdatesClass) {
        return gActiveUpdateProvider;
    }
    if (className == gInventoryClass || className == gEMVersionClass) {
        return gInventoryProvider;
    }
    if (className == gFileNameClass) {
        return gFileNameProvider;
    }
    if (className == gFileListClass) {
        return gFileList;
    }
    if (className == gComponentClass) {
        return gComponentProvider;
    }
    OW_THROWCIM(CIMException::INVALID_CLASS);
}

// ODDITY MP-5: the file names have a method provider, which is never asked: a method of that class
// is refused like one of an unknown class.
CppMethodProviderIFC& MethodProviderOf(const String& className) {
    if (className == gAppliedUpdatesClass) {
        return gAppliedUpdateProvider;
    }
    if (className == gPendingUpdatesClass) {
        return gPendingUpdateProvider;
    }
    if (className == gAvaliableUpdatesClass) {
        return gAvaliableUpdateProvider;
    }
    if (className == gActiveUpdatesClass) {
        return gActiveUpdateProvider;
    }
    if (className == gInventoryClass || className == gEMVersionClass) {
        return gInventoryProvider;
    }
    if (className == gComponentClass) {
        return gComponentProvider;
    }
    OW_THROWCIM(CIMException::INVALID_CLASS);
}

CppAssociatorProviderIFC& AssociatorProviderOf(const String& className) {
    if (className == "ZNX_AvailableSoftwareFileList") {
        return gFileList;
    }
    OW_THROWCIM(CIMException::INVALID_CLASS);
}

bool DebugIsSwitchedOn() {
    const char* const value = getenv("provider_agent_debug");
    return value != nullptr && atoi(value) != 0;
}

void PrintPropertiesList(const StringArray* propertyList) {
    if (propertyList == nullptr) {
        OutputDebug("Property list not specified");
        return;
    }
    String text("Property list: ");
    for (size_t i = 0; i < propertyList->size(); ++i) {
        if (i != 0) {
            text += ",";
        }
        text += (*propertyList)[i];
    }
    OutputDebug("%s", text.c_str());
}

void PrintObjectPath(const CIMObjectPath& path) {
    OutputDebug("ObjectPath=%s", path.toString().c_str());
}

} // namespace

SoftwareUpdateProvider::~SoftwareUpdateProvider() {
    const SoftwareUpdateProvider* self = this;
    if (initializedBy.compare_exchange_strong(self, nullptr)) {
        SoftwareUpdateProvider::cleanup();
    }
}

void SoftwareUpdateProvider::initialize(const ProviderEnvironmentIFCRef& env) {
    gProviderAgentDebug = DebugIsSwitchedOn();
    SetLogger(env);
    gAppliedUpdateProvider.initialize(env);
    gPendingUpdateProvider.initialize(env);
    gAvaliableUpdateProvider.initialize(env);
    gActiveUpdateProvider.initialize(env);
    gInventoryProvider.initialize(env);
    gFileNameProvider.initialize(env);
    gComponentProvider.initialize(env);
    initializedBy = this;
}

void SoftwareUpdateProvider::cleanup() {
    gAppliedUpdateProvider.cleanup();
    gPendingUpdateProvider.cleanup();
    gAvaliableUpdateProvider.cleanup();
    gActiveUpdateProvider.cleanup();
    gInventoryProvider.cleanup();
    gFileNameProvider.cleanup();
    gComponentProvider.cleanup();
}

bool SoftwareUpdateProvider::canUnload() {
    return !BackgroundTasksRun();
}

void SoftwareUpdateProvider::enumInstanceNames(const ProviderEnvironmentIFCRef& env,
                                               const String& ns, const String& className,
                                               CIMObjectPathResultHandlerIFC& result,
                                               const CIMClass& cimClass) {
    OutputDebug("%s.enumInstanceNames()", className.c_str());
    InstanceProviderOf(className).enumInstanceNames(env, ns, className, result, cimClass);
}

void SoftwareUpdateProvider::enumInstances(
    const ProviderEnvironmentIFCRef& env, const String& ns, const String& className,
    CIMInstanceResultHandlerIFC& result, ELocalOnlyFlag localOnly, EDeepFlag deep,
    EIncludeQualifiersFlag includeQualifiers, EIncludeClassOriginFlag includeClassOrigin,
    const StringArray* propertyList, const CIMClass& requestedClass, const CIMClass& cimClass) {
    // ODDITY MP-1: "Instanes", as log readers search for it.
    OutputDebug("%s.enumInstanes()", className.c_str());
    PrintPropertiesList(propertyList);
    InstanceProviderOf(className).enumInstances(env, ns, className, result, localOnly, deep,
                                                includeQualifiers, includeClassOrigin, propertyList,
                                                requestedClass, cimClass);
}

CIMInstance SoftwareUpdateProvider::getInstance(const ProviderEnvironmentIFCRef& env,
                                                const String& ns, const CIMObjectPath& instanceName,
                                                ELocalOnlyFlag localOnly,
                                                EIncludeQualifiersFlag includeQualifiers,
                                                EIncludeClassOriginFlag includeClassOrigin,
                                                const StringArray* propertyList,
                                                const CIMClass& cimClass) {
    const String className = instanceName.getClassName();
    OutputDebug("%s.getInstance()", className.c_str());
    PrintObjectPath(instanceName);
    PrintPropertiesList(propertyList);
    return InstanceProviderOf(className).getInstance(env, ns, instanceName, localOnly,
                                                     includeQualifiers, includeClassOrigin,
                                                     propertyList, cimClass);
}

CIMObjectPath SoftwareUpdateProvider::createInstance(const ProviderEnvironmentIFCRef& env,
                                                     const String& ns,
                                                     const CIMInstance& cimInstance) {
    const String className = cimInstance.getClassName();
    // ODDITY MP-2: this line goes to standard output whatever the debug switch says, and to no log.
    printf("%s.createInstance()\n", className.c_str());
    return InstanceProviderOf(className).createInstance(env, ns, cimInstance);
}

void SoftwareUpdateProvider::deleteInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                            const CIMObjectPath& cop) {
    const String className = cop.getClassName();
    OutputDebug("%s.deleteInstance()", className.c_str());
    OutputDebug("Instance=%s", cop.toString().c_str());
    InstanceProviderOf(className).deleteInstance(env, ns, cop);
}

void SoftwareUpdateProvider::modifyInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                            const CIMInstance& modifiedInstance,
                                            const CIMInstance& previousInstance,
                                            EIncludeQualifiersFlag includeQualifiers,
                                            const StringArray* propertyList,
                                            const CIMClass& theClass) {
    const String className = modifiedInstance.getClassName();
    OutputDebug("%s.modifyInstance()", className.c_str());
    PrintPropertiesList(propertyList);
    InstanceProviderOf(className).modifyInstance(env, ns, modifiedInstance, previousInstance,
                                                 includeQualifiers, propertyList, theClass);
}

CIMValue SoftwareUpdateProvider::invokeMethod(const ProviderEnvironmentIFCRef& env,
                                              const String& ns, const CIMObjectPath& path,
                                              const String& methodName,
                                              const CIMParamValueArray& in,
                                              CIMParamValueArray& out) {
    const String className = path.getClassName();
    OutputDebug("%s.invokeMethod()", className.c_str());
    OutputDebug("%s.%s()", className.c_str(), methodName.c_str());
    PrintObjectPath(path);
    return MethodProviderOf(className).invokeMethod(env, ns, path, methodName, in, out);
}

void SoftwareUpdateProvider::associators(
    const ProviderEnvironmentIFCRef& env, CIMInstanceResultHandlerIFC& result, const String& ns,
    const CIMObjectPath& objectName, const String& assocClass, const String& resultClass,
    const String& role, const String& resultRole, EIncludeQualifiersFlag includeQualifiers,
    EIncludeClassOriginFlag includeClassOrigin, const StringArray* propertyList) {
    // ODDITY MP-3: "associator", singular, as log readers search for it.
    OutputDebug("%s.associator()", assocClass.c_str());
    PrintObjectPath(objectName);
    AssociatorProviderOf(assocClass)
        .associators(env, result, ns, objectName, assocClass, resultClass, role, resultRole,
                     includeQualifiers, includeClassOrigin, propertyList);
}

void SoftwareUpdateProvider::associatorNames(const ProviderEnvironmentIFCRef& env,
                                             CIMObjectPathResultHandlerIFC& result,
                                             const String& ns, const CIMObjectPath& objectName,
                                             const String& assocClass, const String& resultClass,
                                             const String& role, const String& resultRole) {
    OutputDebug("%s.associatorNames()", assocClass.c_str());
    PrintObjectPath(objectName);
    AssociatorProviderOf(assocClass)
        .associatorNames(env, result, ns, objectName, assocClass, resultClass, role, resultRole);
}

void SoftwareUpdateProvider::references(const ProviderEnvironmentIFCRef& env,
                                        CIMInstanceResultHandlerIFC& result, const String& ns,
                                        const CIMObjectPath& objectName, const String& resultClass,
                                        const String& role,
                                        EIncludeQualifiersFlag includeQualifiers,
                                        EIncludeClassOriginFlag includeClassOrigin,
                                        const StringArray* propertyList) {
    OutputDebug("%s.references()", resultClass.c_str());
    PrintObjectPath(objectName);
    AssociatorProviderOf(resultClass)
        .references(env, result, ns, objectName, resultClass, role, includeQualifiers,
                    includeClassOrigin, propertyList);
}

void SoftwareUpdateProvider::referenceNames(const ProviderEnvironmentIFCRef& env,
                                            CIMObjectPathResultHandlerIFC& result, const String& ns,
                                            const CIMObjectPath& objectName,
                                            const String& resultClass, const String& role) {
    OutputDebug("%s.referenceNames()", resultClass.c_str());
    PrintObjectPath(objectName);
    AssociatorProviderOf(resultClass)
        .referenceNames(env, result, ns, objectName, resultClass, role);
}

OpenWBEM::CppProviderBaseIFC* createProviderSoftwareUpdateProvider() {
    return new SoftwareUpdateProvider;
}

const char* getOWVersion() {
    return "3.0.3";
}
