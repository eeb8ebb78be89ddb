// Loads provider libraries and keeps their providers: finds the one that serves a class, lets one
// call at a time into each library, and drops what has been idle. Knows nothing of CIM operations.
#pragma once

#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace cimserver::host {

/// What names the provider of a class or of one of its methods: the class itself and the text of
/// the Provider qualifier that counts (empty: none).
struct Target {
    OpenWBEM::String nameSpace;
    OpenWBEM::String className;
    OpenWBEM::String providerQualifier;
};

/// What a call is for.
struct CallInfo {
    std::string operation; ///< "EnumerateInstances"
    std::string user;      ///< empty: anonymous
    // Called by the call's thread: when it is inside its library, with what the log and waiting
    // callers are told, such as `EnumerateInstances of ZNX_SoftwareIdentity`; and when it leaves.
    std::function<void(const std::string& what)> entered = {};
    std::function<void()> left = {};
};

using InstanceCall = std::function<void(OpenWBEM::CppInstanceProviderIFC&,
                                        const OpenWBEM::ProviderEnvironmentIFCRef&)>;
using MethodCall = std::function<void(OpenWBEM::CppMethodProviderIFC&,
                                      const OpenWBEM::ProviderEnvironmentIFCRef&)>;
using AssociatorCall = std::function<void(OpenWBEM::CppAssociatorProviderIFC&,
                                          const OpenWBEM::ProviderEnvironmentIFCRef&)>;

/// To be called while an exception is handled: throws what a client is told of it, as a
/// CIMException that holds nothing of the library that threw. A CIMException keeps its number and
/// text; any other OpenWBEM or standard exception becomes FAILED with its bare text, anything else
/// FAILED with `Unknown Exception`.
[[noreturn]] void RethrowAsCimException();

/// Called from several threads at once.
class ProviderSource {
public:
    virtual ~ProviderSource() = default;
    /// Runs `call` with the instance provider of the target, alone inside its library.
    /// False when the class has no provider; `call` was not run then. Whatever the call or the
    /// provider's initialize throws arrives as RethrowAsCimException makes it. A library that is
    /// missing or refused, or a provider that serves no instances: CIMException FAILED,
    /// `Invalid provider: ID: REASON`. A library that stays busy: CIMException FAILED,
    /// `busy with WHAT since N s`.
    virtual bool WithInstanceProvider(const Target& target, const CallInfo& info,
                                      const InstanceCall& call) = 0;
    /// The same with the provider of an association class. False also when the provider serves no
    /// associations.
    virtual bool WithAssociatorProvider(const Target& target, const CallInfo& info,
                                        const AssociatorCall& call) = 0;
    /// The same with the provider of the target's method of that name. False also when the provider
    /// serves no methods. A library that is missing or refused: CIMException NOT_FOUND,
    /// `No provider for method NAME: Invalid provider: ID: REASON`.
    virtual bool WithMethodProvider(const Target& target, const OpenWBEM::String& methodName,
                                    const CallInfo& info, const MethodCall& call) = 0;
};

struct Settings {
    std::vector<std::filesystem::path> directories;               ///< searched in this order
    std::chrono::milliseconds idleTime = std::chrono::minutes(5); ///< negative: never unload
    std::chrono::milliseconds housekeepingInterval = std::chrono::minutes(1);
    /// For a library that is busy; 0: for ever.
    std::chrono::milliseconds longestWait = std::chrono::seconds(60);
    /// The configured text of an item, or the default; names are case-sensitive.
    std::function<OpenWBEM::String(const OpenWBEM::String& name, const OpenWBEM::String& fallback)>
        configItem;
    OpenWBEM::LoggerRef logger;
};

class Host final : public ProviderSource {
public:
    /// Opens every library of the directories once, as the real server does at its start: version
    /// check, registration, and closed again. A library that is refused is logged with the reason.
    explicit Host(Settings settings);
    /// Destroys the providers and closes their libraries; no call may be running.
    ~Host() override;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    bool WithInstanceProvider(const Target& target, const CallInfo& info,
                              const InstanceCall& call) override;
    bool WithAssociatorProvider(const Target& target, const CallInfo& info,
                                const AssociatorCall& call) override;
    bool WithMethodProvider(const Target& target, const OpenWBEM::String& methodName,
                            const CallInfo& info, const MethodCall& call) override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace cimserver::host
