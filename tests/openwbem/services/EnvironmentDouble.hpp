#pragma once

#include "OW_CIMOMHandleIFC.hpp"
#include "OW_LogMessage.hpp"
#include "OW_OperationContext.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_RepositoryIFC.hpp"

#include <memory>
#include <utility>
#include <vector>

// An environment and a logger as a server has them; what is logged can be read afterwards.
typedef std::vector<OpenWBEM::LogMessage> LoggedLines;

class LoggerDouble : public OpenWBEM::Logger {
public:
    explicit LoggerDouble(std::shared_ptr<LoggedLines> lines)
        : Logger("double", OpenWBEM::E_ALL_LEVEL), lines_(std::move(lines)) {}

protected:
    void doProcessLogMessage(const OpenWBEM::LogMessage& message) const override {
        lines_->push_back(message);
    }
    OpenWBEM::LoggerRef doClone() const override { return new LoggerDouble(*this); }

private:
    std::shared_ptr<LoggedLines> lines_;
};

class EnvironmentDouble : public OpenWBEM::ProviderEnvironmentIFC {
public:
    EnvironmentDouble() : lines(std::make_shared<LoggedLines>()) {}

    OpenWBEM::CIMOMHandleIFCRef getCIMOMHandle() const override {
        return OpenWBEM::CIMOMHandleIFCRef();
    }
    OpenWBEM::CIMOMHandleIFCRef getRepositoryCIMOMHandle() const override {
        return OpenWBEM::CIMOMHandleIFCRef();
    }
    OpenWBEM::RepositoryIFCRef getRepository() const override {
        return OpenWBEM::RepositoryIFCRef();
    }
    OpenWBEM::LoggerRef getLogger() const override { return new LoggerDouble(lines); }
    OpenWBEM::LoggerRef getLogger(const OpenWBEM::String& componentName) const override {
        OpenWBEM::LoggerRef logger = new LoggerDouble(lines);
        logger->setDefaultComponent(componentName);
        return logger;
    }
    OpenWBEM::String getConfigItem(const OpenWBEM::String& name,
                                   const OpenWBEM::String& defRetVal) const override {
        return name == "known" ? OpenWBEM::String("configured") : defRetVal;
    }
    OpenWBEM::String getUserName() const override { return "user"; }
    OpenWBEM::OperationContext& getOperationContext() override { return context_; }

    std::shared_ptr<LoggedLines> lines;

private:
    OpenWBEM::OperationContext context_;
};
