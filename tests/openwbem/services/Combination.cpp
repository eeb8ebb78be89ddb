// Compiled by a test under different definitions; no part of any program.

#include "OW_CppProviderIncludes.hpp"

using namespace OpenWBEM;

#if defined(DIRECT_INSTANCE_BASE)
class Provider : public CppInstanceProviderIFC, public CppAssociatorProviderIFC {};
#elif defined(VIRTUAL_INSTANCE_BASE)
class Provider : public virtual CppInstanceProviderIFC, public CppAssociatorProviderIFC {};
#elif defined(METHODS_AND_ASSOCIATIONS)
class Provider : public CppMethodProviderIFC, public CppAssociatorProviderIFC {};
#elif defined(NAMES_ASSOCIATIONS)
CppAssociatorProviderIFC* providerOf(CppProviderBaseIFC& base) {
    return base.getAssociatorProvider();
}
#elif defined(READS_ONLY)
class Provider : public CppInstanceProviderIFC {
public:
    void enumInstanceNames(const ProviderEnvironmentIFCRef&, const String&, const String&,
                           CIMObjectPathResultHandlerIFC&, const CIMClass&) override {}
    CIMInstance getInstance(const ProviderEnvironmentIFCRef&, const String&, const CIMObjectPath&,
                            WBEMFlags::ELocalOnlyFlag, WBEMFlags::EIncludeQualifiersFlag,
                            WBEMFlags::EIncludeClassOriginFlag, const StringArray*,
                            const CIMClass&) override {
        return CIMInstance(CIMNULL);
    }
};
Provider complete;
#endif
