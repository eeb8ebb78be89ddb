// The CIM operations (DMTF DSP0200): checks namespace, class, keys and types of a call and carries
// it out with the schema and the providers. Knows nothing of XML and HTTP.
#pragma once

#include "OW_CIM.hpp"

#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace cimserver::mof {
class Schema;
}
namespace cimserver::host {
class ProviderSource;
}

namespace cimserver::operations {

/// Absent: the client gave no property list.
using PropertyList = std::optional<OpenWBEM::StringArray>;

// The defaults are those that apply when the client leaves a parameter out.
struct GetClass {
    OpenWBEM::String className;
    bool localOnly = true;
    bool includeQualifiers = true;
    bool includeClassOrigin = false;
    PropertyList properties = std::nullopt;
};
struct EnumerateClasses {
    OpenWBEM::String className; ///< empty: from the top
    bool deepInheritance = false;
    bool localOnly = true;
    bool includeQualifiers = true;
    bool includeClassOrigin = false;
};
struct EnumerateClassNames {
    OpenWBEM::String className; ///< empty: from the top
    bool deepInheritance = false;
};
struct GetInstance {
    OpenWBEM::CIMObjectPath instanceName;
    bool localOnly = true;
    bool includeQualifiers = false;
    bool includeClassOrigin = false;
    PropertyList properties = std::nullopt;
};
struct EnumerateInstances {
    OpenWBEM::String className;
    bool localOnly = true;
    bool deepInheritance = true;
    bool includeQualifiers = false;
    bool includeClassOrigin = false;
    PropertyList properties = std::nullopt;
};
struct EnumerateInstanceNames {
    OpenWBEM::String className;
};
/// Any other operation, intrinsic or extrinsic; answered with CIM_ERR_NOT_SUPPORTED.
struct OtherOperation {
    OpenWBEM::String name;
};

using Call = std::variant<GetClass, EnumerateClasses, EnumerateClassNames, GetInstance,
                          EnumerateInstances, EnumerateInstanceNames, OtherOperation>;

struct Request {
    OpenWBEM::String nameSpace; ///< without leading slash
    std::string user;           ///< empty: anonymous
    Call call;
};

/// Takes the results of one call in order; which of these are called follows from the call. Called
/// from one thread.
class ResultSink {
public:
    virtual ~ResultSink() = default;
    virtual void Class(const OpenWBEM::CIMClass& cimClass) = 0;
    virtual void ClassName(const OpenWBEM::String& name) = 0;
    virtual void Instance(const OpenWBEM::CIMInstance& instance) = 0;
    /// An instance together with its name, which its class and its own keys make.
    virtual void NamedInstance(const OpenWBEM::CIMInstance& instance) = 0;
    virtual void InstanceName(const OpenWBEM::CIMObjectPath& path) = 0;
};

/// Carries out one call. Called from several threads at once.
class Executor {
public:
    virtual ~Executor() = default;
    /// Throws OpenWBEM::CIMException, also after results were delivered, and nothing else.
    virtual void Execute(const Request& request, ResultSink& sink) = 0;
};

class Operations final : public Executor {
public:
    /// Both must outlive this object. `nameSpace` is the one namespace served.
    Operations(const mof::Schema& schema, host::ProviderSource& providers,
               OpenWBEM::String nameSpace);
    void Execute(const Request& request, ResultSink& sink) override;

private:
    const mof::Schema& schema_;
    host::ProviderSource& providers_;
    const OpenWBEM::String nameSpace_;
};

} // namespace cimserver::operations
