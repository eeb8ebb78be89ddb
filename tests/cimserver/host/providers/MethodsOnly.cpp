#include "OW_CppProviderIncludes.hpp"

namespace {

class MethodsOnly : public OpenWBEM::CppMethodProviderIFC {
public:
    OpenWBEM::CIMValue invokeMethod(const OpenWBEM::ProviderEnvironmentIFCRef&,
                                    const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                                    const OpenWBEM::String&, const OpenWBEM::CIMParamValueArray&,
                                    OpenWBEM::CIMParamValueArray&) override {
        return OpenWBEM::CIMValue(OpenWBEM::CIMNULL);
    }
};

} // namespace

OW_PROVIDERFACTORY(MethodsOnly, MethodsOnly)
