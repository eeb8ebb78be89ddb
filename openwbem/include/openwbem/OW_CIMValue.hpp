// The value of a property, key, qualifier or parameter: one of the CIM types, an array of one, or
// null.
#pragma once

#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_Char16.hpp"
#include "OW_SafeBool.hpp"
#include "OW_String.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

#include <cstddef>

namespace OpenWBEM {

/// A value class: scalars stand inside the object, strings, paths and arrays are shared handles, so
/// a copy allocates nothing. Threads may copy and read a shared const value without a lock. A null
/// value tests false and prints as `(null)`; its other members throw
/// NULLCOWIntrusiveReferenceException. A value that is not null never changes its type.
class CIMValue {
public:
    explicit CIMValue(CIMNULL_t);
    CIMValue(const CIMValue& other);
    CIMValue(CIMValue&& other) noexcept;
    ~CIMValue() {
        if (*this) {
            setNull();
        }
    }

    // The C++ type decides the CIM type; an unsuffixed literal is sint32, a plain char as well.
    explicit CIMValue(Bool x);
    explicit CIMValue(bool x);
    explicit CIMValue(UInt8 x);
    explicit CIMValue(Int8 x);
    explicit CIMValue(UInt16 x);
    explicit CIMValue(Int16 x);
    explicit CIMValue(UInt32 x);
    explicit CIMValue(Int32 x);
    explicit CIMValue(UInt64 x);
    explicit CIMValue(Int64 x);
    explicit CIMValue(Real32 x);
    explicit CIMValue(Real64 x);
    explicit CIMValue(const Char16& x);
    explicit CIMValue(const String& x);
    /// A null pointer gives the empty string.
    explicit CIMValue(const char* x);
    explicit CIMValue(const CIMDateTime& x);
    explicit CIMValue(const CIMObjectPath& x);
    explicit CIMValue(const BoolArray& x);
    explicit CIMValue(const Char16Array& x);
    explicit CIMValue(const UInt8Array& x);
    explicit CIMValue(const Int8Array& x);
    explicit CIMValue(const UInt16Array& x);
    explicit CIMValue(const Int16Array& x);
    explicit CIMValue(const UInt32Array& x);
    explicit CIMValue(const Int32Array& x);
    explicit CIMValue(const UInt64Array& x);
    explicit CIMValue(const Int64Array& x);
    explicit CIMValue(const Real32Array& x);
    explicit CIMValue(const Real64Array& x);
    explicit CIMValue(const StringArray& x);
    explicit CIMValue(const CIMDateTimeArray& x);
    explicit CIMValue(const CIMObjectPathArray& x);
    /// Keeps other pointers from turning into booleans.
    explicit CIMValue(const volatile void*) = delete;

    CIMValue& operator=(const CIMValue& other);
    CIMValue& operator=(CIMValue&& other) noexcept;
    CIMValue& set(const CIMValue& other) { return *this = other; }
    void setNull();

    // Reading demands the exact type and kind; ValueCastException otherwise. The one exception: a
    // scalar sint64 reads as every numeric type, cut to its size.
    void get(Bool& x) const;
    void get(Char16& x) const;
    void get(UInt8& x) const;
    void get(Int8& x) const;
    void get(UInt16& x) const;
    void get(Int16& x) const;
    void get(UInt32& x) const;
    void get(Int32& x) const;
    void get(UInt64& x) const;
    void get(Int64& x) const;
    void get(Real32& x) const;
    void get(Real64& x) const;
    void get(String& x) const;
    void get(CIMDateTime& x) const;
    void get(CIMObjectPath& x) const;
    void get(BoolArray& x) const;
    void get(Char16Array& x) const;
    void get(UInt8Array& x) const;
    void get(Int8Array& x) const;
    void get(UInt16Array& x) const;
    void get(Int16Array& x) const;
    void get(UInt32Array& x) const;
    void get(Int32Array& x) const;
    void get(UInt64Array& x) const;
    void get(Int64Array& x) const;
    void get(Real32Array& x) const;
    void get(Real64Array& x) const;
    void get(StringArray& x) const;
    void get(CIMDateTimeArray& x) const;
    void get(CIMObjectPathArray& x) const;

    // The same as get, by return value.
    Bool toBool() const;
    Char16 toChar16() const;
    UInt8 toUInt8() const;
    Int8 toInt8() const;
    UInt16 toUInt16() const;
    Int16 toInt16() const;
    UInt32 toUInt32() const;
    Int32 toInt32() const;
    UInt64 toUInt64() const;
    Int64 toInt64() const;
    Real32 toReal32() const;
    Real64 toReal64() const;
    CIMDateTime toCIMDateTime() const;
    CIMObjectPath toCIMObjectPath() const;
    BoolArray toBoolArray() const;
    Char16Array toChar16Array() const;
    UInt8Array toUInt8Array() const;
    Int8Array toInt8Array() const;
    UInt16Array toUInt16Array() const;
    Int16Array toInt16Array() const;
    UInt32Array toUInt32Array() const;
    Int32Array toInt32Array() const;
    UInt64Array toUInt64Array() const;
    Int64Array toInt64Array() const;
    Real32Array toReal32Array() const;
    Real64Array toReal64Array() const;
    StringArray toStringArray() const;
    CIMDateTimeArray toCIMDateTimeArray() const;
    CIMObjectPathArray toCIMObjectPathArray() const;

    /// The plain text of any type; arrays are joined by commas without brackets.
    String toString() const;
    /// As a MOF initializer: quoted and escaped, arrays in braces. A reference is escaped, not
    /// quoted.
    String toMOF() const;
    /// The value that a text stands for; `cimtype` is a scalar type's name in any case, an unknown
    /// one gives null. Throws StringConversionException, CIMDateTimeException, or CIMException
    /// INVALID_PARAMETER for a reference. Empty text is 0 for a numeric type.
    static CIMValue createSimpleValue(const String& cimtype, const String& text);

    CIMDataType::Type getType() const;
    CIMDataType getCIMDataType() const;
    bool isArray() const;
    /// The number of elements; 0 for a scalar.
    UInt32 getArraySize() const;
    bool isNumericType() const;
    bool sameType(const CIMValue& other) const;

    /// Null equals null; values of different types are never equal; strings compare with case.
    bool equal(const CIMValue& other) const;
    bool operator==(const CIMValue& other) const { return equal(other); }
    bool operator!=(const CIMValue& other) const { return !equal(other); }
    /// Null comes first, then the order of the type numbers, then that of the values.
    bool operator<(const CIMValue& other) const;
    bool operator<=(const CIMValue& other) const { return !(other < *this); }
    bool operator>(const CIMValue& other) const { return other < *this; }
    bool operator>=(const CIMValue& other) const { return !(*this < other); }

    OW_SAFE_BOOL(m_type != CIMDataType::CIMNULL)

private:
    friend struct CIMModelView;
    template <class T>
    void construct(const T& x);
    template <class T>
    const T& stored() const;
    template <class T>
    void read(T& x) const;
    template <class T>
    void readNumber(T& x) const;
    template <class T>
    T result() const;
    // Calls the function with the stored object, as its C++ type; the value is not null.
    template <class Function>
    decltype(auto) visit(Function&& function) const;
    template <class T, class Function>
    decltype(auto) visitKind(Function&& function) const;
    void checkNotNull() const;

    // Room for the largest, which is CIMDateTime.
    static constexpr std::size_t StorageSize = 24;

    alignas(8) unsigned char m_storage[StorageSize];
    CIMDataType::Type m_type; ///< CIMNULL: the null value, and the storage is empty
    bool m_isArray;
};

} // namespace OpenWBEM
