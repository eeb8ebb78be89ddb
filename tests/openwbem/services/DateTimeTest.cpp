#include "openwbem/services/ProcessZone.hpp"

#include "OW_DateTime.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <ctime>

namespace OpenWBEM {
namespace {

const time_t INSTANT = 1735786645;   // 2 January 2025 02:57:25 UTC
const time_t IN_SUMMER = 1751425045; // 2 July 2025 02:57:25 UTC

struct tm brokenDown(const DateTime& value) {
    struct tm local;
    value.toLocal(local);
    return local;
}

} // namespace

TEST(DateTime, IsTheEpochByDefault) {
    EXPECT_EQ(DateTime().get(), 0);
    EXPECT_EQ(DateTime().getMicrosecond(), 0u);
}

TEST(DateTime, KeepsSecondsAndMicroseconds) {
    const DateTime value(INSTANT, 17);
    EXPECT_EQ(value.get(), INSTANT);
    EXPECT_EQ(value.getMicrosecond(), 17u);
}

TEST(DateTimeOutput, IsTheClassicFormWithNewline) {
    useZone("UTC");
    const DateTime value(INSTANT, 999999);
    EXPECT_STREQ(value.toString().c_str(), "Thu Jan  2 02:57:25 2025\n");
    EXPECT_STREQ(value.toString(DateTime::E_UTC_TIME).c_str(), "Thu Jan  2 02:57:25 2025\n");
    EXPECT_STREQ(value.toString().rtrim().c_str(), "Thu Jan  2 02:57:25 2025");
}

TEST(DateTimeOutput, FollowsTheZoneOfTheProcess) {
    useZone("Europe/Berlin");
    const DateTime value(INSTANT);
    EXPECT_STREQ(value.toString().c_str(), "Thu Jan  2 03:57:25 2025\n");
    EXPECT_STREQ(value.toString(DateTime::E_UTC_TIME).c_str(), "Thu Jan  2 02:57:25 2025\n");
    EXPECT_STREQ(value.toStringGMT().c_str(), "Thu Jan  2 02:57:25 2025\n");
    EXPECT_STREQ(DateTime(IN_SUMMER).toString().c_str(), "Wed Jul  2 04:57:25 2025\n");
}

TEST(DateTimeOutput, FormatAddsNothing) {
    useZone("Europe/Berlin");
    const DateTime value(INSTANT);
    EXPECT_STREQ(DateTime::DEFAULT_FORMAT, "%c");
    EXPECT_STREQ(value.toString(DateTime::DEFAULT_FORMAT).c_str(), "Thu Jan  2 03:57:25 2025");
    EXPECT_STREQ(value.toString("%H:%M %Z", DateTime::E_UTC_TIME).c_str(), "02:57 GMT");
    EXPECT_STREQ(value.toString("%H:%M %Z").c_str(), "03:57 CET");
    EXPECT_STREQ(value.toString("").c_str(), "");
    EXPECT_STREQ(value.toString(" ").c_str(), " ");
}

TEST(DateTimeOutput, LongResultIsNotCut) {
    const std::string year = "2025";
    std::string format;
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        format += "%Y%Y";
        expected += year + year;
    }
    const DateTime value(INSTANT);
    EXPECT_EQ(value.toString(format.c_str(), DateTime::E_UTC_TIME).c_str(), expected);
}

TEST(DateTimeOutput, ReadsBackAsTheSameInstant) {
    for (const char* zone : {"UTC", "Europe/Berlin"}) {
        useZone(zone);
        EXPECT_EQ(DateTime(DateTime(INSTANT).toString()).get(), INSTANT);
        EXPECT_EQ(DateTime(DateTime(IN_SUMMER).toString()).get(), IN_SUMMER);
    }
}

TEST(DateTimeFields, AreReadInEitherCalendar) {
    useZone("Europe/Berlin");
    const DateTime value(1735687045); // 31 December 2024 23:17:25 UTC
    EXPECT_EQ(value.getYear(), 2025);
    EXPECT_EQ(value.getMonth(), 1);
    EXPECT_EQ(value.getDay(), 1);
    EXPECT_EQ(value.getHour(), 0);
    EXPECT_EQ(value.getMinute(), 17);
    EXPECT_EQ(value.getSecond(), 25);
    EXPECT_EQ(value.getDow(), 3);
    EXPECT_EQ(value.getYear(DateTime::E_UTC_TIME), 2024);
    EXPECT_EQ(value.getMonth(DateTime::E_UTC_TIME), 12);
    EXPECT_EQ(value.getDay(DateTime::E_UTC_TIME), 31);
    EXPECT_EQ(value.getHour(DateTime::E_UTC_TIME), 23);
    EXPECT_EQ(value.getMinute(DateTime::E_UTC_TIME), 17);
    EXPECT_EQ(value.getSecond(DateTime::E_UTC_TIME), 25);
    EXPECT_EQ(value.getDow(DateTime::E_UTC_TIME), 2);
    EXPECT_EQ(DateTime(259200).getDow(DateTime::E_UTC_TIME), 0); // a Sunday
}

TEST(DateTimeFields, MakeAnInstant) {
    useZone("Europe/Berlin");
    EXPECT_EQ(DateTime(2025, 1, 2, 3, 57, 25).get(), INSTANT);
    EXPECT_EQ(DateTime(2025, 7, 2, 4, 57, 25, 5).get(), IN_SUMMER);
    EXPECT_EQ(DateTime(2025, 7, 2, 4, 57, 25, 5).getMicrosecond(), 5u);
    EXPECT_EQ(DateTime(2025, 1, 2, 2, 57, 25, 0, DateTime::E_UTC_TIME).get(), INSTANT);
    EXPECT_EQ(DateTime(2025, 1, 2).get(), 1735772400);
}

