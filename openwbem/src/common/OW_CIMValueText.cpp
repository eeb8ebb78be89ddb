#include "OW_CIMModelData.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMValueVisit.hpp"

#include <string>
#include <type_traits>

namespace OpenWBEM {

namespace {

template <class T>
String plainText(const T& x) {
    if constexpr (std::is_floating_point_v<T>) {
        return String(Real64(x));
    } else if constexpr (std::is_unsigned_v<T>) {
        return String(UInt64(x));
    } else if constexpr (std::is_signed_v<T>) {
        return String(Int64(x));
    } else {
        return x.toString();
    }
}

template <class T>
String mofText(const T& x) {
    if constexpr (std::is_same_v<T, String>) {
        return "\"" + CIMObjectPath::escape(x) + "\"";
    } else if constexpr (std::is_same_v<T, CIMDateTime>) {
        return "\"" + x.toString() + "\"";
    } else if constexpr (std::is_same_v<T, Char16>) {
        const bool isQuote = x.getValue() == '\'';
        return "'" + (isQuote ? String("\\'") : CIMObjectPath::escape(x.toString())) + "'";
    } else if constexpr (std::is_same_v<T, CIMObjectPath>) {
        return x.toMOF();
    } else {
        return plainText(x);
    }
}

template <class T, class Function>
String joined(const Array<T>& elements, Function text) {
    std::string result;
    const char* separator = "";
    for (const T& element : elements) {
        result += separator;
        result += text(element).c_str();
        separator = ",";
    }
    return toOwString(result);
}

// Empty text is 0, also when it never was anything else.
template <class T>
CIMValue number(const String& text, T (String::*convert)(int) const) {
    return CIMValue(text.empty() ? T(0) : (text.*convert)(10));
}

template <class T>
CIMValue number(const String& text, T (String::*convert)() const) {
    return CIMValue(text.empty() ? T(0) : (text.*convert)());
}

CIMValue referenceValue(const String& text) {
    const CIMObjectPath path = CIMObjectPath::parse(text);
    if (!path) {
        OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, "an empty text is no object path");
    }
    return CIMValue(path);
}

} // namespace

String CIMValue::toString() const {
    if (!*this) {
        return String("(null)");
    }
    return visit([](const auto& x) {
        if constexpr (CIMKindOf<std::decay_t<decltype(x)>>::isArray) {
            return joined(x, [](const auto& element) { return plainText(element); });
        } else {
            return plainText(x);
        }
    });
}

String CIMValue::toMOF() const {
    return visit([](const auto& x) {
        if constexpr (CIMKindOf<std::decay_t<decltype(x)>>::isArray) {
            return "{" + joined(x, [](const auto& element) { return mofText(element); }) + "}";
        } else {
            return mofText(x);
        }
    });
}

CIMValue CIMValue::createSimpleValue(const String& cimtype, const String& text) {
    switch (CIMDataType::strToSimpleType(cimtype)) {
    case CIMDataType::UINT8:
        return number(text, &String::toUInt8);
    case CIMDataType::SINT8:
        return number(text, &String::toInt8);
    case CIMDataType::UINT16:
        return number(text, &String::toUInt16);
    case CIMDataType::SINT16:
        return number(text, &String::toInt16);
    case CIMDataType::UINT32:
        return number(text, &String::toUInt32);
    case CIMDataType::SINT32:
        return number(text, &String::toInt32);
    case CIMDataType::UINT64:
        return number(text, &String::toUInt64);
    case CIMDataType::SINT64:
        return number(text, &String::toInt64);
    case CIMDataType::STRING:
        return CIMValue(text);
    case CIMDataType::BOOLEAN:
        return CIMValue(text.toBool());
    case CIMDataType::REAL32:
        return number(text, &String::toReal32);
    case CIMDataType::REAL64:
        return number(text, &String::toReal64);
    case CIMDataType::DATETIME:
        return CIMValue(CIMDateTime(text));
    case CIMDataType::CHAR16:
        return CIMValue(Char16(text));
    case CIMDataType::REFERENCE:
        return referenceValue(text);
    default:
        return CIMValue(CIMNULL);
    }
}

} // namespace OpenWBEM
