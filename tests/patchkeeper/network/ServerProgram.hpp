#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace patchkeeper_test {

// A server, running beside the test; it dies with the test or after two minutes at the latest.
class ServerProgram {
public:
    // Returns when the port takes connections. What the program prints goes to `log`. Throws when
    // it ends before that, with what it printed.
    ServerProgram(std::vector<std::string> command, int port, const std::string& log);
    ServerProgram(const ServerProgram&) = delete;
    ServerProgram& operator=(const ServerProgram&) = delete;
    ~ServerProgram();

    // As when its machine goes down. Its connections end.
    void Kill();

private:
    void WaitUntilItListens(int port, const std::string& log);

    pid_t process_ = -1;
};

} // namespace patchkeeper_test
