// The users of the server and their passwords.
#pragma once

#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace cimserver::http {

struct UserSettings {
    std::filesystem::path passwordFile;
    std::vector<std::string> allowed{"*"}; ///< names; `*`: everybody who has a password
};

/// Any thread may ask. A pair of name and password that was found right is remembered for five
/// minutes, as a keyed hash (HMAC-SHA-256, the key made at random and never written anywhere);
/// until then it costs a few microseconds. Every other pair costs a check of a password hash,
/// whether the user is known or not, and only one such check runs at a time.
class Users {
public:
    using HashCheck = std::function<bool(const std::string& password, const std::string& hash)>;
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// Throws CredentialError. The defaults are replaced in tests only.
    explicit Users(const UserSettings& settings, HashCheck check = &Matches,
                   Clock clock = &std::chrono::steady_clock::now);
    ~Users();
    Users(const Users&) = delete;
    Users& operator=(const Users&) = delete;

    bool Accepts(const std::string& user, const std::string& password);

    /// Reads the file again and forgets what was remembered. Throws CredentialError; then
    /// everything stays as it was.
    void Reload(const UserSettings& settings);

private:
    class Generation;
    std::shared_ptr<Generation> Current();

    const HashCheck check_;
    const Clock clock_;
    std::mutex mutex_; ///< guards generation_
    std::shared_ptr<Generation> generation_;
    std::mutex oneAtATime_;
};

} // namespace cimserver::http
