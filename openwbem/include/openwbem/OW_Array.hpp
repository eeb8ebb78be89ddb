// The array of the provider API: a copy-on-write handle of a std::vector.
#pragma once

#include "OW_ArrayFwd.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_Exception.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(OutOfBounds, OW_COMMON_API)

// Throws OutOfBoundsException naming both numbers.
[[noreturn]] OW_COMMON_API void throwArrayOutOfBoundsException(size_t size, size_t index);

// Copies share their elements until one of them is changed. Every non-const member, begin() and
// operator[] included, first makes the elements its own; const members never copy. An array without
// elements need not own anything. operator[] and remove check the index, front, back and iterators
// are unchecked. An Array belongs to one thread at a time; Arrays that share elements may be used
// in several threads.
template <class T>
class Array {
    typedef std::vector<T> V;
    struct Elements : COWIntrusiveCountableBase {
        Elements() = default;
        explicit Elements(V elements) : vector(std::move(elements)) {}
        V vector;
    };
    template <class I>
    using RequireIterator = typename std::enable_if<!std::is_integral<I>::value>::type;

public:
    typedef typename V::value_type value_type;
    typedef typename V::pointer pointer;
    typedef typename V::const_pointer const_pointer;
    typedef typename V::iterator iterator;
    typedef typename V::const_iterator const_iterator;
    typedef typename V::reference reference;
    typedef typename V::const_reference const_reference;
    typedef typename V::size_type size_type;
    typedef typename V::difference_type difference_type;
    typedef typename V::reverse_iterator reverse_iterator;
    typedef typename V::const_reverse_iterator const_reverse_iterator;

    Array() = default;
    // Takes over the elements and deletes the vector; null gives an empty array.
    explicit Array(V* toWrap) {
        if (toWrap) {
            m_elements = new Elements(std::move(*toWrap));
            delete toWrap;
        }
    }
    explicit Array(size_type n) : m_elements(new Elements(V(n))) {}
    Array(size_type n, const T& value) : m_elements(new Elements(V(n, value))) {}
    template <class I, class = RequireIterator<I>>
    Array(I first, I last) : m_elements(new Elements(V(first, last))) {}

    size_type size() const { return m_elements ? m_elements->vector.size() : 0; }
    bool empty() const { return size() == 0; }
    size_type capacity() const { return m_elements ? m_elements->vector.capacity() : 0; }
    void reserve(size_type n) { own().reserve(n); }
    void resize(size_type n) { own().resize(n); }
    void resize(size_type n, const T& value) { own().resize(n, value); }
    void clear() { m_elements = COWIntrusiveReference<Elements>(); }

    const_iterator begin() const { return m_elements ? m_elements->vector.begin() : none(); }
    const_iterator end() const { return m_elements ? m_elements->vector.end() : none(); }
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
    iterator begin() { return own().begin(); }
    iterator end() { return own().end(); }
    reverse_iterator rbegin() { return own().rbegin(); }
    reverse_iterator rend() { return own().rend(); }

    const_reference operator[](size_type index) const {
        checkIndex(index);
        return m_elements->vector[index];
    }
    reference operator[](size_type index) {
        checkIndex(index);
        return own()[index];
    }
    const_reference front() const { return m_elements->vector.front(); }
    const_reference back() const { return m_elements->vector.back(); }
    reference front() { return own().front(); }
    reference back() { return own().back(); }

    void push_back(const T& value) { own().push_back(value); }
    void push_back(T&& value) { own().push_back(std::move(value)); }
    void append(const T& value) { own().push_back(value); }
    void append(T&& value) { own().push_back(std::move(value)); }
    Array& operator+=(const T& value) {
        own().push_back(value);
        return *this;
    }
    void appendArray(const Array& other) {
        // One by one, so that `other` may be this array.
        const size_type added = other.size();
        V& elements = own();
        for (size_type i = 0; i < added; ++i) {
            elements.push_back(other.m_elements.getPtr()->vector[i]);
        }
    }
    void pop_back() { own().pop_back(); }

    // Iterators of this array stay good as positions even when it was copied after they were taken.
    iterator insert(iterator position, const T& value) {
        const difference_type offset = offsetOf(position);
        return own().insert(at(offset), value);
    }
    template <class I, class = RequireIterator<I>>
    void insert(iterator position, I first, I last) {
        const difference_type offset = offsetOf(position);
        own().insert(at(offset), first, last);
    }
    // Before the element of that index; the size as index appends.
    void insert(size_type position, const T& value) {
        own().insert(at(static_cast<difference_type>(position)), value);
    }
    iterator erase(iterator position) {
        const difference_type offset = offsetOf(position);
        return own().erase(at(offset));
    }
    iterator erase(iterator first, iterator last) {
        const difference_type from = offsetOf(first);
        const difference_type to = offsetOf(last);
        return own().erase(at(from), at(to));
    }
    void remove(size_type index) {
        checkIndex(index);
        own().erase(at(static_cast<difference_type>(index)));
    }
    // The elements from `begin` up to but not including `end`.
    void remove(size_type begin, size_type end) {
        checkIndex(begin);
        checkIndex(end == 0 ? 0 : end - 1);
        if (begin < end) {
            own().erase(at(static_cast<difference_type>(begin)),
                        at(static_cast<difference_type>(end)));
        }
    }
    void swap(Array& other) noexcept { m_elements.swap(other.m_elements); }

private:
    static const_iterator none() { return const_iterator(); }
    void checkIndex(size_type index) const {
        if (index >= size()) {
            throwArrayOutOfBoundsException(size(), index);
        }
    }
    V& own() {
        if (!m_elements) {
            m_elements = new Elements;
        }
        return m_elements->vector;
    }
    difference_type offsetOf(iterator position) {
        return m_elements ? position - const_cast<V&>(m_elements.getPtr()->vector).begin() : 0;
    }
    iterator at(difference_type offset) { return own().begin() + offset; }

    COWIntrusiveReference<Elements> m_elements;
};

template <class T>
bool operator==(const Array<T>& a, const Array<T>& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}
template <class T>
bool operator!=(const Array<T>& a, const Array<T>& b) {
    return !(a == b);
}
template <class T>
bool operator<(const Array<T>& a, const Array<T>& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}
template <class T>
bool operator>(const Array<T>& a, const Array<T>& b) {
    return b < a;
}
template <class T>
bool operator<=(const Array<T>& a, const Array<T>& b) {
    return !(b < a);
}
template <class T>
bool operator>=(const Array<T>& a, const Array<T>& b) {
    return !(a < b);
}
template <class T>
void swap(Array<T>& a, Array<T>& b) noexcept {
    a.swap(b);
}

typedef Array<UInt8> UInt8Array;
typedef Array<Int8> Int8Array;
typedef Array<UInt16> UInt16Array;
typedef Array<Int16> Int16Array;
typedef Array<UInt32> UInt32Array;
typedef Array<Int32> Int32Array;
typedef Array<UInt64> UInt64Array;
typedef Array<Int64> Int64Array;
typedef Array<Real32> Real32Array;
typedef Array<Real64> Real64Array;

} // namespace OpenWBEM
