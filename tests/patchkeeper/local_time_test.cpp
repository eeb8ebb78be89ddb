#include "patchkeeper/LocalTime.hpp"

#include <cstdlib>
#include <ctime>
#include <string>

#include <gmock/gmock.h>

namespace {

using patchkeeper::LocalMoment;

class LocalTime : public testing::Test {
protected:
    static void SetZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    static bool IsReadable(const std::string& date, const std::string& time) {
        try {
            LocalMoment(date, time);
        } catch (const patchkeeper::Unreadable&) {
            return false;
        }
        return true;
    }
};

TEST_F(LocalTime, DayAndTimeComeFromTheirTexts) {
    SetZone("UTC");
    EXPECT_EQ(LocalMoment("Fri Feb 13 23:59:00 2026", "Thu Jan  1 03:04:05 1970"), 1770951845);
    EXPECT_EQ(LocalMoment(" Fri  Feb 13 23:59:00 2026\n", "Thu Jan  1 03:04:05 1970\n"),
              1770951845);
    SetZone("EST5");
    EXPECT_EQ(LocalMoment("Fri Feb 13 23:59:00 2026", "Thu Jan  1 03:04:05 1970"),
              1770951845 + 5 * 3600);
}

TEST_F(LocalTime, OfATimeThatComesTwiceTheFirstCounts) {
    SetZone("CET-1CEST,M3.5.0,M10.5.0/3"); // an hour more in summer
    EXPECT_EQ(LocalMoment("Sun Oct 25 02:30:00 2026", "Sun Oct 25 02:30:00 2026"), 1792888200);
    SetZone("IST-1GMT0,M10.5.0,M3.5.0/1"); // an hour less in winter
    EXPECT_EQ(LocalMoment("Sun Oct 25 01:30:00 2026", "Sun Oct 25 01:30:00 2026"), 1792888200);
}

TEST_F(LocalTime, EveryOtherTextIsRefused) {
    SetZone("UTC");
    const std::string good = "Fri Feb 13 23:59:00 2026";
    ASSERT_TRUE(IsReadable(good, good));
    for (const char* text : {"",
                             "   ",
                             "tomorrow",
                             "2026-02-13 23:59:00",
                             "Fri Feb 13 23:59:00",
                             "Fri Feb 13 2026",
                             "Fri Feb 13 23:59:00 2026 UTC",
                             "Fri Feb 13 23:59 2026",
                             "Fri Feb 13 23:59:00 26",
                             "Fri Feb 13 24:00:00 2026",
                             "Fri Feb 13 23:60:00 2026",
                             "Fri Feb 13 23:59:60 2026",
                             "Fri Feb 13 -1:59:00 2026",
                             "Fri Feb 13 23:59:00 -026",
                             "Fri feb 13 23:59:00 2026",
                             "Thu Feb 13 23:59:00 2026",
                             "Fry Feb 13 23:59:00 2026",
                             "Sun Feb 29 23:59:00 2026",
                             "Tue Apr 31 12:00:00 2026",
                             "Fri Feb 013 23:59:00 2026",
                             "Fri Feb 0 23:59:00 2026",
                             "Fri Feb x 23:59:00 2026",
                             "Fri Feb 13 23.59.00 2026",
                             "Fri Feb 13 2x:59:00 2026"}) {
        EXPECT_FALSE(IsReadable(text, good)) << text;
        EXPECT_FALSE(IsReadable(good, text)) << text;
    }
}

TEST_F(LocalTime, TimeThatTheChangeToSummerTimeLeavesOutIsRefused) {
    SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_TRUE(IsReadable("Sun Mar 29 00:00:00 2026", "Thu Jan  1 01:59:59 1970"));
    EXPECT_FALSE(IsReadable("Sun Mar 29 00:00:00 2026", "Thu Jan  1 02:30:00 1970"));
    EXPECT_TRUE(IsReadable("Sun Mar 29 00:00:00 2026", "Thu Jan  1 03:00:00 1970"));
}

TEST_F(LocalTime, OfATimeThatComesTwiceItIsTheFirst) {
    SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(LocalMoment("Sun Oct 25 00:00:00 2026", "Thu Jan  1 02:30:00 1970"), 1792888200);
}

} // namespace
