#include "openwbem/services/EnvironmentDouble.hpp"
#include "openwbem/services/SampleProvider.hpp"

#include "OW_AssociatorProviderInfo.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_MethodProviderInfo.hpp"

#include <gtest/gtest.h>

#include <ctime>
#include <type_traits>
#include <vector>

namespace OpenWBEM {
namespace {

class PlainProvider : public CppProviderBaseIFC {
public:
    explicit PlainProvider(int* ended = nullptr) : ended_(ended) {}
    ~PlainProvider() override {
        if (ended_ != nullptr) {
            ++*ended_;
        }
    }

private:
    int* ended_;
};

struct Asked {
    const ProviderEnvironmentIFC* env;
    String ns;
    String path;
    WBEMFlags::ELocalOnlyFlag localOnly;
    WBEMFlags::EIncludeQualifiersFlag includeQualifiers;
    WBEMFlags::EIncludeClassOriginFlag includeClassOrigin;
    const StringArray* propertyList;
    String cimClass;
};

// Names two instances and records how each of them is asked for.
class NamingProvider : public InstanceSample {
public:
    void enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns,
                           const String& className, CIMObjectPathResultHandlerIFC& result,
                           const CIMClass& cimClass) override {
        namesAsked.push_back(
            {env.getPtr(), ns, className, {}, {}, {}, nullptr, cimClass.getName()});
        result.handle(CIMObjectPath("One"));
        result.handle(CIMObjectPath("Two"));
    }
    CIMInstance getInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                            const CIMObjectPath& path, WBEMFlags::ELocalOnlyFlag localOnly,
                            WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                            WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                            const StringArray* propertyList, const CIMClass& cimClass) override {
        instancesAsked.push_back({env.getPtr(), ns, path.getClassName(), localOnly,
                                  includeQualifiers, includeClassOrigin, propertyList,
                                  cimClass.getName()});
        if (path.getClassName() == failing) {
            OW_THROWCIM(CIMException::NOT_FOUND);
        }
        CIMInstance instance;
        instance.setClassName(path.getClassName());
        return instance;
    }

    String failing;
    std::vector<Asked> namesAsked;
    std::vector<Asked> instancesAsked;
};

} // namespace

TEST(ProviderBase, ServesNothingByDefault) {
    PlainProvider provider;
    EXPECT_EQ(provider.getInstanceProvider(), nullptr);
    EXPECT_EQ(provider.getSecondaryInstanceProvider(), nullptr);
    EXPECT_EQ(provider.getMethodProvider(), nullptr);
    EXPECT_EQ(provider.getAssociatorProvider(), nullptr);
    EXPECT_EQ(provider.getIndicationExportProvider(), nullptr);
    EXPECT_EQ(provider.getPolledProvider(), nullptr);
    EXPECT_EQ(provider.getIndicationProvider(), nullptr);
}

TEST(ProviderBase, InitializeMayBeLeftOut) {
    PlainProvider provider;
    EXPECT_NO_THROW(provider.initialize(ProviderEnvironmentIFCRef()));
}

TEST(ProviderBase, CanBeUnloadedAndIsNotPersistentByDefault) {
    PlainProvider provider;
    EXPECT_TRUE(provider.canUnload());
    EXPECT_FALSE(provider.getPersist());
    provider.setPersist();
    EXPECT_TRUE(provider.getPersist());
    provider.setPersist(false);
    EXPECT_FALSE(provider.getPersist());
}

TEST(ProviderBase, KnowsWhenItWasLastUsed) {
    PlainProvider provider;
    EXPECT_EQ(provider.getLastAccessTime(), DateTime());
    DateTime before;
    before.setToCurrent();
    provider.updateAccessTime();
    DateTime after;
    after.setToCurrent();
    EXPECT_LE(before, provider.getLastAccessTime());
    EXPECT_LE(provider.getLastAccessTime(), after);
}

TEST(ProviderBase, CopyTakesOverItsState) {
    PlainProvider provider;
    provider.setPersist();
    provider.updateAccessTime();
    const PlainProvider copy(provider);
    EXPECT_TRUE(copy.getPersist());
    EXPECT_EQ(copy.getLastAccessTime(), provider.getLastAccessTime());
    PlainProvider assigned;
    assigned = provider;
    EXPECT_TRUE(assigned.getPersist());
    EXPECT_EQ(assigned.getLastAccessTime(), provider.getLastAccessTime());
}

TEST(ProviderBase, EndsWithItsLastReference) {
    int ended = 0;
    {
        const CppProviderBaseIFCRef first(SharedLibraryRef(), new PlainProvider(&ended));
        const CppProviderBaseIFCRef second(first);
        EXPECT_EQ(ended, 0);
    }
    EXPECT_EQ(ended, 1);
}

