#include "provider/filename/FileNameProvider.hpp"

#include "provider/common/Common.hpp"

using OpenWBEM::CIMClass;
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

const CIMName FILE_NAME_CLASS("ZNX_AvailableSoftwareFileName");
const String FILE_NAME("FileName");

void FindFile(const String& name, FileNameRecord& record) {
    const FileNameManager manager;
    manager.getOneObject(name, record);
}

} // namespace

void FileNameProvider::initialize(const ProviderEnvironmentIFCRef&) {
    FileNameManager::init();
}

void FileNameProvider::cleanup() {
}

void FileNameProvider::FileNameToCIMInstance(const String& name, CIMInstance& instance) {
    instance.setProperty(ProvPropCreateKey(FILE_NAME, CIMValue(name)));
}

void FileNameProvider::FileNameToCIMInstance(const String&, const FileNameRecord& record,
                                             const CIMClass&, CIMInstance& instance) const {
    String name;
    record.getName(name);
    // ODDITY FN-6: no key by qualifier, other than in the association; the key list alone gives
    // clients a path to return to.
    instance.setProperty(FILE_NAME, CIMValue(name));
    instance.setKeys(CIMPropertyArray(1, CIMProperty(FILE_NAME, CIMValue(name))));
}

void FileNameProvider::FileNameToCIMObjectPath(const FileNameRecord& record,
                                               CIMObjectPath& path) const {
    String name;
    if (!record.getName(name)) {
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
    path.setKeys(CIMPropertyArray(1, CIMProperty(FILE_NAME, CIMValue(name))));
}

// ODDITY FN-7: the client does not learn that the tool failed; a file that cannot be looked for is
// not found.
void FileNameProvider::getFileNameWithCIMObjectPath(const CIMObjectPath& path,
                                                    FileNameRecord& record) const {
    try {
        String name;
        path.getKeyT(FILE_NAME).getValueT().get(name);
        FindFile(name, record);
    } catch (const Exception&) {
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
}

// ODDITY FN-9: kept, and no operation applies it: what is given as an instance is refused unread.
void FileNameProvider::getFileNameWithCIMInstance(const CIMInstance& instance,
                                                  FileNameRecord& record) const {
    try {
        String name;
        instance.getPropertyT(FILE_NAME).getValueT().get(name);
        FindFile(name, record);
    } catch (const Exception&) {
        OW_THROWCIM(CIMException::NOT_FOUND);
    }
}

void FileNameProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                         const String& className,
                                         CIMObjectPathResultHandlerIFC& result, const CIMClass&) {
    FileNameManager manager;
    manager.startIteration();
    while (manager.hasNext()) {
        FileNameRecord record;
        manager.getNext(record);
        CIMObjectPath path(className, ns);
        FileNameToCIMObjectPath(record, path);
        result.handle(path);
    }
    manager.endIteration();
}

void FileNameProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String& ns,
                                     const String&, CIMInstanceResultHandlerIFC& result,
                                     ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                     EIncludeClassOriginFlag, const StringArray*, const CIMClass&,
                                     const CIMClass& cimClass) {
    FileNameManager manager;
    manager.startIteration();
    while (manager.hasNext()) {
        FileNameRecord record;
        manager.getNext(record);
        CIMInstance instance(FILE_NAME_CLASS);
        FileNameToCIMInstance(ns, record, cimClass, instance);
        result.handle(instance);
    }
    manager.endIteration();
}

CIMInstance FileNameProvider::getInstance(const ProviderEnvironmentIFCRef&, const String& ns,
                                          const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                          EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                          const StringArray*, const CIMClass& cimClass) {
    FileNameRecord record;
    getFileNameWithCIMObjectPath(instanceName, record);
    CIMInstance instance(FILE_NAME_CLASS);
    FileNameToCIMInstance(ns, record, cimClass, instance);
    return instance;
}

CIMObjectPath FileNameProvider::createInstance(const ProviderEnvironmentIFCRef&, const String&,
                                               const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void FileNameProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                      const CIMObjectPath&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void FileNameProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                      const CIMInstance&, const CIMInstance&,
                                      EIncludeQualifiersFlag, const StringArray*, const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

CIMValue FileNameProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                        const CIMObjectPath&, const String&,
                                        const CIMParamValueArray&, CIMParamValueArray&) {
    // ODDITY FN-8: methods are not supported, rather than not found.
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}
