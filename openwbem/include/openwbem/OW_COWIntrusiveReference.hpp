// Copy-on-write handle: what the classes of the object model are made of.
#pragma once

#include "OW_COWIntrusiveCountableBase.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

// Throws NULLCOWIntrusiveReferenceException, a class without a public name: catch it as Exception.
[[noreturn]] void throwNullCOWIntrusiveReference();

// Shares a T derived from COWIntrusiveCountableBase. Reading through a const handle never copies;
// access through a non-const handle first makes the data its own when it is shared (with T's copy
// constructor). Dereferencing a null handle throws. A handle belongs to one thread at a time;
// handles that share data may be read, copied, changed and dropped in several threads.
template <class T>
class COWIntrusiveReference {
public:
    typedef T element_type;

    COWIntrusiveReference() : m_object(nullptr) {}
    // Takes ownership of an object that no handle holds yet.
    explicit COWIntrusiveReference(T* object) : m_object(object) { addUse(); }
    COWIntrusiveReference(const COWIntrusiveReference& other) : m_object(other.m_object) {
        addUse();
    }
    COWIntrusiveReference(COWIntrusiveReference&& other) noexcept : m_object(other.m_object) {
        other.m_object = nullptr;
    }
    ~COWIntrusiveReference() {
        if (m_object && m_object->dropUse()) {
            delete m_object;
        }
    }

    COWIntrusiveReference& operator=(COWIntrusiveReference other) noexcept {
        swap(other);
        return *this;
    }
    COWIntrusiveReference& operator=(T* object) {
        COWIntrusiveReference(object).swap(*this);
        return *this;
    }

    const T* operator->() const { return checked(); }
    const T& operator*() const { return *checked(); }
    T* operator->() { return detached(); }
    T& operator*() { return *detached(); }
    // Null when the handle is null; never copies.
    const T* getPtr() const { return m_object; }
    OW_SAFE_BOOL(m_object != nullptr)

    void swap(COWIntrusiveReference& other) noexcept {
        T* const mine = m_object;
        m_object = other.m_object;
        other.m_object = mine;
    }

private:
    void addUse() {
        if (m_object) {
            m_object->addUse();
        }
    }
    const T* checked() const {
        if (!m_object) {
            throwNullCOWIntrusiveReference();
        }
        return m_object;
    }
    T* detached() {
        if (!m_object) {
            throwNullCOWIntrusiveReference();
        }
        if (m_object->isShared()) {
            *this = new T(*static_cast<const T*>(m_object));
        }
        return m_object;
    }

    T* m_object;
};

// Identity, not value: two handles are equal when they share their data.
template <class T>
bool operator==(const COWIntrusiveReference<T>& a, const COWIntrusiveReference<T>& b) {
    return a.getPtr() == b.getPtr();
}
template <class T>
bool operator!=(const COWIntrusiveReference<T>& a, const COWIntrusiveReference<T>& b) {
    return a.getPtr() != b.getPtr();
}

template <class T>
void swap(COWIntrusiveReference<T>& a, COWIntrusiveReference<T>& b) noexcept {
    a.swap(b);
}

} // namespace OpenWBEM
