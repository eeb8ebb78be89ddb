#include "cimserver/cimxml/CallReader.hpp"

#include "cimserver/cimxml/ObjectNames.hpp"
#include "cimserver/cimxml/Parameters.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"
#include "cimserver/cimxml/ReadValues.hpp"

#include "OW_CIMException.hpp"

#include <tuple>

namespace cimserver::cimxml {

using OpenWBEM::CIMException;
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

operations::Call ReadGetQualifier(Parameters& parameters) {
    return operations::GetQualifier{parameters.RequiredText("QualifierName")};
}

operations::Call ReadEnumerateQualifiers(Parameters& /*parameters*/) {
    return operations::EnumerateQualifiers{};
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

operations::Call ReadGetProperty(Parameters& parameters) {
    operations::GetProperty call;
    call.instanceName = parameters.RequiredInstanceName("InstanceName");
    call.propertyName = parameters.RequiredText("PropertyName");
    return call;
}

operations::Call ReadSetProperty(Parameters& parameters) {
    operations::SetProperty call;
    call.instanceName = parameters.RequiredInstanceName("InstanceName");
    call.propertyName = parameters.RequiredText("PropertyName");
    parameters.ReadUntyped("NewValue", call.newValue);
    return call;
}

operations::Call ReadCreateInstance(Parameters& parameters) {
    operations::CreateInstance call;
    call.newInstance = parameters.RequiredInstance("NewInstance");
    return call;
}

operations::Call ReadModifyInstance(Parameters& parameters) {
    operations::ModifyInstance call;
    std::tie(call.instanceName, call.modifiedInstance) =
        parameters.RequiredNamedInstance("ModifiedInstance");
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadNames("PropertyList", call.properties);
    return call;
}

operations::Call ReadDeleteInstance(Parameters& parameters) {
    operations::DeleteInstance call;
    call.instanceName = parameters.RequiredInstanceName("InstanceName");
    return call;
}

operations::Call ReadAssociators(Parameters& parameters) {
    operations::Associators call;
    call.objectName = parameters.RequiredObjectName("ObjectName");
    parameters.ReadClassName("AssocClass", call.assocClass);
    parameters.ReadClassName("ResultClass", call.resultClass);
    parameters.ReadText("Role", call.role);
    parameters.ReadText("ResultRole", call.resultRole);
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadFlag("IncludeClassOrigin", call.includeClassOrigin);
    parameters.ReadNames("PropertyList", call.properties);
    return call;
}

operations::Call ReadAssociatorNames(Parameters& parameters) {
    operations::AssociatorNames call;
    call.objectName = parameters.RequiredObjectName("ObjectName");
    parameters.ReadClassName("AssocClass", call.assocClass);
    parameters.ReadClassName("ResultClass", call.resultClass);
    parameters.ReadText("Role", call.role);
    parameters.ReadText("ResultRole", call.resultRole);
    return call;
}

operations::Call ReadReferences(Parameters& parameters) {
    operations::References call;
    call.objectName = parameters.RequiredObjectName("ObjectName");
    parameters.ReadClassName("ResultClass", call.resultClass);
    parameters.ReadText("Role", call.role);
    parameters.ReadFlag("IncludeQualifiers", call.includeQualifiers);
    parameters.ReadFlag("IncludeClassOrigin", call.includeClassOrigin);
    parameters.ReadNames("PropertyList", call.properties);
    return call;
}

operations::Call ReadReferenceNames(Parameters& parameters) {
    operations::ReferenceNames call;
    call.objectName = parameters.RequiredObjectName("ObjectName");
    parameters.ReadClassName("ResultClass", call.resultClass);
    parameters.ReadText("Role", call.role);
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
    {"GetQualifier", &ReadGetQualifier},
    {"EnumerateQualifiers", &ReadEnumerateQualifiers},
    {"GetInstance", &ReadGetInstance},
    {"EnumerateInstances", &ReadEnumerateInstances},
    {"EnumerateInstanceNames", &ReadEnumerateInstanceNames},
    {"GetProperty", &ReadGetProperty},
    {"SetProperty", &ReadSetProperty},
    {"CreateInstance", &ReadCreateInstance},
    {"ModifyInstance", &ReadModifyInstance},
    {"DeleteInstance", &ReadDeleteInstance},
    {"Associators", &ReadAssociators},
    {"AssociatorNames", &ReadAssociatorNames},
    {"References", &ReadReferences},
    {"ReferenceNames", &ReadReferenceNames},
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

const Element& FirstChild(const Element& element) {
    if (element.children.empty()) {
        throw NotLooselyValid();
    }
    return element.children.front();
}

/// Where the call's first child is: the namespace itself, or the path of an object in it.
const Element& NameSpacePathOf(const MethodCall& call) {
    const Element& place = FirstChild(*call.element);
    return call.isExtrinsic ? FirstChild(place) : place;
}

operations::Call ReadExtrinsicCall(const MethodCall& call) {
    operations::InvokeMethod result;
    result.objectName = ReadLocalPath(FirstChild(*call.element));
    result.methodName = call.name.c_str();
    for (std::size_t i = 1; i < call.element->children.size(); ++i) {
        result.parameters.push_back(ReadParameter(call.element->children[i]));
    }
    return result;
}

} // namespace

operations::Request ReadRequest(const MethodCall& call) {
    operations::Request request;
    request.nameSpace = ReadNameSpace(NameSpacePathOf(call));
    try {
        request.call = call.isExtrinsic ? ReadExtrinsicCall(call) : ReadIntrinsicCall(call);
    } catch (const CIMException& error) {
        request.call = operations::FaultyCall{error};
    }
    return request;
}

} // namespace cimserver::cimxml
