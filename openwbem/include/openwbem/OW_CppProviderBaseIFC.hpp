#pragma once

#include "OW_config.h"

#include "OW_DateTime.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_ProviderFwd.hpp"
#include "OW_SharedLibraryReference.hpp"
#include "OW_Types.hpp"

#include <atomic>

namespace OpenWBEM {

class CppInstanceProviderIFC;
class CppSecondaryInstanceProviderIFC;
class CppMethodProviderIFC;
#ifndef OW_DISABLE_ASSOCIATION_TRAVERSAL
class CppAssociatorProviderIFC;
#endif
class CppIndicationExportProviderIFC;
class CppPolledProviderIFC;
class CppIndicationProviderIFC;

// What every provider object is to the server.
//
// Life of an object: made by the library's factory function, asked for its interfaces, then
// initialize once before the first operation. At server start a further object is made and
// destroyed without initialize, only to ask for its interfaces. The destructor is the only sign
// that the end has come. The server owns the object through a reference and keeps the library
// loaded at least as long.
//
// Threads: initialize runs alone; after it the operations may be called from several threads at
// once. The members that are not virtual may be called at any time.
class OW_COMMON_API CppProviderBaseIFC : public virtual IntrusiveCountableBase {
public:
    CppProviderBaseIFC();
    CppProviderBaseIFC(const CppProviderBaseIFC& other);
    CppProviderBaseIFC& operator=(const CppProviderBaseIFC& other);
    ~CppProviderBaseIFC() override;

    // Before the first operation. What it throws becomes the answer to the request that needed the
    // provider; the object is destroyed then. The environment belongs to that request: keep its
    // logger and texts, not the environment.
    virtual void initialize(const ProviderEnvironmentIFCRef& env);

    // The object as one of the interfaces, or null when it does not serve that one. Each concrete
    // interface overrides its own to return itself.
    virtual CppInstanceProviderIFC* getInstanceProvider();
    virtual CppSecondaryInstanceProviderIFC* getSecondaryInstanceProvider();
    virtual CppMethodProviderIFC* getMethodProvider();
#ifndef OW_DISABLE_ASSOCIATION_TRAVERSAL
    virtual CppAssociatorProviderIFC* getAssociatorProvider();
#endif
    virtual CppIndicationExportProviderIFC* getIndicationExportProvider();
    virtual CppPolledProviderIFC* getPolledProvider();
    virtual CppIndicationProviderIFC* getIndicationProvider();

    // Whether an idle object may be destroyed and its library closed now.
    virtual bool canUnload();

    // When the last operation began; the server notes it before each one. 1970 before the first.
    DateTime getLastAccessTime() const;
    void updateAccessTime();

    // A persistent provider is never unloaded, whatever canUnload says.
    bool getPersist() const {
        return m_persist;
    }
    void setPersist(bool persist = true) {
        m_persist = persist;
    }

private:
    std::atomic<Int64> m_lastAccess; // microseconds since 1970
    std::atomic<bool> m_persist;
};

typedef SharedLibraryReference<IntrusiveReference<CppProviderBaseIFC>> CppProviderBaseIFCRef;

} // namespace OpenWBEM

// A provider library has two entry points with C linkage: the version of the interface it was built
// with, which must equal the server's to the letter, and the factory of its object, named after the
// library: libX.so has createProviderX. The class needs a default constructor.
#ifdef OW_STATIC_SERVICES
#define OW_PROVIDER_VERSION_FUNCTION
#else
#define OW_PROVIDER_VERSION_FUNCTION                                                               \
    extern "C" const char* getOWVersion() {                                                        \
        return OW_VERSION;                                                                         \
    }
#endif

#define OW_PROVIDERFACTORY(Class, id)                                                              \
    OW_PROVIDER_VERSION_FUNCTION                                                                   \
    extern "C" OpenWBEM::CppProviderBaseIFC* createProvider##id() {                                \
        return new Class;                                                                          \
    }

// For kinds of providers that no class names: the id is NO_ID.
#define OW_PROVIDERFACTORY_NOID(Class, name) OW_PROVIDERFACTORY(Class, NO_ID)
#define OW_NOIDPROVIDERFACTORY(Class) OW_PROVIDERFACTORY(Class, NO_ID)
