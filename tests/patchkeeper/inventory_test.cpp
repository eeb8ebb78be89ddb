#include "patchkeeper/Inventory.hpp"

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/FakeDatabase.hpp"
#include "patchkeeper/PackageDatabase.hpp"

namespace {

using patchkeeper::DateText;
using patchkeeper::PackageDatabase;
using patchkeeper_test::FakeDatabase;

constexpr std::time_t someDay = 1735787045; // 2 January 2025, 03:04:05 UTC

std::string InventoryLine(std::string_view name, std::string_view version,
                          std::string_view classification, std::optional<std::time_t> date) {
    return patchkeeper::RecordLine(
        patchkeeper::InventoryFields(name, version, classification, date));
}

std::string Print(const PackageDatabase& database,
                  const std::vector<patchkeeper::AppliedUpdate>& applied) {
    std::ostringstream out;
    patchkeeper::RecordWriter records(out, false, {"", "", "", ""});
    patchkeeper::PrintInventory(database, applied, records);
    records.Finish();
    return out.str();
}

std::string Inventory(const FakeDatabase& database) {
    return Print(PackageDatabase(database.Path()), {});
}

TEST(InventoryDate, IsTextWithItsZoneAndADayPaddedWithABlank) {
    EXPECT_EQ(DateText(someDay), "Thu Jan  2 03:04:05 UTC 2025");
    EXPECT_EQ(DateText(1750775866), "Tue Jun 24 14:37:46 UTC 2025");
    EXPECT_EQ(DateText(253402300799), "Fri Dec 31 23:59:59 UTC 9999");
}

TEST(InventoryDate, DoesNotDependOnTheTimeZoneOfTheMachine) {
    setenv("TZ", "America/New_York", 1);
    tzset();
    EXPECT_EQ(DateText(someDay), "Thu Jan  2 03:04:05 UTC 2025");
}

TEST(InventoryDate, UnknownOrUnreadableOnesAreTheStartOf1970) {
    const std::string start = "Thu Jan  1 00:00:00 UTC 1970";
    EXPECT_EQ(DateText(std::nullopt), start);
    EXPECT_EQ(DateText(0), start);
    EXPECT_EQ(DateText(-1), start);
    EXPECT_EQ(DateText(253402300800), start); // the year 10000
}

TEST(InventoryLine, HasFourFieldsBetweenTabs) {
    EXPECT_EQ(InventoryLine("bash", "5.2.15-2+b7", "Operating System", someDay),
              "bash\t5.2.15-2+b7\tOperating System\tThu Jan  2 03:04:05 UTC 2025\n");
}

TEST(InventoryLine, NeverHasAnEmptyField) {
    EXPECT_EQ(InventoryLine("", "", "Other", std::nullopt),
              "-\t-\tOther\tThu Jan  1 00:00:00 UTC 1970\n");
}

TEST(InventoryLine, ControlCharactersBecomeBlanks) {
    const std::string line = InventoryLine("a\tb\nc", std::string("1\x01\x7f\0z", 5), "Other", 0);
    EXPECT_EQ(line, "a b c\t1   z\tOther\tThu Jan  1 00:00:00 UTC 1970\n");
}

TEST(InventoryLine, IsNeverLongerThanAReaderTakes) {
    const std::string longText(5000, 'x');
    const std::string line =
        InventoryLine(longText, longText, "Configuration Software", 253402300799);
    EXPECT_LE(line.size(), 1023U);
    EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), 3);
    EXPECT_THAT(line,
                testing::EndsWith("\tConfiguration Software\tFri Dec 31 23:59:59 UTC 9999\n"));
    EXPECT_EQ(line.substr(0, 471), std::string(470, 'x') + "\t");
}

TEST(InventoryLine, IsCutAtTheBorderOfACharacter) {
    std::string name(469, 'x');
    name += "\xC3\xA9\xC3\xA9";
    EXPECT_EQ(InventoryLine(name, "1", "Other", 0).substr(0, 471), std::string(469, 'x') + "\t1");
}

