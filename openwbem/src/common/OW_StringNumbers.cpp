#include "OW_String.hpp"

#include <cerrno>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include <locale.h>

namespace OpenWBEM {

OW_DEFINE_EXCEPTION_WITH_ID(StringConversion)

namespace {

constexpr size_t LONGEST_NUMBER = 32;

template <class T>
String decimal(T value) {
    char text[LONGEST_NUMBER];
    return String(text,
                  static_cast<size_t>(std::to_chars(text, text + sizeof text, value).ptr - text));
}

locale_t plainLocale() {
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

Real32 readReal32(const char* text, char** end) {
    return ::strtof_l(text, end, plainLocale());
}

Real64 readReal64(const char* text, char** end) {
    return ::strtod_l(text, end, plainLocale());
}

} // namespace

String::String(Int32 value) : String(decimal(value)) {
}

String::String(UInt32 value) : String(decimal(value)) {
}

String::String(Int64 value) : String(decimal(value)) {
}

String::String(UInt64 value) : String(decimal(value)) {
}

String::String(Real64 value) : m_block(nullptr) {
    char text[LONGEST_NUMBER];
    const char* const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr;
    m_block = copyOf(text, static_cast<size_t>(end - text));
}

void String::refuse(const char* type) const {
    const std::string message = std::string("Unable to convert \"") + c_str() + "\" into " + type;
    OW_THROW(StringConversionException, message.c_str());
}

template <class Convert>
auto String::convertAll(const char* type, Convert convert) const {
    if (!m_block) {
        refuse(type);
    }
    char* end = nullptr;
    const auto value = convert(c_str(), &end);
    if (end != c_str() + length()) {
        refuse(type);
    }
    return value;
}

template <class T>
T String::toSigned(const char* type, int base) const {
    errno = 0;
    const long long value = convertAll(
        type, [base](const char* text, char** end) { return std::strtoll(text, end, base); });
    if (errno == ERANGE || value < std::numeric_limits<T>::min() ||
        value > std::numeric_limits<T>::max()) {
        refuse(type);
    }
    return static_cast<T>(value);
}

// A minus sign negates in the widest type, as strtoull has it.
template <class T>
T String::toUnsigned(const char* type, int base) const {
    errno = 0;
    const unsigned long long value = convertAll(
        type, [base](const char* text, char** end) { return std::strtoull(text, end, base); });
    if (errno == ERANGE || value > std::numeric_limits<T>::max()) {
        refuse(type);
    }
    return static_cast<T>(value);
}

template <class T>
T String::toReal(const char* type, T (*read)(const char*, char**)) const {
    errno = 0;
    const T value = convertAll(type, read);
    const bool tooLarge = errno == ERANGE && std::isinf(value);
    if (tooLarge) {
        refuse(type);
    }
    return value;
}

UInt8 String::toUInt8(int base) const {
    return toUnsigned<UInt8>("UInt8", base);
}

Int8 String::toInt8(int base) const {
    return toSigned<Int8>("Int8", base);
}

UInt16 String::toUInt16(int base) const {
    return toUnsigned<UInt16>("UInt16", base);
}

Int16 String::toInt16(int base) const {
    return toSigned<Int16>("Int16", base);
}

UInt32 String::toUInt32(int base) const {
    return toUnsigned<UInt32>("UInt32", base);
}

Int32 String::toInt32(int base) const {
    return toSigned<Int32>("Int32", base);
}

UInt64 String::toUInt64(int base) const {
    return toUnsigned<UInt64>("UInt64", base);
}

Int64 String::toInt64(int base) const {
    return toSigned<Int64>("Int64", base);
}

unsigned int String::toUnsignedInt(int base) const {
    return toUnsigned<unsigned int>("unsigned int", base);
}

int String::toInt(int base) const {
    return toSigned<int>("int", base);
}

Real32 String::toReal32() const {
    return toReal<Real32>("Real32", readReal32);
}

Real64 String::toReal64() const {
    return toReal<Real64>("Real64", readReal64);
}

bool String::toBool() const {
    const bool isTrue = equalsIgnoreCase("true");
    if (!isTrue && !equalsIgnoreCase("false")) {
        refuse("bool");
    }
    return isTrue;
}

} // namespace OpenWBEM
