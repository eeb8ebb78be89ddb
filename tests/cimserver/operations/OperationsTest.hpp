// What the tests of the operations share: a small schema, providers that are played, results kept.
#pragma once

#include "cimserver/host/Host.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Operations.hpp"

#include "OW_CIM.hpp"
#include "OW_CIMException.hpp"
#include "OW_CppInstanceProviderIFC.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace operationstest {

using Lines = std::vector<std::string>;

/// Keeps the results, each also as a line: `class X`, `name X`, `instance X`, `named PATH X`, `path
/// PATH`.
class KeepingSink final : public cimserver::operations::ResultSink {
public:
    void Class(const OpenWBEM::CIMClass& cimClass) override;
    void ClassName(const OpenWBEM::String& name) override;
    void Instance(const OpenWBEM::CIMInstance& instance) override;
    void NamedInstance(const OpenWBEM::CIMInstance& instance) override;
    void InstanceName(const OpenWBEM::CIMObjectPath& path) override;

    Lines lines;
    std::vector<OpenWBEM::CIMClass> classes;
    std::vector<OpenWBEM::CIMInstance> instances;
};

/// Writes down how it is called and does what the test tells it.
class PlayedProvider final : public OpenWBEM::CppInstanceProviderIFC {
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
    OpenWBEM::CIMObjectPath createInstance(const Env&, const OpenWBEM::String&,
                                           const OpenWBEM::CIMInstance&) override;
    void modifyInstance(const Env&, const OpenWBEM::String&, const OpenWBEM::CIMInstance&,
                        const OpenWBEM::CIMInstance&, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                        const OpenWBEM::StringArray*, const OpenWBEM::CIMClass&) override;
    void deleteInstance(const Env&, const OpenWBEM::String&,
                        const OpenWBEM::CIMObjectPath&) override;

    Lines calls;
    OpenWBEM::CIMObjectPath askedFor; ///< by the last getInstance
    std::vector<OpenWBEM::CIMInstance> instances;
    std::vector<OpenWBEM::CIMObjectPath> paths;
    OpenWBEM::CIMInstance answer;
    std::function<void()> atEnd = [] {}; ///< runs when all else is done, to throw
};

/// Classes whose Provider qualifier is the key are served by that object.
class PlayedProviders final : public cimserver::host::ProviderSource {
public:
    bool WithInstanceProvider(const cimserver::host::Target& target,
                              const cimserver::host::CallInfo& info,
                              const cimserver::host::InstanceCall& call) override;

    std::map<std::string, PlayedProvider*> providers;
    Lines asked; ///< `OPERATION by USER: NAMESPACE:CLASS QUALIFIER`
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
    cimserver::operations::Operations operations;
};

} // namespace operationstest
