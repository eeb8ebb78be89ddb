#include "OW_Array.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_ResultHandlers.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>
#include <vector>

namespace OpenWBEM {
namespace {

class Collector : public StringResultHandlerIFC {
public:
    std::vector<String> values;

protected:
    void doHandle(const String& value) override {
        if (value == "bad") {
            throw std::runtime_error("refused");
        }
        values.push_back(value);
    }
};

CIMInstance instanceOf(const char* className) {
    CIMInstance instance;
    instance.setClassName(className);
    return instance;
}

void giveInstances(CIMInstanceResultHandlerIFC& result) {
    result.handle(instanceOf("A"));
    result.handle(instanceOf("B"));
}

void givePaths(CIMObjectPathResultHandlerIFC& result) {
    result.handle(CIMObjectPath("A"));
    result.handle(CIMObjectPath("B"));
}

} // namespace

TEST(ResultHandler, HandsEachValueToTheImplementation) {
    Collector collector;
    StringResultHandlerIFC& result = collector;
    result.handle("a");
    result.handle("b");
    EXPECT_EQ(collector.values, (std::vector<String>{"a", "b"}));
}

TEST(ResultHandler, FailureReachesTheCaller) {
    Collector collector;
    EXPECT_THROW(collector.handle("bad"), std::runtime_error);
}

TEST(ResultHandlerTypes, AreThoseOfTheTemplate) {
    EXPECT_TRUE((std::is_same<CIMInstanceResultHandlerIFC, ResultHandlerIFC<CIMInstance>>::value));
    EXPECT_TRUE(
        (std::is_same<CIMObjectPathResultHandlerIFC, ResultHandlerIFC<CIMObjectPath>>::value));
    EXPECT_TRUE((std::is_same<CIMClassResultHandlerIFC, ResultHandlerIFC<CIMClass>>::value));
    EXPECT_TRUE((std::is_same<StringResultHandlerIFC, ResultHandlerIFC<String>>::value));
    EXPECT_TRUE((
        std::is_same<CIMQualifierTypeResultHandlerIFC, ResultHandlerIFC<CIMQualifierType>>::value));
}

TEST(ResultBuilders, FillAnEnumerationOfInstances) {
    CIMInstanceEnumeration target;
    CIMInstanceEnumBuilder builder(target);
    giveInstances(builder);
    ASSERT_EQ(target.numberOfElements(), 2u);
    EXPECT_EQ(target.nextElement().getClassName(), "A");
    EXPECT_EQ(target.nextElement().getClassName(), "B");
}

TEST(ResultBuilders, AppendToAnArrayOfInstances) {
    CIMInstanceArray target(1, instanceOf("first"));
    CIMInstanceArrayBuilder builder(target);
    giveInstances(builder);
    ASSERT_EQ(target.size(), 3u);
    EXPECT_EQ(target[0].getClassName(), "first");
    EXPECT_EQ(target[1].getClassName(), "A");
    EXPECT_EQ(target[2].getClassName(), "B");
}

TEST(ResultBuilders, FillAnEnumerationOfPaths) {
    CIMObjectPathEnumeration target;
    CIMObjectPathEnumBuilder builder(target);
    givePaths(builder);
    ASSERT_EQ(target.numberOfElements(), 2u);
    EXPECT_EQ(target.nextElement().getClassName(), "A");
    EXPECT_EQ(target.nextElement().getClassName(), "B");
}

TEST(ResultBuilders, AppendToAnArrayOfPaths) {
    CIMObjectPathArray target;
    CIMObjectPathArrayBuilder builder(target);
    givePaths(builder);
    ASSERT_EQ(target.size(), 2u);
    EXPECT_EQ(target[0].getClassName(), "A");
    EXPECT_EQ(target[1].getClassName(), "B");
}

TEST(ResultBuilders, AreMadeFromTheirTargetWithoutCast) {
    EXPECT_TRUE((std::is_convertible<CIMInstanceEnumeration&, CIMInstanceEnumBuilder>::value));
    EXPECT_TRUE((std::is_convertible<CIMInstanceArray&, CIMInstanceArrayBuilder>::value));
    EXPECT_TRUE((std::is_convertible<CIMObjectPathEnumeration&, CIMObjectPathEnumBuilder>::value));
    EXPECT_TRUE((std::is_convertible<CIMObjectPathArray&, CIMObjectPathArrayBuilder>::value));
}

} // namespace OpenWBEM
