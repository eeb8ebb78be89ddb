// Serves instances, associations and methods, and registers what the test says. Built several
// times, under the id SERVING_ID.
#include "cimserver/host/providers/Record.hpp"

#include "OW_AssociatorProviderInfo.hpp"
#include "OW_CppProviderIncludes.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_MethodProviderInfo.hpp"

#include <string>

#define SERVING_TEXT_OF(id) #id
#define SERVING_TEXT(id) SERVING_TEXT_OF(id)

namespace {

OpenWBEM::StringArray Array(const std::vector<std::string>& texts) {
    OpenWBEM::StringArray array;
    for (const auto& text : texts) {
        array.push_back(text.c_str());
    }
    return array;
}

void Note(const std::string& what) {
    hosttest::Record(SERVING_TEXT(SERVING_ID) ": " + what);
}

std::vector<hosttest::Registration> RegisteredFor(const std::string& kind) {
    return hosttest::RegistrationsOf(SERVING_TEXT(SERVING_ID) " " + kind);
}

class Serving : public OpenWBEM::CppMethodProviderIFC, public OpenWBEM::CppAssociatorProviderIFC {
public:
    using Env = OpenWBEM::ProviderEnvironmentIFCRef;

    void initialize(const Env& env) override {
        Note("initialize for " + std::string(env->getUserName().c_str()));
    }
    void getInstanceProviderInfo(OpenWBEM::InstanceProviderInfo& info) override {
        for (const auto& entry : RegisteredFor("instances")) {
            info.addInstrumentedClass(
                OpenWBEM::InstClassInfo(entry.className.c_str(), Array(entry.namespaces)));
        }
    }
    void getAssociatorProviderInfo(OpenWBEM::AssociatorProviderInfo& info) override {
        for (const auto& entry : RegisteredFor("associations")) {
            info.addInstrumentedClass(
                OpenWBEM::InstClassInfo(entry.className.c_str(), Array(entry.namespaces)));
        }
    }
    void getMethodProviderInfo(OpenWBEM::MethodProviderInfo& info) override {
        for (const auto& entry : RegisteredFor("methods")) {
            info.addInstrumentedClass(OpenWBEM::MethClassInfo(
                entry.className.c_str(), Array(entry.namespaces), Array(entry.methods)));
        }
    }

    void enumInstanceNames(const Env&, const OpenWBEM::String&, const OpenWBEM::String&,
                           OpenWBEM::CIMObjectPathResultHandlerIFC&,
                           const OpenWBEM::CIMClass&) override {
        Note("enumInstanceNames");
    }
    OpenWBEM::CIMInstance
    getInstance(const Env&, const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                OpenWBEM::WBEMFlags::ELocalOnlyFlag, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                OpenWBEM::WBEMFlags::EIncludeClassOriginFlag, const OpenWBEM::StringArray*,
                const OpenWBEM::CIMClass&) override {
        return OpenWBEM::CIMInstance();
    }
    OpenWBEM::CIMObjectPath createInstance(const Env&, const OpenWBEM::String&,
                                           const OpenWBEM::CIMInstance&) override {
        return OpenWBEM::CIMObjectPath();
    }
    void modifyInstance(const Env&, const OpenWBEM::String&, const OpenWBEM::CIMInstance&,
                        const OpenWBEM::CIMInstance&, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                        const OpenWBEM::StringArray*, const OpenWBEM::CIMClass&) override {}
    void deleteInstance(const Env&, const OpenWBEM::String&,
                        const OpenWBEM::CIMObjectPath&) override {}
    OpenWBEM::CIMValue invokeMethod(const Env&, const OpenWBEM::String&,
                                    const OpenWBEM::CIMObjectPath&, const OpenWBEM::String& name,
                                    const OpenWBEM::CIMParamValueArray&,
                                    OpenWBEM::CIMParamValueArray&) override {
        Note("invokeMethod " + std::string(name.c_str()));
        if (hosttest::IsOn("invokeMethod throws")) {
            throw std::string("no exception class at all");
        }
        return OpenWBEM::CIMValue(OpenWBEM::CIMNULL);
    }
    void associators(const Env&, OpenWBEM::CIMInstanceResultHandlerIFC&, const OpenWBEM::String&,
                     const OpenWBEM::CIMObjectPath&, const OpenWBEM::String&,
                     const OpenWBEM::String&, const OpenWBEM::String&, const OpenWBEM::String&,
                     OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                     OpenWBEM::WBEMFlags::EIncludeClassOriginFlag,
                     const OpenWBEM::StringArray*) override {}
    void associatorNames(const Env&, OpenWBEM::CIMObjectPathResultHandlerIFC&,
                         const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                         const OpenWBEM::String&, const OpenWBEM::String&, const OpenWBEM::String&,
                         const OpenWBEM::String&) override {}
    void references(const Env&, OpenWBEM::CIMInstanceResultHandlerIFC&, const OpenWBEM::String&,
                    const OpenWBEM::CIMObjectPath&, const OpenWBEM::String&,
                    const OpenWBEM::String&, OpenWBEM::WBEMFlags::EIncludeQualifiersFlag,
                    OpenWBEM::WBEMFlags::EIncludeClassOriginFlag,
                    const OpenWBEM::StringArray*) override {}
    void referenceNames(const Env&, OpenWBEM::CIMObjectPathResultHandlerIFC&,
                        const OpenWBEM::String&, const OpenWBEM::CIMObjectPath&,
                        const OpenWBEM::String& assocClass, const OpenWBEM::String&) override {
        Note("referenceNames " + std::string(assocClass.c_str()));
    }
};

} // namespace

// The id is pasted to a name: it has to be expanded before.
#define SERVING_FACTORY(id) OW_PROVIDERFACTORY(Serving, id)
SERVING_FACTORY(SERVING_ID)
