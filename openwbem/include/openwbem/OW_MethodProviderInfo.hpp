#pragma once

#include "OW_config.h"

#include "OW_ProviderInfoBase.hpp"

namespace OpenWBEM {

// A class whose methods a provider registers for: no namespaces means all of them, no methods all
// of the class's.
struct OW_COMMON_API MethClassInfo {
    explicit MethClassInfo(const String& className_);
    MethClassInfo(const String& className_, const StringArray& namespaces_,
                  const StringArray& methods_);

    String className;
    StringArray namespaces;
    StringArray methods;
};

class OW_COMMON_API MethodProviderInfo : public ProviderInfoBase<MethClassInfo> {
public:
    MethodProviderInfo();
    ~MethodProviderInfo();
};

} // namespace OpenWBEM
