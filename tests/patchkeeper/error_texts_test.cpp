#include "patchkeeper/ErrorTexts.hpp"

#include <limits>
#include <map>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using patchkeeper::ErrorText;

constexpr std::string_view general = "The update tool failed for a reason that it cannot name.";

const std::map<int, std::string_view> texts = {
    {11, "The update could not be fetched from the FTP server."},
    {12, "The software update failed."},
    {13, "A package of the update could not be installed."},
    {14, "The update could not be downloaded."},
    {15, "The update could not be applied."},
    {16, "The update could not be removed."},
    {17, "The update could not be scheduled."},
    {18, "The schedule of the update could not be changed."},
    {19, "The update could not be fetched from the HTTP server."},
    {20, "The update could not be fetched from the HTTPS server."},
    {21, "The update could not be fetched from the file share."},
    {22, "The update could not be fetched from the USB device."},
    {23, "No updates were found."},
    {33, "No updates were found on this machine."},
    {34, "The time zone of this machine is not set."},
};

TEST(ErrorText, EveryCodeOfTheToolHasItsSentenceAndAllOthersTheGeneralOne) {
    for (int code = -300; code <= 300; ++code) {
        const auto row = texts.find(code);
        EXPECT_EQ(ErrorText(code), row == texts.end() ? general : row->second) << code;
    }
    EXPECT_EQ(ErrorText(std::numeric_limits<int>::min()), general);
    EXPECT_EQ(ErrorText(std::numeric_limits<int>::max()), general);
}

} // namespace
