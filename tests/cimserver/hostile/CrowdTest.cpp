// Clients that mean no harm, and are many.
#include "Attack.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <thread>
#include <vector>

namespace {

class Crowd : public hostile::Attack {};

TEST_F(Crowd, OfSixtyFourClientsEachIsAnsweredEachTime) {
    std::atomic<int> answers = 0;
    Suffer([&] {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(2'500);
        std::vector<std::thread> clients;
        for (int i = 0; i < 64; ++i) {
            clients.emplace_back([&] {
                try {
                    test_support::CimClient client(Port());
                    do {
                        const auto answer = client.Post(hostile::SmallQuestion());
                        ASSERT_THAT(answer.body, testing::HasSubstr("<INSTANCENAME "));
                        ++answers;
                    } while (std::chrono::steady_clock::now() < end);
                } catch (const std::exception& error) {
                    ADD_FAILURE() << error.what();
                }
            });
        }
        for (std::thread& client : clients) {
            client.join();
        }
    });
    EXPECT_GE(answers, 128);
}

} // namespace
