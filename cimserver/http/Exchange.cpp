#include "cimserver/http/Exchange.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include <strings.h>

namespace cimserver::http {

namespace {

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::string_view WithoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool ListHas(std::string_view list, std::string_view wanted) {
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        if (EqualsIgnoringCase(WithoutBlanks(list.substr(0, comma)), wanted)) {
            return true;
        }
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return false;
}

} // namespace

bool TakesTrailers(const Request& request, const char* version) {
    if (std::strcmp(version, "HTTP/1.1") != 0) {
        return false;
    }
    for (const Header& header : request.headers) {
        if (EqualsIgnoringCase(header.name, "TE") && ListHas(header.value, "trailers")) {
            return true;
        }
    }
    return false;
}

AnswerInTransit::AnswerInTransit(bool canStream, std::string spoolDirectory,
                                 std::chrono::milliseconds callTime)
    : canStream_(canStream), spoolDirectory_(std::move(spoolDirectory)), callTime_(callTime),
      queue_(spoolDirectory_) {
}

void AnswerInTransit::SetHead(Head head) {
    const std::lock_guard lock(mutex_);
    if (!hasLeft_ && !isGivenUp_) {
        head_ = std::move(head);
    }
}

void AnswerInTransit::Append(std::string_view bytes) {
    queue_.Append(bytes);
    if (canStream_ && !hasLeft_ && queue_.Size() >= AnswerQueue::blockSize) {
        BecomeReady(true);
    }
}

void AnswerInTransit::BecomeReady(bool streams) {
    {
        const std::lock_guard lock(mutex_);
        if (isGivenUp_) {
            return;
        }
        if (streams) {
            hasLeft_ = true;
        }
        isReady_ = true;
    }
    ready_.notify_one();
}

void AnswerInTransit::Clear() {
    if (!hasLeft_) {
        queue_.Clear();
    }
}

void AnswerInTransit::SetTrailers(std::vector<Header> trailers) {
    const std::lock_guard lock(mutex_);
    if (!isGivenUp_) {
        trailers_ = std::move(trailers);
    }
}

void AnswerInTransit::LimitTime(MakeLateAnswer late) {
    if (callTime_.count() > 0) {
        const std::lock_guard lock(mutex_);
        limit_.emplace(Limit{Clock::now() + callTime_, std::move(late)});
    }
}

void AnswerInTransit::LiftLimit() {
    const std::lock_guard lock(mutex_);
    limit_.reset();
}

bool AnswerInTransit::IsGivenUp() const {
    const std::lock_guard lock(mutex_);
    return isGivenUp_;
}

void AnswerInTransit::MakeWith(const Handler& handler, const Request& request) noexcept {
    try {
        handler(request, *this);
        isMade_ = true;
    } catch (...) {
        constexpr int internalServerError = 500;
        Clear();
        SetHead({internalServerError, {}, {}});
    }
    LiftLimit();
}

void AnswerInTransit::End() noexcept {
    hasLeft_ && !isMade_ ? queue_.Break() : queue_.Finish();
    BecomeReady(false);
}

bool AnswerInTransit::IsLate() const {
    return limit_ && Clock::now() >= limit_->end;
}

// No limit that is set later ends before the time that this returns, so nobody need wake the sender
// for one.
AnswerInTransit::Clock::time_point AnswerInTransit::NextLook() const {
    if (callTime_.count() <= 0) {
        return Clock::time_point::max();
    }
    return limit_ ? limit_->end : Clock::now() + callTime_;
}

void AnswerInTransit::GiveUp() {
    isGivenUp_ = true;
    const MakeLateAnswer make = std::move(limit_->late);
    limit_.reset();
    LateAnswer late = make(callTime_);
    lateText_ = std::move(late.text);
    trailers_ = std::move(late.trailers);
}

bool AnswerInTransit::WaitUntilReady() {
    std::unique_lock lock(mutex_);
    while (!ready_.wait_until(lock, NextLook(), [this] { return isReady_; })) {
        if (IsLate()) {
            GiveUp();
            queue_.Abandon();
            return false;
        }
    }
    return true;
}

std::shared_ptr<AnswerInTransit> AnswerInTransit::InItsPlace() const {
    auto other = std::make_shared<AnswerInTransit>(false, spoolDirectory_, callTime_);
    const std::lock_guard lock(mutex_);
    other->head_ = head_;
    other->Append(lateText_);
    other->queue_.Finish();
    other->BecomeReady(false);
    return other;
}

AnswerQueue::Portion AnswerInTransit::Read(char* target, std::size_t room) noexcept {
    AnswerQueue::Portion portion;
    while (portion.size == 0 && portion.end == AnswerQueue::End::none) {
        portion = queue_.Read(target, room, LookAtTheClock());
    }
    return portion;
}

// When to look again.
AnswerInTransit::Clock::time_point AnswerInTransit::LookAtTheClock() noexcept {
    const std::lock_guard lock(mutex_);
    if (IsLate()) {
        try {
            GiveUp();
            queue_.Close();
        } catch (const std::exception&) {
            queue_.Break();
        }
    }
    return NextLook();
}

Exchange::~Exchange() {
    if (answer_ != nullptr) {
        answer_->Bytes().Abandon();
    }
}

std::shared_ptr<AnswerInTransit> Exchange::Make(const Handler& handler, bool canStream,
                                                const Settings& settings, Workers& workers) {
    answer_ =
        std::make_shared<AnswerInTransit>(canStream, settings.spoolDirectory, settings.callTime);
    workers.Run([answer = answer_, asked = kept_, &handler] { answer->MakeWith(handler, *asked); },
                [answer = answer_] { answer->End(); });
    if (!answer_->WaitUntilReady()) {
        answer_ = answer_->InItsPlace();
    }
    return answer_;
}

} // namespace cimserver::http
