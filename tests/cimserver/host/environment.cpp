#include "cimserver/host/Environment.hpp"
#include "cimserver/host/HostTest.hpp"

#include "OW_CIMOMHandleIFC.hpp"
#include "OW_OperationContext.hpp"
#include "OW_RepositoryIFC.hpp"

#include <csignal>
#include <functional>

namespace hosttest {
namespace {

using OpenWBEM::ProviderEnvironmentIFCRef;
using testing::ElementsAre;

class ProviderEnvironment : public HostTest {
protected:
    void Inside(const std::string& user,
                const std::function<void(const ProviderEnvironmentIFCRef&)>& look) {
        bool looked = false;
        TheHost().WithInstanceProvider({"root/cimv2", "HT_Class", "c++::Good"},
                                       {"GetInstance", user}, [&](auto&, const auto& env) {
                                           looked = true;
                                           look(env);
                                       });
        EXPECT_TRUE(looked);
    }
    void SetUp() override { Install("Good"); }
};

TEST_F(ProviderEnvironment, UserIsThatOfTheRequest) {
    Start();
    Inside("anna", [](const auto& env) {
        EXPECT_EQ(env->getUserName(), OpenWBEM::String("anna"));
        EXPECT_EQ(env->getOperationContext().getStringData(OpenWBEM::OperationContext::USER_NAME),
                  OpenWBEM::String("anna"));
    });
    Inside("", [](const auto& env) { EXPECT_TRUE(env->getUserName().empty()); });
}

TEST_F(ProviderEnvironment, ContextIsTheRequestsOwn) {
    Start();
    Inside("", [](const auto& env) { env->getOperationContext().setStringData("mine", "1"); });
    Inside("",
           [](const auto& env) { EXPECT_FALSE(env->getOperationContext().keyHasData("mine")); });
}

TEST_F(ProviderEnvironment, ConfigItemsComeFromTheServer) {
    auto settings = Settings();
    settings.configItem = [](const OpenWBEM::String& name, const OpenWBEM::String& fallback) {
        return name == "qv.em_filename" ? OpenWBEM::String("cartridge") : fallback;
    };
    Start(settings);
    Inside("", [](const auto& env) {
        EXPECT_EQ(env->getConfigItem("qv.em_filename"), OpenWBEM::String("cartridge"));
        EXPECT_EQ(env->getConfigItem("absent", "default"), OpenWBEM::String("default"));
        EXPECT_EQ(env->getConfigItem("absent"), OpenWBEM::String());
    });
}

TEST_F(ProviderEnvironment, LoggersAreFreshClonesThatOutliveTheRequest) {
    Start();
    OpenWBEM::LoggerRef kept;
    Inside("", [&](const auto& env) {
        kept = env->getLogger("my.component");
        kept->setLogLevel(OpenWBEM::E_DEBUG_LEVEL);
        // The form without component is out of favour, but there; only the base class says so.
        const auto plain = dynamic_cast<const cimserver::host::Environment&>(*env).getLogger();
        plain->logError("one");
        plain->logInfo("not at this level");
    });
    kept->logDebug("two");
    EXPECT_THAT(LogTaken(),
                ElementsAre("ow.owcimomd.CIMServer ERROR one", "my.component DEBUG two"));
}

TEST_F(ProviderEnvironment, ThereIsNoWayBackIntoTheServer) {
    Start();
    Inside("", [](const auto& env) {
        EXPECT_FALSE(env->getCIMOMHandle());
        EXPECT_FALSE(env->getRepositoryCIMOMHandle());
        EXPECT_FALSE(env->getRepository());
    });
}

// A program that the provider starts inherits the mask of the thread.
TEST_F(ProviderEnvironment, NoSignalIsBlockedDuringACall) {
    Start();
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGPIPE);
    sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    Inside("", [](const auto&) {
        sigset_t now;
        pthread_sigmask(SIG_SETMASK, nullptr, &now);
        EXPECT_TRUE(sigisemptyset(&now));
    });
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, &before, &after);
    EXPECT_TRUE(sigismember(&after, SIGPIPE));
    EXPECT_TRUE(sigismember(&after, SIGTERM));
}

} // namespace
} // namespace hosttest
