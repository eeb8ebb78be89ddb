// The provider API reads the dates that the tool writes: each comes back as the second it was made
// from.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <initializer_list>

#include "OW_DateTime.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include "patchkeeper/Inventory.hpp"

namespace {

TEST(InventoryDate, IsReadByTheProviderApiInEveryZone) {
    for (const char* zone : {"UTC", "Europe/Berlin", "America/New_York", "Asia/Tokyo"}) {
        setenv("TZ", zone, 1);
        tzset();
        for (const std::time_t date : std::initializer_list<std::time_t>{
                 0, 1, 1735689599, 1735787045, 1709251199, 1750775866, 4102444800, 253402300799}) {
            const std::string text = patchkeeper::DateText(date);
            EXPECT_EQ(OpenWBEM::DateTime(OpenWBEM::String(text.c_str())).get(), date)
                << text << " in " << zone;
        }
    }
}

} // namespace
