#include "cimserver/operations/Associations.hpp"

#include "cimserver/operations/AssociationClasses.hpp"
#include "cimserver/operations/Classes.hpp"
#include "cimserver/operations/Flags.hpp"
#include "cimserver/operations/Providers.hpp"

#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

#include <functional>

namespace cimserver::operations {

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::String;

class Instances final : public OpenWBEM::CIMInstanceResultHandlerIFC {
public:
    Instances(const Surroundings& around, ResultSink& sink) : around_(around), sink_(sink) {}

protected:
    void doHandle(const CIMInstance& instance) override {
        CIMObjectPath path(around_.nameSpace, instance);
        path.setHost(around_.hostName);
        sink_.InstanceWithPath(path, instance);
    }

private:
    const Surroundings& around_;
    ResultSink& sink_;
};

class Names final : public OpenWBEM::CIMObjectPathResultHandlerIFC {
public:
    Names(const Surroundings& around, ResultSink& sink) : around_(around), sink_(sink) {}

protected:
    void doHandle(const CIMObjectPath& name) override {
        CIMObjectPath path = name;
        path.setHost(around_.hostName);
        sink_.InstancePath(path);
    }

private:
    const Surroundings& around_;
    ResultSink& sink_;
};

CIMObjectPath PathOf(const CIMClass& cimClass, const Surroundings& around) {
    CIMObjectPath path(OpenWBEM::CIMName(cimClass.getName()), around.nameSpace);
    path.setHost(around.hostName);
    return path;
}

// As classes are shown to whom asks for associations of a class: whole, but for what the flags and
// the list leave out.
template <class Call>
void Deliver(const Classes& classes, const Call& call, const Surroundings& around,
             ResultSink& sink) {
    for (const CIMClass* cimClass : classes) {
        sink.ClassWithPath(
            PathOf(*cimClass, around),
            cimClass->clone(LocalOnly(false), IncludeQualifiers(call.includeQualifiers),
                            IncludeClassOrigin(call.includeClassOrigin), Pointer(call.properties)));
    }
}

void DeliverPaths(const Classes& classes, const Surroundings& around, ResultSink& sink) {
    for (const CIMClass* cimClass : classes) {
        sink.ClassPath(PathOf(*cimClass, around));
    }
}

using AssociationCall =
    std::function<void(OpenWBEM::CppAssociatorProviderIFC&,
                       const OpenWBEM::ProviderEnvironmentIFCRef&, const String& assocClass)>;

// Association classes without a provider for associations have no instances here.
void AskAll(const Classes& candidates, const Surroundings& around, const char* operation,
            const AssociationCall& call) {
    for (const CIMClass* candidate : candidates) {
        around.providers.WithAssociatorProvider(
            TargetOf(*candidate, around.nameSpace), around.InfoFor(operation),
            [&](auto& provider, const auto& env) { call(provider, env, candidate->getName()); });
    }
}

void CheckResultClass(const String& name, const Surroundings& around) {
    if (!name.empty()) {
        FindClass(around.schema, around.nameSpace, name);
    }
}

} // namespace

void Carry(const Associators& call, const Surroundings& around, ResultSink& sink) {
    const auto& source = SourceClass(call.objectName, around);
    const auto path = PathFromClient(call.objectName, source, around.nameSpace);
    const auto candidates = Candidates(source, call.assocClass, call.role, around);
    CheckResultClass(call.resultClass, around);
    if (path.isClassPath()) {
        return Deliver(ClassesAtOtherEnds(source, candidates, call.resultClass, call.role,
                                          call.resultRole, around),
                       call, around, sink);
    }
    Instances handler(around, sink);
    AskAll(candidates, around, "Associators",
           [&](auto& provider, const auto& env, const String& assocClass) {
               provider.associators(
                   env, handler, around.nameSpace, path, assocClass, call.resultClass, call.role,
                   call.resultRole, IncludeQualifiers(call.includeQualifiers),
                   IncludeClassOrigin(call.includeClassOrigin), Pointer(call.properties));
           });
}

void Carry(const AssociatorNames& call, const Surroundings& around, ResultSink& sink) {
    const auto& source = SourceClass(call.objectName, around);
    const auto path = PathFromClient(call.objectName, source, around.nameSpace);
    const auto candidates = Candidates(source, call.assocClass, call.role, around);
    CheckResultClass(call.resultClass, around);
    if (path.isClassPath()) {
        return DeliverPaths(ClassesAtOtherEnds(source, candidates, call.resultClass, call.role,
                                               call.resultRole, around),
                            around, sink);
    }
    Names handler(around, sink);
    AskAll(candidates, around, "AssociatorNames",
           [&](auto& provider, const auto& env, const String& assocClass) {
               provider.associatorNames(env, handler, around.nameSpace, path, assocClass,
                                        call.resultClass, call.role, call.resultRole);
           });
}

void Carry(const References& call, const Surroundings& around, ResultSink& sink) {
    const auto& source = SourceClass(call.objectName, around);
    const auto path = PathFromClient(call.objectName, source, around.nameSpace);
    const auto candidates = Candidates(source, call.resultClass, call.role, around);
    if (path.isClassPath()) {
        return Deliver(ReferringClasses(source, candidates, call.role, around), call, around, sink);
    }
    Instances handler(around, sink);
    AskAll(candidates, around, "References",
           [&](auto& provider, const auto& env, const String& resultClass) {
               provider.references(env, handler, around.nameSpace, path, resultClass, call.role,
                                   IncludeQualifiers(call.includeQualifiers),
                                   IncludeClassOrigin(call.includeClassOrigin),
                                   Pointer(call.properties));
           });
}

void Carry(const ReferenceNames& call, const Surroundings& around, ResultSink& sink) {
    const auto& source = SourceClass(call.objectName, around);
    const auto path = PathFromClient(call.objectName, source, around.nameSpace);
    const auto candidates = Candidates(source, call.resultClass, call.role, around);
    if (path.isClassPath()) {
        return DeliverPaths(ReferringClasses(source, candidates, call.role, around), around, sink);
    }
    Names handler(around, sink);
    AskAll(candidates, around, "ReferenceNames",
           [&](auto& provider, const auto& env, const String& resultClass) {
               provider.referenceNames(env, handler, around.nameSpace, path, resultClass,
                                       call.role);
           });
}

} // namespace cimserver::operations
