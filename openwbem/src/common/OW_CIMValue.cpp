#include "OW_CIMValue.hpp"

#include "OW_CIMValueVisit.hpp"

#include <memory>
#include <utility>

namespace OpenWBEM {

template <class T>
void CIMValue::construct(const T& x) {
    static_assert(sizeof(T) <= StorageSize && alignof(T) <= 8, "the storage holds every type");
    ::new (static_cast<void*>(m_storage)) T(x);
    m_type = CIMKindOf<T>::type;
    m_isArray = CIMKindOf<T>::isArray;
}

void CIMValue::checkNotNull() const {
    if (!*this) {
        throwNullCOWIntrusiveReference();
    }
}

CIMValue::CIMValue(CIMNULL_t) : m_storage(), m_type(CIMDataType::CIMNULL), m_isArray(false) {
}

CIMValue::CIMValue(const CIMValue& other) : m_type(CIMDataType::CIMNULL), m_isArray(false) {
    if (other) {
        other.visit([this](const auto& x) { construct(x); });
    }
}

CIMValue::CIMValue(CIMValue&& other) noexcept : m_type(CIMDataType::CIMNULL), m_isArray(false) {
    *this = std::move(other);
}

void CIMValue::setNull() {
    if (*this) {
        visit([](const auto& x) {
            using T = std::decay_t<decltype(x)>;
            std::destroy_at(const_cast<T*>(&x));
        });
        m_type = CIMDataType::CIMNULL;
    }
}

CIMValue& CIMValue::operator=(const CIMValue& other) {
    return *this = CIMValue(other);
}

CIMValue& CIMValue::operator=(CIMValue&& other) noexcept {
    if (this == &other) {
        return *this;
    }
    setNull();
    if (other) {
        other.visit([this](const auto& x) {
            using T = std::decay_t<decltype(x)>;
            ::new (static_cast<void*>(m_storage)) T(std::move(const_cast<T&>(x)));
        });
        m_type = other.m_type;
        m_isArray = other.m_isArray;
        other.setNull();
    }
    return *this;
}

CIMValue::CIMValue(Bool x) {
    construct(x);
}
CIMValue::CIMValue(bool x) {
    construct(Bool(x));
}
CIMValue::CIMValue(UInt8 x) {
    construct(x);
}
CIMValue::CIMValue(Int8 x) {
    construct(x);
}
CIMValue::CIMValue(UInt16 x) {
    construct(x);
}
CIMValue::CIMValue(Int16 x) {
    construct(x);
}
CIMValue::CIMValue(UInt32 x) {
    construct(x);
}
CIMValue::CIMValue(Int32 x) {
    construct(x);
}
CIMValue::CIMValue(UInt64 x) {
    construct(x);
}
CIMValue::CIMValue(Int64 x) {
    construct(x);
}
CIMValue::CIMValue(Real32 x) {
    construct(x);
}
CIMValue::CIMValue(Real64 x) {
    construct(x);
}
CIMValue::CIMValue(const Char16& x) {
    construct(x);
}
CIMValue::CIMValue(const String& x) {
    construct(x);
}
CIMValue::CIMValue(const char* x) {
    construct(String(x));
}
CIMValue::CIMValue(const CIMDateTime& x) {
    construct(x);
}
CIMValue::CIMValue(const CIMObjectPath& x) {
    construct(x);
}
CIMValue::CIMValue(const BoolArray& x) {
    construct(x);
}
CIMValue::CIMValue(const Char16Array& x) {
    construct(x);
}
CIMValue::CIMValue(const UInt8Array& x) {
    construct(x);
}
CIMValue::CIMValue(const Int8Array& x) {
    construct(x);
}
CIMValue::CIMValue(const UInt16Array& x) {
    construct(x);
}
CIMValue::CIMValue(const Int16Array& x) {
    construct(x);
}
CIMValue::CIMValue(const UInt32Array& x) {
    construct(x);
}
CIMValue::CIMValue(const Int32Array& x) {
    construct(x);
}
CIMValue::CIMValue(const UInt64Array& x) {
    construct(x);
}
CIMValue::CIMValue(const Int64Array& x) {
    construct(x);
}
CIMValue::CIMValue(const Real32Array& x) {
    construct(x);
}
CIMValue::CIMValue(const Real64Array& x) {
    construct(x);
}
CIMValue::CIMValue(const StringArray& x) {
    construct(x);
}
CIMValue::CIMValue(const CIMDateTimeArray& x) {
    construct(x);
}
CIMValue::CIMValue(const CIMObjectPathArray& x) {
    construct(x);
}

CIMDataType::Type CIMValue::getType() const {
    checkNotNull();
    return m_type;
}

bool CIMValue::isArray() const {
    checkNotNull();
    return m_isArray;
}

bool CIMValue::isNumericType() const {
    return CIMDataType(getType()).isNumericType();
}

bool CIMValue::sameType(const CIMValue& other) const {
    return getType() == other.getType() && m_isArray == other.m_isArray;
}

CIMDataType CIMValue::getCIMDataType() const {
    checkNotNull();
    return m_isArray ? CIMDataType(m_type, -1) : CIMDataType(m_type);
}

UInt32 CIMValue::getArraySize() const {
    return visit([](const auto& x) -> UInt32 {
        if constexpr (CIMKindOf<std::decay_t<decltype(x)>>::isArray) {
            return static_cast<UInt32>(x.size());
        } else {
            return 0;
        }
    });
}

bool CIMValue::equal(const CIMValue& other) const {
    if (m_type != other.m_type) {
        return false;
    }
    if (!*this) {
        return true;
    }
    return m_isArray == other.m_isArray && visit([&other](const auto& x) {
               return x == other.stored<std::decay_t<decltype(x)>>();
           });
}

bool CIMValue::operator<(const CIMValue& other) const {
    if (m_type != other.m_type) {
        return m_type < other.m_type;
    }
    if (!*this) {
        return false;
    }
    if (m_isArray != other.m_isArray) {
        return other.m_isArray;
    }
    return visit([&other](const auto& x) { return x < other.stored<std::decay_t<decltype(x)>>(); });
}

} // namespace OpenWBEM
