#include "cimserver/host/Environment.hpp"

#include "OW_CIMOMHandleIFC.hpp"
#include "OW_RepositoryIFC.hpp"

#include <utility>

namespace cimserver::host {

Environment::Environment(std::shared_ptr<const Settings> settings, const std::string& user)
    : settings_(std::move(settings)), user_(user.c_str()) {
    context_.setStringData(OpenWBEM::OperationContext::USER_NAME, user_);
}

OpenWBEM::CIMOMHandleIFCRef Environment::getCIMOMHandle() const {
    return {};
}

OpenWBEM::CIMOMHandleIFCRef Environment::getRepositoryCIMOMHandle() const {
    return {};
}

OpenWBEM::RepositoryIFCRef Environment::getRepository() const {
    return {};
}

OpenWBEM::LoggerRef Environment::getLogger() const {
    return LoggerFor(settings_->logger, "ow.owcimomd.CIMServer");
}

OpenWBEM::LoggerRef Environment::getLogger(const OpenWBEM::String& componentName) const {
    return LoggerFor(settings_->logger, componentName);
}

OpenWBEM::String Environment::getConfigItem(const OpenWBEM::String& name,
                                            const OpenWBEM::String& defRetVal) const {
    return settings_->configItem ? settings_->configItem(name, defRetVal) : defRetVal;
}

OpenWBEM::String Environment::getUserName() const {
    return user_;
}

OpenWBEM::OperationContext& Environment::getOperationContext() {
    return context_;
}

OpenWBEM::LoggerRef LoggerFor(const OpenWBEM::LoggerRef& logger,
                              const OpenWBEM::String& component) {
    OpenWBEM::LoggerRef clone = logger->clone();
    clone->setDefaultComponent(component);
    return clone;
}

} // namespace cimserver::host
