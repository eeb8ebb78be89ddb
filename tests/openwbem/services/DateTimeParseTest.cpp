#include "openwbem/services/ProcessZone.hpp"

#include "OW_DateTime.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

namespace OpenWBEM {
namespace {

struct Accepted {
    const char* text;
    time_t inUtc;    // read with TZ=UTC
    time_t inBerlin; // read with TZ=Europe/Berlin
};

const Accepted FREE_FORM[] = {
    {"Thu Jan 2 03:04:05 2025", 1735787045, 1735783445},
    {"Thu Jan  2 03:04:05 2025\n", 1735787045, 1735783445},
    {"2 January 2025 03:04:05", 1735787045, 1735783445},
    {"03:04:05 Jan 2 2025", 1735787045, 1735783445},
    {"Thursday January 2 2025 03:04:05", 1735787045, 1735783445},
    {"Sun Jan 2 2025 03:04:05", 1735787045, 1735783445}, // the weekday is not compared
    {"\tJan\r2\v2025  03:04:05 ", 1735787045, 1735783445},
    {"Jan 2 2025 03:04:05 J", 1735787045, 1735783445},
    {"J Jan J 2 2025 03:04:05", 1735787045, 1735783445},
    {"Jan 2 2025 3:4:5", 1735787045, 1735783445},
    {"Jan 2 2025 03::04:::05", 1735787045, 1735783445},
    {"Jan 02 02025 003:004:005", 1735787045, 1735783445},
    {"Jan 2 125 03:04:05", 1735787045, 1735783445}, // years after 1900
    {"Jan 2 2025 03:04", 1735787040, 1735783440},
    {"2 2025 03:04 Jan", 1735787040, 1735783440},
    {"Jan 2 99 03:04:05", 915246245, 915242645},
    {"Jan 2 1899 03:04:05", 57717803045, 57717799445},
    {"Jul 2 2025 03:04:05", 1751425445, 1751418245}, // summer time
    {"Jan 2 2025 23:59:60", 1735862400, 1735858800},
    {"Dec 31 2025 23:59:60", 1767225600, 1767222000},
    {"Feb 30 2025 12:00:00", 1740916800, 1740913200},
    {"Feb 30 2024 12:00:00", 1709294400, 1709290800},
    {"Dec 31 9999 23:59:59", 253402300799, 253402297199},
    {"Thu Jan  2 03:04:05 UTC 2025", 1735787045, 1735787045},
    {"J Jan 2 2025 03:04:05 UTC", 1735787045, 1735787045},
    {"Z 03:04:05 2 Jan 2025", 1735787045, 1735787045},
    {"Jan 2 2025 04:04:05 CET", 1735787045, 1735787045},
    {"Jan 1 2025 22:04:05 EST", 1735787045, 1735787045},
    {"Jan 1 1970 00:00:00 UTC", 0, 0},
    {"Feb 30 2025 12:00:00 UTC", 1740916800, 1740916800},
    {"Feb 30 2025 13:00:00 CET", 1740916800, 1740916800},
    {"Jan 2 2025 23:59:60 UTC", 1735862400, 1735862400},
};

void expectAccepted(const char* text, time_t expected) {
    SCOPED_TRACE(text);
    try {
        const DateTime read((String(text)));
        EXPECT_EQ(read.get(), expected);
        EXPECT_EQ(read.getMicrosecond(), 0u);
    } catch (const Exception& e) {
        ADD_FAILURE() << e;
    }
}

void expectRejected(const std::string& text, const std::string& message) {
    SCOPED_TRACE(text);
    try {
        const DateTime read(String(text.c_str()));
        ADD_FAILURE() << "read as " << read.get();
    } catch (const DateTimeException& e) {
        EXPECT_EQ(e.getMessage(), message);
        EXPECT_STREQ(e.type(), "DateTimeException");
        EXPECT_EQ(e.getErrorCode(), -1);
        EXPECT_EQ(e.getSubClassId(), 17);
    }
}

void expectInvalid(const std::string& text) {
    expectRejected(text, "Invalid DateTime: " + text);
}

void expectNotRepresentable(const std::string& text, const std::string& shown) {
    expectRejected(text, "Unable to represent time \"" + shown + "\" as a time_t");
}

} // namespace

TEST(DateTimeFreeForm, IsReadInTheUtcProcessZone) {
    useZone("UTC");
    for (const Accepted& row : FREE_FORM) {
        expectAccepted(row.text, row.inUtc);
    }
}

TEST(DateTimeFreeForm, IsReadInAnotherProcessZone) {
    useZone("Europe/Berlin");
    for (const Accepted& row : FREE_FORM) {
        expectAccepted(row.text, row.inBerlin);
    }
}

TEST(DateTimeFreeForm, ReadsEveryMonthWholeAndByThreeLetters) {
    useZone("UTC");
    const char* const months[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};
    for (int month = 0; month < 12; ++month) {
        const std::string whole = months[month];
        for (const std::string& name : {whole, whole.substr(0, 3)}) {
            SCOPED_TRACE(name);
            const DateTime read(String((name + " 2 2025 03:04:05").c_str()));
            EXPECT_EQ(read.getMonth(), month + 1);
            EXPECT_EQ(read.getDay(), 2);
        }
    }
}

TEST(DateTimeFreeForm, ReadsEveryWeekdayWholeAndByThreeLetters) {
    useZone("UTC");
    for (const std::string whole :
         {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}) {
        expectAccepted((whole + " Jan 2 2025 03:04:05").c_str(), 1735787045);
        expectAccepted((whole.substr(0, 3) + " Jan 2 2025 03:04:05").c_str(), 1735787045);
        expectInvalid(whole.substr(0, 4) + " Jan 2 2025 03:04:05");
    }
}

// The seconds as text, or `refused`.
std::string readOrRefused(const std::string& text) {
    try {
        return std::to_string(DateTime(String(text.c_str())).get());
    } catch (const DateTimeException&) {
        return "refused";
    }
}

// The form of date(1) is read by its columns. A blank in front moves all of them, and the text must
// mean the same.
TEST(DateTimeFreeForm, TheFormOfDateMeansWhatItsWordsMean) {
    useZone("UTC");
    const std::string usual = "Thu Jan 12 03:04:05 CET 2025";
    const std::string characters = "019:A zTu-\t\xC3";
    for (std::size_t i = 0; i < usual.size(); ++i) {
        for (const char character : characters) {
            std::string text = usual;
            text[i] = character;
            EXPECT_EQ(readOrRefused(text), readOrRefused(" " + text)) << text;
            text.insert(i, 1, usual[i]);
            EXPECT_EQ(readOrRefused(text), readOrRefused(" " + text)) << text;
        }
        std::string shorter = usual;
        shorter.erase(i, 1);
        EXPECT_EQ(readOrRefused(shorter), readOrRefused(" " + shorter)) << shorter;
    }
    for (const char* zone : {"UTC", "Z", "CEST", "J", "XYZ", "ABCDE", "U C", "12", "1:2"}) {
        const std::string text = std::string("Fri Feb  2 13:14:15 ") + zone + " 2024";
        EXPECT_EQ(readOrRefused(text), readOrRefused(" " + text)) << text;
    }
}

TEST(DateTimeFreeForm, EverythingElseIsRefused) {
    for (const char* zone : {"UTC", "Europe/Berlin"}) {
        useZone(zone);
        for (const char* text : {
                 "",
                 " \n",
                 "never",
                 "N/A",
                 "2025-01-02 03:04:05",
                 "01/02/2025 03:04:05",
                 "2025 Jan 2 03:04:05",
                 "Jan 2, 2025 03:04:05",
                 "Jan 2nd 2025 03:04:05",
                 "Jan 2 2025x 03:04:05",
                 "Jan 0x2 2025 03:04:05",
                 "Jan 2 2025",
                 "Jan 2 03:04:05",
                 "2 2025 03:04:05",
                 "03:04:05",
                 "Jan 2 2025 03:04:05 PM",
                 "Jan 2 2025 03:04:05 +0100",
                 "thu Jan 2 2025 03:04:05",
                 "Thurs Jan 2 2025 03:04:05",
                 "jan 2 2025 03:04:05",
                 "JAN 2 2025 03:04:05",
                 "Sept 2 2025 03:04:05",
                 "Mayo 2 2025 03:04:05",
                 "Ja 2 2025 03:04:05",
                 "Jan Feb 2 2025 03:04:05",
                 "Jan Jan 2 2025 03:04:05",
                 "Thu Fri Jan 2 2025 03:04:05",
                 "Thu Thu Jan 2 2025 03:04:05",
                 "Jan 2 2025 03:04:05:06",
                 "Jan 2 2025 03:04:05.5",
                 "Jan 2 2025 03",
                 "Jan 2 2025 03:",
                 "Jan 2 2025 :",
                 "Jan 2 2025 03:xx",
                 "Jan 2 2025 03:04 05:06",
                 "Jan 2 2025 24:00:00",
                 "Jan 2 2025 23:60:00",
                 "Jan 2 2025 23:59:61",
                 "Jan 2 2025 -1:00:00",
                 "Jan 0 2025 03:04:05",
                 "Jan 32 2025 03:04:05",
                 "Jan 2 2025 03:04:05 7",
                 "Jan 2 2025 03:04:05 UTC UTC",
                 "Jan 2 2025 03:04:05 UTC CET",
                 "Jan 2 2025 03:04:05 UTC J",
                 "Jan 2 2025 03:04:05 utc",
                 "Jan 2 2025 03:04:05 XYZ",
                 "Jan 2 2025 03:04:05 JST",
                 "Jan 2 2025 03:04:05 EST5EDT",
                 "Jan 2 10000 03:04:05",
                 "Jan 2 99999999999999999999 03:04:05",
                 "Jan 4294967298 2025 03:04:05",
                 "Jan\f2 2025 03:04:05",
             }) {
            expectInvalid(text);
        }
    }
}

TEST(DateTimeFreeForm, BeforeNineteenSeventyCannotBeRepresented) {
    useZone("UTC");
    expectNotRepresentable("Jan 2 25 03:04:05", "Fri Jan  2 03:04:05 1925");
    expectNotRepresentable("Dec 31 1969 23:59:59", "Wed Dec 31 23:59:59 1969");
    expectNotRepresentable("Dec 31 1969 23:59:59 UTC", "Wed Dec 31 23:59:59 1969");
}

TEST(DateTimeFreeForm, MidnightOfTheFirstDayIsTooEarlyEastOfUtcOnly) {
    useZone("Europe/Berlin");
    expectNotRepresentable("Jan 1 1970 00:00:00", "Thu Jan  1 00:00:00 1970");
    expectAccepted("Jan 1 1970 01:00:00", 0);
    useZone("America/New_York");
    expectAccepted("Jan 1 1970 00:00:00", 18000);
}

TEST(DateTimeZones, EveryAbbreviationHasItsHours) {
    const struct {
        const char* zone;
        int hoursEast;
    } rows[] = {
        {"UTC", 0},  {"GMT", 0},  {"WET", 0},  {"BST", 1},   {"IST", 1},   {"WEST", 1},
        {"CET", 1},  {"CEST", 2}, {"EET", 2},  {"EEST", 3},  {"MSK", 3},   {"MSD", 4},
        {"WST", 8},  {"ADT", -3}, {"AST", -4}, {"EDT", -4},  {"EST", -5},  {"ET", -5},
        {"CDT", -5}, {"CST", -6}, {"CT", -6},  {"MDT", -6},  {"MST", -7},  {"MT", -7},
        {"PDT", -7}, {"PST", -8}, {"PT", -8},  {"AKDT", -8}, {"AKST", -9}, {"HST", -10},
        {"Z", 0},    {"A", 1},    {"B", 2},    {"C", 3},     {"D", 4},     {"E", 5},
        {"F", 6},    {"G", 7},    {"H", 8},    {"I", 9},     {"K", 10},    {"L", 11},
        {"M", 12},   {"N", -1},   {"O", -2},   {"P", -3},    {"Q", -4},    {"R", -5},
        {"S", -6},   {"T", -7},   {"U", -8},   {"V", -9},    {"W", -10},   {"X", -11},
        {"Y", -12},
    };
    useZone("Europe/Berlin");
    const time_t noonUtc = 1735819200; // 2 January 2025
    for (const auto& row : rows) {
        const std::string text = std::string("Jan 2 2025 12:00:00 ") + row.zone;
        expectAccepted(text.c_str(), noonUtc - row.hoursEast * 3600);
    }
    for (const char* unknown : {"z", "a", "cet", "UT", "ED", "CETX", "UTCC", "AKSTX", "?"}) {
        expectInvalid(std::string("Jan 2 2025 12:00:00 ") + unknown);
    }
}

TEST(DateTimeZones, ShiftCrossesDaysMonthsAndYears) {
    useZone("UTC");
    const Accepted rows[] = {
        {"Jan 3 2025 00:30:00 CET", 1735860600, 0},  // 2 January 23:30
        {"Mar 1 2025 00:30:00 CET", 1740785400, 0},  // 28 February 23:30
        {"Mar 1 2024 00:30:00 CET", 1709249400, 0},  // 29 February 23:30
        {"Mar 1 2000 00:30:00 CET", 951867000, 0},   // 29 February 23:30
        {"Mar 1 2100 00:30:00 CET", 4107540600, 0},  // 28 February 23:30
        {"Jan 1 2025 01:00:00 CET", 1735689600, 0},  // 1 January 00:00
        {"Dec 31 2025 19:00:00 EST", 1767225600, 0}, // 1 January 2026 00:00
        {"Dec 31 9999 23:00:00 EST", 253402315200, 0},
    };
    for (const Accepted& row : rows) {
        expectAccepted(row.text, row.inUtc);
    }
}

TEST(DateTimeZones, EasternShiftBackOverFirstOfJanuaryIsRefused) {
    useZone("UTC");
    expectInvalid("Jan 1 2025 00:30:00 CET");
    expectInvalid("Jan 1 2025 11:59:59 M");
    expectAccepted("Jan 1 2025 12:00:00 M", 1735689600);
}

TEST(DateTimeZones, WesternDayBeyondTheMonthBecomesFirstOfTheNext) {
    useZone("UTC");
    expectAccepted("Feb 30 2025 12:00:00 EST", 1740848400); // 1 March 17:00
    expectAccepted("Feb 31 2025 12:00:00 EST", 1740848400);
    expectAccepted("Feb 30 2024 12:00:00 EST", 1709312400); // 1 March 17:00
    expectAccepted("Feb 30 2025 22:00:00 EST", 1740798000); // 1 March 03:00
}

TEST(DateTimeLocal, AgreesWithTheSystemAroundEveryChangeOfTheOffset) {
    for (const char* zone : {"Europe/Berlin", "America/New_York", "Africa/Casablanca",
                             "Australia/Lord_Howe", "Pacific/Apia", "Asia/Kathmandu"}) {
        useZone(zone);
        SCOPED_TRACE(zone);
        for (time_t t = 1293836400; t < 1325372400; t += 1800) { // the year 2011
            struct tm local;
            localtime_r(&t, &local);
            char text[64];
            strftime(text, sizeof text, "%b %d %Y %H:%M:%S", &local);
            local.tm_isdst = -1;
            ASSERT_EQ(DateTime(String(text)).get(), mktime(&local)) << text;
        }
    }
}

TEST(DateTimeCimForm, IsReadWithItsOffset) {
    for (const char* zone : {"UTC", "Europe/Berlin"}) {
        useZone(zone);
        const struct {
            const char* text;
            time_t seconds;
            UInt32 microseconds;
        } rows[] = {
            {"20250102030405.000000+000", 1735787045, 0},
            {"20250102030405.123456-000", 1735787045, 123456},
            {"20250102040405.000001+060", 1735787045, 1},
            {"20250101220405.000000-300", 1735787045, 0},
            {"20250101003000.000000+060", 1735687800, 0}, // back over 1 January
            {"20250102030405.******+***", 1735787045, 0},
            {"20250102******.******+***", 1735776000, 0},
            {"2025010203**05.*****7+0**", 1735786805, 7},
            {"20250230120000.000000+000", 1740916800, 0}, // 2 March
            {"20250230120000.000000-300", 1740934800, 0}, // the same with a western offset
            {"20250102235960.000000+000", 1735862400, 0},
            {"19700101000000.000000+000", 0, 0},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(row.text);
            const DateTime read((String(row.text)));
            EXPECT_EQ(read.get(), row.seconds);
            EXPECT_EQ(read.getMicrosecond(), row.microseconds);
        }
    }
}

TEST(DateTimeCimForm, EverythingElseIsRefused) {
    useZone("UTC");
    for (const char* text : {
             "202501********.******+***", // asterisks in the day
             "2025****030405.000000+000", // and in the month
             "20250002030405.000000+000", "20251302030405.000000+000", "20250100030405.000000+000",
             "20250132030405.000000+000", "20250102240405.000000+000", "20250102036005.000000+000",
             "20250102030461.000000+000", "2025x102030405.000000+000", "20250102030405.00000x+000",
             "20250102030405.000000+00x", "20250102030405.000000+ 60", "20250102030405.000000 060",
             "20250102030405,000000+060",
             "00000002030405.000000:000", // an interval
             "20250102030405.000000:000", "20250102030405.000000+06",  "20250102030405.000000+0600",
         }) {
        expectInvalid(text);
    }
}

TEST(DateTimeCimForm, BeforeNineteenSeventyCannotBeRepresented) {
    useZone("Europe/Berlin");
    expectNotRepresentable("****0102030405.000000+000", "Sun Jan  2 03:04:05 0");
    expectNotRepresentable("19700101000000.000000+060", "Wed Dec 31 23:00:00 1969");
}

} // namespace OpenWBEM
