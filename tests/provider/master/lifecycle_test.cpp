#include "MasterTest.hpp"

#include "OW_InstanceProviderInfo.hpp"
#include "OW_MethodProviderInfo.hpp"

using namespace OpenWBEM;
using test_support::PathOf;
using test_support::ToolAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

bool SwitchAfter(const char* value, const ProviderEnvironmentIFCRef& env) {
    if (value == nullptr) {
        unsetenv("provider_agent_debug");
    } else {
        setenv("provider_agent_debug", value, 1);
    }
    SoftwareUpdateProvider master;
    master.initialize(env);
    unsetenv("provider_agent_debug");
    return gProviderAgentDebug;
}

} // namespace

TEST(EntryPoints, TheVersionIsThatOfTheInterface) {
    EXPECT_STREQ(getOWVersion(), "3.0.3");
}

TEST(EntryPoints, TheFactoryMakesANewMasterEachTime) {
    CppProviderBaseIFC* const first = createProviderSoftwareUpdateProvider();
    CppProviderBaseIFC* const second = createProviderSoftwareUpdateProvider();
    EXPECT_NE(first, second);
    EXPECT_NE(dynamic_cast<SoftwareUpdateProvider*>(first), nullptr);
    EXPECT_NE(first->getInstanceProvider(), nullptr);
    delete first;
    delete second;
}

// At its start the server asks an object that it never initializes, and drops it.
TEST(EntryPoints, AnObjectThatIsNeverInitializedIsHarmless) {
    CppProviderBaseIFC* const object = createProviderSoftwareUpdateProvider();
    EXPECT_EQ(object->getPolledProvider(), nullptr);
    EXPECT_EQ(object->getIndicationExportProvider(), nullptr);
    EXPECT_EQ(object->getSecondaryInstanceProvider(), nullptr);
    EXPECT_EQ(object->getIndicationProvider(), nullptr);
    InstanceProviderInfo instanceInfo;
    object->getInstanceProvider()->getInstanceProviderInfo(instanceInfo);
    EXPECT_TRUE(instanceInfo.getClassInfo().empty());
    MethodProviderInfo methodInfo;
    object->getMethodProvider()->getMethodProviderInfo(methodInfo);
    EXPECT_TRUE(methodInfo.getClassInfo().empty());
    EXPECT_TRUE(object->canUnload());
    delete object;
    EXPECT_FALSE(gLogger);
}

using Initialize = LogTest;

TEST_F(Initialize, NumbersOtherThanZeroSwitchDebugOutputOn) {
    for (const char* const on : {"1", "2", "-1", "1x", " 7"}) {
        EXPECT_TRUE(SwitchAfter(on, env)) << on;
    }
    for (const char* const off : {"0", "", "no", "x1", "00"}) {
        EXPECT_FALSE(SwitchAfter(off, env)) << off;
    }
    EXPECT_FALSE(SwitchAfter(nullptr, env));
}

TEST_F(Initialize, TakesTheServersLogger) {
    gLogger = LoggerRef();
    SoftwareUpdateProvider master;
    master.initialize(env);
    ASSERT_TRUE(gLogger);
    gLogger->logInfo("hello");
    EXPECT_THAT(log->All(), ElementsAre("INFO: hello"));
    for (const std::string& component : environment->LoggersAskedFor()) {
        EXPECT_EQ(component, "ow.provider.SoftwareUpdateProvider");
    }
}

TEST_F(Initialize, InitializesTheInventory) {
    SoftwareUpdateProvider master;
    master.initialize(env);
    EXPECT_EQ(Text(gEMCartridgeName), "znxliteEMcartridge");
    environment->SetConfigItem("qv.em_filename", "cartridge");
    master.initialize(env);
    EXPECT_EQ(Text(gEMCartridgeName), "cartridge");
}

TEST_F(Initialize, LogsNothingAndDoesNotKeepTheEnvironment) {
    SoftwareUpdateProvider master;
    master.initialize(env);
    EXPECT_THAT(log->All(), IsEmpty());
    // What still refers to the environment would be found by a sanitizer after this.
    env = ProviderEnvironmentIFCRef();
    OutputDebug("still logged");
    EXPECT_THAT(log->All(), ElementsAre("INFO: still logged"));
}

using Unloading = MasterTest;

TEST_F(Unloading, IsRefusedWhileABackgroundTaskRuns) {
    tool.Plays("--setinprogress", ToolAnswer()).Plays("--apply", ToolAnswer().Held());
    EXPECT_TRUE(master.canUnload());
    SpawnBackgroundThread("/qv/bin/patchkeeper --apply");
    ASSERT_TRUE(tool.WaitForCalls(2));
    EXPECT_FALSE(master.canUnload());
    tool.Release("--apply");
    WaitForBackgroundTasks();
    EXPECT_TRUE(master.canUnload());
}

// The server may drop an object of the library while it asks another one. Lists, logger and the
// name of the cartridge are the library's.
TEST_F(Unloading, CleanupTakesNothingFromTheOtherObjects) {
    {
        SoftwareUpdateProvider another;
        another.initialize(env);
        calls.EnumInstances("ZNX_SoftwareIdentity");
        another.cleanup();
    }
    tool.ForgetCalls();
    log->Forget();
    EXPECT_EQ(ValueOf(calls.GetInstance(PathOf("ZNX_SoftwareIdentity", "InstanceID", "0")), "Name"),
              "bash");
    EXPECT_EQ(ValueOf(calls.GetInstance(
                          PathOf("ZNX_ElementManagerCartridgeVersionInfo", "Version", "7.1")),
                      "Version"),
              "7.1");
    EXPECT_EQ(ValueOf(calls.GetInstance(PathOf("ZNX_AvailableSoftwareUpdate", "InstanceID", "1")),
                      "Name"),
              "Dummy");
    EXPECT_THAT(tool.Calls(), IsEmpty());
    EXPECT_TRUE(log->Contains("INFO: ZNX_SoftwareIdentity.getInstance()"));
}
