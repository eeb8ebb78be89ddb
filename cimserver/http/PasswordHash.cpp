#include "cimserver/http/PasswordHash.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <crypt.h>
#include <dlfcn.h>

namespace cimserver::http {

namespace {

constexpr const char* prefix = "$y$";

/// Loaded when the first hash is made or checked, and kept: a server without users does not pay for
/// it.
class CryptLibrary {
public:
    static const CryptLibrary& Instance() {
        static const CryptLibrary library;
        return library;
    }

    decltype(&crypt_rn) hash = nullptr;
    decltype(&crypt_gensalt_rn) makeSetting = nullptr;
    decltype(&crypt_checksalt) check = nullptr;

private:
    CryptLibrary() {
        void* library = dlopen("libcrypt.so.1", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            throw std::runtime_error(std::string("Passwords cannot be hashed: ") + dlerror());
        }
        Find(library, "crypt_rn", hash);
        Find(library, "crypt_gensalt_rn", makeSetting);
        Find(library, "crypt_checksalt", check);
    }

    template <class Function>
    static void Find(void* library, const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(library, name));
        if (function == nullptr) {
            throw std::runtime_error(std::string("Passwords cannot be hashed: no ") + name);
        }
    }
};

/// Empty when it cannot be made.
std::string Crypt(const std::string& password, const std::string& setting) {
    const auto data = std::make_unique<crypt_data>();
    const char* hash = CryptLibrary::Instance().hash(password.c_str(), setting.c_str(), data.get(),
                                                     static_cast<int>(sizeof *data));
    std::string result = hash == nullptr ? "" : hash;
    explicit_bzero(data.get(), sizeof *data);
    return result;
}

} // namespace

std::string HashOf(const std::string& password, unsigned long cost) {
    if (password.find('\0') != std::string::npos) {
        throw std::runtime_error("A password cannot hold a NUL");
    }
    if (password.size() >= CRYPT_MAX_PASSPHRASE_SIZE) {
        throw std::runtime_error("A password cannot be longer than " +
                                 std::to_string(CRYPT_MAX_PASSPHRASE_SIZE - 1) + " bytes");
    }
    std::array<char, CRYPT_GENSALT_OUTPUT_SIZE> setting{};
    const bool hasSetting =
        CryptLibrary::Instance().makeSetting(prefix, cost, nullptr, 0, setting.data(),
                                             static_cast<int>(setting.size())) != nullptr;
    std::string hash = hasSetting ? Crypt(password, setting.data()) : "";
    if (hash.empty()) {
        throw std::runtime_error("The password cannot be hashed: " +
                                 std::string(std::strerror(errno)));
    }
    return hash;
}

bool Matches(const std::string& password, const std::string& hash) {
    if (password.find('\0') != std::string::npos) {
        return false;
    }
    const std::string made = Crypt(password, hash);
    return !made.empty() && made == hash;
}

bool IsHash(const std::string& text) {
    constexpr std::size_t hashLength = 43; // 256 bits in the Base64 of crypt(5)
    return text.starts_with(prefix) && std::count(text.begin(), text.end(), '$') == 4 &&
           text.size() - text.rfind('$') - 1 == hashLength &&
           CryptLibrary::Instance().check(text.c_str()) == CRYPT_SALT_OK;
}

} // namespace cimserver::http
