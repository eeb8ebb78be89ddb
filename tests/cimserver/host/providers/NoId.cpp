// Is found by no class: wants to be polled.
#include "cimserver/host/providers/Record.hpp"

#include "OW_CppProviderIncludes.hpp"

namespace {

class NoId : public OpenWBEM::CppProviderBaseIFC {
public:
    NoId() { hosttest::Record("NoId: made"); }
    ~NoId() override { hosttest::Record("NoId: destroyed"); }
    void initialize(const OpenWBEM::ProviderEnvironmentIFCRef&) override {
        hosttest::Record("NoId: initialize");
    }
    OpenWBEM::CppPolledProviderIFC* getPolledProvider() override {
        // Only asked whether it is there.
        return hosttest::IsOn("NoId: polls")
                   ? reinterpret_cast<OpenWBEM::CppPolledProviderIFC*>(this)
                   : nullptr;
    }
};

} // namespace

OW_NOIDPROVIDERFACTORY(NoId)
