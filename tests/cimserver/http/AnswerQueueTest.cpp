#include "HttpTest.hpp"

#include "cimserver/http/AnswerQueue.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <future>
#include <stdexcept>
#include <thread>

#include <sys/resource.h>

namespace {

using cimserver::http::AnswerQueue;
using http_test::OpenFileIn;
using http_test::Pattern;
using http_test::SpoolDirectory;
using End = AnswerQueue::End;

constexpr std::size_t inMemory = AnswerQueue::maxBlocks * AnswerQueue::blockSize;

/// Exactly `count` bytes.
std::string Take(AnswerQueue& queue, std::size_t count) {
    std::string all(count, '\0');
    std::size_t got = 0;
    while (got < count) {
        const auto portion = queue.Read(all.data() + got, count - got);
        if (portion.size == 0) {
            throw std::runtime_error("the end came after " + std::to_string(got));
        }
        got += portion.size;
    }
    return all;
}

/// All up to the end, in steps of so many bytes.
std::string TakeAll(AnswerQueue& queue, std::size_t step) {
    std::string all;
    std::string part(step, '\0');
    for (;;) {
        const auto portion = queue.Read(part.data(), step);
        if (portion.size == 0) {
            EXPECT_EQ(portion.end, End::whole);
            return all;
        }
        EXPECT_EQ(portion.end, End::none);
        all.append(part, 0, portion.size);
    }
}

class Queue : public testing::Test {
protected:
    std::uint64_t FileSize() const { return OpenFileIn(directory.Path()).value().size; }
    bool HasFile() const { return OpenFileIn(directory.Path()).has_value(); }