TEST(DateTimeFields, BeforeNineteenSeventyIsRefused) {
    useZone("UTC");
    try {
        const DateTime value(1969, 12, 31, 23, 59, 59);
        ADD_FAILURE() << value.get();
    } catch (const DateTimeException& e) {
        EXPECT_STREQ(e.getMessage(),
                     "Unable to represent time \"Wed Dec 31 23:59:59 1969\" as a time_t");
    }
    DateTime value(INSTANT);
    EXPECT_THROW(value.setYear(1969), DateTimeException);
    EXPECT_EQ(value.get(), INSTANT);
}

TEST(DateTimeFields, AreSetOneByOne) {
    useZone("Europe/Berlin");
    DateTime value(INSTANT, 3);
    value.setYear(2024);
    value.setMonth(7);
    value.setDay(31);
    value.setHour(22);
    value.setMinute(45);
    value.setSecond(59);
    EXPECT_STREQ(value.toString().c_str(), "Wed Jul 31 22:45:59 2024\n");
    EXPECT_EQ(value.getMicrosecond(), 3u);
    value.setMicrosecond(4);
    EXPECT_EQ(value.getMicrosecond(), 4u);
    value.setHour(1, DateTime::E_UTC_TIME);
    EXPECT_STREQ(value.toString().c_str(), "Wed Jul 31 03:45:59 2024\n");
}

TEST(DateTimeFields, AreSetTogether) {
    useZone("Europe/Berlin");
    DateTime value(INSTANT, 3);
    value.setTime(12, 30, 15);
    EXPECT_STREQ(value.toString().c_str(), "Thu Jan  2 12:30:15 2025\n");
    EXPECT_EQ(value.getMicrosecond(), 3u);
    value.setTime(12, 30, 15, DateTime::E_UTC_TIME);
    EXPECT_STREQ(value.toString().c_str(), "Thu Jan  2 13:30:15 2025\n");
    value.set(2024, 7, 31, 1, 2, 3, 9);
    EXPECT_STREQ(value.toString().c_str(), "Wed Jul 31 01:02:03 2024\n");
    EXPECT_EQ(value.getMicrosecond(), 9u);
    value.set(INSTANT);
    EXPECT_EQ(value, DateTime(INSTANT));
}

TEST(DateTimeFields, CarryOver) {
    useZone("UTC");
    EXPECT_EQ(DateTime(2025, 2, 30, 12), DateTime(2025, 3, 2, 12));
    EXPECT_EQ(DateTime(2025, 13, 1), DateTime(2026, 1, 1));
    EXPECT_EQ(DateTime(2025, 1, 1, 24, 0, 60), DateTime(2025, 1, 2, 0, 1));
}

TEST(DateTimeSteps, AddTheirUnit) {
    useZone("UTC");
    DateTime value(2025, 1, 31, 12);
    value.addSeconds(1);
    value.addMinutes(2);
    value.addHours(3);
    EXPECT_EQ(value, DateTime(2025, 1, 31, 15, 2, 1));
    value.addDays(-1);
    EXPECT_EQ(value, DateTime(2025, 1, 30, 15, 2, 1));
    value.addWeeks(2);
    EXPECT_EQ(value, DateTime(2025, 2, 13, 15, 2, 1));
    value.addMonths(11);
    EXPECT_EQ(value, DateTime(2026, 1, 13, 15, 2, 1));
    value.addYears(-1);
    EXPECT_EQ(value, DateTime(2025, 1, 13, 15, 2, 1));
    value += 60;
    EXPECT_EQ(value, DateTime(2025, 1, 13, 15, 3, 1));
    value -= 61;
    EXPECT_EQ(value, DateTime(2025, 1, 13, 15, 2, 0));
}

TEST(DateTimeOrder, CountsMicroseconds) {
    const DateTime early(5, 1);
    const DateTime late(5, 2);
    const DateTime next(6, 0);
    EXPECT_TRUE(early < late && late < next && early <= late && early <= early);
    EXPECT_TRUE(next > late && late > early && late >= early && late >= late);
    EXPECT_TRUE(early == DateTime(5, 1) && early != late && early != DateTime(6, 1));
    EXPECT_FALSE(late < early || early > late || late <= early || early >= late || late == early);
}

TEST(DateTimeLocal, OffsetIsInMinutesEast) {
    useZone("Europe/Berlin");
    struct tm local;
    EXPECT_EQ(DateTime(INSTANT).toLocal(local), 60);
    EXPECT_EQ(local.tm_hour, 3);
    EXPECT_EQ(DateTime(IN_SUMMER).toLocal(local), 120);
    EXPECT_EQ(local.tm_hour, 4);
    useZone("Asia/Kathmandu");
    EXPECT_EQ(DateTime(INSTANT).toLocal(local), 345);
    EXPECT_EQ(DateTime::getGMTOffsetMinutesNow(), 345);
    useZone("America/New_York");
    EXPECT_EQ(DateTime(INSTANT).toLocal(local), -300);
    EXPECT_EQ(brokenDown(DateTime(INSTANT)).tm_mday, 1);
}

TEST(DateTimeNow, IsTheSystemsClock) {
    const time_t before = time(nullptr);
    DateTime value;
    value.setToCurrent();
    const time_t after = time(nullptr);
    EXPECT_LE(before, value.get() + 1); // time() may lag behind the finer clock
    EXPECT_LE(value.get(), after + 1);
    EXPECT_LT(value.getMicrosecond(), 1000000u);
}

} // namespace OpenWBEM
