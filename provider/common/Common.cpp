#include "provider/common/Common.hpp"

#include "provider/common/SharedList.hpp"

#include "platform/osTask.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <type_traits>

#include <arpa/inet.h>
#include <dlfcn.h>

using OpenWBEM::Array;
using OpenWBEM::CIMException;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMQualifier;
using OpenWBEM::CIMQualifierArray;
using OpenWBEM::CIMValue;
using OpenWBEM::String;

std::atomic<bool> gProviderAgentDebug{false};
String gPatchName;
String gPatchVersion;
std::mutex gSharedListLock;

namespace {

const char* const LOG_COMPONENT = "ow.provider.SoftwareUpdateProvider";
const char* const FIELD_DELIMITERS = "\t\n";
const std::size_t BUFFER_SIZE = 1024;

// A task may log while the static objects of the library go: lines are written under the shared
// lock, and the logger is put in place or given up under the exclusive one. The lock itself must
// outlive every task, so it may not be destroyed.
std::shared_mutex loggerLock;
static_assert(std::is_trivially_destructible<std::shared_mutex>::value,
              "a task that outlives the static objects would lock a destroyed mutex");
bool loggingStopped = false;

std::atomic<int> backgroundTasks{0};

using Pipe = std::unique_ptr<FILE, int (*)(FILE*)>;

// "e" closes our end in every program that another thread starts meanwhile: a background tool
// would else hold it open for as long as it runs.
Pipe StartTool(const String& command) {
    return Pipe(popen(command.c_str(), "re"), pclose);
}

// ODDITY CM-5: a signal leaves no exit code, so where the shell made way for the command a killed
// one counts as successful; where the shell waits it makes 128 and more of the signal.
int ExitCode(int status) {
    return (status & 0xff00) >> 8;
}

void LogInfo(const char* text) {
    const std::shared_lock<std::shared_mutex> lock(loggerLock);
    if (!loggingStopped && gLogger) {
        gLogger->logInfo(text);
    }
}

[[noreturn]] void ThrowExecutionFailed(const String& message) {
    // ODDITY CM-12: the argument is the whole sentence, not the command line in it.
    ThrowCimFailed(locMsg("SWU_Error_ExecutionFailed", message.c_str(), message.c_str(), nullptr));
}

// When the server stops it closes the library without asking canUnload. In an executable, which
// is never unloaded, there is nothing to find and nothing to do.
void KeepLibraryLoaded() {
    Dl_info here;
    if (dladdr(reinterpret_cast<void*>(&BackgroundThread), &here) == 0) {
        return;
    }
    void* const library = dlopen(here.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    if (library != nullptr) {
        dlclose(library);
    }
}

void RunInBackground(const String& command) {
    const int code = Execute(command);
    if (code != 0) {
        // ODDITY CM-2: the exit code is reduced a second time, which leaves 0 of any: the log names
        // the unknown error for every failure.
        OutputDebug("Error during background %s: %s", command.c_str(),
                    PatchkeeperError((code & 0xff00) >> 8));
    }
}

} // namespace

void SetLogger(const OpenWBEM::ProviderEnvironmentIFCRef& env) {
    const OpenWBEM::LoggerRef logger = env->getLogger(LOG_COMPONENT);
    const std::unique_lock<std::shared_mutex> lock(loggerLock);
    gLogger = logger;
}

void StopLogging() {
    const std::unique_lock<std::shared_mutex> lock(loggerLock);
    loggingStopped = true;
}

void LogError(const String& text) {
    const std::shared_lock<std::shared_mutex> lock(loggerLock);
    if (!loggingStopped && gLogger) {
        gLogger->logError(text);
    }
}

void OutputDebug(const char* format, ...) {
    char text[BUFFER_SIZE];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    if (gProviderAgentDebug) {
        printf("%s\n", text);
    }
    LogInfo(text);
}

int Execute(String command, Array<String>& lines) {
    OutputDebug("Executing: %s", command.c_str());
    command += " 2>&1";
    Pipe tool = StartTool(command);
    if (tool == nullptr) {
        return -1;
    }
    lines.clear();
    char buffer[BUFFER_SIZE];
    while (fgets(buffer, sizeof(buffer), tool.get()) != nullptr) {
        lines.push_back(String(buffer));
    }
    return ExitCode(pclose(tool.release()));
}

int Execute(String command, String& output) {
    OutputDebug("Executing: %s", command.c_str());
    command += " 2>&1";
    Pipe tool = StartTool(command);
    if (tool == nullptr) {
        return -1;
    }
    std::string text;
    char buffer[BUFFER_SIZE];
    while (fgets(buffer, sizeof(buffer), tool.get()) != nullptr) {
        text += buffer;
    }
    // ODDITY CM-3: appended, the caller's text is not cleared first; callers may rely on it.
    output += text.c_str();
    return ExitCode(pclose(tool.release()));
}

int Execute(const String& command) {
    OutputDebug("Executing: %s", command.c_str());
    return ExitCode(system(command.c_str()));
}

String GetNextToken(char* line, const char* fieldName, const char* source) {
    static thread_local char* rest = nullptr;
    // ODDITY CM-4: a run of tabs counts as one, so an empty field shifts those after it.
    const char* const token = strtok_r(line, FIELD_DELIMITERS, &rest);
    if (token != nullptr) {
        return String(token);
    }
    const String message = String("Failed to parse ") + fieldName + " field from " + source;
    LogError(message);
    ThrowCimFailed(locMsg("SWU_Error_ParsingFailed", message.c_str(), fieldName, source, nullptr));
}

const char* locMsg(const char* messageId, const char* text, ...) {
    static thread_local std::string built;
    // Built aside: the arguments may point into the text of an earlier call.
    std::string message = text;
    message += "\n#";
    message += messageId;
    va_list arguments;
    va_start(arguments, text);
    while (const char* const argument = va_arg(arguments, const char*)) {
        // ODDITY CM-9: not escaped, also where the argument holds a "," or "#" of its own.
        message += ",";
        message += argument;
    }
    va_end(arguments);
    message += "#";
    built.swap(message);
    return built.c_str();
}

void ThrowCimFailed(const char* text) {
    OutputDebug("Exception: %s", text);
    OW_THROWCIMMSG(CIMException::FAILED, text);
}

const char* PatchkeeperError(int code) {
    switch (code) {
    case 11:
        return "SWU_Patchkeeper_FtpFailed";
    case 12:
        return "SWU_Patchkeeper_SoftwareUpdateFailed";
    case 13:
        return "SWU_Patchkeeper_RpmInstallFailed";
    case 14:
        return "SWU_Patchkeeper_PatchDownloadFailed";
    case 15:
        return "SWU_Patchkeeper_PatchApplyFailed";
    case 16:
        return "SWU_Patchkeeper_PatchRemoveFailed";
    case 17:
        return "SWU_Patchkeeper_PatchScheduleFailed";
    case 18:
        return "SWU_Patchkeeper_PatchModifyFailed";
    case 19:
        return "SWU_Patchkeeper_HttpFailed";
    case 20:
        return "SWU_Patchkeeper_HttpsFailed";
    case 21:
        return "SWU_Patchkeeper_SambaFailed";
    case 22:
        return "SWU_Patchkeeper_UsbFailed";
    case 23:
        return "SWU_Patchkeeper_NoPatchesFound";
    case 33:
        return "SWU_Patchkeeper_NoLocalPatchesFound";
    case 34:
        return "SWU_Patchkeeper_TimeZoneNotSet";
    default:
        // ODDITY CM-8: 24 to 32 are no forgotten rows, they have no message of their own.
        return "SWU_Patchkeeper_Unknown";
    }
}

void ThrowPatchKeeperError(int code) {
    const String command = String("/qv/bin/patchkeeper --errors ") + String(code);
    String output;
    if (Execute(command, output) != 0) {
        // ODDITY CM-10: the bare id without "#", so that clients see that there is no description.
        ThrowCimFailed(PatchkeeperError(code));
    }
    ThrowCimFailed(locMsg(PatchkeeperError(code), output.c_str(), nullptr));
}

void SpawnBackgroundThread(const String& command) {
    // A copy of the characters: the task shares no handle with the request.
    std::unique_ptr<String> argument(new String(command.c_str()));
    if (Execute("/qv/bin/patchkeeper --setinprogress") != 0) {
        const String message = String("Failed: ") + command;
        LogError(message);
        // ODDITY CM-13: printed whatever the debug switch says, which the failure below is not.
        printf("%s\n", message.c_str());
        ThrowExecutionFailed(message);
    }
    // ODDITY CM-1: "Spawing", as log readers search for it.
    OutputDebug("Spawing background thread for %s", command.c_str());
    KeepLibraryLoaded();
    ++backgroundTasks;
    unsigned long taskId = 0;
    if (osCreateTask("BackgroundThread", 0, 0, BackgroundThread,
                     reinterpret_cast<unsigned long>(argument.get()), 0, &taskId) == 0) {
        static_cast<void>(argument.release());
        return;
    }
    --backgroundTasks;
    const String message = String("Unable to start Background Thread: ") + command;
    LogError(message);
    OutputDebug("%s", message.c_str());
    ThrowExecutionFailed(message);
}

void BackgroundThread(unsigned long argument) {
    try {
        const std::unique_ptr<const String> command(reinterpret_cast<const String*>(argument));
        RunInBackground(*command);
    } catch (const std::exception&) {
        // Nobody is left to be told, and an exception that leaves a thread ends the server.
    }
    --backgroundTasks;
}

bool BackgroundTasksRun() {
    return backgroundTasks > 0;
}

void ThrowNotFound() {
    OW_THROWCIM(CIMException::NOT_FOUND);
}

String InstanceIDOf(const CIMObjectPath& path) {
    const CIMProperty key = path.getKey("InstanceID");
    if (!key) {
        LogError("Missing InstanceID property");
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    const CIMValue value = key.getValue();
    if (!value) {
        LogError("Missing InstanceID value");
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    return value.toString();
}

CIMProperty ProvPropCreateKey(const String& name, const CIMValue& value) {
    // All keys share one array, which is copied when a property changes its own.
    static const CIMQualifierArray key(1, CIMQualifier::createKeyQualifier());
    CIMProperty property(name, value);
    property.setQualifiers(key);
    return property;
}

bool hasQuote(const String& text) {
    // ODDITY CM-11: the apostrophe only; the double quote passes.
    return strchr(text.c_str(), '\'') != nullptr;
}

bool hasSpecialChars(const String& text) {
    // ODDITY CM-6: these nine only; & ` < > blank and newline pass, and so reach the shell.
    return strpbrk(text.c_str(), ";()[]*$#|") != nullptr;
}

bool isValidIPAddr(const String& text) {
    // ODDITY CM-7: whatever inet_aton takes: "10.1", octal and hexadecimal parts, and an address
    // with further text behind a blank.
    in_addr address;
    return inet_aton(text.c_str(), &address) != 0;
}
