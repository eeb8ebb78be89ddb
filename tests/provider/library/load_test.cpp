#include "support/ToolDouble.hpp"
#include "support/provider/Provider.hpp"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Environment;
using test_support::LogLines;
using test_support::NotFound;
using test_support::PathOf;
using test_support::ToolAnswer;
using test_support::ToolDouble;

namespace {

std::string OutputOf(const std::string& command) {
    std::FILE* const pipe = popen(command.c_str(), "re");
    std::string output;
    char buffer[4096];
    while (pipe != nullptr && std::fgets(buffer, sizeof(buffer), pipe) != nullptr) {
        output += buffer;
    }
    return pipe != nullptr && pclose(pipe) == 0 ? output : "failed: " + command;
}

// A library as the server opens it.
class Library {
public:
    explicit Library(const char* file)
        : file_(file), handle_(dlopen(file, RTLD_NOW | RTLD_GLOBAL)) {
        if (handle_ == nullptr) {
            ADD_FAILURE() << dlerror();
            std::abort();
        }
    }
    ~Library() { Close(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <typename Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(handle_, name));
    }
    CppProviderBaseIFC* Create() const {
        return Find<CppProviderBaseIFC*()>("createProviderSoftwareUpdateProvider")();
    }
    void Close() {
        if (handle_ != nullptr) {
            dlclose(handle_);
            handle_ = nullptr;
        }
    }
    bool IsInMemory() const {
        void* const handle = dlopen(file_, RTLD_NOW | RTLD_NOLOAD);
        if (handle != nullptr) {
            dlclose(handle);
        }
        return handle != nullptr;
    }

private:
    const char* file_;
    void* handle_;
};

struct Server {
    std::shared_ptr<LogLines> log = std::make_shared<LogLines>();
    ProviderEnvironmentIFCRef env{new Environment(log)};
    ToolDouble tool;

    Server() {
        tool.Plays("", ToolAnswer().Output("bash\t5\tOther\tThu Jan  2 03:04:05 UTC 2025\n"));
        tool.Plays("--setinprogress", ToolAnswer());
        tool.Plays("--apply", ToolAnswer().ExitCode(3).Held());
    }
};

const char* const COMMAND = "/qv/bin/patchkeeper --apply";
const char* const LAST_LINE =
    "INFO: Error during background /qv/bin/patchkeeper --apply: SWU_Patchkeeper_Unknown";

} // namespace

TEST(ProviderLibrary, ExportsTwoFunctionsAndNothingElse) {
    EXPECT_EQ(
        OutputOf("nm -D --defined-only --format=posix " PROVIDER_LIBRARY " | cut -d ' ' -f 1,2"),
        "createProviderSoftwareUpdateProvider T\ngetOWVersion T\n");
}

TEST(ProviderLibrary, StandsInTheProviderDirectoryWithALinkBesideIt) {
    const std::string library = PROVIDER_LIBRARY;
    const std::string ending = "/providers/libSoftwareUpdateProvider.so";
    ASSERT_GT(library.size(), ending.size());
    EXPECT_EQ(library.substr(library.size() - ending.size()), ending);
    const std::string link =
        library.substr(0, library.size() - ending.size()) + "/libSoftwareUpdateProvider.so";
    EXPECT_EQ(OutputOf("readlink " + link), "providers/libSoftwareUpdateProvider.so\n");
}

