#include "openwbem/services/SampleProvider.hpp"

namespace OpenWBEM {
namespace {

// Uses what providers normally use, so that the library holds what a real one would.
class Sample : public MethodAndAssociationSample {
public:
    void initialize(const ProviderEnvironmentIFCRef& env) override {
        const LoggerRef logger = env->getLogger("sample");
        OW_LOG_INFO(logger, "sample initialized");
        CIMInstanceEnumeration queue;
        CIMInstanceEnumBuilder builder(queue);
        builder.handle(CIMInstance());
        queue.nextElement();
    }
};

} // namespace
} // namespace OpenWBEM

using OpenWBEM::Sample;

#if defined(SAMPLE_WITH_ID)
OW_PROVIDERFACTORY(Sample, ServicesSample)
#elif defined(SAMPLE_WITHOUT_ID)
OW_PROVIDERFACTORY_NOID(Sample, Whatever)
#elif defined(SAMPLE_OLD_SPELLING)
OW_NOIDPROVIDERFACTORY(Sample)
#elif defined(SAMPLE_STATIC)
OW_PROVIDERFACTORY(Sample, ServicesSample)
#endif
