// The error of a CIM operation, as a provider reports it and a client receives it.
#pragma once

#include "OW_Exception.hpp"
#include "OW_config.h"

#include <atomic>

namespace OpenWBEM {

class OW_COMMON_API CIMException : public Exception {
public:
    // The status codes of CIM operations over HTTP (DMTF DSP0200). Any int is allowed.
    enum ErrNoType : int {
        SUCCESS = 0,
        FAILED = 1,
        ACCESS_DENIED = 2,
        INVALID_NAMESPACE = 3,
        INVALID_PARAMETER = 4,
        INVALID_CLASS = 5,
        NOT_FOUND = 6,
        NOT_SUPPORTED = 7,
        CLASS_HAS_CHILDREN = 8,
        CLASS_HAS_INSTANCES = 9,
        INVALID_SUPERCLASS = 10,
        ALREADY_EXISTS = 11,
        NO_SUCH_PROPERTY = 12,
        TYPE_MISMATCH = 13,
        QUERY_LANGUAGE_NOT_SUPPORTED = 14,
        INVALID_QUERY = 15,
        METHOD_NOT_AVAILABLE = 16,
        METHOD_NOT_FOUND = 17
    };

    CIMException(const char* file, int line, ErrNoType err, const char* msg = nullptr,
                 const Exception* other = nullptr);
    CIMException(const CIMException& other);
    CIMException& operator=(const CIMException& other);
    ~CIMException() override;

    const char* type() const override;
    // The code's standard phrase, followed by the message in parentheses when there is one. A
    // message that begins with the phrase is the whole text. The first call settles the text for
    // good.
    const char* getMessage() const override;
    CIMException* clone() const override;

    // The same number as getErrorCode().
    ErrNoType getErrNo() const;
    // Changes the number, not a text that is already settled.
    void setErrNo(ErrNoType err);

private:
    mutable std::atomic<char*> m_text;
};

} // namespace OpenWBEM

// `msg` is a const char*, `sub` an Exception (by name, not by address).
#define OW_THROWCIM(err) throw ::OpenWBEM::CIMException(__FILE__, __LINE__, (err))
#define OW_THROWCIMMSG(err, msg) throw ::OpenWBEM::CIMException(__FILE__, __LINE__, (err), (msg))
#define OW_THROWCIM_SUBEX(err, msg, sub)                                                           \
    throw ::OpenWBEM::CIMException(__FILE__, __LINE__, (err), (msg), &(sub))
