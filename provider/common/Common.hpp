#pragma once

// What every class provider works with: running the tool, cutting its output into fields, building
// message texts, turning a failure into a CIM exception, long actions on a task of their own,
// finding a record by its key, and checking text before it goes on a command line.
//
// Any thread may call any of these functions; calls may overlap. The tool's exit codes travel as
// plain integers: 0 to 255, and -1 when the tool could not be started.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

#include <atomic>

/// Print trace lines to standard output as well. Written by the master's initialize only, before
/// requests arrive; a background task of an earlier master may read it meanwhile.
extern std::atomic<bool> gProviderAgentDebug;

/// The server's logger; null before the master's initialize. Defined in MasterProvider. Only
/// LogError, OutputDebug, SetLogger and StopLogging touch it.
extern OpenWBEM::LoggerRef gLogger;

/// The update whose optional components are listed; empty until a client has asked for them. The
/// two belong together: read and written under gSharedListLock, by the component provider alone.
extern OpenWBEM::String gPatchName;
extern OpenWBEM::String gPatchVersion;

/// Takes the server's logger from the environment into gLogger. The environment is not kept.
void SetLogger(const OpenWBEM::ProviderEnvironmentIFCRef& env);

/// From now on nothing is logged: a background task may outlive the library's static objects, and
/// must not touch the logger once that is destroyed. Returns when no line is being written any
/// more.
void StopLogging();

/// Logs a line at error level. Without a logger, and after StopLogging, the line is dropped.
void LogError(const OpenWBEM::String& text);

/// Logs a trace line at info level, and prints it to standard output when gProviderAgentDebug is
/// set. The formatted text is cut at 1023 characters.
void OutputDebug(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Runs a command line through the shell and collects what it prints on standard output and
/// standard error, a line with its newline per element; a line of more than 1023 characters arrives
/// in pieces. Returns the exit code, or -1 when the shell could not be started; `lines` is then
/// left as it was.
int Execute(OpenWBEM::String command, OpenWBEM::Array<OpenWBEM::String>& lines);

/// The same into one text, which is appended to what `output` holds already.
int Execute(OpenWBEM::String command, OpenWBEM::String& output);

/// Runs a command line through the shell and collects nothing; returns the exit code (255 when no
/// process could be made, 127 when the shell could not be started).
int Execute(const OpenWBEM::String& command);

/// Cuts the next field off a line. The first call of a line passes its text, which is cut in place
/// and must stay until the last field is taken; each further call passes null. A thread cuts one
/// line at a time. Fields end at a tab or newline.
///
/// Where no field is left: logs the failure and throws CIM_ERR_FAILED with the message id
/// SWU_Error_ParsingFailed. `fieldName` and `source` say in that message what was looked for,
/// where.
OpenWBEM::String GetNextToken(char* line, const char* fieldName, const char* source);

/// Builds a message for people and programs: the text, a new line, and between two "#" the id by
/// which a client looks the message up in its own language, with arguments behind commas. The
/// arguments are `const char*`, ended by a null pointer. The result stays good until this thread's
/// next call.
const char* locMsg(const char* messageId, const char* text, ...) __attribute__((sentinel));

/// Logs the text and throws CIM_ERR_FAILED with it.
[[noreturn]] void ThrowCimFailed(const char* text);

/// The message id of an exit code of the tool. The text is static.
const char* PatchkeeperError(int code);

/// Throws CIM_ERR_FAILED for an exit code of the tool, which is asked to describe it in words.
[[noreturn]] void ThrowPatchKeeperError(int code);

/// Marks an operation as in progress with the tool, then runs the command line on a task of its own
/// and returns. Throws CIM_ERR_FAILED with the message id SWU_Error_ExecutionFailed when either of
/// the two does not succeed. From the first attempt on the library stays in memory for good.
void SpawnBackgroundThread(const OpenWBEM::String& command);

/// What such a task does. The argument is the command line, a pointer to an OpenWBEM::String that
/// was made with new and now belongs to the task. The outcome is only logged.
void BackgroundThread(unsigned long argument);

/// Whether a task is running that still needs the library's code. Such a library must not be
/// unloaded.
bool BackgroundTasksRun();

/// Throws CIM_ERR_NOT_FOUND without a text.
[[noreturn]] void ThrowNotFound();

/// The index of the first record whose InstanceID is exactly this text; CIM_ERR_NOT_FOUND without
/// one. `List` is an Array of a record type with the member InstanceID.
template <typename List>
int GetIndexFromInstanceID(const OpenWBEM::String& instanceID, const List& list) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].InstanceID == instanceID) {
            return static_cast<int>(i);
        }
    }
    ThrowNotFound();
}

/// The text of a path's key InstanceID. Without that key, or with a null value, the failure is
/// logged and CIM_ERR_INVALID_PARAMETER thrown; an empty text is a value like any other.
OpenWBEM::String InstanceIDOf(const OpenWBEM::CIMObjectPath& path);

/// GetIndexFromInstanceID for the key InstanceID of a path.
template <typename List>
int GetIndexFromObjectPath(const OpenWBEM::CIMObjectPath& path, const List& list) {
    return GetIndexFromInstanceID(InstanceIDOf(path), list);
}

/// A property with the Key qualifier. An instance that gets it has a path to which clients can
/// return.
OpenWBEM::CIMProperty ProvPropCreateKey(const OpenWBEM::String& name,
                                        const OpenWBEM::CIMValue& value);

/// Whether the text holds an apostrophe.
bool hasQuote(const OpenWBEM::String& text);

/// Whether the text holds one of ; ( ) [ ] * $ # |
bool hasSpecialChars(const OpenWBEM::String& text);

/// Whether inet_aton takes the text for an IPv4 address.
bool isValidIPAddr(const OpenWBEM::String& text);
