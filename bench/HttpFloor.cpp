#include "bench/HttpFloor.hpp"

#include <microhttpd.h>

#include <csignal>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

MHD_Result AnswerFromMemory(void* body, MHD_Connection* connection, const char*, const char*,
                            const char*, const char*, std::size_t* uploadSize, void** state) {
    if (*state == nullptr) { // the head has arrived, the request's body has not
        *state = body;
        return MHD_YES;
    }
    if (*uploadSize != 0) {
        *uploadSize = 0;
        return MHD_YES;
    }
    auto* text = static_cast<std::string*>(body);
    MHD_Response* response =
        MHD_create_response_from_buffer(text->size(), text->data(), MHD_RESPMEM_PERSISTENT);
    const MHD_Result result = MHD_queue_response(connection, MHD_HTTP_OK, response);
    MHD_destroy_response(response);
    return result;
}

[[noreturn]] void Serve(std::string body, int portPipe) {
    MHD_Daemon* daemon = MHD_start_daemon(
        MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_THREAD_PER_CONNECTION | MHD_USE_POLL, 0, nullptr,
        nullptr, &AnswerFromMemory, &body, MHD_OPTION_END);
    const MHD_DaemonInfo* info =
        daemon == nullptr ? nullptr : MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT);
    const std::uint16_t port = info == nullptr ? std::uint16_t{0} : info->port;
    if (write(portPipe, &port, sizeof port) != sizeof port) {
        _exit(1);
    }
    for (;;) {
        pause();
    }
}

} // namespace

HttpFloor::HttpFloor(const std::string& body) {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error("no pipe");
    }
    process_ = fork();
    if (process_ == 0) {
        Serve(body, ends[1]);
    }
    close(ends[1]);
    const bool told = read(ends[0], &port_, sizeof port_) == sizeof port_;
    close(ends[0]);
    if (!told || port_ == 0) {
        throw std::runtime_error("the floor's server did not start");
    }
}

HttpFloor::~HttpFloor() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

} // namespace bench
