#include "OW_config.h"

#include "OW_AssociatorProviderInfo.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_MethodProviderInfo.hpp"

namespace OpenWBEM {

InstClassInfo::InstClassInfo(const String& className_) : className(className_) {
}

InstClassInfo::InstClassInfo(const String& className_, const StringArray& namespaces_)
    : className(className_), namespaces(namespaces_) {
}

MethClassInfo::MethClassInfo(const String& className_) : className(className_) {
}

MethClassInfo::MethClassInfo(const String& className_, const StringArray& namespaces_,
                             const StringArray& methods_)
    : className(className_), namespaces(namespaces_), methods(methods_) {
}

InstanceProviderInfo::InstanceProviderInfo() = default;
InstanceProviderInfo::~InstanceProviderInfo() = default;

AssociatorProviderInfo::AssociatorProviderInfo() = default;
AssociatorProviderInfo::~AssociatorProviderInfo() = default;

MethodProviderInfo::MethodProviderInfo() = default;
MethodProviderInfo::~MethodProviderInfo() = default;

} // namespace OpenWBEM
