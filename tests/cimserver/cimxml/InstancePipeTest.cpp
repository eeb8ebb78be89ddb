// Instances of large answers are written by a thread of their own; nobody can tell.
#include "cimserver/cimxml/InstancePipe.hpp"
#include "Support.hpp"

#include "OW_CIM.hpp"
#include "OW_CIMException.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using cimserver::cimxml::InstancePipe;
using cimserver::cimxml::InstanceWriter;
using cimserver::cimxml::XmlBuffer;
using cimxml_test::ErrorIn;
using cimxml_test::Results;
using cimxml_test::ResultSink;
using cimxml_test::TextOutput;
using testing::HasSubstr;

constexpr UInt32 many = 20'000;

CIMInstance Numbered(UInt32 number) {
    CIMInstance instance("A");
    instance.setProperty("Number", CIMValue(number));
    return instance;
}

// It has no XML form.
CIMInstance Unwritable() {
    CIMInstance instance("A");
    instance.setKeys(CIMPropertyArray(1, CIMProperty("K", CIMValue(StringArray(1, "element")))));
    return instance;
}

std::string TextOf(UInt32 number) {
    return R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="A"></INSTANCENAME><INSTANCE CLASSNAME="A">)"
           R"(<PROPERTY NAME="Number" TYPE="uint32"><VALUE>)" +
           std::to_string(number) + "</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE>";
}

class Pipe : public testing::Test {
protected:
    TextOutput output_;
    XmlBuffer xml_{output_};
    InstanceWriter writer_{xml_};
};

TEST_F(Pipe, WritesAllInTheirOrder) {
    std::string expected;
    {
        InstancePipe pipe(writer_);
        for (UInt32 i = 0; i < many; ++i) {
            pipe.Add(Numbered(i));
            expected += TextOf(i);
        }
        pipe.Finish();
    }
    xml_.Flush();
    EXPECT_TRUE(output_.text == expected);
}

TEST_F(Pipe, WithoutInstancesWritesNothing) {
    InstancePipe pipe(writer_);
    pipe.Finish();
    xml_.Flush();
    EXPECT_EQ(output_.text, "");
}

TEST_F(Pipe, ThrowsWhatAnInstanceThrewAndWritesNothingBehindIt) {
    InstancePipe pipe(writer_);
    UInt32 added = 0;
    EXPECT_THROW(
        {
            for (; added < many; ++added) {
                pipe.Add(added == 5'000 ? Unwritable() : Numbered(added));
            }
        },
        CIMException);
    EXPECT_GT(added, 5'000U);
    EXPECT_LT(added, many) << "it goes on being filled";
    EXPECT_THROW(pipe.Add(Numbered(0)); pipe.Finish(), CIMException);
    xml_.Flush();
    EXPECT_THAT(output_.text, HasSubstr(TextOf(4'999)));
    EXPECT_THAT(output_.text, testing::Not(HasSubstr(TextOf(5'001))));
}

TEST_F(Pipe, AFailureOfTheLastInstanceIsThrownAtTheEnd) {
    InstancePipe pipe(writer_);
    pipe.Add(Unwritable());
    EXPECT_THROW(pipe.Finish(), CIMException);
}

TEST_F(Pipe, DropsTheRestWhenItGoes) {
    {
        InstancePipe pipe(writer_);
        for (UInt32 i = 0; i < 100; ++i) {
            pipe.Add(Numbered(i));
        }
    }
    xml_.Flush();
    EXPECT_EQ(output_.text, "");
}

TEST(LargeAnswer, HoldsEveryInstanceOnceInOrder) {
    std::string expected;
    for (UInt32 i = 0; i < many; ++i) {
        expected += TextOf(i);
    }
    EXPECT_TRUE(cimxml_test::ReturnValue([](ResultSink& sink) {
                    for (UInt32 i = 0; i < many; ++i) {
                        sink.NamedInstance(Numbered(i));
                    }
                }) == expected);
}

TEST(LargeAnswer, IsTheErrorOfItsLastInstance) {
    EXPECT_EQ(ErrorIn(Results([](ResultSink& sink) {
                  for (UInt32 i = 0; i < 3'000; ++i) {
                      sink.NamedInstance(Numbered(i));
                  }
                  sink.NamedInstance(Unwritable());
              })),
              "1: general error (Key K is an array)");
}

TEST(LargeAnswer, IsTheErrorOfItsMakerAlthoughInstancesWait) {
    EXPECT_EQ(ErrorIn(Results([](ResultSink& sink) {
                  for (UInt32 i = 0; i < 3'000; ++i) {
                      sink.NamedInstance(Numbered(i));
                  }
                  OW_THROWCIMMSG(CIMException::FAILED, "the tool died");
              })),
              "1: general error (the tool died)");
}

} // namespace
