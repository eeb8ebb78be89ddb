#include "cimserver/operations/OperationsTest.hpp"

#include "OW_ResultHandlerIFC.hpp"

#include <utility>

namespace operationstest {

namespace {

constexpr const char* commonMof = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);
Qualifier Description : string = null, Scope(any), Flavor(Translatable);
Qualifier Provider : string = null, Scope(any), Flavor(ToSubclass);
Qualifier Override : string = null, Scope(property, reference, method), Flavor(Restricted);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride);

[Description("the base"), Provider("c++::Base")]
class HT_Base {
    [Key, Description("the key")] string Id;
    uint16 Number;
    [Description("a method")] uint8 Start([In] string Name);
};
[Description("in the middle")]
class HT_Middle : HT_Base {
    string Extra;
    [Override("Number"), Description("again")] uint16 Number;
};
[Provider("c++::Leaf")]
class HT_Leaf : HT_Middle {
    boolean Last;
};
class HT_Nobody { [Key] string Id; };
class HT_NobodysChild : HT_Nobody { };
)";

std::string Text(const OpenWBEM::String& text) {
    return text.c_str();
}

std::string Flags(bool localOnly, bool includeQualifiers, bool includeClassOrigin) {
    return std::string(localOnly ? "L" : "-") + (includeQualifiers ? "Q" : "-") +
           (includeClassOrigin ? "O" : "-");
}

std::string List(const OpenWBEM::StringArray* list) {
    if (list == nullptr) {
        return "no list";
    }
    std::string text = "[";
    for (const auto& name : *list) {
        text += Text(name) + ",";
    }
    return text + "]";
}

std::string Shown(const char* name, const OpenWBEM::CIMDataType& type,
                  const OpenWBEM::CIMValue& value) {
    return std::string(name) + "=" + Text(type.toString()) + (type.isArrayType() ? "[] " : " ") +
           (value ? Text(value.toString()) : "null");
}

} // namespace

std::string Shown(const OpenWBEM::CIMPropertyArray& properties) {
    std::string text;
    for (const auto& property : properties) {
        text += (text.empty() ? "" : ",") +
                Shown(property.getName().c_str(), property.getDataType(), property.getValue());
    }
    return text;
}

std::string Shown(const OpenWBEM::CIMInstance& instance) {
    return Text(instance.getClassName()) + "{" + Shown(instance.getProperties()) + "}";
}

std::string Shown(const OpenWBEM::CIMValue& value) {
    return value ? Text(value.getCIMDataType().toString()) + (value.isArray() ? "[] " : " ") +
                       Text(value.toString())
                 : "null";
}

std::string Shown(const OpenWBEM::CIMParamValueArray& parameters) {
    std::string text;
    for (const auto& parameter : parameters) {
        text += (text.empty() ? "" : ",") + Text(parameter.getName()) + "=" +
                Shown(parameter.getValue());
    }
    return text;
}

OpenWBEM::CIMObjectPath Path(const char* className, const char* key, const char* value) {
    OpenWBEM::CIMObjectPath path(className);
    path.setKeyValue(key, OpenWBEM::CIMValue(OpenWBEM::String(value)));
    return path;
}

void KeepingSink::Class(const OpenWBEM::CIMClass& cimClass) {
    lines.push_back("class " + Text(cimClass.getName()));
    classes.push_back(cimClass);
}

void KeepingSink::QualifierType(const OpenWBEM::CIMQualifierType& qualifier) {
    lines.push_back(Text(qualifier.toMOF()));
}

void KeepingSink::ClassName(const OpenWBEM::String& name) {
    lines.push_back("name " + Text(name));
}

void KeepingSink::Instance(const OpenWBEM::CIMInstance& instance) {
    lines.push_back("instance " + Text(instance.getClassName()));
    instances.push_back(instance);
}

void KeepingSink::NamedInstance(const OpenWBEM::CIMInstance& instance) {
    const OpenWBEM::CIMObjectPath path("root/cimv2", instance);
    lines.push_back("named " + Text(path.toString()) + " " + Text(instance.getClassName()));
    instances.push_back(instance);
}

void KeepingSink::InstanceName(const OpenWBEM::CIMObjectPath& path) {
    lines.push_back("path " + Text(path.toString()));
}

void KeepingSink::InstanceWithPath(const OpenWBEM::CIMObjectPath& path,
                                   const OpenWBEM::CIMInstance& instance) {
    lines.push_back("instance " + Text(path.toString()) + " " + Shown(instance));
}

void KeepingSink::ClassWithPath(const OpenWBEM::CIMObjectPath& path,
                                const OpenWBEM::CIMClass& cimClass) {
    lines.push_back("class " + Text(path.toString()) + " " + Text(cimClass.getName()));
    classes.push_back(cimClass);
}

