// Records every call of its life. Built several times, under the id RECORDING_ID.
#include "cimserver/host/providers/Plain.hpp"
#include "cimserver/host/providers/Record.hpp"

#include "OW_InstanceProviderInfo.hpp"

#include <stdexcept>
#include <string>

#define RECORDING_TEXT_OF(id) #id
#define RECORDING_TEXT(id) RECORDING_TEXT_OF(id)

namespace {

void Note(const std::string& what) {
    hosttest::Record(RECORDING_TEXT(RECORDING_ID) ": " + what);
}

bool IsOn(const std::string& name) {
    return hosttest::IsOn(RECORDING_TEXT(RECORDING_ID) ": " + name);
}

struct Code {
    Code() { Note("opened"); }
    ~Code() { Note("closed"); }
};
const Code code;

class Recording : public Plain {
public:
    Recording() {
        Note("made");
        setPersist(IsOn("persists"));
    }
    ~Recording() override { Note("destroyed"); }

    void initialize(const Env& env) override {
        Note("initialize for " + std::string(env->getUserName().c_str()));
        if (hosttest::TakeSwitch(RECORDING_TEXT(RECORDING_ID) ": initialize fails once")) {
            throw std::runtime_error("not yet");
        }
    }
    OpenWBEM::CppPolledProviderIFC* getPolledProvider() override {
        Note("getPolledProvider");
        // Only asked whether it is there.
        return IsOn("polls") ? reinterpret_cast<OpenWBEM::CppPolledProviderIFC*>(this) : nullptr;
    }
    OpenWBEM::CppIndicationExportProviderIFC* getIndicationExportProvider() override {
        Note("getIndicationExportProvider");
        return nullptr;
    }
    OpenWBEM::CppInstanceProviderIFC* getInstanceProvider() override {
        Note("getInstanceProvider");
        return this;
    }
    OpenWBEM::CppSecondaryInstanceProviderIFC* getSecondaryInstanceProvider() override {
        Note("getSecondaryInstanceProvider");
        return nullptr;
    }
    OpenWBEM::CppAssociatorProviderIFC* getAssociatorProvider() override {
        Note("getAssociatorProvider");
        return nullptr;
    }
    OpenWBEM::CppMethodProviderIFC* getMethodProvider() override {
        Note("getMethodProvider");
        return nullptr;
    }
    OpenWBEM::CppIndicationProviderIFC* getIndicationProvider() override {
        Note("getIndicationProvider");
        return nullptr;
    }
    void getInstanceProviderInfo(OpenWBEM::InstanceProviderInfo& info) override {
        Note("getInstanceProviderInfo");
        for (const auto& entry : hosttest::RegistrationsOf(RECORDING_TEXT(RECORDING_ID))) {
            OpenWBEM::StringArray namespaces;
            for (const auto& name : entry.namespaces) {
                namespaces.push_back(name.c_str());
            }
            info.addInstrumentedClass(OpenWBEM::InstClassInfo(entry.className.c_str(), namespaces));
        }
    }
    bool canUnload() override {
        Note("canUnload");
        return !IsOn("canUnload answers no");
    }
    void enumInstanceNames(const Env&, const OpenWBEM::String&, const OpenWBEM::String& className,
                           OpenWBEM::CIMObjectPathResultHandlerIFC&,
                           const OpenWBEM::CIMClass&) override {
        Note("enumInstanceNames " + std::string(className.c_str()));
    }
};

const char* Version() {
    Note("getOWVersion");
    return OW_VERSION;
}

} // namespace

extern "C" const char* getOWVersion() {
    return Version();
}

#define RECORDING_CREATE_OF(id) createProvider##id
#define RECORDING_CREATE(id) RECORDING_CREATE_OF(id)
extern "C" OpenWBEM::CppProviderBaseIFC* RECORDING_CREATE(RECORDING_ID)() {
    return new Recording;
}
#ifdef RECORDING_SECOND_ID
extern "C" OpenWBEM::CppProviderBaseIFC* RECORDING_CREATE(RECORDING_SECOND_ID)() {
    return new Recording;
}
#endif
