// Base of objects that carry their own reference count: providers, loggers, environments.
#pragma once

#include "OW_config.h"

#include <atomic>

namespace OpenWBEM {

// The count starts at 0 and belongs to the object, not to its value: copying and assigning leave it
// alone. IntrusiveReference counts; whoever brings the count back to 0 deletes the object, so an
// object on the stack or with static storage is fine as long as no reference is made to it.
// References may be made and dropped in any thread.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): deletion is the last handle's.
class OW_COMMON_API IntrusiveCountableBase {
public:
    friend void IntrusiveReferenceAddRef(const IntrusiveCountableBase* object) {
        object->m_useCount.fetch_add(1, std::memory_order_relaxed);
    }
    friend void IntrusiveReferenceRelease(const IntrusiveCountableBase* object) {
        if (object->m_useCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete object;
        }
    }

protected:
    IntrusiveCountableBase() : m_useCount(0) {}
    IntrusiveCountableBase(const IntrusiveCountableBase&) : m_useCount(0) {}
    IntrusiveCountableBase& operator=(const IntrusiveCountableBase&) { return *this; }
    virtual ~IntrusiveCountableBase();

private:
    mutable std::atomic<int> m_useCount;
};

} // namespace OpenWBEM