void KeepingSink::InstancePath(const OpenWBEM::CIMObjectPath& path) {
    lines.push_back("instance path " + Text(path.toString()));
}

void KeepingSink::ClassPath(const OpenWBEM::CIMObjectPath& path) {
    lines.push_back("class path " + Text(path.toString()));
}

void KeepingSink::PropertyValue(const OpenWBEM::CIMValue& value) {
    lines.push_back("value " + Shown(value));
}

void KeepingSink::MethodResult(const OpenWBEM::CIMValue& returnValue,
                               const OpenWBEM::CIMParamValueArray& out) {
    lines.push_back("returned " + Shown(returnValue) + "(" + Shown(out) + ")");
}

void PlayedProvider::enumInstanceNames(const Env&, const OpenWBEM::String& ns,
                                       const OpenWBEM::String& className,
                                       OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                                       const OpenWBEM::CIMClass& cimClass) {
    calls.push_back("enumInstanceNames " + Text(ns) + " " + Text(className) + " " +
                    Text(cimClass.getName()));
    for (const auto& path : paths) {
        result.handle(path);
    }
    atEnd();
}

void PlayedProvider::enumInstances(const Env&, const OpenWBEM::String& ns,
                                   const OpenWBEM::String& className,
                                   OpenWBEM::CIMInstanceResultHandlerIFC& result,
                                   OpenWBEM::WBEMFlags::ELocalOnlyFlag localOnly,
                                   OpenWBEM::WBEMFlags::EDeepFlag deep,
                                   OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                   OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                   const OpenWBEM::StringArray* propertyList,
                                   const OpenWBEM::CIMClass& requestedClass,
                                   const OpenWBEM::CIMClass& cimClass) {
    calls.push_back("enumInstances " + Text(ns) + " " + Text(className) + " " +
                    Flags(localOnly != 0, includeQualifiers != 0, includeClassOrigin != 0) +
                    (deep != 0 ? "D " : "- ") + List(propertyList) + " " +
                    Text(requestedClass.getName()) + " " + Text(cimClass.getName()));
    for (const auto& instance : instances) {
        result.handle(instance);
    }
    atEnd();
}

OpenWBEM::CIMInstance PlayedProvider::getInstance(
    const Env&, const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& instanceName,
    OpenWBEM::WBEMFlags::ELocalOnlyFlag localOnly,
    OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
    OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
    const OpenWBEM::StringArray* propertyList, const OpenWBEM::CIMClass& cimClass) {
    calls.push_back("getInstance " + Text(ns) + " " + Text(instanceName.toString()) + " " +
                    Flags(localOnly != 0, includeQualifiers != 0, includeClassOrigin != 0) + " " +
                    List(propertyList) + " " + Text(cimClass.getName()));
    askedFor = instanceName;
    (atEndOfGet ? atEndOfGet : atEnd)();
    return answer;
}

OpenWBEM::CIMObjectPath PlayedProvider::createInstance(const Env&, const OpenWBEM::String& ns,
                                                       const OpenWBEM::CIMInstance& instance) {
    calls.push_back("createInstance " + Text(ns) + " " + Shown(instance));
    given = instance;
    atEnd();
    return created;
}

void PlayedProvider::modifyInstance(const Env&, const OpenWBEM::String& ns,
                                    const OpenWBEM::CIMInstance& modified,
                                    const OpenWBEM::CIMInstance& previous,
                                    OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                    const OpenWBEM::StringArray* propertyList,
                                    const OpenWBEM::CIMClass& cimClass) {
    calls.push_back("modifyInstance " + Text(ns) + " " + Shown(modified) + " from " +
                    Shown(previous) + (includeQualifiers != 0 ? " Q " : " - ") +
                    List(propertyList) + " " + Text(cimClass.getName()));
    given = modified;
    atEnd();
}

void PlayedProvider::deleteInstance(const Env&, const OpenWBEM::String& ns,
                                    const OpenWBEM::CIMObjectPath& path) {
    calls.push_back("deleteInstance " + Text(ns) + " " + Text(path.toString()));
    atEnd();
}

OpenWBEM::CIMValue PlayedProvider::invokeMethod(const Env&, const OpenWBEM::String& ns,
                                                const OpenWBEM::CIMObjectPath& path,
                                                const OpenWBEM::String& methodName,
                                                const OpenWBEM::CIMParamValueArray& in,
                                                OpenWBEM::CIMParamValueArray& out) {
    calls.push_back("invokeMethod " + Text(ns) + " " + Text(path.toString()) + " " +
                    Text(methodName) + "(" + Shown(in) + ") out(" + Shown(out) + ")");
    return method(out);
}

