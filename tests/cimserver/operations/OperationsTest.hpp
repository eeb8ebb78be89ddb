// What the tests of the operations share: a small schema, providers that are played, results kept.
#pragma once

#include "cimserver/host/Host.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

#include "OW_CIM.hpp"
#include "OW_CIMException.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace operationstest {

using Lines = std::vector<std::string>;

/// `CLASS{NAME=TYPE VALUE,...}`, with `null` for the value of a property that has none.
std::string Shown(const OpenWBEM::CIMInstance& instance);
/// `NAME=TYPE VALUE,...`
std::string Shown(const OpenWBEM::CIMPropertyArray& properties);
std::string Shown(const OpenWBEM::CIMParamValueArray& parameters);
std::string Shown(const OpenWBEM::CIMValue& value);

OpenWBEM::CIMObjectPath Path(const char* className, const char* key, const char* value);

/// Keeps the results, each also as a line: `class X`, `name X`, `instance X`, `named PATH X`, `path
/// PATH`, `instance PATH X`, `class PATH X`, `instance path PATH`, `class path PATH`, `value
/// VALUE`, `returned VALUE(OUT)`.
class KeepingSink final : public cimserver::operations::ResultSink {
public:
    void Class(const OpenWBEM::CIMClass& cimClass) override;
    void ClassName(const OpenWBEM::String& name) override;
    void QualifierType(const OpenWBEM::CIMQualifierType& qualifier) override;
    void Instance(const OpenWBEM::CIMInstance& instance) override;
    void NamedInstance(const OpenWBEM::CIMInstance& instance) override;
    void InstanceName(const OpenWBEM::CIMObjectPath& path) override;
    void InstanceWithPath(const OpenWBEM::CIMObjectPath& path,
                          const OpenWBEM::CIMInstance& instance) override;
    void ClassWithPath(const OpenWBEM::CIMObjectPath& path,
                       const OpenWBEM::CIMClass& cimClass) override;
    void InstancePath(const OpenWBEM::CIMObjectPath& path) override;
    void ClassPath(const OpenWBEM::CIMObjectPath& path) override;
    void PropertyValue(const OpenWBEM::CIMValue& value) override;
    void MethodResult(const OpenWBEM::CIMValue& returnValue,
                      const OpenWBEM::CIMParamValueArray& out) override;

    Lines lines;
    std::vector<OpenWBEM::CIMClass> classes;
    std::vector<OpenWBEM::CIMInstance> instances;
};

