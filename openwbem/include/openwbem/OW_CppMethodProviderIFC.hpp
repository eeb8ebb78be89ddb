#pragma once

#include "OW_config.h"

#include "OW_CIMFwd.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CppProviderBaseIFC.hpp"

namespace OpenWBEM {

// Serves the methods of classes.
class OW_COMMON_API CppMethodProviderIFC : public virtual CppProviderBaseIFC {
public:
    ~CppMethodProviderIFC() override;

    // Names the classes and methods to be served without a provider qualifier. None by default.
    virtual void getMethodProviderInfo(MethodProviderInfo& info);

    // Runs the method and returns its value. in holds every declared in-parameter in declared
    // order, with a null value where the client gave none. out comes with one entry for every
    // declared out-parameter, to be filled in place: appending gives the client a second entry.
    virtual CIMValue invokeMethod(const ProviderEnvironmentIFCRef& env, const String& ns,
                                  const CIMObjectPath& path, const String& methodName,
                                  const CIMParamValueArray& in, CIMParamValueArray& out) = 0;

    CppMethodProviderIFC* getMethodProvider() override;
};

typedef SharedLibraryReference<IntrusiveReference<CppMethodProviderIFC>> CppMethodProviderIFCRef;

} // namespace OpenWBEM
