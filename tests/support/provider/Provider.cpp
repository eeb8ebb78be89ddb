#include "support/provider/Provider.hpp"

#include <algorithm>
#include <chrono>

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;

namespace test_support {

void LogLines::Add(const std::string& line) {
    const std::lock_guard<std::mutex> lock(lock_);
    lines_.push_back(line);
    added_.notify_all();
}

std::vector<std::string> LogLines::All() const {
    const std::lock_guard<std::mutex> lock(lock_);
    return lines_;
}

bool LogLines::Contains(const std::string& line) const {
    const std::lock_guard<std::mutex> lock(lock_);
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
}

void LogLines::Forget() {
    const std::lock_guard<std::mutex> lock(lock_);
    lines_.clear();
}

bool LogLines::WaitFor(const std::string& line) const {
    std::unique_lock<std::mutex> lock(lock_);
    return added_.wait_for(lock, std::chrono::seconds(30), [&] {
        return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
    });
}

RecordingLogger::RecordingLogger(std::shared_ptr<LogLines> lines, const String& component)
    : Logger(component, E_ALL_LEVEL), lines_(std::move(lines)) {
}

void RecordingLogger::doProcessLogMessage(const LogMessage& message) const {
    lines_->Add(std::string(message.category.c_str()) + ": " + message.message.c_str());
}

LoggerRef RecordingLogger::doClone() const {
    return LoggerRef(new RecordingLogger(lines_, getDefaultComponent()));
}

CIMOMHandleIFCRef Environment::getCIMOMHandle() const {
    return CIMOMHandleIFCRef();
}

CIMOMHandleIFCRef Environment::getRepositoryCIMOMHandle() const {
    return CIMOMHandleIFCRef();
}

RepositoryIFCRef Environment::getRepository() const {
    return RepositoryIFCRef();
}

LoggerRef Environment::getLogger() const {
    return getLogger("");
}

LoggerRef Environment::getLogger(const String& componentName) const {
    asked_.emplace_back(componentName.c_str());
    return LoggerRef(new RecordingLogger(lines_, componentName));
}

String Environment::getConfigItem(const String& name, const String& defRetVal) const {
    const auto item = items_.find(name.c_str());
    return item == items_.end() ? defRetVal : String(item->second.c_str());
}

String Environment::getUserName() const {
    return String();
}

OperationContext& Environment::getOperationContext() {
    return context_;
}

std::ostream& operator<<(std::ostream& out, const CimError& error) {
    return out << error.number << " \"" << error.message << '"';
}

CimError InvalidParameter() {
    return {4, "invalid parameter passed to method"};
}

CimError InvalidClass() {
    return {5, "class does not exist"};
}

CimError NotFound() {
    return {6, "requested object could not be found"};
}

CimError NotSupported() {
    return {7, "requested operation is not supported"};
}

CimError Failed(const std::string& text) {
    return {1, "general error (" + text + ")"};
}

CIMObjectPath PathOf(const char* className, const char* key, const char* value) {
    CIMObjectPath path(className, Calls::nameSpace);
    path.setKeyValue(key, CIMValue(value));
    return path;
}

CIMInstanceArray Calls::EnumInstances(const char* className,
                                      const StringArray* propertyList) const {
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    provider_.enumInstances(env_, nameSpace, className, result, E_NOT_LOCAL_ONLY, E_DEEP,
                            E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, propertyList, CIMClass(),
                            CIMClass());
    return instances;
}

void Calls::EnumInstances(const char* className, CIMInstanceResultHandlerIFC& result) const {
    provider_.enumInstances(env_, nameSpace, className, result, E_NOT_LOCAL_ONLY, E_DEEP,
                            E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr, CIMClass(),
                            CIMClass());
}

CIMObjectPathArray Calls::EnumInstanceNames(const char* className) const {
    CIMObjectPathArray paths;
    CIMObjectPathArrayBuilder result(paths);
    provider_.enumInstanceNames(env_, nameSpace, className, result, CIMClass());
    return paths;
}

CIMInstance Calls::GetInstance(const CIMObjectPath& path, const StringArray* propertyList) const {
    return provider_.getInstance(env_, nameSpace, path, E_NOT_LOCAL_ONLY, E_EXCLUDE_QUALIFIERS,
                                 E_EXCLUDE_CLASS_ORIGIN, propertyList, CIMClass());
}

void Calls::CreateInstance(const CIMInstance& instance) const {
    provider_.createInstance(env_, nameSpace, instance);
}

void Calls::DeleteInstance(const CIMObjectPath& path) const {
    provider_.deleteInstance(env_, nameSpace, path);
}

void Calls::ModifyInstance(const CIMInstance& instance, const StringArray* propertyList) const {
    provider_.modifyInstance(env_, nameSpace, instance, instance, E_EXCLUDE_QUALIFIERS,
                             propertyList, CIMClass());
}

} // namespace test_support