void PlayedProvider::associators(const Env&, OpenWBEM::CIMInstanceResultHandlerIFC& result,
                                 const OpenWBEM::String& ns,
                                 const OpenWBEM::CIMObjectPath& objectName,
                                 const OpenWBEM::String& assocClass,
                                 const OpenWBEM::String& resultClass, const OpenWBEM::String& role,
                                 const OpenWBEM::String& resultRole,
                                 OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                 OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                 const OpenWBEM::StringArray* propertyList) {
    calls.push_back(
        "associators " + Text(ns) + " " + Text(objectName.toString()) + " " + Text(assocClass) +
        "," + Text(resultClass) + "," + Text(role) + "," + Text(resultRole) +
        Flags(false, includeQualifiers != 0, includeClassOrigin != 0) + List(propertyList));
    for (const auto& instance : instances) {
        result.handle(instance);
    }
    atEnd();
}

void PlayedProvider::associatorNames(const Env&, OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                                     const OpenWBEM::String& ns,
                                     const OpenWBEM::CIMObjectPath& objectName,
                                     const OpenWBEM::String& assocClass,
                                     const OpenWBEM::String& resultClass,
                                     const OpenWBEM::String& role,
                                     const OpenWBEM::String& resultRole) {
    calls.push_back("associatorNames " + Text(ns) + " " + Text(objectName.toString()) + " " +
                    Text(assocClass) + "," + Text(resultClass) + "," + Text(role) + "," +
                    Text(resultRole));
    for (const auto& path : paths) {
        result.handle(path);
    }
    atEnd();
}

void PlayedProvider::references(const Env&, OpenWBEM::CIMInstanceResultHandlerIFC& result,
                                const OpenWBEM::String& ns,
                                const OpenWBEM::CIMObjectPath& objectName,
                                const OpenWBEM::String& resultClass, const OpenWBEM::String& role,
                                OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                const OpenWBEM::StringArray* propertyList) {
    calls.push_back("references " + Text(ns) + " " + Text(objectName.toString()) + " " +
                    Text(resultClass) + "," + Text(role) +
                    Flags(false, includeQualifiers != 0, includeClassOrigin != 0) +
                    List(propertyList));
    for (const auto& instance : instances) {
        result.handle(instance);
    }
    atEnd();
}

void PlayedProvider::referenceNames(const Env&, OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                                    const OpenWBEM::String& ns,
                                    const OpenWBEM::CIMObjectPath& objectName,
                                    const OpenWBEM::String& resultClass,
                                    const OpenWBEM::String& role) {
    calls.push_back("referenceNames " + Text(ns) + " " + Text(objectName.toString()) + " " +
                    Text(resultClass) + "," + Text(role));
    for (const auto& path : paths) {
        result.handle(path);
    }
    atEnd();
}

PlayedProvider* PlayedProviders::Ask(const cimserver::host::Target& target,
                                     const cimserver::host::CallInfo& info) {
    lastInfo = info;
    asked.push_back(info.operation + " by " + info.user + ": " + Text(target.nameSpace) + ":" +
                    Text(target.className) + " " + Text(target.providerQualifier));
    const auto found = providers.find(Text(target.providerQualifier));
    return found == providers.end() ? nullptr : found->second;
}

bool PlayedProviders::WithInstanceProvider(const cimserver::host::Target& target,
                                           const cimserver::host::CallInfo& info,
                                           const cimserver::host::InstanceCall& call) {
    auto* provider = Ask(target, info);
    if (provider == nullptr) {
        return false;
    }
    call(*provider, {});
    return true;
}

bool PlayedProviders::WithAssociatorProvider(const cimserver::host::Target& target,
                                             const cimserver::host::CallInfo& info,
                                             const cimserver::host::AssociatorCall& call) {
    auto* provider = Ask(target, info);
    if (provider == nullptr || !provider->servesAssociations) {
        return false;
    }
    call(*provider, {});
    return true;
}

bool PlayedProviders::WithMethodProvider(const cimserver::host::Target& target,
                                         const OpenWBEM::String& methodName,
                                         const cimserver::host::CallInfo& info,
                                         const cimserver::host::MethodCall& call) {
    auto* provider = Ask(target, info);
    asked.back() += " " + Text(methodName);
    if (provider == nullptr || !provider->servesMethods) {
        return false;
    }
    call(*provider, {});
    return true;
}

OperationsTest::OperationsTest() : operations(schema, source, "root/cimv2", "here") {
    schema.AddText(commonMof, "test.mof");
    source.providers = {{"c++::Base", &base}, {"c++::Leaf", &leaf}};
}

void OperationsTest::Run(const cimserver::operations::Call& call, const std::string& nameSpace) {
    operations.Execute({nameSpace.c_str(), "anna", call, mayChange}, sink);
}

std::string OperationsTest::Failure(const cimserver::operations::Call& call,
                                    const std::string& nameSpace) {
    try {
        Run(call, nameSpace);
    } catch (const OpenWBEM::CIMException& error) {
        return std::to_string(error.getErrNo()) + " " + error.getMessage();
    }
    return "no failure";
}

} // namespace operationstest
