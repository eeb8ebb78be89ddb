#include "cimserver/Reload.hpp"

#include "cimserver/Items.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace cimserver {

namespace {

// What the handler writes to; -1 while nobody waits.
std::atomic<int> reloadWriteEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free, "used by a signal handler");

void NoteReload(int /*signal*/) {
    const int before = errno;
    const char byte = 1;
    // When the pipe is full a reload is noted already.
    [[maybe_unused]] const auto written = write(reloadWriteEnd.load(), &byte, 1);
    errno = before;
}

void Ignore(int /*signal*/) {
}

void Handle(void (*handler)(int)) {
    struct sigaction hangup = {};
    hangup.sa_handler = handler;
    hangup.sa_flags = SA_RESTART;
    sigaction(SIGHUP, &hangup, nullptr);
}

bool IsTakenAtReload(const std::string& name) {
    for (const ItemRow& row : Items()) {
        if (name == row.name) {
            return row.effect == Effect::atReload;
        }
    }
    return false;
}

} // namespace

ReloadSignal::ReloadSignal(std::function<void()> action) : action_(std::move(action)) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    readEnd_ = ends[0];
    writeEnd_ = ends[1];
    fcntl(readEnd_, F_SETFL, 0);
    reloadWriteEnd = writeEnd_;
    thread_ = std::thread([this] { Run(); });
    Handle(NoteReload);
}

ReloadSignal::~ReloadSignal() {
    // Neither the default, which would kill within the stop, nor ignored, which children inherit.
    Handle(Ignore);
    reloadWriteEnd = -1;
    const char stop = 0;
    while (write(writeEnd_, &stop, 1) < 0 && (errno == EINTR || errno == EAGAIN)) {
    }
    thread_.join();
    close(writeEnd_);
    close(readEnd_);
}

void ReloadSignal::Run() const {
    std::array<char, 64> bytes{};
    while (true) {
        const ssize_t count = read(readEnd_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        const auto end = bytes.begin() + std::max<ssize_t>(count, 0);
        if (count <= 0 || std::find(bytes.begin(), end, '\0') != end) {
            return;
        }
        action_();
    }
}

Reload::Reload(const Configuration& running, Read read, Log& log, std::vector<Take> takers)
    : running_(running), read_(std::move(read)), log_(log), logger_(log.Logger()),
      takers_(std::move(takers)) {
}

void Reload::operator()() const {
    try {
        const Configuration now = read_();
        std::vector<Mistake> mistakes;
        const Settings settings = ReadSettings(now, DefaultProviderDirectory(), mistakes);
        for (const Mistake& mistake : mistakes) {
            Say("Configuration not taken: " + mistake.text);
        }
        if (mistakes.empty()) {
            Apply(settings);
            TellWhatWaits(now);
        }
    } catch (const std::exception& error) {
        Say(std::string("Configuration not taken: ") + error.what());
    }
}

void Reload::Apply(const Settings& settings) const {
    log_.Reopen(settings.LogFile());
    log_.SetLevel(settings.logLevel);
    log_.SetRequests(settings.requestLog);
    for (const Take& take : takers_) {
        for (const std::string& why : take(settings)) {
            Say("Not taken: " + why);
        }
    }
    logger_->logInfo("The configuration was read again");
}

void Reload::TellWhatWaits(const Configuration& now) const {
    std::set<std::string> names;
    for (const Configuration* configuration : {&running_, &now}) {
        for (const auto& item : configuration->All()) {
            names.insert(item.first);
        }
    }
    for (const std::string& name : names) {
        const bool isChanged = running_.Get(name, "") != now.Get(name, "");
        if (isChanged && !IsTakenAtReload(name)) {
            Say(name + " has changed, which counts from the next start on");
        }
    }
}

void Reload::Say(const std::string& line) const {
    logger_->logError(line.c_str());
}

} // namespace cimserver
