#pragma once

#include "OW_config.h"

#include "OW_CommonFwd.hpp"
#include "OW_IfcsFwd.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_Logger.hpp"
#include "OW_ProviderFwd.hpp"
#include "OW_String.hpp"

namespace OpenWBEM {

class OperationContext;

// What the server offers to a provider during one call. It belongs to the request: keep the logger
// and the texts, not the environment.
class OW_COMMON_API ProviderEnvironmentIFC : public IntrusiveCountableBase {
public:
    ~ProviderEnvironmentIFC() override;

    // Calls back into the server: with providers, and past them to what the server itself stores.
    virtual CIMOMHandleIFCRef getCIMOMHandle() const = 0;
    virtual CIMOMHandleIFCRef getRepositoryCIMOMHandle() const = 0;
    virtual RepositoryIFCRef getRepository() const = 0;

    // A fresh logger of the server's own component, or of the given one. It stays usable after the
    // request. The form with a component is the one to use.
    OW_DEPRECATED virtual LoggerRef getLogger() const = 0;
    virtual LoggerRef getLogger(const String& componentName) const = 0;

    // The configured text, or the default when there is none. Names are case-sensitive; an item
    // configured empty counts as absent.
    virtual String getConfigItem(const String& name, const String& defRetVal = "") const = 0;

    // Whom the request was authenticated as; empty when anonymous.
    virtual String getUserName() const = 0;

    virtual OperationContext& getOperationContext() = 0;
};

} // namespace OpenWBEM
