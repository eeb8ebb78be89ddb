#include "OW_Exception.hpp"

#include "OW_Assertion.hpp"
#include "OW_EnumerationException.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_NoSuchPropertyException.hpp"
#include "OW_NoSuchQualifierException.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <utility>

namespace OpenWBEM {

OW_DEFINE_EXCEPTION(Assertion)
OW_DEFINE_EXCEPTION_WITH_ID(Enumeration)
OW_DEFINE_EXCEPTION_WITH_ID(NULLValue)
OW_DEFINE_EXCEPTION_WITH_ID(NoSuchProperty)
OW_DEFINE_EXCEPTION_WITH_ID(NoSuchQualifier)

namespace {

// Exceptions are copied while others are in flight: running out of memory loses the text, no more.
char* duplicate(const char* text) {
    if (!text) {
        return nullptr;
    }
    const size_t size = std::strlen(text) + 1;
    char* const copy = new (std::nothrow) char[size];
    if (copy) {
        std::memcpy(copy, text, size);
    }
    return copy;
}

Exception* duplicate(const Exception* exception) {
    return exception ? exception->clone() : nullptr;
}

} // namespace

const int Exception::UNKNOWN_SUBCLASS_ID;
const int Exception::UNKNOWN_ERROR_CODE;

Exception::Exception(const char* file, int line, const char* msg, int errorCode,
                     const Exception* other, int subClassId)
    : m_file(duplicate(file)), m_line(line), m_message(duplicate(msg)), m_errorCode(errorCode),
      m_subException(duplicate(other)), m_subClassId(subClassId) {
}

Exception::Exception(const Exception& other)
    : std::exception(other), m_file(duplicate(other.m_file)), m_line(other.m_line),
      m_message(duplicate(other.m_message)), m_errorCode(other.m_errorCode),
      m_subException(duplicate(other.m_subException)), m_subClassId(other.m_subClassId) {
}

Exception& Exception::operator=(const Exception& other) {
    Exception(other).swap(*this);
    return *this;
}

Exception::~Exception() {
    delete m_subException;
    delete[] m_message;
    delete[] m_file;
}

void Exception::swap(Exception& other) noexcept {
    std::swap(m_file, other.m_file);
    std::swap(m_line, other.m_line);
    std::swap(m_message, other.m_message);
    std::swap(m_errorCode, other.m_errorCode);
    std::swap(m_subException, other.m_subException);
    std::swap(m_subClassId, other.m_subClassId);
}

const char* Exception::type() const {
    return "Exception";
}

const char* Exception::getMessage() const {
    return m_message ? m_message : "";
}

const char* Exception::getFile() const {
    return m_file ? m_file : "";
}

int Exception::getLine() const {
    return m_line;
}

int Exception::getErrorCode() const {
    return m_errorCode;
}

int Exception::getSubClassId() const {
    return m_subClassId;
}

const Exception* Exception::getSubException() const {
    return m_subException;
}

const char* Exception::what() const noexcept {
    return getMessage();
}

Exception* Exception::clone() const {
    return new (std::nothrow) Exception(*this);
}

void Exception::setErrorCode(int errorCode) {
    m_errorCode = errorCode;
}

std::ostream& operator<<(std::ostream& stream, const Exception& exception) {
    const bool hasFile = *exception.getFile() != '\0';
    stream << (hasFile ? exception.getFile() : "[no file]") << ": ";
    if (exception.getLine() == 0) {
        stream << "[no line] ";
    } else {
        stream << exception.getLine() << ' ';
    }
    const bool hasMessage = *exception.getMessage() != '\0';
    return stream << exception.type() << ": "
                  << (hasMessage ? exception.getMessage() : "[no message]");
}

ExceptionDetail::ErrnoText::ErrnoText(const char* prefix) : m_number(errno) {
    char buffer[256];
    const char* const words = ::strerror_r(m_number, buffer, sizeof buffer);
    if (prefix) {
        std::snprintf(m_text, sizeof m_text, "%s: %d(%s)", prefix, m_number, words);
    } else {
        std::snprintf(m_text, sizeof m_text, "%s", words);
    }
}

} // namespace OpenWBEM
