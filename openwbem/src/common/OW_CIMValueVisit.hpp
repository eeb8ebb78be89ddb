// How the C++ types behind a CIM value are told apart. Private to the library.
#pragma once

#include "OW_CIMDateTime.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMValue.hpp"
#include "OW_COWIntrusiveReference.hpp"

#include <new>

namespace OpenWBEM {

template <class T>
struct CIMTypeOf;

template <>
struct CIMTypeOf<Bool> {
    static constexpr CIMDataType::Type type = CIMDataType::BOOLEAN;
    static constexpr const char* name = "BOOLEAN";
};
template <>
struct CIMTypeOf<Char16> {
    static constexpr CIMDataType::Type type = CIMDataType::CHAR16;
    static constexpr const char* name = "CHAR16";
};
template <>
struct CIMTypeOf<UInt8> {
    static constexpr CIMDataType::Type type = CIMDataType::UINT8;
    static constexpr const char* name = "UINT8";
};
template <>
struct CIMTypeOf<Int8> {
    static constexpr CIMDataType::Type type = CIMDataType::SINT8;
    static constexpr const char* name = "SINT8";
};
template <>
struct CIMTypeOf<UInt16> {
    static constexpr CIMDataType::Type type = CIMDataType::UINT16;
    static constexpr const char* name = "UINT16";
};
template <>
struct CIMTypeOf<Int16> {
    static constexpr CIMDataType::Type type = CIMDataType::SINT16;
    static constexpr const char* name = "SINT16";
};
template <>
struct CIMTypeOf<UInt32> {
    static constexpr CIMDataType::Type type = CIMDataType::UINT32;
    static constexpr const char* name = "UINT32";
};
template <>
struct CIMTypeOf<Int32> {
    static constexpr CIMDataType::Type type = CIMDataType::SINT32;
    static constexpr const char* name = "SINT32";
};
template <>
struct CIMTypeOf<UInt64> {
    static constexpr CIMDataType::Type type = CIMDataType::UINT64;
    static constexpr const char* name = "UINT64";
};
template <>
struct CIMTypeOf<Int64> {
    static constexpr CIMDataType::Type type = CIMDataType::SINT64;
    static constexpr const char* name = "SINT64";
};
template <>
struct CIMTypeOf<Real32> {
    static constexpr CIMDataType::Type type = CIMDataType::REAL32;
    static constexpr const char* name = "REAL32";
};
template <>
struct CIMTypeOf<Real64> {
    static constexpr CIMDataType::Type type = CIMDataType::REAL64;
    static constexpr const char* name = "REAL64";
};
template <>
struct CIMTypeOf<String> {
    static constexpr CIMDataType::Type type = CIMDataType::STRING;
    static constexpr const char* name = "STRING";
};
template <>
struct CIMTypeOf<CIMDateTime> {
    static constexpr CIMDataType::Type type = CIMDataType::DATETIME;
    static constexpr const char* name = "DATETIME";
};
template <>
struct CIMTypeOf<CIMObjectPath> {
    static constexpr CIMDataType::Type type = CIMDataType::REFERENCE;
    static constexpr const char* name = "REFERENCE";
};

/// The CIM type that a C++ type stands for, scalar or array.
template <class T>
struct CIMKindOf {
    static constexpr CIMDataType::Type type = CIMTypeOf<T>::type;
    static constexpr bool isArray = false;
    static String name() { return String(CIMTypeOf<T>::name); }
};
template <class T>
struct CIMKindOf<Array<T>> {
    static constexpr CIMDataType::Type type = CIMTypeOf<T>::type;
    static constexpr bool isArray = true;
    static String name() { return String(CIMTypeOf<T>::name) + " ARRAY"; }
};

template <class T>
const T& CIMValue::stored() const {
    return *std::launder(reinterpret_cast<const T*>(m_storage));
}

template <class T, class Function>
decltype(auto) CIMValue::visitKind(Function&& function) const {
    return m_isArray ? function(stored<Array<T>>()) : function(stored<T>());
}

template <class Function>
decltype(auto) CIMValue::visit(Function&& function) const {
    switch (m_type) {
    case CIMDataType::UINT8:
        return visitKind<UInt8>(function);
    case CIMDataType::SINT8:
        return visitKind<Int8>(function);
    case CIMDataType::UINT16:
        return visitKind<UInt16>(function);
    case CIMDataType::SINT16:
        return visitKind<Int16>(function);
    case CIMDataType::UINT32:
        return visitKind<UInt32>(function);
    case CIMDataType::SINT32:
        return visitKind<Int32>(function);
    case CIMDataType::UINT64:
        return visitKind<UInt64>(function);
    case CIMDataType::SINT64:
        return visitKind<Int64>(function);
    case CIMDataType::STRING:
        return visitKind<String>(function);
    case CIMDataType::BOOLEAN:
        return visitKind<Bool>(function);
    case CIMDataType::REAL32:
        return visitKind<Real32>(function);
    case CIMDataType::REAL64:
        return visitKind<Real64>(function);
    case CIMDataType::DATETIME:
        return visitKind<CIMDateTime>(function);
    case CIMDataType::CHAR16:
        return visitKind<Char16>(function);
    case CIMDataType::REFERENCE:
        return visitKind<CIMObjectPath>(function);
    default:
        throwNullCOWIntrusiveReference();
    }
}

} // namespace OpenWBEM
