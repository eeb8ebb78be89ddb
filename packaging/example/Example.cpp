// A provider library of one class with one method: what it takes to be loaded by the server and to
// answer a client.
#include "OW_CppProviderIncludes.hpp"

namespace {

using namespace OpenWBEM;

class ExampleProvider : public CppMethodProviderIFC {
    CIMValue invokeMethod(const ProviderEnvironmentIFCRef& /*env*/, const String& /*ns*/,
                          const CIMObjectPath& /*path*/, const String& /*methodName*/,
                          const CIMParamValueArray& in, CIMParamValueArray& /*out*/) override {
        return CIMValue("Hello " + in[0].getValue().toString());
    }
};

} // namespace

OW_PROVIDERFACTORY(ExampleProvider, Example)
