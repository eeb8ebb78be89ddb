#include "OW_OperationContext.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace OpenWBEM {

TEST(OperationContext, KeepsTextsByKey) {
    OperationContext context;
    context.setStringData("a", "one");
    context.setStringData("b", "");
    EXPECT_EQ(context.getStringData("a"), "one");
    EXPECT_EQ(context.getStringData("b"), "");
    EXPECT_TRUE(context.keyHasData("a"));
    EXPECT_TRUE(context.keyHasData("b"));
    EXPECT_FALSE(context.keyHasData("A"));
}

TEST(OperationContext, LaterTextReplacesTheEarlier) {
    OperationContext context;
    context.setStringData("a", "one");
    context.setStringData("a", "two");
    EXPECT_EQ(context.getStringData("a"), "two");
}

TEST(OperationContext, AbsentKeyThrows) {
    OperationContext context;
    try {
        context.getStringData("absent");
        ADD_FAILURE() << "nothing thrown";
    } catch (const ContextDataNotFoundException& e) {
        EXPECT_STREQ(e.type(), "ContextDataNotFoundException");
        EXPECT_STREQ(e.getMessage(), "absent");
        EXPECT_EQ(e.getErrorCode(), -1);
        EXPECT_EQ(e.getSubClassId(), 30);
    }
}

TEST(OperationContext, DefaultStandsInForAnAbsentKey) {
    OperationContext context;
    EXPECT_EQ(context.getStringDataWithDefault("a", "default"), "default");
    EXPECT_EQ(context.getStringDataWithDefault("a"), "");
    context.setStringData("a", "one");
    EXPECT_EQ(context.getStringDataWithDefault("a", "default"), "one");
}

TEST(OperationContext, RemovedKeyIsAbsent) {
    OperationContext context;
    context.setStringData("a", "one");
    context.removeData("a");
    context.removeData("never there");
    EXPECT_FALSE(context.keyHasData("a"));
    EXPECT_THROW(context.getStringData("a"), ContextDataNotFoundException);
}

TEST(OperationContext, ItsOwnKeysDiffer) {
    OperationContext context;
    context.setStringData(OperationContext::USER_NAME, "name");
    context.setStringData(OperationContext::USER_PASSWD, "word");
    context.setStringData(OperationContext::HTTP_PATH, "path");
    EXPECT_EQ(context.getStringData(OperationContext::USER_NAME), "name");
    EXPECT_EQ(context.getStringData(OperationContext::USER_PASSWD), "word");
    EXPECT_EQ(context.getStringData(OperationContext::HTTP_PATH), "path");
}

TEST(OperationContext, IsNotCopied) {
    EXPECT_FALSE(std::is_copy_constructible<OperationContext>::value);
    EXPECT_FALSE(std::is_copy_assignable<OperationContext>::value);
}

} // namespace OpenWBEM
