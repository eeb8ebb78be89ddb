#pragma once

#include "OW_config.h"

#ifndef OW_DISABLE_ASSOCIATION_TRAVERSAL

#include "OW_CIMFwd.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_IfcsFwd.hpp"
#include "OW_WBEMFlags.hpp"

namespace OpenWBEM {

// Serves an association class: its traversal from one end to the other, and, as an instance
// provider, the instances of the association itself.
//
// Combined with CppMethodProviderIFC it is simply a second base. CppInstanceProviderIFC is a
// virtual base already: a class that lists it again lists it as virtual too.
//
// The server calls with the declared name of the association class, never an empty one; the other
// texts are the client's, empty where the client gave none. References in results carry a
// namespace.
class OW_COMMON_API CppAssociatorProviderIFC : public virtual CppInstanceProviderIFC {
public:
    ~CppAssociatorProviderIFC() override;

    // Names the associations to be served without a provider qualifier. None by default.
    virtual void getAssociatorProviderInfo(AssociatorProviderInfo& info);

    virtual void associators(const ProviderEnvironmentIFCRef& env,
                             CIMInstanceResultHandlerIFC& result, const String& ns,
                             const CIMObjectPath& objectName, const String& assocClass,
                             const String& resultClass, const String& role,
                             const String& resultRole,
                             WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                             WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                             const StringArray* propertyList) = 0;

    virtual void associatorNames(const ProviderEnvironmentIFCRef& env,
                                 CIMObjectPathResultHandlerIFC& result, const String& ns,
                                 const CIMObjectPath& objectName, const String& assocClass,
                                 const String& resultClass, const String& role,
                                 const String& resultRole) = 0;

    virtual void references(const ProviderEnvironmentIFCRef& env,
                            CIMInstanceResultHandlerIFC& result, const String& ns,
                            const CIMObjectPath& objectName, const String& resultClass,
                            const String& role, WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                            WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                            const StringArray* propertyList) = 0;

    virtual void referenceNames(const ProviderEnvironmentIFCRef& env,
                                CIMObjectPathResultHandlerIFC& result, const String& ns,
                                const CIMObjectPath& objectName, const String& resultClass,
                                const String& role) = 0;

    CppAssociatorProviderIFC* getAssociatorProvider() override;
};

typedef SharedLibraryReference<IntrusiveReference<CppAssociatorProviderIFC>>
    CppAssociatorProviderIFCRef;

} // namespace OpenWBEM

#endif
