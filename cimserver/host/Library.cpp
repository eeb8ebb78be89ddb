#include "cimserver/host/Library.hpp"

#include "cimserver/host/Enter.hpp"

#include "OW_config.h"

#include <cstring>
#include <dlfcn.h>
#include <utility>

namespace cimserver::host {

namespace {

using VersionFunction = const char* (*)();
using CreateFunction = OpenWBEM::CppProviderBaseIFC* (*)();

constexpr const char* versionSymbol = "getOWVersion";
constexpr const char* createPrefix = "createProvider";

std::string LoaderError() {
    const char* text = dlerror();
    return text == nullptr ? "unknown loader error" : text;
}

} // namespace

Library::Library(const std::filesystem::path& file)
    : file_(file), handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL)) {
    if (handle_ == nullptr) {
        throw Refusal(LoaderError());
    }
}

Library::~Library() {
    if (handle_ != nullptr) {
        dlclose(handle_);
    }
}

Library::Library(Library&& other) noexcept
    : file_(std::move(other.file_)), handle_(std::exchange(other.handle_, nullptr)) {
}

void* Library::Find(const std::string& symbol) const {
    void* address = dlsym(handle_, symbol.c_str());
    if (address == nullptr) {
        throw Refusal(LoaderError());
    }
    return address;
}

bool Library::Offers(const std::string& symbol) const {
    return dlsym(handle_, symbol.c_str()) != nullptr;
}

void Library::CheckVersion() const {
    const auto version = reinterpret_cast<VersionFunction>(Find(versionSymbol));
    const char* text = Enter(version);
    if (text == nullptr || std::strcmp(text, OW_VERSION) != 0) {
        throw Refusal(file_.string() + ": made for OpenWBEM " +
                      (text == nullptr ? "(no version)" : text) + ", this server is " + OW_VERSION);
    }
}

OpenWBEM::IntrusiveReference<OpenWBEM::CppProviderBaseIFC>
Library::CreateProvider(const std::string& id) const {
    const auto create = reinterpret_cast<CreateFunction>(Find(createPrefix + id));
    OpenWBEM::IntrusiveReference<OpenWBEM::CppProviderBaseIFC> object(Enter(create));
    if (!object) {
        throw Refusal(file_.string() + ": " + createPrefix + id + " made no provider");
    }
    return object;
}

} // namespace cimserver::host
