#include "cimserver/host/Store.hpp"

#include "cimserver/host/Enter.hpp"
#include "cimserver/host/Text.hpp"

#include "OW_CppProviderBaseIFC.hpp"
#include "OW_String.hpp"

#include <system_error>
#include <utility>

namespace cimserver::host {

namespace {

/// What the first file gives that is not refused; when all are, throws Refusal with all reasons.
template <class Function>
auto FirstOf(const std::vector<std::filesystem::path>& files, const Function& function) {
    std::string reasons;
    for (const auto& file : files) {
        try {
            return function(file);
        } catch (const Refusal& refusal) {
            reasons += (reasons.empty() ? "" : "; ") + std::string(refusal.what());
        }
    }
    throw Refusal(reasons);
}

/// Tells the caller while one of its calls is inside a library.
class Visit {
public:
    explicit Visit(const Store::Visitor& visitor) : info_(visitor.info) {
        if (info_.entered) {
            info_.entered(visitor.what);
        }
    }
    ~Visit() {
        if (info_.left) {
            info_.left();
        }
    }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;

private:
    const CallInfo& info_;
};

} // namespace

Store::Store(std::vector<std::filesystem::path> directories, std::chrono::milliseconds longestWait,
             OpenWBEM::LoggerRef log)
    : directories_(std::move(directories)), longestWait_(longestWait), log_(std::move(log)) {
}

std::vector<std::filesystem::path> Store::Candidates(const std::string& id) const {
    std::vector<std::filesystem::path> files;
    const bool isPlainName = id.find('/') == std::string::npos;
    std::string searched;
    for (const auto& directory : directories_) {
        std::error_code ignored;
        auto file = std::filesystem::absolute(directory) / ("lib" + id + ".so");
        if (isPlainName && std::filesystem::exists(file, ignored)) {
            files.push_back(std::move(file));
        }
        searched += " " + directory.string();
    }
    if (files.empty()) {
        const std::string reason = "there is no provider library lib" + id + ".so in" + searched;
        log_->logError(Text(reason));
        throw Refusal(reason);
    }
    return files;
}

LoadedProvider Store::OpenFile(const std::filesystem::path& file, const std::string& id) const {
    try {
        Library library(file);
        library.CheckVersion();
        auto object = library.CreateProvider(id);
        return {std::move(library), std::move(object)};
    } catch (const Refusal& refusal) {
        log_->logError(Text(std::string("provider library not used: ") + refusal.what()));
        throw;
    }
}

std::optional<Store::Opened> Store::Open(const std::string& id) const {
    try {
        return FirstOf(Candidates(id), [&](const auto& file) {
            return Opened{file, OpenFile(file, id)};
        });
    } catch (const Refusal&) { // is in the log
        return std::nullopt;
    }
}

void Store::KeepForGood(const std::string& id, Opened opened) {
    Keep(UnitOf(opened.file), id, std::move(opened.loaded), true);
}

Store::Unit& Store::UnitOf(const std::filesystem::path& file) {
    std::error_code error;
    auto key = std::filesystem::canonical(file, error);
    if (error) {
        key = file;
    }
    const std::lock_guard lock(tableMutex_);
    auto& unit = units_[key];
    if (unit == nullptr) {
        unit = std::make_unique<Unit>();
    }
    return *unit;
}

Store::Unit* Store::LastUnitOf(const std::string& id) {
    const std::lock_guard lock(tableMutex_);
    const auto found = served_.find(id);
    return found == served_.end() ? nullptr : found->second;
}

Store::Kept& Store::Keep(Unit& unit, const std::string& id, LoadedProvider loaded, bool forGood) {
    auto& kept = unit.providers.try_emplace(id, Kept{std::move(loaded), Clock::now(), forGood})
                     .first->second;
    const std::lock_guard lock(tableMutex_);
    served_[id] = &unit;
    return kept;
}

Store::Kept& Store::FindOrLoad(Unit& unit, const std::filesystem::path& file, const std::string& id,
                               const OpenWBEM::ProviderEnvironmentIFCRef& env) {
    const auto found = unit.providers.find(id);
    if (found != unit.providers.end()) {
        return found->second;
    }
    auto loaded = OpenFile(file, id);
    Enter([&] { loaded.object->initialize(env); });
    log_->logInfo(Text("provider " + id + " loaded from " + file.string()));
    return Keep(unit, id, std::move(loaded), false);
}

void Store::Call(Kept& kept, const Use& use) {
    kept.lastCall = Clock::now();
    kept.loaded.object->updateAccessTime();
    Enter([&] { use(*kept.loaded.object); });
}

bool Store::UseWhereItWas(const std::string& id, const Visitor& visitor, const Use& use) {
    Unit* unit = LastUnitOf(id);
    if (unit == nullptr) {
        return false;
    }
    const Gate::Pass pass(unit->gate, visitor.what, longestWait_);
    const auto found = unit->providers.find(id);
    if (found == unit->providers.end()) {
        return false;
    }
    const Visit visit(visitor);
    Call(found->second, use);
    return true;
}

void Store::With(const std::string& id, const Visitor& visitor, const Use& use) {
    if (UseWhereItWas(id, visitor, use)) {
        return;
    }
    FirstOf(Candidates(id), [&](const auto& file) {
        Unit& unit = UnitOf(file);
        const Gate::Pass pass(unit.gate, visitor.what, longestWait_);
        const Visit visit(visitor);
        Call(FindOrLoad(unit, file, id, visitor.env), use);
    });
}

bool Store::MayGo(const std::string& id, const Kept& kept, Clock::time_point limit) const {
    auto& object = *kept.loaded.object;
    if (kept.forGood || kept.lastCall >= limit || object.getPersist()) {
        return false;
    }
    try {
        const bool agrees = Enter([&] { return object.canUnload(); });
        log_->logInfo(Text("provider " + id + (agrees ? " is unloaded" : " stays, it is busy")));
        return agrees;
    } catch (const OpenWBEM::Exception& error) {
        log_->logError(Text("provider " + id + " stays: canUnload: " + error.getMessage()));
        return false;
    }
}

void Store::DropIdle(std::chrono::milliseconds idleTime) {
    std::vector<Unit*> units;
    {
        const std::lock_guard lock(tableMutex_);
        for (const auto& [file, unit] : units_) {
            units.push_back(unit.get());
        }
    }
    const auto limit = Clock::now() - idleTime;
    for (Unit* unit : units) {
        const Gate::Pass pass(unit->gate, "the unloading of idle providers", std::try_to_lock);
        if (pass.IsInside()) {
            std::erase_if(unit->providers, [&](const auto& entry) {
                return MayGo(entry.first, entry.second, limit);
            });
        }
    }
}

} // namespace cimserver::host
