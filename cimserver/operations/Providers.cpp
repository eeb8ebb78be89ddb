#include "cimserver/operations/Providers.hpp"

#include "cimserver/operations/Conversions.hpp"
#include "cimserver/operations/Flags.hpp"

#include "OW_CIMException.hpp"
#include "OW_CppInstanceProviderIFC.hpp"

#include <utility>

namespace cimserver::operations {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::String;

namespace {

void CheckNotNull(const CIMInstance& instance) {
    if (!instance) {
        OW_THROWCIMMSG(CIMException::FAILED, "Provider erroneously returned a NULL CIMInstance");
    }
}

// A class with one key allows an instance name that does not name it.
void NameSingleKey(CIMObjectPath& path, const CIMClass& cimClass) {
    const OpenWBEM::CIMPropertyArray declared = cimClass.getKeys();
    const OpenWBEM::CIMPropertyArray given = path.getKeys();
    if (declared.size() != 1 || given.size() != 1 || !given[0].getName().empty()) {
        return;
    }
    OpenWBEM::CIMPropertyArray keys;
    keys.push_back(OpenWBEM::CIMProperty(declared[0].getName(), given[0].getValue()));
    path.setKeys(keys);
}

} // namespace

String ProviderOf(const OpenWBEM::CIMQualifier& qualifier) {
    String text;
    if (qualifier) {
        const auto value = qualifier.getValue();
        if (value && !value.isArray() && value.getType() == OpenWBEM::CIMDataType::STRING) {
            value.get(text);
        }
    }
    return text;
}

host::Target TargetOf(const CIMClass& cimClass, const String& nameSpace) {
    const auto qualifier = cimClass.getQualifier(OpenWBEM::CIMQualifier::CIM_QUAL_PROVIDER);
    return {nameSpace, cimClass.getName(), ProviderOf(qualifier)};
}

bool AskProvider(const CIMClass& cimClass, const Surroundings& around, const char* operation,
                 const host::InstanceCall& call) {
    return around.providers.WithInstanceProvider(TargetOf(cimClass, around.nameSpace),
                                                 around.InfoFor(operation), call);
}

void AskProviderOf(const CIMObjectPath& path, const CIMClass& cimClass, const Surroundings& around,
                   const char* operation, const host::InstanceCall& call) {
    if (!AskProvider(cimClass, around, operation, call)) {
        CIMObjectPath asked = path;
        asked.setNameSpace(around.nameSpace);
        OW_THROWCIMMSG(CIMException::NOT_FOUND, asked.toString().c_str());
    }
}

CIMObjectPath PathFromClient(CIMObjectPath instanceName, const CIMClass& cimClass) {
    return PathFromClient(std::move(instanceName), cimClass, "");
}

CIMObjectPath PathFromClient(CIMObjectPath instanceName, const CIMClass& cimClass,
                             const String& nameSpace) {
    instanceName.setNameSpace(nameSpace);
    NameSingleKey(instanceName, cimClass);
    SyncWithClass(instanceName, cimClass);
    return instanceName;
}

CIMInstance CurrentInstance(OpenWBEM::CppInstanceProviderIFC& provider,
                            const OpenWBEM::ProviderEnvironmentIFCRef& env,
                            const CIMObjectPath& path, const CIMClass& cimClass,
                            const Surroundings& around) {
    CIMInstance instance =
        provider.getInstance(env, around.nameSpace, path, LocalOnly(false), IncludeQualifiers(true),
                             IncludeClassOrigin(true), nullptr, cimClass);
    CheckNotNull(instance);
    return instance;
}

void CheckNamed(const CIMInstance& instance) {
    CheckNotNull(instance);
    if (instance.getClassName().empty()) {
        OW_THROWCIMMSG(CIMException::FAILED, "instance has no class name");
    }
}

OpenWBEM::CIMProperty FindProperty(const CIMClass& cimClass, const String& name) {
    auto property = cimClass.getProperty(name);
    if (!property) {
        OW_THROWCIMMSG(CIMException::NO_SUCH_PROPERTY, name.c_str());
    }
    return property;
}

} // namespace cimserver::operations
