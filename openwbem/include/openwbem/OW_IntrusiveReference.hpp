// Handle to an object that carries its own count (OW_IntrusiveCountableBase.hpp).
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

#include <functional>

namespace OpenWBEM {

// Shares ownership of *getPtr(): the last handle deletes it. Dereferencing a null handle is
// undefined (nothing is checked). One handle belongs to one thread at a time; handles to one object
// may be copied and dropped in several threads. Any T works for which IntrusiveReferenceAddRef and
// IntrusiveReferenceRelease are found by the language's usual lookup.
template <class T>
class IntrusiveReference {
public:
    typedef T element_type;

    IntrusiveReference() : m_object(nullptr) {}
    IntrusiveReference(T* object) : m_object(object) { addRef(); }
    IntrusiveReference(const IntrusiveReference& other) : m_object(other.m_object) { addRef(); }
    IntrusiveReference(IntrusiveReference&& other) noexcept : m_object(other.m_object) {
        other.m_object = nullptr;
    }
    template <class U>
    IntrusiveReference(const IntrusiveReference<U>& other) : m_object(other.getPtr()) {
        addRef();
    }
    ~IntrusiveReference() {
        if (m_object) {
            IntrusiveReferenceRelease(m_object);
        }
    }

    IntrusiveReference& operator=(IntrusiveReference other) noexcept {
        swap(other);
        return *this;
    }
    IntrusiveReference& operator=(T* object) {
        IntrusiveReference(object).swap(*this);
        return *this;
    }

    T* getPtr() const { return m_object; }
    T& operator*() const { return *m_object; }
    T* operator->() const { return m_object; }
    OW_SAFE_BOOL(m_object != nullptr)

    void swap(IntrusiveReference& other) noexcept {
        T* const mine = m_object;
        m_object = other.m_object;
        other.m_object = mine;
    }

    // The same object as a U; null when it is none.
    template <class U>
    IntrusiveReference<U> cast_to() const {
        return IntrusiveReference<U>(dynamic_cast<U*>(m_object));
    }

private:
    void addRef() {
        if (m_object) {
            IntrusiveReferenceAddRef(m_object);
        }
    }

    T* m_object;
};

// Two handles are equal when they mean the same object, null included; the order is that of
// addresses.
template <class T, class U>
bool operator==(const IntrusiveReference<T>& a, const IntrusiveReference<U>& b) {
    return a.getPtr() == b.getPtr();
}
template <class T, class U>
bool operator!=(const IntrusiveReference<T>& a, const IntrusiveReference<U>& b) {
    return a.getPtr() != b.getPtr();
}
template <class T, class U>
bool operator==(const IntrusiveReference<T>& a, const U* b) {
    return a.getPtr() == b;
}
template <class T, class U>
bool operator!=(const IntrusiveReference<T>& a, const U* b) {
    return a.getPtr() != b;
}
template <class T, class U>
bool operator==(const T* a, const IntrusiveReference<U>& b) {
    return a == b.getPtr();
}
template <class T, class U>
bool operator!=(const T* a, const IntrusiveReference<U>& b) {
    return a != b.getPtr();
}
template <class T>
bool operator<(const IntrusiveReference<T>& a, const IntrusiveReference<T>& b) {
    return std::less<T*>()(a.getPtr(), b.getPtr());
}

template <class T>
void swap(IntrusiveReference<T>& a, IntrusiveReference<T>& b) noexcept {
    a.swap(b);
}

template <class T, class U>
IntrusiveReference<T> static_pointer_cast(const IntrusiveReference<U>& from) {
    return IntrusiveReference<T>(static_cast<T*>(from.getPtr()));
}
template <class T, class U>
IntrusiveReference<T> const_pointer_cast(const IntrusiveReference<U>& from) {
    return IntrusiveReference<T>(const_cast<T*>(from.getPtr()));
}
template <class T, class U>
IntrusiveReference<T> dynamic_pointer_cast(const IntrusiveReference<U>& from) {
    return from.template cast_to<T>();
}

} // namespace OpenWBEM
