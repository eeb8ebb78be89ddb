#include "cimserver/cimxml/CallReader.hpp"

#include "cimserver/cimxml/ObjectNames.hpp"
#include "cimserver/cimxml/Parameters.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

namespace cimserver::cimxml {

using OpenWBEM::String;

namespace {

// The order in each is that of the structure; what the client left out keeps its default.

operations::Call ReadGetClass(Parameters& parameters) {
    operations::GetClass call;
    call.className = parameters.RequiredClassName("ClassName");
    parameters.ReadFlag("LocalOnly", call.localOnly);
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadFlag("IncludeClassOrigin", call.includeClassOrigin);
    parameters.ReadNames("PropertyList", call.properties);
    return call;
}

operations::Call ReadEnumerateClasses(Parameters& parameters) {
    operations::EnumerateClasses call;
    parameters.ReadClassName("ClassName", call.className);
    parameters.ReadFlag("DeepInheritance", call.deepInheritance);
    parameters.ReadFlag("LocalOnly", call.localOnly);
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadFlag("IncludeClassOrigin", call.includeClassOrigin);
    return call;
}

operations::Call ReadEnumerateClassNames(Parameters& parameters) {
    operations::EnumerateClassNames call;
    parameters.ReadClassName("ClassName", call.className);
    parameters.ReadFlag("DeepInheritance", call.deepInheritance);
    return call;
}

operations::Call ReadGetInstance(Parameters& parameters) {
    operations::GetInstance call;
    call.instanceName = parameters.RequiredInstanceName("InstanceName");
    parameters.ReadFlag("LocalOnly", call.localOnly);
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadFlag("IncludeClassOrigin", call.includeClassOrigin);
    parameters.ReadNames("PropertyList", call.properties);
    return call;
}

operations::Call ReadEnumerateInstances(Parameters& parameters) {
    operations::EnumerateInstances call;
    call.className = parameters.RequiredClassName("ClassName");
    parameters.ReadFlag("LocalOnly", call.localOnly);
    parameters.ReadFlag("DeepInheritance", call.deepInheritance);
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadFlag("IncludeClassOrigin", call.includeClassOrigin);
    parameters.ReadNames("PropertyList", call.properties);
    return call;
}

operations::Call ReadEnumerateInstanceNames(Parameters& parameters) {
    operations::EnumerateInstanceNames call;
    call.className = parameters.RequiredClassName("ClassName");
    return call;
}

struct Operation {
    const char* name;
    operations::Call (*read)(Parameters&);
};

constexpr Operation intrinsicOperations[] = {
    {"GetClass", &ReadGetClass},
    {"EnumerateClasses", &ReadEnumerateClasses},
    {"EnumerateClassNames", &ReadEnumerateClassNames},
    {"GetInstance", &ReadGetInstance},
    {"EnumerateInstances", &ReadEnumerateInstances},
    {"EnumerateInstanceNames", &ReadEnumerateInstanceNames},
};

operations::Call ReadIntrinsicCall(const MethodCall& call) {
    const String name(call.name.c_str());
    for (const Operation& operation : intrinsicOperations) {
        if (name.equalsIgnoreCase(operation.name)) {
            Parameters parameters(*call.element);
            operations::Call result = operation.read(parameters);
            parameters.ExpectAllRead();
            return result;
        }
    }
    return operations::OtherOperation{name};
}

/// An intrinsic call begins with the namespace; an extrinsic one with an object in a namespace.
const Element& NameSpaceOf(const MethodCall& call) {
    if (call.element->children.empty()) {
        throw NotLooselyValid();
    }
    const Element& first = call.element->children.front();
    if (!call.isExtrinsic) {
        return first;
    }
    const bool isObject = first.name == "LOCALCLASSPATH" || first.name == "LOCALINSTANCEPATH";
    if (!isObject || first.children.size() != 2) {
        throw NotLooselyValid();
    }
    return first.children.front();
}

} // namespace

operations::Request ReadRequest(const MethodCall& call) {
    String nameSpace = ReadNameSpace(NameSpaceOf(call));
    if (call.isExtrinsic) {
        return {nameSpace, {}, operations::OtherOperation{String(call.name.c_str())}};
    }
    return {nameSpace, {}, ReadIntrinsicCall(call)};
}

} // namespace cimserver::cimxml
