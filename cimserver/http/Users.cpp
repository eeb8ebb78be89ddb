#include "cimserver/http/Users.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>

namespace cimserver::http {

namespace {

using Digest = std::array<unsigned char, 32>;
using Time = std::chrono::steady_clock::time_point;

constexpr std::chrono::minutes timeRemembered{5};

} // namespace

/// What one reading of the file gave, and the right pairs of it.
class Users::Generation {
public:
    explicit Generation(const UserSettings& settings)
        : table_(ReadPasswordFile(settings.passwordFile)), allowed_(settings.allowed),
          hashOfNobody_(table_.empty() ? HashOf("") : table_.begin()->second) {
        if (gnutls_rnd(GNUTLS_RND_KEY, key_.data(), key_.size()) != 0) {
            throw CredentialError("The system gives no random numbers");
        }
    }

    /// User names hold no line end, so no two pairs have the same text.
    Digest DigestOf(const std::string& user, const std::string& password) const {
        const std::string text = user + "\n" + password;
        Digest digest{};
        if (gnutls_hmac_fast(GNUTLS_MAC_SHA256, key_.data(), key_.size(), text.data(), text.size(),
                             digest.data()) != 0) {
            throw std::runtime_error("No digest could be made");
        }
        return digest;
    }

    bool Remembers(const Digest& digest, Time now) {
        const std::lock_guard lock(mutex_);
        const auto found = right_.find(digest);
        return found != right_.end() && now < found->second;
    }

    void Remember(const Digest& digest, Time now) {
        const std::lock_guard lock(mutex_);
        std::erase_if(right_, [&](const auto& pair) { return pair.second <= now; });
        right_.insert_or_assign(digest, now + timeRemembered);
    }

    const std::string& HashFor(const std::string& user) const {
        const auto found = table_.find(user);
        return found == table_.end() ? hashOfNobody_ : found->second;
    }

    bool Knows(const std::string& user) const {
        return table_.contains(user) &&
               std::any_of(allowed_.begin(), allowed_.end(),
                           [&](const auto& name) { return name == "*" || name == user; });
    }

private:
    const PasswordTable table_;
    const std::vector<std::string> allowed_;
    const std::string hashOfNobody_; ///< so that an unknown user costs what a wrong password costs
    std::array<unsigned char, 32> key_{};
    std::mutex mutex_; ///< guards right_
    std::map<Digest, Time> right_;
};

Users::Users(const UserSettings& settings, HashCheck check, Clock clock)
    : check_(std::move(check)), clock_(std::move(clock)),
      generation_(std::make_shared<Generation>(settings)) {
}

Users::~Users() = default;

bool Users::Accepts(const std::string& user, const std::string& password) {
    const auto generation = Current();
    const Digest digest = generation->DigestOf(user, password);
    if (generation->Remembers(digest, clock_())) {
        return true;
    }
    const std::lock_guard lock(oneAtATime_);
    if (generation->Remembers(digest, clock_())) {
        return true;
    }
    const bool isRight = check_(password, generation->HashFor(user));
    if (!isRight || !generation->Knows(user)) {
        return false;
    }
    generation->Remember(digest, clock_());
    return true;
}

void Users::Reload(const UserSettings& settings) {
    auto next = std::make_shared<Generation>(settings);
    const std::lock_guard lock(mutex_);
    generation_.swap(next);
}

std::shared_ptr<Users::Generation> Users::Current() {
    const std::lock_guard lock(mutex_);
    return generation_;
}

} // namespace cimserver::http