TEST(Inventory, ListsWhatIsInstalledWithItsFields) {
    FakeDatabase database;
    database.Add("bash", "5.2.15-2", "shells", someDay)
        .Add("firmware-misc", "20230210-5", "non-free-firmware/kernel", someDay + 86400)
        .Add("libc6", "2:2.36-9+deb12u10", "libs", someDay)
        .Add("no-date", "1", "doc", std::nullopt)
        .Add("no-section", "1~rc1", "", someDay);
    EXPECT_EQ(Inventory(database),
              "bash\t5.2.15-2\tOperating System\tThu Jan  2 03:04:05 UTC 2025\n"
              "firmware-misc\t20230210-5\tFirmware\tFri Jan  3 03:04:05 UTC 2025\n"
              "libc6\t2:2.36-9+deb12u10\tMiddleware\tThu Jan  2 03:04:05 UTC 2025\n"
              "no-date\t1\tOther\tThu Jan  1 00:00:00 UTC 1970\n"
              "no-section\t1~rc1\tOther\tThu Jan  2 03:04:05 UTC 2025\n");
}

TEST(Inventory, LeavesOutWhatIsNotReallyInstalled) {
    FakeDatabase database;
    database.Add("removed", "1", "libs", someDay, "deinstall ok config-files")
        .Add("half", "1", "libs", someDay, "install reinstreq half-installed")
        .Add("held", "1", "libs", someDay, "hold ok installed")
        .Add("unpacked", "1", "libs", someDay, "install ok unpacked")
        .Add("leaving", "1", "libs", someDay, "deinstall ok installed");
    EXPECT_EQ(Inventory(database), "held\t1\tMiddleware\tThu Jan  2 03:04:05 UTC 2025\n"
                                   "leaving\t1\tMiddleware\tThu Jan  2 03:04:05 UTC 2025\n");
}

patchkeeper::AppliedUpdate Applied(const std::string& name, const std::string& version,
                                   const std::string& classification, std::time_t date) {
    patchkeeper::AppliedUpdate update;
    update.name = name;
    update.version = version;
    update.classification = classification;
    update.appliedAt = date;
    return update;
}

TEST(Inventory, WhatBundlesHaveInstalledFollowsInItsLastVersion) {
    FakeDatabase database;
    database.Add("bash", "5.2", "shells", someDay);
    EXPECT_EQ(
        Print(PackageDatabase(database.Path()), {Applied("demo", "1.0", "Firmware", someDay),
                                                 Applied("cartridge", "7", "Other", someDay),
                                                 Applied("demo", "2.0", "Driver", someDay + 1)}),
        "bash\t5.2\tOperating System\tThu Jan  2 03:04:05 UTC 2025\n"
        "cartridge\t7\tOther\tThu Jan  2 03:04:05 UTC 2025\n"
        "demo\t2.0\tDriver\tThu Jan  2 03:04:06 UTC 2025\n");
}

TEST(Inventory, EmptyDatabaseGivesNoLine) {
    EXPECT_EQ(Inventory(FakeDatabase()), "");
}

TEST(Inventory, MissingDatabaseIsAFailureAndNotAnEmptyList) {
    try {
        Print(PackageDatabase("/no/such/database"), {});
        FAIL() << "no failure";
    } catch (const patchkeeper::Failure& failure) {
        EXPECT_EQ(failure.Code(), patchkeeper::ExitCode::General);
        EXPECT_STREQ(failure.what(), "the package database cannot be read: "
                                     "/no/such/database/status: No such file or directory");
    }
}

TEST(Inventory, BrokenDatabaseIsAFailureThatQuotesDpkgQuery) {
    FakeDatabase database;
    database.Add("fine", "1", "libs", someDay).Add("bad name", "1", "libs", someDay);
    try {
        Inventory(database);
        FAIL() << "no failure";
    } catch (const patchkeeper::Failure& failure) {
        EXPECT_THAT(failure.what(),
                    testing::StartsWith("the package database cannot be read: dpkg-query failed "
                                        "with exit code 2: "));
    }
}

double ProcessorSeconds() {
    double seconds = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& part : {usage.ru_utime, usage.ru_stime}) {
            seconds += static_cast<double>(part.tv_sec) + static_cast<double>(part.tv_usec) / 1e6;
        }
    }
    return seconds;
}

TEST(Inventory, FiveThousandPackagesTakeWellUnderASecond) {
    FakeDatabase database;
    for (int i = 0; i < 5000; ++i) {
        database.Add("package" + std::to_string(i), "1." + std::to_string(i), "libs", someDay + i);
    }
    const double before = ProcessorSeconds();
    const std::string inventory = Inventory(database);
    EXPECT_LT(ProcessorSeconds() - before, 0.5);
    EXPECT_EQ(std::count(inventory.begin(), inventory.end(), '\n'), 5000);
}

} // namespace
