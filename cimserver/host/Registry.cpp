#include "cimserver/host/Registry.hpp"

#include "OW_String.hpp"

#include <cctype>

namespace cimserver::host {

namespace {

// Equal for names that differ in case only.
std::string Folded(const OpenWBEM::String& name) {
    std::string folded = name.c_str();
    for (char& c : folded) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return folded;
}

OpenWBEM::String Text(const std::string& text) {
    return OpenWBEM::String(text.c_str());
}

std::optional<std::string> IdOf(const OpenWBEM::String& qualifier) {
    const std::string text = qualifier.c_str();
    const auto colon = text.find(':');
    if (colon == std::string::npos || Folded(Text(text.substr(0, colon))) != "c++") {
        return std::nullopt;
    }
    const bool isDouble = text.compare(colon, 2, "::") == 0;
    return text.substr(colon + (isDouble ? 2 : 1));
}

} // namespace

void Registry::Add(const std::string& id, const OpenWBEM::InstanceProviderInfo& info,
                   const OpenWBEM::Logger& log) {
    const auto add = [&](const std::string& key) {
        const auto [taken, isNew] = instances_.try_emplace(key, id);
        if (!isNew) {
            log.logError(Text("provider " + id + " registers " + key + ", which provider " +
                              taken->second + " serves already"));
        }
    };
    for (const auto& entry : info.getClassInfo()) {
        if (entry.namespaces.empty()) {
            add(Folded(entry.className));
        }
        for (const auto& nameSpace : entry.namespaces) {
            add(Folded(nameSpace) + ":" + Folded(entry.className));
        }
    }
}

std::optional<std::string> Registry::Choose(const Target& target,
                                            const OpenWBEM::Logger& log) const {
    const std::string name = Folded(target.className);
    for (const auto& key : {name, Folded(target.nameSpace) + ":" + name}) {
        const auto found = instances_.find(key);
        if (found != instances_.end()) {
            return found->second;
        }
    }
    if (target.providerQualifier.empty()) {
        return std::nullopt;
    }
    auto id = IdOf(target.providerQualifier);
    if (!id) {
        log.logError(OpenWBEM::String("class ") + target.className + ": the Provider qualifier `" +
                     target.providerQualifier + "` names no C++ provider (c++::ID)");
    }
    return id;
}

} // namespace cimserver::host
