#include "e2e/Robust.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <system_error>

namespace e2e {

namespace {

std::string TextOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The parent of every process.
std::map<pid_t, pid_t> Parents() {
    std::map<pid_t, pid_t> parents;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string number = entry.path().filename();
        if (number.find_first_not_of("0123456789") != std::string::npos) {
            continue;
        }
        const std::string text = TextOf(entry.path() / "stat");
        const std::size_t name = text.rfind(')');
        if (name == std::string::npos) {
            continue; // it has ended meanwhile
        }
        char state = 0;
        pid_t parent = 0;
        std::istringstream(text.substr(name + 1)) >> state >> parent;
        parents[static_cast<pid_t>(std::stol(number))] = parent;
    }
    return parents;
}

bool IsBelow(const std::map<pid_t, pid_t>& parents, pid_t process, pid_t above) {
    for (auto at = parents.find(process); at != parents.end(); at = parents.find(at->second)) {
        if (at->second == above) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<pid_t> ToolsBelow(pid_t process) {
    std::vector<pid_t> tools;
    const auto parents = Parents();
    for (const auto& [child, parent] : parents) {
        const std::string line = TextOf("/proc/" + std::to_string(child) + "/cmdline");
        if (line.starts_with("/qv/bin/patchkeeper") && IsBelow(parents, child, process)) {
            tools.push_back(child);
        }
    }
    return tools;
}

bool RefusesConnections(std::uint16_t port) {
    try {
        const test_support::CimClient client(port);
        return false;
    } catch (const std::system_error& error) {
        return error.code() == std::errc::connection_refused;
    }
}

Robust::Robust() {
    setenv("TZ", "UTC", 1);
    tool_.Plays("", test_support::ToolAnswer().Output(Line("one")));
    tool_.Plays("--errors", test_support::ToolAnswer().Output("What it means.\n"));
}

Robust::~Robust() {
    server_.reset();
}

void Robust::StartServer(const std::string& items) {
    server_.reset();
    server_.emplace(std::vector<std::string>{}, items);
}

std::string Robust::Ask(const std::string& body) {
    return test_support::CimClient(server_->Port()).Post(body).body;
}

std::string Robust::EnumerateInventory() {
    return Ask(EnumerationOf("ZNX_SoftwareIdentity"));
}

std::string Line(const std::string& name) {
    return name + "\t1\tOther\tJan 2 2025 03:04 UTC\n";
}

std::string EnumerationOf(const std::string& className) {
    return test_support::IntrinsicCall("EnumerateInstances",
                                       R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" +
                                           className + R"("/></IPARAMVALUE>)");
}

} // namespace e2e
