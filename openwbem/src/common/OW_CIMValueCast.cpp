#include "OW_CIMValueCast.hpp"

#include "OW_CIMDataType.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMValueVisit.hpp"

#include <vector>

namespace OpenWBEM {

OW_DEFINE_EXCEPTION_WITH_ID(ValueCast)

namespace {

[[noreturn]] void throwNotConvertible(const CIMValue& value, const CIMDataType& type) {
    const String text = "Failed to convert \"" + value.toString() + "\" to " + type.toString();
    OW_THROWCIMMSG(CIMException::FAILED, text.c_str());
}

bool hasValues(CIMDataType::Type type) {
    return type >= CIMDataType::UINT8 && type <= CIMDataType::REFERENCE;
}

bool goesThroughText(CIMDataType::Type type) {
    return CIMDataType(type).isNumericType() || type == CIMDataType::BOOLEAN ||
           type == CIMDataType::CHAR16;
}

CIMValue fromText(const CIMValue& value, const CIMDataType& type) {
    try {
        CIMValue result = CIMValue::createSimpleValue(type.toString(), value.toString());
        if (result && result.getType() == type.getType()) {
            return result;
        }
    } catch (const StringConversionException& failure) {
        OW_THROWCIMMSG(CIMException::FAILED, failure.getMessage());
    } catch (const CIMException&) {
        throwNotConvertible(value, type);
    }
    throwNotConvertible(value, type);
}

CIMValue convertScalar(const CIMValue& value, const CIMDataType& type) {
    if (type.getType() == CIMDataType::STRING) {
        return CIMValue(value.toString());
    }
    const bool isPossible = value.getType() == CIMDataType::STRING ||
                            (goesThroughText(value.getType()) && goesThroughText(type.getType()));
    if (!isPossible) {
        throwNotConvertible(value, type);
    }
    return fromText(value, type);
}

template <class T>
std::vector<CIMValue> elements(const CIMValue& value) {
    Array<T> array;
    value.get(array);
    const Array<T>& constArray = array;
    std::vector<CIMValue> result;
    for (const T& element : constArray) {
        result.emplace_back(element);
    }
    return result;
}

template <class T>
CIMValue arrayOf(const std::vector<CIMValue>& values) {
    Array<T> array;
    for (const CIMValue& value : values) {
        T element{};
        value.get(element);
        array.push_back(element);
    }
    return CIMValue(array);
}

template <class T>
struct Tag {
    using type = T;
};

// Calls the function with a Tag of the C++ type that stands for a CIM type.
template <class Function>
auto withElementType(CIMDataType::Type type, Function function) {
    switch (type) {
    case CIMDataType::UINT8:
        return function(Tag<UInt8>());
    case CIMDataType::SINT8:
        return function(Tag<Int8>());
    case CIMDataType::UINT16:
        return function(Tag<UInt16>());
    case CIMDataType::SINT16:
        return function(Tag<Int16>());
    case CIMDataType::UINT32:
        return function(Tag<UInt32>());
    case CIMDataType::SINT32:
        return function(Tag<Int32>());
    case CIMDataType::UINT64:
        return function(Tag<UInt64>());
    case CIMDataType::SINT64:
        return function(Tag<Int64>());
    case CIMDataType::STRING:
        return function(Tag<String>());
    case CIMDataType::BOOLEAN:
        return function(Tag<Bool>());
    case CIMDataType::REAL32:
        return function(Tag<Real32>());
    case CIMDataType::REAL64:
        return function(Tag<Real64>());
    case CIMDataType::DATETIME:
        return function(Tag<CIMDateTime>());
    case CIMDataType::CHAR16:
        return function(Tag<Char16>());
    case CIMDataType::REFERENCE:
        return function(Tag<CIMObjectPath>());
    default:
        throwNullCOWIntrusiveReference();
    }
}

std::vector<CIMValue> scalarsOf(const CIMValue& value) {
    if (!value.isArray()) {
        return {value};
    }
    return withElementType(value.getType(), [&value](auto tag) {
        return elements<typename decltype(tag)::type>(value);
    });
}

} // namespace

CIMValue CIMValueCast::castValueToDataType(const CIMValue& value, const CIMDataType& type) {
    if (!value || !type) {
        return CIMValue(CIMNULL);
    }
    if (value.getType() == type.getType() && value.isArray() == type.isArrayType()) {
        return value;
    }
    if (!hasValues(type.getType())) {
        throwNotConvertible(value, type);
    }
    std::vector<CIMValue> scalars = scalarsOf(value);
    if (!type.isArrayType() && scalars.size() > 1) {
        scalars.erase(scalars.begin() + 1, scalars.end());
    }
    if (value.getType() != type.getType()) {
        for (CIMValue& scalar : scalars) {
            scalar = convertScalar(scalar, type);
        }
    }
    if (type.isArrayType()) {
        return withElementType(type.getType(), [&scalars](auto tag) {
            return arrayOf<typename decltype(tag)::type>(scalars);
        });
    }
    return scalars.empty() ? CIMValue(CIMNULL) : scalars.front();
}

} // namespace OpenWBEM
