// What a provider is told of the request it serves.
#pragma once

#include "cimserver/host/Host.hpp"

#include "OW_OperationContext.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"

#include <memory>
#include <string>

namespace cimserver::host {

/// One per request; used by the thread of the request. There is no way back into the server: the
/// CIMOM handles and the repository are null.
class Environment final : public OpenWBEM::ProviderEnvironmentIFC {
public:
    Environment(std::shared_ptr<const Settings> settings, const std::string& user);

    OpenWBEM::CIMOMHandleIFCRef getCIMOMHandle() const override;
    OpenWBEM::CIMOMHandleIFCRef getRepositoryCIMOMHandle() const override;
    OpenWBEM::RepositoryIFCRef getRepository() const override;
    OpenWBEM::LoggerRef getLogger() const override;
    OpenWBEM::LoggerRef getLogger(const OpenWBEM::String& componentName) const override;
    OpenWBEM::String getConfigItem(const OpenWBEM::String& name,
                                   const OpenWBEM::String& defRetVal = "") const override;
    OpenWBEM::String getUserName() const override;
    OpenWBEM::OperationContext& getOperationContext() override;

private:
    std::shared_ptr<const Settings> settings_;
    OpenWBEM::String user_;
    OpenWBEM::OperationContext context_;
};

/// A clone of the logger with that component.
OpenWBEM::LoggerRef LoggerFor(const OpenWBEM::LoggerRef& logger, const OpenWBEM::String& component);

} // namespace cimserver::host
