// A cimserver that a test starts with any arguments, and what becomes of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace programtest {

class Running {
public:
    /// `prepare` runs in the new process before the server: what the server shall inherit.
    explicit Running(
        const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {});
    /// Ends the server when it is still there.
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    /// Waits for a line on standard error that begins so, and returns it. Throws
    /// std::runtime_error, with what has been written, when the server closes it before or nothing
    /// comes for 30 seconds.
    std::string WaitForLine(const std::string& beginning);
    /// The same for a line that has the text anywhere.
    std::string WaitForText(const std::string& text);
    /// The port of the readiness line.
    std::uint16_t WaitForPort();
    void Signal(int signal) const;
    /// Waits for the end: the exit code, or 128 + signal. Then Output and Error are complete.
    int Wait();

    pid_t Pid() const { return process_; }
    const std::string& Output() const { return output_; }
    const std::string& Error() const { return error_; }

private:
    std::string WaitFor(const std::string& text, bool atBegin);
    bool ReadMore();

    pid_t process_ = -1;
    int outputEnd_ = -1;
    int errorEnd_ = -1;
    std::string output_;
    std::string error_;
};

} // namespace programtest
