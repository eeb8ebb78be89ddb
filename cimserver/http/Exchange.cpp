#include "cimserver/http/Exchange.hpp"

#include <csignal>
#include <cstring>
#include <utility>

#include <strings.h>

namespace cimserver::http {

namespace {

/// The HTTP library's threads block SIGPIPE, and a handler's child processes would inherit that.
class SignalsAsForPrograms {
public:
    SignalsAsForPrograms() {
        sigset_t none;
        sigemptyset(&none);
        sigaddset(&none, SIGPIPE);
        pthread_sigmask(SIG_UNBLOCK, &none, &before_);
    }
    ~SignalsAsForPrograms() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsAsForPrograms(const SignalsAsForPrograms&) = delete;
    SignalsAsForPrograms& operator=(const SignalsAsForPrograms&) = delete;

private:
    sigset_t before_{};
};

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

AnswerInTransit::AnswerInTransit(bool canStream, std::string spoolDirectory)
    : canStream_(canStream), queue_(std::move(spoolDirectory)) {
}

void AnswerInTransit::SetHead(Head head) {
    if (!hasLeft_) {
        head_ = std::move(head);
    }
}

void AnswerInTransit::Append(std::string_view bytes) {
    queue_.Append(bytes);
    if (canStream_ && !hasLeft_ && queue_.Size() >= AnswerQueue::blockSize) {
        hasLeft_ = true;
        ready_.count_down();
    }
}

void AnswerInTransit::Clear() {
    if (!hasLeft_) {
        queue_.Clear();
    }
}

void AnswerInTransit::SetTrailers(std::vector<Header> trailers) {
    trailers_ = std::move(trailers);
}

void AnswerInTransit::MakeWith(const Handler& handler, const Request& request) noexcept {
    bool isMade = false;
    try {
        const SignalsAsForPrograms signals;
        handler(request, *this);
        isMade = true;
    } catch (...) {
        constexpr int internalServerError = 500;
        Clear();
        SetHead({internalServerError, {}, {}});
    }
    if (hasLeft_) {
        isMade ? queue_.Finish() : queue_.Break();
        return;
    }
    queue_.Finish();
    ready_.count_down();
}

Exchange::~Exchange() {
    if (answer_ != nullptr) {
        answer_->Bytes().Abandon();
    }
    if (maker_.joinable()) {
        maker_.join();
    }
}

std::shared_ptr<AnswerInTransit> Exchange::Make(const Handler& handler, bool canStream,
                                                const std::string& spoolDirectory) {
    answer_ = std::make_shared<AnswerInTransit>(canStream, spoolDirectory);
    if (canStream) {
        maker_ = std::thread([this, &handler] { answer_->MakeWith(handler, request); });
        answer_->WaitUntilReady();
    } else {
        answer_->MakeWith(handler, request);
    }
    return answer_;
}

} // namespace cimserver::http
