#include "provider/filelist/FileListProvider.hpp"

#include "provider/available/AvaliableProvider.hpp"
#include "provider/common/Common.hpp"
#include "provider/common/SharedList.hpp"
#include "provider/filename/FileName.hpp"
#include "provider/filename/FileNameProvider.hpp"

#include "OW_CIMInstanceEnumeration.hpp"
#include "OW_ResultHandlers.hpp"

using OpenWBEM::Array;
using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMInstanceEnumBuilder;
using OpenWBEM::CIMInstanceEnumeration;
using OpenWBEM::CIMInstanceResultHandlerIFC;
using OpenWBEM::CIMName;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMObjectPathResultHandlerIFC;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::CIMValue;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using namespace OpenWBEM::WBEMFlags;

namespace {

using Updates = Array<AvaliableUpdate>;

// Texts, not names: they are compared with their case.
const String FILE_LIST_CLASS("ZNX_AvailableSoftwareFileList");
const String UPDATE_CLASS("ZNX_AvailableSoftwareUpdate");
const String FILE_NAME_CLASS("ZNX_AvailableSoftwareFileName");
const String ANTECEDENT("Antecedent");
const String DEPENDENT("Dependent");

// ODDITY FL-1: one of the three is enough, and asking for the update wins where they contradict.
bool AsksForUpdate(const String& resultClass, const String& role, const String& resultRole) {
    return resultClass == UPDATE_CLASS || role == DEPENDENT || resultRole == ANTECEDENT;
}

bool AsksForFiles(const String& resultClass, const String& role, const String& resultRole) {
    return resultClass == FILE_NAME_CLASS || role == ANTECEDENT || resultRole == DEPENDENT;
}

// ODDITY FL-2: the updates are those of the last enumeration of their class, before which there is
// only its placeholder; they are never listed anew here.
Updates CurrentUpdates() {
    return ListSnapshot(gAvaliableList);
}

// ODDITY FL-3: either way the path must name an update, so the way from a file to its update is an
// invalid parameter. The path's class is not looked at.
int UpdateIndex(const CIMObjectPath& objectName, const Updates& updates) {
    return GetIndexFromObjectPath(objectName, updates);
}

CIMInstance UpdateInstance(int index, const Updates& updates) {
    return AvaliableUpdateProvider().GetInstance(index, nullptr, updates);
}

String PatchName(const AvaliableUpdate& update) {
    return update.Name + "-" + update.Version;
}

CIMInstance FileInstance(const String& name) {
    CIMInstance instance(FILE_NAME_CLASS);
    FileNameProvider::FileNameToCIMInstance(name, instance);
    return instance;
}

void HandFiles(const AvaliableUpdate& update, CIMInstanceResultHandlerIFC& result) {
    FileName_ObjectList files;
    files.getObjectList(PatchName(update));
    for (files.begin(); files.hasObject(); files.next()) {
        result.handle(FileInstance(files.getName()));
    }
    files.end();
}

void HandAssociations(const String& ns, const CIMObjectPath& updatePath, const String& patchName,
                      CIMInstanceResultHandlerIFC& result) {
    FileName_ObjectList files;
    files.getObjectList(patchName);
    for (files.begin(); files.hasObject(); files.next()) {
        const String name = files.getName();
        OutputDebug("Filename: %s", name.c_str());
        const CIMObjectPath filePath(ns, FileInstance(name));
        CIMInstance instance(FILE_LIST_CLASS);
        instance.setProperty(CIMProperty(ANTECEDENT, CIMValue(updatePath)));
        instance.setProperty(CIMProperty(DEPENDENT, CIMValue(filePath)));
        result.handle(instance);
    }
    files.end();
}

void HandPaths(const String& ns, CIMInstanceEnumeration& instances,
               CIMObjectPathResultHandlerIFC& result) {
    while (instances.hasMoreElements()) {
        result.handle(CIMObjectPath(ns, instances.nextElement()));
    }
}

} // namespace

void FileListMapProvider::initialize(const ProviderEnvironmentIFCRef&) {
}

void FileListMapProvider::cleanup() {
}

void FileListMapProvider::associators(const ProviderEnvironmentIFCRef&,
                                      CIMInstanceResultHandlerIFC& result, const String&,
                                      const CIMObjectPath& objectName, const String&,
                                      const String& resultClass, const String& role,
                                      const String& resultRole, EIncludeQualifiersFlag,
                                      EIncludeClassOriginFlag, const StringArray*) {
    const Updates updates = CurrentUpdates();
    if (AsksForUpdate(resultClass, role, resultRole)) {
        result.handle(UpdateInstance(UpdateIndex(objectName, updates), updates));
    } else if (AsksForFiles(resultClass, role, resultRole)) {
        HandFiles(updates[static_cast<size_t>(UpdateIndex(objectName, updates))], result);
    } else {
        // ODDITY FL-4: without any of the three nothing is assumed, and names are compared with
        // their case.
        OW_THROWCIM(CIMException::NOT_SUPPORTED);
    }
}

