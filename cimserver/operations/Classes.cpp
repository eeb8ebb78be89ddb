#include "cimserver/operations/Classes.hpp"

#include "cimserver/operations/Flags.hpp"

#include <vector>

namespace cimserver::operations {

namespace {

// An empty name stands for the top of the tree.
std::vector<const OpenWBEM::CIMClass*> Below(const mof::Schema& schema,
                                             const OpenWBEM::String& nameSpace,
                                             const OpenWBEM::String& name, bool deep) {
    if (!name.empty()) {
        FindClass(schema, nameSpace, name);
    }
    return schema.Subclasses(name, deep);
}

} // namespace

const OpenWBEM::CIMClass& FindClass(const mof::Schema& schema, const OpenWBEM::String& nameSpace,
                                    const OpenWBEM::String& name,
                                    OpenWBEM::CIMException::ErrNoType whenUnknown) {
    const auto* found = schema.FindClass(name);
    if (found == nullptr) {
        const OpenWBEM::String path = OpenWBEM::String("/") + nameSpace + ":" + name;
        OW_THROWCIMMSG(whenUnknown, path.c_str());
    }
    return *found;
}

void Carry(const GetClass& call, const mof::Schema& schema, const OpenWBEM::String& nameSpace,
           ResultSink& sink) {
    const auto& cimClass =
        FindClass(schema, nameSpace, call.className, OpenWBEM::CIMException::NOT_FOUND);
    sink.Class(cimClass.clone(LocalOnly(call.localOnly), IncludeQualifiers(call.includeQualifiers),
                              IncludeClassOrigin(call.includeClassOrigin),
                              Pointer(call.properties)));
}

void Carry(const EnumerateClasses& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink) {
    for (const auto* cimClass : Below(schema, nameSpace, call.className, call.deepInheritance)) {
        sink.Class(cimClass->clone(LocalOnly(call.localOnly),
                                   IncludeQualifiers(call.includeQualifiers),
                                   IncludeClassOrigin(call.includeClassOrigin), nullptr));
    }
}

void Carry(const EnumerateClassNames& call, const mof::Schema& schema,
           const OpenWBEM::String& nameSpace, ResultSink& sink) {
    for (const auto* cimClass : Below(schema, nameSpace, call.className, call.deepInheritance)) {
        sink.ClassName(cimClass->getName());
    }
}

void Carry(const GetQualifier& call, const mof::Schema& schema,
           const OpenWBEM::String& /*nameSpace*/, ResultSink& sink) {
    const auto* qualifier = schema.FindQualifier(call.qualifierName);
    if (qualifier == nullptr) {
        const OpenWBEM::String text = "qualifier " + call.qualifierName;
        OW_THROWCIMMSG(OpenWBEM::CIMException::NOT_FOUND, text.c_str());
    }
    sink.QualifierType(*qualifier);
}

void Carry(const EnumerateQualifiers& /*call*/, const mof::Schema& schema,
           const OpenWBEM::String& /*nameSpace*/, ResultSink& sink) {
    for (const auto& qualifier : schema.Qualifiers()) {
        sink.QualifierType(qualifier);
    }
}

} // namespace cimserver::operations
