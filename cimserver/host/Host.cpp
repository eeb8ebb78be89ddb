#include "cimserver/host/Host.hpp"

#include "cimserver/host/Environment.hpp"
#include "cimserver/host/Registry.hpp"
#include "cimserver/host/StartUp.hpp"
#include "cimserver/host/Store.hpp"

#include "OW_CIMException.hpp"
#include "OW_String.hpp"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

namespace cimserver::host {

namespace {

// No signal is blocked in this thread while one lives: a program that a provider starts inherits
// the mask of the thread, and the threads that bring requests may block some.
class OpenSignalMask {
public:
    OpenSignalMask() {
        sigset_t none;
        sigemptyset(&none);
        pthread_sigmask(SIG_SETMASK, &none, &before_);
    }
    ~OpenSignalMask() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    OpenSignalMask(const OpenSignalMask&) = delete;
    OpenSignalMask& operator=(const OpenSignalMask&) = delete;

private:
    sigset_t before_{};
};

std::string InvalidProvider(const std::string& id, const std::string& reason) {
    return "Invalid provider: " + id + ": " + reason;
}

[[noreturn]] void RefuseProvider(const std::string& id, const std::string& reason) {
    OW_THROWCIMMSG(OpenWBEM::CIMException::FAILED, InvalidProvider(id, reason).c_str());
}

} // namespace

struct Host::State {
    using Use = std::function<void(OpenWBEM::CppProviderBaseIFC&,
                                   const OpenWBEM::ProviderEnvironmentIFCRef&)>;

    explicit State(Settings given)
        : settings(std::make_shared<const Settings>(std::move(given))),
          log(LoggerFor(settings->logger, "ow.provider.cpp.ifc")),
          store(settings->directories, settings->longestWait, log) {}

    OpenWBEM::ProviderEnvironmentIFCRef EnvironmentFor(const std::string& user) const {
        return OpenWBEM::ProviderEnvironmentIFCRef(new Environment(settings, user));
    }
    void KeepHouse(const std::stop_token& stop);
    /// Runs `use` with the provider of that id; throws Refusal when no library yields it.
    void EnterLibrary(const std::string& id, const Target& target, const CallInfo& info,
                      const Use& use);
    /// The same; the refusal is an error of the call.
    void EnterNeededLibrary(const std::string& id, const Target& target, const CallInfo& info,
                            const Use& use);
    void LogMissing(const std::string& id, const char* what) const {
        log->logError(OpenWBEM::String(("provider " + id + " serves no " + what).c_str()));
    }

    // In the order of life: the thread ends first, then the providers.
    const std::shared_ptr<const Settings> settings;
    const OpenWBEM::LoggerRef log;
    Registry registry;
    Store store;
    std::jthread housekeeper;
};

void Host::State::KeepHouse(const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any never;
    // Nothing is shared: the lock is there because waiting for the stop request takes one.
    // cppcheck-suppress localMutex
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        never.wait_for(lock, stop, settings->housekeepingInterval, [] { return false; });
        if (!stop.stop_requested()) {
            store.DropIdle(settings->idleTime);
        }
    }
}

void Host::State::EnterLibrary(const std::string& id, const Target& target, const CallInfo& info,
                               const Use& use) {
    const OpenSignalMask mask;
    const Store::Visitor visitor{info.operation + " of " + target.className.c_str(),
                                 EnvironmentFor(info.user), info};
    store.With(id, visitor,
               [&](OpenWBEM::CppProviderBaseIFC& provider) { use(provider, visitor.env); });
}

void Host::State::EnterNeededLibrary(const std::string& id, const Target& target,
                                     const CallInfo& info, const Use& use) {
    try {
        EnterLibrary(id, target, info, use);
    } catch (const Refusal& refusal) {
        RefuseProvider(id, refusal.what());
    }
}

Host::Host(Settings settings) : state_(std::make_unique<State>(std::move(settings))) {
    State& state = *state_;
    StartUp(state.store, state.registry, state.log, state.EnvironmentFor({}))
        .Run(state.settings->directories);
    if (state.settings->idleTime.count() >= 0) {
        state.housekeeper =
            std::jthread([&state](const std::stop_token& stop) { state.KeepHouse(stop); });
    }
}

Host::~Host() = default;

bool Host::WithInstanceProvider(const Target& target, const CallInfo& info,
                                const InstanceCall& call) {
    const auto id = state_->registry.ChooseForInstances(target, *state_->log);
    if (!id) {
        return false;
    }
    const auto use = [&](OpenWBEM::CppProviderBaseIFC& provider, const auto& env) {
        auto* instances = provider.getInstanceProvider();
        if (instances == nullptr) {
            state_->LogMissing(*id, "instances");
            RefuseProvider(*id, "serves no instances");
        }
        call(*instances, env);
    };
    state_->EnterNeededLibrary(*id, target, info, use);
    return true;
}

bool Host::WithAssociatorProvider(const Target& target, const CallInfo& info,
                                  const AssociatorCall& call) {
    const auto id = state_->registry.ChooseForAssociations(target, *state_->log);
    if (!id) {
        return false;
    }
    bool isServed = false;
    const auto use = [&](OpenWBEM::CppProviderBaseIFC& provider, const auto& env) {
        auto* associations = provider.getAssociatorProvider();
        isServed = associations != nullptr;
        if (isServed) {
            call(*associations, env);
        }
    };
    state_->EnterNeededLibrary(*id, target, info, use);
    return isServed;
}

bool Host::WithMethodProvider(const Target& target, const OpenWBEM::String& methodName,
                              const CallInfo& info, const MethodCall& call) {
    const auto id = state_->registry.ChooseForMethod(target, methodName, *state_->log);
    if (!id) {
        return false;
    }
    bool isServed = false;
    const auto use = [&](OpenWBEM::CppProviderBaseIFC& provider, const auto& env) {
        auto* methods = provider.getMethodProvider();
        isServed = methods != nullptr;
        if (!isServed) {
            state_->LogMissing(*id, "methods");
            return;
        }
        call(*methods, env);
    };
    try {
        state_->EnterLibrary(*id, target, info, use);
    } catch (const Refusal& refusal) {
        const std::string reason = InvalidProvider(*id, refusal.what());
        const OpenWBEM::String text =
            "No provider for method " + methodName + ": " + reason.c_str();
        OW_THROWCIMMSG(OpenWBEM::CIMException::NOT_FOUND, text.c_str());
    }
    return isServed;
}

} // namespace cimserver::host