TEST(ProviderBase, ReferencesPairAnObjectWithItsLibrary) {
    EXPECT_TRUE(
        (std::is_same<CppProviderBaseIFCRef,
                      SharedLibraryReference<IntrusiveReference<CppProviderBaseIFC>>>::value));
    EXPECT_TRUE(
        (std::is_same<CppInstanceProviderIFCRef,
                      SharedLibraryReference<IntrusiveReference<CppInstanceProviderIFC>>>::value));
    EXPECT_TRUE(
        (std::is_same<CppMethodProviderIFCRef,
                      SharedLibraryReference<IntrusiveReference<CppMethodProviderIFC>>>::value));
    EXPECT_TRUE((
        std::is_same<CppAssociatorProviderIFCRef,
                     SharedLibraryReference<IntrusiveReference<CppAssociatorProviderIFC>>>::value));
}

TEST(ProviderInterfaces, InstanceProviderServesInstancesOnly) {
    InstanceSample provider;
    EXPECT_EQ(provider.getInstanceProvider(), static_cast<CppInstanceProviderIFC*>(&provider));
    EXPECT_EQ(provider.getMethodProvider(), nullptr);
    EXPECT_EQ(provider.getAssociatorProvider(), nullptr);
    EXPECT_EQ(provider.getSecondaryInstanceProvider(), nullptr);
}

TEST(ProviderInterfaces, MethodProviderServesMethodsOnly) {
    MethodSample provider;
    EXPECT_EQ(provider.getMethodProvider(), static_cast<CppMethodProviderIFC*>(&provider));
    EXPECT_EQ(provider.getInstanceProvider(), nullptr);
    EXPECT_EQ(provider.getAssociatorProvider(), nullptr);
}

TEST(ProviderInterfaces, AssociatorProviderServesInstancesToo) {
    AssociationSample provider;
    EXPECT_EQ(provider.getAssociatorProvider(), static_cast<CppAssociatorProviderIFC*>(&provider));
    EXPECT_EQ(provider.getInstanceProvider(), static_cast<CppInstanceProviderIFC*>(&provider));
    EXPECT_EQ(provider.getMethodProvider(), nullptr);
}

TEST(ProviderInterfaces, InstancesAndMethodsCanBeCombined) {
    InstanceAndMethodSample provider;
    CppProviderBaseIFC& base = provider;
    EXPECT_EQ(base.getInstanceProvider(), static_cast<CppInstanceProviderIFC*>(&provider));
    EXPECT_EQ(base.getMethodProvider(), static_cast<CppMethodProviderIFC*>(&provider));
    EXPECT_EQ(base.getAssociatorProvider(), nullptr);
}

TEST(ProviderInterfaces, MethodsAndAssociationsCanBeCombined) {
    MethodAndAssociationSample provider;
    CppProviderBaseIFC& base = provider;
    EXPECT_EQ(base.getInstanceProvider(), static_cast<CppInstanceProviderIFC*>(&provider));
    EXPECT_EQ(base.getMethodProvider(), static_cast<CppMethodProviderIFC*>(&provider));
    EXPECT_EQ(base.getAssociatorProvider(), static_cast<CppAssociatorProviderIFC*>(&provider));
}

TEST(ProviderInterfaces, RegisterNoClassesByDefault) {
    MethodAndAssociationSample provider;
    InstanceProviderInfo instances;
    MethodProviderInfo methods;
    AssociatorProviderInfo associations;
    provider.getInstanceProviderInfo(instances);
    provider.getMethodProviderInfo(methods);
    provider.getAssociatorProviderInfo(associations);
    EXPECT_TRUE(instances.getClassInfo().empty());
    EXPECT_TRUE(methods.getClassInfo().empty());
    EXPECT_TRUE(associations.getClassInfo().empty());
}

TEST(DefaultEnumInstances, AsksForEachInstanceByItsName) {
    NamingProvider provider;
    const ProviderEnvironmentIFCRef env(new EnvironmentDouble);
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    const StringArray list(1, "p");
    provider.enumInstances(env, "root/x", "Declared", result, WBEMFlags::E_LOCAL_ONLY,
                           WBEMFlags::E_DEEP, WBEMFlags::E_INCLUDE_QUALIFIERS,
                           WBEMFlags::E_INCLUDE_CLASS_ORIGIN, &list, CIMClass("Requested"),
                           CIMClass("Served"));
    ASSERT_EQ(provider.namesAsked.size(), 1u);
    EXPECT_EQ(provider.namesAsked[0].env, env.getPtr());
    EXPECT_EQ(provider.namesAsked[0].ns, "root/x");
    EXPECT_EQ(provider.namesAsked[0].path, "Declared");
    EXPECT_EQ(provider.namesAsked[0].cimClass, "Served");
    ASSERT_EQ(provider.instancesAsked.size(), 2u);
    for (const Asked& asked : provider.instancesAsked) {
        EXPECT_EQ(asked.env, env.getPtr());
        EXPECT_EQ(asked.ns, "root/x");
        EXPECT_EQ(asked.localOnly, WBEMFlags::E_LOCAL_ONLY);
        EXPECT_EQ(asked.includeQualifiers, WBEMFlags::E_INCLUDE_QUALIFIERS);
        EXPECT_EQ(asked.includeClassOrigin, WBEMFlags::E_INCLUDE_CLASS_ORIGIN);
        EXPECT_EQ(asked.propertyList, &list);
        EXPECT_EQ(asked.cimClass, "Served");
    }
    ASSERT_EQ(instances.size(), 2u);
    EXPECT_EQ(instances[0].getClassName(), "One");
    EXPECT_EQ(instances[1].getClassName(), "Two");
}

