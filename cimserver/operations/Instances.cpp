#include "cimserver/operations/Instances.hpp"

#include "cimserver/operations/Classes.hpp"
#include "cimserver/operations/Flags.hpp"
#include "cimserver/operations/Providers.hpp"

#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

#include <functional>
#include <vector>

namespace cimserver::operations {

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMObjectPath;

class NamedInstances final : public OpenWBEM::CIMInstanceResultHandlerIFC {
public:
    explicit NamedInstances(ResultSink& sink) : sink_(sink) {}

protected:
    void doHandle(const CIMInstance& instance) override { sink_.NamedInstance(instance); }

private:
    ResultSink& sink_;
};

class InstanceNames final : public OpenWBEM::CIMObjectPathResultHandlerIFC {
public:
    explicit InstanceNames(ResultSink& sink) : sink_(sink) {}

protected:
    void doHandle(const CIMObjectPath& path) override { sink_.InstanceName(path); }

private:
    ResultSink& sink_;
};

using ClassCall = std::function<void(OpenWBEM::CppInstanceProviderIFC&,
                                     const OpenWBEM::ProviderEnvironmentIFCRef&,
                                     const CIMClass& requestedClass, const CIMClass& cimClass)>;

// Classes without provider have no instances.
void AskAll(const OpenWBEM::String& className, const Surroundings& around, const char* operation,
            const ClassCall& call) {
    const auto& requested = FindClass(around.schema, around.nameSpace, className);
    std::vector<const CIMClass*> classes{&requested};
    const auto below = around.schema.Subclasses(requested.getName(), true);
    classes.insert(classes.end(), below.begin(), below.end());
    for (const auto* cimClass : classes) {
        AskProvider(*cimClass, around, operation, [&](auto& provider, const auto& env) {
            call(provider, env, requested, *cimClass);
        });
    }
}

} // namespace

void Carry(const EnumerateInstances& call, const Surroundings& around, ResultSink& sink) {
    NamedInstances handler(sink);
    AskAll(call.className, around, "EnumerateInstances",
           [&](auto& provider, const auto& env, const auto& requestedClass, const auto& cimClass) {
               provider.enumInstances(env, around.nameSpace, cimClass.getName(), handler,
                                      LocalOnly(call.localOnly), Deep(call.deepInheritance),
                                      IncludeQualifiers(call.includeQualifiers),
                                      IncludeClassOrigin(call.includeClassOrigin),
                                      Pointer(call.properties), requestedClass, cimClass);
           });
}

void Carry(const EnumerateInstanceNames& call, const Surroundings& around, ResultSink& sink) {
    InstanceNames handler(sink);
    AskAll(call.className, around, "EnumerateInstanceNames",
           [&](auto& provider, const auto& env, const auto&, const auto& cimClass) {
               provider.enumInstanceNames(env, around.nameSpace, cimClass.getName(), handler,
                                          cimClass);
           });
}

void Carry(const GetInstance& call, const Surroundings& around, ResultSink& sink) {
    const auto& cimClass =
        FindClass(around.schema, around.nameSpace, call.instanceName.getClassName());
    const auto path = PathFromClient(call.instanceName, cimClass);
    AskProviderOf(path, cimClass, around, "GetInstance", [&](auto& provider, const auto& env) {
        const auto instance = provider.getInstance(
            env, around.nameSpace, path, LocalOnly(call.localOnly),
            IncludeQualifiers(call.includeQualifiers), IncludeClassOrigin(call.includeClassOrigin),
            Pointer(call.properties), cimClass);
        CheckNamed(instance);
        sink.Instance(instance);
    });
}

void Carry(const GetProperty& call, const Surroundings& around, ResultSink& sink) {
    const auto& cimClass =
        FindClass(around.schema, around.nameSpace, call.instanceName.getClassName());
    const auto path = PathFromClient(call.instanceName, cimClass);
    const OpenWBEM::StringArray list(1, call.propertyName);
    AskProviderOf(path, cimClass, around, "GetProperty", [&](auto& provider, const auto& env) {
        const auto instance = provider.getInstance(env, around.nameSpace, path, LocalOnly(false),
                                                   IncludeQualifiers(false),
                                                   IncludeClassOrigin(false), &list, cimClass);
        CheckNamed(instance);
        FindProperty(cimClass, call.propertyName);
        sink.PropertyValue(instance.getPropertyValue(call.propertyName));
    });
}

} // namespace cimserver::operations
