// A provider without instances, to derive from. Of internal linkage: libraries are opened with
// their names visible to each other, and each shall run its own code.
#pragma once

#include "OW_CppProviderIncludes.hpp"

namespace {

class Plain : public OpenWBEM::CppInstanceProviderIFC {
public:
    using Env = OpenWBEM::ProviderEnvironmentIFCRef;

    void enumInstanceNames(const Env&, const OpenWBEM::String&, const OpenWBEM::String&,
                           OpenWBEM::CIMObjectPathResultHandlerIFC&,
                           const OpenWBEM::CIMClass&) override {}
    OpenWBEM::CIMInstance
    getInstance(const Env&, const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                OpenWBEM::WBEMFlags::ELocalOnlyFlag, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                OpenWBEM::WBEMFlags::EIncludeClassOriginFlag, const OpenWBEM::StringArray*,
                const OpenWBEM::CIMClass&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_FOUND);
    }
    OpenWBEM::CIMObjectPath createInstance(const Env&, const OpenWBEM::String&,
                                           const OpenWBEM::CIMInstance&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
    void modifyInstance(const Env&, const OpenWBEM::String&, const OpenWBEM::CIMInstance&,
                        const OpenWBEM::CIMInstance&, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                        const OpenWBEM::StringArray*, const OpenWBEM::CIMClass&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
    void deleteInstance(const Env&, const OpenWBEM::String&,
                        const OpenWBEM::CIMObjectPath&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
};

} // namespace
