#include "OW_CIMException.hpp"
#include "OW_String.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

namespace OpenWBEM {
namespace {

// Closes nothing: an exception object may outlive the call.
class ThrowerLibrary : public testing::Test {
protected:
    void SetUp() override {
        m_handle = ::dlopen(THROWER_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(m_handle, nullptr) << ::dlerror();
    }
    void call(const char* name) {
        typedef void (*Function)();
        const auto function = reinterpret_cast<Function>(::dlsym(m_handle, name));
        ASSERT_NE(function, nullptr) << name;
        function();
    }

private:
    void* m_handle = nullptr;
};

TEST_F(ThrowerLibrary, CIMExceptionIsCaughtByItsClass) {
    try {
        call("throwCIMException");
        FAIL() << "nothing was thrown";
    } catch (const CIMException& e) {
        EXPECT_EQ(e.getErrNo(), CIMException::NOT_FOUND);
        EXPECT_STREQ(e.getMessage(), "requested object could not be found (from the library)");
    }
}

TEST_F(ThrowerLibrary, StringConversionExceptionIsCaughtByItsClass) {
    EXPECT_THROW(call("throwStringConversionException"), StringConversionException);
}

TEST_F(ThrowerLibrary, ClassWithoutPublicNameIsCaughtAsException) {
    try {
        call("throwNullDereference");
        FAIL() << "nothing was thrown";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.type(), "NULLCOWIntrusiveReferenceException");
    }
}

} // namespace
} // namespace OpenWBEM
