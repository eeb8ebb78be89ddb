#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

namespace bench {

/// The floor of an answer over HTTP: a process of its own that answers every request with the same
/// bytes from memory, through the HTTP library that the server uses, a thread per connection.
class HttpFloor {
public:
    explicit HttpFloor(const std::string& body);
    ~HttpFloor();
    HttpFloor(const HttpFloor&) = delete;
    HttpFloor& operator=(const HttpFloor&) = delete;

    std::uint16_t Port() const { return port_; }

private:
    pid_t process_ = -1;
    std::uint16_t port_ = 0;
};

} // namespace bench
