#pragma once

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"
#include "OW_LogMessage.hpp"
#include "OW_RepositoryIFC.hpp"
#include "OW_ResultHandlers.hpp"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

// What a provider sees of the CIM server, for tests that call it through the provider API.
namespace test_support {

// What has been logged, in order, as "INFO: text" or "ERROR: text". Any thread may call.
class LogLines {
public:
    void Add(const std::string& line);
    std::vector<std::string> All() const;
    bool Contains(const std::string& line) const;
    void Forget();
    // Waits for a line to be logged; false when half a minute has passed without it.
    bool WaitFor(const std::string& line) const;

private:
    mutable std::mutex lock_;
    mutable std::condition_variable added_;
    std::vector<std::string> lines_;
};

// A logger that keeps every line in LogLines, which it and its clones share.
class RecordingLogger : public OpenWBEM::Logger {
public:
    RecordingLogger(std::shared_ptr<LogLines> lines, const OpenWBEM::String& component);

protected:
    void doProcessLogMessage(const OpenWBEM::LogMessage& message) const override;
    OpenWBEM::LoggerRef doClone() const override;

private:
    std::shared_ptr<LogLines> lines_;
};

// The environment of a request. Each call of getLogger gives a logger of its own, as the server
// does.
class Environment : public OpenWBEM::ProviderEnvironmentIFC {
public:
    explicit Environment(std::shared_ptr<LogLines> lines) : lines_(std::move(lines)) {}

    void SetConfigItem(const std::string& name, const std::string& value) { items_[name] = value; }
    // The component names for which loggers were asked, "" for the form without a name.
    const std::vector<std::string>& LoggersAskedFor() const { return asked_; }

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
    std::shared_ptr<LogLines> lines_;
    std::map<std::string, std::string> items_;
    mutable std::vector<std::string> asked_;
    OpenWBEM::OperationContext context_;
};

// A CIM failure as a test compares it; number 0 means that nothing was thrown.
struct CimError {
    int number = 0;
    std::string message;

    bool operator==(const CimError& other) const {
        return number == other.number && message == other.message;
    }
};
std::ostream& operator<<(std::ostream& out, const CimError& error);

// Runs an action and tells with which CIM failure it ended. Other exceptions pass.
template <typename Action>
CimError CimErrorOf(const Action& action) {
    try {
        action();
    } catch (const OpenWBEM::CIMException& failure) {
        return {failure.getErrNo(), failure.getMessage()};
    }
    return {};
}

// The failures that carry no text of their own.
CimError InvalidParameter();
CimError InvalidClass();
CimError NotFound();
CimError NotSupported();
// CIM_ERR_FAILED with a text.
CimError Failed(const std::string& text);

// An instance or path with a single string key.
OpenWBEM::CIMObjectPath PathOf(const char* className, const char* key, const char* value);

// The operations with the arguments that no test of ours varies left out.
class Calls {
public:
    Calls(OpenWBEM::CppInstanceProviderIFC& provider, OpenWBEM::ProviderEnvironmentIFCRef env)
        : provider_(provider), env_(std::move(env)) {}

    OpenWBEM::CIMInstanceArray
    EnumInstances(const char* className, const OpenWBEM::StringArray* propertyList = nullptr) const;
    void EnumInstances(const char* className, OpenWBEM::CIMInstanceResultHandlerIFC& result) const;
    OpenWBEM::CIMObjectPathArray EnumInstanceNames(const char* className) const;
    OpenWBEM::CIMInstance GetInstance(const OpenWBEM::CIMObjectPath& path,
                                      const OpenWBEM::StringArray* propertyList = nullptr) const;
    void CreateInstance(const OpenWBEM::CIMInstance& instance) const;
    void DeleteInstance(const OpenWBEM::CIMObjectPath& path) const;
    void ModifyInstance(const OpenWBEM::CIMInstance& instance,
                        const OpenWBEM::StringArray* propertyList = nullptr) const;

    static constexpr const char* nameSpace = "root/cimv2";

private:
    OpenWBEM::CppInstanceProviderIFC& provider_;
    OpenWBEM::ProviderEnvironmentIFCRef env_;
};

} // namespace test_support