TEST(ProviderLibrary, CarriesItsBuildIdentification) {
    std::ifstream in(PROVIDER_LIBRARY, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_NE(bytes.find("@(#)SoftwareUpdateProvider " PROVIDER_VERSION), std::string::npos);
}

TEST(ProviderLibrary, IsLoadedAskedAndUnloadedWithoutInitialize) {
    for (int i = 0; i < 3; ++i) {
        Library library(PROVIDER_LIBRARY);
        EXPECT_STREQ(library.Find<const char*()>("getOWVersion")(), "3.0.3");
        CppProviderBaseIFC* const object = library.Create();
        EXPECT_EQ(object->getPolledProvider(), nullptr);
        EXPECT_NE(object->getInstanceProvider(), nullptr);
        EXPECT_NE(object->getMethodProvider(), nullptr);
        EXPECT_NE(object->getAssociatorProvider(), nullptr);
        delete object;
        library.Close();
        EXPECT_FALSE(library.IsInMemory());
    }
}

TEST(ProviderLibrary, ServesAgainAfterItWasUnloaded) {
    const Server server;
    for (int i = 0; i < 2; ++i) {
        Library library(PROVIDER_LIBRARY);
        const std::unique_ptr<CppProviderBaseIFC> object(library.Create());
        object->initialize(server.env);
        const test_support::Calls calls(*object->getInstanceProvider(), server.env);
        const CIMObjectPath path = PathOf("ZNX_SoftwareIdentity", "InstanceID", "0");
        EXPECT_EQ(CimErrorOf([&] { calls.GetInstance(path); }), NotFound());
        EXPECT_EQ(calls.EnumInstances("ZNX_SoftwareIdentity").size(), 1U);
        EXPECT_EQ(calls.GetInstance(path).getPropertyValue("Name"), CIMValue("bash"));
    }
}

TEST(ProviderLibrary, ItsFailuresAreCaughtOutsideByTheirType) {
    const Server server;
    Library library(PROVIDER_LIBRARY);
    const std::unique_ptr<CppProviderBaseIFC> object(library.Create());
    object->initialize(server.env);
    const test_support::Calls calls(*object->getInstanceProvider(), server.env);
    EXPECT_THROW(calls.EnumInstances("ZNX_Unknown"), CIMException);
}

TEST(BackgroundTask, KeepsTheLibraryInMemoryWhenTheServerClosesIt) {
    Server server;
    Library library(HOOK_LIBRARY);
    const auto start = library.Find<void(const char*)>("hookStartBackground");
    const auto runs = library.Find<bool()>("hookBackgroundRuns");
    CppProviderBaseIFC* const object = library.Create();
    object->initialize(server.env);
    start(COMMAND);
    ASSERT_TRUE(server.tool.WaitForCalls(2));
    EXPECT_FALSE(object->canUnload());
    delete object;
    library.Close();
    ASSERT_TRUE(library.IsInMemory());
    server.tool.Release("--apply");
    EXPECT_TRUE(server.log->WaitFor(LAST_LINE));
    while (runs()) {
        std::this_thread::yield();
    }
}

TEST(BackgroundTask, IsTheOnlyReasonToStayInMemory) {
    const Server server;
    Library library(HOOK_LIBRARY);
    CppProviderBaseIFC* const object = library.Create();
    object->initialize(server.env);
    delete object;
    library.Close();
    EXPECT_FALSE(library.IsInMemory());
}

TEST(BackgroundTask, ServesAgainFromTheLibraryThatStayed) {
    Server server;
    Library library(HOOK_LIBRARY);
    CppProviderBaseIFC* const object = library.Create();
    object->initialize(server.env);
    library.Find<void(const char*)>("hookStartBackground")(COMMAND);
    delete object;
    library.Close();
    Library again(HOOK_LIBRARY);
    {
        const std::unique_ptr<CppProviderBaseIFC> second(again.Create());
        second->initialize(server.env);
        const test_support::Calls calls(*second->getInstanceProvider(), server.env);
        EXPECT_EQ(calls.EnumInstances("ZNX_SoftwareIdentity").size(), 1U);
    }
    server.tool.Release("--apply");
    EXPECT_TRUE(server.log->WaitFor(LAST_LINE));
    while (again.Find<bool()>("hookBackgroundRuns")()) {
        std::this_thread::yield();
    }
}

namespace {

Server* leavingServer = nullptr;
bool (*leavingTaskRuns)() = nullptr;

// Registered before the library is opened, hence called after its static objects are gone.
void LetTheTaskEnd() {
    leavingServer->tool.Release("--apply");
    while (leavingTaskRuns()) {
        std::this_thread::yield();
    }
    const bool loggedAfterTheEnd = leavingServer->log->Contains(LAST_LINE);
    delete leavingServer;
    _exit(loggedAfterTheEnd ? 1 : 0);
}

void ExitWhileATaskRuns() {
    leavingServer = new Server;
    std::atexit(LetTheTaskEnd);
    const auto library = new Library(HOOK_LIBRARY);
    leavingTaskRuns = library->Find<bool()>("hookBackgroundRuns");
    CppProviderBaseIFC* const object = library->Create();
    object->initialize(leavingServer->env);
    library->Find<void(const char*)>("hookStartBackground")(COMMAND);
    if (!leavingServer->tool.WaitForCalls(2)) {
        _exit(2);
    }
    delete object;
    library->Close();
    std::exit(3);
}

} // namespace

TEST(BackgroundTask, ThatOutlivesTheStaticObjectsLogsNothing) {
    EXPECT_EXIT(ExitWhileATaskRuns(), testing::ExitedWithCode(0), "");
}
