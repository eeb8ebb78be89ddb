#pragma once

#include "OW_config.h"

#include "OW_CIMFwd.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_IfcsFwd.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include "OW_WBEMFlags.hpp"

namespace OpenWBEM {

// Serves the instances of classes. ns is the namespace without a leading slash. Failures that the
// client shall understand are thrown as CIMException.
class OW_COMMON_API CppInstanceProviderIFC : public virtual CppProviderBaseIFC {
public:
    ~CppInstanceProviderIFC() override;

    // Names the classes to be served without a provider qualifier of their own. None by default.
    virtual void getInstanceProviderInfo(InstanceProviderInfo& info);

    // Hands the path of every instance to result. The path's class name and keys count; the
    // namespace is the request's.
    virtual void enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns,
                                   const String& className, CIMObjectPathResultHandlerIFC& result,
                                   const CIMClass& cimClass) = 0;

    // Hands every instance to result. By default it asks its own enumInstanceNames and getInstance
    // for each path. propertyList is null when the client gave none. requestedClass is the class
    // that the client named, cimClass the one of this call.
    virtual void enumInstances(const ProviderEnvironmentIFCRef& env, const String& ns,
                               const String& className, CIMInstanceResultHandlerIFC& result,
                               WBEMFlags::ELocalOnlyFlag localOnly, WBEMFlags::EDeepFlag deep,
                               WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                               WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                               const StringArray* propertyList, const CIMClass& requestedClass,
                               const CIMClass& cimClass);

    // The instance of that path; CIMException NOT_FOUND when there is none.
    virtual CIMInstance getInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                    const CIMObjectPath& instanceName,
                                    WBEMFlags::ELocalOnlyFlag localOnly,
                                    WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                    WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                    const StringArray* propertyList, const CIMClass& cimClass) = 0;

#ifndef OW_DISABLE_INSTANCE_MANIPULATION
    // Returns the path of what was made; a null path stands for the path of cimInstance.
    virtual CIMObjectPath createInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                         const CIMInstance& cimInstance) = 0;

    virtual void modifyInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                const CIMInstance& modifiedInstance,
                                const CIMInstance& previousInstance,
                                WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                const StringArray* propertyList, const CIMClass& theClass) = 0;

    virtual void deleteInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                const CIMObjectPath& cop) = 0;
#endif

    CppInstanceProviderIFC* getInstanceProvider() override;
};

typedef SharedLibraryReference<IntrusiveReference<CppInstanceProviderIFC>>
    CppInstanceProviderIFCRef;

} // namespace OpenWBEM
