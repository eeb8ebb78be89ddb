#include "cimserver/operations/OperationsTest.hpp"

#include "OW_ResultHandlerIFC.hpp"

#include <utility>

namespace operationstest {

namespace {

constexpr const char* mof = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);
Qualifier Description : string = null, Scope(any), Flavor(Translatable);
Qualifier Provider : string = null, Scope(class), Flavor(ToSubclass);
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

} // namespace

void KeepingSink::Class(const OpenWBEM::CIMClass& cimClass) {
    lines.push_back("class " + Text(cimClass.getName()));
    classes.push_back(cimClass);
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
    atEnd();
    return answer;
}

OpenWBEM::CIMObjectPath PlayedProvider::createInstance(const Env&, const OpenWBEM::String&,
                                                       const OpenWBEM::CIMInstance&) {
    calls.emplace_back("createInstance");
    return OpenWBEM::CIMObjectPath();
}

void PlayedProvider::modifyInstance(const Env&, const OpenWBEM::String&,
                                    const OpenWBEM::CIMInstance&, const OpenWBEM::CIMInstance&,
                                    OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                                    const OpenWBEM::StringArray*, const OpenWBEM::CIMClass&) {
    calls.emplace_back("modifyInstance");
}

void PlayedProvider::deleteInstance(const Env&, const OpenWBEM::String&,
                                    const OpenWBEM::CIMObjectPath&) {
    calls.emplace_back("deleteInstance");
}

bool PlayedProviders::WithInstanceProvider(const cimserver::host::Target& target,
                                           const cimserver::host::CallInfo& info,
                                           const cimserver::host::InstanceCall& call) {
    asked.push_back(info.operation + " by " + info.user + ": " + Text(target.nameSpace) + ":" +
                    Text(target.className) + " " + Text(target.providerQualifier));
    const auto found = providers.find(Text(target.providerQualifier));
    if (found == providers.end()) {
        return false;
    }
    call(*found->second, {});
    return true;
}

OperationsTest::OperationsTest() : operations(schema, source, "root/cimv2") {
    schema.AddText(mof, "test.mof");
    source.providers = {{"c++::Base", &base}, {"c++::Leaf", &leaf}};
}

void OperationsTest::Run(const cimserver::operations::Call& call, const std::string& nameSpace) {
    operations.Execute({nameSpace.c_str(), "anna", call}, sink);
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
