#include "OW_config.h"

#include "OW_CppMethodProviderIFC.hpp"

namespace OpenWBEM {

CppMethodProviderIFC::~CppMethodProviderIFC() = default;

void CppMethodProviderIFC::getMethodProviderInfo(MethodProviderInfo&) {
}

CppMethodProviderIFC* CppMethodProviderIFC::getMethodProvider() {
    return this;
}

} // namespace OpenWBEM