/// Writes down how it is called and does what the test tells it.
class PlayedProvider final : public OpenWBEM::CppMethodProviderIFC,
                             public OpenWBEM::CppAssociatorProviderIFC {
public:
    using Env = OpenWBEM::ProviderEnvironmentIFCRef;

    void enumInstanceNames(const Env& env, const OpenWBEM::String& ns,
                           const OpenWBEM::String& className,
                           OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                           const OpenWBEM::CIMClass& cimClass) override;
    void enumInstances(const Env& env, const OpenWBEM::String& ns,
                       const OpenWBEM::String& className,
                       OpenWBEM::CIMInstanceResultHandlerIFC& result,
                       OpenWBEM::WBEMFlags::ELocalOnlyFlag localOnly,
                       OpenWBEM::WBEMFlags::EDeepFlag deep,
                       OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                       OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                       const OpenWBEM::StringArray* propertyList,
                       const OpenWBEM::CIMClass& requestedClass,
                       const OpenWBEM::CIMClass& cimClass) override;
    OpenWBEM::CIMInstance getInstance(
        const Env& env, const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& instanceName,
        OpenWBEM::WBEMFlags::ELocalOnlyFlag localOnly,
        OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
        OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
        const OpenWBEM::StringArray* propertyList, const OpenWBEM::CIMClass& cimClass) override;
    OpenWBEM::CIMObjectPath createInstance(const Env&, const OpenWBEM::String& ns,
                                           const OpenWBEM::CIMInstance& instance) override;
    void modifyInstance(const Env&, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMInstance& modified,
                        const OpenWBEM::CIMInstance& previous,
                        OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                        const OpenWBEM::StringArray* propertyList,
                        const OpenWBEM::CIMClass& cimClass) override;
    void deleteInstance(const Env&, const OpenWBEM::String& ns,
                        const OpenWBEM::CIMObjectPath& path) override;
    OpenWBEM::CIMValue invokeMethod(const Env&, const OpenWBEM::String& ns,
                                    const OpenWBEM::CIMObjectPath& path,
                                    const OpenWBEM::String& methodName,
                                    const OpenWBEM::CIMParamValueArray& in,
                                    OpenWBEM::CIMParamValueArray& out) override;
    void associators(const Env&, OpenWBEM::CIMInstanceResultHandlerIFC& result,
                     const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& objectName,
                     const OpenWBEM::String& assocClass, const OpenWBEM::String& resultClass,
                     const OpenWBEM::String& role, const OpenWBEM::String& resultRole,
                     OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                     OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                     const OpenWBEM::StringArray* propertyList) override;
    void associatorNames(const Env&, OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                         const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& objectName,
                         const OpenWBEM::String& assocClass, const OpenWBEM::String& resultClass,
                         const OpenWBEM::String& role, const OpenWBEM::String& resultRole) override;
    void references(const Env&, OpenWBEM::CIMInstanceResultHandlerIFC& result,
                    const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& objectName,
                    const OpenWBEM::String& resultClass, const OpenWBEM::String& role,
                    OpenWBEM::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                    OpenWBEM::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                    const OpenWBEM::StringArray* propertyList) override;
    void referenceNames(const Env&, OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                        const OpenWBEM::String& ns, const OpenWBEM::CIMObjectPath& objectName,
                        const OpenWBEM::String& resultClass, const OpenWBEM::String& role) override;

    Lines calls;
    OpenWBEM::CIMObjectPath askedFor; ///< by the last getInstance
    std::vector<OpenWBEM::CIMInstance> instances;
    std::vector<OpenWBEM::CIMObjectPath> paths;
    OpenWBEM::CIMInstance answer;
    OpenWBEM::CIMObjectPath created = OpenWBEM::CIMObjectPath(OpenWBEM::CIMNULL);
    OpenWBEM::CIMInstance given; ///< to the last createInstance or modifyInstance
    /// What invokeMethod does.
    std::function<OpenWBEM::CIMValue(OpenWBEM::CIMParamValueArray& out)> method =
        [](OpenWBEM::CIMParamValueArray&) { return OpenWBEM::CIMValue(OpenWBEM::CIMNULL); };
    bool servesMethods = true;
    bool servesAssociations = true;
    std::function<void()> atEnd = [] {}; ///< runs when all else is done, to throw
    std::function<void()> atEndOfGet;    ///< when set, the same for getInstance alone
};

/// Classes whose Provider qualifier is the key are served by that object.
class PlayedProviders final : public cimserver::host::ProviderSource {
public:
    bool WithInstanceProvider(const cimserver::host::Target& target,
                              const cimserver::host::CallInfo& info,
                              const cimserver::host::InstanceCall& call) override;
    bool WithAssociatorProvider(const cimserver::host::Target& target,
                                const cimserver::host::CallInfo& info,
                                const cimserver::host::AssociatorCall& call) override;
    bool WithMethodProvider(const cimserver::host::Target& target,
                            const OpenWBEM::String& methodName,
                            const cimserver::host::CallInfo& info,
                            const cimserver::host::MethodCall& call) override;

    std::map<std::string, PlayedProvider*> providers;
    Lines asked; ///< `OPERATION by USER: NAMESPACE:CLASS QUALIFIER`
    cimserver::host::CallInfo lastInfo;

private:
    PlayedProvider* Ask(const cimserver::host::Target& target,
                        const cimserver::host::CallInfo& info);
};

class OperationsTest : public testing::Test {
protected:
    OperationsTest();

    void Run(const cimserver::operations::Call& call, const std::string& nameSpace = "root/cimv2");
    /// `NUMBER TEXT` of the exception, which must be a CIMException.
    std::string Failure(const cimserver::operations::Call& call,
                        const std::string& nameSpace = "root/cimv2");

    cimserver::mof::Schema schema;
    PlayedProviders source;
    PlayedProvider base;
    PlayedProvider leaf;
    KeepingSink sink;
    bool mayChange = true; ///< anna
    cimserver::operations::Operations operations;
};

} // namespace operationstest
