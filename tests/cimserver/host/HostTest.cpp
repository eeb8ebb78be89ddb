#include "cimserver/host/HostTest.hpp"

#include "OW_CIMClass.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_LogMessage.hpp"
#include "OW_ResultHandlers.hpp"

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace hosttest {

namespace {

class KeepingLogger final : public OpenWBEM::Logger {
public:
    KeepingLogger(std::shared_ptr<LogLines> lines, OpenWBEM::ELogLevel level)
        : Logger("default", level), lines_(std::move(lines)) {}

protected:
    void doProcessLogMessage(const OpenWBEM::LogMessage& message) const override {
        lines_->Add(std::string(message.component.c_str()) + " " + message.category.c_str() + " " +
                    message.message.c_str());
    }
    OpenWBEM::LoggerRef doClone() const override {
        return OpenWBEM::LoggerRef(new KeepingLogger(*this));
    }

private:
    std::shared_ptr<LogLines> lines_;
};

} // namespace

void LogLines::Add(const std::string& line) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(line);
}

Lines LogLines::Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(lines_, {});
}

OpenWBEM::LoggerRef LoggerTo(std::shared_ptr<LogLines> lines, OpenWBEM::ELogLevel level) {
    return OpenWBEM::LoggerRef(new KeepingLogger(std::move(lines), level));
}

HostTest::HostTest() {
    Reset();
    std::string name = (std::filesystem::temp_directory_path() / "host_test.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no directory for the test");
    }
    root_ = name;
    directory_ = root_ / "providers";
    std::filesystem::create_directory(directory_);
}

HostTest::~HostTest() {
    host_.reset();
    std::filesystem::remove_all(root_);
}

void HostTest::Install(const std::string& id, const std::string& as) {
    const auto built = std::filesystem::path(HOST_TEST_PROVIDERS) / ("lib" + id + ".so");
    if (!std::filesystem::exists(built)) {
        throw std::runtime_error("not built: " + built.string());
    }
    std::filesystem::create_symlink(built, directory_ / ("lib" + (as.empty() ? id : as) + ".so"));
}

cimserver::host::Settings HostTest::Settings() const {
    cimserver::host::Settings settings;
    settings.directories = {directory_};
    settings.logger = LoggerTo(log_, OpenWBEM::E_ERROR_LEVEL);
    return settings;
}

void HostTest::Start(const cimserver::host::Settings& settings) {
    host_ = std::make_unique<cimserver::host::Host>(settings);
}

bool HostTest::Enumerate(const std::string& qualifier, const std::string& className,
                         const std::string& user) {
    return host_->WithInstanceProvider(
        {"root/cimv2", className.c_str(), qualifier.c_str()}, {"EnumerateInstanceNames", user},
        [&](OpenWBEM::CppInstanceProviderIFC& provider,
            const OpenWBEM::ProviderEnvironmentIFCRef& env) {
            OpenWBEM::CIMObjectPathArray paths;
            OpenWBEM::CIMObjectPathArrayBuilder handler(paths);
            provider.enumInstanceNames(env, "root/cimv2", className.c_str(), handler,
                                       OpenWBEM::CIMClass(className.c_str()));
        });
}

std::string HostTest::Failure(const std::string& qualifier) {
    try {
        const bool served = Enumerate(qualifier);
        return served ? "no failure" : "no provider";
    } catch (const OpenWBEM::CIMException& error) {
        return std::to_string(error.getErrNo()) + " " + error.getMessage();
    }
}

} // namespace hosttest
