// An object together with the library that its code comes from.
#pragma once

#include "OW_IntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_SharedLibrary.hpp"
#include "OW_config.h"

#include <utility>

namespace OpenWBEM {

// T is an IntrusiveReference. The object is released before the library, also when another one is
// assigned: code must not be unmapped while a destructor of it is still to run.
template <class T>
class SharedLibraryReference {
public:
    typedef typename T::element_type element_type;

    SharedLibraryReference() = default;
    SharedLibraryReference(const SharedLibraryRef& library, const T& object)
        : m_library(library), m_object(object) {}
    SharedLibraryReference(const SharedLibraryRef& library, element_type* object)
        : m_library(library), m_object(object) {}
    // The same library with another object of it, for instance another interface of one provider.
    template <class U>
    SharedLibraryReference(const SharedLibraryReference<U>& other, element_type* object)
        : m_library(other.getLibRef()), m_object(object) {}
    SharedLibraryReference(const SharedLibraryReference&) = default;
    SharedLibraryReference(SharedLibraryReference&&) noexcept = default;
    ~SharedLibraryReference() = default;

    SharedLibraryReference& operator=(SharedLibraryReference other) noexcept {
        swap(other);
        return *this;
    }

    element_type* operator->() const { return m_object.getPtr(); }
    element_type& operator*() const { return *m_object; }
    element_type* getPtr() const { return m_object.getPtr(); }
    bool isNull() const { return !m_object; }
    const SharedLibraryRef& getLibRef() const { return m_library; }
    OW_SAFE_BOOL(static_cast<bool>(m_object))

    void swap(SharedLibraryReference& other) noexcept {
        m_library.swap(other.m_library);
        m_object.swap(other.m_object);
    }

private:
    // In this order: members are destroyed from the last to the first.
    SharedLibraryRef m_library;
    T m_object;
};

} // namespace OpenWBEM
