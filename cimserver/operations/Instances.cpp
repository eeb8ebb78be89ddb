#include "cimserver/operations/Instances.hpp"

#include "cimserver/operations/Classes.hpp"
#include "cimserver/operations/Flags.hpp"

#include "OW_CIMException.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

#include <functional>
#include <vector>

namespace cimserver::operations {

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
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

host::Target TargetOf(const CIMClass& cimClass, const OpenWBEM::String& nameSpace) {
    host::Target target{nameSpace, cimClass.getName(), {}};
    const auto qualifier = cimClass.getQualifier(OpenWBEM::CIMQualifier::CIM_QUAL_PROVIDER);
    if (qualifier) {
        const auto value = qualifier.getValue();
        if (value && !value.isArray() && value.getType() == OpenWBEM::CIMDataType::STRING) {
            value.get(target.providerQualifier);
        }
    }
    return target;
}

bool Ask(const CIMClass& cimClass, const Surroundings& around, const char* operation,
         const host::InstanceCall& call) {
    return around.providers.WithInstanceProvider(TargetOf(cimClass, around.nameSpace),
                                                 {operation, around.user}, call);
}

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
        Ask(*cimClass, around, operation,
            [&](auto& provider, const auto& env) { call(provider, env, requested, *cimClass); });
    }
}

void Deliver(const CIMInstance& instance, ResultSink& sink) {
    if (!instance) {
        OW_THROWCIMMSG(CIMException::FAILED, "Provider erroneously returned a NULL CIMInstance");
    }
    if (instance.getClassName().empty()) {
        OW_THROWCIMMSG(CIMException::FAILED, "instance has no class name");
    }
    sink.Instance(instance);
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
    // The provider sees the class name as the client wrote it and no namespace.
    CIMObjectPath path = call.instanceName;
    path.setNameSpace("");
    path.syncWithClass(cimClass);
    const bool hasProvider =
        Ask(cimClass, around, "GetInstance", [&](auto& provider, const auto& env) {
            Deliver(provider.getInstance(env, around.nameSpace, path, LocalOnly(call.localOnly),
                                         IncludeQualifiers(call.includeQualifiers),
                                         IncludeClassOrigin(call.includeClassOrigin),
                                         Pointer(call.properties), cimClass),
                    sink);
        });
    if (!hasProvider) {
        path.setNameSpace(around.nameSpace);
        OW_THROWCIMMSG(CIMException::NOT_FOUND, path.toString().c_str());
    }
}

} // namespace cimserver::operations
