#include "OW_CIMException.hpp"

#include "OW_NULLValueException.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace OpenWBEM {
namespace {

struct Row {
    int number;
    CIMException::ErrNoType code;
    const char* text;
};

const Row ROWS[] = {
    {0, CIMException::SUCCESS, "no error"},
    {1, CIMException::FAILED, "general error"},
    {2, CIMException::ACCESS_DENIED, "Access to CIM resource unavailable to client"},
    {3, CIMException::INVALID_NAMESPACE, "namespace does not exist"},
    {4, CIMException::INVALID_PARAMETER, "invalid parameter passed to method"},
    {5, CIMException::INVALID_CLASS, "class does not exist"},
    {6, CIMException::NOT_FOUND, "requested object could not be found"},
    {7, CIMException::NOT_SUPPORTED, "requested operation is not supported"},
    {8, CIMException::CLASS_HAS_CHILDREN, "operation cannot be done on class with subclasses"},
    {9, CIMException::CLASS_HAS_INSTANCES, "operator cannot be done on class with instances"},
    {10, CIMException::INVALID_SUPERCLASS, "specified superclass does not exist"},
    {11, CIMException::ALREADY_EXISTS, "object already exists"},
    {12, CIMException::NO_SUCH_PROPERTY, "specified property does not exist"},
    {13, CIMException::TYPE_MISMATCH, "value supplied is incompatible with type"},
    {14, CIMException::QUERY_LANGUAGE_NOT_SUPPORTED,
     "query language is not recognized or supported"},
    {15, CIMException::INVALID_QUERY, "query is not valid for the specified query language"},
    {16, CIMException::METHOD_NOT_AVAILABLE, "extrinsic method could not be executed"},
    {17, CIMException::METHOD_NOT_FOUND, "extrinsic method does not exist"},
    {18, static_cast<CIMException::ErrNoType>(18), "unknown error"},
    {-1, static_cast<CIMException::ErrNoType>(-1), "unknown error"},
};

CIMException made(CIMException::ErrNoType code, const char* message = nullptr) {
    return CIMException("file.cpp", 3, code, message);
}

TEST(CIMException, EveryCodeHasItsNumberAndPhrase) {
    for (const Row& row : ROWS) {
        const CIMException e = made(row.code);
        EXPECT_EQ(e.getErrNo(), row.code);
        EXPECT_EQ(e.getErrorCode(), row.number);
        EXPECT_STREQ(e.getMessage(), row.text);
        EXPECT_STREQ(e.what(), row.text);
    }
}

TEST(CIMException, MessageFollowsThePhraseInParentheses) {
    for (const Row& row : ROWS) {
        const CIMException e = made(row.code, "text");
        EXPECT_EQ(e.getMessage(), std::string(row.text) + " (text)");
        EXPECT_EQ(e.what(), std::string(row.text) + " (text)");
    }
}

TEST(CIMException, EmptyMessageGivesThePhraseAlone) {
    EXPECT_STREQ(made(CIMException::NOT_FOUND, "").getMessage(),
                 "requested object could not be found");
}

TEST(CIMException, MessageThatBeginsWithThePhraseStaysAsItIs) {
    EXPECT_STREQ(made(CIMException::FAILED, "general error: x").getMessage(), "general error: x");
    EXPECT_STREQ(made(CIMException::FAILED, "general error").getMessage(), "general error");
    EXPECT_STREQ(made(CIMException::FAILED, "a general error").getMessage(),
                 "general error (a general error)");
    EXPECT_STREQ(made(CIMException::FAILED, "general err").getMessage(),
                 "general error (general err)");
}

TEST(CIMException, FirstCallSettlesTheText) {
    CIMException e = made(CIMException::FAILED, "text");
    EXPECT_STREQ(e.getMessage(), "general error (text)");
    e.setErrNo(CIMException::NOT_FOUND);
    EXPECT_EQ(e.getErrNo(), CIMException::NOT_FOUND);
    EXPECT_EQ(e.getErrorCode(), 6);
    EXPECT_STREQ(e.getMessage(), "general error (text)");
}

TEST(CIMException, CodeSetBeforeTheFirstCallCounts) {
    CIMException e = made(CIMException::FAILED, "text");
    e.setErrNo(CIMException::NOT_FOUND);
    EXPECT_STREQ(e.getMessage(), "requested object could not be found (text)");
}

TEST(CIMException, CopiesKeepASettledText) {
    CIMException settled = made(CIMException::FAILED, "text");
    settled.getMessage();
    settled.setErrNo(CIMException::NOT_FOUND);
    const CIMException copy(settled);
    EXPECT_STREQ(copy.getMessage(), "general error (text)");
    CIMException assigned = made(CIMException::INVALID_CLASS);
    EXPECT_STREQ(assigned.getMessage(), "class does not exist");
    assigned = settled;
    EXPECT_STREQ(assigned.getMessage(), "general error (text)");
    EXPECT_EQ(assigned.getErrNo(), CIMException::NOT_FOUND);
}

TEST(CIMException, ShowsTypePlaceAndCause) {
    const NULLValueException cause("cause.cpp", 1, "cause");
    const CIMException e("file.cpp", 3, CIMException::FAILED, "text", &cause);
    std::ostringstream stream;
    stream << e;
    EXPECT_EQ(stream.str(), "file.cpp: 3 CIMException: general error (text)");
    ASSERT_NE(e.getSubException(), nullptr);
    EXPECT_STREQ(e.getSubException()->type(), "NULLValueException");
    EXPECT_EQ(e.getSubClassId(), -1);
}

TEST(CIMException, CloneIsACIMException) {
    const std::unique_ptr<std::exception> copy(made(CIMException::FAILED, "text").clone());
    const auto* const cim = dynamic_cast<const CIMException*>(copy.get());
    ASSERT_NE(cim, nullptr);
    EXPECT_EQ(cim->getErrNo(), CIMException::FAILED);
    EXPECT_STREQ(cim->getMessage(), "general error (text)");
}

TEST(CIMExceptionMacros, ThrowWithPlaceMessageAndCause) {
    const NULLValueException cause("cause.cpp", 1, "cause");
    int line = 0;
    try {
        line = __LINE__ + 1;
        OW_THROWCIM(CIMException::NOT_FOUND);
    } catch (const CIMException& e) {
        EXPECT_STREQ(e.getFile(), __FILE__);
        EXPECT_EQ(e.getLine(), line);
        EXPECT_STREQ(e.getMessage(), "requested object could not be found");
    }
    try {
        OW_THROWCIMMSG(CIMException::NOT_FOUND, "x");
    } catch (const CIMException& e) {
        EXPECT_STREQ(e.getMessage(), "requested object could not be found (x)");
    }
    try {
        OW_THROWCIM_SUBEX(CIMException::FAILED, "x", cause);
    } catch (const CIMException& e) {
        EXPECT_STREQ(e.getSubException()->getMessage(), "cause");
    }
    EXPECT_NE(line, 0);
    EXPECT_THROW(OW_THROWCIM(CIMException::FAILED), CIMException);
    EXPECT_THROW(OW_THROWCIMMSG(CIMException::FAILED, "x"), Exception);
    EXPECT_THROW(OW_THROWCIM_SUBEX(CIMException::FAILED, "x", cause), CIMException);
}

TEST(CIMException, OtherExceptionsAreNoneOfItsKind) {
    try {
        OW_THROW(NULLValueException, "x");
    } catch (const CIMException&) {
        FAIL() << "caught as a CIMException";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.type(), "NULLValueException");
    }
}

} // namespace
} // namespace OpenWBEM
