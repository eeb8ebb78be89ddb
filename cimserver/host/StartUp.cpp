#include "cimserver/host/StartUp.hpp"

#include "cimserver/host/Enter.hpp"
#include "cimserver/host/Text.hpp"

#include "OW_AssociatorProviderInfo.hpp"
#include "OW_CIMException.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_MethodProviderInfo.hpp"
#include "OW_String.hpp"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

namespace cimserver::host {

namespace {

constexpr std::string_view extension = ".so";
constexpr std::size_t prefixLength = 3; // of "lib", whatever stands there
constexpr const char* noId = "NO_ID";

std::vector<std::filesystem::path> LibrariesOf(const std::filesystem::path& directory,
                                               const OpenWBEM::Logger& log) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().native().ends_with(extension)) {
            files.push_back(std::filesystem::absolute(entry->path()));
        }
    }
    if (error) {
        log.logError(Text("provider directory " + directory.string() + ": " + error.message()));
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

StartUp::StartUp(Store& store, Registry& registry, const OpenWBEM::LoggerRef& log,
                 OpenWBEM::ProviderEnvironmentIFCRef env)
    : store_(store), registry_(registry), log_(log), env_(std::move(env)) {
}

void StartUp::Run(const std::vector<std::filesystem::path>& directories) {
    for (const auto& directory : directories) {
        for (const auto& file : LibrariesOf(directory, *log_)) {
            try {
                Inspect(file);
            } catch (const Refusal& refusal) {
                log_->logError(Text(std::string("provider library not used: ") + refusal.what()));
            } catch (const OpenWBEM::CIMException& error) {
                log_->logError(Text(file.string() + ": at the start of the server: ") +
                               error.getMessage());
            }
        }
    }
}

void StartUp::Inspect(const std::filesystem::path& file) {
    Library library(file);
    library.CheckVersion();
    if (library.Offers(std::string("createProvider") + noId)) {
        auto object = library.CreateProvider(noId);
        InspectObject(noId, {file, {std::move(library), std::move(object)}});
        return;
    }
    const std::string name = file.filename().string();
    if (name.size() <= prefixLength + extension.size()) {
        throw Refusal(file.string() + ": the name holds no provider id (lib<id>.so)");
    }
    const auto id = name.substr(prefixLength, name.size() - prefixLength - extension.size());
    // `library` stays open meanwhile, so that its static objects are made once.
    if (auto opened = store_.Open(id)) {
        InspectObject(id, std::move(*opened));
    }
}

void StartUp::InspectObject(const std::string& id, Store::Opened opened) {
    auto& object = *opened.loaded.object;
    const bool runsByItself = Enter([&] {
        const bool polls = object.getPolledProvider() != nullptr;
        const bool exports = object.getIndicationExportProvider() != nullptr;
        return polls || exports;
    });
    if (runsByItself) {
        Enter([&] { object.initialize(env_); });
    }
    Enter([&] { AskForClasses(id, object); });
    if (runsByItself) {
        store_.KeepForGood(id, std::move(opened));
    }
}

// Every interface is asked for, so that a provider sees the calls it knows, also those that are
// given no requests.
void StartUp::AskForClasses(const std::string& id, OpenWBEM::CppProviderBaseIFC& object) {
    if (auto* instances = object.getInstanceProvider()) {
        OpenWBEM::InstanceProviderInfo info;
        info.setProviderName(Text(id));
        instances->getInstanceProviderInfo(info);
        registry_.Add(id, info, *log_);
    }
    object.getSecondaryInstanceProvider();
    if (auto* associations = object.getAssociatorProvider()) {
        OpenWBEM::AssociatorProviderInfo info;
        info.setProviderName(Text(id));
        associations->getAssociatorProviderInfo(info);
        registry_.Add(id, info, *log_);
    }
    if (auto* methods = object.getMethodProvider()) {
        OpenWBEM::MethodProviderInfo info;
        info.setProviderName(Text(id));
        methods->getMethodProviderInfo(info);
        registry_.Add(id, info, *log_);
    }
    object.getIndicationProvider();
}

} // namespace cimserver::host
