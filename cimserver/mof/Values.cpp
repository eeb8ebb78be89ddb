#include "cimserver/mof/Values.hpp"
#include "cimserver/mof/Literals.hpp"

#include <cmath>
#include <limits>
#include <type_traits>

namespace cimserver::mof {

using OpenWBEM::CIMDataType;
using OpenWBEM::CIMValue;
using syntax::Error;
using syntax::Literal;

namespace {

constexpr std::uint64_t biggestArray = 0x7FFFFFFF;

std::string Describe(Literal::Kind kind) {
    switch (kind) {
    case Literal::Kind::Null:
        return "null";
    case Literal::Kind::Boolean:
        return "a boolean";
    case Literal::Kind::Number:
        return "a number";
    case Literal::Kind::String:
        return "a string";
    case Literal::Kind::Character:
        return "a character";
    }
    return {};
}

std::string NameOf(CIMDataType::Type type) {
    return CIMDataType(type).toString().c_str();
}

void Demand(const Literal& literal, Literal::Kind kind, CIMDataType::Type type) {
    if (literal.kind != kind) {
        throw Error(literal.place, "expected a value of type " + NameOf(type) + ", found " +
                                       Describe(literal.kind));
    }
}

[[noreturn]] void DoesNotFit(const Literal& literal, CIMDataType::Type type) {
    throw Error(literal.place, syntax::Quote(literal.text) + " does not fit in " + NameOf(type));
}

template <typename Whole>
Whole ToWhole(const Literal& literal, CIMDataType::Type type) {
    Demand(literal, Literal::Kind::Number, type);
    const syntax::Integer integer = syntax::ToInteger(literal);
    constexpr auto biggest = static_cast<std::uint64_t>(std::numeric_limits<Whole>::max());
    std::uint64_t bound = biggest;
    if (integer.negative) {
        bound = std::is_signed_v<Whole> ? biggest + 1 : 0;
    }
    if (integer.magnitude > bound) {
        DoesNotFit(literal, type);
    }
    return static_cast<Whole>(integer.negative ? 0 - integer.magnitude : integer.magnitude);
}

template <typename Real>
Real ToReal(const Literal& literal, CIMDataType::Type type) {
    Demand(literal, Literal::Kind::Number, type);
    const double real = syntax::ToReal(literal);
    if (std::abs(real) > static_cast<double>(std::numeric_limits<Real>::max())) {
        DoesNotFit(literal, type);
    }
    return static_cast<Real>(real);
}

OpenWBEM::Char16 ToChar16(const Literal& literal, CIMDataType::Type type) {
    Demand(literal, Literal::Kind::Character, type);
    const std::string& text = literal.text;
    const auto byte = [&](std::size_t index) {
        return static_cast<unsigned>(static_cast<unsigned char>(text[index]));
    };
    unsigned code = 0;
    if (text.size() == 1 && byte(0) < 0x80) {
        code = byte(0);
    } else if (text.size() == 2 && byte(0) >= 0xC0) {
        code = (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
    } else if (text.size() == 3 && byte(0) >= 0xE0) {
        code = (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    } else {
        throw Error(literal.place, "a char16 holds exactly one character of 16 bits");
    }
    return OpenWBEM::Char16(static_cast<OpenWBEM::UInt16>(code));
}

OpenWBEM::CIMDateTime ToDateTime(const Literal& literal, CIMDataType::Type type) {
    Demand(literal, Literal::Kind::String, type);
    try {
        return OpenWBEM::CIMDateTime(ToString(literal.text));
    } catch (const OpenWBEM::Exception&) {
        throw Error(literal.place, syntax::Quote(literal.text) + " is not a date and time");
    }
}

OpenWBEM::Bool ToBool(const Literal& literal, CIMDataType::Type type) {
    Demand(literal, Literal::Kind::Boolean, type);
    return OpenWBEM::Bool(literal.text == "true");
}

OpenWBEM::String ToText(const Literal& literal, CIMDataType::Type type) {
    Demand(literal, Literal::Kind::String, type);
    return ToString(literal.text);
}

template <typename Element>
CIMValue Convert(const syntax::Value& value, const CIMDataType& type,
                 Element (*convert)(const Literal&, CIMDataType::Type)) {
    if (!value.isArray) {
        return CIMValue(convert(value.elements.front(), type.getType()));
    }
    OpenWBEM::Array<Element> elements;
    for (const Literal& literal : value.elements) {
        elements.push_back(convert(literal, type.getType()));
    }
    return CIMValue(elements);
}

CIMValue ConvertAny(const syntax::Value& value, const CIMDataType& type) {
    switch (type.getType()) {
    case CIMDataType::UINT8:
        return Convert(value, type, &ToWhole<OpenWBEM::UInt8>);
    case CIMDataType::SINT8:
        return Convert(value, type, &ToWhole<OpenWBEM::Int8>);
    case CIMDataType::UINT16:
        return Convert(value, type, &ToWhole<OpenWBEM::UInt16>);
    case CIMDataType::SINT16:
        return Convert(value, type, &ToWhole<OpenWBEM::Int16>);
    case CIMDataType::UINT32:
        return Convert(value, type, &ToWhole<OpenWBEM::UInt32>);
    case CIMDataType::SINT32:
        return Convert(value, type, &ToWhole<OpenWBEM::Int32>);
    case CIMDataType::UINT64:
        return Convert(value, type, &ToWhole<OpenWBEM::UInt64>);
    case CIMDataType::SINT64:
        return Convert(value, type, &ToWhole<OpenWBEM::Int64>);
    case CIMDataType::REAL32:
        return Convert(value, type, &ToReal<OpenWBEM::Real32>);
    case CIMDataType::REAL64:
        return Convert(value, type, &ToReal<OpenWBEM::Real64>);
    case CIMDataType::BOOLEAN:
        return Convert(value, type, &ToBool);
    case CIMDataType::CHAR16:
        return Convert(value, type, &ToChar16);
    case CIMDataType::DATETIME:
        return Convert(value, type, &ToDateTime);
    case CIMDataType::STRING:
        return Convert(value, type, &ToText);
    default:
        throw Error(value.place, "a reference can have no value but null");
    }
}

bool IsNull(const syntax::Value& value) {
    return !value.isArray && value.elements.front().kind == Literal::Kind::Null;
}

OpenWBEM::Int32 ToSize(const syntax::Array& array) {
    if (!array.size) {
        return -1;
    }
    const syntax::Integer size = syntax::ToInteger(*array.size);
    if (size.negative || size.magnitude == 0 || size.magnitude > biggestArray) {
        throw Error(array.size->place,
                    syntax::Quote(array.size->text) + " is not the size of an array");
    }
    return static_cast<OpenWBEM::Int32>(size.magnitude);
}

} // namespace

OpenWBEM::String ToString(const std::string& text) {
    return OpenWBEM::String(text.c_str());
}

CIMDataType ToDataType(const syntax::Name& name, bool isReference,
                       const std::optional<syntax::Array>& array) {
    if (isReference) {
        CIMDataType type{OpenWBEM::CIMName(ToString(name.text))};
        if (array) {
            type.setToArrayType(ToSize(*array));
        }
        return type;
    }
    const CIMDataType::Type type = CIMDataType::strToSimpleType(ToString(name.text));
    if (type == CIMDataType::INVALID || type == CIMDataType::REFERENCE) {
        throw Error(name.place, "unknown type " + syntax::Quote(name.text));
    }
    return array ? CIMDataType(type, ToSize(*array)) : CIMDataType(type);
}

CIMValue ToCimValue(const syntax::Value& value, const CIMDataType& type) {
    if (IsNull(value)) {
        return CIMValue(OpenWBEM::CIMNULL);
    }
    if (value.isArray != type.isArrayType()) {
        throw Error(value.place, value.isArray ? "expected a single value, found an array"
                                               : "expected an array in braces");
    }
    return ConvertAny(value, type);
}

} // namespace cimserver::mof
