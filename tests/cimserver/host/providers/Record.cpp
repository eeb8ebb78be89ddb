#include "cimserver/host/providers/Record.hpp"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <utility>

namespace hosttest {

namespace {

struct Board {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> lines;
    std::map<std::string, std::thread::id> threads;
    std::set<std::string> switches;
    std::map<std::string, std::vector<Registration>> registrations;
};

// Never destroyed: libraries may record while the process ends.
Board& TheBoard() {
    static Board& board = *new Board;
    return board;
}

} // namespace

void Reset() {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    board.lines.clear();
    board.threads.clear();
    board.switches.clear();
    board.registrations.clear();
}

void Record(const std::string& line) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    board.lines.push_back(line);
    board.threads[line] = std::this_thread::get_id();
    board.changed.notify_all();
}

std::vector<std::string> TakeLines() {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    return std::exchange(board.lines, {});
}

bool WaitForLine(const std::string& line, int milliseconds) {
    Board& board = TheBoard();
    std::unique_lock lock(board.mutex);
    return board.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] {
        return std::find(board.lines.begin(), board.lines.end(), line) != board.lines.end();
    });
}

std::thread::id ThreadOf(const std::string& line) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    return board.threads[line];
}

void Switch(const std::string& name, bool on) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    if (on) {
        board.switches.insert(name);
    } else {
        board.switches.erase(name);
    }
}

bool IsOn(const std::string& name) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    return board.switches.count(name) != 0;
}

bool TakeSwitch(const std::string& name) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    return board.switches.erase(name) != 0;
}

void SetRegistrations(const std::string& id, std::vector<Registration> registrations) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    board.registrations[id] = std::move(registrations);
}

std::vector<Registration> RegistrationsOf(const std::string& id) {
    Board& board = TheBoard();
    const std::lock_guard lock(board.mutex);
    return board.registrations[id];
}

} // namespace hosttest
