#include "cimserver/http/Http.hpp"

#include <gtest/gtest.h>

namespace {

using cimserver::http::AnswerBody;

std::string Pattern(std::size_t size) {
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>('a' + i % 23);
    }
    return text;
}

std::string Everything(const AnswerBody& body, std::size_t step) {
    std::string all;
    std::string part(step, '\0');
    while (const std::size_t count = body.Read(all.size(), part.data(), step)) {
        all.append(part, 0, count);
    }
    return all;
}

TEST(AnswerBody, IsEmptyAtFirst) {
    const AnswerBody body;
    char byte = 'x';
    EXPECT_EQ(body.Size(), 0U);
    EXPECT_EQ(body.Read(0, &byte, 1), 0U);
    EXPECT_TRUE(body.Pieces().empty());
}

TEST(AnswerBody, ReadsBackWhatWasAppendedWhateverThePortions) {
    const std::string text = Pattern(300'001);
    for (const std::size_t portion : {1UL, 1000UL, 65'535UL, 65'536UL, 65'537UL, 300'001UL}) {
        AnswerBody body;
        for (std::size_t at = 0; at < text.size(); at += portion) {
            body.Append(std::string_view(text).substr(at, portion));
        }
        ASSERT_EQ(body.Size(), text.size());
        EXPECT_EQ(Everything(body, 70'000), text) << portion;
        EXPECT_EQ(Everything(body, 999), text) << portion;
    }
}

TEST(AnswerBody, ReadsNothingBehindTheEnd) {
    AnswerBody body;
    body.Append("abc");
    char bytes[8] = {};
    EXPECT_EQ(body.Read(3, bytes, sizeof bytes), 0U);
    EXPECT_EQ(body.Read(4, bytes, sizeof bytes), 0U);
    EXPECT_EQ(body.Read(2, bytes, sizeof bytes), 1U);
    EXPECT_EQ(bytes[0], 'c');
}

TEST(AnswerBody, FullBlocksReadToTheirEnd) {
    AnswerBody body;
    const std::string block = Pattern(65'536);
    body.Append(block);
    EXPECT_EQ(Everything(body, 100'000), block);
    EXPECT_EQ(body.Pieces().size(), 1U);
}

TEST(AnswerBody, ClearStartsAgain) {
    AnswerBody body;
    body.Append(Pattern(200'000));
    body.Clear();
    EXPECT_EQ(body.Size(), 0U);
    body.Append("new");
    EXPECT_EQ(Everything(body, 10), "new");
}

TEST(AnswerBody, PiecesAreTheBytesInOrderAndDoNotMoveWhenMoreIsAppended) {
    AnswerBody body;
    const std::string text = Pattern(200'000);
    body.Append(std::string_view(text).substr(0, 150'000));
    const char* first = body.Pieces().front().data();
    body.Append(std::string_view(text).substr(150'000));
    std::string joined;
    for (const std::string_view piece : body.Pieces()) {
        joined += piece;
    }
    EXPECT_EQ(joined, text);
    EXPECT_EQ(body.Pieces().front().data(), first);
}

} // namespace
