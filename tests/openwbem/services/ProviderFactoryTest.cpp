#include "openwbem/services/EnvironmentDouble.hpp"

#include "OW_CppProviderBaseIFC.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

namespace OpenWBEM {
namespace {

typedef const char* (*VersionFunction)();
typedef CppProviderBaseIFC* (*FactoryFunction)();

// A provider library opened as the server opens it.
class Opened {
public:
    explicit Opened(const char* file) : library_(dlopen(file, RTLD_NOW | RTLD_GLOBAL)) {
        EXPECT_NE(library_, nullptr) << dlerror();
    }
    ~Opened() {
        if (library_ != nullptr) {
            dlclose(library_);
        }
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    bool has(const char* symbol) const { return dlsym(library_, symbol) != nullptr; }
    template <class Function>
    Function function(const char* symbol) const {
        return reinterpret_cast<Function>(dlsym(library_, symbol));
    }

private:
    void* library_;
};

void expectProvider(const Opened& library, const char* factory) {
    const FactoryFunction create = library.function<FactoryFunction>(factory);
    ASSERT_NE(create, nullptr);
    const IntrusiveReference<CppProviderBaseIFC> provider(create());
    ASSERT_NE(provider.getPtr(), nullptr);
    EXPECT_NE(provider->getInstanceProvider(), nullptr);
    EXPECT_NE(provider->getMethodProvider(), nullptr);
    EXPECT_NE(provider->getAssociatorProvider(), nullptr);
    EXPECT_EQ(provider->getPolledProvider(), nullptr);
    EXPECT_EQ(provider->getIndicationExportProvider(), nullptr);
    EXPECT_EQ(provider->getIndicationProvider(), nullptr);
    EXPECT_EQ(provider->getSecondaryInstanceProvider(), nullptr);
}

} // namespace

TEST(ProviderFactory, NamesTheFactoryAfterTheId) {
    const Opened library(SAMPLE_WITH_ID);
    ASSERT_TRUE(library.has("getOWVersion"));
    EXPECT_STREQ(library.function<VersionFunction>("getOWVersion")(), "3.0.3");
    EXPECT_STREQ(OW_VERSION, "3.0.3");
    EXPECT_FALSE(library.has("createProviderNO_ID"));
    expectProvider(library, "createProviderServicesSample");
}

TEST(ProviderFactory, MakesAnObjectOfItsOwnEachTime) {
    const Opened library(SAMPLE_WITH_ID);
    const FactoryFunction create =
        library.function<FactoryFunction>("createProviderServicesSample");
    ASSERT_NE(create, nullptr);
    const IntrusiveReference<CppProviderBaseIFC> first(create());
    const IntrusiveReference<CppProviderBaseIFC> second(create());
    EXPECT_NE(first, second);
}

TEST(ProviderFactory, WithoutIdIsCalledNoId) {
    for (const char* file : {SAMPLE_WITHOUT_ID, SAMPLE_OLD_SPELLING}) {
        SCOPED_TRACE(file);
        const Opened library(file);
        ASSERT_TRUE(library.has("getOWVersion"));
        EXPECT_STREQ(library.function<VersionFunction>("getOWVersion")(), "3.0.3");
        EXPECT_FALSE(library.has("createProviderServicesSample"));
        EXPECT_FALSE(library.has("createProviderWhatever"));
        expectProvider(library, "createProviderNO_ID");
    }
}

TEST(ProviderFactory, StaticServicesLeaveTheVersionOut) {
    const Opened library(SAMPLE_STATIC);
    EXPECT_FALSE(library.has("getOWVersion"));
    expectProvider(library, "createProviderServicesSample");
}

TEST(ProviderFactory, ObjectFromTheLibraryUsesTheServersEnvironment) {
    const Opened library(SAMPLE_WITH_ID);
    const FactoryFunction create =
        library.function<FactoryFunction>("createProviderServicesSample");
    ASSERT_NE(create, nullptr);
    EnvironmentDouble* const own = new EnvironmentDouble;
    const ProviderEnvironmentIFCRef env(own);
    const IntrusiveReference<CppProviderBaseIFC> provider(create());
    provider->initialize(env);
    ASSERT_EQ(own->lines->size(), 1u);
    EXPECT_EQ(own->lines->front().component, "sample");
    EXPECT_EQ(own->lines->front().category, "INFO");
    EXPECT_EQ(own->lines->front().message, "sample initialized");
}

// The provider API brings nothing into a library that would keep it mapped for good.
TEST(ProviderFactory, ClosedLibraryIsGone) {
    {
        const Opened library(SAMPLE_WITH_ID);
        expectProvider(library, "createProviderServicesSample");
        void* const second = dlopen(SAMPLE_WITH_ID, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(second, nullptr);
        dlclose(second);
    }
    EXPECT_EQ(dlopen(SAMPLE_WITH_ID, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

} // namespace OpenWBEM
