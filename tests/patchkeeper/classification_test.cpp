#include "patchkeeper/Classification.hpp"

#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace {

using patchkeeper::Classification;

TEST(Classification, FollowsFromTheSection) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"kernel", "Operating System"},
        {"shells", "Operating System"},
        {"admin", "Configuration Software"},
        {"cli-mono", "Middleware"},
        {"database", "Middleware"},
        {"gnu-r", "Middleware"},
        {"golang", "Middleware"},
        {"haskell", "Middleware"},
        {"httpd", "Middleware"},
        {"interpreters", "Middleware"},
        {"introspection", "Middleware"},
        {"java", "Middleware"},
        {"javascript", "Middleware"},
        {"libdevel", "Middleware"},
        {"libs", "Middleware"},
        {"lisp", "Middleware"},
        {"ocaml", "Middleware"},
        {"oldlibs", "Middleware"},
        {"perl", "Middleware"},
        {"php", "Middleware"},
        {"python", "Middleware"},
        {"raku", "Middleware"},
        {"ruby", "Middleware"},
        {"rust", "Middleware"},
        {"zope", "Middleware"},
        {"comm", "Application Software"},
        {"devel", "Application Software"},
        {"editors", "Application Software"},
        {"education", "Application Software"},
        {"electronics", "Application Software"},
        {"embedded", "Application Software"},
        {"games", "Application Software"},
        {"gnome", "Application Software"},
        {"gnustep", "Application Software"},
        {"graphics", "Application Software"},
        {"hamradio", "Application Software"},
        {"kde", "Application Software"},
        {"mail", "Application Software"},
        {"math", "Application Software"},
        {"net", "Application Software"},
        {"news", "Application Software"},
        {"otherosfs", "Application Software"},
        {"science", "Application Software"},
        {"sound", "Application Software"},
        {"tex", "Application Software"},
        {"text", "Application Software"},
        {"utils", "Application Software"},
        {"vcs", "Application Software"},
        {"video", "Application Software"},
        {"web", "Application Software"},
        {"x11", "Application Software"},
        {"xfce", "Application Software"},
        {"debug", "Diagnostic Software"},
        {"doc", "Other"},
        {"fonts", "Other"},
        {"localization", "Other"},
        {"metapackages", "Other"},
        {"misc", "Other"},
        {"tasks", "Other"},
    };
    for (const auto& [section, text] : rows) {
        EXPECT_EQ(Classification(section), text) << section;
    }
}

TEST(Classification, ArchiveAreaDoesNotCount) {
    EXPECT_EQ(Classification("contrib/libs"), "Middleware");
    EXPECT_EQ(Classification("non-free/kernel"), "Operating System");
    EXPECT_EQ(Classification("non-free/nothing"), "Other");
}

TEST(Classification, WholeFirmwareAreaIsFirmware) {
    EXPECT_EQ(Classification("non-free-firmware/kernel"), "Firmware");
    EXPECT_EQ(Classification("non-free-firmware/misc"), "Firmware");
    EXPECT_EQ(Classification("non-free-firmware"), "Other"); // a section of that name, no area
}

TEST(Classification, UnknownEmptyAndOtherwiseSpeltSectionsAreOther) {
    for (const char* section :
         {"", "/", "libs/", "Libs", "lib", "libsx", "aaa", "zzz", "unknown"}) {
        EXPECT_EQ(Classification(section), "Other") << section;
    }
}

} // namespace
