// A tool that does anything, under eight clients.
#include "e2e/Robust.hpp"

#include "support/ComesTrue.hpp"
#include "support/XmlNode.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <iterator>
#include <random>
#include <stdexcept>
#include <thread>

namespace {

using test_support::ToolAnswer;
using namespace std::chrono_literals;

class RandomTool : public e2e::Robust {
protected:
    /// Asks until it is told to end; every answer is a list or an error.
    void BeAClient() {
        while (!mayEnd_) {
            try {
                const auto document = test_support::ReadXml(EnumerateInventory());
                const bool isAnswer = document && (document->Find("ERROR") != nullptr ||
                                                   document->Find("IRETURNVALUE") != nullptr);
                ++(isAnswer ? answers_ : failures_);
            } catch (const std::runtime_error& error) {
                ADD_FAILURE() << error.what();
            }
        }
    }
    /// The tool is in this mood for a while.
    void Play(std::size_t mood) {
        static const ToolAnswer answers[] = {
            ToolAnswer().Output(e2e::Line("one")),
            ToolAnswer().ExitCode(12),
            ToolAnswer().DiesBySignal(SIGSEGV),
            ToolAnswer().Output("\x01\xFF\t\t\n\n<&>"),
            ToolAnswer().Output(std::string(10'000'000, 'x')),
            ToolAnswer().Output(e2e::Line("one")).ErrorText("words\n").ExitCode(3),
        };
        if (mood < std::size(answers)) {
            tool_.Plays("", answers[mood]);
            std::this_thread::sleep_for(60ms);
            return;
        }
        tool_.Plays("", ToolAnswer().Held());
        std::this_thread::sleep_for(60ms);
        for (const pid_t hanging : e2e::ToolsBelow(Server().Pid())) {
            kill(hanging, SIGKILL);
        }
    }
    static constexpr std::size_t moods = 7;

    std::atomic<bool> mayEnd_ = false;
    std::atomic<int> answers_ = 0;
    std::atomic<int> failures_ = 0;
};

TEST_F(RandomTool, UnderEightClientsHarmsNobody) {
    StartServer();
    EnumerateInventory();
    const std::size_t descriptors = Server().OpenDescriptors();
    std::vector<std::thread> clients;
    for (int i = 0; i < 8; ++i) {
        clients.emplace_back([this] { BeAClient(); });
    }
    std::mt19937 random(4711);
    const auto end = std::chrono::steady_clock::now() + 4s;
    while (std::chrono::steady_clock::now() < end) {
        Play(random() % moods);
    }
    mayEnd_ = true;
    Play(0);
    for (const pid_t hanging : e2e::ToolsBelow(Server().Pid())) {
        kill(hanging, SIGKILL);
    }
    for (auto& client : clients) {
        client.join();
    }
    EXPECT_EQ(failures_, 0);
    EXPECT_GT(answers_, 16);
    EXPECT_THAT(EnumerateInventory(), testing::HasSubstr("<VALUE>one</VALUE>"));
    EXPECT_TRUE(test_support::ComesTrue(
        [&] { return Server().OpenDescriptors() <= descriptors && Server().Zombies() == 0; }));
    EXPECT_EQ(Server().Stop(), 0);
}

} // namespace
