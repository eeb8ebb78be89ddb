#include "cimserver/operations/Changes.hpp"

#include "cimserver/operations/Classes.hpp"
#include "cimserver/operations/Conversions.hpp"
#include "cimserver/operations/Flags.hpp"
#include "cimserver/operations/Providers.hpp"

#include "OW_CIMException.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CppInstanceProviderIFC.hpp"

#include <algorithm>

namespace cimserver::operations {

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::String;
using OpenWBEM::StringArray;

bool Lists(const PropertyList& list, const String& name) {
    return !list || std::any_of(list->begin(), list->end(), [&](const String& listed) {
        return listed.equalsIgnoreCase(name);
    });
}

// The keys that the instance name binds and that the client did not send and list as properties.
CIMPropertyArray KeysLeftOut(const ModifyInstance& call, const CIMClass& cimClass) {
    CIMPropertyArray keys;
    const CIMPropertyArray declared = cimClass.getKeys();
    for (const CIMProperty& key : declared) {
        const auto value = call.instanceName.getKeyValue(key.getName());
        const bool isSent = call.modifiedInstance.getProperty(key.getName());
        if (value && !(isSent && Lists(call.properties, key.getName()))) {
            keys.push_back(CIMProperty(key.getName(), value));
        }
    }
    return keys;
}

// Nothing but the properties of that names; the key list stays whole.
CIMInstance Reduced(const CIMInstance& whole, const StringArray& names) {
    CIMInstance part(whole.getClassName());
    for (const String& name : names) {
        part.setProperty(whole.getPropertyT(name));
    }
    part.setKeys(whole.getKeyValuePairs());
    return part;
}

// What the provider is given as the modified instance.
CIMInstance Modified(const ModifyInstance& call, const CIMClass& cimClass) {
    const CIMPropertyArray keys = KeysLeftOut(call, cimClass);
    CIMInstance instance = call.modifiedInstance;
    for (const CIMProperty& key : keys) {
        instance.setProperty(key);
    }
    SyncWithClass(instance, cimClass);
    if (!call.properties) {
        return instance;
    }
    StringArray names = *call.properties;
    for (const CIMProperty& key : keys) {
        names.push_back(key.getName());
    }
    return Reduced(instance, names);
}

void Modify(OpenWBEM::CppInstanceProviderIFC& provider,
            const OpenWBEM::ProviderEnvironmentIFCRef& env, const ModifyInstance& call,
            const CIMInstance& modified, const CIMClass& cimClass, const Surroundings& around) {
    const CIMObjectPath path(around.nameSpace, modified);
    const CIMInstance previous = CurrentInstance(provider, env, path, cimClass, around);
    provider.modifyInstance(env, around.nameSpace, modified, previous,
                            IncludeQualifiers(call.includeQualifiers), Pointer(call.properties),
                            cimClass);
}

void CheckSameClass(const ModifyInstance& call) {
    const String named = call.instanceName.getClassName();
    const String sent = call.modifiedInstance.getClassName();
    if (!named.equalsIgnoreCase(sent)) {
        const String text = "the instance is of class " + sent + ", its name of class " + named;
        OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, text.c_str());
    }
}

// As the class declares the property.
CIMProperty WithValue(CIMProperty property, const OpenWBEM::CIMValue& value) {
    try {
        property.setValue(value);
    } catch (const OpenWBEM::Exception& error) {
        RethrowNaming("Property " + property.getName(), error, CIMException::TYPE_MISMATCH);
    }
    return property;
}

} // namespace

void Carry(const CreateInstance& call, const Surroundings& around, ResultSink& sink) {
    CIMInstance instance = call.newInstance;
    const auto& cimClass = FindClass(around.schema, around.nameSpace, instance.getClassName());
    if (cimClass.hasTrueQualifier(OpenWBEM::CIMQualifier::CIM_QUAL_ABSTRACT)) {
        const String text =
            "Unable to create instance because class (" + instance.getClassName() + ") is abstract";
        OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, text.c_str());
    }
    SyncWithClass(instance, cimClass);
    const bool hasProvider =
        AskProvider(cimClass, around, "CreateInstance", [&](auto& provider, const auto& env) {
            const CIMObjectPath path = provider.createInstance(env, around.nameSpace, instance);
            sink.InstanceName(path ? path : CIMObjectPath(around.nameSpace, instance));
        });
    if (!hasProvider) {
        const String text = "class " + cimClass.getName() + " has no provider";
        OW_THROWCIMMSG(CIMException::NOT_SUPPORTED, text.c_str());
    }
}

void Carry(const ModifyInstance& call, const Surroundings& around, ResultSink&) {
    CheckSameClass(call);
    const auto& cimClass =
        FindClass(around.schema, around.nameSpace, call.modifiedInstance.getClassName());
    const CIMInstance modified = Modified(call, cimClass);
    const CIMObjectPath path(around.nameSpace, modified);
    AskProviderOf(path, cimClass, around, "ModifyInstance", [&](auto& provider, const auto& env) {
        Modify(provider, env, call, modified, cimClass, around);
    });
}

void Carry(const DeleteInstance& call, const Surroundings& around, ResultSink&) {
    const auto& cimClass =
        FindClass(around.schema, around.nameSpace, call.instanceName.getClassName());
    const auto path = PathFromClient(call.instanceName, cimClass, around.nameSpace);
    AskProviderOf(path, cimClass, around, "DeleteInstance", [&](auto& provider, const auto& env) {
        CurrentInstance(provider, env, path, cimClass, around);
        provider.deleteInstance(env, around.nameSpace, path);
    });
}

void Carry(const SetProperty& call, const Surroundings& around, ResultSink&) {
    const auto& cimClass =
        FindClass(around.schema, around.nameSpace, call.instanceName.getClassName());
    const auto path = PathFromClient(call.instanceName, cimClass, around.nameSpace);
    AskProviderOf(path, cimClass, around, "SetProperty", [&](auto& provider, const auto& env) {
        // An instance that is not there is refused before a property that is not there.
        CurrentInstance(provider, env, path, cimClass, around);
        const auto property = WithValue(FindProperty(cimClass, call.propertyName), call.newValue);
        ModifyInstance change{path, CIMInstance(path.getClassName()), true,
                              StringArray(1, call.propertyName)};
        change.modifiedInstance.setProperty(property);
        Modify(provider, env, change, Modified(change, cimClass), cimClass, around);
    });
}

} // namespace cimserver::operations
