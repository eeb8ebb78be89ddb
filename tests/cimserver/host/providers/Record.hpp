// What the provider libraries of these tests and the tests themselves know of each other: a list of
// what happened, and switches. A shared library, so that there is one of it in the process.
#pragma once

#include <string>
#include <thread>
#include <vector>

namespace hosttest {

/// Forgets everything. Any thread may call any of these.
void Reset();
void Record(const std::string& line);
/// All lines since the last call.
std::vector<std::string> TakeLines();
/// Waits until the line has been recorded and not been taken; false after `milliseconds`.
bool WaitForLine(const std::string& line, int milliseconds);
/// The thread that recorded the line last.
std::thread::id ThreadOf(const std::string& line);

/// "Good: canUnload answers no".
void Switch(const std::string& name, bool on);
bool IsOn(const std::string& name);
/// The same, and off from then on.
bool TakeSwitch(const std::string& name);

struct Registration {
    std::string className;
    std::vector<std::string> namespaces;
    std::vector<std::string> methods = {}; ///< for those who serve methods
};
void SetRegistrations(const std::string& id, std::vector<Registration> registrations);
std::vector<Registration> RegistrationsOf(const std::string& id);

} // namespace hosttest
