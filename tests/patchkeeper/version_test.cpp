#include "patchkeeper/Version.hpp"

#include <string_view>

#include <gtest/gtest.h>

namespace {

using patchkeeper::IsOlder;

TEST(Version, EachOfARowIsOlderThanAllBehindIt) {
    const std::string_view row[] = {"~",
                                    "0",
                                    "0.9",
                                    "1.0~~",
                                    "1.0~rc1",
                                    "1.0~rc2",
                                    "1.0",
                                    "1.0a",
                                    "1.0+b1",
                                    "1.0-1",
                                    "1.0-2",
                                    "1.0.1",
                                    "1.9",
                                    "1.10",
                                    "1.10a",
                                    "1.10.0",
                                    "2",
                                    "10",
                                    "20250101",
                                    "184467440737095516160",
                                    "184467440737095516161",
                                    "a",
                                    "b"};
    const std::size_t count = std::size(row);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            EXPECT_EQ(IsOlder(row[i], row[j]), i < j) << row[i] << " and " << row[j];
        }
    }
}

TEST(Version, LeadingZerosDoNotCount) {
    EXPECT_FALSE(IsOlder("1.01", "1.1"));
    EXPECT_FALSE(IsOlder("1.1", "1.01"));
    EXPECT_TRUE(IsOlder("1.01", "1.2"));
    EXPECT_FALSE(IsOlder("", "0"));
    EXPECT_FALSE(IsOlder("0", ""));
}

} // namespace
