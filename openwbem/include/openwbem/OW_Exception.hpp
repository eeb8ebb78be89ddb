// Base of every exception that the libraries throw, and the macros that declare, define and throw
// them.
#pragma once

#include "OW_ExceptionIds.hpp"
#include "OW_config.h"

#include <exception>
#include <iosfwd>
#include <new>

namespace OpenWBEM {

// Only subclasses can be thrown. File name and message are copied, the sub-exception is cloned: an
// exception owns all that it shows. Every subclass has its type information in the library that
// defines it, so that one thrown in a provider library is caught by type in the server.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nobody deletes through this class.
class OW_COMMON_API Exception : public std::exception {
public:
    static const int UNKNOWN_SUBCLASS_ID = -1;
    static const int UNKNOWN_ERROR_CODE = -1;

    // The name of the class without its namespace.
    virtual const char* type() const;
    // "" when there is none, never null. So is getFile().
    virtual const char* getMessage() const;
    const char* getFile() const;
    // 0 when the place is not known.
    int getLine() const;
    int getErrorCode() const;
    int getSubClassId() const;
    // The exception that led to this one; null when none. It belongs to this object.
    const Exception* getSubException() const;
    // The text of getMessage().
    const char* what() const noexcept override;
    // A copy of the same class on the heap, owned by the caller; null when memory is exhausted.
    virtual Exception* clone() const;

protected:
    // `file`, `msg` and `other` may be null.
    Exception(const char* file, int line, const char* msg, int errorCode = UNKNOWN_ERROR_CODE,
              const Exception* other = nullptr, int subClassId = UNKNOWN_SUBCLASS_ID);
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception() override;

    void setErrorCode(int errorCode);
    void swap(Exception& other) noexcept;

private:
    char* m_file;
    int m_line;
    char* m_message;
    int m_errorCode;
    Exception* m_subException;
    int m_subClassId;
};

// `file: line type: message`, with "[no file]", "[no line] " and "[no message]" for what is
// missing.
OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const Exception& exception);

namespace ExceptionDetail {

// The system's words for the value of errno at construction, preceded by `prefix` and the number
// when a prefix is given.
class OW_COMMON_API ErrnoText {
public:
    explicit ErrnoText(const char* prefix = nullptr);
    int number() const { return m_number; }
    const char* text() const { return m_text; }

private:
    int m_number;
    char m_text[512];
};

} // namespace ExceptionDetail
} // namespace OpenWBEM

// Declares NAMEException derived from BASE, which is Exception or declared by one of these macros.
#define OW_DECLARE_APIEXCEPTION2(NAME, BASE, LINKAGE_SPEC)                                         \
    class LINKAGE_SPEC NAME##Exception : public BASE {                                             \
    public:                                                                                        \
        NAME##Exception(const char* file, int line, const char* msg,                               \
                        int errorCode = ::OpenWBEM::Exception::UNKNOWN_ERROR_CODE,                 \
                        const ::OpenWBEM::Exception* other = nullptr,                              \
                        int subClassId = ::OpenWBEM::Exception::UNKNOWN_SUBCLASS_ID);              \
        NAME##Exception(const NAME##Exception&) = default;                                         \
        NAME##Exception& operator=(const NAME##Exception&) = default;                              \
        ~NAME##Exception() override;                                                               \
        const char* type() const override;                                                         \
        NAME##Exception* clone() const override;                                                   \
                                                                                                   \
    private:                                                                                       \
        typedef BASE BaseException;                                                                \
    };

#define OW_DECLARE_APIEXCEPTION(NAME, LINKAGE_SPEC)                                                \
    OW_DECLARE_APIEXCEPTION2(NAME, ::OpenWBEM::Exception, LINKAGE_SPEC)
#define OW_DECLARE_EXCEPTION(NAME) OW_DECLARE_APIEXCEPTION2(NAME, ::OpenWBEM::Exception, )
#define OW_DECLARE_EXCEPTION2(NAME, BASE) OW_DECLARE_APIEXCEPTION2(NAME, BASE, )

// Defines what the macros above declare, once, in a source file of the same namespace. SUBCLASS_ID
// stands in when the thrower names no id.
#define OW_DEFINE_EXCEPTION_WITH_BASE_AND_ID_AUX(NAME, SUBCLASS_ID)                                \
    NAME##Exception::NAME##Exception(const char* file, int line, const char* msg, int errorCode,   \
                                     const ::OpenWBEM::Exception* other, int subClassId)           \
        : BaseException(file, line, msg, errorCode, other,                                         \
                        subClassId == ::OpenWBEM::Exception::UNKNOWN_SUBCLASS_ID                   \
                            ? static_cast<int>(SUBCLASS_ID)                                        \
                            : subClassId) {                                                        \
    }                                                                                              \
    NAME##Exception::~NAME##Exception() = default;                                                 \
    const char* NAME##Exception::type() const {                                                    \
        return #NAME "Exception";                                                                  \
    }                                                                                              \
    NAME##Exception* NAME##Exception::clone() const {                                              \
        return new (std::nothrow) NAME##Exception(*this);                                          \
    }

#define OW_DEFINE_EXCEPTION(NAME)                                                                  \
    OW_DEFINE_EXCEPTION_WITH_BASE_AND_ID_AUX(NAME, ::OpenWBEM::Exception::UNKNOWN_SUBCLASS_ID)
#define OW_DEFINE_EXCEPTION_WITH_ID(NAME)                                                          \
    OW_DEFINE_EXCEPTION_WITH_BASE_AND_ID_AUX(NAME, ::OpenWBEM::ExceptionIds::NAME##ExceptionId)

// Each throws with the file and line of the place where it stands. `msg` is a const char*, `sub` an
// Exception (by name, not by address).
#define OW_THROW(exType, msg) throw exType(__FILE__, __LINE__, (msg))
#define OW_THROWL(exType, line, msg) throw exType(__FILE__, (line), (msg))
#define OW_THROW_ERR(exType, msg, err) throw exType(__FILE__, __LINE__, (msg), (err))
#define OW_THROW_SUBEX(exType, msg, sub)                                                           \
    throw exType(__FILE__, __LINE__, (msg), ::OpenWBEM::Exception::UNKNOWN_ERROR_CODE, &(sub))
#define OW_THROW_ERR_SUBEX(exType, msg, err, sub)                                                  \
    throw exType(__FILE__, __LINE__, (msg), (err), &(sub))
#define OW_THROW_ERRNO_AUX(exType, errnoText)                                                      \
    do {                                                                                           \
        const ::OpenWBEM::ExceptionDetail::ErrnoText owErrnoText errnoText;                        \
        throw exType(__FILE__, __LINE__, owErrnoText.text(), owErrnoText.number());                \
    } while (false)
#define OW_THROW_ERRNO(exType) OW_THROW_ERRNO_AUX(exType, (nullptr))
#define OW_THROW_ERRNO_MSG(exType, msg) OW_THROW_ERRNO_AUX(exType, (msg))
