#include "OW_config.h"

#include "OW_CppAssociatorProviderIFC.hpp"

#ifndef OW_DISABLE_ASSOCIATION_TRAVERSAL

namespace OpenWBEM {

CppAssociatorProviderIFC::~CppAssociatorProviderIFC() = default;

void CppAssociatorProviderIFC::getAssociatorProviderInfo(AssociatorProviderInfo&) {
}

CppAssociatorProviderIFC* CppAssociatorProviderIFC::getAssociatorProvider() {
    return this;
}

} // namespace OpenWBEM

#endif
