// Errors that are found when text has left already, and answers that cannot be kept.
#include "Support.hpp"

#include "cimserver/cimxml/Trailers.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

#include <new>

namespace {

using namespace OpenWBEM;
using cimserver::cimxml::HeaderList;
using cimserver::cimxml::TrailersOf;
using cimxml_test::FakeExecutor;
using cimxml_test::Request;
using cimxml_test::ResultSink;
using cimxml_test::TextOutput;
using test_support::IntrinsicCall;

constexpr std::size_t anyText = 1;

/// Names of classes without end, up to the error.
void DeliverAndFail(ResultSink& sink, int count, const char* error) {
    for (int i = 0; i < count; ++i) {
        sink.ClassName("ZNX_SomeClass");
    }
    OW_THROWCIMMSG(CIMException::FAILED, error);
}

void Ask(TextOutput& output, const FakeExecutor::Action& action) {
    FakeExecutor executor(action);
    const std::string body = IntrinsicCall("EnumerateClassNames", "");
    cimserver::cimxml::Answer({"POST", cimxml_test::OperationHeaders(body), body, ""}, executor,
                              output);
}

std::string TrailerText(const char* message) {
    return TrailersOf(CIMException(__FILE__, __LINE__, CIMException::FAILED, message)).at(1).second;
}

TEST(StreamedErrors, AreTrailersBehindTheTextThatHasLeft) {
    TextOutput whole;
    Ask(whole, [](const Request&, ResultSink& sink) {
        for (int i = 0; i < 10'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
        }
    });
    TextOutput output(anyText);
    Ask(output, [](const Request&, ResultSink& sink) {
        DeliverAndFail(sink, 10'000, "the tool failed\n#17,a#");
    });
    EXPECT_EQ(output.head.httpStatus, 200);
    EXPECT_EQ(output.trailers,
              (HeaderList{{"CIMStatusCode", "1"},
                          {"CIMStatusCodeDescription", "general error (the tool failed #17,a#)"}}));
    EXPECT_GT(output.text.size(), 100'000U);
    EXPECT_TRUE(whole.text.starts_with(output.text));
}

TEST(StreamedErrors, BeforeAnyTextLeftAreAnErrorElement) {
    TextOutput output(anyText);
    Ask(output, [](const Request&, ResultSink& sink) { DeliverAndFail(sink, 100, "early"); });
    EXPECT_EQ(cimxml_test::ErrorIn(output.text), "1: general error (early)");
    EXPECT_TRUE(output.trailers.empty());
}

TEST(StreamedErrors, AnAnswerThatSucceedsHasNoTrailers) {
    TextOutput output(anyText);
    Ask(output, [](const Request&, ResultSink& sink) {
        for (int i = 0; i < 10'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
        }
    });
    EXPECT_TRUE(output.trailers.empty());
    EXPECT_TRUE(output.text.ends_with("</CIM>\n"));
}

TEST(StreamedErrors, TheTrailersAnnouncedAreTheTrailersSent) {
    const HeaderList trailers = TrailersOf(CIMException(__FILE__, __LINE__, CIMException::FAILED));
    EXPECT_EQ(trailers.at(0).first + ", " + trailers.at(1).first,
              cimserver::cimxml::Status().trailerNames);
}

TEST(StreamedErrors, HaveTheErrorsNumber) {
    EXPECT_EQ(TrailersOf(CIMException(__FILE__, __LINE__, CIMException::NOT_FOUND, "x")).at(0),
              HeaderList::value_type("CIMStatusCode", "6"));
}

TEST(StreamedErrors, TextsAreOneLineOfPrintableCharacters) {
    EXPECT_EQ(TrailerText("a\tb \"c\" <&> ~"), "general error (a%09b \"c\" <&> ~)");
    EXPECT_EQ(TrailerText("one\ntwo\r\nthree"), "general error (one two  three)");
    EXPECT_EQ(TrailerText("100% \x7F\x01"), "general error (100%25 %7F%01)");
    EXPECT_EQ(TrailerText("\xC3\xA4"), "general error (%C3%A4)");
}

TEST(StreamedErrors, LongTextsAreCutBetweenCharacters) {
    const std::string text = TrailerText(std::string(100'000, 'x').c_str());
    EXPECT_EQ(text.size(), 4096U);
    const std::string encoded = TrailerText(std::string(100'000, '%').c_str());
    EXPECT_LE(encoded.size(), 4096U);
    EXPECT_TRUE(encoded.ends_with("%25"));
    for (const char* start : {"", "x", "xx", "xxx", "xxxx", "xxxxx"}) {
        std::string euros = start;
        for (int i = 0; i < 1000; ++i) {
            euros += "\xE2\x82\xAC";
        }
        const std::string cut = TrailerText(euros.c_str());
        EXPECT_LE(cut.size(), 4096U);
        EXPECT_GT(cut.size(), 4096U - 9);
        EXPECT_TRUE(cut.ends_with("%E2%82%AC")) << start;
    }
}

TEST(AnswersThatCannotBeKept, BecomeAnErrorWithTheReason) {
    TextOutput output(std::string::npos, 200'000);
    Ask(output, [](const Request&, ResultSink& sink) {
        for (int i = 0; i < 10'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
        }
    });
    EXPECT_EQ(cimxml_test::ErrorIn(output.text), "1: general error (no room for the answer)");
}

TEST(AnswersThatCannotBeKept, TheLastPortionToo) {
    TextOutput output(std::string::npos, 66'000);
    Ask(output, [](const Request&, ResultSink& sink) {
        for (int i = 0; i < 2'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
        }
    });
    EXPECT_EQ(cimxml_test::ErrorIn(output.text), "1: general error (no room for the answer)");
}

TEST(AnswersThatCannotBeKept, EndWithTheReasonAsTrailerOnceTextHasLeft) {
    TextOutput output(anyText, 200'000);
    int delivered = 0;
    Ask(output, [&](const Request&, ResultSink& sink) {
        for (int i = 0; i < 10'000; ++i) {
            sink.ClassName("ZNX_SomeClass");
            ++delivered;
        }
    });
    EXPECT_LT(delivered, 10'000);
    EXPECT_EQ(output.trailers.at(1).second, "general error (no room for the answer)");
}

} // namespace
