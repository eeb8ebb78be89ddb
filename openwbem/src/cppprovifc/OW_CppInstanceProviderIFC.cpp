#include "OW_config.h"

#include "OW_CppInstanceProviderIFC.hpp"

#include "OW_CIMClass.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"

namespace OpenWBEM {
namespace {

// Turns each path into its instance and hands that on. Everything is borrowed for one enumeration.
class InstanceFromPath : public CIMObjectPathResultHandlerIFC {
public:
    InstanceFromPath(CppInstanceProviderIFC& provider, const ProviderEnvironmentIFCRef& env,
                     const String& ns, CIMInstanceResultHandlerIFC& result,
                     WBEMFlags::ELocalOnlyFlag localOnly,
                     WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                     WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                     const StringArray* propertyList, const CIMClass& cimClass)
        : m_provider(provider), m_env(env), m_ns(ns), m_result(result), m_localOnly(localOnly),
          m_includeQualifiers(includeQualifiers), m_includeClassOrigin(includeClassOrigin),
          m_propertyList(propertyList), m_cimClass(cimClass) {}

protected:
    void doHandle(const CIMObjectPath& path) override {
        m_result.handle(m_provider.getInstance(m_env, m_ns, path, m_localOnly, m_includeQualifiers,
                                               m_includeClassOrigin, m_propertyList, m_cimClass));
    }

private:
    CppInstanceProviderIFC& m_provider;
    const ProviderEnvironmentIFCRef& m_env;
    const String& m_ns;
    CIMInstanceResultHandlerIFC& m_result;
    WBEMFlags::ELocalOnlyFlag m_localOnly;
    WBEMFlags::EIncludeQualifiersFlag m_includeQualifiers;
    WBEMFlags::EIncludeClassOriginFlag m_includeClassOrigin;
    const StringArray* m_propertyList;
    const CIMClass& m_cimClass;
};

} // namespace

CppInstanceProviderIFC::~CppInstanceProviderIFC() = default;

void CppInstanceProviderIFC::getInstanceProviderInfo(InstanceProviderInfo&) {
}

void CppInstanceProviderIFC::enumInstances(
    const ProviderEnvironmentIFCRef& env, const String& ns, const String& className,
    CIMInstanceResultHandlerIFC& result, WBEMFlags::ELocalOnlyFlag localOnly, WBEMFlags::EDeepFlag,
    WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
    WBEMFlags::EIncludeClassOriginFlag includeClassOrigin, const StringArray* propertyList,
    const CIMClass&, const CIMClass& cimClass) {
    InstanceFromPath toInstance(*this, env, ns, result, localOnly, includeQualifiers,
                                includeClassOrigin, propertyList, cimClass);
    enumInstanceNames(env, ns, className, toInstance, cimClass);
}

CppInstanceProviderIFC* CppInstanceProviderIFC::getInstanceProvider() {
    return this;
}

} // namespace OpenWBEM
