#include "OW_AssociatorProviderInfo.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_MethodProviderInfo.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace OpenWBEM {
namespace {

StringArray list(const char* first, const char* second) {
    StringArray result;
    result.push_back(first);
    result.push_back(second);
    return result;
}

template <class Info>
class InstanceLikeProviderInfo : public testing::Test {};
typedef testing::Types<InstanceProviderInfo, AssociatorProviderInfo> InstanceLikeInfos;

} // namespace

TYPED_TEST_SUITE(InstanceLikeProviderInfo, InstanceLikeInfos);

TYPED_TEST(InstanceLikeProviderInfo, StartsEmpty) {
    const TypeParam info;
    EXPECT_EQ(info.getClassInfo().size(), 0u);
    EXPECT_EQ(info.getProviderName(), "");
}

TYPED_TEST(InstanceLikeProviderInfo, KeepsClassesInOrder) {
    TypeParam info;
    info.addInstrumentedClass("A");
    info.addInstrumentedClass(InstClassInfo("B", list("root", "root/cimv2")));
    info.addInstrumentedClass(typename TypeParam::ClassInfo("A"));
    const typename TypeParam::ClassInfoArray& classes = info.getClassInfo();
    ASSERT_EQ(classes.size(), 3u);
    EXPECT_EQ(classes[0].className, "A");
    EXPECT_TRUE(classes[0].namespaces.empty());
    EXPECT_EQ(classes[1].className, "B");
    EXPECT_EQ(classes[1].namespaces, list("root", "root/cimv2"));
    EXPECT_EQ(classes[2].className, "A");
}

TYPED_TEST(InstanceLikeProviderInfo, KeepsTheProvidersName) {
    TypeParam info;
    info.setProviderName("name");
    EXPECT_EQ(info.getProviderName(), "name");
}

TEST(MethodProviderInfo, KeepsClassesNamespacesAndMethods) {
    MethodProviderInfo info;
    EXPECT_EQ(info.getClassInfo().size(), 0u);
    info.addInstrumentedClass("A");
    info.addInstrumentedClass(
        MethodProviderInfo::ClassInfo("B", list("root", "root/cimv2"), list("Start", "Stop")));
    info.addInstrumentedClass(MethodProviderInfo::ClassInfo("C"));
    const MethodProviderInfo::ClassInfoArray& classes = info.getClassInfo();
    ASSERT_EQ(classes.size(), 3u);
    EXPECT_EQ(classes[0].className, "A");
    EXPECT_TRUE(classes[0].namespaces.empty());
    EXPECT_TRUE(classes[0].methods.empty());
    EXPECT_EQ(classes[1].className, "B");
    EXPECT_EQ(classes[1].namespaces, list("root", "root/cimv2"));
    EXPECT_EQ(classes[1].methods, list("Start", "Stop"));
    EXPECT_EQ(classes[2].className, "C");
}

TEST(MethodProviderInfo, KeepsTheProvidersName) {
    MethodProviderInfo info;
    info.setProviderName("name");
    EXPECT_EQ(info.getProviderName(), "name");
}

TEST(ProviderInfo, ClassNameIsNotTakenForAClassByAccident) {
    EXPECT_FALSE((std::is_convertible<String, InstClassInfo>::value));
    EXPECT_FALSE((std::is_convertible<String, MethodProviderInfo::ClassInfo>::value));
}

} // namespace OpenWBEM
