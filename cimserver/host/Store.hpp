// The provider libraries in use: one gate per library file, the providers made from it, and their
// end.
#pragma once

#include "cimserver/host/Gate.hpp"
#include "cimserver/host/Host.hpp"
#include "cimserver/host/Library.hpp"

#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace cimserver::host {

/// Any thread may call. Whoever runs code of a library holds the gate of its file, from the opening
/// to the closing, so that one call at a time enters a library whatever name it was found under.
class Store {
public:
    struct Opened {
        std::filesystem::path file;
        LoadedProvider loaded;
    };
    /// Who wants to enter a library.
    struct Visitor {
        std::string what; ///< for the log and for waiting callers
        OpenWBEM::ProviderEnvironmentIFCRef env;
        const CallInfo& info;
    };
    using Use = std::function<void(OpenWBEM::CppProviderBaseIFC&)>;

    /// `longestWait` is for a library that is busy, 0: for ever.
    Store(std::vector<std::filesystem::path> directories, std::chrono::milliseconds longestWait,
          OpenWBEM::LoggerRef log);

    /// A provider fresh from the first directory that yields it, not initialized and not kept;
    /// none, with error lines that say why. For the start of the server, when no other thread
    /// calls: no gate is held. What the library throws leaves as CIMException.
    std::optional<Opened> Open(const std::string& id) const;
    /// Keeps an initialized provider until the end of the store. Under the same condition.
    void KeepForGood(const std::string& id, Opened opened);

    /// Runs `use` with the provider of that id, which is loaded and initialized when it is not
    /// there yet. Throws Refusal, with error lines in the log, when no directory yields it. What
    /// the library and `use` throw leaves as CIMException, as does `busy with WHAT since N s`.
    void With(const std::string& id, const Visitor& visitor, const Use& use);

    /// Drops the providers whose last call began more than `idleTime` ago and that agree to go. A
    /// library that is busy is passed over.
    void DropIdle(std::chrono::milliseconds idleTime);

private:
    using Clock = std::chrono::steady_clock;

    struct Kept {
        LoadedProvider loaded;
        Clock::time_point lastCall;
        bool forGood;
    };
    /// All that was made from one library file.
    struct Unit {
        Gate gate; ///< guards the rest, and everything that runs in the library
        std::map<std::string, Kept> providers;
    };

    std::vector<std::filesystem::path> Candidates(const std::string& id) const;
    LoadedProvider OpenFile(const std::filesystem::path& file, const std::string& id) const;
    Unit& UnitOf(const std::filesystem::path& file);
    Unit* LastUnitOf(const std::string& id);
    Kept& Keep(Unit& unit, const std::string& id, LoadedProvider loaded, bool forGood);
    Kept& FindOrLoad(Unit& unit, const std::filesystem::path& file, const std::string& id,
                     const OpenWBEM::ProviderEnvironmentIFCRef& env);
    static void Call(Kept& kept, const Use& use);
    bool UseWhereItWas(const std::string& id, const Visitor& visitor, const Use& use);
    bool MayGo(const std::string& id, const Kept& kept, Clock::time_point limit) const;

    const std::vector<std::filesystem::path> directories_;
    const std::chrono::milliseconds longestWait_;
    const OpenWBEM::LoggerRef log_;
    std::mutex tableMutex_; ///< guards the two maps; no gate is waited for while it is held
    std::map<std::filesystem::path, std::unique_ptr<Unit>> units_; ///< by canonical path
    std::map<std::string, Unit*> served_;                          ///< where an id was found last
};

} // namespace cimserver::host
