#include <cstring>

#include <dlfcn.h>

#include "patchkeeper/network/Module.hpp"
#include "patchkeeper/network/Server.hpp"

namespace patchkeeper {

// The module stays loaded until the program ends: what it has thrown may outlive the server.
std::unique_ptr<Server> OpenServer(const Place& place, const TransferSettings& settings) {
    void* module = dlopen(networkModule, RTLD_NOW | RTLD_LOCAL);
    void* symbol = module == nullptr ? nullptr : dlsym(module, makeServerName);
    if (symbol == nullptr) {
        const char* reason = dlerror();
        throw TransferFailed(std::string("the network libraries cannot be loaded: ") +
                             (reason == nullptr ? networkModule : reason));
    }
    MakeServerFunction* make = nullptr;
    std::memcpy(&make, &symbol, sizeof make);
    return std::unique_ptr<Server>(make(place, settings));
}

} // namespace patchkeeper
