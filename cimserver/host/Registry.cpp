#include "cimserver/host/Registry.hpp"

#include "cimserver/host/Text.hpp"

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

std::optional<std::string> IdOf(const OpenWBEM::String& qualifier) {
    const std::string text = qualifier.c_str();
    const auto colon = text.find(':');
    if (colon == std::string::npos || Folded(Text(text.substr(0, colon))) != "c++") {
        return std::nullopt;
    }
    const bool isDouble = text.compare(colon, 2, "::") == 0;
    return text.substr(colon + (isDouble ? 2 : 1));
}

std::string ClassKey(const Target& target) {
    return Folded(target.className);
}

std::string ClassKeyInNameSpace(const Target& target) {
    return Folded(target.nameSpace) + ":" + Folded(target.className);
}

} // namespace

void Registry::Register(Table& table, const std::string& key, const std::string& id,
                        const OpenWBEM::Logger& log) {
    const auto [taken, isNew] = table.try_emplace(key, id);
    if (!isNew) {
        log.logError(Text("provider " + id + " registers " + key + ", which provider " +
                          taken->second + " serves already"));
    }
}

template <class Info>
void Registry::RegisterClasses(Table& table, const std::string& id, const Info& info,
                               const OpenWBEM::Logger& log) {
    for (const auto& entry : info.getClassInfo()) {
        if (entry.namespaces.empty()) {
            Register(table, Folded(entry.className), id, log);
        }
        for (const auto& nameSpace : entry.namespaces) {
            Register(table, Folded(nameSpace) + ":" + Folded(entry.className), id, log);
        }
    }
}

void Registry::Add(const std::string& id, const OpenWBEM::InstanceProviderInfo& info,
                   const OpenWBEM::Logger& log) {
    RegisterClasses(instances_, id, info, log);
}

void Registry::Add(const std::string& id, const OpenWBEM::AssociatorProviderInfo& info,
                   const OpenWBEM::Logger& log) {
    RegisterClasses(associations_, id, info, log);
}

void Registry::Add(const std::string& id, const OpenWBEM::MethodProviderInfo& info,
                   const OpenWBEM::Logger& log) {
    for (const auto& entry : info.getClassInfo()) {
        std::vector<std::string> classes;
        for (const auto& nameSpace : entry.namespaces) {
            classes.push_back(Folded(nameSpace) + ":" + Folded(entry.className));
        }
        if (classes.empty()) {
            classes.push_back(Folded(entry.className));
        }
        for (const auto& key : classes) {
            if (entry.methods.empty()) {
                Register(methods_, key, id, log);
            }
            for (const auto& method : entry.methods) {
                Register(methods_, key + "/" + Folded(method), id, log);
            }
        }
    }
}

std::optional<std::string> Registry::Choose(const Table& table,
                                            const std::vector<std::string>& keys,
                                            const Target& target, const OpenWBEM::Logger& log) {
    for (const auto& key : keys) {
        const auto found = table.find(key);
        if (found != table.end()) {
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

std::optional<std::string> Registry::ChooseForInstances(const Target& target,
                                                        const OpenWBEM::Logger& log) const {
    return Choose(instances_, {ClassKey(target), ClassKeyInNameSpace(target)}, target, log);
}

std::optional<std::string> Registry::ChooseForAssociations(const Target& target,
                                                           const OpenWBEM::Logger& log) const {
    return Choose(associations_, {ClassKey(target), ClassKeyInNameSpace(target)}, target, log);
}

std::optional<std::string> Registry::ChooseForMethod(const Target& target,
                                                     const OpenWBEM::String& methodName,
                                                     const OpenWBEM::Logger& log) const {
    const std::string method = "/" + Folded(methodName);
    const std::string everywhere = ClassKey(target);
    const std::string here = ClassKeyInNameSpace(target);
    return Choose(methods_, {everywhere, everywhere + method, here, here + method}, target, log);
}

} // namespace cimserver::host
