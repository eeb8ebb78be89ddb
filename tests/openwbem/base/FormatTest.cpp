#include "OW_Format.hpp"

#include "OW_Bool.hpp"
#include "OW_CIMName.hpp"
#include "OW_Types.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace OpenWBEM {
namespace {

std::string text(const Format& format) {
    return format.c_str();
}

TEST(Format, PutsValuesIntoTheirPlaces) {
    EXPECT_EQ(text(Format("text %1 and %2", "a", 5)), "text a and 5");
    EXPECT_EQ(text(Format("%2%1%2", "a", "b")), "bab");
    EXPECT_EQ(text(Format("nothing", 1)), "nothing");
    EXPECT_EQ(text(Format("%1", String("text"))), "text");
    EXPECT_EQ(text(Format("%1", std::string("text"))), "text");
    EXPECT_EQ(text(Format("%1", CIMName("Name"))), "Name");
}

TEST(Format, TakesOneToNineValues) {
    EXPECT_EQ(text(Format("%1", 1)), "1");
    EXPECT_EQ(text(Format("%1%2", 1, 2)), "12");
    EXPECT_EQ(text(Format("%1%2%3", 1, 2, 3)), "123");
    EXPECT_EQ(text(Format("%1%2%3%4", 1, 2, 3, 4)), "1234");
    EXPECT_EQ(text(Format("%1%2%3%4%5", 1, 2, 3, 4, 5)), "12345");
    EXPECT_EQ(text(Format("%1%2%3%4%5%6", 1, 2, 3, 4, 5, 6)), "123456");
    EXPECT_EQ(text(Format("%1%2%3%4%5%6%7", 1, 2, 3, 4, 5, 6, 7)), "1234567");
    EXPECT_EQ(text(Format("%1%2%3%4%5%6%7%8", 1, 2, 3, 4, 5, 6, 7, 8)), "12345678");
    EXPECT_EQ(text(Format("%1%2%3%4%5%6%7%8%9", 1, 2, 3, 4, 5, 6, 7, 8, 9)), "123456789");
}

TEST(Format, ShowsValuesAsAStreamDoes) {
    EXPECT_EQ(text(Format("%1 %2", true, false)), "1 0");
    EXPECT_EQ(text(Format("%1", UInt8(65))), "A");
    EXPECT_EQ(text(Format("%1 %2", Bool(true), Bool(false))), "true false");
    EXPECT_EQ(text(Format("%1", 1.5)), "1.5");
    EXPECT_EQ(text(Format("%1", UInt64(18446744073709551615UL))), "18446744073709551615");
}

TEST(Format, TwoPercentSignsPrintOne) {
    EXPECT_EQ(text(Format("%1%%", 50)), "50%");
    EXPECT_EQ(text(Format("%%1", 50)), "%1");
}

TEST(Format, ValuesAreNotSearchedForPlaces) {
    EXPECT_EQ(text(Format("%1 %2", "%2", "x")), "%2 x");
}

TEST(Format, AMistakeLeavesARemarkAndTheRest) {
    EXPECT_EQ(text(Format("a %3 b %1", "x", "y")), "a [Format: no value for %3] b x");
    EXPECT_EQ(text(Format("a %0 b", "x")), "a [Format: no value for %0] b");
    EXPECT_EQ(text(Format("a % b %1", "x")), "a [Format: lone %] b x");
    EXPECT_EQ(text(Format("%1 %", "x")), "x [Format: lone %]");
}

TEST(Format, BecomesAString) {
    const String implicit = Format("%1", 1);
    EXPECT_EQ(implicit, "1");
    EXPECT_EQ(Format("%1", 1).toString(), "1");
    std::ostringstream stream;
    stream << Format("%1", 1);
    EXPECT_EQ(stream.str(), "1");
}

} // namespace
} // namespace OpenWBEM