TEST(DefaultEnumInstances, PassesTheOtherFlagsOnAsWell) {
    NamingProvider provider;
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    provider.enumInstances(ProviderEnvironmentIFCRef(), "root", "A", result,
                           WBEMFlags::E_NOT_LOCAL_ONLY, WBEMFlags::E_SHALLOW,
                           WBEMFlags::E_EXCLUDE_QUALIFIERS, WBEMFlags::E_EXCLUDE_CLASS_ORIGIN,
                           nullptr, CIMClass("A"), CIMClass("A"));
    ASSERT_EQ(provider.instancesAsked.size(), 2u);
    EXPECT_EQ(provider.instancesAsked[0].localOnly, WBEMFlags::E_NOT_LOCAL_ONLY);
    EXPECT_EQ(provider.instancesAsked[0].includeQualifiers, WBEMFlags::E_EXCLUDE_QUALIFIERS);
    EXPECT_EQ(provider.instancesAsked[0].includeClassOrigin, WBEMFlags::E_EXCLUDE_CLASS_ORIGIN);
    EXPECT_EQ(provider.instancesAsked[0].propertyList, nullptr);
}

TEST(DefaultEnumInstances, FailureOfOneEndsIt) {
    NamingProvider provider;
    provider.failing = "Two";
    CIMInstanceArray instances;
    CIMInstanceArrayBuilder result(instances);
    EXPECT_THROW(provider.enumInstances(
                     ProviderEnvironmentIFCRef(), "root", "A", result, WBEMFlags::E_NOT_LOCAL_ONLY,
                     WBEMFlags::E_SHALLOW, WBEMFlags::E_EXCLUDE_QUALIFIERS,
                     WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, nullptr, CIMClass("A"), CIMClass("A")),
                 CIMException);
    EXPECT_EQ(instances.size(), 1u);
}

TEST(ProviderEnvironment, IsUsedThroughItsReference) {
    EnvironmentDouble* const own = new EnvironmentDouble;
    const ProviderEnvironmentIFCRef env(own);
    EXPECT_EQ(env->getConfigItem("known"), "configured");
    EXPECT_EQ(env->getConfigItem("unknown"), "");
    EXPECT_EQ(env->getConfigItem("unknown", "default"), "default");
    EXPECT_EQ(env->getUserName(), "user");
    EXPECT_TRUE(!env->getCIMOMHandle());
    EXPECT_TRUE(!env->getRepositoryCIMOMHandle());
    EXPECT_TRUE(!env->getRepository());
    env->getOperationContext().setStringData(OperationContext::USER_NAME, "user");
    EXPECT_TRUE(env->getOperationContext().keyHasData(OperationContext::USER_NAME));
}

TEST(ProviderEnvironment, LoggerOutlivesIt) {
    std::shared_ptr<LoggedLines> lines;
    LoggerRef logger;
    {
        EnvironmentDouble* const own = new EnvironmentDouble;
        const ProviderEnvironmentIFCRef env(own);
        lines = own->lines;
        logger = env->getLogger("part");
    }
    logger->logInfo("text");
    ASSERT_EQ(lines->size(), 1u);
    EXPECT_EQ(lines->front().component, "part");
}

TEST(WBEMFlags, PlainIsZeroAndExtendedIsOne) {
    using namespace WBEMFlags;
    EXPECT_EQ(std::vector<int>({E_SHALLOW, E_NOT_LOCAL_ONLY, E_EXCLUDE_QUALIFIERS,
                                E_EXCLUDE_CLASS_ORIGIN, E_DONT_ENUM_SUBCLASSES, E_FAILED}),
              std::vector<int>(6, 0));
    EXPECT_EQ(std::vector<int>({E_DEEP, E_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN,
                                E_ENUM_SUBCLASSES, E_SUCCESS}),
              std::vector<int>(6, 1));
}

} // namespace OpenWBEM
