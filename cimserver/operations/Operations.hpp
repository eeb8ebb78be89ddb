// The CIM operations (DMTF DSP0200): checks namespace, class, keys and types of a call and carries
// it out with the schema and the providers. Knows nothing of XML and HTTP.
#pragma once

#include "OW_CIM.hpp"
#include "OW_CIMException.hpp"

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
struct GetQualifier {
    OpenWBEM::String qualifierName;
};
struct EnumerateQualifiers {};
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
struct GetProperty {
    OpenWBEM::CIMObjectPath instanceName;
    OpenWBEM::String propertyName;
};
struct SetProperty {
    OpenWBEM::CIMObjectPath instanceName;
    OpenWBEM::String propertyName;
    OpenWBEM::CIMValue newValue = OpenWBEM::CIMValue(OpenWBEM::CIMNULL); ///< of any type
};
struct CreateInstance {
    OpenWBEM::CIMInstance newInstance;
};
struct ModifyInstance {
    OpenWBEM::CIMObjectPath instanceName;
    OpenWBEM::CIMInstance modifiedInstance;
    bool includeQualifiers = true;
    PropertyList properties = std::nullopt;
};
struct DeleteInstance {
    OpenWBEM::CIMObjectPath instanceName;
};
// In these four an empty text is one that the client left out. The object is an instance, or a
// class when its name holds no keys.
struct Associators {
    OpenWBEM::CIMObjectPath objectName;
    OpenWBEM::String assocClass = {};
    OpenWBEM::String resultClass = {};
    OpenWBEM::String role = {};
    OpenWBEM::String resultRole = {};
    bool includeQualifiers = false;
    bool includeClassOrigin = false;
    PropertyList properties = std::nullopt;
};
struct AssociatorNames {
    OpenWBEM::CIMObjectPath objectName;
    OpenWBEM::String assocClass = {};
    OpenWBEM::String resultClass = {};
    OpenWBEM::String role = {};
    OpenWBEM::String resultRole = {};
};
struct References {
    OpenWBEM::CIMObjectPath objectName;
    OpenWBEM::String resultClass = {};
    OpenWBEM::String role = {};
    bool includeQualifiers = false;
    bool includeClassOrigin = false;
    PropertyList properties = std::nullopt;
};
struct ReferenceNames {
    OpenWBEM::CIMObjectPath objectName;
    OpenWBEM::String resultClass = {};
    OpenWBEM::String role = {};
};
/// A method that a class declares. The parameters are those that the client sent, in its order; a
/// value that came without type is a string.
struct InvokeMethod {
    OpenWBEM::CIMObjectPath objectName;
    OpenWBEM::String methodName;
    OpenWBEM::CIMParamValueArray parameters = {};
};
/// Any other operation; answered with CIM_ERR_NOT_SUPPORTED.
struct OtherOperation {
    OpenWBEM::String name;
};
/// A call with a parameter that could not be read; answered with this error, unless the namespace
/// is wrong already.
struct FaultyCall {
    OpenWBEM::CIMException error;
};

using Call =
    std::variant<GetClass, EnumerateClasses, EnumerateClassNames, GetQualifier, EnumerateQualifiers,
                 GetInstance, EnumerateInstances, EnumerateInstanceNames, GetProperty, SetProperty,
                 CreateInstance, ModifyInstance, DeleteInstance, Associators, AssociatorNames,
                 References, ReferenceNames, InvokeMethod, OtherOperation, FaultyCall>;

/// Learns when a call is inside a provider library, which may be several times. Called by the
/// thread of the call.
class ProviderWatch {
public:
    virtual ~ProviderWatch() = default;
    /// `what` is the call as people are told, such as `EnumerateInstances of ZNX_SoftwareIdentity`.
    virtual void Entered(const std::string& what) = 0;
    virtual void Left() = 0;
};

struct Request {
    OpenWBEM::String nameSpace; ///< without leading slash
    std::string user;           ///< empty: anonymous
    Call call;
    /// The user may call methods, create, modify, delete and set; otherwise he may only read.
    bool mayChange = false;
    ProviderWatch* watch = nullptr; ///< null: nobody wants to know
};

/// Takes the results of one call in order; which of these are called follows from the call, and
/// none for a call that only changes something. Called from one thread.
class ResultSink {
public:
    virtual ~ResultSink() = default;
    virtual void Class(const OpenWBEM::CIMClass& cimClass) = 0;
    virtual void ClassName(const OpenWBEM::String& name) = 0;
    virtual void QualifierType(const OpenWBEM::CIMQualifierType& qualifier) = 0;
    virtual void Instance(const OpenWBEM::CIMInstance& instance) = 0;
    /// An instance together with its name, which its class and its own keys make.
    virtual void NamedInstance(const OpenWBEM::CIMInstance& instance) = 0;
    virtual void InstanceName(const OpenWBEM::CIMObjectPath& path) = 0;
    // The results of associations: paths with host and namespace.
    virtual void InstanceWithPath(const OpenWBEM::CIMObjectPath& path,
                                  const OpenWBEM::CIMInstance& instance) = 0;
    virtual void ClassWithPath(const OpenWBEM::CIMObjectPath& path,
                               const OpenWBEM::CIMClass& cimClass) = 0;
    virtual void InstancePath(const OpenWBEM::CIMObjectPath& path) = 0;
    virtual void ClassPath(const OpenWBEM::CIMObjectPath& path) = 0;
    /// The value may be null.
    virtual void PropertyValue(const OpenWBEM::CIMValue& value) = 0;
    /// What a method returned and put into its out-parameters; any of the values may be null.
    virtual void MethodResult(const OpenWBEM::CIMValue& returnValue,
                              const OpenWBEM::CIMParamValueArray& out) = 0;
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
    /// Schema and providers must outlive this object. `nameSpace` is the one namespace served;
    /// `hostName` is the name of this machine, which the results of associations carry.
    Operations(const mof::Schema& schema, host::ProviderSource& providers,
               OpenWBEM::String nameSpace, OpenWBEM::String hostName);
    void Execute(const Request& request, ResultSink& sink) override;

private:
    const mof::Schema& schema_;
    host::ProviderSource& providers_;
    const OpenWBEM::String nameSpace_;
    const OpenWBEM::String hostName_;
};

} // namespace cimserver::operations
