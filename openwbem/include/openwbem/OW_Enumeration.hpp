#pragma once

#include "OW_config.h"

#include "OW_CIMFwd.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_EnumerationException.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"

#include <cstddef>
#include <deque>
#include <utility>

namespace OpenWBEM {

// What Enumeration needs to know of its elements and of failures, apart from the template.
namespace EnumerationSupport {

// Elements that can be null are refused when they are. The overload for everything else accepts.
template <typename T>
inline bool isNull(const T&) {
    return false;
}
OW_COMMON_API bool isNull(const CIMInstance& value);
OW_COMMON_API bool isNull(const CIMObjectPath& value);

[[noreturn]] OW_COMMON_API void throwEmpty();
[[noreturn]] OW_COMMON_API void throwDamaged();

} // namespace EnumerationSupport

// A queue, first in, first out. Copies share one queue: what one takes out is gone for all.
// An element that comes out is independent of the one that went in.
//
// Adding a null CIM object throws NULLCOWIntrusiveReferenceException and spoils the queue: from
// then on every extraction throws EnumerationException, until clear().
//
// Threads: one at a time for all enumerations that share a queue.
template <typename T>
class Enumeration {
public:
    Enumeration() : m_queue(new Queue) {}

    bool hasMoreElements() const { return !m_queue->elements.empty(); }
    std::size_t numberOfElements() const { return m_queue->elements.size(); }

    // EnumerationException when there is none left.
    T nextElement() {
        std::deque<T>& elements = extractable();
        T front(std::move(elements.front()));
        elements.pop_front();
        return front;
    }
    void nextElement(T& out) { out = nextElement(); }

    void addElement(const T& value) {
        if (EnumerationSupport::isNull(value)) {
            m_queue->damaged = true;
            throwNullCOWIntrusiveReference();
        }
        m_queue->elements.push_back(value);
    }

    void clear() {
        m_queue->elements.clear();
        m_queue->damaged = false;
    }

private:
    struct Queue : public IntrusiveCountableBase {
        Queue() : damaged(false) {}
        ~Queue() override = default;
        std::deque<T> elements;
        bool damaged;
    };

    std::deque<T>& extractable() {
        if (m_queue->damaged) {
            EnumerationSupport::throwDamaged();
        }
        if (m_queue->elements.empty()) {
            EnumerationSupport::throwEmpty();
        }
        return m_queue->elements;
    }

    IntrusiveReference<Queue> m_queue;
};

} // namespace OpenWBEM
