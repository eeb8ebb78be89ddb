#include "e2e/OverHttp.hpp"

#include "support/DtdCheck.hpp"

#include <array>
#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>

namespace e2e {
ClientRun RunAtShell(const std::string& command) {
    ClientRun run;
    std::FILE* pipe = popen((command + " 2>&1").c_str(), "re");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::array<char, 4096> block;
    std::size_t got = 0;
    while ((got = std::fread(block.data(), 1, block.size(), pipe)) > 0) {
        run.text.append(block.data(), got);
    }
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
}

std::vector<std::string> ClientRun::Lines() const {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

void OverHttp::StartServer(const std::vector<std::string>& moreArguments,
                           const std::string& moreItems) {
    server_.emplace(moreArguments, moreItems);
    proxy_.emplace(server_->Port());
}

void OverHttp::TearDown() {
    ASSERT_TRUE(proxy_.has_value());
    EXPECT_EQ(proxy_->Problems(), std::vector<std::string>());
    const std::vector<test_support::HttpAnswer> answers = proxy_->Answers();
    EXPECT_FALSE(answers.empty()) << "no answer went through the proxy";
    for (const test_support::HttpAnswer& answer : answers) {
        EXPECT_EQ(test_support::DtdProblems(answer.body), std::vector<std::string>());
        EXPECT_EQ(test_support::PlainClientProblems(answer.body), std::vector<std::string>());
    }
    EXPECT_EQ(server_->Stop(), 0) << server_->Log();
}

ClientRun OverHttp::Wbemcli(const std::string& operation, const std::string& object,
                            const std::string& moreWords, const std::string& nameSpace) {
    return RunAtShell("wbemcli " + operation + " '" +
                      "http://127.0.0.1:" + std::to_string(proxy_->Port()) + "/" + nameSpace +
                      (object.empty() ? "" : ":" + object) + "' " + moreWords);
}

test_support::HttpAnswer OverHttp::Post(const std::string& body,
                                        const test_support::HeaderList& moreHeaders) {
    test_support::CimClient client(proxy_->Port());
    return client.Post(body, moreHeaders);
}

std::string OverHttp::Prefix() const {
    return "127.0.0.1:" + std::to_string(proxy_->Port()) + "/root/cimv2:";
}

std::vector<std::string> WithoutPrefix(const std::vector<std::string>& lines,
                                       const std::string& prefix) {
    std::vector<std::string> rest;
    for (const std::string& line : lines) {
        rest.push_back(line.rfind(prefix, 0) == 0 ? line.substr(prefix.size()) : line);
    }
    return rest;
}

} // namespace e2e