    SpoolDirectory directory;
    AnswerQueue queue{directory.Path()};
};

TEST_F(Queue, GivesBackWhatWasAppendedWhateverThePortions) {
    const std::string text = Pattern(2 * inMemory + 1);
    for (const std::size_t portion : {999UL, 65'535UL, 65'536UL, 65'537UL, 3'000'000UL}) {
        for (const std::size_t step : {4096UL, 65'536UL, 100'000UL}) {
            AnswerQueue one(directory.Path());
            for (std::size_t at = 0; at < text.size(); at += portion) {
                one.Append(std::string_view(text).substr(at, portion));
            }
            one.Finish();
            ASSERT_EQ(one.Size(), text.size());
            EXPECT_TRUE(TakeAll(one, step) == text) << portion << " " << step;
            EXPECT_EQ(one.Size(), 0U);
        }
    }
}

TEST_F(Queue, SingleBytesKeepTheirOrder) {
    const std::string text = Pattern(200'001);
    for (const char byte : text) {
        queue.Append({&byte, 1});
    }
    queue.Finish();
    EXPECT_TRUE(TakeAll(queue, 1000) == text);
}

TEST_F(Queue, HoldsSoMuchInMemoryAndTheRestInTheFile) {
    queue.Append(Pattern(inMemory));
    EXPECT_FALSE(HasFile());
    queue.Append("x");
    EXPECT_EQ(FileSize(), 1U);
    queue.Append(Pattern(5'000'000));
    EXPECT_EQ(FileSize(), 5'000'001U);
    EXPECT_EQ(queue.Size(), inMemory + 5'000'001);
}

TEST_F(Queue, StaysBehindTheFileWhileTheFileIsNotEmpty) {
    const std::string text = Pattern(4 * inMemory);
    queue.Append(std::string_view(text).substr(0, 2 * inMemory));
    // Memory has room again, but the file's bytes come first.
    std::string got = Take(queue, inMemory + 10);
    queue.Append(std::string_view(text).substr(2 * inMemory));
    EXPECT_EQ(FileSize(), 3 * inMemory);
    queue.Finish();
    got += TakeAll(queue, 50'000);
    EXPECT_TRUE(got == text);
}

TEST_F(Queue, ReturnsToMemoryWhenTheFileIsEmptied) {
    const std::string text = Pattern(3 * inMemory);
    queue.Append(std::string_view(text).substr(0, 2 * inMemory));
    std::string got = Take(queue, 2 * inMemory);
    queue.Append(std::string_view(text).substr(2 * inMemory));
    EXPECT_EQ(FileSize(), 0U);
    EXPECT_EQ(queue.Pieces().size(), inMemory / AnswerQueue::blockSize);
    queue.Append("more");
    EXPECT_EQ(FileSize(), 4U);
    queue.Finish();
    got += TakeAll(queue, 65'536);
    EXPECT_TRUE(got == text + "more");
}

TEST_F(Queue, TheFileHasNoNameAndIsNotInherited) {
    queue.Append(Pattern(2 * inMemory));
    EXPECT_TRUE(directory.IsEmpty());
    EXPECT_TRUE(OpenFileIn(directory.Path()).value().isCloseOnExec);
}

TEST_F(Queue, TheFileGoesWithTheQueue) {
    {
        AnswerQueue one(directory.Path());
        one.Append(Pattern(2 * inMemory));
        EXPECT_TRUE(HasFile());
    }
    EXPECT_FALSE(HasFile());
}

TEST_F(Queue, PiecesAreTheBytesInMemory) {
    const std::string text = Pattern(150'000);
    queue.Append(text);
    EXPECT_EQ(Take(queue, 70'000), text.substr(0, 70'000));
    std::string joined;
    for (const std::string_view piece : queue.Pieces()) {
        joined += piece;
    }
    EXPECT_TRUE(joined == text.substr(70'000));
}

TEST_F(Queue, ThereAreNoPiecesOfAnAnswerThatIsPartlyInTheFile) {
    queue.Append(Pattern(inMemory + 1));
    EXPECT_TRUE(queue.Pieces().empty());
}

TEST_F(Queue, ClearStartsAgain) {
    queue.Append(Pattern(2 * inMemory));
    queue.Clear();
    EXPECT_EQ(queue.Size(), 0U);
    EXPECT_EQ(FileSize(), 0U);
    queue.Append("new");
    queue.Finish();
    EXPECT_EQ(TakeAll(queue, 10), "new");
}

TEST_F(Queue, TheEndComesAfterTheLastByteAndStays) {
    queue.Append("abc");
    queue.Finish();
    EXPECT_EQ(TakeAll(queue, 2), "abc");
    char byte = 0;
    EXPECT_EQ(queue.Read(&byte, 1).end, End::whole);
}

TEST_F(Queue, ABreakIsNoEnd) {
    queue.Append("abc");
    queue.Break();
    char byte = 0;
    const auto portion = queue.Read(&byte, 1);
    EXPECT_EQ(portion.size, 0U);
    EXPECT_EQ(portion.end, End::broken);
}

TEST_F(Queue, WhatIsAppendedForNobodyIsDropped) {
    queue.Append(Pattern(2 * inMemory));
    queue.Abandon();
    queue.Append(Pattern(2 * inMemory));
    EXPECT_EQ(queue.Size(), 0U);
    EXPECT_EQ(FileSize(), 0U);
}

TEST(QueueErrors, ADirectoryThatIsNotThereIsNamed) {
    AnswerQueue queue("/not/there");
    queue.Append(Pattern(inMemory));
    try {
        queue.Append("x");
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(),
                     "The answer needs a file in /not/there: No such file or directory");
    }
}

TEST_F(Queue, AFileThatCannotGrowIsAnErrorAndWhatIsThereStays) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{.rlim_cur = 300'000, .rlim_max = RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const std::string text = Pattern(inMemory + 250'000);
    queue.Append(text);
    try {
        queue.Append(Pattern(100'000));
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(),
                  "The answer cannot be kept in " + directory.Path() + ": File too large");
    }
    queue.Finish();
    EXPECT_TRUE(TakeAll(queue, 65'536) == text);
}

TEST_F(Queue, AReaderWaitsForTheNextBytes) {
    auto reader = std::async(std::launch::async, [&] { return Take(queue, 3); });
    EXPECT_EQ(reader.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    queue.Append("abc");
    EXPECT_EQ(reader.get(), "abc");
}

TEST_F(Queue, AReaderThatWaitsSeesTheEndAndTheBreak) {
    auto reader = std::async(std::launch::async, [&] { return TakeAll(queue, 10); });
    queue.Finish();
    EXPECT_EQ(reader.get(), "");
    AnswerQueue broken(directory.Path());
    auto other = std::async(std::launch::async, [&] {
        char byte = 0;
        return broken.Read(&byte, 1).end;
    });
    broken.Break();
    EXPECT_EQ(other.get(), End::broken);
}

/// A maker and a reader at the same time; the reader pauses so that memory, file and memory again
/// are in use.
TEST_F(Queue, KeepsTheOrderBetweenTwoThreads) {
    constexpr unsigned rounds = 40;
    constexpr std::size_t roundSize = 700'000;
    auto reader = std::async(std::launch::async, [&] {
        bool isRight = true;
        for (unsigned i = 0; i < rounds; ++i) {
            if (i % 8 == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
            isRight = isRight && Take(queue, roundSize) == Pattern(roundSize, 7 * i);
        }
        return isRight && TakeAll(queue, 100).empty();
    });
    std::size_t portion = 1;
    for (unsigned i = 0; i < rounds; ++i) {
        const std::string text = Pattern(roundSize, 7 * i);
        for (std::size_t at = 0; at < text.size(); at += portion) {
            portion = 1000 + (portion * 31) % 130'000;
            queue.Append(std::string_view(text).substr(at, portion));
        }
    }
    queue.Finish();
    EXPECT_TRUE(reader.get());
}

/// The reader is fast and meets the maker within blocks.
TEST_F(Queue, ABlockThatIsBeingFilledIsNotTakenAway) {
    const std::string portion = Pattern(40'000);
    constexpr int count = 2500;
    auto reader = std::async(std::launch::async, [&] {
        int wrong = 0;
        for (int i = 0; i < count; ++i) {
            wrong += Take(queue, portion.size()) == portion ? 0 : 1;
        }
        return wrong;
    });
    for (int i = 0; i < count; ++i) {
        queue.Append(portion);
    }
    queue.Append(portion);
    EXPECT_EQ(reader.get(), 0);
}

TEST_F(Queue, AMakerGoesOnWhileTheReaderLeaves) {
    std::promise<void> begun;
    auto reader = std::async(std::launch::async, [&] {
        Take(queue, 200'000);
        queue.Abandon();
        begun.set_value();
    });
    auto left = begun.get_future();
    const std::string text = Pattern(100'000);
    while (left.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        queue.Append(text);
    }
    queue.Append(text);
    EXPECT_EQ(queue.Size(), 0U);
}

} // namespace
