// A null object of any class can be tested and assigned; every other use throws.
#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace {

using namespace OpenWBEM;
using tests::Thrown;

template <class T>
class NullObject : public testing::Test {};

using Classes = testing::Types<CIMClass, CIMInstance, CIMMethod, CIMObjectPath, CIMParamValue,
                               CIMParameter, CIMProperty, CIMQualifier, CIMQualifierType>;
TYPED_TEST_SUITE(NullObject, Classes);

TYPED_TEST(NullObject, TestsFalseAndCanBeAssigned) {
    TypeParam object(CIMNULL);
    EXPECT_TRUE(!object);
    EXPECT_FALSE(object);
    object = TypeParam();
    EXPECT_FALSE(!object);
    EXPECT_TRUE(object);
    TypeParam copy(object);
    object.setNull();
    EXPECT_TRUE(!object);
    EXPECT_TRUE(copy);
}

TYPED_TEST(NullObject, ThrowsOnEveryOtherUse) {
    const TypeParam object(CIMNULL);
    EXPECT_EQ(Thrown([&] { object.toString(); }), tests::nullUsed);
}

TYPED_TEST(NullObject, MovingLeavesTheTargetWhole) {
    TypeParam source;
    const std::string before = tests::Text(source.toString());
    TypeParam target(std::move(source));
    EXPECT_EQ(tests::Text(target.toString()), before);
    source = target;
    EXPECT_EQ(tests::Text(source.toString()), before);
}

TEST(NullObjects, MembersThrow) {
    CIMProperty property(CIMNULL);
    EXPECT_EQ(Thrown([&] { property.getName(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { property.getValue(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { property.setValue(CIMValue(1)); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { property.isKey(); }), tests::nullUsed);
    CIMInstance instance(CIMNULL);
    EXPECT_EQ(Thrown([&] { instance.getClassName(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { instance.getProperties(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { instance.setProperty("a", CIMValue(1)); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { CIMObjectPath("root", instance); }), tests::nullUsed);
    CIMObjectPath path(CIMNULL);
    EXPECT_EQ(Thrown([&] { path.getKeys(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { path.setKeyValue("a", CIMValue(1)); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { path.isClassPath(); }), tests::nullUsed);
    CIMClass cimClass(CIMNULL);
    EXPECT_EQ(Thrown([&] { cimClass.getName(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { cimClass.newInstance(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { (void)(cimClass == CIMClass("A")); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { (void)(property == CIMProperty("a")); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { CIMMethod(CIMNULL).getParameters(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { CIMParameter(CIMNULL).getType(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { CIMQualifier(CIMNULL).getName(); }), tests::nullUsed);
    EXPECT_EQ(Thrown([&] { CIMParamValue(CIMNULL).getValue(); }), tests::nullUsed);
}

} // namespace
