#include "openwbem/services/ProcessZone.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

namespace OpenWBEM {
namespace {

CIMDateTime fromText(const char* text) {
    return CIMDateTime(String(text));
}

std::string textOf(const CIMDateTime& value) {
    return value.toString().c_str();
}

} // namespace

TEST(CIMDateTime, IsTheZeroIntervalByDefault) {
    const CIMDateTime value;
    EXPECT_TRUE(value.isInterval());
    EXPECT_EQ(textOf(value), "00000000000000.000000:000");
    EXPECT_FALSE(value);
    EXPECT_TRUE(!value);
    EXPECT_EQ(value, fromText(""));
    EXPECT_EQ(value, CIMDateTime(String()));
}

TEST(CIMDateTime, CarriesTheLocalOffsetOfAnInstant) {
    const struct {
        const char* zone;
        const char* winter;
        const char* summer;
    } rows[] = {
        {"UTC", "20250102030405.000000+000", "20250702030405.000000+000"},
        {"Europe/Berlin", "20250102030405.000000+060", "20250702030405.000000+120"},
        {"America/New_York", "20250102030405.000000-300", "20250702030405.000000-240"},
    };
    for (const auto& row : rows) {
        useZone(row.zone);
        EXPECT_EQ(textOf(CIMDateTime(DateTime(2025, 1, 2, 3, 4, 5))), row.winter);
        EXPECT_EQ(textOf(CIMDateTime(DateTime(2025, 7, 2, 3, 4, 5))), row.summer);
    }
}

TEST(CIMDateTime, IsMadeFromAnInstantWithoutCast) {
    useZone("Europe/Berlin");
    const CIMDateTime value = DateTime(1735783445, 123456);
    EXPECT_EQ(textOf(value), "20250102030405.123456+060");
    EXPECT_FALSE(value.isInterval());
    EXPECT_EQ(value.toDateTime(), DateTime(1735783445, 123456));
}

TEST(CIMDateTime, HasTheFieldsOfItsText) {
    const CIMDateTime value = fromText("20250102030405.678901-300");
    EXPECT_EQ(value.getYear(), 2025);
    EXPECT_EQ(value.getMonth(), 1);
    EXPECT_EQ(value.getDay(), 2u);
    EXPECT_EQ(value.getHours(), 3);
    EXPECT_EQ(value.getMinutes(), 4);
    EXPECT_EQ(value.getSeconds(), 5);
    EXPECT_EQ(value.getMicroSeconds(), 678901u);
    EXPECT_EQ(value.getUtc(), -300);
    EXPECT_FALSE(value.isInterval());
    EXPECT_EQ(textOf(value), "20250102030405.678901-300");
    EXPECT_TRUE(value);
    EXPECT_FALSE(!value);
}

TEST(CIMDateTime, IntervalTextHasDays) {
    const CIMDateTime value = fromText("00012345060708.000009:000");
    EXPECT_TRUE(value.isInterval());
    EXPECT_EQ(value.getDays(), 12345u);
    EXPECT_EQ(value.getHours(), 6);
    EXPECT_EQ(value.getMinutes(), 7);
    EXPECT_EQ(value.getSeconds(), 8);
    EXPECT_EQ(value.getMicroSeconds(), 9u);
    EXPECT_EQ(value.getUtc(), 0);
    EXPECT_EQ(value.getYear(), 0);
    EXPECT_EQ(textOf(value), "00012345060708.000009:000");
}

TEST(CIMDateTime, IntervalIsMadeFromMicroseconds) {
    const UInt64 microseconds = ((UInt64(12) * 24 + 3) * 3600 + 4 * 60 + 5) * 1000000 + 6;
    EXPECT_EQ(textOf(CIMDateTime(microseconds)), "00000012030405.000006:000");
    EXPECT_FALSE(CIMDateTime(UInt64(0)));
}

TEST(CIMDateTimeText, IsLookedAtPositionTwentyOneOnly) {
    const struct {
        const char* text;
        const char* kept;
    } rows[] = {
        {"20251399256199.000000+999", "20251399256199.000000+999"},
        {"2025**02******.******-***", "20250002000000.000000+000"},
        {"abcdefghijklmn.opqrst+uvw", "00000000000000.000000+000"},
        {"20250102030405.000000+060 and more", "20250102030405.000000+060"},
        {"20250102030405.000000+", "20250102030405.000000+000"},
        {"20250102030405.000000+06", "20250102030405.000000+006"},
        {"20250102030405x000001+060", "20250102030405.000001+060"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textOf(fromText(row.text)), row.kept) << row.text;
    }
}

TEST(CIMDateTimeText, AnythingElseThereIsRefused) {
    for (const char* text : {"x", "20250102030405.000000", "20250102030405.000000*000",
                             "20250102030405.000000 060", "Thu Jan  2 03:04:05 2025 and on"}) {
        try {
            const CIMDateTime value = fromText(text);
            ADD_FAILURE() << text << " read as " << value;
        } catch (const CIMDateTimeException& e) {
            EXPECT_STREQ(e.getMessage(), "Invalid format for date time");
            EXPECT_STREQ(e.type(), "CIMDateTimeException");
            EXPECT_EQ(e.getErrorCode(), 0);
            EXPECT_EQ(e.getSubClassId(), 49);
        }
    }
}

TEST(CIMDateTimeText, IsWhatTheStreamShows) {
    std::ostringstream stream;
    stream << fromText("20250102030405.000000+060");
    EXPECT_EQ(stream.str(), "20250102030405.000000+060");
}

TEST(CIMDateTimeFields, AreSetOneByOne) {
    CIMDateTime value;
    value.setInterval(false);
    value.setYear(2025);
    value.setMonth(1);
    value.setDay(2);
    value.setHours(3);
    value.setMinutes(4);
    value.setSeconds(5);
    value.setMicroSeconds(6);
    value.setUtc(-60);
    EXPECT_EQ(textOf(value), "20250102030405.000006-060");
    value.setInterval(true);
    value.setDays(77);
    EXPECT_EQ(textOf(value), "00000077030405.000006:000");
}

TEST(CIMDateTimeFields, OneOtherThanZeroMakesItTrue) {
    EXPECT_FALSE(CIMDateTime().setInterval(false));
    EXPECT_TRUE(CIMDateTime().setYear(1));
    EXPECT_TRUE(CIMDateTime().setMonth(1));
    EXPECT_TRUE(CIMDateTime().setDays(1));
    EXPECT_TRUE(CIMDateTime().setHours(1));
    EXPECT_TRUE(CIMDateTime().setMinutes(1));
    EXPECT_TRUE(CIMDateTime().setSeconds(1));
    EXPECT_TRUE(CIMDateTime().setMicroSeconds(1));
    EXPECT_TRUE(CIMDateTime().setUtc(1));
}

TEST(CIMDateTimeFields, CopiesAreIndependent) {
    CIMDateTime value = fromText("20250102030405.000000+060");
    const CIMDateTime copy = value;
    value.setYear(2026);
    EXPECT_EQ(copy.getYear(), 2025);
}

TEST(CIMDateTimeInstant, IsThatOfTheText) {
    for (const char* zone : {"UTC", "Europe/Berlin"}) {
        useZone(zone);
        EXPECT_EQ(fromText("20250102040405.000007+060").toDateTime(), DateTime(1735787045, 7));
        EXPECT_EQ(fromText("20250102030405.000000+***").toDateTime(), DateTime(1735787045));
    }
}

TEST(CIMDateTimeInstant, NeedsADate) {
    for (const char* text :
         {"", "00000001000000.000000:000", "20250002030405.000000+000", "20250100030405.000000+000",
          "20250102250405.000000+000", "20250102036105.000000+000", "19690102030405.000000+000"}) {
        EXPECT_THROW(fromText(text).toDateTime(), DateTimeException) << text;
    }
    EXPECT_THROW(fromText("20250102030405.000000+000").setDays(100).toDateTime(),
                 DateTimeException);
    EXPECT_THROW(fromText("20250102030405.000000+000").setMicroSeconds(1000000).toDateTime(),
                 DateTimeException);
}

TEST(CIMDateTimeComparison, EqualMeansSameFields) {
    const CIMDateTime value = fromText("20250102030405.000000+000");
    EXPECT_TRUE(value == fromText("20250102030405.000000+000"));
    EXPECT_TRUE(value.equal(fromText("20250102030405.000000+000")));
    EXPECT_FALSE(value != fromText("20250102030405.000000+000"));
    for (const char* other :
         {"20250102030405.000000+060", "20250102040405.000000+060", "20260102030405.000000+000",
          "20250202030405.000000+000", "20250103030405.000000+000", "20250102040405.000000+000",
          "20250102030505.000000+000", "20250102030406.000000+000", "20250102030405.000001+000"}) {
        EXPECT_TRUE(value != fromText(other)) << other;
        EXPECT_FALSE(value == fromText(other)) << other;
        EXPECT_FALSE(value.equal(fromText(other))) << other;
    }
    EXPECT_TRUE(fromText("00000000000000.000000+000") != CIMDateTime());
}

TEST(CIMDateTimeComparison, OrderIsThatOfInstants) {
    const CIMDateTime berlin = fromText("20250102040405.000000+060");
    const CIMDateTime london = fromText("20250102030405.000000+000");
    const CIMDateTime later = fromText("20250102030405.000001+000");
    EXPECT_FALSE(berlin < london || london < berlin || berlin > london || london > berlin);
    EXPECT_TRUE(berlin <= london && london <= berlin && berlin >= london && london >= berlin);
    EXPECT_TRUE(berlin < later && later > berlin && berlin <= later && later >= berlin);
    EXPECT_FALSE(later < berlin || berlin > later || later <= berlin || berlin >= later);
}

TEST(CIMDateTimeComparison, IntervalsHaveNoOrder) {
    const CIMDateTime interval(UInt64(1000000));
    const CIMDateTime point = fromText("20250102030405.000000+000");
    EXPECT_THROW(static_cast<void>(interval < interval), DateTimeException);
    EXPECT_THROW(static_cast<void>(interval < point), DateTimeException);
    EXPECT_THROW(static_cast<void>(point >= interval), DateTimeException);
    EXPECT_TRUE(interval == CIMDateTime(UInt64(1000000)));
}

TEST(CIMDateTimeNull, TestsFalseAndCanBeReplaced) {
    CIMDateTime value(CIMNULL);
    EXPECT_FALSE(value);
    EXPECT_TRUE(!value);
    const CIMDateTime copy = value;
    EXPECT_FALSE(copy);
    value = fromText("20250102030405.000000+000");
    EXPECT_TRUE(value);
    value.setNull();
    EXPECT_FALSE(value);
}

TEST(CIMDateTimeNull, EveryUseThrows) {
    CIMDateTime null(CIMNULL);
    const CIMDateTime some;
    const std::function<void()> uses[] = {
        [&] { null.getYear(); },
        [&] { null.getMonth(); },
        [&] { null.getDay(); },
        [&] { null.getDays(); },
        [&] { null.getHours(); },
        [&] { null.getMinutes(); },
        [&] { null.getSeconds(); },
        [&] { null.getMicroSeconds(); },
        [&] { null.getUtc(); },
        [&] { null.isInterval(); },
        [&] { null.toString(); },
        [&] { null.toDateTime(); },
        [&] { null.equal(some); },
        [&] { some.equal(null); },
        [&] { static_cast<void>(null < null); },
        [&] { null.setYear(1); },
        [&] { null.setMonth(1); },
        [&] { null.setDay(1); },
        [&] { null.setDays(1); },
        [&] { null.setHours(1); },
        [&] { null.setMinutes(1); },
        [&] { null.setSeconds(1); },
        [&] { null.setMicroSeconds(1); },
        [&] { null.setUtc(1); },
        [&] { null.setInterval(false); },
    };
    int number = 0;
    for (const auto& use : uses) {
        SCOPED_TRACE(number++);
        try {
            use();
            ADD_FAILURE() << "nothing thrown";
        } catch (const Exception& e) {
            EXPECT_STREQ(e.type(), "NULLCOWIntrusiveReferenceException");
            EXPECT_STREQ(e.getMessage(), "NULL COWReference dereferenced");
            EXPECT_EQ(e.getSubClassId(), 47);
        }
    }
    EXPECT_FALSE(null);
}

} // namespace OpenWBEM
