#include "cimserver/http/Admission.hpp"

#include "cimserver/http/BasicCredentials.hpp"
#include "cimserver/http/Users.hpp"

#include <utility>

namespace cimserver::http {

namespace {

/// No name may look like the rest of the line, by which others find the address.
std::string Shown(const std::string& user) {
    constexpr std::size_t longest = 100;
    std::string shown;
    for (const char byte : user.substr(0, longest)) {
        shown += byte == '`' || byte == ' ' ? '?' : byte;
    }
    return shown;
}

} // namespace

Admission::Admission(Access access) : access_(std::move(access)) {
}

bool Admission::Admits(Request& request) {
    const Offer offer = ReadOffer(request);
    DropCredentials(request);
    const bool saysNothing = !offer.credentials && offer.fault.empty();
    if (access_.isAnonymous && (saysNothing || access_.users == nullptr)) {
        return true;
    }
    if (saysNothing) {
        return false;
    }
    const std::string fault = FaultOf(offer);
    if (fault.empty()) {
        request.user = offer.credentials->user;
        return true;
    }
    Refuse(offer.credentials ? offer.credentials->user : "", request.clientAddress, fault);
    return false;
}

std::string Admission::FaultOf(const Offer& offer) const {
    if (!offer.credentials) {
        return offer.fault;
    }
    const bool isRight =
        access_.users != nullptr &&
        access_.users->Accepts(offer.credentials->user, offer.credentials->password);
    return isRight ? "" : "unknown user, wrong password, or not one of the allowed users";
}

void Admission::Refuse(const std::string& user, const std::string& address,
                       const std::string& why) {
    if (access_.log) {
        access_.log("refused user `" + Shown(user) + "` from " + address + ": " + why);
    }
    std::unique_lock lock(mutex_);
    ends_.wait_for(lock, access_.failureDelay, [this] { return isEnding_; });
}

void Admission::EndDelays() {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
    ends_.notify_all();
}

} // namespace cimserver::http
