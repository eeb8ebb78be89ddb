#include "OW_Exception.hpp"

#include "OW_Array.hpp"
#include "OW_Assertion.hpp"
#include "OW_EnumerationException.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_NoSuchPropertyException.hpp"
#include "OW_NoSuchQualifierException.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

namespace OpenWBEM {
namespace {

OW_DECLARE_EXCEPTION(Plain)
OW_DEFINE_EXCEPTION(Plain)

OW_DECLARE_EXCEPTION2(Special, PlainException)
OW_DEFINE_EXCEPTION(Special)

std::string printed(const Exception& e) {
    std::ostringstream stream;
    stream << e;
    return stream.str();
}

// The copies that clone() makes are the caller's to delete, as what they derive from.
std::unique_ptr<std::exception> cloned(const Exception& e) {
    return std::unique_ptr<std::exception>(e.clone());
}

TEST(Exception, KeepsWhatItIsMadeFrom) {
    const PlainException cause("cause.cpp", 1, "cause");
    const PlainException e("file.cpp", 12, "message", 7, &cause, 99);
    EXPECT_STREQ(e.type(), "PlainException");
    EXPECT_STREQ(e.getMessage(), "message");
    EXPECT_STREQ(e.what(), "message");
    EXPECT_STREQ(e.getFile(), "file.cpp");
    EXPECT_EQ(e.getLine(), 12);
    EXPECT_EQ(e.getErrorCode(), 7);
    EXPECT_EQ(e.getSubClassId(), 99);
    ASSERT_NE(e.getSubException(), nullptr);
    EXPECT_NE(e.getSubException(), &cause);
    EXPECT_STREQ(e.getSubException()->getMessage(), "cause");
}

TEST(Exception, DefaultsAreMinusOneAndNoCause) {
    const PlainException e("file.cpp", 12, "message");
    EXPECT_EQ(e.getErrorCode(), -1);
    EXPECT_EQ(e.getSubClassId(), -1);
    EXPECT_EQ(e.getSubException(), nullptr);
    EXPECT_EQ(Exception::UNKNOWN_ERROR_CODE, -1);
    EXPECT_EQ(Exception::UNKNOWN_SUBCLASS_ID, -1);
}

TEST(Exception, MissingTextsAreEmptyAndNeverNull) {
    const PlainException e(nullptr, 0, nullptr);
    EXPECT_STREQ(e.getMessage(), "");
    EXPECT_STREQ(e.what(), "");
    EXPECT_STREQ(e.getFile(), "");
}

TEST(Exception, CopiesItsTexts) {
    char message[] = "before";
    char file[] = "file";
    const PlainException e(file, 1, message);
    message[0] = 'X';
    file[0] = 'X';
    EXPECT_STREQ(e.getMessage(), "before");
    EXPECT_STREQ(e.getFile(), "file");
}

TEST(Exception, StreamFormNamesWhatIsMissing) {
    EXPECT_EQ(printed(PlainException("a.cpp", 3, "text")), "a.cpp: 3 PlainException: text");
    EXPECT_EQ(printed(PlainException(nullptr, 3, "text")), "[no file]: 3 PlainException: text");
    EXPECT_EQ(printed(PlainException("a.cpp", 0, "text")), "a.cpp: [no line] PlainException: text");
    EXPECT_EQ(printed(PlainException("a.cpp", 3, nullptr)),
              "a.cpp: 3 PlainException: [no message]");
    EXPECT_EQ(printed(PlainException(nullptr, 0, "")),
              "[no file]: [no line] PlainException: [no message]");
}

TEST(Exception, CloneIsACopyOfTheSameClass) {
    std::unique_ptr<std::exception> copy;
    {
        const PlainException cause("cause.cpp", 1, "cause");
        const SpecialException e("file.cpp", 12, "message", 7, &cause, 99);
        copy = cloned(e);
    }
    const auto* const special = dynamic_cast<const SpecialException*>(copy.get());
    ASSERT_NE(special, nullptr);
    EXPECT_EQ(printed(*special), "file.cpp: 12 SpecialException: message");
    EXPECT_EQ(special->getErrorCode(), 7);
    EXPECT_EQ(special->getSubClassId(), 99);
    EXPECT_STREQ(special->getSubException()->getMessage(), "cause");
}

TEST(Exception, AssignmentReplacesEverything) {
    PlainException e("a.cpp", 1, "first", 1);
    const PlainException other("b.cpp", 2, "second", 2, &e, 3);
    e = other;
    EXPECT_EQ(printed(e), "b.cpp: 2 PlainException: second");
    EXPECT_EQ(e.getErrorCode(), 2);
    EXPECT_EQ(e.getSubClassId(), 3);
    EXPECT_STREQ(e.getSubException()->getMessage(), "first");
}

TEST(Exception, DeclaredWithABaseIsCaughtAsThatBase) {
    EXPECT_THROW(OW_THROW(SpecialException, "x"), PlainException);
    EXPECT_THROW(OW_THROW(SpecialException, "x"), std::exception);
}

// What the macros below leave in an exception.
template <class F>
std::string thrown(F f) {
    try {
        f();
    } catch (const Exception& e) {
        const Exception* const cause = e.getSubException();
        return std::string(e.type()) + "|" + e.getMessage() + "|" +
               std::to_string(e.getErrorCode()) + "|" + (cause ? cause->getMessage() : "none");
    }
    return "nothing thrown";
}

TEST(ThrowMacros, FillInWhatTheyAreGiven) {
    const PlainException cause("c", 1, "cause");
    EXPECT_EQ(thrown([] { OW_THROW(PlainException, "m"); }), "PlainException|m|-1|none");
    EXPECT_EQ(thrown([] { OW_THROW_ERR(PlainException, "m", 5); }), "PlainException|m|5|none");
    EXPECT_EQ(thrown([&] { OW_THROW_SUBEX(PlainException, "m", cause); }),
              "PlainException|m|-1|cause");
    EXPECT_EQ(thrown([&] { OW_THROW_ERR_SUBEX(PlainException, "m", 5, cause); }),
              "PlainException|m|5|cause");
}

TEST(ThrowMacros, NameTheirPlace) {
    int line = 0;
    try {
        line = __LINE__ + 1;
        OW_THROW(PlainException, "m");
    } catch (const Exception& e) {
        EXPECT_STREQ(e.getFile(), __FILE__);
        EXPECT_EQ(e.getLine(), line);
        return;
    }
    FAIL() << "nothing was thrown";
}

TEST(ThrowMacros, LineCanBeGiven) {
    try {
        OW_THROWL(PlainException, 4711, "m");
    } catch (const Exception& e) {
        EXPECT_STREQ(e.getFile(), __FILE__);
        EXPECT_EQ(e.getLine(), 4711);
        return;
    }
    FAIL() << "nothing was thrown";
}

TEST(ThrowMacros, ErrnoBecomesCodeAndText) {
    const std::string words = std::strerror(ENOENT);
    const std::string number = std::to_string(ENOENT);
    EXPECT_EQ(thrown([] {
                  errno = ENOENT;
                  OW_THROW_ERRNO(PlainException);
              }),
              "PlainException|" + words + "|" + number + "|none");
    EXPECT_EQ(thrown([] {
                  errno = ENOENT;
                  OW_THROW_ERRNO_MSG(PlainException, "opening");
              }),
              "PlainException|opening: " + number + "(" + words + ")|" + number + "|none");
}

struct Kind {
    const char* type;
    int subClassId;
    void (*raise)();
};

const Kind KINDS[] = {
    {"StringConversionException", 37, [] { OW_THROW(StringConversionException, "m"); }},
    {"OutOfBoundsException", 31, [] { OW_THROW(OutOfBoundsException, "m"); }},
    {"NULLValueException", 29, [] { OW_THROW(NULLValueException, "m"); }},
    {"NoSuchPropertyException", 26, [] { OW_THROW(NoSuchPropertyException, "m"); }},
    {"NoSuchQualifierException", 28, [] { OW_THROW(NoSuchQualifierException, "m"); }},
    {"EnumerationException", 18, [] { OW_THROW(EnumerationException, "m"); }},
    {"AssertionException", -1, [] { OW_THROW(AssertionException, "m"); }},
};

TEST(ExceptionClasses, HaveTheirNamesAndIds) {
    for (const Kind& kind : KINDS) {
        try {
            kind.raise();
            ADD_FAILURE() << kind.type << " was not thrown";
        } catch (const Exception& e) {
            EXPECT_STREQ(e.type(), kind.type);
            EXPECT_EQ(e.getSubClassId(), kind.subClassId) << kind.type;
            EXPECT_EQ(e.getErrorCode(), -1) << kind.type;
            EXPECT_STREQ(dynamic_cast<Exception&>(*cloned(e)).type(), kind.type);
        }
    }
}

TEST(ExceptionClasses, AnIdOfTheThrowerWins) {
    const NULLValueException e("f", 1, "m", 3, nullptr, 1000);
    EXPECT_EQ(e.getSubClassId(), 1000);
    EXPECT_EQ(e.getErrorCode(), 3);
}

TEST(Assertion, DoesNotEvenEvaluateInAStandardBuild) {
    int evaluated = 0;
    OW_ASSERT(++evaluated == 0);
    EXPECT_EQ(evaluated, 0);
}

} // namespace
} // namespace OpenWBEM
