#pragma once

#include "OW_CppProviderIncludes.hpp"

#include "OW_ResultHandlers.hpp"

// A provider with as little in it as the interfaces allow: it refuses every operation.
template <class... Bases>
class RefusingProvider : public Bases... {
public:
    void enumInstanceNames(const OpenWBEM::ProviderEnvironmentIFCRef&, const OpenWBEM::String&,
                           const OpenWBEM::String&, OpenWBEM::CIMObjectPathResultHandlerIFC&,
                           const OpenWBEM::CIMClass&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
    OpenWBEM::CIMInstance getInstance(const OpenWBEM::ProviderEnvironmentIFCRef&,
                                      const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                                      OpenWBEM::WBEMFlags::ELocalOnlyFlag,
                                      OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                                      OpenWBEM::WBEMFlags::EIncludeClassOriginFlag,
                                      const OpenWBEM::StringArray*,
                                      const OpenWBEM::CIMClass&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
    OpenWBEM::CIMObjectPath createInstance(const OpenWBEM::ProviderEnvironmentIFCRef&,
                                           const OpenWBEM::String&,
                                           const OpenWBEM::CIMInstance&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
    void modifyInstance(const OpenWBEM::ProviderEnvironmentIFCRef&, const OpenWBEM::String&,
                        const OpenWBEM::CIMInstance&, const OpenWBEM::CIMInstance&,
                        OpenWBEM::WBEMFlags::EIncludeQualifiersFlag, const OpenWBEM::StringArray*,
                        const OpenWBEM::CIMClass&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
    void deleteInstance(const OpenWBEM::ProviderEnvironmentIFCRef&, const OpenWBEM::String&,
                        const OpenWBEM::CIMObjectPath&) override {
        OW_THROWCIM(OpenWBEM::CIMException::NOT_SUPPORTED);
    }
};

template <class Base>
class RefusingMethods : public Base {
public:
    OpenWBEM::CIMValue invokeMethod(const OpenWBEM::ProviderEnvironmentIFCRef&,
                                    const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                                    const OpenWBEM::String&, const OpenWBEM::CIMParamValueArray&,
                                    OpenWBEM::CIMParamValueArray&) override {
        OW_THROWCIM(OpenWBEM::CIMException::METHOD_NOT_AVAILABLE);
    }
};

template <class Base>
class RefusingAssociations : public Base {
public:
    void associators(const OpenWBEM::ProviderEnvironmentIFCRef&,
                     OpenWBEM::CIMInstanceResultHandlerIFC&, const OpenWBEM::String&,
                     const OpenWBEM::CIMObjectPath&, const OpenWBEM::String&,
                     const OpenWBEM::String&, const OpenWBEM::String&, const OpenWBEM::String&,
                     OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                     OpenWBEM::WBEMFlags::EIncludeClassOriginFlag,
                     const OpenWBEM::StringArray*) override {}
    void associatorNames(const OpenWBEM::ProviderEnvironmentIFCRef&,
                         OpenWBEM::CIMObjectPathResultHandlerIFC&, const OpenWBEM::String&,
                         const OpenWBEM::CIMObjectPath&, const OpenWBEM::String&,
                         const OpenWBEM::String&, const OpenWBEM::String&,
                         const OpenWBEM::String&) override {}
    void references(const OpenWBEM::ProviderEnvironmentIFCRef&,
                    OpenWBEM::CIMInstanceResultHandlerIFC&, const OpenWBEM::String&,
                    const OpenWBEM::CIMObjectPath&, const OpenWBEM::String&,
                    const OpenWBEM::String&, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                    OpenWBEM::WBEMFlags::EIncludeClassOriginFlag,
                    const OpenWBEM::StringArray*) override {}
    void referenceNames(const OpenWBEM::ProviderEnvironmentIFCRef&,
                        OpenWBEM::CIMObjectPathResultHandlerIFC&, const OpenWBEM::String&,
                        const OpenWBEM::CIMObjectPath&, const OpenWBEM::String&,
                        const OpenWBEM::String&) override {}
};

typedef RefusingProvider<OpenWBEM::CppInstanceProviderIFC> InstanceSample;

typedef RefusingMethods<OpenWBEM::CppMethodProviderIFC> MethodSample;

typedef RefusingAssociations<RefusingProvider<OpenWBEM::CppAssociatorProviderIFC>>
    AssociationSample;

// The two ways in which a library serves methods beside instances or associations.
typedef RefusingMethods<
    RefusingProvider<OpenWBEM::CppInstanceProviderIFC, OpenWBEM::CppMethodProviderIFC>>
    InstanceAndMethodSample;

typedef RefusingAssociations<RefusingMethods<
    RefusingProvider<OpenWBEM::CppMethodProviderIFC, OpenWBEM::CppAssociatorProviderIFC>>>
    MethodAndAssociationSample;
