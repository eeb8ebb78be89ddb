// Decides for each request, before anything of its body is looked at, whether it is let in and as
// whom.
#pragma once

#include "cimserver/http/Http.hpp"

#include <condition_variable>
#include <mutex>
#include <string>

namespace cimserver::http {

struct Offer;

/// Any thread may ask.
class Admission {
public:
    explicit Admission(Access access);

    /// True: the request is let in, and bears the user's name. False: it is to be answered with
    /// 401. Either way it holds no Authorization header any more. What was wrong with credentials
    /// is logged, with user and address, and the call returns after the delay of failures only; a
    /// request that brings none is refused at once.
    bool Admits(Request& request);

    /// Ends the delays that run, and makes later ones none.
    void EndDelays();

private:
    /// Empty when the credentials are right.
    std::string FaultOf(const Offer& offer) const;
    void Refuse(const std::string& user, const std::string& address, const std::string& why);

    const Access access_;
    std::mutex mutex_; ///< guards isEnding_
    std::condition_variable ends_;
    bool isEnding_ = false;
};

} // namespace cimserver::http
