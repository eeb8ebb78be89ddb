#include "OW_CIMException.hpp"

#include <cstring>
#include <iterator>
#include <new>
#include <string_view>

namespace OpenWBEM {

namespace {

constexpr std::string_view PHRASES[] = {
    "no error",
    "general error",
    "Access to CIM resource unavailable to client",
    "namespace does not exist",
    "invalid parameter passed to method",
    "class does not exist",
    "requested object could not be found",
    "requested operation is not supported",
    "operation cannot be done on class with subclasses",
    "operator cannot be done on class with instances",
    "specified superclass does not exist",
    "object already exists",
    "specified property does not exist",
    "value supplied is incompatible with type",
    "query language is not recognized or supported",
    "query is not valid for the specified query language",
    "extrinsic method could not be executed",
    "extrinsic method does not exist",
};

std::string_view phraseOf(int code) {
    const auto index = static_cast<size_t>(code);
    return index < std::size(PHRASES) ? PHRASES[index] : std::string_view("unknown error");
}

char* join(std::string_view first, std::string_view second, std::string_view third,
           std::string_view fourth) {
    char* const text =
        new (std::nothrow) char[first.size() + second.size() + third.size() + fourth.size() + 1];
    char* end = text;
    for (const std::string_view part : {first, second, third, fourth}) {
        if (text && !part.empty()) {
            std::memcpy(end, part.data(), part.size());
            end += part.size();
        }
    }
    if (text) {
        *end = '\0';
    }
    return text;
}

char* textOf(std::string_view phrase, std::string_view message) {
    if (message.empty()) {
        return join(phrase, {}, {}, {});
    }
    if (message.substr(0, phrase.size()) == phrase) {
        return join(message, {}, {}, {});
    }
    return join(phrase, " (", message, ")");
}

char* copyOf(const char* text) {
    return text ? join(text, {}, {}, {}) : nullptr;
}

} // namespace

CIMException::CIMException(const char* file, int line, ErrNoType err, const char* msg,
                           const Exception* other)
    : Exception(file, line, msg, err, other), m_text(nullptr) {
}

CIMException::CIMException(const CIMException& other)
    : Exception(other), m_text(copyOf(other.m_text.load(std::memory_order_acquire))) {
}

CIMException& CIMException::operator=(const CIMException& other) {
    if (this != &other) {
        Exception::operator=(other);
        char* const text = copyOf(other.m_text.load(std::memory_order_acquire));
        delete[] m_text.exchange(text, std::memory_order_acq_rel);
    }
    return *this;
}

CIMException::~CIMException() {
    delete[] m_text.load(std::memory_order_relaxed);
}

const char* CIMException::type() const {
    return "CIMException";
}

const char* CIMException::getMessage() const {
    char* settled = m_text.load(std::memory_order_acquire);
    if (!settled) {
        char* const text = textOf(phraseOf(getErrorCode()), Exception::getMessage());
        if (m_text.compare_exchange_strong(settled, text, std::memory_order_acq_rel)) {
            settled = text;
        } else {
            delete[] text;
        }
    }
    return settled ? settled : Exception::getMessage();
}

CIMException* CIMException::clone() const {
    return new (std::nothrow) CIMException(*this);
}

CIMException::ErrNoType CIMException::getErrNo() const {
    return static_cast<ErrNoType>(getErrorCode());
}

void CIMException::setErrNo(ErrNoType err) {
    setErrorCode(err);
}

} // namespace OpenWBEM
