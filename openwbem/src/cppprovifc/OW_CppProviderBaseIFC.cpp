#include "OW_config.h"

#include "OW_CppProviderBaseIFC.hpp"

#include "OW_ProviderEnvironmentIFC.hpp"

namespace OpenWBEM {

CppProviderBaseIFC::CppProviderBaseIFC() : m_lastAccess(0), m_persist(false) {
}

CppProviderBaseIFC::CppProviderBaseIFC(const CppProviderBaseIFC& other)
    : IntrusiveCountableBase(other), m_lastAccess(other.m_lastAccess.load()),
      m_persist(other.m_persist.load()) {
}

CppProviderBaseIFC& CppProviderBaseIFC::operator=(const CppProviderBaseIFC& other) {
    m_lastAccess = other.m_lastAccess.load();
    m_persist = other.m_persist.load();
    return *this;
}

CppProviderBaseIFC::~CppProviderBaseIFC() = default;

void CppProviderBaseIFC::initialize(const ProviderEnvironmentIFCRef&) {
}

CppInstanceProviderIFC* CppProviderBaseIFC::getInstanceProvider() {
    return nullptr;
}

CppSecondaryInstanceProviderIFC* CppProviderBaseIFC::getSecondaryInstanceProvider() {
    return nullptr;
}

CppMethodProviderIFC* CppProviderBaseIFC::getMethodProvider() {
    return nullptr;
}

#ifndef OW_DISABLE_ASSOCIATION_TRAVERSAL
CppAssociatorProviderIFC* CppProviderBaseIFC::getAssociatorProvider() {
    return nullptr;
}
#endif

CppIndicationExportProviderIFC* CppProviderBaseIFC::getIndicationExportProvider() {
    return nullptr;
}

CppPolledProviderIFC* CppProviderBaseIFC::getPolledProvider() {
    return nullptr;
}

CppIndicationProviderIFC* CppProviderBaseIFC::getIndicationProvider() {
    return nullptr;
}

bool CppProviderBaseIFC::canUnload() {
    return true;
}

DateTime CppProviderBaseIFC::getLastAccessTime() const {
    const Int64 microseconds = m_lastAccess;
    return DateTime(microseconds / 1000000, static_cast<UInt32>(microseconds % 1000000));
}

void CppProviderBaseIFC::updateAccessTime() {
    DateTime now;
    now.setToCurrent();
    m_lastAccess = Int64(now.get()) * 1000000 + now.getMicrosecond();
}

} // namespace OpenWBEM
