// Base of the shared data behind the copy-on-write handles of the object model.
#pragma once

#include "OW_config.h"

#include <atomic>

namespace OpenWBEM {

template <class T>
class COWIntrusiveReference;

// Carries the number of handles. A copy of the data starts a count of its own. There is no virtual
// destructor: COWIntrusiveReference<T> deletes what it made, as a T.
class OW_COMMON_API COWIntrusiveCountableBase {
protected:
    COWIntrusiveCountableBase() : m_useCount(0) {}
    COWIntrusiveCountableBase(const COWIntrusiveCountableBase&) : m_useCount(0) {}
    COWIntrusiveCountableBase& operator=(const COWIntrusiveCountableBase&) { return *this; }
    ~COWIntrusiveCountableBase() = default;

private:
    template <class T>
    friend class COWIntrusiveReference;

    void addUse() const { m_useCount.fetch_add(1, std::memory_order_relaxed); }

    // True when the caller held the last handle and has to delete the data. With a count of 1
    // nobody else is left who could raise it, so the read-modify-write can be spared.
    bool dropUse() const {
        return !isShared() || m_useCount.fetch_sub(1, std::memory_order_acq_rel) == 1;
    }

    // The acquire makes what former holders wrote visible before the data is changed in place.
    bool isShared() const { return m_useCount.load(std::memory_order_acquire) != 1; }

    mutable std::atomic<unsigned> m_useCount;
};

} // namespace OpenWBEM