void FileListMapProvider::associatorNames(const ProviderEnvironmentIFCRef& env,
                                          CIMObjectPathResultHandlerIFC& result, const String& ns,
                                          const CIMObjectPath& objectName, const String& assocClass,
                                          const String& resultClass, const String& role,
                                          const String& resultRole) {
    CIMInstanceEnumeration instances;
    CIMInstanceEnumBuilder builder(instances);
    associators(env, builder, ns, objectName, assocClass, resultClass, role, resultRole,
                E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
    HandPaths(ns, instances, result);
}

void FileListMapProvider::references(const ProviderEnvironmentIFCRef& env,
                                     CIMInstanceResultHandlerIFC& result, const String& ns,
                                     const CIMObjectPath& objectName, const String& resultClass,
                                     const String&, EIncludeQualifiersFlag includeQualifiers,
                                     EIncludeClassOriginFlag includeClassOrigin,
                                     const StringArray* propertyList) {
    CIMInstanceEnumeration files;
    CIMInstanceEnumBuilder builder(files);
    // ODDITY FL-5: always asks for the update's files; the role that the client names has no
    // effect.
    associators(env, builder, ns, objectName, FILE_LIST_CLASS, FILE_NAME_CLASS, "", "",
                includeQualifiers, includeClassOrigin, propertyList);
    CIMObjectPath updatePath(objectName);
    updatePath.setNameSpace(ns);
    while (files.hasMoreElements()) {
        const CIMObjectPath filePath(ns, files.nextElement());
        CIMPropertyArray ends;
        ends.push_back(CIMProperty(ANTECEDENT, CIMValue(updatePath)));
        ends.push_back(CIMProperty(DEPENDENT, CIMValue(filePath)));
        // ODDITY FL-6: the class name is the text that the client asked with, also an empty one.
        CIMInstance instance{CIMName(resultClass)};
        instance.setKeys(ends);
        instance.setProperties(ends);
        result.handle(instance);
    }
}

void FileListMapProvider::referenceNames(const ProviderEnvironmentIFCRef& env,
                                         CIMObjectPathResultHandlerIFC& result, const String& ns,
                                         const CIMObjectPath& objectName, const String& resultClass,
                                         const String& role) {
    CIMInstanceEnumeration instances;
    CIMInstanceEnumBuilder builder(instances);
    references(env, builder, ns, objectName, resultClass, role, E_EXCLUDE_QUALIFIERS,
               E_EXCLUDE_CLASS_ORIGIN, nullptr);
    HandPaths(ns, instances, result);
}

void FileListMapProvider::enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns,
                                            const String& className,
                                            CIMObjectPathResultHandlerIFC& result,
                                            const CIMClass& cimClass) {
    CIMInstanceEnumeration instances;
    CIMInstanceEnumBuilder builder(instances);
    enumInstances(env, ns, className, builder, E_NOT_LOCAL_ONLY, E_DEEP, E_EXCLUDE_QUALIFIERS,
                  E_EXCLUDE_CLASS_ORIGIN, nullptr, cimClass, cimClass);
    HandPaths(ns, instances, result);
}

void FileListMapProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String& ns,
                                        const String&, CIMInstanceResultHandlerIFC& result,
                                        ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                        EIncludeClassOriginFlag, const StringArray*,
                                        const CIMClass&, const CIMClass&) {
    const Updates updates = CurrentUpdates();
    for (size_t i = 0; i < updates.size(); ++i) {
        const CIMObjectPath updatePath(ns, UpdateInstance(static_cast<int>(i), updates));
        const String patchName = PatchName(updates[i]);
        OutputDebug("Patch: %s", patchName.c_str());
        HandAssociations(ns, updatePath, patchName, result);
    }
}

CIMInstance FileListMapProvider::getInstance(const ProviderEnvironmentIFCRef&, const String&,
                                             const CIMObjectPath&, ELocalOnlyFlag,
                                             EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                             const StringArray*, const CIMClass&) {
    // ODDITY FL-7: whatever is asked for, an empty instance and no error.
    return CIMInstance();
}

CIMObjectPath FileListMapProvider::createInstance(const ProviderEnvironmentIFCRef&, const String&,
                                                  const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void FileListMapProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                         const CIMObjectPath&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void FileListMapProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                         const CIMInstance&, const CIMInstance&,
                                         EIncludeQualifiersFlag, const StringArray*,
                                         const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

// ODDITY FL-8: these three are kept and no operation applies them, so neither does a role follow
// from the class of the path nor a result class from the role.
void FileListMapProvider::CheckRolesAndResults(const CIMObjectPath& objectName, String& role,
                                               String& resultRole, String& resultClass) const {
    if (role.empty()) {
        role = ObjectNameToRole(objectName);
    }
    if (resultRole.empty()) {
        if (resultClass == UPDATE_CLASS) {
            resultRole = ANTECEDENT;
        } else if (resultClass == FILE_NAME_CLASS) {
            resultRole = DEPENDENT;
        } else {
            resultRole = RoleToOtherRole(role);
        }
    }
    if (resultClass.empty()) {
        if (resultRole == ANTECEDENT) {
            resultClass = UPDATE_CLASS;
        } else if (resultRole == DEPENDENT) {
            resultClass = FILE_NAME_CLASS;
        } else {
            OW_THROWCIM(CIMException::INVALID_PARAMETER);
        }
    }
}

String FileListMapProvider::ObjectNameToRole(const CIMObjectPath& objectName) const {
    const String className = objectName.getClassName();
    if (className == UPDATE_CLASS) {
        return ANTECEDENT;
    }
    if (className == FILE_NAME_CLASS) {
        return DEPENDENT;
    }
    OW_THROWCIM(CIMException::TYPE_MISMATCH);
}

String FileListMapProvider::RoleToOtherRole(const String& role) const {
    return role == ANTECEDENT ? DEPENDENT : ANTECEDENT;
}
