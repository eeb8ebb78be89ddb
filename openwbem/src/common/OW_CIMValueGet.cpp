#include "OW_CIMValue.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMValueVisit.hpp"

namespace OpenWBEM {

template <class T>
void CIMValue::read(T& x) const {
    checkNotNull();
    if (m_type != CIMKindOf<T>::type || m_isArray != CIMKindOf<T>::isArray) {
        const String text =
            String("CIMValue::CIMValueImpl::get - Value is not a ") + CIMKindOf<T>::name();
        OW_THROW(ValueCastException, text.c_str());
    }
    x = stored<T>();
}

template <class T>
void CIMValue::readNumber(T& x) const {
    if (m_type == CIMDataType::SINT64 && !m_isArray) {
        x = static_cast<T>(stored<Int64>());
    } else {
        read(x);
    }
}

template <class T>
T CIMValue::result() const {
    T x{};
    get(x);
    return x;
}

void CIMValue::get(Bool& x) const {
    read(x);
}
void CIMValue::get(Char16& x) const {
    read(x);
}
void CIMValue::get(UInt8& x) const {
    readNumber(x);
}
void CIMValue::get(Int8& x) const {
    readNumber(x);
}
void CIMValue::get(UInt16& x) const {
    readNumber(x);
}
void CIMValue::get(Int16& x) const {
    readNumber(x);
}
void CIMValue::get(UInt32& x) const {
    readNumber(x);
}
void CIMValue::get(Int32& x) const {
    readNumber(x);
}
void CIMValue::get(UInt64& x) const {
    readNumber(x);
}
void CIMValue::get(Int64& x) const {
    readNumber(x);
}
void CIMValue::get(Real32& x) const {
    readNumber(x);
}
void CIMValue::get(Real64& x) const {
    readNumber(x);
}
void CIMValue::get(String& x) const {
    read(x);
}
void CIMValue::get(CIMDateTime& x) const {
    read(x);
}
void CIMValue::get(CIMObjectPath& x) const {
    read(x);
}
void CIMValue::get(BoolArray& x) const {
    read(x);
}
void CIMValue::get(Char16Array& x) const {
    read(x);
}
void CIMValue::get(UInt8Array& x) const {
    read(x);
}
void CIMValue::get(Int8Array& x) const {
    read(x);
}
void CIMValue::get(UInt16Array& x) const {
    read(x);
}
void CIMValue::get(Int16Array& x) const {
    read(x);
}
void CIMValue::get(UInt32Array& x) const {
    read(x);
}
void CIMValue::get(Int32Array& x) const {
    read(x);
}
void CIMValue::get(UInt64Array& x) const {
    read(x);
}
void CIMValue::get(Int64Array& x) const {
    read(x);
}
void CIMValue::get(Real32Array& x) const {
    read(x);
}
void CIMValue::get(Real64Array& x) const {
    read(x);
}
void CIMValue::get(StringArray& x) const {
    read(x);
}
void CIMValue::get(CIMDateTimeArray& x) const {
    read(x);
}
void CIMValue::get(CIMObjectPathArray& x) const {
    read(x);
}

Bool CIMValue::toBool() const {
    return result<Bool>();
}
Char16 CIMValue::toChar16() const {
    return result<Char16>();
}
UInt8 CIMValue::toUInt8() const {
    return result<UInt8>();
}
Int8 CIMValue::toInt8() const {
    return result<Int8>();
}
UInt16 CIMValue::toUInt16() const {
    return result<UInt16>();
}
Int16 CIMValue::toInt16() const {
    return result<Int16>();
}
UInt32 CIMValue::toUInt32() const {
    return result<UInt32>();
}
Int32 CIMValue::toInt32() const {
    return result<Int32>();
}
UInt64 CIMValue::toUInt64() const {
    return result<UInt64>();
}
Int64 CIMValue::toInt64() const {
    return result<Int64>();
}
Real32 CIMValue::toReal32() const {
    return result<Real32>();
}
Real64 CIMValue::toReal64() const {
    return result<Real64>();
}
CIMDateTime CIMValue::toCIMDateTime() const {
    return result<CIMDateTime>();
}
CIMObjectPath CIMValue::toCIMObjectPath() const {
    return result<CIMObjectPath>();
}
BoolArray CIMValue::toBoolArray() const {
    return result<BoolArray>();
}
Char16Array CIMValue::toChar16Array() const {
    return result<Char16Array>();
}
UInt8Array CIMValue::toUInt8Array() const {
    return result<UInt8Array>();
}
Int8Array CIMValue::toInt8Array() const {
    return result<Int8Array>();
}
UInt16Array CIMValue::toUInt16Array() const {
    return result<UInt16Array>();
}
Int16Array CIMValue::toInt16Array() const {
    return result<Int16Array>();
}
UInt32Array CIMValue::toUInt32Array() const {
    return result<UInt32Array>();
}
Int32Array CIMValue::toInt32Array() const {
    return result<Int32Array>();
}
UInt64Array CIMValue::toUInt64Array() const {
    return result<UInt64Array>();
}
Int64Array CIMValue::toInt64Array() const {
    return result<Int64Array>();
}
Real32Array CIMValue::toReal32Array() const {
    return result<Real32Array>();
}
Real64Array CIMValue::toReal64Array() const {
    return result<Real64Array>();
}
StringArray CIMValue::toStringArray() const {
    return result<StringArray>();
}
CIMDateTimeArray CIMValue::toCIMDateTimeArray() const {
    return result<CIMDateTimeArray>();
}
CIMObjectPathArray CIMValue::toCIMObjectPathArray() const {
    return result<CIMObjectPathArray>();
}

} // namespace OpenWBEM
